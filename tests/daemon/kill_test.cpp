// Many producers, one server that is killed again and again: every message is applied exactly once and in order.
#include <apconf/apconf.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <random>

#include "daemon/server_process.h"

using namespace apconf_test;

namespace
{

constexpr int producers = 8;
constexpr int messages_each = 500;
constexpr int total = producers * messages_each;
constexpr int kills = 10;

std::string notes_of(int producer)
{
    return "/tmp/producer-" + std::to_string(producer);
}

// Appends like a store owner does: queue the message, then tell the server, which may just be dead.
[[noreturn]] void produce(int producer)
{
    std::ofstream notes(notes_of(producer));
    const std::string module = "producer-" + std::to_string(producer);
    for (int number = 0; number < messages_each; ++number) {
        const std::string hostname = "h" + std::to_string(producer) + "-" + std::to_string(number);
        notes << append(queued_hostname_message(hostname, module)) << ' ' << hostname << '\n';
        send_io_notify(IO_MSG_APPLIED, nullptr, 0);
        usleep(3000);
    }
    notes.close();
    _exit(0);
}

// Index to hostname, as the producers noted them.
std::map<int, std::string> all_notes()
{
    std::map<int, std::string> result;
    for (int producer = 0; producer < producers; ++producer) {
        std::ifstream notes(notes_of(producer));
        int index = 0;
        for (std::string hostname; notes >> index >> hostname;) {
            EXPECT_EQ(result.count(index), 0u) << "index " << index << " was given twice";
            result[index] = hostname;
        }
    }
    return result;
}

// The numbers of the lines "applied message N", in the order of the log.
std::vector<int> applied_in_log(const std::string &log)
{
    const std::string mark = "applied message ";
    std::vector<int> numbers;
    for (size_t at = log.find(mark); at != std::string::npos; at = log.find(mark, at + 1))
        numbers.push_back(std::stoi(log.substr(at + mark.size(), 9)));
    return numbers;
}

size_t count_of(const std::string &text, const std::string &part)
{
    size_t count = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
    return count;
}

std::unique_ptr<server_process> start()
{
    return std::make_unique<server_process>(std::vector<std::string>{"--archive-limit", std::to_string(2 * total)});
}

TEST(killed_server, applies_every_message_exactly_once_and_in_order)
{
    make_fresh_machine();
    auto server = start();
    ASSERT_TRUE(server->wait_until_serving());

    std::vector<pid_t> children;
    for (int producer = 0; producer < producers; ++producer) {
        const pid_t child = fork();
        if (child == 0) produce(producer);
        children.push_back(child);
    }
    std::mt19937 random(20240601);
    for (int kill = 0; kill < kills; ++kill) {
        pause_for(std::chrono::milliseconds(50 + random() % 350));
        server->kill();
        server = start();
    }
    for (const pid_t child : children) {
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
    }
    ASSERT_TRUE(eventually([] { return cmq_get_current_index() == total + 1; }, 40s));
    const std::string last = std::string(CMQ_NEW_DIR) + "/" + std::to_string(total) + ".json";
    ASSERT_TRUE(eventually([&] { return !exists(last); }));

    const auto notes = all_notes();
    ASSERT_EQ(notes.size(), static_cast<size_t>(total));
    EXPECT_EQ(notes.begin()->first, 1);
    EXPECT_EQ(notes.rbegin()->first, total);
    for (const auto &[index, hostname] : notes)
        ASSERT_EQ(hostname_in(std::string(CMQ_OLD_DIR) + "/" + std::to_string(index) + ".json"), hostname)
            << "message " << index;
    EXPECT_EQ(hostname_of_server(), notes.rbegin()->second);

    printf("%zu messages applied anew\n", count_of(server->log(), "anew"));
    const auto logged = applied_in_log(server->log());
    EXPECT_GE(logged.size(), static_cast<size_t>(total - kills));
    EXPECT_TRUE(std::is_sorted(logged.begin(), logged.end(), std::less_equal<>()))
        << "a message was applied again after it had been recorded";
}

}  // namespace

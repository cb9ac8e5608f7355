// Saving the running configuration as the start configuration: whole or not at all.
#include <apconf/apconf.h>
#include <fcntl.h>
#include <json-c/json.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <random>
#include <thread>

#include "daemon/server_process.h"
#include "daemon/tool_in_background.h"
#include "host/json.h"
#include "host/tool_process.h"

using namespace apconf_test;
using apconf_host::json_ptr;
using testing::HasSubstr;

namespace
{

namespace fs = std::filesystem;

class saving : public testing::Test
{
protected:
    void SetUp() override
    {
        make_fresh_machine();
        install_start_configuration();
        server_ = std::make_unique<server_process>();
        ASSERT_TRUE(server_->wait_until_serving());
        ASSERT_TRUE(server_->wait_for_log("applied message 1 from start_config"));
    }

    static void set_hostname(const std::string &hostname)
    {
        const raw_client client;
        client.send_message(IO_MSG_SET, set_hostname_message(hostname));
        ASSERT_TRUE(eventually([&] { return hostname_of_server() == hostname; }));
    }

    static mode_t mode_of(const std::string &path)
    {
        struct stat status = {};
        EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
        return status.st_mode & 07777;
    }

    static std::vector<std::string> names_in(const fs::path &directory)
    {
        std::vector<std::string> names;
        for (const auto &entry : fs::directory_iterator(directory)) names.push_back(entry.path().filename());
        return names;
    }

    std::unique_ptr<server_process> server_;
};

TEST_F(saving, makes_the_access_point_start_with_what_was_running)
{
    set_hostname("saved/as-it-is");
    const std::string running = configuration_of_server();
    const tool_result result = apconf("save");
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "");
    const json_ptr saved(json_object_from_file(CMQ_START_CONFIG));
    EXPECT_EQ(apconf_host::scalar_text(apconf_host::member(saved.get(), "MODULE")), "start_config");

    server_->kill();
    fs::remove_all(CMQ_DIR);  // what a machine loses when it is switched off
    server_ = std::make_unique<server_process>();
    ASSERT_TRUE(server_->wait_until_serving());
    ASSERT_TRUE(eventually([] { return hostname_of_server() == "saved/as-it-is"; }));
    EXPECT_EQ(configuration_of_server(), running);
}

TEST_F(saving, keeps_the_mode_of_the_file_and_leaves_nothing_beside_it)
{
    for (const mode_t mode : {0640u, 0600u, 0444u}) {
        ASSERT_EQ(chmod(CMQ_START_CONFIG, mode), 0);
        ASSERT_EQ(apconf("save").status, 0);
        EXPECT_EQ(mode_of(CMQ_START_CONFIG), mode);
    }
    EXPECT_THAT(names_in("/etc/config"), testing::ElementsAre("start_config.json"));
}

TEST_F(saving, makes_a_new_file_that_others_cannot_read)
{
    fs::remove_all("/etc/config");
    ASSERT_EQ(apconf("save").status, 0);
    EXPECT_EQ(mode_of(CMQ_START_CONFIG), 0600u);
    EXPECT_THAT(read_file(CMQ_START_CONFIG), HasSubstr("access-point"));
}

TEST_F(saving, follows_a_link_to_where_the_file_really_is)
{
    fs::create_directories("/etc/flash");
    fs::rename(CMQ_START_CONFIG, "/etc/flash/start.json");
    fs::create_symlink("../flash/start.json", CMQ_START_CONFIG);
    set_hostname("behind-a-link");
    ASSERT_EQ(apconf("save").status, 0);
    EXPECT_TRUE(fs::is_symlink(CMQ_START_CONFIG));
    EXPECT_EQ(hostname_in("/etc/flash/start.json"), "behind-a-link");
    EXPECT_THAT(names_in("/etc/flash"), testing::ElementsAre("start.json"));
    fs::remove_all("/etc/flash");
}

TEST_F(saving, refuses_what_may_still_be_undone)
{
    const std::string before = read_file(CMQ_START_CONFIG);
    ASSERT_EQ(apconf("commit --confirm 60 -", R"({"config":{"hostname_cmd":{"hostname":"risky"}}})").status, 0);
    const tool_result result = apconf("save");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors,
              "apconf: message 2 waits to be confirmed: what may be undone is not saved; 'apconf confirm' first\n");
    EXPECT_EQ(read_file(CMQ_START_CONFIG), before);
    ASSERT_EQ(apconf("confirm").status, 0);
    EXPECT_EQ(apconf("save").status, 0);
    EXPECT_EQ(hostname_in(CMQ_START_CONFIG), "risky");
}

TEST_F(saving, says_what_is_in_the_way)
{
    const std::string before = read_file(CMQ_START_CONFIG);
    fs::create_directory(CMQ_START_CONFIG ".tmp");
    const tool_result result = apconf("save");
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, HasSubstr("/etc/config/start_config.json.tmp: "));
    EXPECT_EQ(read_file(CMQ_START_CONFIG), before);
    server_->kill();
    EXPECT_THAT(apconf("save").errors, HasSubstr("there is no configuration server"));
    EXPECT_EQ(read_file(CMQ_START_CONFIG), before);
}

// The kernel ends the process, or refuses, when the file grows beyond a limit: in the middle of the writing.
TEST_F(saving, that_ends_in_the_middle_of_the_writing_leaves_the_old_file)
{
    const std::string before = read_file(CMQ_START_CONFIG);
    set_hostname("not-saved");
    ASSERT_NE(system("ulimit -c 0; ulimit -f 4; exec " APCONF_TOOL " save 2>/dev/null"), 0);
    EXPECT_EQ(read_file(CMQ_START_CONFIG), before);
    ASSERT_NE(system("trap '' XFSZ; ulimit -f 4; exec " APCONF_TOOL " save 2>/tmp/errors"), 0);
    EXPECT_EQ(read_file("/tmp/errors"), "apconf: /etc/config/start_config.json.tmp: File too large\n");
    EXPECT_EQ(read_file(CMQ_START_CONFIG), before);
    EXPECT_THAT(names_in("/etc/config"), testing::ElementsAre("start_config.json"));
    EXPECT_EQ(apconf("save").status, 0);
    EXPECT_EQ(hostname_in(CMQ_START_CONFIG), "not-saved");
}

TEST_F(saving, waits_for_another_one_to_end)
{
    set_hostname("saved-second");
    const int other = open("/etc/config", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(flock(other, LOCK_EX), 0);
    tool_in_background save("save");
    pause_for(300ms);
    EXPECT_EQ(hostname_in(CMQ_START_CONFIG), "access-point");
    close(other);
    EXPECT_EQ(save.exit_status(), 0);
    EXPECT_EQ(hostname_in(CMQ_START_CONFIG), "saved-second");
}

// Killed at any moment, and two at a time: the file is one of those that were saved, never a part of one.
TEST_F(saving, is_whole_or_not_at_all_when_it_is_killed)
{
    std::mt19937 random(3);
    const auto began = std::chrono::steady_clock::now();
    ASSERT_EQ(apconf("save").status, 0);
    const auto whole = std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - began);
    int killed_early = 0;
    for (int round = 0; round < 40; ++round) {
        const std::string before = hostname_in(CMQ_START_CONFIG);
        const std::string after = "round-" + std::to_string(round);
        set_hostname(after);
        {
            const tool_in_background one("save");
            const tool_in_background other("save");
            std::this_thread::sleep_for(random() % 4000 * whole / 1000);
        }
        const json_ptr saved(json_object_from_file(CMQ_START_CONFIG));
        ASSERT_TRUE(saved) << "half-written in round " << round;
        const std::string now = hostname_in(CMQ_START_CONFIG);
        ASSERT_TRUE(now == before || now == after) << now;
        killed_early += now == before;
    }
    EXPECT_LT(killed_early, 40) << "no save came to its end";
    EXPECT_EQ(apconf("save").status, 0) << "what a killed one left is in the way";
    EXPECT_EQ(hostname_in(CMQ_START_CONFIG), "round-39");
    EXPECT_THAT(names_in("/etc/config"), testing::ElementsAre("start_config.json"));
}

}  // namespace

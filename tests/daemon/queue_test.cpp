// The queue as the server drains it: archives, refusals, damaged files, and coming back after any end.
#include <apconf/apconf.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <json-c/json.h>
#include <signal.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>

#include "daemon/server_process.h"

using namespace apconf_test;
using testing::ElementsAre;
using testing::HasSubstr;

namespace
{

constexpr const char *state_path = CMQ_DIR "/running.json";

class queue : public testing::Test
{
protected:
    void SetUp() override { make_fresh_machine(); }

    static std::string old_file(int index) { return CMQ_OLD_DIR "/" + std::to_string(index) + ".json"; }
    static std::string new_file(int index) { return CMQ_NEW_DIR "/" + std::to_string(index) + ".json"; }
    static std::string bad_file(int index) { return CMQ_BAD_DIR "/" + std::to_string(index) + ".txt"; }

    static void notify()
    {
        const raw_client client;
        client.send_message(IO_MSG_APPLIED, "");
    }

    static int append_hostname(const std::string &hostname) { return append(queued_hostname_message(hostname)); }

    static void make_directories()
    {
        for (const char *path : {CMQ_DIR, CMQ_NEW_DIR, CMQ_OLD_DIR, CMQ_BAD_DIR}) mkdir(path, 0700);
    }

    // A server that has applied message 1 with this hostname and has ended.
    static void apply_one_and_end(const std::string &hostname)
    {
        server_process server;
        ASSERT_TRUE(server.wait_until_serving());
        ASSERT_EQ(append_hostname(hostname), 1);
        notify();
        ASSERT_TRUE(server.wait_for_log("applied message 1 from tester"));
        ASSERT_EQ(server.terminate(SIGTERM), 0);
    }

    static std::vector<std::string> names_in(const char *directory)
    {
        std::vector<std::string> names;
        for (const auto &entry : std::filesystem::directory_iterator(directory))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }
};

TEST_F(queue, message_is_applied_archived_and_deleted)
{
    server_process server;
    ASSERT_TRUE(server.wait_until_serving());
    ASSERT_EQ(append_hostname("porch"), 1);
    notify();
    ASSERT_TRUE(server.wait_for_log("applied message 1 from tester: 1 changes, 0 refusals"));
    EXPECT_EQ(hostname_of_server(), "porch");
    EXPECT_EQ(hostname_in(old_file(1)), "porch");
    EXPECT_FALSE(exists(new_file(1)));
    EXPECT_FALSE(exists(bad_file(1)));
}

TEST_F(queue, start_configuration_is_message_one)
{
    install_start_configuration();
    server_process server;
    ASSERT_TRUE(server.wait_until_serving());
    ASSERT_TRUE(server.wait_for_log("applied message 1 from start_config"));
    EXPECT_EQ(hostname_of_server(), "access-point");
    EXPECT_EQ(hostname_in(old_file(1)), "access-point");
    EXPECT_EQ(read_file(CMQ_MAX_INDEX), "2 ");
    EXPECT_FALSE(exists(bad_file(1))) << read_file(bad_file(1));
}

TEST_F(queue, start_configuration_is_not_lost_when_the_set_up_was_cut_short)
{
    const auto starts_with = [](const char *current, const char *maximum, const char *message) {
        make_fresh_machine();
        install_start_configuration();
        make_directories();
        if (current) write_file(CMQ_CUR_INDEX, current);
        if (maximum) write_file(CMQ_MAX_INDEX, maximum);
        if (message) write_file(new_file(1), message);
        server_process server;
        return server.wait_until_serving() && server.wait_for_log("applied message 1 from start_config") &&
               hostname_of_server() == "access-point";
    };
    EXPECT_TRUE(starts_with("", nullptr, nullptr));
    EXPECT_TRUE(starts_with("1 ", nullptr, nullptr));
    EXPECT_TRUE(starts_with("1 ", "", nullptr));
    EXPECT_TRUE(starts_with("1 ", "1 ", nullptr));
    EXPECT_TRUE(starts_with("1 ", "1 ", "{\"MODULE\":\"start_con"));
}

TEST_F(queue, start_configuration_is_applied_once)
{
    install_start_configuration();
    {
        server_process server;
        ASSERT_TRUE(server.wait_until_serving());
        ASSERT_TRUE(server.wait_for_log("applied message 1 from start_config"));
        const raw_client client;
        ASSERT_TRUE(client.send_message(IO_MSG_SET, set_hostname_message("changed")));
        ASSERT_TRUE(eventually([] { return hostname_of_server() == "changed"; }));
    }
    server_process server;
    ASSERT_TRUE(server.wait_until_serving());
    EXPECT_EQ(hostname_of_server(), "changed");
    EXPECT_EQ(read_file(CMQ_MAX_INDEX), "2 ");
}

TEST_F(queue, what_a_reply_has_shown_survives_a_kill)
{
    for (int round = 0; round < 5; ++round) {
        const std::string hostname = "round-" + std::to_string(round);
        server_process server;
        ASSERT_TRUE(server.wait_until_serving());
        const raw_client client;
        ASSERT_TRUE(client.send_message(IO_MSG_SET, set_hostname_message(hostname)));
        const auto reply = client.request(IO_MSG_GET, get_message("/config/hostname_cmd"));
        server.kill();
        ASSERT_TRUE(reply);
        ASSERT_THAT(reply->data, HasSubstr(hostname));
        server_process next;
        ASSERT_TRUE(next.wait_until_serving());
        EXPECT_EQ(hostname_of_server(), hostname);
    }
}

TEST_F(queue, each_refusal_is_one_line_of_the_bad_file)
{
    server_process server;
    ASSERT_TRUE(server.wait_until_serving());
    ASSERT_EQ(
        append(R"({"MODULE":"tester","ACTION":"set","config":{"hostname_cmd":{"hostname":"kept"},)"
               R"("ip_ssh_cmd":{"status":"sometimes"},"no_such_cmd":{"x":"1\n2"},"ip_web_cmd":{"colour":"red"}}})"),
        1);
    notify();
    ASSERT_TRUE(server.wait_for_log("applied message 1 from tester: 1 changes, 3 refusals"));
    const auto lines = lines_of(read_file(bad_file(1)));
    ASSERT_EQ(lines.size(), 3u);
    const std::string all = read_file(bad_file(1));
    for (const char *part : {"config/ip_ssh_cmd", "status", "sometimes", "no_such_cmd", "config/ip_web_cmd", "colour"})
        EXPECT_THAT(all, HasSubstr(part));
    EXPECT_EQ(hostname_in(old_file(1)), "kept");
    EXPECT_FALSE(exists(new_file(1)));
}

TEST_F(queue, message_that_is_no_configuration_message_is_explained_in_bad)
{
    server_process server;
    ASSERT_TRUE(server.wait_until_serving());
    ASSERT_EQ(append("[1,2]"), 1);
    ASSERT_EQ(append_hostname("after"), 2);
    notify();
    ASSERT_TRUE(server.wait_for_log("applied message 2 from tester"));
    EXPECT_EQ(lines_of(read_file(bad_file(1))).size(), 1u);
    EXPECT_EQ(hostname_of_server(), "after");
}

TEST_F(queue, unreadable_message_is_skipped_and_explained_in_bad)
{
    server_process server;
    ASSERT_TRUE(server.wait_until_serving());
    const auto put_garbage = [](void *, int index) {
        write_file(new_file(index), "{\"config\": {");
        return 0;
    };
    ASSERT_EQ(append_hostname("before"), 1);
    ASSERT_EQ(cmq_handle_cmessage(put_garbage, nullptr), 2);
    ASSERT_EQ(cmq_handle_cmessage([](void *, int) { return 0; }, nullptr), 3);  // no file at all
    ASSERT_EQ(append_hostname("behind"), 4);
    notify();
    ASSERT_TRUE(server.wait_for_log("applied message 4 from tester"));
    EXPECT_EQ(hostname_of_server(), "behind");
    for (const int index : {2, 3}) {
        EXPECT_THAT(read_file(bad_file(index)), HasSubstr("cannot be read"));
        EXPECT_THAT(server.log(), HasSubstr("message " + std::to_string(index) + " cannot be read and is skipped"));
    }
    ASSERT_EQ(cmq_handle_cmessage(put_garbage, nullptr), 5);
    notify();
    EXPECT_TRUE(server.wait_for_log("message 5 cannot be read and is skipped"));
}

TEST_F(queue, message_that_was_fetched_and_not_recorded_is_applied_at_the_next_start)
{
    apply_one_and_end("first");
    ASSERT_EQ(append_hostname("fetched"), 2);
    ASSERT_EQ(append_hostname("pending"), 3);
    int index = 0;
    json_object_put(cmq_fetch_a_message(&index));
    ASSERT_EQ(index, 2);

    server_process server;
    ASSERT_TRUE(server.wait_until_serving());
    ASSERT_TRUE(server.wait_for_log("applied message 3 from tester"));
    EXPECT_THAT(server.log(), HasSubstr("applied message 2 from tester"));
    EXPECT_EQ(hostname_in(old_file(2)), "fetched");
    EXPECT_EQ(hostname_in(old_file(3)), "pending");
    EXPECT_EQ(hostname_of_server(), "pending");
}

TEST_F(queue, recorded_message_is_not_applied_again)
{
    apply_one_and_end("first");
    // Killed between record and deletion.
    write_file(new_file(1), queued_hostname_message("again"));
    server_process server;
    ASSERT_TRUE(server.wait_until_serving());
    EXPECT_EQ(hostname_of_server(), "first");
    EXPECT_FALSE(exists(new_file(1)));
}

TEST_F(queue, missing_archive_of_the_last_message_is_written_at_start)
{
    apply_one_and_end("first");
    ASSERT_TRUE(std::filesystem::remove(old_file(1)));
    server_process server;
    ASSERT_TRUE(server.wait_until_serving());
    EXPECT_EQ(hostname_in(old_file(1)), "first");
}

TEST_F(queue, damaged_state_falls_back_to_the_newest_readable_archive)
{
    for (const char *damage : {"", "{\"applied\": 3, \"conf", "[]", "{\"applied\": -1, \"config\": {}}",
                               "{\"applied\": \"x\", \"config\": {}}", "{\"applied\": 3, \"config\": 7}"}) {
        make_fresh_machine();
        {
            server_process server;
            ASSERT_TRUE(server.wait_until_serving());
            for (const char *hostname : {"one", "two", "three"}) append_hostname(hostname);
            notify();
            ASSERT_TRUE(server.wait_for_log("applied message 3 from tester"));
        }
        write_file(state_path, damage);
        write_file(old_file(3), "{\"config\": {\"host");
        server_process server;
        ASSERT_TRUE(server.wait_until_serving());
        EXPECT_EQ(hostname_of_server(), "two") << damage;
        EXPECT_THAT(server.log(), HasSubstr("'/tmp/cmessage_queue/running.json' is damaged"));
        EXPECT_EQ(append_hostname("four"), 4);
        notify();
        EXPECT_TRUE(server.wait_for_log("applied message 4 from tester"));
    }
}

TEST_F(queue, numbers_go_on_when_the_index_files_are_lost)
{
    apply_one_and_end("first");
    ASSERT_EQ(append_hostname("waiting"), 2);
    std::filesystem::remove(CMQ_CUR_INDEX);
    std::filesystem::remove(CMQ_MAX_INDEX);
    server_process server;
    ASSERT_TRUE(server.wait_until_serving());
    ASSERT_TRUE(server.wait_for_log("applied message 2 from tester"));
    EXPECT_EQ(append_hostname("next"), 3);
    notify();
    EXPECT_TRUE(server.wait_for_log("applied message 3 from tester"));
    EXPECT_EQ(hostname_of_server(), "next");
}

TEST_F(queue, damaged_index_files_are_repaired_while_serving)
{
    server_process server;
    ASSERT_TRUE(server.wait_until_serving());
    ASSERT_EQ(append_hostname("one"), 1);
    notify();
    ASSERT_TRUE(server.wait_for_log("applied message 1 from tester"));
    write_file(CMQ_CUR_INDEX, "x");
    ASSERT_EQ(append_hostname("two"), 2);
    notify();
    ASSERT_TRUE(server.wait_for_log("applied message 2 from tester"));
    write_file(CMQ_MAX_INDEX, "0 ");
    notify();
    ASSERT_TRUE(eventually([] { return read_file(CMQ_MAX_INDEX) == "3 "; }));
    EXPECT_EQ(append_hostname("three"), 3);
    notify();
    EXPECT_TRUE(server.wait_for_log("applied message 3 from tester"));
}

TEST_F(queue, only_the_newest_archives_and_bad_files_are_kept)
{
    server_process server({"--archive-limit", "3"});
    ASSERT_TRUE(server.wait_until_serving());
    for (int i = 1; i <= 8; ++i) append(R"({"MODULE":"tester","ACTION":"set","config":{"no_such_cmd":{}}})");
    notify();
    ASSERT_TRUE(server.wait_for_log("applied message 8 from tester"));
    EXPECT_THAT(names_in(CMQ_OLD_DIR), ElementsAre("6.json", "7.json", "8.json"));
    EXPECT_THAT(names_in(CMQ_BAD_DIR), ElementsAre("6.txt", "7.txt", "8.txt"));
    server.kill();
    server_process stricter({"--archive-limit", "1"});
    ASSERT_TRUE(stricter.wait_until_serving());
    EXPECT_THAT(names_in(CMQ_OLD_DIR), ElementsAre("8.json"));
    EXPECT_THAT(names_in(CMQ_BAD_DIR), ElementsAre("8.txt"));
}

TEST_F(queue, state_file_says_which_message_was_applied)
{
    apply_one_and_end("first");
    EXPECT_EQ(hostname_in(state_path), "first");
    EXPECT_THAT(read_file(state_path), HasSubstr("\"applied\":1"));
    struct stat status = {};
    ASSERT_EQ(stat(state_path, &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
}

}  // namespace

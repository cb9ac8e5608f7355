// The archive: what history says of it, and going back to any of it.
#include <apconf/apconf.h>
#include <json-c/json.h>
#include <signal.h>

#include <filesystem>
#include <memory>

#include "daemon/server_process.h"
#include "host/handlers.h"
#include "host/json.h"
#include "host/random_message.h"
#include "host/tool_process.h"

using namespace apconf_test;
using apconf_host::json_ptr;
using apconf_host::member;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace
{

std::string old_file(int number)
{
    return CMQ_OLD_DIR "/" + std::to_string(number) + ".json";
}

class archive : public testing::Test
{
protected:
    void SetUp() override
    {
        make_fresh_machine();
        server_ = std::make_unique<server_process>();
        ASSERT_TRUE(server_->wait_until_serving());
    }

    // Queues messages and waits for the last one.
    void apply(const std::vector<std::string> &messages)
    {
        int last = 0;
        for (const std::string &message : messages) last = append(message);
        raw_client().send_message(IO_MSG_APPLIED, "");
        ASSERT_TRUE(server_->wait_for_log("applied message " + std::to_string(last) + " "));
    }

    // The configuration of an archived message as the server would answer it.
    static std::string configuration_in(int number)
    {
        const json_ptr archived(json_object_from_file(old_file(number).c_str()));
        const json_ptr answer(json_object_new_object());
        json_object *config = member(archived.get(), "config");
        if (json_object_object_length(config) > 0)
            json_object_object_add(answer.get(), "config", json_object_get(config));
        return with_nul(json_object_to_json_string_ext(answer.get(), JSON_C_TO_STRING_PLAIN));
    }

    static void expect_rollback(int number)
    {
        const std::string wanted = configuration_in(number);
        const tool_result result = apconf("rollback " + std::to_string(number));
        ASSERT_EQ(result.status, 0) << result.errors;
        ASSERT_EQ(configuration_of_server(), wanted) << "configuration " << number;
    }

    std::unique_ptr<server_process> server_;
};

using history = archive;
using rollback = archive;

TEST_F(history, of_a_new_queue_is_empty)
{
    EXPECT_EQ(apconf("history").output, "no message has been handled yet\n");
    EXPECT_EQ(apconf("history --json").output, "[]\n");
    EXPECT_EQ(apconf("history -n 0").status, 2);
}

TEST_F(history, tells_who_changed_how_much_and_what_became_of_it)
{
    apply({R"({"MODULE":"one","ACTION":"set","config":{"hostname_cmd":{"hostname":"a"},)"
           R"("vlan":[{"INDEX":{"vlan_id":"1"},"dhcp_cmd":{"type":"relay"}},)"
           R"({"INDEX":{"vlan_id":"2"},"dhcp_cmd":{"type":"relay"}}]}})",
           R"({"MODULE":"two","ACTION":"set","config":{"hostname_cmd":{"hostname":"b"},"nothing_cmd":{}}})",
           R"({"MODULE":"th\u001bree","ACTION":"set","config":{"nothing_cmd":{},"neither_cmd":{}}})", "[]",
           R"({"ACTION":"set","config":{"vlan":{"INDEX":{"vlan_id":"2",".OPT":"no"}},"hostname_cmd":{".OPT":"no"}}})"});
    const json_ptr list(json_tokener_parse(apconf("history --json").output.c_str()));
    std::vector<std::string> rows;
    for (size_t i = 0; i < json_object_array_length(list.get()); ++i) {
        json_object *row = json_object_array_get_idx(list.get(), i);
        EXPECT_NEAR(static_cast<double>(json_object_get_int64(member(row, "time"))), static_cast<double>(time(nullptr)),
                    60);
        json_object_object_del(row, "time");
        rows.push_back(json_object_to_json_string_ext(row, JSON_C_TO_STRING_PLAIN));
    }
    EXPECT_THAT(rows, ElementsAre(R"({"number":1,"sender":"one","changes":3,"refusals":0,"result":"applied"})",
                                  R"({"number":2,"sender":"two","changes":1,"refusals":1,"result":"in part"})",
                                  R"({"number":3,"sender":"th?ree","changes":0,"refusals":2,"result":"refused"})",
                                  R"({"number":4,"sender":"UNKNOWN","changes":0,"refusals":1,"result":"refused"})",
                                  R"({"number":5,"sender":"UNKNOWN","changes":2,"refusals":0,"result":"applied"})"));

    const auto lines = lines_of(apconf("history -n 2").output);
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_THAT(lines[0], StartsWith("  NUMBER  TIME"));
    EXPECT_THAT(lines[1], testing::MatchesRegex("       4  2[0-9-]+ [0-9:]+        0  refused  UNKNOWN"));
    EXPECT_THAT(lines[2], testing::MatchesRegex("       5  2[0-9-]+ [0-9:]+        2  applied  UNKNOWN"));
    EXPECT_EQ(lines_of(apconf("history").output).size(), 6u);
}

TEST_F(history, does_not_guess_what_changed_against_a_configuration_that_is_gone)
{
    apply({queued_hostname_message("a"), queued_hostname_message("b"), queued_hostname_message("c")});
    std::filesystem::remove(old_file(1));
    const std::string output = apconf("history --json").output;
    EXPECT_THAT(output, HasSubstr(R"("number":2)"));
    EXPECT_THAT(output, HasSubstr(R"("changes":null)"));
    EXPECT_THAT(lines_of(apconf("history").output)[1], HasSubstr("       -  applied"));
}

TEST_F(history, shows_an_undone_commit_and_its_undo)
{
    apply({queued_hostname_message("first")});
    ASSERT_EQ(apconf("commit --confirm 1 -", R"({"config":{"hostname_cmd":{"hostname":"second"}}})").output, "2\n");
    ASSERT_TRUE(server_->wait_for_log("applied message 3 from apconfd"));
    const auto lines = lines_of(apconf("history").output);
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_THAT(lines[2], HasSubstr("1  undone   apconf"));
    EXPECT_THAT(lines[3], HasSubstr("1  applied  apconfd"));
    expect_rollback(2);
    EXPECT_EQ(hostname_of_server(), "second");
}

TEST_F(rollback, is_one_message_that_changes_only_what_differs)
{
    apply(
        {R"({"MODULE":"x","ACTION":"set","config":{"hostname_cmd":{"hostname":"a"},"wdt_cmd":{"status":"enable"}}})",
         R"({"MODULE":"x","ACTION":"set","config":{"hostname_cmd":{"hostname":"b"},"log_size_cmd":{"size":"512"}}})"});
    EXPECT_EQ(apconf("rollback 1").output, "3\n");
    EXPECT_EQ(configuration_of_server(), configuration_in(1));
    EXPECT_EQ(read_file(CMQ_MAX_INDEX), "4 ");
    EXPECT_THAT(server_->log(), HasSubstr("applied message 3 from apconf: 2 changes, 0 refusals"));
    const tool_result again = apconf("rollback 1");
    EXPECT_EQ(again.status, 0);
    EXPECT_EQ(again.output, "");
    EXPECT_EQ(again.errors, "apconf: configuration 1 is what is running\n");
    EXPECT_EQ(read_file(CMQ_MAX_INDEX), "4 ");
}

TEST_F(rollback, to_what_is_not_archived_says_what_is)
{
    EXPECT_EQ(apconf("rollback 7").errors, "apconf: configuration 7 is not archived; none is archived\n");
    apply({queued_hostname_message("a")});
    EXPECT_EQ(apconf("rollback 7").errors, "apconf: configuration 7 is not archived; only 1 is\n");
    apply({queued_hostname_message("b"), queued_hostname_message("c")});
    const tool_result result = apconf("rollback 7");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "apconf: configuration 7 is not archived; archived are 1 to 3\n");
    EXPECT_EQ(apconf("rollback 0").status, 2);
    EXPECT_EQ(apconf("rollback all").status, 2);
}

TEST_F(rollback, queues_nothing_when_the_archive_is_damaged_or_does_not_hold_what_the_schema_allows)
{
    apply({queued_hostname_message("a"), queued_hostname_message("b")});
    write_file(old_file(1), "{\"config\": 7}");
    EXPECT_EQ(apconf("rollback 1").errors, "apconf: archived configuration 1 is damaged: it has no \"config\"\n");
    write_file(old_file(1), R"({"config": {"hostname_cmd": {"hostname": "a"}, "log_size_cmd": {"size": "99999999"}}})");
    EXPECT_THAT(apconf("rollback 1").errors, HasSubstr("config/log_size_cmd: size '99999999' refused"));
    // Accepted, but no server reports it so.
    write_file(old_file(1), R"({"config": {"hostname_cmd": {"hostname": "a"}, "log_size_cmd": {"size": "0x200"}}})");
    EXPECT_THAT(apconf("rollback 1").errors, HasSubstr("cannot be restored exactly by this version"));
    EXPECT_EQ(apconf("rollback 1").status, 1);
    EXPECT_EQ(read_file(CMQ_MAX_INDEX), "3 ");
    EXPECT_EQ(hostname_of_server(), "b");
}

TEST_F(rollback, to_an_empty_configuration_removes_everything)
{
    apply({R"({"MODULE":"x","ACTION":"set","config":{}})", queued_hostname_message("b")});
    expect_rollback(1);
    EXPECT_EQ(configuration_of_server(), with_nul("{}"));
    expect_rollback(2);
}

TEST_F(rollback, says_so_when_something_changed_in_between)
{
    apply({queued_hostname_message("a"), queued_hostname_message("b")});
    // Waits in the queue, and nobody has told the server.
    ASSERT_EQ(append(R"({"MODULE":"x","ACTION":"set","config":{"wdt_cmd":{"status":"enable"}}})"), 3);
    const tool_result result = apconf("rollback 1");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "4\n");
    EXPECT_THAT(result.errors,
                HasSubstr("message 4 was applied to another configuration than the one it was made for"));
    expect_rollback(1);
}

TEST_F(rollback, without_a_server_fails_and_queues_nothing)
{
    apply({queued_hostname_message("a"), queued_hostname_message("b")});
    server_->kill();
    const tool_result result = apconf("rollback 1");
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, HasSubstr("there is no configuration server"));
    EXPECT_EQ(read_file(CMQ_MAX_INDEX), "3 ");
}

// The law: whatever was configured, the configuration is that of the archive again, byte for byte.
TEST_F(rollback, leads_back_to_random_configurations)
{
    register_root_cmd(lib_pkg_root);
    ASSERT_EQ(command_tree_parser(), 0);
    std::vector<std::string> messages;
    for (unsigned seed = 1; seed <= 10; ++seed) {
        random_message random(seed, seed * 29 % 100);
        messages.push_back(json_object_to_json_string(random.make().get()));
    }
    apply(messages);
    std::mt19937 random(1);
    for (int step = 0; step < 30; ++step) {
        expect_rollback(1 + static_cast<int>(random() % 10));
        if (HasFatalFailure()) return;
    }
}

}  // namespace

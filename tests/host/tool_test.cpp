// apconf as it ships, run as a process: beside a running server and without one.
#include "host/tool_process.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "host/host_test.h"

namespace
{

namespace fs = std::filesystem;
using apconf_test::apconf;
using apconf_test::content;
using apconf_test::tool;
using apconf_test::tool_with_server;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

using result = apconf_test::tool_result;

TEST_F(tool, usage_mistakes_end_with_2_and_say_what_is_wrong)
{
    EXPECT_EQ(apconf("").status, 2);
    EXPECT_EQ(apconf("get").status, 2);
    EXPECT_EQ(apconf("set ntp/status_cmd status").status, 2);
    EXPECT_THAT(apconf("set ntp/status_cmd status").errors, HasSubstr("'status' is not of the form KEY=VALUE"));
    EXPECT_EQ(apconf("queue show nothing").status, 2);
    EXPECT_EQ(apconf("--nothing").status, 2);
    EXPECT_EQ(apconf("get 'radio[0'").status, 2);
    const result misspelt = apconf("gett ntp");
    EXPECT_EQ(misspelt.status, 2);
    EXPECT_THAT(misspelt.errors, StartsWith("apconf: 'gett' is no command; perhaps 'get'\n"));
}

TEST_F(tool, help_of_every_command_has_an_example)
{
    for (const char *command : {"get", "set", "no", "commit", "confirm", "rollback", "save", "history", "watch",
                                "queue", "queue list", "queue show"}) {
        const result help = apconf(std::string(command) + " --help");
        EXPECT_EQ(help.status, 0) << command;
        EXPECT_THAT(help.output, HasSubstr("Example: ")) << command;
        EXPECT_EQ(help.errors, "") << command;
    }
    EXPECT_EQ(apconf("--version").output, "apconf " APCONF_VERSION "\n");
}

TEST_F(tool, checks_path_keys_and_values_before_it_looks_for_a_server)
{
    const std::pair<const char *, const char *> lines[] = {
        {"set ntp/status_cmd status=maybe",
         "apconf: config/ntp/status_cmd: status 'maybe' refused: accepted is one of enable, disable\n"},
        {"set ntp/status_cmd stat=enable", "apconf: config/ntp/status_cmd: stat refused: accepted is the key status\n"},
        {"set ntp/status_cmd", "apconf: config/ntp/status_cmd refused: accepted is the key status\n"},
        {"get ntp/status",
         "apconf: config/ntp/status refused: accepted is a command of config/ntp, perhaps "
         "status_cmd\n"},
        {"get ntp/status_cmd/x",
         "apconf: config/ntp/status_cmd/x refused: accepted is config/ntp/status_cmd, which is "
         "a command with nothing below it\n"},
        {"get 'ntp[1]/status_cmd'",
         "apconf: config/ntp: '1' refused: accepted is config/ntp without an instance; there is only one\n"},
        {"set 'radio[2]/txpower_cmd' txpower=1",
         "apconf: config/radio: radio_id '2' refused: accepted is a UINT from 0 to 1\n"},
        {"set radio/txpower_cmd txpower=1",
         "apconf: config/radio: radio_id refused: accepted is a UINT from 0 to 1, which must be given\n"},
        {"set 'radio[0]/txpower_cmd' radio_id=1 txpower=1",
         "apconf: config/radio/txpower_cmd: radio_id '1' refused: accepted is one instance, and '0' has been given\n"},
        {"set password_cmd password=",
         "apconf: config/password_cmd: password '***' refused: accepted is a text of 1 "
         "to 128 characters\n"},
        {"no config", "apconf: config: 'no' refused: accepted is the removal of a package or command below it\n"},
    };
    for (const auto &[arguments, errors] : lines) {
        const result refused = apconf(arguments);
        EXPECT_EQ(refused.status, 1) << arguments;
        EXPECT_EQ(refused.errors, errors);
        EXPECT_EQ(refused.output, "");
    }
}

TEST_F(tool, says_that_there_is_no_server)
{
    const result failed = apconf("get ntp");
    EXPECT_EQ(failed.status, 1);
    EXPECT_THAT(failed.errors, StartsWith("apconf: there is no configuration server at /tmp/config_cmd_sock"));
}

TEST_F(tool, queues_a_batch_whole_or_not_at_all)
{
    EXPECT_THAT(apconf("commit -", "{\"config\":{}}").errors, HasSubstr("there is no queue to write to"));
    make_queue();
    const result refused = apconf("commit -", R"({"config":{"hostname_cmd":{"hostname":"ap"},"password_cmd":)"
                                              R"({"password":""},"ntpp":{}}})");
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.errors,
              "apconf: config/ntpp refused: accepted is a command of config, perhaps ntp\n"
              "apconf: config/password_cmd: password '***' refused: accepted is a text of 1 to 128 "
              "characters\n");
    EXPECT_EQ(get_message_index(CMQ_MAX_INDEX), 7);

    EXPECT_EQ(apconf("commit -", "{\"config\":{}}").errors, "apconf: -: the batch changes nothing\n");
    EXPECT_EQ(get_message_index(CMQ_MAX_INDEX), 7);

    const result queued = apconf("commit -", R"({"config":{"hostname_cmd":{"hostname":"ap"}}})");
    EXPECT_EQ(queued.status, 0);
    EXPECT_EQ(queued.output, "7\n");
    EXPECT_THAT(queued.errors, HasSubstr("the server could not be told; it applies message 7 when it starts"));
    EXPECT_EQ(get_message_index(CMQ_MAX_INDEX), 8);
}

TEST_F(tool, names_the_line_where_a_batch_is_no_json)
{
    make_queue();
    EXPECT_THAT(apconf("commit -", "{\"config\":\n{\"hostname_cmd\":}}").errors, StartsWith("apconf: -, line 2: "));
    EXPECT_THAT(apconf("commit -", "{\"config\":{}}\n{}").errors, HasSubstr("line 2"));
    EXPECT_THAT(apconf("commit /tmp/none").errors, StartsWith("apconf: /tmp/none: cannot be read"));
    EXPECT_EQ(apconf("commit -", "").status, 1);
}

TEST_F(tool, shows_the_queue_without_its_secrets)
{
    make_queue();
    std::ofstream(CMQ_NEW_DIR "/6.json") << R"({"MODULE":"me","config":{"password_cmd":{"password":"hush"}}})";
    std::ofstream(CMQ_NEW_DIR "/5.json") << R"({"MODULE":"you"})";
    std::ofstream(CMQ_BAD_DIR "/5.txt") << "config/x refused\n";
    std::ofstream(CMQ_OLD_DIR "/4.json") << "{}";
    const std::string list = apconf("queue").output;
    EXPECT_THAT(list, testing::ContainsRegex("6  pending .* me\n"));
    EXPECT_THAT(list, testing::ContainsRegex("5  handled .* you\n"));
    EXPECT_THAT(list, testing::ContainsRegex("5  refused "));
    EXPECT_THAT(list, testing::ContainsRegex("4  applied "));
    EXPECT_EQ(apconf("queue list").output, list);
    EXPECT_THAT(apconf("queue show 6").output, HasSubstr(R"("password": "***")"));
    EXPECT_THAT(apconf("queue show 6 --secrets").output, HasSubstr(R"("password": "hush")"));
    EXPECT_THAT(apconf("queue show 5").output, HasSubstr("config/x refused\n"));
    EXPECT_THAT(apconf("queue --json").output, HasSubstr(R"({"number":5,"state":"refused","time":)"));
    EXPECT_EQ(apconf("queue list --json").output, apconf("queue --json").output);
    EXPECT_THAT(apconf("queue show 5 --json").output, HasSubstr(R"("reasons":["config/x refused"]}])"));
    EXPECT_THAT(apconf("queue show 6 --json").output, HasSubstr(R"("password":"***")"));
    EXPECT_THAT(apconf("queue show 6 --json --secrets").output, HasSubstr(R"("password":"hush")"));
    EXPECT_EQ(apconf("queue show 9").status, 1);
}

TEST_F(tool_with_server, sets_reads_back_and_removes)
{
    EXPECT_EQ(apconf("get ntp").output, "null\n");
    EXPECT_EQ(apconf("set 'config/radio[0]/bss[1]/ssid_cmd' ssid='two words'").status, 0);
    EXPECT_EQ(apconf("get radio/bss/ssid_cmd radio_id=0 wlan_id=1").output, "{\n  \"ssid\": \"two words\"\n}\n");
    EXPECT_EQ(apconf("get --json 'radio[0]/bss[1]/ssid_cmd'").output,
              R"({"config":{"radio":{"INDEX":{"radio_id":"0"},"bss":{"INDEX":{"wlan_id":"1"},)"
              R"("ssid_cmd":{"ssid":"two words"}}}}})"
              "\n");
    EXPECT_EQ(apconf("no 'radio[0]/bss[1]/ssid_cmd'").status, 0);
    EXPECT_EQ(apconf("get 'radio[0]/bss[1]/ssid_cmd'").output, "null\n");
}

TEST_F(tool_with_server, handles_lists_flags_values_and_objects)
{
    EXPECT_EQ(apconf("set 'radio[0]/shutdown_cmd'").status, 0);
    EXPECT_EQ(apconf("no 'radio[0]/shutdown_cmd'").status, 0);
    EXPECT_EQ(apconf("set 'radio[0]/bss[0]/supported_rates_cmd' supported_rates=12 supported_rates=24").status, 0);
    EXPECT_EQ(apconf("set 'radio[0]/txpower_cmd' txpower=0x10").errors, "") << "another way to write 16";
    EXPECT_EQ(apconf("set 'vlan[7]/dhcp_cmd' type=server pool_name=guests").status, 0);
    EXPECT_THAT(apconf("get vlan").output, HasSubstr("guests"));
    EXPECT_EQ(apconf("no 'vlan[7]'").status, 0);
    EXPECT_EQ(apconf("get vlan").output, "null\n");
    EXPECT_EQ(apconf("set ism_cmd ism='{\"a\":[1]}'").status, 0);
    EXPECT_EQ(apconf("set log_server_cmd ip=10.0.0.1 facility=all").status, 0);
    EXPECT_EQ(apconf("set log_server_cmd ip=10.0.0.2 facility=all").status, 0);
    EXPECT_EQ(apconf("no log_server_cmd ip=10.0.0.1").status, 0);
    EXPECT_THAT(apconf("get log_server_cmd").output, Not(HasSubstr("10.0.0.1")));
}

TEST_F(tool_with_server, says_when_a_set_did_not_take)
{
    EXPECT_EQ(apconf("set dpi/report_server_cmd type=ip ip=10.0.0.1").status, 0);
    // Valid in itself; only the server knows that its address type is ip.
    const result refused = apconf("set dpi/report_server_cmd domain=a.example");
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.errors, StartsWith("apconf: config/dpi/report_server_cmd: the server did not take it"));
    EXPECT_THAT(refused.errors, HasSubstr("10.0.0.1"));
}

TEST_F(tool_with_server, shows_secrets_only_when_asked)
{
    EXPECT_EQ(apconf("set password_cmd password=hush-hush").status, 0);
    EXPECT_THAT(apconf("get password_cmd").output, HasSubstr("***"));
    EXPECT_THAT(apconf("get password_cmd --json").output, Not(HasSubstr("hush")));
    EXPECT_THAT(apconf("get password_cmd --secrets").output, HasSubstr("hush-hush"));
}

TEST_F(tool_with_server, a_committed_batch_is_what_the_server_then_shows)
{
    const result queued = apconf("commit -", R"({"config":{"hostname_cmd":{"hostname":"ap-12"}}})");
    EXPECT_EQ(queued.status, 0);
    EXPECT_EQ(queued.errors, "");
    std::string shown;
    for (int i = 0; i < 100 && shown.find("ap-12") == std::string::npos; ++i) {
        shown = apconf("get hostname_cmd").output;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    EXPECT_THAT(shown, HasSubstr("ap-12"));
}

}  // namespace

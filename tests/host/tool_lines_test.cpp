// apconf show, convert, apply and diff as processes: configurations as command lines and back.
#include <chrono>
#include <fstream>
#include <thread>

#include "host/tool_process.h"

namespace
{

using apconf_test::apconf;
using apconf_test::content;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

constexpr const char *two_radios =
    "hostname \"lobby ap\"\n"
    "password \"tell nobody\"\n"
    "radio 0\n"
    " channel 6\n"
    " bss 0\n"
    "  ssid Guests\n"
    "radio 1\n"
    " channel 36\n";

class tool_lines : public apconf_test::tool
{
};

class tool_lines_with_server : public apconf_test::tool_with_server
{
protected:
    // Applies lines and waits until the server runs them.
    static void configure(const std::string &lines)
    {
        const auto applied = apconf("apply -", lines);
        ASSERT_EQ(applied.errors, "");
        ASSERT_EQ(applied.status, 0);
        const std::string archived = "/tmp/cmessage_queue/old/" + std::to_string(std::stoi(applied.output)) + ".json";
        for (int i = 0; i < 200 && !std::ifstream(archived); ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        ASSERT_TRUE(std::ifstream(archived)) << archived;
    }
};

TEST_F(tool_lines, convert_prints_lines_and_apply_makes_the_same_message_of_them)
{
    std::ofstream("/tmp/message") << R"({"ACTION": "set", "config": {"hostname_cmd": {"hostname": "a b"},
        "radio": {"INDEX": {"radio_id": "1"}, "channel_cmd": {"channel": "36"}}}})";
    const auto lines = apconf("convert /tmp/message");
    EXPECT_EQ(lines.status, 0) << lines.errors;
    EXPECT_EQ(lines.output, "hostname \"a b\"\nradio 1\n channel 36\n");
    EXPECT_EQ(apconf("convert -", content("/tmp/message")).output, lines.output);
    const auto message = apconf("apply --dry-run --json -", lines.output);
    EXPECT_EQ(message.status, 0) << message.errors;
    EXPECT_EQ(message.output, R"({"config":{"hostname_cmd":{"hostname":"a b"},"radio":{"INDEX":{"radio_id":"1"},)"
                              R"("channel_cmd":{"channel":"36"}}}})"
                              "\n");
}

TEST_F(tool_lines, convert_tells_what_no_line_says_and_ends_with_1)
{
    const auto lines = apconf("convert -", R"({"config": {"hostname_cmd": {"hostname": "a"}, "nothing_cmd": {}}})");
    EXPECT_EQ(lines.status, 1);
    EXPECT_EQ(lines.output, "hostname a\n");
    EXPECT_EQ(lines.errors, "apconf: config/nothing_cmd: no line says {}: the vocabulary does not have it\n");
    const auto json =
        apconf("convert --json -", R"({"config": {"hostname_cmd": {"hostname": "a"}, "nothing_cmd": {}}})");
    EXPECT_EQ(json.output, R"({"lines":["hostname a"],"left_out":[{"path":"config/nothing_cmd","value":"{}",)"
                           R"("reason":"the vocabulary does not have it"}]})"
                           "\n");
}

TEST_F(tool_lines, files_that_cannot_be_read_are_named)
{
    for (const char *command : {"convert /nothing", "apply /nothing", "diff /nothing /nothing"}) {
        const auto failed = apconf(command);
        EXPECT_EQ(failed.status, 1) << command;
        EXPECT_EQ(failed.errors, "apconf: /nothing: cannot be read\n") << command;
    }
    EXPECT_THAT(apconf("convert -", "{\"config\":\n nonsense}").errors, StartsWith("apconf: -, line 2: "));
    EXPECT_EQ(apconf("diff 77 78").errors,
              "apconf: there is no archived configuration 77; 'apconf history' lists them\n");
}

TEST_F(tool_lines, apply_names_every_faulty_line_with_file_line_and_column_and_queues_nothing)
{
    make_queue();
    std::ofstream("/tmp/ap.conf") << "hostname a\nradio 0\n channel fast\n txpower 3 4\nhostnam b\n";
    const auto applied = apconf("apply /tmp/ap.conf");
    EXPECT_EQ(applied.status, 1);
    EXPECT_EQ(applied.output, "");
    EXPECT_THAT(applied.errors, StartsWith("/tmp/ap.conf:3:10: 'fast' does not fit; expected is one of 1, 2, 3, "));
    EXPECT_THAT(applied.errors, HasSubstr("\n/tmp/ap.conf:4:12: '4' does not fit; expected is the end of the line\n"));
    EXPECT_THAT(applied.errors, HasSubstr("\n/tmp/ap.conf:5:1: 'hostnam' does not fit; "));
    EXPECT_EQ(content("/tmp/cmessage_queue/new/.max_index"), "7 ");
}

TEST_F(tool_lines, apply_places_what_the_block_refuses_at_its_line)
{
    make_queue();
    std::string lines = "hostname a\nradio 0\n";
    for (int i = 0; i < 9; ++i) lines += " time-range daily from " + std::to_string(i) + " to 100\n";
    const auto applied = apconf("apply -", lines);
    EXPECT_EQ(applied.status, 1);
    EXPECT_THAT(applied.errors, StartsWith("-:3: config/radio[0]/time_range_cmd"));
    EXPECT_THAT(applied.errors, HasSubstr("accepted is at most 8 entries; remove one first\n"));
    EXPECT_EQ(content("/tmp/cmessage_queue/new/.max_index"), "7 ");
}

TEST_F(tool_lines, without_a_server_show_says_so)
{
    const auto shown = apconf("show");
    EXPECT_EQ(shown.status, 1);
    EXPECT_THAT(shown.errors, StartsWith("apconf: there is no configuration server at /tmp/config_cmd_sock"));
}

TEST_F(tool_lines_with_server, what_was_applied_is_shown_and_secrets_only_when_asked_for)
{
    configure(two_radios);
    const auto shown = apconf("show");
    EXPECT_EQ(shown.status, 0);
    EXPECT_EQ(shown.errors, "");
    EXPECT_THAT(shown.output, HasSubstr("radio 0\n channel 6\n bss 0\n  ssid Guests\nradio 1\n channel 36\n"));
    EXPECT_THAT(shown.output, HasSubstr("hostname \"lobby ap\"\n"));
    EXPECT_THAT(shown.output, HasSubstr("password ***\n"));
    EXPECT_THAT(apconf("show --secrets").output, HasSubstr("password \"tell nobody\"\n"));
    EXPECT_THAT(apconf("show --json").output, Not(HasSubstr("tell nobody")));
    EXPECT_THAT(apconf("show --json --secrets").output, HasSubstr("tell nobody"));
    EXPECT_EQ(apconf("show 'radio[1]'").output, "radio 1\n channel 36\n");
    EXPECT_EQ(apconf("show 'radio[0]/bss[0]/ssid_cmd'").output, "radio 0\n bss 0\n  ssid Guests\n");
}

TEST_F(tool_lines_with_server, what_is_shown_without_secrets_is_not_committed_over_them)
{
    configure(two_radios);
    std::ofstream("/tmp/shown.json") << apconf("show --json").output;
    const auto refused = apconf("commit /tmp/shown.json");
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.errors,
              "apconf: config/password_cmd: password: '***' refused: accepted is the secret itself; it was not shown, "
              "--secrets shows it\n");
    EXPECT_THAT(apconf("show --secrets").output, HasSubstr("password \"tell nobody\"\n"));
}

TEST_F(tool_lines_with_server, what_is_shown_can_be_applied_again_and_changes_nothing)
{
    configure(two_radios);
    const auto shown = apconf("show --secrets");
    const auto again = apconf("apply -", shown.output);
    EXPECT_EQ(again.status, 0);
    EXPECT_EQ(again.output, "");
    EXPECT_EQ(again.errors, "apconf: -: this is how it is configured; nothing was queued\n");
    configure("no hostname\nno password\nradio 0\n no channel\n no bss 0\nradio 1\n no channel\n");
    EXPECT_EQ(apconf("show").output, "");
    configure(shown.output);
    EXPECT_EQ(apconf("show --secrets").output, shown.output);
    EXPECT_EQ(apconf("apply -", apconf("show").output).status, 1) << "hidden secrets are refused, not set";
}

TEST_F(tool_lines_with_server, what_is_not_there_needs_no_removal)
{
    configure("hostname a\nvlan 5\n");
    const auto nothing = apconf("apply -", "no vlan 17\nno country-code\n");
    EXPECT_EQ(nothing.status, 0);
    EXPECT_EQ(nothing.output, "");
    configure("no vlan 5\nno hostname\n");
    EXPECT_EQ(apconf("show").output, "");
}

TEST_F(tool_lines_with_server, diff_compares_running_archived_and_written_configurations)
{
    configure(two_radios);
    configure("radio 0\n channel 11\nno hostname\nhostname bar\npassword other\n");
    const auto changed = apconf("diff 1");
    EXPECT_EQ(changed.status, 0) << changed.errors;
    EXPECT_THAT(changed.output, StartsWith("--- archived 1\n+++ running\n"));
    EXPECT_THAT(changed.output, HasSubstr(" radio 0\n- channel 6\n+ channel 11\n"));
    EXPECT_THAT(changed.output, HasSubstr("-hostname \"lobby ap\"\n-password ***\n+hostname bar\n+password ***\n"));
    EXPECT_THAT(changed.output, Not(HasSubstr("channel 36")));
    EXPECT_THAT(changed.output, Not(HasSubstr("\033")));
    EXPECT_THAT(apconf("diff --secrets 1").output,
                HasSubstr("-password \"tell nobody\"\n+hostname bar\n+password other\n"));
    EXPECT_EQ(apconf("diff --exit-code 1").status, 1);

    std::ofstream("/tmp/before") << apconf("show --secrets").output;
    EXPECT_THAT(apconf("diff /tmp/before").output, IsEmpty());
    EXPECT_EQ(apconf("diff --exit-code /tmp/before running").status, 0);
    EXPECT_EQ(apconf("diff 2 2 --json").output, R"({"before":"archived 2","after":"archived 2","changes":[]})"
                                                "\n");
    EXPECT_THAT(apconf("diff --json 1").output, HasSubstr(R"({"sign":"+","line":" channel 11"})"));
}

}  // namespace

// A session without its terminal: the place, the candidate, commit, show and pipes.
#include "shell/session_test.h"

#include "host/tool/problem.h"

namespace
{

using apconf_test::session_test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class session : public session_test
{
};

TEST_F(session, the_prompt_shows_the_place_and_whether_changes_are_uncommitted)
{
    EXPECT_EQ(session_->prompt(), "apconf> ");
    execute("radio 0");
    EXPECT_EQ(session_->prompt(), "apconf(radio 0)> ");
    execute("bss 1");
    EXPECT_EQ(session_->prompt(), "apconf(radio 0, bss 1)> ");
    execute("ssid lobby");
    EXPECT_EQ(session_->prompt(), "apconf(radio 0, bss 1)*> ");
    execute("exit");
    EXPECT_EQ(session_->prompt(), "apconf(radio 0)*> ");
    execute("bss 2");
    execute("end");
    EXPECT_EQ(session_->prompt(), "apconf*> ");
    execute("commit");
    EXPECT_EQ(session_->prompt(), "apconf> ");
}

TEST_F(session, a_line_of_an_outer_package_leaves_the_inner_ones)
{
    paste("radio 0\nbss 1");
    EXPECT_EQ(execute("channel 11"), "");
    EXPECT_EQ(session_->prompt(), "apconf(radio 0)*> ");
    EXPECT_EQ(execute("hostname lobby"), "");
    EXPECT_EQ(session_->prompt(), "apconf*> ");
}

TEST_F(session, exit_at_the_top_and_quit_end_it)
{
    execute("radio 0");
    execute("exit");
    EXPECT_FALSE(session_->ended());
    execute("exit");
    EXPECT_TRUE(session_->ended());
    session_->stay();
    EXPECT_FALSE(session_->ended());
    execute("radio 0");
    execute("quit");
    EXPECT_TRUE(session_->ended());
}

TEST_F(session, commit_hands_the_lines_over_as_one_batch)
{
    paste("hostname lobby\nradio 0\nchannel 11\nbss 1\nssid \"two words\"\nno hidden-ssid");
    EXPECT_EQ(execute("commit"), "message 7 is applied\n");
    EXPECT_THAT(access_point_.batches,
                ElementsAre(R"({"config":{"hostname_cmd":{"hostname":"lobby"},"radio":{"INDEX":{"radio_id":"0"},)"
                            R"("channel_cmd":{"channel":"11"},"bss":{"INDEX":{"wlan_id":"1"},)"
                            R"("ssid_cmd":{"ssid":"two words"},"hidden_ssid_cmd":{".OPT":"no"}}}}})"));
    EXPECT_FALSE(session_->has_changes());
    EXPECT_EQ(session_->prompt(), "apconf(radio 0, bss 1)> ") << "it stays where it stood";
    EXPECT_EQ(execute("ssid next"), "");
    execute("commit");
    EXPECT_EQ(access_point_.batches.at(1),
              R"({"config":{"radio":{"INDEX":{"radio_id":"0"},"bss":{"INDEX":{"wlan_id":"1"},)"
              R"("ssid_cmd":{"ssid":"next"}}}}})");
}

TEST_F(session, a_package_that_was_only_entered_is_no_change)
{
    paste("radio 0\nbss 1\nend\nradio 1");
    EXPECT_FALSE(session_->has_changes());
    EXPECT_EQ(changes(), "");
    EXPECT_EQ(execute("commit"), "There are no changes to commit.\n");
    EXPECT_THAT(access_point_.batches, IsEmpty());
    execute("channel 36");
    EXPECT_EQ(changes(), "radio 1\n channel 36\n");
    execute("commit");
    EXPECT_THAT(access_point_.batches,
                ElementsAre(R"({"config":{"radio":{"INDEX":{"radio_id":"1"},"channel_cmd":{"channel":"36"}}}})"));
}

TEST_F(session, what_cannot_be_committed_stays_in_the_candidate)
{
    execute("hostname lobby");
    access_point_.failure = "there is no queue to write to";
    EXPECT_EQ(execute("commit"), "there is no queue to write to\n");
    EXPECT_EQ(changes(), "hostname lobby\n");
    access_point_.failure.reset();
    EXPECT_EQ(execute("commit"), "message 7 is applied\n");
    EXPECT_EQ(changes(), "");
}

TEST_F(session, says_what_the_schema_refuses_of_a_batch)
{
    class refusing : public apconf_test::noting_access_point
    {
        apconf_host::committed commit(json_object *) override
        {
            throw apconf_host::refused_by_schema({{"config/hostname_cmd", "hostname", "x", "a text"}, {}});
        }
    } access_point;
    apconf_host::session refused(*vocabulary_, access_point);
    refused.execute("hostname lobby");
    const auto reply = refused.execute("commit");
    ASSERT_TRUE(reply.wrong);
    EXPECT_FALSE(reply.wrong->column);
    EXPECT_THAT(reply.wrong->text,
                StartsWith("not committed:\nconfig/hostname_cmd: hostname 'x' refused: accepted is a text\n"));
    EXPECT_TRUE(refused.has_changes());
}

TEST_F(session, a_batch_that_the_server_refused_in_part_is_no_candidate_any_more)
{
    execute("hostname lobby");
    access_point_.answer = {"message 8 is applied but for what the server refused:\nconfig/x", true};
    EXPECT_EQ(execute("commit"), "message 8 is applied but for what the server refused:\nconfig/x\n");
    EXPECT_FALSE(session_->has_changes()) << "it would be queued twice";
}

TEST_F(session, a_commit_can_wait_to_be_confirmed)
{
    execute("hostname lobby");
    EXPECT_EQ(execute("commit confirm 60"), "message 7 is applied\n");
    EXPECT_EQ(access_point_.seconds, 60);
    EXPECT_FALSE(session_->has_changes());
    EXPECT_EQ(execute("confirm"), "message 7 is confirmed\n");
    access_point_.failure = "there is nothing to confirm";
    EXPECT_EQ(execute("confirm"), "there is nothing to confirm\n");
    EXPECT_EQ(execute("commit confirm"), "               ^\nthe line is not complete; expected is <1-86400>\n");
    for (const char *wrong : {"0", "86401", "-1", "soon", "60s"})
        EXPECT_EQ(execute(std::string("commit confirm ") + wrong),
                  std::string("               ^\n'") + wrong + "' does not fit; expected is <1-86400>\n");
}

TEST_F(session, discard_forgets_the_candidate)
{
    paste("radio 0\nchannel 11");
    EXPECT_EQ(execute("discard"), "");
    EXPECT_FALSE(session_->has_changes());
    EXPECT_EQ(session_->prompt(), "apconf(radio 0)> ");
}

TEST_F(session, show_changes_names_what_is_removed_and_hides_secrets)
{
    paste("no hostname\nradio 0\nno channel\nbss 0\nauth-open-wpa2\nwpa2 psk ccmp key secret-phrase");
    EXPECT_EQ(changes(), "no hostname\nradio 0\n no channel\n bss 0\n  auth-open-wpa2\n   wpa2 psk ccmp key ***\n");
}

TEST_F(session, removing_a_package_does_not_enter_it)
{
    EXPECT_EQ(execute("no vlan 5"), "");
    EXPECT_EQ(session_->prompt(), "apconf*> ");
    EXPECT_EQ(changes(), "no vlan 5\n");
}

TEST_F(session, a_faulty_line_changes_nothing_and_shows_the_place)
{
    execute("radio 0");
    EXPECT_THAT(execute("channel fast"),
                StartsWith("        ^\n'fast' does not fit; expected is one of 1, 2, 3, 4, 5, "));
    EXPECT_THAT(execute("  channel fast"), StartsWith("          ^\n'fast' does not fit"));
    EXPECT_THAT(execute("beacon-interval 5000"), HasSubstr("a UINT from 20 to 1000 (interval)"));
    EXPECT_THAT(execute("channel"), StartsWith("        ^\nthe line is not complete; expected is one of 1, "));
    EXPECT_THAT(execute("channel \"6"), StartsWith("        ^\nthe quote is not closed"));
    EXPECT_EQ(execute("channal 6"), "^\n'channal' is no command here; perhaps 'channel'\n");
    EXPECT_EQ(execute("shwo"), "^\n'shwo' is no command here; perhaps 'show'\n");
    EXPECT_EQ(execute("xyzzyxyzzy"), "^\n'xyzzyxyzzy' is no command here; ? shows what can stand there\n");
    EXPECT_FALSE(session_->has_changes());
    EXPECT_EQ(session_->prompt(), "apconf(radio 0)> ");
}

TEST_F(session, a_faulty_line_does_not_repeat_a_secret)
{
    paste("radio 0\nbss 0\nauth-open-wpa2");
    EXPECT_EQ(execute("wpa2 psk ccmp key short"),
              "                  ^\n'***' does not fit; expected is a text of 8 to 64 characters (key)\n");
}

TEST_F(session, a_secret_that_was_not_shown_is_not_taken_for_one)
{
    paste("radio 0\nbss 0\nauth-open-wpa2");
    EXPECT_THAT(execute("radius acct-server 192.0.2.1 key ***"),
                StartsWith("                                 ^\n'***' does not fit"));
    EXPECT_EQ(execute("radius acct-server 192.0.2.1 key \"***\""), "") << "whoever means it writes it so";
}

TEST_F(session, nothing_is_committed_of_a_text_with_a_faulty_line)
{
    EXPECT_THAT(paste("hostname lobby\nchannel\nhostname hall\nend\ncommit"),
                HasSubstr("not committed: a line before was refused"));
    EXPECT_THAT(access_point_.batches, IsEmpty());
    EXPECT_EQ(paste("discard\nhostname hall\ncommit"), "message 7 is applied\n");
    paste("hostname lobby\nchannel");
    session_->pause();  // whoever typed has seen the answer
    EXPECT_EQ(paste("commit"), "message 7 is applied\n");
}

TEST_F(session, a_nul_byte_is_no_text)
{
    const auto reply = session_->execute(std::string("hostname lob\0by", 15));
    ASSERT_TRUE(reply.wrong);
    EXPECT_EQ(reply.wrong->column, 12u);
    EXPECT_FALSE(session_->has_changes());
    EXPECT_THAT(paste("hostname hall\ncommit"), StartsWith("not committed: a line before was refused"));
}

TEST_F(session, blank_lines_and_comments_say_nothing)
{
    EXPECT_EQ(paste("\n   \n! a remark\n# another"), "");
    EXPECT_FALSE(session_->has_changes());
}

TEST_F(session, show_prints_what_is_in_force_below_the_place)
{
    access_point_.configuration["config"] =
        "{'config':{'hostname_cmd':{'hostname':'two words'},'radio':{'INDEX':{'radio_id':'0'},'channel_cmd':"
        "{'channel':'6'}},'ntp':{}}}";
    access_point_.configuration["config/radio[0]/bss[1]"] =
        "{'config':{'radio':{'INDEX':{'radio_id':'0'},'bss':{'INDEX':{'wlan_id':'1'},'ssid_cmd':{'ssid':'lobby'},"
        "'auth_open_wpa2':{'wpa_type_cmd':{'type':'psk','cipher':'ccmp','key_type':'ascii','key':'secret-phrase'}}}}}}";
    EXPECT_EQ(execute("show"), "hostname \"two words\"\nradio 0\n channel 6\n");
    paste("radio 0\nbss 1");
    EXPECT_EQ(execute("show"), "ssid lobby\nauth-open-wpa2\n wpa2 psk ccmp key *** key-type ascii\n");
    EXPECT_THAT(execute("show json"), StartsWith("{\n  \"config\": {\n    \"radio\": {\n      \"INDEX\": {"));
    EXPECT_THAT(execute("show json"), HasSubstr("\"key\": \"***\""));
    execute("bss 2");
    EXPECT_EQ(execute("show"), "") << "nothing is configured there";
    EXPECT_THAT(access_point_.asked, ElementsAre("config", "config/radio[0]/bss[1]", "config/radio[0]/bss[1]",
                                                 "config/radio[0]/bss[1]", "config/radio[0]/bss[2]"));
}

TEST_F(session, what_no_line_can_say_is_shown_as_a_remark)
{
    access_point_.configuration["config"] =
        "{'config':{'led_control_cmd':{'status':'normal'},'moon_cmd':{'phase':'full'}}}";
    const std::string shown = execute("show");
    EXPECT_THAT(shown, HasSubstr("led normal\n"));
    EXPECT_THAT(
        shown,
        HasSubstr("\n! no line can say config/moon_cmd {\"phase\":\"full\"}: the vocabulary does not have it\n"));
    EXPECT_EQ(paste(shown), "") << "and can be pasted";
    EXPECT_EQ(changes(), "led normal\n");
}

TEST_F(session, a_server_that_is_gone_costs_no_changes)
{
    execute("hostname lobby");
    access_point_.failure = "there is no configuration server";
    EXPECT_EQ(execute("show"), "there is no configuration server\n");
    EXPECT_EQ(changes(), "hostname lobby\n");
}

TEST_F(session, pipes_choose_lines)
{
    access_point_.configuration["config"] =
        "{'config':{'hostname_cmd':{'hostname':'lobby'},'radio':[{'INDEX':{'radio_id':'0'},'channel_cmd':{'channel':"
        "'6'},'txpower_cmd':{'txpower':'20'}},{'INDEX':{'radio_id':'1'},'channel_cmd':{'channel':'36'}}]}}";
    EXPECT_EQ(execute("show | include channel"), " channel 6\n channel 36\n");
    EXPECT_EQ(execute("show | include host|txp"), "hostname lobby\n txpower 20\n");
    EXPECT_EQ(execute("show | include \"channel 3\""), " channel 36\n");
    EXPECT_EQ(execute("show | exclude ^.r|channel [0-9]+$"), "hostname lobby\nradio 0\n txpower 20\nradio 1\n");
    EXPECT_EQ(execute("show | begin txpower"), " txpower 20\nradio 1\n channel 36\n");
    EXPECT_EQ(execute("show | begin txpower | exclude radio | include [36]6"), " channel 36\n");
    EXPECT_EQ(execute("show | include nothing"), "");
    execute("hostname hall");
    EXPECT_EQ(execute("show changes | include ha.l"), "hostname hall\n");
}

TEST_F(session, a_bad_pipe_is_named)
{
    EXPECT_EQ(execute("show | include ("), "               ^\n'(' is no regular expression: Unmatched ( or \\(\n");
    EXPECT_EQ(execute("show | sort"), "       ^\n'sort' does not fit; expected is include, exclude or begin\n");
    EXPECT_EQ(execute("show |"), "       ^\nthe line is not complete; expected is include, exclude or begin\n");
    EXPECT_EQ(execute("show | begin "), "             ^\nthe line is not complete; expected is REGEX\n");
    EXPECT_EQ(execute("commit | include x"),
              "       ^\n'|' does not fit; expected is the end of the line or confirm\n");
    EXPECT_EQ(execute("show everything"),
              "     ^\n'everything' does not fit; expected is the end of the line, |, changes or json\n");
    EXPECT_THAT(access_point_.asked, IsEmpty());
}

TEST_F(session, remembers_lines_but_none_with_a_secret)
{
    session_->remember({"hostname earlier"});
    paste(
        "radio 0\nbss 0\nauth-open-wpa2\nwpa2 psk ccmp key secret-phrase\nwpa2 psk ccmp key short\nchannal 7\n"
        "end\nshow changes | include x");
    EXPECT_EQ(execute("history"), "hostname earlier\nradio 0\nbss 0\nauth-open-wpa2\nend\nshow changes | include x\n");
    EXPECT_EQ(execute("history | include host"), "hostname earlier\n");
    EXPECT_TRUE(session_->execute("channel").wrong);
    EXPECT_FALSE(session_->execute("channel").keepable);
    EXPECT_FALSE(session_->execute("password hush").keepable);
    EXPECT_TRUE(session_->execute("hostname lobby").keepable);
}

TEST_F(session, help_tells_every_command_of_the_session)
{
    const std::string help = execute("help");
    for (const apconf_host::own_command &command : apconf_host::own_commands()) {
        std::string row = "\n ";
        for (const std::string &word : command.words) row += " " + word;
        EXPECT_THAT(help, HasSubstr(row + " "));
    }
}

}  // namespace

// Command lines make messages: by indentation as a file, by what is known as a session.
#include "cli/cli_test.h"

namespace
{

using apconf_host::line_reader;
using apconf_host::read_lines;
using apconf_test::text_of;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class reading_lines : public apconf_test::cli_test
{
};

TEST_F(reading_lines, indentation_says_which_package_a_line_belongs_to)
{
    EXPECT_EQ(read("radio 0\n"
                   " bss 1\n"
                   "  shutdown\n"
                   " shutdown\n"
                   "radio 1\n"
                   " channel 36\n"),
              R"({"config":{"radio":[{"INDEX":{"radio_id":"0"},"bss":{"INDEX":{"wlan_id":"1"},"shutdown_cmd":{}},)"
              R"("shutdown_cmd":{}},{"INDEX":{"radio_id":"1"},"channel_cmd":{"channel":"36"}}]}})");
}

TEST_F(reading_lines, a_flat_text_is_read_like_a_session)
{
    EXPECT_EQ(read("radio 0\nbss 1\nshutdown\nexit\nshutdown\nhostname ap\nend\ncountry-code DE\n"),
              R"({"config":{"radio":{"INDEX":{"radio_id":"0"},"bss":{"INDEX":{"wlan_id":"1"},"shutdown_cmd":{}},)"
              R"("shutdown_cmd":{}},"hostname_cmd":{"hostname":"ap"},"country_code_cmd":{"code":"DE"}}})");
}

TEST_F(reading_lines, an_instance_that_is_entered_again_is_continued)
{
    EXPECT_EQ(
        read("radio 0\n channel 6\nradio 1\n channel 36\nradio 0\n txpower 10\n"),
        R"({"config":{"radio":[{"INDEX":{"radio_id":"0"},"channel_cmd":{"channel":"6"},"txpower_cmd":{"txpower":"10"}},)"
        R"({"INDEX":{"radio_id":"1"},"channel_cmd":{"channel":"36"}}]}})");
}

TEST_F(reading_lines, what_stands_before_a_removal_is_not_continued_behind_it)
{
    EXPECT_EQ(
        read("radio 0\n bss 1\n  ssid a\n no bss 1\n bss 1\n  ssid b\n"),
        R"({"config":{"radio":{"INDEX":{"radio_id":"0"},"bss":[{"INDEX":{"wlan_id":"1"},"ssid_cmd":{"ssid":"a"}},)"
        R"({"INDEX":{"wlan_id":"1",".OPT":"no"}},{"INDEX":{"wlan_id":"1"},"ssid_cmd":{"ssid":"b"}}]}}})");
}

TEST_F(reading_lines, repeated_commands_are_kept_in_order)
{
    EXPECT_EQ(
        read("radio 0\n bss 0\n  access-list\n   no mac-acl\n   mac-acl 02:00:00:00:00:01\n"
             "   no mac-acl 02:00:00:00:00:02\n"),
        R"({"config":{"radio":{"INDEX":{"radio_id":"0"},"bss":{"INDEX":{"wlan_id":"0"},"access_list":{"mac_acl_cmd":)"
        R"([{".OPT":"noall"},{"mac":"02:00:00:00:00:01"},{"mac":"02:00:00:00:00:02",".OPT":"no"}]}}}}})");
}

TEST_F(reading_lines, several_values_are_one_word_with_commas)
{
    EXPECT_EQ(read("ethernet 1\n switchport trunk vlan 10,20\n"),
              R"({"config":{"ethernet":{"INDEX":{"eth_id":"1"},"switchport_cmd":{"switchport_type":"trunk",)"
              R"("vlanid":["10","20"]}}}})");
    EXPECT_THAT(read("ethernet 1\n switchport trunk vlan 10,,20\n"), HasSubstr("2:24: '10,,20' does not fit"));
    EXPECT_THAT(read("ethernet 1\n switchport trunk vlan 10,5000\n"), HasSubstr("2:24: '10,5000' does not fit"));
}

TEST_F(reading_lines, a_quoted_word_is_a_value_and_never_a_command)
{
    EXPECT_EQ(read("hostname \"no\"\n"), R"({"config":{"hostname_cmd":{"hostname":"no"}}})");
    EXPECT_THAT(read("\"hostname\" ap\n"), HasSubstr("1:1: 'hostname' does not fit"));
}

TEST_F(reading_lines, every_faulty_line_is_named_with_its_column_and_what_was_expected)
{
    EXPECT_EQ(read("radio 0\n"
                   " beacon-interval 5\n"
                   " txpower\n"
                   " txpower 10 20\n"
                   "hostname \"ap\n"
                   "     shutdown\n"),
              "2:18: '5' does not fit; expected is a UINT from 20 to 1000 (interval)\n"
              "3:10: the line is not complete; expected is a UINT from 0 to 36 (txpower)\n"
              "4:13: '20' does not fit; expected is the end of the line\n"
              "5:10: the quote is not closed\n"
              "6:6: the line is indented by 5 blanks; expected is at most 1: one for each package around it\n");
}

TEST_F(reading_lines, a_misspelt_word_gets_the_nearest_one)
{
    EXPECT_THAT(read("radio 0\n chanel 6\n"), HasSubstr("2:2: 'chanel' does not fit; expected is "));
    EXPECT_THAT(read("radio 0\n chanel 6\n"), HasSubstr("; perhaps 'channel'"));
    EXPECT_THAT(read("radio 7\n"), HasSubstr("1:7: '7' does not fit; expected is a UINT from 0 to 1 (radio_id)"));
}

TEST_F(reading_lines, a_faulty_text_makes_no_message)
{
    const auto result = read_lines(words(), "hostname a\nhostnam b\nhostname c\n");
    EXPECT_FALSE(result.message);
    ASSERT_EQ(result.problems.size(), 1u);
    EXPECT_EQ(result.problems[0].line, 2u);
}

TEST_F(reading_lines, the_mark_of_a_hidden_secret_is_not_taken_for_the_secret)
{
    EXPECT_THAT(read("password ***\n"), HasSubstr("*** stands for a secret that was not shown, --secrets shows it"));
    EXPECT_THAT(read("hostname ***\n"), HasSubstr(R"("hostname":"***")"));
}

TEST_F(reading_lines, lines_know_which_command_they_were)
{
    const auto result = read_lines(words(), "radio 1\n channel 36\n! a comment\n\nno hostname\n");
    EXPECT_THAT(result.sources, ElementsAre(std::pair<std::string, size_t>("config/radio[1]", 1),
                                            std::pair<std::string, size_t>("config/radio[1]/channel_cmd", 2),
                                            std::pair<std::string, size_t>("config/hostname_cmd", 5)));
}

TEST_F(reading_lines, a_session_leaves_inner_packages_for_what_only_outer_ones_know)
{
    line_reader reader(words());
    ASSERT_FALSE(reader.read("radio 0"));
    ASSERT_FALSE(reader.read("bss 1"));
    EXPECT_THAT(reader.place(), ElementsAre("radio 0", "bss 1"));
    ASSERT_FALSE(reader.read("bss 2"));
    EXPECT_THAT(reader.place(), ElementsAre("radio 0", "bss 2"));
    ASSERT_FALSE(reader.read("channel 1"));
    EXPECT_THAT(reader.place(), ElementsAre("radio 0"));
    EXPECT_TRUE(reader.read("bss 99"));
    EXPECT_THAT(reader.place(), ElementsAre("radio 0")) << "a faulty line moves nothing";
    ASSERT_FALSE(reader.read("end"));
    EXPECT_THAT(reader.place(), IsEmpty());
    ASSERT_FALSE(reader.read("exit"));
    EXPECT_THAT(reader.place(), IsEmpty());
}

TEST_F(reading_lines, entering_packages_alone_says_nothing_but_an_element_of_a_list_is_made)
{
    line_reader reader(words());
    EXPECT_TRUE(reader.empty());
    reader.read("radio 0");
    reader.read("bss 1");
    EXPECT_TRUE(reader.empty());
    reader.read("vlan 5");
    EXPECT_FALSE(reader.empty());
    EXPECT_EQ(
        text_of(reader.take().get()),
        R"({"config":{"radio":{"INDEX":{"radio_id":"0"},"bss":{"INDEX":{"wlan_id":"1"}}},"vlan":{"INDEX":{"vlan_id":"5"}}}})");
    EXPECT_TRUE(reader.empty());
    reader.read("no vlan 5");
    EXPECT_FALSE(reader.empty());
}

TEST_F(reading_lines, what_was_taken_is_gone_and_the_place_stays)
{
    line_reader reader(words());
    reader.read("radio 0");
    reader.read("channel 1");
    reader.take();
    EXPECT_TRUE(reader.empty());
    ASSERT_FALSE(reader.read("txpower 3"));
    EXPECT_EQ(text_of(reader.take().get()),
              R"({"config":{"radio":{"INDEX":{"radio_id":"0"},"txpower_cmd":{"txpower":"3"}}}})");
}

TEST_F(reading_lines, rubbish_is_refused_and_nothing_else_happens)
{
    std::string rubbish;
    for (int i = 1; i < 256; ++i) rubbish += static_cast<char>(i);
    EXPECT_THAT(read(rubbish), HasSubstr("does not fit"));
    EXPECT_THAT(read(std::string(100000, 'x')), HasSubstr("does not fit"));
    EXPECT_THAT(read("hostname " + std::string(100000, 'x')), HasSubstr("does not fit"));
}

}  // namespace

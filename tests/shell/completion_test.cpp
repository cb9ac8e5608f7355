// What Tab types and what ? shows.
#include "shell/session_test.h"

namespace
{

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class completion : public apconf_test::session_test
{
};

class inline_help : public apconf_test::session_test
{
protected:
    std::string help(const std::string &line) { return session_->inline_help(line); }
};

TEST_F(completion, types_the_rest_of_a_word)
{
    EXPECT_EQ(tab("hostn"), "ame ");
    EXPECT_EQ(tab("hostname"), " ");
    EXPECT_EQ(tab("  hostn"), "ame ");
    EXPECT_EQ(tab("no hostn"), "ame ");
    EXPECT_EQ(tab("disc"), "ard ");
}

TEST_F(completion, types_what_all_candidates_share_then_shows_them)
{
    execute("radio 0");
    EXPECT_EQ(tab("vht"), "-");
    EXPECT_EQ(tab("vht-"), "vht-max-ampdu vht-short-gi");
    EXPECT_EQ(tab("e"), "end ethernet exit") << "exit and end are the session's own";
    EXPECT_EQ(tab("rf-optimization "),
              "handoff-assist kick-assist low-rssi-threshold rssi-check-count "
              "rssi-check-interval");
    EXPECT_EQ(tab("xyz"), "");
}

TEST_F(completion, knows_the_values_of_a_type)
{
    execute("radio 0");
    EXPECT_EQ(tab("short-gi "), "enable disable");
    EXPECT_EQ(tab("short-gi e"), "nable ");
    EXPECT_EQ(tab("channel 16"), "161 165");
    EXPECT_EQ(tab("channel 1"), "1 10 11 12 13 100 104 108 112 116 120 124 128 132 136 140 144 149 153 157 161 165")
        << "in the order of the type";
}

TEST_F(completion, of_a_line_that_may_end_types_nothing_unasked)
{
    EXPECT_EQ(tab("show "), "changes json |");
    EXPECT_EQ(tab("show c"), "hanges ");
}

TEST_F(completion, knows_the_pipes)
{
    EXPECT_EQ(tab("show |"), " ");
    EXPECT_EQ(tab("show | "), "begin exclude include");
    EXPECT_EQ(tab("show changes | in"), "clude ");
    EXPECT_THAT(tab("show | include "), StartsWith("  REGEX  "));
    EXPECT_EQ(tab("discard "), "  <cr>  end of the line\n");
    EXPECT_EQ(tab("commit confirm "), "  <1-86400>  Seconds\n");
}

TEST_F(completion, looks_further_out_for_what_the_innermost_package_does_not_know)
{
    paste("radio 0\nbss 1");
    EXPECT_EQ(tab("beacon-i"), "nterval ");
    EXPECT_EQ(tab("hostn"), "ame ");
    EXPECT_EQ(tab("ss"), "id") << "the words of the innermost package hide those further out";
}

TEST_F(completion, leaves_quotes_alone)
{
    EXPECT_EQ(tab("hostname \"hostn"), "");
    EXPECT_EQ(tab("\"hostn\""), "");
}

TEST_F(completion, shows_the_help_of_a_value_of_ones_own)
{
    EXPECT_THAT(tab("hostname "), StartsWith("  STRING<"));
}

TEST_F(completion, goes_on_behind_a_comma)
{
    paste("radio 0\nbss 0");
    EXPECT_EQ(tab("supported-rates 6,"), "6,1 6,2 6,5 6,6 6,9 6,11 6,12 6,18 6,24 6,36 6,48 6,54");
    EXPECT_EQ(tab("supported-rates 6,3"), "6 ");
}

TEST_F(inline_help, shows_token_range_default_and_text)
{
    execute("radio 0");
    EXPECT_EQ(help("beacon-interval "), "  <20-1000>  Time in units of 1024 microseconds; default 100\n");
    EXPECT_EQ(help("beacon-interval 2"), help("beacon-interval "));
    EXPECT_EQ(help("bss "), "  <0-15>  Number of the BSS, 0 to 15\n");
    EXPECT_THAT(help("short-gi "), StartsWith("  (enable|disable)  "));
}

TEST_F(inline_help, lists_the_values_that_begin_as_typed)
{
    execute("radio 0");
    EXPECT_EQ(help("channel 16"), "  CHANNEL  Number of a 20 MHz channel, for example 6 or 36; one of 161, 165\n");
    EXPECT_THAT(help("channel "), HasSubstr("one of 1, 2, 3, 4,\n           5, 6, 7, "));
}

TEST_F(inline_help, shows_where_a_line_may_end)
{
    EXPECT_EQ(help("hostname lobby "), "  <cr>  end of the line\n");
    EXPECT_EQ(help("show | begin x "), "  |     Choose how the output is filtered\n  <cr>  end of the line\n");
    EXPECT_THAT(help("hostname lobby"), Not(HasSubstr("<cr>"))) << "the cursor is still in the word";
}

TEST_F(inline_help, lists_commands_with_their_texts)
{
    execute("radio 0");
    EXPECT_EQ(help("ti"),
              "  time-option  Keep to the time ranges, or be on the air at all times\n"
              "  time-range   Add a time range during which the network is on the air\n");
    const std::string all = help("");
    EXPECT_THAT(all, StartsWith("  ampdu "));
    EXPECT_THAT(all, HasSubstr("\n  commit                   Apply the pending configuration changes\n"));
    EXPECT_THAT(all, HasSubstr("\n  no                       Negate a command or restore its default\n"));
    EXPECT_THAT(all, Not(HasSubstr("hostname"))) << "that of the innermost package";
    EXPECT_THAT(help("no "), Not(HasSubstr("commit"))) << "a command of the session has no such form";
}

TEST_F(inline_help, breaks_long_texts_at_the_window_s_width)
{
    session_->set_width(40);
    execute("radio 0");
    EXPECT_EQ(help("time-r"),
              "  time-range  Add a time range during\n              which the network is on\n"
              "              the air\n");
}

TEST_F(inline_help, says_when_nothing_fits)
{
    EXPECT_EQ(help("hostname a b "), "  nothing fits here: what stands before is no command\n");
    EXPECT_EQ(help("xyz"), "  nothing fits here: what stands before is no command\n");
}

}  // namespace

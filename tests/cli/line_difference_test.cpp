// What changed between two texts of command lines.
#include "host/cli/line_difference.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using apconf_host::compared_lines;

std::string difference(const compared_lines &before, const compared_lines &after)
{
    std::string text;
    for (const auto &change : apconf_host::line_difference(before, after)) text += change.sign + change.text + "\n";
    return text;
}

std::string difference(const std::string &before, const std::string &after)
{
    return difference({before, before}, {after, after});
}

TEST(line_difference, equal_texts_have_none)
{
    EXPECT_EQ(difference("", ""), "");
    EXPECT_EQ(difference("radio 0\n channel 6\n", "radio 0\n channel 6\n"), "");
}

TEST(line_difference, changed_lines_stand_below_their_packages_only)
{
    EXPECT_EQ(difference("hostname a\nradio 0\n channel 6\n bss 0\n  ssid a\nradio 1\n channel 36\n",
                         "hostname a\nradio 0\n channel 11\n bss 0\n  ssid a\nradio 1\n channel 36\n"),
              " radio 0\n- channel 6\n+ channel 11\n");
}

TEST(line_difference, a_package_that_comes_or_goes_brings_all_its_lines)
{
    EXPECT_EQ(difference("vlan 5\n dhcp client\nvlan 6\n", "vlan 6\nvlan 7\n dhcp none\n"),
              "-vlan 5\n- dhcp client\n+vlan 7\n+ dhcp none\n");
}

TEST(line_difference, a_moved_line_is_one_out_and_one_in)
{
    EXPECT_EQ(difference("a\nb\nc\n", "b\nc\na\n"), "-a\n+a\n");
}

TEST(line_difference, equal_lines_of_other_packages_are_other_lines)
{
    EXPECT_EQ(difference("radio 0\n shutdown\n", "radio 1\n shutdown\n"),
              "-radio 0\n- shutdown\n+radio 1\n+ shutdown\n");
}

TEST(line_difference, hidden_values_are_compared_and_not_shown)
{
    EXPECT_EQ(
        difference(compared_lines{"password a\n", "password ***\n"}, compared_lines{"password b\n", "password ***\n"}),
        "-password ***\n+password ***\n");
    EXPECT_EQ(
        difference(compared_lines{"password a\n", "password ***\n"}, compared_lines{"password a\n", "password ***\n"}),
        "");
}

}  // namespace

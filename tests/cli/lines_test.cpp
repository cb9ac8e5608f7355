// Messages become command lines, each of which says all of its command, and the lines become the same messages again.
#include <regex>
#include <set>

#include "cli/cli_test.h"
#include "host/random_message.h"
#include "host/secrets.h"

namespace
{

using apconf_host::json_ptr;
using apconf_host::member;
using apconf_host::secrets;
using apconf_host::tidied;
using apconf_host::to_lines;
using apconf_test::parse;
using apconf_test::text_of;
using testing::ElementsAre;
using testing::IsEmpty;

class lines : public apconf_test::cli_test
{
protected:
    std::string of(const std::string &message, secrets secrets = secrets::shown) const
    {
        return to_lines(words(), parse(message).get(), secrets).text;
    }

    std::vector<std::string> left_out(const std::string &message, secrets secrets = secrets::shown) const
    {
        std::vector<std::string> result;
        for (const auto &unsaid : to_lines(words(), parse(message).get(), secrets).left_out)
            result.push_back(unsaid.path + " " + unsaid.value + ": " + unsaid.reason);
        return result;
    }
};

TEST_F(lines, packages_indent_their_commands_by_one_blank)
{
    EXPECT_EQ(of("{'config': {'hostname_cmd': {'hostname': 'ap'}, 'radio': [{'INDEX': {'radio_id': '0'},"
                 "'channel_cmd': {'channel': '6'}, 'bss': {'INDEX': {'wlan_id': '1'}, 'ssid_cmd': {'ssid': 'a'},"
                 "'wmm': {'status_cmd': {'status': 'enable'}}}}, {'INDEX': {'radio_id': '1'}, 'shutdown_cmd': {}}]}}"),
              "hostname ap\n"
              "radio 0\n"
              " channel 6\n"
              " bss 1\n"
              "  ssid a\n"
              "  wmm\n"
              "   status enable\n"
              "radio 1\n"
              " shutdown\n");
}

TEST_F(lines, a_value_with_blanks_or_quotes_stands_in_quotes)
{
    EXPECT_EQ(of(R"({'config': {'hostname_cmd': {'hostname': 'my \"own\" ap'}}})"), "hostname \"my \\\"own\\\" ap\"\n");
}

TEST_F(lines, several_values_are_joined_by_commas)
{
    EXPECT_EQ(
        of("{'config': {'ethernet': {'INDEX': {'eth_id': 2}, 'switchport_cmd': {'switchport_type': 'trunk', 'vlanid': "
           "['7', '9']}}}}"),
        "ethernet 2\n switchport trunk vlan 7,9\n");
}

TEST_F(lines, removals_begin_with_no)
{
    EXPECT_EQ(
        of("{'config': {'hostname_cmd': {'.OPT': 'no'}, 'vlan': {'INDEX': {'vlan_id': '5', '.OPT': 'no'}},"
           "'radio': {'INDEX': {'radio_id': '0'}, 'bss': {'INDEX': {'wlan_id': '3'}, 'access_list': {'mac_acl_cmd':"
           "[{'.OPT': 'noall'}, {'mac': '02:00:00:00:00:01'}]}}}}}"),
        "no hostname\n"
        "no vlan 5\n"
        "radio 0\n"
        " bss 3\n"
        "  access-list\n"
        "   no mac-acl\n"
        "   mac-acl 02:00:00:00:00:01\n");
}

TEST_F(lines, a_single_command_message_reads_like_the_whole_tree_one)
{
    EXPECT_EQ(of("{'CPATH': {'path': '/config/radio/bss/ssid_cmd', 'param': {'radio_id': '0', 'wlan_id': '1', 'ssid': "
                 "'x'}}}"),
              "radio 0\n bss 1\n  ssid x\n");
    EXPECT_EQ(of("{'CPATH': {'path': '/config/vlan', 'param': {'vlan_id': '4', '.OPT': 'no'}}}"), "no vlan 4\n");
    EXPECT_EQ(
        of("{'CPATH': {'path': '/config/radio/bss/access_list/mac_acl_cmd', 'param': [{'radio_id': '0', 'wlan_id': '1',"
           "'mac': '02:00:00:00:00:01'}, {'radio_id': '0', 'wlan_id': '1', '.OPT': 'noall'}]}}"),
        "radio 0\n bss 1\n  access-list\n   mac-acl 02:00:00:00:00:01\n"
        "radio 0\n bss 1\n  access-list\n   no mac-acl\n");
    EXPECT_THAT(left_out("{'CPATH': {'path': '/config/nothing', 'param': {}}}"),
                ElementsAre("/config/nothing {}: the vocabulary does not have it"));
}

TEST_F(lines, what_no_line_says_is_told_with_its_path_and_the_reason)
{
    EXPECT_THAT(
        left_out("{'config': {'hostname_cmd': {}, 'nothing_cmd': {'a': 1}, 'radio': {'channel_cmd': {'channel': '1'}},"
                 "'country_code_cmd': 7}}"),
        ElementsAre("config/hostname_cmd {}: hostname is missing",
                    "config/nothing_cmd {\"a\":1}: the vocabulary does not have it",
                    "config/radio {\"channel_cmd\":{\"channel\":\"1\"}}: it does not say which one",
                    "config/country_code_cmd 7: it is no object"));
    EXPECT_THAT(left_out("{'config': {'radio': {'INDEX': {'radio_id': '0'}, 'channel_cmd': {'channel': '1000'}}}}"),
                ElementsAre("config/radio[0]/channel_cmd {\"channel\":\"1000\"}: a value is none that the line takes"));
    EXPECT_THAT(left_out("{'config': []}"), ElementsAre("config []: it is no object"));
    EXPECT_THAT(left_out("{}"), ElementsAre("config null: it is no object"));
}

TEST_F(lines, a_line_that_says_only_a_part_is_printed_and_the_rest_told)
{
    const std::string message = "{'config': {'hostname_cmd': {'hostname': 'ap', 'domain': 'example'}}}";
    EXPECT_EQ(of(message), "hostname ap\n");
    EXPECT_THAT(left_out(message),
                ElementsAre("config/hostname_cmd {\"hostname\":\"ap\",\"domain\":\"example\"}: a line with "
                            "the rest has no place for domain"));
}

TEST_F(lines, hidden_secrets_are_stars_also_in_what_is_left_out)
{
    const std::string message = "{'config': {'password_cmd': {'password': 'tell nobody'}}}";
    EXPECT_EQ(of(message, secrets::hidden), "password ***\n");
    EXPECT_EQ(of(message), "password \"tell nobody\"\n");
    const std::string incomplete = "{'config': {'password_cmd': {'password': 'tell nobody', 'more': 'x'}}}";
    EXPECT_THAT(
        left_out(incomplete, secrets::hidden),
        ElementsAre("config/password_cmd {\"password\":\"***\",\"more\":\"x\"}: a line with the rest has no place for "
                    "more"));
}

TEST_F(lines, a_tidied_configuration_has_only_what_is_set)
{
    const json_ptr tidy =
        tidied(parse("{'config': {'hostname_cmd': {'hostname': 'ap'}, 'nat': {}, 'radio': [{'INDEX': "
                     "{'radio_id': '0'}}, {'INDEX': {'radio_id': '1'}, 'bss': {'INDEX': {'wlan_id': '0'},"
                     "'shutdown_cmd': {'.OPT': 'no'}, 'access_list': {'mac_acl_cmd': [{'.OPT': 'noall'}]},"
                     "'passpoint_ie': {'internet_cmd': {'.OPT': 'no'}}}}], 'vlan': {'INDEX': {'vlan_id': "
                     "'5'}}}}")
                   .get());
    EXPECT_EQ(
        text_of(tidy.get()),
        R"({"config":{"hostname_cmd":{"hostname":"ap"},"radio":{"INDEX":{"radio_id":"1"},"bss":{"INDEX":{"wlan_id":"0"},)"
        R"("shutdown_cmd":{".OPT":"no"}}},"vlan":{"INDEX":{"vlan_id":"5"}}}})");
    EXPECT_EQ(text_of(tidied(parse("{}").get()).get()), R"({"config":{}})");
}

// Every command of a message with its arguments, by its path with instances.
void flatten(const cmd_node &node, json_object *object, const std::string &path, const std::set<std::string> &except,
             std::vector<std::string> &commands)
{
    json_object_object_foreach(object, name, value)
    {
        cmd_node *child = search_child_cmd(const_cast<cmd_node *>(&node), name);
        int cursor = 0;
        while (json_object *single = child ? get_json_obj(value, &cursor) : nullptr) {
            const std::string here = (path.empty() ? "" : path + "/") + name;
            if (child->children) {
                json_object *index = member(single, "INDEX");
                const std::string instance = here + apconf_host::in_brackets(index);
                commands.push_back(instance + (index ? text_of(index) : ""));
                flatten(*child, single, instance, except, commands);
            } else if (!except.contains(here)) {
                commands.push_back(here + text_of(single));
            }
        }
    }
}

class identity : public lines, public testing::WithParamInterface<bool>
{
protected:
    // A random configuration as a server reports it, or a random batch as its owner queues it.
    json_ptr random_message(unsigned seed)
    {
        apconf_host::release_configuration();
        apconf_test::random_message random(seed, 2 + seed % 30);
        const json_ptr asked = random.make();
        apconf_host::outcome outcome;
        outcome.as = GetParam() ? apconf_host::role::batch : apconf_host::role::server;
        apconf_host::apply_message(asked.get(), outcome);
        if (!GetParam()) return json_ptr(apconf_host::running_configuration());
        apconf_host::commit_batch();
        int index = 0;
        json_ptr message(cmq_fetch_a_message(&index));
        json_object_object_del(message.get(), "MODULE");
        json_object_object_del(message.get(), "ACTION");
        return message;
    }
};

TEST_P(identity, a_thousand_random_messages_come_back_but_for_what_was_said_to_be_left_out)
{
    unsigned whole = 0;
    size_t commands = 0;
    std::set<std::string> unsayable;
    for (unsigned seed = 0; seed < 1000; ++seed) {
        const json_ptr message = random_message(seed);
        const auto said = to_lines(words(), message.get());
        const std::string back = read(said.text);
        if (said.left_out.empty()) {
            ++whole;
            ASSERT_EQ(back, text_of(message.get())) << "seed " << seed << "\n" << said.text;
        }
        std::set<std::string> except;
        for (const auto &unsaid : said.left_out) {
            except.insert(unsaid.path);
            unsayable.insert(std::regex_replace(unsaid.path, std::regex(R"(\[.*?\])"), ""));
        }
        std::vector<std::string> before;
        std::vector<std::string> after;
        flatten(*get_cmd_tree(), message.get(), "", except, before);
        flatten(*get_cmd_tree(), json_ptr(json_tokener_parse(back.c_str())).get(), "", except, after);
        ASSERT_EQ(after, before) << "seed " << seed << "\n" << said.text;
        commands += before.size();
    }
    EXPECT_GT(whole, 100u);
    EXPECT_GT(commands, 100000u);
    // An entry needs its own category's code points only, and not every suite allows every cipher.
    EXPECT_THAT(unsayable, testing::Each(testing::AnyOf(testing::EndsWith("/wmm/ac_dscp_map_cmd"),
                                                        testing::EndsWith("/wpa_type_cmd"))));
}

INSTANTIATE_TEST_SUITE_P(messages, identity, testing::Bool(),
                         [](const auto &kind) { return kind.param ? "batches" : "configurations"; });

}  // namespace

// What is known about a command, put together: complete for every command, and right for those of each manner.
#include <algorithm>

#include "cli/cli_test.h"
#include "host/cli/facts.h"
#include "host/cli/listing.h"

namespace
{

using apconf_host::command_facts;
using apconf_host::extent;
using apconf_host::facts_of;
using apconf_host::key_facts;
using apconf_host::syntax_command;
using testing::ElementsAre;
using testing::IsEmpty;

class facts : public apconf_test::cli_test
{
protected:
    void SetUp() override
    {
        cli_test::SetUp();
        load_help_map(APCONF_SOURCE_DIR "/etc/cmd_tree_help.txt");
    }
    void TearDown() override
    {
        free_help_map();
        cli_test::TearDown();
    }

    const syntax_command &command(const std::string &path) { return find(words().config(), path); }
    command_facts of(const std::string &path) { return facts_of(words(), command("config/" + path)); }

    static const syntax_command &find(const syntax_command &package, const std::string &path)
    {
        for (const auto &below : package.below)
            if (path == below->path || path.starts_with(below->path + "/")) return find(*below, path);
        EXPECT_EQ(package.path, path);
        return package;
    }
};

void expect_complete(const apconf_host::vocabulary &words, const syntax_command &command)
{
    SCOPED_TRACE(command.path);
    const command_facts known = facts_of(words, command);
    EXPECT_EQ(known.path, command.path);
    EXPECT_FALSE(known.help.empty() || known.help.starts_with("HELP_"));
    EXPECT_EQ(known.set_lines.size(), 1U);
    EXPECT_EQ(known.no_lines.size(), command.has_no ? 1U : 0U);
    EXPECT_FALSE(known.removal.empty() || known.reported.empty());
    for (const key_facts &key : known.keys) {
        EXPECT_FALSE(key.help.empty() || key.help.starts_with("HELP_")) << key.key;
        EXPECT_GE(get_ptype_by_name(key.ptype.c_str()), 0) << key.key;
        EXPECT_NE(key.accepted, "") << key.key;
    }
    for (const auto &below : command.below) expect_complete(words, *below);
}

TEST_F(facts, are_complete_for_every_command)
{
    expect_complete(words(), words().config());
}

TEST_F(facts, of_a_single_value)
{
    const command_facts ssid = of("radio/bss/ssid_cmd");
    EXPECT_THAT(ssid.set_lines, ElementsAre("ssid STRING1-32"));
    EXPECT_THAT(ssid.no_lines, ElementsAre("no ssid"));
    EXPECT_THAT(ssid.instances, ElementsAre("radio_id", "wlan_id"));
    EXPECT_EQ(ssid.entries, 0U);
    EXPECT_EQ(ssid.removal, "makes it unset");
    EXPECT_EQ(ssid.reported, "the keys that differ");
    ASSERT_EQ(ssid.keys.size(), 1U);
    EXPECT_EQ(ssid.keys[0].accepted, "a text of 1 to 32 characters");
    EXPECT_FALSE(ssid.keys[0].secret || ssid.keys[0].optional || ssid.keys[0].selects);
}

TEST_F(facts, of_a_list)
{
    const command_facts acl = of("radio/bss/access_list/mac_acl_cmd");
    EXPECT_EQ(acl.entries, 256U);
    EXPECT_EQ(acl.removal, "removes the entries that it names, all when it names none");
    EXPECT_TRUE(acl.keys.at(0).selects);
}

TEST_F(facts, of_packages)
{
    EXPECT_EQ(of("radio").entries, 2U);
    EXPECT_EQ(of("radio").removal, "not on the command line");
    EXPECT_THAT(of("radio").instances, IsEmpty());
    EXPECT_THAT(of("radio/bss").instances, ElementsAre("radio_id"));
    EXPECT_EQ(of("radio/bss").removal, "makes everything in the instance unset");
    EXPECT_EQ(of("dhcp_server/pool").entries, 64U);
    EXPECT_EQ(of("dhcp_server/pool").removal, "removes the instance and everything in it");
    EXPECT_EQ(of("ntp").entries, 0U);
}

TEST_F(facts, of_a_command_that_is_only_switched)
{
    EXPECT_EQ(of("radio/shutdown_cmd").removal, "stores the opposite");
    EXPECT_THAT(of("radio/shutdown_cmd").keys, IsEmpty());
}

TEST_F(facts, of_choices_and_secrets)
{
    const command_facts wpa = of("radio/bss/auth_open_wpa2/wpa_type_cmd");
    ASSERT_GE(wpa.keys.size(), 3U);
    EXPECT_EQ(wpa.keys[0].choices.at(0).word, "psk");
    EXPECT_NE(wpa.keys[0].choices.at(0).help, "");
    const auto key =
        std::find_if(wpa.keys.begin(), wpa.keys.end(), [](const key_facts &one) { return one.key == "key"; });
    ASSERT_NE(key, wpa.keys.end());
    EXPECT_TRUE(key->secret);
}

TEST_F(facts, a_key_in_several_choices_stands_once_for_each_type)
{
    const command_facts uplink = of("uplink_check_cmd");
    ASSERT_EQ(uplink.keys.size(), 3U);
    EXPECT_EQ(uplink.keys[2].key, "domain");
    EXPECT_FALSE(uplink.keys[2].optional) << "it can be left out of one choice only";
    const command_facts speed = of("speed_test_cmd");
    EXPECT_EQ(
        std::count_if(speed.keys.begin(), speed.keys.end(), [](const key_facts &one) { return one.key == "addr"; }), 2);
}

TEST_F(facts, lines_of_a_part_are_those_of_the_whole_listing)
{
    const auto wmm = apconf_host::syntax_lines(words(), command("config/radio/bss/wmm"), extent::with_what_below);
    ASSERT_GE(wmm.size(), 3U);
    EXPECT_EQ(wmm[0], "wmm");
    EXPECT_EQ(wmm[1], " no status");
    EXPECT_THAT(apconf_host::syntax_lines(words(), command("config/radio/bss/wmm"), extent::itself),
                ElementsAre("wmm"));
}

}  // namespace

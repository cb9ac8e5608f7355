// A command-tree file is held against all that it must agree with. Each test breaks one thing in a copy of the default
// vocabulary and reads the fault, whole.
#include <algorithm>
#include <fstream>
#include <sstream>

#include "host/cli/schema_check.h"
#include "host/host_test.h"

namespace
{

using apconf_host::check_schema;
using apconf_host::schema_report;
using apconf_host::schema_text;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

using texts = std::vector<std::string>;

std::string content(const std::string &name)
{
    std::ostringstream text;
    text << std::ifstream(APCONF_SOURCE_DIR "/etc/" + name).rdbuf();
    return text.str();
}

class schema_check : public apconf_test::host_test
{
protected:
    void SetUp() override
    {
        host_test::SetUp();
        std::ofstream("/etc/cmd_tree_help.txt") << help;
    }

    std::string tree = content("config_cmd_tree.xml");
    std::string help = content("cmd_tree_help.txt");

    static std::string line_at(const std::string &text, size_t position)
    {
        return std::to_string(1 + std::count(text.begin(), text.begin() + static_cast<ptrdiff_t>(position), '\n'));
    }

    // Replaces the first `from` behind the first `anchor`. The line is that of the tag around it.
    void edit(const std::string &anchor, const std::string &from, const std::string &to)
    {
        const size_t begin = tree.find(anchor);
        ASSERT_NE(begin, std::string::npos) << anchor;
        const size_t at = tree.find(from, begin);
        ASSERT_NE(at, std::string::npos) << from;
        edited_ = ":" + line_at(tree, tree.rfind('<', at)) + ": ";
        tree.replace(at, from.size(), to);
    }

    // The faults as lines, where the line number of the last edit is "*", and others are left out.
    texts faults()
    {
        const schema_text own_help = {"help", help};
        texts lines;
        for (const auto &fault : check_schema({"tree", tree}, &own_help).faults) {
            const std::string text = to_text(fault);
            const size_t at = text.find(edited_);
            const size_t end = text.find(": ");
            lines.push_back(at != std::string::npos && at < end ? "*" + text.substr(end) : text.substr(end + 2));
        }
        return lines;
    }

    // Of one edit.
    texts faults(const std::string &anchor, const std::string &from, const std::string &to)
    {
        tree = content("config_cmd_tree.xml");
        edit(anchor, from, to);
        return faults();
    }

private:
    std::string edited_;
};

TEST_F(schema_check, the_default_vocabulary_has_no_fault)
{
    const schema_text own_help = {"help", help};
    const schema_report report = check_schema({"tree", tree}, &own_help);
    for (const auto &fault : report.faults) ADD_FAILURE() << to_text(fault);
    EXPECT_EQ(report.packages, 36U);
    EXPECT_EQ(report.commands, 256U);
}

TEST_F(schema_check, names_the_line_of_what_is_not_well_formed)
{
    tree = "<config_cmd_tree>\n  <config>\n  </confg>\n</config_cmd_tree>\n";
    const auto report = check_schema({"tree.xml", tree}, nullptr);
    ASSERT_EQ(report.faults.size(), 1U);
    EXPECT_EQ(to_text(report.faults[0]),
              "tree.xml:3: not well-formed: Opening and ending tag mismatch: config line 2 and confg; accepted is XML");
}

TEST_F(schema_check, unknown_elements_and_records_without_element)
{
    tree.replace(tree.find("</promisc_mode_cmd>"), 19, "</promise_mode_cmd>");
    edit("<promisc_mode_cmd", "promisc_mode_cmd", "promise_mode_cmd");
    EXPECT_THAT(faults(), ElementsAre("config/radio: has no element promisc_mode_cmd: accepted is one for each command "
                                      "of the package",
                                      "*: config/radio/promise_mode_cmd: unknown: accepted is a command of "
                                      "config/radio, perhaps promisc_mode_cmd"));
}

TEST_F(schema_check, an_element_stands_once)
{
    edit("</ldpc_cmd>", "</ldpc_cmd>",
         "</ldpc_cmd>\n<shutdown_cmd ntype='cmd' cli_cmd='x' help='HELP_RADIO_SHUTDOWN'/>");
    EXPECT_THAT(faults(),
                ElementsAre("config/radio/shutdown_cmd: stands in line " + line_at(tree, tree.find("<shutdown_cmd")) +
                            " already: accepted is one element a command"));
}

TEST_F(schema_check, the_kind_of_an_element_is_that_of_its_record)
{
    EXPECT_THAT(faults("<rts_threshold_cmd", " ntype=\"cmd\"", ""),
                ElementsAre("*: config/radio/bss/rts_threshold_cmd: ntype '' refused: accepted is cmd, for this is a "
                            "command"));
    EXPECT_THAT(faults("<rts_threshold_cmd", "\"cmd\"", "\"package\""),
                testing::Contains("*: config/radio/bss/rts_threshold_cmd: ntype 'package' refused: accepted is cmd, "
                                  "for this is a command"));
    EXPECT_THAT(faults("<wmm ", "\"package\"", "\"cmd\""),
                testing::Contains("*: config/radio/bss/wmm: ntype 'cmd' refused: accepted is package, which this is"));
    EXPECT_THAT(
        faults("<rts_threshold_cmd", "\"cmd\"", "\"comand\""),
        ElementsAre("*: config/radio/bss/rts_threshold_cmd: ntype 'comand' refused: accepted is package or cmd"));
}

TEST_F(schema_check, a_package_opens_with_its_index)
{
    const size_t begin = tree.find("<INDEX", tree.find("<wmm "));
    const size_t end = tree.find("/>", begin) + 2;
    const std::string index = tree.substr(begin, end - begin);
    tree.erase(begin, end - begin);
    edit("<wmm ", "package", "package");
    EXPECT_THAT(faults(), testing::Contains("*: config/radio/bss/wmm: has no INDEX: accepted is one, before the "
                                            "package's commands"));

    tree.insert(tree.find("</wmm>"), index);
    EXPECT_THAT(faults(), ElementsAre("*: config/radio/bss/wmm: does not follow the grammar: Expecting element INDEX, "
                                      "got x; accepted is what config_cmd_tree.rng says"));
}

TEST_F(schema_check, every_key_has_its_parameter_and_every_parameter_its_key)
{
    EXPECT_THAT(faults("<rts_threshold_cmd", "name=\"rts\"", "name=\"rtss\""),
                ElementsAre("config/radio/bss/rts_threshold_cmd: has no PARAM of the key rts: accepted is one of "
                            "ptype UINT",
                            "*: config/radio/bss/rts_threshold_cmd rtss: PARAM 'rtss' refused: accepted is the key "
                            "rts"));
    EXPECT_THAT(faults("<rts_threshold_cmd", " name=\"rts\"", ""),
                ElementsAre("config/radio/bss/rts_threshold_cmd: has no PARAM of the key rts: accepted is one of "
                            "ptype UINT",
                            "*: config/radio/bss/rts_threshold_cmd PARAM: has no name: accepted is the key rts"));
    EXPECT_THAT(faults("<radio ntype", "name=\"radio_id\"", "name=\"radio\""),
                ElementsAre("config/radio INDEX: has no PARAM of the key radio_id: accepted is one of ptype UINT",
                            "*: config/radio radio: PARAM 'radio' refused: accepted is the key radio_id"));
    EXPECT_THAT(faults("<shutdown_cmd", "/>",
                       "><PARAM name=\"now\" ptype=\"UINT\" help=\"HELP_RADIO_SHUTDOWN\"/></shutdown_cmd>"),
                ElementsAre("*: config/radio/shutdown_cmd now: PARAM 'now' refused: accepted is no key"));
}

TEST_F(schema_check, a_key_stands_once_on_a_line)
{
    EXPECT_THAT(faults("<PARAM name=\"disassoc_min_rssi\"", "disassoc_min_rssi", "assoc_min_rssi"),
                ElementsAre("config/radio/rf_opt_low_rssi_threshold_cmd: has no PARAM of the key disassoc_min_rssi: "
                            "accepted is one of ptype SINT",
                            StartsWith("*: config/radio/rf_opt_low_rssi_threshold_cmd assoc_min_rssi: PARAM "
                                       "'assoc_min_rssi' refused: accepted is one PARAM a key on a line; it stands in "
                                       "line ")));
    // In different choices of a list it can stand again, with the same limits.
    const std::string whole = content("config_cmd_tree.xml");
    const std::string line = line_at(whole, whole.find("name=\"domain\" ptype", whole.find("<uplink_check_cmd")));
    EXPECT_THAT(faults("<uplink_check_cmd", "max=\"253\"", "max=\"200\""),
                ElementsAre("config/uplink_check_cmd domain: max '253' refused: accepted is '200' as in line " + line));
}

TEST_F(schema_check, a_file_of_another_kind_is_not_held_against_the_tree)
{
    const schema_text own_help = {"help", help};
    const auto report = check_schema({"page.html", "<!-- a page -->\n<html><body/></html>"}, &own_help);
    ASSERT_EQ(report.faults.size(), 1U);
    EXPECT_EQ(to_text(report.faults[0]),
              "page.html:2: html: holds no command: accepted is a config_cmd_tree with the "
              "element config");
}

TEST_F(schema_check, ptypes_are_those_of_the_descriptions)
{
    EXPECT_THAT(faults("<rts_threshold_cmd", "\"UINT\"", "\"UNIT\""),
                ElementsAre("*: config/radio/bss/rts_threshold_cmd rts: ptype 'UNIT' refused: accepted is UINT"));
    EXPECT_THAT(faults("<rts_threshold_cmd", "\"UINT\"", "\"UINT8\""),
                ElementsAre("*: config/radio/bss/rts_threshold_cmd rts: ptype 'UINT8' refused: accepted is UINT"));
    EXPECT_THAT(faults("<rts_threshold_cmd", " ptype=\"UINT\"", ""),
                ElementsAre("*: config/radio/bss/rts_threshold_cmd rts: has no ptype: accepted is UINT"));
    EXPECT_THAT(faults("<speed_test_cmd", "\"IPV4\"", "\"IPV4_MASK\""),
                ElementsAre("*: config/speed_test_cmd addr: ptype 'IPV4_MASK' refused: accepted is IPV4 or STRING"));
}

TEST_F(schema_check, limits_and_defaults_are_values_of_their_type)
{
    const std::string rts = "*: config/radio/bss/rts_threshold_cmd rts: ";
    EXPECT_THAT(faults("<rts_threshold_cmd", "min=\"0\"", "min=\"zero\""),
                ElementsAre(rts + "min 'zero' refused: accepted is a UINT from 0 to 4294967295"));
    EXPECT_THAT(faults("<rts_threshold_cmd", "max=\"2347\"", "max=\"2347 octets\""),
                ElementsAre(rts + "max '2347 octets' refused: accepted is a UINT from 0 to 4294967295"));
    EXPECT_THAT(faults("<rts_threshold_cmd", "min=\"0\"", "min=\"5000\""),
                ElementsAre(rts + "min '5000' refused: accepted is a limit that is not above max '2347'"));
    EXPECT_THAT(faults("<rts_threshold_cmd", "max=\"2347\"", "max=\"4294967295\""),
                ElementsAre(rts + "max '4294967295' refused: accepted is a limit without it, for it means \"not "
                                  "set\""));
    EXPECT_THAT(faults("<rts_threshold_cmd", "default=\"2347\"", "default=\"2348\""),
                ElementsAre(rts + "default '2348' refused: accepted is a UINT from 0 to 2347"));
    EXPECT_THAT(faults("<ssid_cmd", "min=\"1\"", "min=\"0\""),
                ElementsAre("*: config/radio/bss/ssid_cmd ssid: min '0' refused: accepted is a length of at least 1"));
    EXPECT_THAT(faults("<hidden_ssid_cmd", "default=\"disable\"", "default=\"off\""),
                ElementsAre("*: config/radio/bss/hidden_ssid_cmd status: default 'off' refused: accepted is one of "
                            "enable, disable"));
    EXPECT_THAT(faults("<hidden_ssid_cmd", "default=\"disable\"", "max=\"1\""),
                ElementsAre("*: config/radio/bss/hidden_ssid_cmd status: max '1' refused: accepted is no limit: STATUS "
                            "has no range"));
}

TEST_F(schema_check, numbers_of_instances_stay_inside_the_block)
{
    EXPECT_THAT(faults("<radio ntype", "max=\"1\"", "max=\"5\""),
                ElementsAre("*: config/radio radio_id: max '5' refused: accepted is at most 1"));
    EXPECT_THAT(faults("<radio ntype", "repeat=\"2\"", "repeat=\"3\""),
                ElementsAre("*: config/radio INDEX: repeat '3' refused: accepted is at most 2"));
    EXPECT_THAT(faults("<radio ntype", "repeat=\"2\"", "repeat=\"1\""), IsEmpty());
}

TEST_F(schema_check, repeat_stays_inside_the_array)
{
    EXPECT_THAT(faults("<mac_acl_cmd", "repeat=\"256\"", "repeat=\"257\""),
                ElementsAre("*: config/radio/bss/access_list/mac_acl_cmd: repeat '257' refused: accepted is at most "
                            "256"));
    EXPECT_THAT(faults("<mac_acl_cmd", "repeat=\"256\"", "repeat=\"many\""),
                ElementsAre("*: config/radio/bss/access_list/mac_acl_cmd: repeat 'many' refused: accepted is a "
                            "positiveInteger"));
    EXPECT_THAT(faults("<rts_threshold_cmd", "ntype", "repeat=\"2\" ntype"),
                ElementsAre("*: config/radio/bss/rts_threshold_cmd: repeat '2' refused: accepted is none: there is "
                            "room for one"));
}

TEST_F(schema_check, the_no_line_of_a_list_names_the_entry)
{
    EXPECT_THAT(faults("<mac_acl_cmd", " option=\"pindex\"", ""),
                ElementsAre("config/radio/bss/access_list/mac_acl_cmd: has no PARAM with the option pindex: accepted "
                            "is at least one, for the \"no\" line of a list names the entry"));
}

TEST_F(schema_check, choices_are_tokens_of_their_type)
{
    EXPECT_THAT(faults("<wpa_type_cmd", "name=\"8021x\"", "name=\"8021y\""),
                ElementsAre("*: config/radio/bss/auth_open_wpa/wpa_type_cmd 8021y: choice '8021y' refused: accepted is "
                            "one of psk, 8021x"));
    EXPECT_THAT(faults("<wpa_type_cmd", "name=\"8021x\"", "name=\"psk\""),
                ElementsAre("*: config/radio/bss/auth_open_wpa/wpa_type_cmd psk: choice 'psk' refused: accepted is one "
                            "element a choice, and this is the second"));
}

TEST_F(schema_check, options_are_known)
{
    EXPECT_THAT(faults("<wpa_type_cmd", "option=\"list\"", "option=\"lst\""),
                testing::Contains("*: config/radio/bss/auth_open_wpa/wpa_type_cmd type: option 'lst' refused: accepted "
                                  "is hidden, optional, list or pindex"));
}

TEST_F(schema_check, the_grammar_tells_what_an_element_may_have)
{
    const std::string rts = "*: config/radio/bss/rts_threshold_cmd";
    EXPECT_THAT(faults("<rts_threshold_cmd", "default=", "defalt="),
                ElementsAre(rts + " rts: attribute 'defalt' refused: accepted is default, help, max, min, name, "
                                  "option, ptype or source"));
    EXPECT_THAT(faults("<rts_threshold_cmd", " help=\"HELP_BSS_RTS_THRESHOLD\"", ""),
                testing::Contains(rts + ": has no help: accepted is a text of the form HELP_[A-Z0-9_]+"));
    EXPECT_THAT(
        faults("<rts_threshold_cmd", "\"rts-threshold\"", "\"RTS\""),
        ElementsAre(rts + ": cli_cmd 'RTS' refused: accepted is a text of the form [a-z0-9]+([ \\-][a-z0-9]+)*"));
    EXPECT_THAT(faults("<wpa_type_cmd", "<BODY name=\"8021x\"", "<BOD name=\"8021x\""),
                ElementsAre("*: config/radio/bss/auth_open_wpa/wpa_type_cmd 8021x: refused: accepted is BODY or PARAM "
                            "here"));
    EXPECT_THAT(faults("<rts_threshold_cmd", " cli_cmd=\"rts-threshold\"", ""),
                ElementsAre(rts + ": has no cli_cmd: accepted are the words of its command line"));
}

TEST_F(schema_check, what_only_the_grammar_knows_is_narrowed_down)
{
    EXPECT_THAT(faults("<rts_threshold_cmd", "default=", "option=\"optional\" default="),
                ElementsAre("*: config/radio/bss/rts_threshold_cmd rts: option 'optional' refused: accepted is the "
                            "element without it here"));
    // Behind what can be left out, nothing can be needed.
    EXPECT_THAT(faults("<wpa_type_cmd", "</wpa_type_cmd>",
                       "<BODY name=\"x\" help=\"HELP_BSS\"><BODY name=\"y\" help=\"HELP_BSS\"/></BODY></wpa_type_cmd>"),
                ElementsAre("*: config/radio/bss/auth_open_wpa/wpa_type_cmd x: the grammar has no place for it here: "
                            "accepted is what config_cmd_tree.rng says"));
}

TEST_F(schema_check, no_line_can_be_read_as_two_commands)
{
    const std::string line = line_at(tree, tree.find("<ssid_cmd"));
    EXPECT_THAT(faults("<hidden_ssid_cmd", "\"hidden-ssid\"", "\"ssid\""),
                ElementsAre("*: config/radio/bss/hidden_ssid_cmd: cli_cmd 'ssid' refused: accepted is words of its "
                            "own; these are those of ssid_cmd in line " +
                            line));
    EXPECT_THAT(faults("<hidden_ssid_cmd", "\"hidden-ssid\"", "\"ssid hidden\""),
                ElementsAre("*: config/radio/bss/hidden_ssid_cmd: cli_cmd 'ssid hidden' refused: accepted is words "
                            "that cannot be read as those of ssid_cmd in line " +
                            line + " with the value 'hidden'"));
    EXPECT_THAT(faults("<ssid_cmd", "\"ssid\"", "\"hidden-ssid name\""), IsEmpty())
        << "'name' is no value of hidden-ssid";
    EXPECT_THAT(faults("<ssid_cmd", "\"ssid\"", "\"exit ssid\""),
                ElementsAre("*: config/radio/bss/ssid_cmd: cli_cmd 'exit ssid' refused: accepted is words that do not "
                            "begin with no, exit or end"));
}

TEST_F(schema_check, help_keys_have_a_text)
{
    EXPECT_THAT(faults("<rts_threshold_cmd", "HELP_BSS_RTS_THRESHOLD", "HELP_BSS_RTS_THRESHOL"),
                ElementsAre("*: config/radio/bss/rts_threshold_cmd: help 'HELP_BSS_RTS_THRESHOL' refused: accepted is "
                            "a key of help, perhaps HELP_BSS_RTS_THRESHOLD",
                            "HELP_BSS_RTS_THRESHOLD: used by no element: accepted are the keys of the elements"));
}

TEST_F(schema_check, help_texts_are_used_once_and_short)
{
    const std::string end = line_at(help, help.size());
    const std::string first = line_at(help, help.find("HELP_CONFIG "));
    help.replace(help.find("HELP_END "), 8, "HELP_FIN");
    help += "HELP_CONFIG = again\nHELP_NOTHING =\nHELP_LONG = " + std::string(600, 'x') + "\n";
    texts lines;
    const schema_text own_help = {"help", help};
    for (const auto &fault : check_schema({"tree", tree}, &own_help).faults) lines.push_back(to_text(fault));
    const auto at = [&end](int lines_on) { return "help:" + std::to_string(std::stoi(end) + lines_on) + ": "; };
    EXPECT_THAT(
        lines,
        ElementsAre(HasSubstr(": HELP_FIN: used by no element: accepted are the keys of the elements"),
                    at(0) + "HELP_CONFIG: has its text in line " + first + " already: accepted is one line a key",
                    at(1) + "HELP_NOTHING: has no text: accepted is one of one line",
                    at(2) + "HELP_LONG: a line of 612 characters: accepted are at most 511, beyond which it is "
                            "read as several",
                    at(2) + "HELP_LONG: used by no element: accepted are the keys of the elements",
                    at(3) + "HELP_END: missing: accepted is a text for each key of the shell"));
}

TEST_F(schema_check, without_a_help_file_keys_are_not_looked_up)
{
    edit("<rts_threshold_cmd", "HELP_BSS_RTS_THRESHOLD", "HELP_BSS_RTS_THRESHOL");
    EXPECT_THAT(check_schema({"tree", tree}, nullptr).faults, IsEmpty());
}

TEST_F(schema_check, reports_all_faults_in_the_order_of_their_lines)
{
    edit("<ssid_cmd", "max=\"32\"", "max=\"x\"");
    edit("<channel_cmd", "ptype=\"CHANNEL\"", "ptype=\"CHANEL\"");
    const auto report = check_schema({"tree", tree}, nullptr);
    ASSERT_EQ(report.faults.size(), 2U);
    EXPECT_EQ(report.faults[0].element, "config/radio/channel_cmd channel");
    EXPECT_EQ(report.faults[1].element, "config/radio/bss/ssid_cmd ssid");
    EXPECT_LT(report.faults[0].line, report.faults[1].line);
}

}  // namespace

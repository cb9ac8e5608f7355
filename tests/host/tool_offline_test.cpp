// What apconf says without a server: the vocabulary's listing, help, paths and descriptions, and what is wrong with
// files.
#include <algorithm>
#include <filesystem>
#include <fstream>

#include "host/host_test.h"
#include "host/tool_process.h"
#include "support/lines.h"
#include "support/printed.h"

namespace
{

namespace fs = std::filesystem;
using apconf_test::apconf;
using apconf_test::content;
using apconf_test::lines_of;
using apconf_test::text_of;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

using result = apconf_test::tool_result;

apconf_host::json_ptr parsed(const std::string &text)
{
    apconf_host::json_ptr value(json_tokener_parse(text.c_str()));
    EXPECT_TRUE(value) << text;
    return value;
}

class offline : public apconf_test::tool
{
protected:
    void SetUp() override
    {
        tool::SetUp();
        fs::copy_file(APCONF_SOURCE_DIR "/etc/cmd_tree_help.txt", "/etc/cmd_tree_help.txt",
                      fs::copy_options::overwrite_existing);
    }

    // What a subcommand prints when it has nothing to complain about.
    static std::string printed(const std::string &arguments, const std::string &input = "")
    {
        const result checked = apconf(arguments, input);
        EXPECT_EQ(checked.status, 0) << arguments;
        EXPECT_EQ(checked.errors, "") << arguments;
        return checked.output;
    }

    static std::string refused(const std::string &arguments)
    {
        const result checked = apconf(arguments);
        EXPECT_EQ(checked.status, 1) << arguments;
        EXPECT_EQ(checked.output, "") << arguments;
        return checked.errors;
    }
};

std::string golden(const char *name)
{
    return content((std::string(APCONF_SOURCE_DIR "/tests/golden/") + name).c_str());
}

// A tree file with one edit, and the help file beside it.
std::string broken_tree(const std::string &from, const std::string &to)
{
    const char *file = "/tmp/broken/tree.xml";
    std::string text = content(APCONF_SOURCE_DIR "/etc/config_cmd_tree.xml");
    const size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    text.replace(at, from.size(), to);
    fs::create_directories("/tmp/broken");
    std::ofstream(file) << text;
    fs::copy_file("/etc/cmd_tree_help.txt", "/tmp/broken/cmd_tree_help.txt", fs::copy_options::overwrite_existing);
    return file;
}

std::string line_of(const std::string &text)
{
    const std::string tree = content(APCONF_SOURCE_DIR "/etc/config_cmd_tree.xml");
    const auto end = tree.begin() + static_cast<ptrdiff_t>(tree.find(text));
    return std::to_string(1 + std::count(tree.begin(), end, '\n'));
}

TEST_F(offline, every_subcommand_has_help_with_an_example)
{
    size_t subcommands = 0;
    for (const std::string &line : lines_of(printed("--help"))) {
        std::istringstream words(line);
        std::string name;
        words >> name;
        if (!line.starts_with("  ") || name.starts_with("-")) continue;
        ++subcommands;
        EXPECT_THAT(printed(name + " --help"), HasSubstr("\nExample: ")) << name;
    }
    EXPECT_GE(subcommands, 14U);
}

TEST_F(offline, lists_what_the_library_lists)
{
    EXPECT_EQ(printed("list"), golden("listing.txt"));
    EXPECT_EQ(printed("list config"), golden("listing.txt"));
}

TEST_F(offline, lists_a_package_with_what_is_in_it)
{
    const std::string wmm =
        "wmm\n"
        " no status\n"
        " status (enable|disable)\n";
    EXPECT_THAT(printed("list radio/bss/wmm"), StartsWith(wmm));
    EXPECT_EQ(printed("list 'config/radio[0]/bss[3]/ssid_cmd'"), "no ssid\nssid STRING1-32\n");
}

TEST_F(offline, lists_commands_with_their_paths_as_json)
{
    EXPECT_EQ(printed("list ntp --json"),
              R"~([{"path":"config/ntp","lines":["ntp"]},)~"
              R"~({"path":"config/ntp/status_cmd","lines":["no status","status (enable|disable)"]},)~"
              R"~({"path":"config/ntp/server_cmd","lines":["no server","server A.B.C.D"]}])~"
              "\n");
    const apconf_host::json_ptr all = parsed(printed("list --json"));
    EXPECT_EQ(json_object_array_length(all.get()), 292U);
}

TEST_F(offline, prints_the_help_texts_that_the_library_prints)
{
    EXPECT_EQ(printed("help"), golden("help.txt"));
}

TEST_F(offline, prints_the_help_texts_of_a_part)
{
    EXPECT_EQ(printed("help ntp/status_cmd"),
              "HELP_NTP_STATUS                  = Set the clock by NTP\n"
              "HELP_STATUS                      = enable switches it on, disable switches it off\n");
    EXPECT_EQ(
        printed("help ntp/status_cmd --json"),
        R"~({"HELP_NTP_STATUS":"Set the clock by NTP","HELP_STATUS":"enable switches it on, disable switches it off"})~"
        "\n");
    const apconf_host::json_ptr all = parsed(printed("help --json"));
    EXPECT_EQ(static_cast<size_t>(json_object_object_length(all.get())), lines_of(golden("help.txt")).size());
}

TEST_F(offline, a_help_key_without_text_stands_alone)
{
    std::ofstream("/etc/cmd_tree_help.txt") << "HELP_STATUS = On or off\n";
    EXPECT_EQ(printed("help ntp/status_cmd"),
              "HELP_NTP_STATUS\n"
              "HELP_STATUS                      = On or off\n");
    EXPECT_EQ(printed("help ntp/status_cmd --json"), R"~({"HELP_NTP_STATUS":null,"HELP_STATUS":"On or off"})~"
                                                     "\n");
}

TEST_F(offline, prints_every_path_that_the_library_knows)
{
    const auto paths = lines_of(printed("paths"));
    std::string together;
    for (const std::string &path : paths) together += "/" + path;
    register_root_cmd(lib_pkg_root);
    EXPECT_EQ(together, apconf_test::printed([](FILE *out) {
                  fflush(out);
                  FILE *file = tmpfile();
                  dump_cpath(get_cmd_tree(), 0, fileno(file));
                  rewind(file);
                  for (int c = getc(file); c != EOF; c = getc(file)) putc(c, out);
                  fclose(file);
              }));
    EXPECT_EQ(paths.size(), 292U);
    EXPECT_EQ(printed("paths ntp"), "config/ntp\nconfig/ntp/status_cmd\nconfig/ntp/server_cmd\n");
    EXPECT_EQ(printed("paths ntp/server_cmd --json"), "[\"config/ntp/server_cmd\"]\n");
}

TEST_F(offline, describes_a_command)
{
    EXPECT_EQ(printed("describe radio/bss/rts_threshold_cmd"),
              "config/radio/bss/rts_threshold_cmd\n"
              "  Set the frame length above which RTS/CTS is used\n"
              "\n"
              "Line        rts-threshold <0-2347>\n"
              "Removal     no rts-threshold: makes it unset\n"
              "Instance    radio_id, wlan_id\n"
              "Reported    the keys that differ\n"
              "\n"
              "KEY     PTYPE  ACCEPTED\n"
              "rts     UINT   a UINT from 0 to 2347; default 2347\n"
              "               Length in octets, 2347 for never\n"
              "               Source: IEEE 802.11-2007, dot11RTSThreshold\n");
}

TEST_F(offline, describes_a_list_with_its_length_and_what_picks_an_entry)
{
    EXPECT_EQ(printed("describe 'radio[0]/bss[1]/access_list/mac_acl_cmd'"),
              "config/radio/bss/access_list/mac_acl_cmd\n"
              "  Add a station to the list\n"
              "\n"
              "Line        mac-acl HH:HH:HH:HH:HH:HH\n"
              "Removal     no mac-acl HH:HH:HH:HH:HH:HH: removes the entries that it names, all when it names none\n"
              "Instance    radio_id, wlan_id\n"
              "Entries     256 at most\n"
              "Reported    the entries up to the first that does not differ, after \"noall\" when the list has been\n"
              "            replaced\n"
              "\n"
              "KEY     PTYPE     ACCEPTED\n"
              "mac     MAC_ADDR  a MAC address XX:XX:XX:XX:XX:XX; chooses the entry\n"
              "                  MAC address of the station\n");
}

TEST_F(offline, describes_choices_secrets_and_optional_keys)
{
    const std::string page = printed("describe radio/bss/auth_open_wpa2/wpa_type_cmd");
    EXPECT_THAT(page, HasSubstr("\ntype            WPA_TYPE      one of psk, 8021x\n"
                                "                              How stations prove who they are\n"
                                "                                psk    By a pre-shared key, the same for all of "
                                "them\n"
                                "                                8021x  By IEEE 802.1X, each at a RADIUS server\n"));
    EXPECT_THAT(page, HasSubstr("a text of 8 to 64 characters; optional; secret: shown only with\n"
                                "                              --secrets\n"));
}

TEST_F(offline, describes_a_package_with_its_contents)
{
    EXPECT_EQ(printed("describe ntp"),
              "config/ntp\n"
              "  Configure the clock's synchronization\n"
              "\n"
              "Line        ntp\n"
              "Removal     not on the command line\n"
              "Reported    when anything in it differs\n"
              "\n"
              "CONTENTS\n"
              "status_cmd  Set the clock by NTP\n"
              "server_cmd  Set the NTP server\n");
    EXPECT_THAT(printed("describe dhcp_server/pool"), HasSubstr("\nInstances   64 at most\n"));
}

TEST_F(offline, describes_as_json)
{
    EXPECT_EQ(printed("describe ntp/server_cmd --json"),
              R"~({"path":"config/ntp/server_cmd","package":false,"help":"Set the NTP server",)~"
              R"~("lines":["server A.B.C.D"],"no_lines":["no server"],"removal":"makes it unset","instances":[],)~"
              R"~("entries":null,"reported":"the keys that differ","source":null,)~"
              R"~("keys":[{"key":"ip","ptype":"IPV4","accepted":"an IPv4 address A.B.C.D","default":null,)~"
              R"~("help":"IPv4 address of the server","source":null,"optional":false,"selects":false,"secret":false,)~"
              R"~("choices":{}}],"contents":[]})~"
              "\n");
    const apconf_host::json_ptr type = parsed(printed("describe radio/bss/auth_open_wpa2/wpa_type_cmd --json"));
    json_object *keys = apconf_host::member(type.get(), "keys");
    EXPECT_EQ(text_of(apconf_host::member(json_object_array_get_idx(keys, 0), "choices")),
              R"~({"psk":"By a pre-shared key, the same for all of them",)~"
              R"~("8021x":"By IEEE 802.1X, each at a RADIUS server"})~");
    const apconf_host::json_ptr package = parsed(printed("describe ntp --json"));
    EXPECT_EQ(text_of(apconf_host::member(package.get(), "contents")),
              R"~(["config/ntp/status_cmd","config/ntp/server_cmd"])~");
}

TEST_F(offline, a_path_that_is_not_there_is_answered_with_one_like_it)
{
    for (const char *subcommand : {"list ", "help ", "paths ", "describe "}) {
        const std::string name = subcommand;
        EXPECT_EQ(refused(name + "radio/chanel_cmd"),
                  "apconf: config/radio/chanel_cmd refused: accepted is a command of config/radio, perhaps "
                  "channel_cmd\n");
        EXPECT_EQ(refused(name + "rts_threshold"),
                  "apconf: config/rts_threshold refused: accepted is a path from "
                  "config on, perhaps config/radio/bss/rts_threshold_cmd\n");
        EXPECT_EQ(refused(name + "status"),
                  "apconf: config/status refused: accepted is a path from config on, perhaps "
                  "config/radio/bss/wmm/status_cmd, config/radio/bss/dhcp_option82/status_cmd, "
                  "config/radio/bss/multicast_to_unicast/status_cmd, ...\n");
        EXPECT_EQ(refused(name + "ntp/server_cmd/ip"),
                  "apconf: config/ntp/server_cmd/ip refused: accepted is config/ntp/server_cmd, which is a command "
                  "with nothing below it\n");
    }
    EXPECT_EQ(apconf("describe").status, 2);
    EXPECT_EQ(apconf("list 'radio[0'").status, 2);
}

TEST_F(offline, says_when_there_is_no_vocabulary)
{
    fs::remove("/etc/config_cmd_tree.xml");
    EXPECT_EQ(refused("list"),
              "apconf: /etc/config_cmd_tree.xml: cannot be read; 'apconf check "
              "/etc/config_cmd_tree.xml' says why\n");
}

TEST_F(offline, finds_no_fault_in_the_default_vocabulary)
{
    const std::string etc = APCONF_SOURCE_DIR "/etc/";
    EXPECT_EQ(
        printed("check " + etc + "config_cmd_tree.xml"),
        etc + "config_cmd_tree.xml: no fault; 36 packages, 256 commands; help texts of " + etc + "cmd_tree_help.txt\n");
    EXPECT_EQ(printed("check - --json", content((etc + "config_cmd_tree.xml").c_str())),
              R"~({"file":"-","kind":"command tree","faults":[],"packages":36,"commands":256})~"
              "\n");
    EXPECT_THAT(printed("check -", content((etc + "config_cmd_tree.xml").c_str())),
                EndsWith("; without a help file\n"));
    EXPECT_THAT(printed("check " + etc + "start_config.json"), StartsWith(etc + "start_config.json: no fault; "));
}

TEST_F(offline, names_file_line_and_element_of_a_fault_in_a_tree)
{
    const std::string file =
        broken_tree("<PARAM name=\"ssid\" ptype=\"STRING\"", "<PARAM name=\"ssid\" ptype=\"STRNG\"");
    const std::string line = line_of("<PARAM name=\"ssid\" ptype=\"STRING\"");
    const result checked = apconf("check " + file);
    EXPECT_EQ(checked.status, 1);
    EXPECT_EQ(checked.errors, "");
    EXPECT_EQ(checked.output,
              file + ":" + line + ": config/radio/bss/ssid_cmd ssid: ptype 'STRNG' refused: accepted is STRING\n");
    EXPECT_EQ(
        apconf("check --json " + file).output,
        R"~({"file":")~" + file + R"~(","kind":"command tree","faults":[{"file":")~" + file + R"~(","line":)~" + line +
            R"~(,"element":"config/radio/bss/ssid_cmd ssid","text":"ptype 'STRNG' refused: accepted is STRING"}],)~"
            R"~("packages":36,"commands":256})~"
            "\n");
}

TEST_F(offline, a_broken_tree_in_its_place_can_still_be_checked)
{
    std::ofstream("/etc/config_cmd_tree.xml") << "<config_cmd_tree>";
    const result checked = apconf("check /etc/config_cmd_tree.xml");
    EXPECT_EQ(checked.status, 1);
    EXPECT_THAT(checked.output, StartsWith("/etc/config_cmd_tree.xml:1: not well-formed: "));
}

TEST_F(offline, takes_the_help_file_that_it_is_given)
{
    std::ofstream("/tmp/help.txt") << content("/etc/cmd_tree_help.txt") << "HELP_OF_OLD = Nobody asks\n";
    const result checked = apconf("check --help-file /tmp/help.txt /etc/config_cmd_tree.xml");
    EXPECT_EQ(checked.status, 1);
    EXPECT_THAT(checked.output, testing::MatchesRegex("/tmp/help.txt:[0-9]+: HELP_OF_OLD: used by no element: accepted "
                                                      "are the keys of the elements\n"));
    EXPECT_EQ(refused("check --help-file /tmp/none.txt /etc/config_cmd_tree.xml"),
              "apconf: /tmp/none.txt: cannot be read\n");
}

TEST_F(offline, names_the_path_of_each_fault_in_a_message)
{
    const std::string message = R"~({"config": {"radio": {"channel_cmd": {"channel": "6"}},
        "hostname_cmd": {"hostnam": "ap"}, "ntp": {"server_cmd": {"ip": "x"}}, "nttp": {},
        "password_cmd": {"password": ""}}})~";
    const result checked = apconf("check -", message);
    EXPECT_EQ(checked.status, 1);
    EXPECT_THAT(lines_of(checked.output),
                testing::UnorderedElementsAre(
                    "-: config/radio: radio_id refused: accepted is a UINT from 0 to 1, which must be given",
                    "-: config/hostname_cmd: hostnam refused: accepted is the key hostname",
                    "-: config/ntp/server_cmd: ip 'x' refused: accepted is an IPv4 address A.B.C.D",
                    "-: config/nttp refused: accepted is a command of config, perhaps ntp",
                    "-: config/password_cmd: password '***' refused: accepted is a text of 1 to 128 characters"));
    EXPECT_EQ(apconf("check - --json", R"~({"config": {"ntp": {"server_cmd": {"ip": "x"}}}})~").output,
              R"~({"file":"-","kind":"message","faults":[{"path":"config/ntp/server_cmd","key":"ip","value":"x",)~"
              R"~("accepted":"an IPv4 address A.B.C.D",)~"
              R"~("text":"config/ntp/server_cmd: ip 'x' refused: accepted is an IPv4 address A.B.C.D"}],)~"
              R"~("changes":0,"unsayable":[],"unbatchable":[]})~"
              "\n");
}

TEST_F(offline, names_the_line_where_a_message_is_no_json)
{
    for (const auto &[text, complaint] :
         {std::pair("{\"config\":\n {,}}", "-, line 2: quoted object property name expected"),
          std::pair("{} {}", "-, line 1: something follows the message"),
          std::pair("[1]", "-: a message is a JSON object")}) {
        const result checked = apconf("check -", text);
        EXPECT_EQ(checked.status, 1) << text;
        EXPECT_THAT(checked.output, StartsWith(complaint)) << text;
    }
    EXPECT_EQ(apconf("check - --json", "[1]").output,
              R"~({"file":"-","kind":"message","faults":[{"text":"-: a message is a JSON object"}]})~"
              "\n");
}

TEST_F(offline, says_beforehand_what_no_line_and_no_batch_can_say)
{
    const std::string message = R"~({"config": {"hostname_cmd": {".OPT": "no"}, "radio": {"INDEX": {"radio_id": "0"},
        "bss": {"INDEX": {"wlan_id": "1"}, "auth_open_wpa": {"wpa_type_cmd": {"cipher": "ccmp"}}}}}})~";
    EXPECT_THAT(lines_of(printed("check -", message)),
                ElementsAre("-: config/radio[0]/bss[1]/auth_open_wpa/wpa_type_cmd: no command line says it: type is "
                            "missing",
                            "-: config/hostname_cmd: 'no' refused: accepted is the removal of something that this "
                            "batch sets; a batch can carry no other removal here (by 'apconf commit'; a server takes "
                            "it)",
                            "-: no fault; 1 change"));
    EXPECT_EQ(
        printed("check - --json", message),
        R"~({"file":"-","kind":"message","faults":[],"changes":1,)~"
        R"~("unsayable":[{"path":"config/radio[0]/bss[1]/auth_open_wpa/wpa_type_cmd","reason":"type is missing"}],)~"
        R"~("unbatchable":[{"path":"config/hostname_cmd","reason":"accepted is the removal of something that this )~"
        R"~(batch sets; a batch can carry no other removal here"}]})~"
        "\n");
}

TEST_F(offline, names_line_and_column_of_a_fault_in_command_lines)
{
    const result checked = apconf("check -", "radio 0\n chanel 6\n channel 6\nhostname\n");
    EXPECT_EQ(checked.status, 1);
    const auto lines = lines_of(checked.output);
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_THAT(lines[0], StartsWith("-:2:2: 'chanel' does not fit; expected is shutdown, "));
    EXPECT_THAT(lines[0], EndsWith("perhaps 'channel'"));
    EXPECT_EQ(lines[1], "-:4:10: the line is not complete; expected is a text of 1 to 63 characters (hostname)");

    EXPECT_EQ(printed("check -", "radio 0\n channel 6\n"), "-: no fault; 1 change\n");
    EXPECT_EQ(printed("check - --json", "hostname ap\n"),
              R"~({"file":"-","kind":"command lines","faults":[],"changes":1})~"
              "\n");
    EXPECT_EQ(
        apconf("check - --json", "hostname\n").output,
        R"~({"file":"-","kind":"command lines","faults":[{"line":1,"column":10,"text":"the line is not complete; )~"
        R"~(expected is a text of 1 to 63 characters (hostname)"}]})~"
        "\n");
}

TEST_F(offline, what_the_block_refuses_of_command_lines_is_placed_in_its_line)
{
    std::string text = "hostname ap\ncapwap\n";
    for (int i = 1; i <= 17; ++i) text += " controller-ip manual 192.0.2." + std::to_string(i) + "\n";
    const result checked = apconf("check -", text);
    EXPECT_EQ(checked.status, 1);
    EXPECT_THAT(checked.output, EndsWith("config/capwap/controller_ip_cmd refused: accepted is at most 16 entries; "
                                         "remove one first\n"));
    EXPECT_THAT(checked.output, StartsWith("-:3: "));
}

TEST_F(offline, files_that_cannot_be_read_or_are_empty_are_told)
{
    EXPECT_EQ(refused("check /tmp/none"), "apconf: /tmp/none: cannot be read\n");
    EXPECT_EQ(refused("check -"),
              "apconf: -: is empty; accepted is a command-tree file, a JSON message or command "
              "lines\n");
    EXPECT_EQ(apconf("check").status, 2);
    const result checked =
        apconf("check --help-file /etc/cmd_tree_help.txt " APCONF_SOURCE_DIR "/etc/start_config.json");
    EXPECT_EQ(checked.status, 2);
    EXPECT_THAT(checked.errors, StartsWith("apconf: --help-file belongs to a command-tree file, and "));
}

}  // namespace

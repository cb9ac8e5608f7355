// What a command line addresses: a path with its instances and arguments, all checked against the loaded schema.
#pragma once

#include <string>
#include <vector>

#include "cli/vocabulary.h"
#include "json.h"
#include "tool/problem.h"

namespace apconf_host
{

enum class action { get, set, no };

struct target {
    std::string wire_path;                    // "/config/radio/bss/ssid_cmd"
    std::string shown_path;                   // "config/radio[0]/bss[1]/ssid_cmd"
    std::vector<const cmd_node *> nodes;      // from "config" down to the one addressed
    const apconf_command *command = nullptr;  // that of the last node
    json_ptr index;                           // the index keys
    json_ptr arguments;                       // the command's own keys

    const cmd_node &node() const { return *nodes.back(); }

    // Index keys and arguments together, as they travel.
    json_ptr param() const;
};

struct named_node {
    const cmd_node *node;
    std::string path;  // without instances: "config/radio/bss"
};

// What a path names; the empty one is "config". Instances in brackets are passed over. Throws refused_by_schema or
// usage_problem.
named_node find_node(const std::string &path);

// Likewise, as the vocabulary has it. Throws failure when it has no words for it.
const syntax_command &find_syntax(const vocabulary &vocabulary, const std::string &path);

// Throws refused_by_schema or usage_problem.
target parse_target(action action, const std::string &path, const std::vector<std::string> &assignments);

// The instance that the target chooses of its node number `depth`, as text; empty when it chooses none.
std::string chosen_instance(const target &target, size_t depth);

}  // namespace apconf_host

// Reads a command's argument object: every key known, every value converted and within the schema's range, or refused.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "block.h"
#include "handlers.h"

namespace apconf_host
{

struct reading {
    const apconf_command &command;
    const cmd_node &node;
    std::string path;
    std::vector<std::string> index_keys;  // keys of the packages on the path, which may travel along
    element at;                           // what is stored: it decides between two rows that share a key
    bool stored_is_known = true;          // false: `at` is not what the server holds; either row may be meant
};

// All arguments of the object but index keys and ".OPT"; nothing, with the refusals in `result`, when one is wrong.
std::optional<std::vector<argument>> read_arguments(const reading &reading, json_object *object, outcome &result);

// Writes them, and makes unset what the command's selecting field has put out of force.
void write_arguments(const apconf_command &command, const element &at, const std::vector<argument> &arguments);

// The value of an index key as its text, converted and within the schema's range; nothing when it is refused.
std::optional<std::string> read_index(const cmd_node &node, const apconf_field &field, const std::string &path,
                                      json_object *value, outcome &result);

// The value of a number or address as the block holds it; nothing when the text does not convert.
std::optional<std::string> convert_value(const cmd_node &node, const apconf_field &field, const std::string &text);

bool has_secret(const apconf_command &command);

}  // namespace apconf_host

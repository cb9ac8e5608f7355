// What a parameter accepts, told in words and from the loaded schema.
#pragma once

#include <string>
#include <vector>

#include <apconf/apconf.h>

namespace apconf_host
{

// The schema's range record for a field of this node, or null: the ptype's own limits.
const void *range_of(const cmd_node &node, const apconf_field &field);

// What a ptype accepts within a range record of its own, or null.
std::string accepted_by(uint32_t ptype, const void *range);

// "a UINT from 1 to 255", "one of enable, disable", "an IPv4 address A.B.C.D", "a text of 1 to 32 characters".
std::string accepted_value(const cmd_node &node, const apconf_field &field);

// "one of the keys ip, port" or "no key".
std::string accepted_keys(const apconf_command &command);

// The tokens of an enumerated ptype, in the order of its table; empty for other ptypes.
std::vector<std::string> tokens_of(uint32_t ptype);

// The candidate that is most like `word`, or empty when none is near.
std::string nearest(const std::string &word, const std::vector<std::string> &candidates);

// The names of the commands and packages below a node, in table order.
std::vector<std::string> names_below(const cmd_node &node);

// "a command of config/radio, such as ..." for a name that is not there; `below` is its parent's path, or empty.
std::string accepted_command(const cmd_node &parent, const std::string &below, const std::string &name);

}  // namespace apconf_host

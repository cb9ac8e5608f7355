// What a message says about one command, so that a server which reports it in one way reports it in another; and the
// pieces that such messages are made of.
#pragma once

#include <apconf/apconf.h>

#include <optional>
#include <vector>

#include "json.h"

namespace apconf_host
{

// What a message says about a node to lead from one report to the other. No value: nothing that it could say leads
// there, the package around the node has to be replaced. Null: nothing needs to be said.
using change = std::optional<json_ptr>;

// `from` and `to` differ; either may be null: the command is not reported.
change command_change(const apconf_command &command, json_object *from, json_object *to);

// A report gives one object by itself and several in an array. What else stands there is no report's.
using elements = std::vector<json_object *>;
elements elements_of(json_object *value);

// The opposite; null when there is no element.
json_ptr as_value(std::vector<json_ptr> list);

// Byte for byte.
bool same(json_object *one, json_object *other);

// {".OPT": word}
json_ptr removal(const char *word);

}  // namespace apconf_host

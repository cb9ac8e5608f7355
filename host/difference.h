// The message that leads from one configuration to another: what the first has and the second lacks is removed, what
// differs is set, what is equal is not touched.
#pragma once

#include "json.h"

namespace apconf_host
{

// Configurations are as running_configuration() reports them, {"config": {...}}; other members are passed over. A
// server that runs `from` and applies {"ACTION": "set"} with the result's "config" reports `to`. {} when they are
// equal.
//
// What cannot be told command by command, because a removal would leave its own mark (a flag that was never set, a list
// that was never cleared), is told by replacing the package around it: removed first, then set whole.
json_ptr difference(json_object *from, json_object *to);

// The message that makes `to` the whole configuration, whatever there was before: {"config": [{".OPT": "noall"}, ...]}.
json_ptr replacement(json_object *to);

// How many commands differ, of all instances together.
size_t changed_commands(json_object *from, json_object *to);

}  // namespace apconf_host

// The engine behind all change handlers: compares a command's fields in `root` with `mirror_root` and reports those
// that differ, in the manner that the command's description names.
#pragma once

#include "apconf/description.h"

namespace apconf
{

// What every get_<command> does; `handler` is its name, for the log.
int report_changes(const apconf_command &command, const char *handler, json_object *args, json_object **result,
                   cpath_ctx *ctx);

}  // namespace apconf

// Dispatch of whole-tree messages, for the other units of this folder.
#pragma once

#include "apconf/command_tree.h"

namespace apconf
{

// Walks `body`, a tree of package and command names from the tree's root on. A set calls the no and set handlers and
// does not look at `out`; a get stores a new object with the answers there, which the caller releases. The caller has
// cleared `ctx` and filled in what the handlers are to see. 0, or -1 when an argument is missing or `body` is no
// object.
int dispatch_tree(json_object *body, json_object **out, struct cpath_ctx *ctx);

}  // namespace apconf

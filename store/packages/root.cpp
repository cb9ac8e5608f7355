// root: the table that hangs under the root of the command tree.
#include "store/packages/package.h"

PACKAGE(root, GLOBAL)
// clang-format off

COMMAND(config, unconditional_node(lib_pkg_config))

// clang-format on
END_PACKAGE(root)

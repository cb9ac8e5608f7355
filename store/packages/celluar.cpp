// celluar: the cellular modem.
#include "store/packages/package.h"

PACKAGE(celluar, GLOBAL)
// clang-format off

COMMAND(shutdown_cmd, flag(AT(celluar.shutdown_cmd.state)))
COMMAND(gps_status_cmd, group(),
        FIELD("status", celluar.gps_status_cmd.status, STATUS))

// clang-format on
END_PACKAGE(celluar)

// ntp: time from the network.
#include "store/packages/package.h"

PACKAGE(ntp, GLOBAL)
// clang-format off

COMMAND(status_cmd, group(),
        FIELD("status", ntp.status_cmd.status, STATUS))
COMMAND(server_cmd, group(),
        FIELD("ip", ntp.server_cmd.ip, IPV4))

// clang-format on
END_PACKAGE(ntp)

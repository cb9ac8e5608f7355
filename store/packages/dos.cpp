// dos: limits against floods.
#include "store/packages/package.h"

PACKAGE(dos, GLOBAL)
// clang-format off

COMMAND(status_cmd, group(),
        FIELD("status", dos.status_cmd.status, STATUS))
COMMAND(interval_cmd, group(),
        FIELD("period", dos.interval_cmd.period, UINT))
COMMAND(limit_cmd, group(),
        FIELD("limit", dos.limit_cmd.limit, UINT))

// clang-format on
END_PACKAGE(dos)

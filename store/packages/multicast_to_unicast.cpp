// multicast_to_unicast: multicast frames of a BSS sent as unicast.
#include "store/packages/package.h"

PACKAGE(multicast_to_unicast, BSS)
// clang-format off

COMMAND(status_cmd, group(),
        FIELD("status", multicast_to_unicast.status_cmd.status, STATUS))
COMMAND(membership_threshold_cmd, group(),
        FIELD("threshold", multicast_to_unicast.membership_threshold_cmd.threshold, UINT))
COMMAND(query_interval_cmd, group(),
        FIELD("interval", multicast_to_unicast.query_interval_cmd.interval, UINT))

// clang-format on
END_PACKAGE(multicast_to_unicast)

// nat: network address translation.
#include "store/packages/package.h"

PACKAGE(nat, GLOBAL)
// clang-format off

COMMAND(ip_nat_cmd, group(),
        FIELD("outif_type", nat.ip_nat_cmd.outif_type, IP_NAT_IF),
        FIELD("if_idx", nat.ip_nat_cmd.if_idx, UINT))

// clang-format on
END_PACKAGE(nat)

// black_list: stations and vendors that are kept out.
#include "store/packages/package.h"

PACKAGE(black_list, GLOBAL)
// clang-format off

COMMAND(status_cmd, group(),
        FIELD("status", black_list.status_cmd.status, STATUS))
COMMAND(ouilist_status_cmd, group(),
        FIELD("status", black_list.ouilist_status_cmd.status, STATUS))
COMMAND(policy_cmd, group(),
        FIELD("policy", black_list.policy_cmd.policy, UINT))
COMMAND(agetime_cmd, group(),
        FIELD("agetime", black_list.agetime_cmd.agetime, UINT))
COMMAND(rssi_check_cmd, group(),
        FIELD("status", black_list.rssi_check_cmd.status, STATUS))

// clang-format on
END_PACKAGE(black_list)

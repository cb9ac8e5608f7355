// wmm: Wi-Fi Multimedia of a BSS, and how its access categories map to DSCP.
#include "store/packages/package.h"

PACKAGE(wmm, BSS)
// clang-format off

COMMAND(status_cmd, group(),
        FIELD("status", wmm.status_cmd.status, STATUS))
COMMAND(ac_dscp_map_cmd, fixed_array(ARRAY(wmm.ac_dscp_map_cmd)),
        FIELD("wmm_ac_dscp_map", wmm.ac_dscp_map_cmd[i].wmm_ac_dscp_map, WMM_MAP, index_key),
        FIELD("wmm_ac_dscp_map_bk", wmm.ac_dscp_map_cmd[i].wmm_ac_dscp_map_bk, UINT),
        FIELD("wmm_ac_dscp_map_be", wmm.ac_dscp_map_cmd[i].wmm_ac_dscp_map_be, UINT),
        FIELD("wmm_ac_dscp_map_vi", wmm.ac_dscp_map_cmd[i].wmm_ac_dscp_map_vi, UINT),
        FIELD("wmm_ac_dscp_map_vo", wmm.ac_dscp_map_cmd[i].wmm_ac_dscp_map_vo, UINT))

// clang-format on
END_PACKAGE(wmm)

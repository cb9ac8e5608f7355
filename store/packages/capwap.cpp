// capwap: how the access point finds and reaches its controllers.
#include "store/packages/package.h"

PACKAGE(capwap, GLOBAL)
// clang-format off

COMMAND(interface_cmd, group(),
        FIELD("type", capwap.interface_cmd.type, CAPWAP_IF),
        FIELD("id", capwap.interface_cmd.id, UINT))
COMMAND(cloud_time_cmd, group(),
        FIELD("time", capwap.cloud_time_cmd.time, UINT))
COMMAND(controller_ip_cmd, selected_entry(ARRAY(capwap.controller_ip_cmd)),
        FIELD("type", capwap.controller_ip_cmd[i].type, CAPWAP_CTL_TYPE),
        FIELD("ip", capwap.controller_ip_cmd[i].ip, IPV4))
COMMAND(controller_name_cmd, group(),
        TEXT("name", capwap.controller_name_cmd.name))

// clang-format on
END_PACKAGE(capwap)

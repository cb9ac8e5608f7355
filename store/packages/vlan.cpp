// vlan: one VLAN interface.
#include "store/packages/package.h"

PACKAGE(vlan, VLAN)
// clang-format off

COMMAND(dhcp_cmd, group(),
        FIELD("type", dhcp_cmd.type, DHCP_TYPE),
        FIELD("pool_name", dhcp_cmd.pool_name, STRING),
        TEXT(nullptr, dhcp_cmd.relay_name))
COMMAND(ip_address_cmd, group(),
        FIELD("ip_type", ip_address_cmd.ip_type, IP_TYPE),
        FIELD("ip_addr", ip_address_cmd.ip_addr, IPV4_MASK))

// clang-format on
END_PACKAGE(vlan)

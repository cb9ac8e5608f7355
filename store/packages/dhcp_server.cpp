// dhcp_server: the DHCP server and its pools.
#include "store/packages/package.h"

PACKAGE(dhcp_server, GLOBAL)
// clang-format off

COMMAND(dns_list_cmd, fixed_array(ARRAY(dhcp_server.dns_list_cmd)).zero_when_unset(),
        FIELD("ip", dhcp_server.dns_list_cmd[i].ip, IPV4))
COMMAND(def_lease_time_cmd, group(),
        FIELD("time", dhcp_server.def_lease_time_cmd.time, UINT))
COMMAND(max_lease_time_cmd, group(),
        FIELD("time", dhcp_server.max_lease_time_cmd.time, UINT))
COMMAND(pool, list_node(lib_pkg_pool, APCONF_SCOPE_POOL, AT(dhcp_server.pool)),
        ELEMENT_TEXT("pool_name", pool_config, pool_name))

// clang-format on
END_PACKAGE(dhcp_server)

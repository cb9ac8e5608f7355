// pool: one DHCP address pool.
#include "store/packages/package.h"

PACKAGE(pool, POOL)
// clang-format off

COMMAND(ignore_cmd, group(),
        FIELD("ignored", ignore_cmd.ignored, STATUS))
COMMAND(gateway_cmd, group(),
        FIELD("gateway", gateway_cmd.gateway, IPV4))
COMMAND(network_cmd, group(),
        FIELD("network", network_cmd.network, IPV4_MASK))
COMMAND(range_cmd, group(),
        FIELD("start_ip", range_cmd.start_ip, IPV4),
        FIELD("end_ip", range_cmd.end_ip, IPV4))
COMMAND(domain_cmd, group(),
        TEXT("domain", domain_cmd.domain))
COMMAND(pool_dns_cmd, fixed_array(ARRAY(pool_dns_cmd)).zero_when_unset(),
        FIELD("ip", pool_dns_cmd[i].ip, IPV4))
COMMAND(lease_cmd, group(),
        FIELD("day", lease_cmd.day, UINT),
        FIELD("time", lease_cmd.time, TIME_HHMMSS))

// clang-format on
END_PACKAGE(pool)

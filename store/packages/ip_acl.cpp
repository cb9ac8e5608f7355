// ip_acl: one IP access list.
#include "store/packages/package.h"

PACKAGE(ip_acl, IP_ACL)
// clang-format off

COMMAND(ace_cmd, counted_array(ARRAY(ace), AT(ace_count)),
        FIELD("source_ip_addr", ace[i].source_ip_addr, IPV4_MASK),
        FIELD("first_source_port", ace[i].first_source_port, UINT),
        FIELD("last_source_port", ace[i].last_source_port, UINT),
        FIELD("dest_ip_addr", ace[i].dest_ip_addr, IPV4_MASK),
        FIELD("first_dest_port", ace[i].first_dest_port, UINT),
        FIELD("last_dest_port", ace[i].last_dest_port, UINT),
        FIELD("protocol", ace[i].protocol, UINT),
        FIELD("strategy", ace[i].strategy, UINT64),
        FIELD("action", ace[i].action, UINT))

// clang-format on
END_PACKAGE(ip_acl)

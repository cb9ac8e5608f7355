// access_list: which stations and domains a BSS lets in.
#include "store/packages/package.h"

PACKAGE(access_list, BSS)
// clang-format off

COMMAND(acl_type_cmd, group(),
        FIELD("type", access_list.acl_type_cmd.type, ACCESS_LIST_TYPE))
COMMAND(mac_acl_cmd, packed_list(ARRAY(access_list.mac_acl_cmd), AT(access_list.mac_acl_cmd_opt)).zero_when_unset(),
        FIELD("mac", access_list.mac_acl_cmd[i].mac, MAC_ADDR))
COMMAND(domain_acl_cmd, reset_on_difference(ARRAY(access_list.domain_acl_cmd), AT(access_list.domain_acl_cmd_opt)),
        FIELD("forward", access_list.domain_acl_cmd[i].forward, UINT),
        TEXT("domain", access_list.domain_acl_cmd[i].domain))

// clang-format on
END_PACKAGE(access_list)

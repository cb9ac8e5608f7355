// auth_shared_wep: shared-key authentication with WEP keys.
#include "store/packages/package.h"

PACKAGE(auth_shared_wep, BSS)
// clang-format off

COMMAND(default_key_cmd, group(),
        FIELD("key", auth_shared_wep.default_key_cmd.key, UINT))
COMMAND(wep_key_cmd, fixed_array(ARRAY(auth_shared_wep.wep_key_cmd)),
        FIELD("idx", auth_shared_wep.wep_key_cmd[i].idx, UINT, index_key),
        FIELD("type", auth_shared_wep.wep_key_cmd[i].type, WEP_KEY_TYPE),
        TEXT("key", auth_shared_wep.wep_key_cmd[i].key, secret))

// clang-format on
END_PACKAGE(auth_shared_wep)

// auth_open_wep: open authentication with WEP keys.
#include "store/packages/package.h"

PACKAGE(auth_open_wep, BSS)
// clang-format off

COMMAND(default_key_cmd, group(),
        FIELD("key", auth_open_wep.default_key_cmd.key, UINT))
COMMAND(wep_key_cmd, fixed_array(ARRAY(auth_open_wep.wep_key_cmd)),
        FIELD("idx", auth_open_wep.wep_key_cmd[i].idx, UINT, index_key),
        FIELD("type", auth_open_wep.wep_key_cmd[i].type, WEP_KEY_TYPE),
        TEXT("key", auth_open_wep.wep_key_cmd[i].key, secret))

// clang-format on
END_PACKAGE(auth_open_wep)

// auth_wpa_wpa2: WPA and WPA2 mixed, with a pre-shared key or 802.1X.
#include "store/packages/package.h"

PACKAGE(auth_wpa_wpa2, BSS)
// clang-format off

COMMAND(wpa_type_cmd, group(),
        FIELD("type", auth_wpa_wpa2.wpa_type_cmd.type, WPA_TYPE),
        FIELD("cipher", auth_wpa_wpa2.wpa_type_cmd.cipher, CIPHER_TYPE),
        FIELD("key_type", auth_wpa_wpa2.wpa_type_cmd.key_type, WEP_KEY_TYPE),
        FIELD("pmk_cache_mode", auth_wpa_wpa2.wpa_type_cmd.pmk_cache_mode, UINT8),
        TEXT("key", auth_wpa_wpa2.wpa_type_cmd.key, secret))
COMMAND(wpa_radius_auth_server_cmd, only_when_replaced(ARRAY(auth_wpa_wpa2.wpa_radius_auth_server_cmd), AT(auth_wpa_wpa2.wpa_radius_auth_server_cmd_opt)),
        FIELD("ip", auth_wpa_wpa2.wpa_radius_auth_server_cmd[i].ip, IPV4),
        FIELD("port", auth_wpa_wpa2.wpa_radius_auth_server_cmd[i].port, UINT),
        TEXT("key", auth_wpa_wpa2.wpa_radius_auth_server_cmd[i].key, secret))
COMMAND(wpa_radius_acct_server_cmd, group(),
        FIELD("ip", auth_wpa_wpa2.wpa_radius_acct_server_cmd.ip, IPV4),
        FIELD("port", auth_wpa_wpa2.wpa_radius_acct_server_cmd.port, UINT),
        TEXT("key", auth_wpa_wpa2.wpa_radius_acct_server_cmd.key, secret))

// clang-format on
END_PACKAGE(auth_wpa_wpa2)

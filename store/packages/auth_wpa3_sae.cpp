// auth_wpa3_sae: WPA3, with an SAE password or 802.1X.
#include "store/packages/package.h"

PACKAGE(auth_wpa3_sae, BSS)
// clang-format off

COMMAND(wpa_type_cmd, group(),
        FIELD("type", auth_wpa3_sae.wpa_type_cmd.type, WPA_TYPE),
        FIELD("cipher", auth_wpa3_sae.wpa_type_cmd.cipher, CIPHER_TYPE),
        FIELD("key_type", auth_wpa3_sae.wpa_type_cmd.key_type, WEP_KEY_TYPE),
        TEXT("sae_password", auth_wpa3_sae.wpa_type_cmd.sae_password, secret | unreleased))
COMMAND(wpa_radius_auth_server_cmd, only_when_replaced(ARRAY(auth_wpa3_sae.wpa_radius_auth_server_cmd), AT(auth_wpa3_sae.wpa_radius_auth_server_cmd_opt)),
        FIELD("ip", auth_wpa3_sae.wpa_radius_auth_server_cmd[i].ip, IPV4),
        FIELD("port", auth_wpa3_sae.wpa_radius_auth_server_cmd[i].port, UINT),
        TEXT("key", auth_wpa3_sae.wpa_radius_auth_server_cmd[i].key, secret | unreleased))
COMMAND(wpa_radius_acct_server_cmd, group(),
        FIELD("ip", auth_wpa3_sae.wpa_radius_acct_server_cmd.ip, IPV4),
        FIELD("port", auth_wpa3_sae.wpa_radius_acct_server_cmd.port, UINT),
        TEXT("key", auth_wpa3_sae.wpa_radius_acct_server_cmd.key, secret | unreleased))

// clang-format on
END_PACKAGE(auth_wpa3_sae)

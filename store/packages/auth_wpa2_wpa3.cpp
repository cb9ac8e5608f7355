// auth_wpa2_wpa3: WPA2 and WPA3 mixed, with a passphrase.
#include "store/packages/package.h"

PACKAGE(auth_wpa2_wpa3, BSS)
// clang-format off

COMMAND(wpa_type_cmd, group(),
        FIELD("type", auth_wpa2_wpa3.wpa_type_cmd.type, WPA_TYPE),
        FIELD("cipher", auth_wpa2_wpa3.wpa_type_cmd.cipher, CIPHER_TYPE),
        FIELD("key_type", auth_wpa2_wpa3.wpa_type_cmd.key_type, WEP_KEY_TYPE),
        TEXT("key", auth_wpa2_wpa3.wpa_type_cmd.key, secret | unreleased))

// clang-format on
END_PACKAGE(auth_wpa2_wpa3)

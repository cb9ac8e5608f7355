// dhcp_option82: the relay agent information (RFC 3046) that a BSS adds to DHCP requests.
#include "store/packages/package.h"

PACKAGE(dhcp_option82, BSS)
// clang-format off

COMMAND(status_cmd, group(),
        FIELD("status", dhcp_option82.status_cmd.status, STATUS))
COMMAND(mac_format_cmd, group(),
        FIELD("mcase", dhcp_option82.mac_format_cmd.mcase, MAC_CASE),
        FIELD("delimiter", dhcp_option82.mac_format_cmd.delimiter, MAC_DELIMITER),
        FIELD("character", dhcp_option82.mac_format_cmd.character, MAC_CHARACTER))
COMMAND(circuit_id_cmd, group(),
        FIELD("type", dhcp_option82.circuit_id_cmd.type, OPTION82_ID_TYPE),
        FIELD("format", dhcp_option82.circuit_id_cmd.format, STRING_FORMAT),
        FIELD("value", dhcp_option82.circuit_id_cmd.value, HEX_STR, 0, APCONF_WHEN_HEX),
        TEXT("value", dhcp_option82.circuit_id_cmd.value, 0, APCONF_WHEN_PLAIN))
COMMAND(remote_id_cmd, group(),
        FIELD("type", dhcp_option82.remote_id_cmd.type, OPTION82_ID_TYPE),
        FIELD("format", dhcp_option82.remote_id_cmd.format, STRING_FORMAT),
        FIELD("value", dhcp_option82.remote_id_cmd.value, HEX_STR, 0, APCONF_WHEN_HEX),
        TEXT("value", dhcp_option82.remote_id_cmd.value, 0, APCONF_WHEN_PLAIN))

// clang-format on
END_PACKAGE(dhcp_option82)

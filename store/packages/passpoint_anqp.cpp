// passpoint_anqp: what a BSS answers to ANQP queries (Passpoint, IEEE 802.11u).
#include "store/packages/package.h"

PACKAGE(passpoint_anqp, BSS)
// clang-format off

COMMAND(venue_name_cmd, always_reset(ARRAY(passpoint_anqp.venue_name_cmd)),
        FIELD("language", passpoint_anqp.venue_name_cmd[i].language, STRING),
        FIELD("name", passpoint_anqp.venue_name_cmd[i].name, STRING))
COMMAND(network_auth_cmd, always_reset(ARRAY(passpoint_anqp.network_auth_cmd)),
        FIELD("auth_type", passpoint_anqp.network_auth_cmd[i].auth_type, UINT),
        FIELD("url", passpoint_anqp.network_auth_cmd[i].url, STRING))
COMMAND(ip_address_availability_cmd, unset_means_no(),
        FIELD("ipv4_type", passpoint_anqp.ip_address_availability_cmd.ipv4_type, UINT),
        FIELD("ipv6_type", passpoint_anqp.ip_address_availability_cmd.ipv6_type, UINT))
COMMAND(cellular_cmd, always_reset(ARRAY(passpoint_anqp.cellular_cmd)),
        FIELD("mcc", passpoint_anqp.cellular_cmd[i].mcc, STRING),
        FIELD("mnc", passpoint_anqp.cellular_cmd[i].mnc, STRING))
COMMAND(domain_name_cmd, always_reset(ARRAY(passpoint_anqp.domain_name_cmd)),
        FIELD("value", passpoint_anqp.domain_name_cmd[i].value, STRING))
COMMAND(nai_realm_cmd, always_reset(ARRAY(passpoint_anqp.nai_realm_cmd)),
        FIELD("nai_realm", passpoint_anqp.nai_realm_cmd[i].nai_realm, STRING))
COMMAND(friendly_name_cmd, always_reset(ARRAY(passpoint_anqp.friendly_name_cmd)),
        FIELD("language", passpoint_anqp.friendly_name_cmd[i].language, STRING),
        FIELD("name", passpoint_anqp.friendly_name_cmd[i].name, STRING))
COMMAND(wan_metrics_cmd, unset_means_no(),
        FIELD("link_status", passpoint_anqp.wan_metrics_cmd.link_status, UINT),
        FIELD("dl_speed", passpoint_anqp.wan_metrics_cmd.dl_speed, UINT64),
        FIELD("ul_speed", passpoint_anqp.wan_metrics_cmd.ul_speed, UINT64),
        FIELD("dl_load", passpoint_anqp.wan_metrics_cmd.dl_load, UINT),
        FIELD("ul_load", passpoint_anqp.wan_metrics_cmd.ul_load, UINT),
        FIELD("lmd", passpoint_anqp.wan_metrics_cmd.lmd, UINT))
COMMAND(oper_class_cmd, unset_means_no(),
        FIELD("value", passpoint_anqp.oper_class_cmd.value, STRING))

// clang-format on
END_PACKAGE(passpoint_anqp)

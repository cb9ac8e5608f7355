// passpoint_ie: the Passpoint elements that a BSS announces (IEEE 802.11u).
#include "store/packages/package.h"

PACKAGE(passpoint_ie, BSS)
// clang-format off

COMMAND(interworking_cmd, unset_means_no(),
        FIELD("status", passpoint_ie.interworking_cmd.status, STATUS))
COMMAND(roaming_consortium_cmd, always_reset(ARRAY(passpoint_ie.roaming_consortium_cmd)),
        FIELD("oi", passpoint_ie.roaming_consortium_cmd[i].oi, STRING))
COMMAND(access_network_type_cmd, unset_means_no(),
        FIELD("type", passpoint_ie.access_network_type_cmd.type, UINT))
COMMAND(internet_cmd, unset_means_no(),
        FIELD("value", passpoint_ie.internet_cmd.value, UINT))
COMMAND(asra_cmd, unset_means_no(),
        FIELD("value", passpoint_ie.asra_cmd.value, UINT))
COMMAND(dgaf_block_cmd, unset_means_no(),
        FIELD("value", passpoint_ie.dgaf_block_cmd.value, UINT))
COMMAND(hessid_cmd, unset_means_no(),
        FIELD("hessid", passpoint_ie.hessid_cmd.hessid, MAC_ADDR))
COMMAND(pame_bi_cmd, unset_means_no(),
        FIELD("value", passpoint_ie.pame_bi_cmd.value, UINT))
COMMAND(query_response_length_limit_cmd, group(),
        FIELD("value", passpoint_ie.query_response_length_limit_cmd.value, UINT))
COMMAND(p2p_cross_connect_cmd, unset_means_no(),
        FIELD("value", passpoint_ie.p2p_cross_connect_cmd.value, UINT))
COMMAND(p2p_dev_mgmt_cmd, unset_means_no(),
        FIELD("value", passpoint_ie.p2p_dev_mgmt_cmd.value, UINT))
COMMAND(venue_info_cmd, unset_means_no(),
        FIELD("group", passpoint_ie.venue_info_cmd.group, UINT),
        FIELD("type", passpoint_ie.venue_info_cmd.type, UINT))

// clang-format on
END_PACKAGE(passpoint_ie)

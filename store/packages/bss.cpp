// bss: one BSS (WLAN) of a radio.
#include "store/packages/package.h"

PACKAGE(bss, BSS)
// clang-format off

COMMAND(shutdown_cmd, flag(AT(shutdown_cmd.state)))
COMMAND(ssid_cmd, group(),
        TEXT("ssid", ssid_cmd.ssid))
COMMAND(hidden_ssid_cmd, group(),
        FIELD("status", hidden_ssid_cmd.status, STATUS))
COMMAND(rts_threshold_cmd, group(),
        FIELD("rts", rts_threshold_cmd.rts, UINT))
COMMAND(frag_threshold_cmd, group(),
        FIELD("frag", frag_threshold_cmd.frag, UINT))
COMMAND(dtim_interval_cmd, group(),
        FIELD("interval", dtim_interval_cmd.interval, UINT))
COMMAND(max_station_cmd, group(),
        FIELD("max_sta", max_station_cmd.max_sta, UINT))
COMMAND(wired_lan_cmd, group(),
        FIELD("lan_id", wired_lan_cmd.lan_id, UINT8))
COMMAND(dot11ac_ampdu_cmd, group(),
        FIELD("vht_ampdu", dot11ac_ampdu_cmd.vht_ampdu, UINT))
COMMAND(dot11ac_amsdu_cmd, group(),
        FIELD("vht_amsdu", dot11ac_amsdu_cmd.vht_amsdu, UINT))
COMMAND(dot11ac_maxampdu_cmd, group(),
        FIELD("vht_maxampdu", dot11ac_maxampdu_cmd.vht_maxampdu, UINT))
COMMAND(dot11ac_vhtmaxampdu_cmd, group(),
        FIELD("vht_maxampdu", dot11ac_vhtmaxampdu_cmd.vht_maxampdu, UINT))
COMMAND(wmm, package_node(lib_pkg_wmm, AREA(wmm)))
COMMAND(beacon_rate_cmd, group(),
        FIELD("beacon_rate", beacon_rate_cmd.beacon_rate, BEACON_RATE))
COMMAND(mcast_rate_cmd, group(),
        FIELD("mcast_rate", mcast_rate_cmd.mcast_rate, MCAST_RATE))
COMMAND(min_rate_cmd, group(),
        FIELD("min_rate", min_rate_cmd.min_rate, MIN_RATE))
COMMAND(pureg_cmd, group(),
        FIELD("status", pureg_cmd.status, STATUS))
COMMAND(transmit_rates_cmd, group(),
        VALUES("transmit_rates", transmit_rates_cmd.rates, RADIO_RATES))
COMMAND(supported_rates_cmd, group(),
        VALUES("supported_rates", supported_rates_cmd.rates, RADIO_RATES))
COMMAND(sta_isolation_cmd, group(),
        FIELD("status", sta_isolation_cmd.status, STATUS))
COMMAND(switchport_cmd, group(),
        FIELD("switchport_type", switchport_cmd.switchport_type, SWITCHPORT_TYPE),
        FIELD("vlanid", switchport_cmd.vlanid, UINT))
COMMAND(macauth_status_cmd, group(),
        FIELD("status", macauth_status_cmd.status, STATUS))
COMMAND(macauth_server_cmd, group(),
        FIELD("ip", macauth_server_cmd.ip, IPV4),
        FIELD("port", macauth_server_cmd.port, UINT),
        FIELD("mode", macauth_server_cmd.mode, MACAUTH_MODE),
        FIELD("maccase", macauth_server_cmd.maccase, MAC_CASE),
        FIELD("delimiter", macauth_server_cmd.delimiter, MAC_DELIMITER),
        TEXT("key", macauth_server_cmd.key, secret))
COMMAND(auth_type_cmd, group(),
        FIELD("type", auth_type_cmd.type, AUTH_TYPE))
COMMAND(auth_shared_wep, package_node(lib_pkg_auth_shared_wep, AREA(auth_shared_wep)))
COMMAND(auth_open_wep, package_node(lib_pkg_auth_open_wep, AREA(auth_open_wep)))
COMMAND(auth_open_wpa, package_node(lib_pkg_auth_open_wpa, AREA(auth_open_wpa)))
COMMAND(auth_open_wpa2, package_node(lib_pkg_auth_open_wpa2, AREA(auth_open_wpa2)))
COMMAND(auth_wpa_wpa2, package_node(lib_pkg_auth_wpa_wpa2, AREA(auth_wpa_wpa2)))
COMMAND(auth_wpa3_sae, package_node(lib_pkg_auth_wpa3_sae, AREA(auth_wpa3_sae)))
COMMAND(auth_wpa2_wpa3, package_node(lib_pkg_auth_wpa2_wpa3, AREA(auth_wpa2_wpa3)))
COMMAND(access_list, package_node(lib_pkg_access_list, AREA(access_list)))
COMMAND(webauth_parameter, package_node(lib_pkg_webauth_parameter, AREA(webauth_parameter)))
COMMAND(ssid_encode_identify_cmd, group(),
        FIELD("encode_type", ssid_encode_identify_cmd.encode_type, UINT8),
        FIELD("ssid_identify", ssid_encode_identify_cmd.ssid_identify, UINT64))
COMMAND(session_id_cmd, group(),
        FIELD("sta_mac", session_id_cmd.sta_mac, MAC_ADDR),
        FIELD("session_id_0", session_id_cmd.session_id_0, UINT64),
        FIELD("session_id_1", session_id_cmd.session_id_1, UINT64))
COMMAND(ssid_down_bw_cmd, group(),
        FIELD("bandwidth", ssid_down_bw_cmd.bandwidth, UINT))
COMMAND(ssid_up_bw_cmd, group(),
        FIELD("bandwidth", ssid_up_bw_cmd.bandwidth, UINT))
COMMAND(user_down_bw_cmd, group(),
        FIELD("bandwidth", user_down_bw_cmd.bandwidth, UINT))
COMMAND(user_up_bw_cmd, group(),
        FIELD("bandwidth", user_up_bw_cmd.bandwidth, UINT))
COMMAND(local_portal_cmd, group(),
        FIELD("status", local_portal_cmd.status, STATUS))
COMMAND(vap_acl_index_cmd, group(),
        FIELD("pre_index", vap_acl_index_cmd.pre_index, UINT),
        FIELD("post_index", vap_acl_index_cmd.post_index, UINT))
COMMAND(local_dhcp_cmd, group(),
        FIELD("status", local_dhcp_cmd.status, STATUS))
COMMAND(local_associate_cmd, group(),
        FIELD("status", local_associate_cmd.status, STATUS))
COMMAND(local_webauth_cmd, group(),
        FIELD("status", local_webauth_cmd.status, STATUS))
COMMAND(tunnel_mode_cmd, group(),
        FIELD("mode", tunnel_mode_cmd.mode, TUNNEL_MODE))
COMMAND(brcast_repress_cmd, group(),
        FIELD("status", brcast_repress_cmd.status, STATUS))
COMMAND(band_steering, package_node(lib_pkg_band_steering, AREA(band_steering)))
COMMAND(time_option_cmd, group(),
        FIELD("option", time_option_cmd.option, STATUS))
COMMAND(time_range_cmd, reset_on_change(ARRAY(time_range_cmd), AT(time_range_cmd_opt)),
        FIELD("type", time_range_cmd[i].type, TIMERANGE_TYPE),
        FIELD("start_time", time_range_cmd[i].start_time, UINT16),
        FIELD("end_time", time_range_cmd[i].end_time, UINT16))
COMMAND(dot11k_cfg, package_node(lib_pkg_dot11k_cfg, AREA(dot11k_cfg)))
COMMAND(dhcp_option82, package_node(lib_pkg_dhcp_option82, AREA(dhcp_option82)))
COMMAND(passpoint_ie, unconditional_node(lib_pkg_passpoint_ie))
COMMAND(passpoint_anqp, unconditional_node(lib_pkg_passpoint_anqp))
COMMAND(mfp_mode_cmd, group(),
        FIELD("mode", mfp_mode_cmd.mode, MFP_MODE))
COMMAND(ppsk_status_cmd, group(),
        FIELD("status", ppsk.ppsk_status_cmd.status, STATUS))
COMMAND(ppsk_cmd, group(),
        FIELD("change", ppsk.ppsk_cmd.change, UINT8))
COMMAND(multicast_to_unicast, package_node(lib_pkg_multicast_to_unicast, AREA(multicast_to_unicast)))

// clang-format on
END_PACKAGE(bss)

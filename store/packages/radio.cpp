// radio: one radio.
#include "store/packages/package.h"

PACKAGE(radio, RADIO)
// clang-format off

COMMAND(shutdown_cmd, flag(AT(shutdown_cmd.state)))
COMMAND(ampdu_cmd, group(),
        FIELD("number", ampdu_cmd.number, UINT))
COMMAND(amsdu_cmd, group(),
        FIELD("number", amsdu_cmd.number, UINT))
COMMAND(short_gi_cmd, group(),
        FIELD("status", short_gi_cmd.status, STATUS))
COMMAND(vht_short_gi_cmd, group(),
        FIELD("status", vht_short_gi_cmd.status, STATUS))
COMMAND(location_status_cmd, group(),
        FIELD("status", location_status_cmd.status, STATUS))
COMMAND(location_probe_cmd, group(),
        FIELD("status", location_probe_cmd.status, STATUS))
COMMAND(location_rssi_threshold_cmd, group(),
        FIELD("rssi", location_rssi_threshold_cmd.rssi, SINT))
COMMAND(promisc_mode_cmd, group(),
        FIELD("status", promisc_mode_cmd.status, STATUS))
COMMAND(antennagain_cmd, group(),
        FIELD("angain", antennagain_cmd.angain, UINT))
COMMAND(txpower_cmd, group(),
        FIELD("txpower", txpower_cmd.txpower, UINT))
COMMAND(max_ampdu_cmd, group(),
        FIELD("length", max_ampdu_cmd.length, UINT))
COMMAND(vht_max_ampdu_cmd, group(),
        FIELD("length", vht_max_ampdu_cmd.length, UINT))
COMMAND(beacon_interval_cmd, group(),
        FIELD("interval", beacon_interval_cmd.interval, UINT))
COMMAND(max_distance_cmd, group(),
        FIELD("max_distance", max_distance_cmd.max_distance, UINT))
COMMAND(ldpc_cmd, group(),
        FIELD("status", ldpc_cmd.status, STATUS))
COMMAND(txchainmask_cmd, group(),
        FIELD("txchainmask", txchainmask_cmd.txchainmask, UINT))
COMMAND(rxchainmask_cmd, group(),
        FIELD("rxchainmask", rxchainmask_cmd.rxchainmask, UINT))
COMMAND(short_preamble_cmd, group(),
        FIELD("status", short_preamble_cmd.status, STATUS))
COMMAND(slb_update_interval_cmd, group(),
        FIELD("clb_interval", slb_update_interval_cmd.clb_interval, UINT))
COMMAND(load_balance_cmd, group(),
        FIELD("status", load_balance_cmd.status, STATUS))
COMMAND(vx_iv_admission_cmd, group(),
        FIELD("status", vx_iv_admission_cmd.status, STATUS))
COMMAND(autorf, package_node(lib_pkg_autorf, AREA(autorf)))
COMMAND(wireless_mode_cmd, group(),
        FIELD("mode", wireless_mode_cmd.mode, WIRELESS_MODE))
COMMAND(channel_cmd, group(),
        FIELD("channel", channel_cmd.channel, CHANNEL))
COMMAND(time_option_cmd, group(),
        FIELD("option", time_option_cmd.option, STATUS))
COMMAND(time_range_cmd, reset_on_change(ARRAY(time_range_cmd), AT(time_range_cmd_opt)),
        FIELD("type", time_range_cmd[i].type, TIMERANGE_TYPE),
        FIELD("start_time", time_range_cmd[i].start_time, UINT16),
        FIELD("end_time", time_range_cmd[i].end_time, UINT16))
COMMAND(rf_opt_kick_assist_cmd, group(),
        FIELD("status", rf_opt_kick_assist_cmd.status, STATUS))
COMMAND(rf_opt_handoff_assist_cmd, group(),
        FIELD("status", rf_opt_handoff_assist_cmd.status, STATUS))
COMMAND(rf_opt_low_rssi_threshold_cmd, group(),
        FIELD("assoc_min_rssi", rf_opt_low_rssi_threshold_cmd.assoc_min_rssi, SINT),
        FIELD("disassoc_min_rssi", rf_opt_low_rssi_threshold_cmd.disassoc_min_rssi, SINT))
COMMAND(rf_opt_rssi_ck_frq_cmd, group(),
        FIELD("min_rssi_freq", rf_opt_rssi_ck_frq_cmd.min_rssi_freq, SINT))
COMMAND(rf_opt_rssi_fof_wt_cmd, group(),
        FIELD("min_rssi_times", rf_opt_rssi_fof_wt_cmd.min_rssi_times, SINT))
COMMAND(he_max_ampdu_cmd, group(),
        FIELD("length", he_max_ampdu_cmd.length, UINT))
COMMAND(he_short_gi_cmd, group(),
        FIELD("shortgi", he_short_gi_cmd.shortgi, HE_SHORTGI))
COMMAND(he_qam1024_cmd, group(),
        FIELD("status", he_qam1024_cmd.status, STATUS))
COMMAND(he_ulofdma_cmd, group(),
        FIELD("status", he_ulofdma_cmd.status, STATUS))
COMMAND(he_dlofdma_cmd, group(),
        FIELD("status", he_dlofdma_cmd.status, STATUS))
COMMAND(he_mu_mimo_cmd, group(),
        FIELD("status", he_mu_mimo_cmd.status, STATUS))
COMMAND(he_bss_color_cmd, group(),
        FIELD("status", he_bss_color_cmd.status, STATUS))
COMMAND(bss, record_node(lib_pkg_bss, APCONF_SCOPE_BSS, ARRAY(bss), AT(bss[0].state)),
        INSTANCE("wlan_id"))

// clang-format on
END_PACKAGE(radio)

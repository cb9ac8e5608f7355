// dot11k_cfg: radio resource measurement (IEEE 802.11k) of a BSS.
#include "store/packages/package.h"

PACKAGE(dot11k_cfg, BSS)
// clang-format off

COMMAND(dot11a_chan_rep_list_cmd, reset_on_change(ARRAY(dot11k_cfg.dot11a_chan_rep_list_cmd), AT(dot11k_cfg.dot11a_chan_rep_list_cmd_opt)),
        FIELD("channel", dot11k_cfg.dot11a_chan_rep_list_cmd[i].channel, CHANNEL))
COMMAND(dot11a_bcn_req_list_cmd, reset_on_change(ARRAY(dot11k_cfg.dot11a_bcn_req_list_cmd), AT(dot11k_cfg.dot11a_bcn_req_list_cmd_opt)),
        FIELD("channel", dot11k_cfg.dot11a_bcn_req_list_cmd[i].channel, CHANNEL))
COMMAND(dot11g_chan_rep_list_cmd, reset_on_change(ARRAY(dot11k_cfg.dot11g_chan_rep_list_cmd), AT(dot11k_cfg.dot11g_chan_rep_list_cmd_opt)),
        FIELD("channel", dot11k_cfg.dot11g_chan_rep_list_cmd[i].channel, CHANNEL))
COMMAND(dot11g_bcn_req_list_cmd, reset_on_change(ARRAY(dot11k_cfg.dot11g_bcn_req_list_cmd), AT(dot11k_cfg.dot11g_bcn_req_list_cmd_opt)),
        FIELD("channel", dot11k_cfg.dot11g_bcn_req_list_cmd[i].channel, CHANNEL))
COMMAND(dot11k_en_cmd, group(),
        FIELD("status", dot11k_cfg.dot11k_en_cmd.status, STATUS))
COMMAND(bcn_req_measur_mode_cmd, group(),
        FIELD("mode", dot11k_cfg.bcn_req_measur_mode_cmd.mode, BEACON_REQUEST_MODE))
COMMAND(bcn_req_invl_cmd, group(),
        FIELD("interval", dot11k_cfg.bcn_req_invl_cmd.interval, UINT8))
COMMAND(rcpi_threshold_cmd, group(),
        FIELD("rcpi", dot11k_cfg.rcpi_threshold_cmd.rcpi, UINT8))

// clang-format on
END_PACKAGE(dot11k_cfg)

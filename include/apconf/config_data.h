/* SPDX-License-Identifier: MIT
 *
 * The configuration data block: the whole configuration of the access point in one fixed-layout record, `root`, and the
 * reference copy that tells what a batch changed, `mirror_root`.
 *
 * A field has the width of its ptype, which stands in the comment beside it; keys, ranges and defaults are the
 * schema's. A member expression is the path that the log lines name.
 *
 * Unset: every byte 0xFF, except that pointers and counts are 0 and that the arrays marked "unset: 0" are zero.
 * Text (`char *`) and list members are heap memory that the block owns; setting one always stores a fresh copy, because
 * texts are compared by pointer. A null text means: not set.
 * Whole records are compared byte for byte: copy them with memcpy, leave the reserved members alone.
 */
#ifndef APCONF_CONFIG_DATA_H
#define APCONF_CONFIG_DATA_H

#include <stdint.h>

#include "apconf/ptype.h"

struct json_object; /* json-c */

#ifdef __cplusplus
extern "C" {
#endif

enum {
    RADIO_COUNT = 2,
    BSS_COUNT = 16, /* per radio */
    ETHERNET_COUNT = 5,
    FTP_COUNT = 16,
    TIME_RANGE_COUNT = 8,
    WEP_KEY_COUNT = 4,
    RADIUS_AUTH_SERVER_COUNT = 16,
    MAC_ACL_COUNT = 256,
    DOMAIN_ACL_COUNT = 128,
    RATE_COUNT = 12,
    ACE_COUNT = 128,
    DNS_COUNT = 1024
};

/* Marks in the words that say what became of a thing. */
#define CONFIG_NEGATED 0xFFFFFFFEu /* the negated form was given; a BSS with this state is to be deleted */
#define CONFIG_SET 1u              /* shutdown_cmd.state: shutdown_cmd was given */
#define BSS_RECREATE 2u            /* bss[wid].state: delete the BSS, then create it again */
#define LIST_REPLACED 1u           /* option word of a list: the batch replaces the whole list */

/* Words that only 64-bit machines need to keep pointers aligned, and words that only 32-bit machines need in turn;
 * declared, so that no byte of a record is nobody's. */
#if UINTPTR_MAX > 0xFFFFFFFFu
#define CONFIG_POINTER_PAD(name) uint32_t name;
#define CONFIG_WORD_PAD(name)
#else
#define CONFIG_POINTER_PAD(name)
#define CONFIG_WORD_PAD(name) uint32_t name;
#endif
/* i386 aligns 8-byte integers to 4 bytes, other machines to 8: records that hold one are aligned alike everywhere. */
#define CONFIG_ALIGN8 __attribute__((aligned(8)))

/* clang-format off */

struct time_range {
    uint32_t type;         /* TIMERANGE_TYPE */
    uint16_t start_time;   /* UINT16: minutes since midnight */
    uint16_t end_time;     /* UINT16: minutes since midnight */
};

struct wep_key {
    uint32_t idx;          /* UINT */
    uint32_t type;         /* WEP_KEY_TYPE */
    char *key;             /* text, secret */
};

struct radius_server {
    uint32_t ip;           /* IPV4 */
    uint32_t port;         /* UINT: UDP port */
    char *key;             /* text, secret: the shared secret */
};

struct text_element {
    char *value;           /* text */
};

struct named_text {
    char *language;        /* text: ISO 639 language code */
    char *name;            /* text */
};

struct auth_wep_config {
    struct { uint32_t key; } default_key_cmd;                       /* UINT: index of the key to send with */
    CONFIG_POINTER_PAD(reserved)
    struct wep_key wep_key_cmd[WEP_KEY_COUNT];
};

struct auth_wpa_config {
    struct {
        uint32_t type;                                              /* WPA_TYPE */
        uint32_t cipher;                                            /* CIPHER_TYPE */
        uint32_t key_type;                                          /* WEP_KEY_TYPE */
        CONFIG_POINTER_PAD(reserved)
        char *key;                                                  /* text, secret */
    } wpa_type_cmd;
    uint32_t wpa_radius_auth_server_cmd_opt;                        /* LIST_REPLACED, or the list is not reported */
    CONFIG_POINTER_PAD(reserved)
    struct radius_server wpa_radius_auth_server_cmd[RADIUS_AUTH_SERVER_COUNT];
    struct radius_server wpa_radius_acct_server_cmd;
};

struct auth_wpa2_config {
    struct {
        uint32_t type;                                              /* WPA_TYPE */
        uint32_t cipher;                                            /* CIPHER_TYPE */
        uint32_t key_type;                                          /* WEP_KEY_TYPE */
        uint8_t pmk_cache_mode;                                     /* UINT8 */
        uint8_t reserved[3];
        char *key;                                                  /* text, secret */
    } wpa_type_cmd;
    uint32_t wpa_radius_auth_server_cmd_opt;                        /* LIST_REPLACED, or the list is not reported */
    CONFIG_POINTER_PAD(reserved)
    struct radius_server wpa_radius_auth_server_cmd[RADIUS_AUTH_SERVER_COUNT];
    struct radius_server wpa_radius_acct_server_cmd;
};

/* The texts of auth_wpa3_sae and auth_wpa2_wpa3 are not released by a commit: their owner, who set them, does that. */
struct auth_wpa3_sae_config {
    struct {
        uint32_t type;                                              /* WPA_TYPE */
        uint32_t cipher;                                            /* CIPHER_TYPE */
        uint32_t key_type;                                          /* WEP_KEY_TYPE */
        CONFIG_POINTER_PAD(reserved)
        char *sae_password;                                         /* text, secret */
    } wpa_type_cmd;
    uint32_t wpa_radius_auth_server_cmd_opt;                        /* LIST_REPLACED, or the list is not reported */
    CONFIG_POINTER_PAD(reserved)
    struct radius_server wpa_radius_auth_server_cmd[RADIUS_AUTH_SERVER_COUNT];
    struct radius_server wpa_radius_acct_server_cmd;
};

struct auth_wpa2_wpa3_config {
    struct {
        uint32_t type;                                              /* WPA_TYPE */
        uint32_t cipher;                                            /* CIPHER_TYPE */
        uint32_t key_type;                                          /* WEP_KEY_TYPE */
        CONFIG_POINTER_PAD(reserved)
        char *key;                                                  /* text, secret */
    } wpa_type_cmd;
};

struct access_list_config {
    struct { uint32_t type; } acl_type_cmd;                         /* ACCESS_LIST_TYPE */
    uint32_t mac_acl_cmd_opt;                                       /* LIST_REPLACED; unset: 0 */
    struct { struct mac_addr mac; } mac_acl_cmd[MAC_ACL_COUNT];     /* MAC_ADDR, packed from the front; unset: 0 */
    uint32_t domain_acl_cmd_opt;                                    /* CONFIG_NEGATED: report the list in any case */
    CONFIG_POINTER_PAD(reserved)
    struct {
        uint32_t forward;                                           /* UINT */
        CONFIG_POINTER_PAD(reserved)
        char *domain;                                               /* text */
    } domain_acl_cmd[DOMAIN_ACL_COUNT];
};

struct http_portal {
    uint32_t status;                                                /* STATUS */
    uint32_t portal_type;                                           /* UINT */
    uint32_t portal_ip;                                             /* IPV4 */
    uint32_t redir_ip;                                              /* IPV4 */
    uint32_t ac_ip;                                                 /* IPV4 */
    struct mac_addr ac_mac;                                         /* MAC_ADDR */
    uint8_t reserved[2];
    uint32_t nas_ip;                                                /* IPV4 */
    char *url;                                                      /* text */
    char *ac_name;                                                  /* text */
    char *ssid;                                                     /* text */
};

struct webauth_parameter_config {
    struct { uint32_t vlan, configure; } url_parameter_cmd;         /* UINT, UINT */
    struct {
        uint32_t index;                                             /* UINT */
        uint32_t format;                                            /* UINT */
        char *nickname;                                             /* text */
    } portal_url_cmd[13];
    struct { uint32_t type; } dmi_type_cmd;                         /* UINT */
    CONFIG_POINTER_PAD(reserved)
    struct {
        uint32_t ip;                                                /* IPV4 */
        CONFIG_POINTER_PAD(reserved)
        char *domain;                                               /* text */
    } portal_dmi_cmd[4];
    struct http_portal http_login_cmd;
    struct http_portal http_logout_cmd;
    struct { uint32_t vlan, configure; } http_parameter_cmd;        /* UINT, UINT */
    struct { char *src, *dst; } http_url_cmd[16];                   /* text, text */
};

struct wmm_config {
    struct { uint32_t status; } status_cmd;                         /* STATUS */
    struct {
        uint32_t wmm_ac_dscp_map;                                   /* WMM_MAP: the access category that is mapped */
        uint32_t wmm_ac_dscp_map_bk;                                /* UINT: DSCP */
        uint32_t wmm_ac_dscp_map_be;                                /* UINT: DSCP */
        uint32_t wmm_ac_dscp_map_vi;                                /* UINT: DSCP */
        uint32_t wmm_ac_dscp_map_vo;                                /* UINT: DSCP */
    } ac_dscp_map_cmd[4];
};

struct band_steering_config {
    struct { uint32_t status; } band_steering_cmd;                  /* STATUS */
    struct { uint32_t mode; } band_steering_mode_cmd;               /* BAND_STEERING_MODE */
    struct { uint32_t count; } band_steering_count_cmd;             /* UINT */
};

struct dot11k_cfg_config {
    uint32_t dot11a_chan_rep_list_cmd_opt;                          /* any difference: the batch replaces the list */
    struct { uint32_t channel; } dot11a_chan_rep_list_cmd[64];      /* CHANNEL */
    uint32_t dot11a_bcn_req_list_cmd_opt;
    struct { uint32_t channel; } dot11a_bcn_req_list_cmd[64];       /* CHANNEL */
    uint32_t dot11g_chan_rep_list_cmd_opt;
    struct { uint32_t channel; } dot11g_chan_rep_list_cmd[14];      /* CHANNEL */
    uint32_t dot11g_bcn_req_list_cmd_opt;
    struct { uint32_t channel; } dot11g_bcn_req_list_cmd[14];       /* CHANNEL */
    struct { uint32_t status; } dot11k_en_cmd;                      /* STATUS */
    struct { uint32_t mode; } bcn_req_measur_mode_cmd;              /* BEACON_REQUEST_MODE */
    struct { uint8_t interval; } bcn_req_invl_cmd;                  /* UINT8 */
    struct { uint8_t rcpi; } rcpi_threshold_cmd;                    /* UINT8 */
    uint8_t reserved[2];
};

struct option82_id {
    uint32_t type;                                                  /* OPTION82_ID_TYPE */
    uint32_t format;                                                /* STRING_FORMAT */
    char *value;                                                    /* HEX_STR when format is hex, else text */
};

struct dhcp_option82_config {
    struct { uint32_t status; } status_cmd;                         /* STATUS */
    struct { uint32_t mcase, delimiter, character; } mac_format_cmd; /* MAC_CASE, MAC_DELIMITER, MAC_CHARACTER */
    struct option82_id circuit_id_cmd;
    struct option82_id remote_id_cmd;
};

struct passpoint_ie_config {
    struct { uint32_t status; } interworking_cmd;                   /* STATUS */
    CONFIG_POINTER_PAD(reserved)
    struct { char *oi; } roaming_consortium_cmd[192];               /* STRING: organisation identifier */
    struct { uint32_t type; } access_network_type_cmd;              /* UINT */
    struct { uint32_t value; } internet_cmd;                        /* UINT */
    struct { uint32_t value; } asra_cmd;                            /* UINT */
    struct { uint32_t value; } dgaf_block_cmd;                      /* UINT */
    struct { struct mac_addr hessid; } hessid_cmd;                  /* MAC_ADDR */
    uint8_t reserved2[2];
    struct { uint32_t value; } pame_bi_cmd;                         /* UINT */
    struct { uint32_t value; } query_response_length_limit_cmd;     /* UINT */
    struct { uint32_t value; } p2p_cross_connect_cmd;               /* UINT */
    struct { uint32_t value; } p2p_dev_mgmt_cmd;                    /* UINT */
    struct { uint32_t group, type; } venue_info_cmd;                /* UINT, UINT */
};

struct passpoint_anqp_config {
    struct named_text venue_name_cmd[64];                           /* STRING, STRING */
    struct {
        uint32_t auth_type;                                         /* UINT */
        CONFIG_POINTER_PAD(reserved)
        char *url;                                                  /* STRING */
    } network_auth_cmd[64];
    struct { uint32_t ipv4_type, ipv6_type; } ip_address_availability_cmd; /* UINT, UINT */
    struct { char *mcc, *mnc; } cellular_cmd[42];                   /* STRING, STRING: ITU-T E.212 */
    struct text_element domain_name_cmd[64];                        /* STRING */
    struct { char *nai_realm; } nai_realm_cmd[64];                  /* STRING */
    struct named_text friendly_name_cmd[64];                        /* STRING, STRING */
    struct CONFIG_ALIGN8 {
        uint32_t link_status;                                       /* UINT */
        uint32_t reserved;
        uint64_t dl_speed;                                          /* UINT64: kbit/s */
        uint64_t ul_speed;                                          /* UINT64: kbit/s */
        uint32_t dl_load;                                           /* UINT */
        uint32_t ul_load;                                           /* UINT */
        uint32_t lmd;                                               /* UINT: load measurement duration */
        uint32_t reserved2;
    } wan_metrics_cmd;
    struct { char *value; } oper_class_cmd;                         /* STRING */
    CONFIG_WORD_PAD(reserved)
};

struct ppsk_config {
    struct { uint32_t status; } ppsk_status_cmd;                    /* STATUS */
    struct { uint8_t change; } ppsk_cmd;                            /* UINT8 */
    uint8_t reserved[3];
};

struct multicast_to_unicast_config {
    struct { uint32_t status; } status_cmd;                         /* STATUS */
    struct { uint32_t threshold; } membership_threshold_cmd;        /* UINT */
    struct { uint32_t interval; } query_interval_cmd;               /* UINT: seconds */
};

/* One BSS (WLAN) of a radio. */
struct bss_config {
    uint32_t state;                                                 /* CONFIG_NEGATED, BSS_RECREATE, or nothing */
    struct { uint32_t state; } shutdown_cmd;                        /* CONFIG_SET, CONFIG_NEGATED */
    struct { char *ssid; } ssid_cmd;                                /* text: IEEE 802.11 SSID */
    struct { uint32_t status; } hidden_ssid_cmd;                    /* STATUS */
    struct { uint32_t rts; } rts_threshold_cmd;                     /* UINT: octets */
    struct { uint32_t frag; } frag_threshold_cmd;                   /* UINT: octets */
    struct { uint32_t interval; } dtim_interval_cmd;                /* UINT: beacon intervals */
    struct { uint32_t max_sta; } max_station_cmd;                   /* UINT */
    struct { uint8_t lan_id; } wired_lan_cmd;                       /* UINT8 */
    uint8_t reserved[3];
    struct { uint32_t vht_ampdu; } dot11ac_ampdu_cmd;               /* UINT */
    struct { uint32_t vht_amsdu; } dot11ac_amsdu_cmd;               /* UINT */
    struct { uint32_t vht_maxampdu; } dot11ac_maxampdu_cmd;         /* UINT */
    struct { uint32_t vht_maxampdu; } dot11ac_vhtmaxampdu_cmd;      /* UINT */
    struct wmm_config wmm;
    struct { uint32_t beacon_rate; } beacon_rate_cmd;               /* BEACON_RATE */
    struct { uint32_t mcast_rate; } mcast_rate_cmd;                 /* MCAST_RATE */
    struct { uint32_t min_rate; } min_rate_cmd;                     /* MIN_RATE */
    struct { uint32_t status; } pureg_cmd;                          /* STATUS */
    struct { uint32_t rates[RATE_COUNT]; } transmit_rates_cmd;      /* RADIO_RATES */
    struct { uint32_t rates[RATE_COUNT]; } supported_rates_cmd;     /* RADIO_RATES */
    struct { uint32_t status; } sta_isolation_cmd;                  /* STATUS */
    struct { uint32_t switchport_type, vlanid; } switchport_cmd;    /* SWITCHPORT_TYPE, UINT */
    struct { uint32_t status; } macauth_status_cmd;                 /* STATUS */
    CONFIG_POINTER_PAD(reserved2)
    struct {
        uint32_t ip;                                                /* IPV4 */
        uint32_t port;                                              /* UINT: UDP port */
        uint32_t mode;                                              /* MACAUTH_MODE */
        uint32_t maccase;                                           /* MAC_CASE */
        uint32_t delimiter;                                         /* MAC_DELIMITER */
        CONFIG_POINTER_PAD(reserved)
        char *key;                                                  /* text, secret */
    } macauth_server_cmd;
    struct { uint32_t type; } auth_type_cmd;                        /* AUTH_TYPE */
    CONFIG_POINTER_PAD(reserved3)
    struct auth_wep_config auth_shared_wep;
    struct auth_wep_config auth_open_wep;
    struct auth_wpa_config auth_open_wpa;
    struct auth_wpa2_config auth_open_wpa2;
    struct auth_wpa2_config auth_wpa_wpa2;
    struct auth_wpa3_sae_config auth_wpa3_sae;
    struct auth_wpa2_wpa3_config auth_wpa2_wpa3;
    struct access_list_config access_list;
    struct webauth_parameter_config webauth_parameter;
    struct CONFIG_ALIGN8 {
        uint8_t encode_type;                                        /* UINT8 */
        uint8_t reserved[7];
        uint64_t ssid_identify;                                     /* UINT64 */
    } ssid_encode_identify_cmd;
    struct CONFIG_ALIGN8 {
        struct mac_addr sta_mac;                                    /* MAC_ADDR */
        uint8_t reserved[2];
        uint64_t session_id_0;                                      /* UINT64 */
        uint64_t session_id_1;                                      /* UINT64 */
    } session_id_cmd;
    struct { uint32_t bandwidth; } ssid_down_bw_cmd;                /* UINT: kbit/s */
    struct { uint32_t bandwidth; } ssid_up_bw_cmd;                  /* UINT: kbit/s */
    struct { uint32_t bandwidth; } user_down_bw_cmd;                /* UINT: kbit/s */
    struct { uint32_t bandwidth; } user_up_bw_cmd;                  /* UINT: kbit/s */
    struct { uint32_t status; } local_portal_cmd;                   /* STATUS */
    struct { uint32_t pre_index, post_index; } vap_acl_index_cmd;   /* UINT, UINT: identifiers of IP access lists */
    struct { uint32_t status; } local_dhcp_cmd;                     /* STATUS */
    struct { uint32_t status; } local_associate_cmd;                /* STATUS */
    struct { uint32_t status; } local_webauth_cmd;                  /* STATUS */
    struct { uint32_t mode; } tunnel_mode_cmd;                      /* TUNNEL_MODE */
    struct { uint32_t status; } brcast_repress_cmd;                 /* STATUS */
    struct band_steering_config band_steering;
    struct { uint32_t option; } time_option_cmd;                    /* STATUS */
    uint32_t time_range_cmd_opt;                                    /* any difference: the batch replaces the list */
    struct time_range time_range_cmd[TIME_RANGE_COUNT];
    struct dot11k_cfg_config dot11k_cfg;
    struct dhcp_option82_config dhcp_option82;
    struct passpoint_ie_config passpoint_ie;
    CONFIG_WORD_PAD(reserved4)
    struct passpoint_anqp_config passpoint_anqp;
    struct { uint32_t mode; } mfp_mode_cmd;                         /* MFP_MODE */
    struct ppsk_config ppsk;
    struct multicast_to_unicast_config multicast_to_unicast;
};

struct autorf_config {
    struct { uint32_t assignment; } assignment_cmd;                 /* ARM_ASSIGNMENT */
    struct { uint32_t status; } client_aware_cmd;                   /* STATUS */
    struct { uint32_t back_off; } back_off_cmd;                     /* UINT */
    struct { uint32_t minimum_scan_time; } minimum_scan_time_cmd;   /* UINT: milliseconds */
    struct { uint32_t scan_time; } scan_time_cmd;                   /* UINT: seconds */
    struct { uint32_t minimum_transmit_power; } minimum_transmit_power_cmd; /* UINT: dBm */
    struct { uint32_t maximum_transmit_power; } maximum_transmit_power_cmd; /* UINT: dBm */
    struct { uint32_t status; } scan_enable_cmd;                    /* STATUS */
};

/* One radio and its BSSes. What stands before `bss` is 64 words. */
struct radio_config {
    struct { uint32_t state; } shutdown_cmd;                        /* CONFIG_SET, CONFIG_NEGATED */
    struct { uint32_t number; } ampdu_cmd;                          /* UINT */
    struct { uint32_t number; } amsdu_cmd;                          /* UINT */
    struct { uint32_t status; } short_gi_cmd;                       /* STATUS */
    struct { uint32_t status; } vht_short_gi_cmd;                   /* STATUS */
    struct { uint32_t status; } location_status_cmd;                /* STATUS */
    struct { uint32_t status; } location_probe_cmd;                 /* STATUS */
    struct { int32_t rssi; } location_rssi_threshold_cmd;           /* SINT: dBm */
    struct { uint32_t status; } promisc_mode_cmd;                   /* STATUS */
    struct { uint32_t angain; } antennagain_cmd;                    /* UINT: dBi */
    struct { uint32_t txpower; } txpower_cmd;                       /* UINT: dBm */
    struct { uint32_t length; } max_ampdu_cmd;                      /* UINT */
    struct { uint32_t length; } vht_max_ampdu_cmd;                  /* UINT */
    struct { uint32_t interval; } beacon_interval_cmd;              /* UINT: time units of 1,024 microseconds */
    struct { uint32_t max_distance; } max_distance_cmd;             /* UINT: metres */
    struct { uint32_t status; } ldpc_cmd;                           /* STATUS */
    struct { uint32_t txchainmask; } txchainmask_cmd;               /* UINT: one bit a chain */
    struct { uint32_t rxchainmask; } rxchainmask_cmd;               /* UINT: one bit a chain */
    struct { uint32_t status; } short_preamble_cmd;                 /* STATUS */
    struct { uint32_t clb_interval; } slb_update_interval_cmd;      /* UINT: seconds */
    struct { uint32_t status; } load_balance_cmd;                   /* STATUS */
    struct { uint32_t status; } vx_iv_admission_cmd;                /* STATUS */
    struct autorf_config autorf;
    struct { uint32_t mode; } wireless_mode_cmd;                    /* WIRELESS_MODE */
    struct { uint32_t channel; } channel_cmd;                       /* CHANNEL */
    struct { uint32_t option; } time_option_cmd;                    /* STATUS */
    uint32_t time_range_cmd_opt;                                    /* any difference: the batch replaces the list */
    struct time_range time_range_cmd[TIME_RANGE_COUNT];
    struct { uint32_t status; } rf_opt_kick_assist_cmd;             /* STATUS */
    struct { uint32_t status; } rf_opt_handoff_assist_cmd;          /* STATUS */
    struct { int32_t assoc_min_rssi, disassoc_min_rssi; } rf_opt_low_rssi_threshold_cmd; /* SINT, SINT: dBm */
    struct { int32_t min_rssi_freq; } rf_opt_rssi_ck_frq_cmd;       /* SINT */
    struct { int32_t min_rssi_times; } rf_opt_rssi_fof_wt_cmd;      /* SINT */
    struct { uint32_t length; } he_max_ampdu_cmd;                   /* UINT */
    struct { uint32_t shortgi; } he_short_gi_cmd;                   /* HE_SHORTGI */
    struct { uint32_t status; } he_qam1024_cmd;                     /* STATUS */
    struct { uint32_t status; } he_ulofdma_cmd;                     /* STATUS */
    struct { uint32_t status; } he_dlofdma_cmd;                     /* STATUS */
    struct { uint32_t status; } he_mu_mimo_cmd;                     /* STATUS */
    struct { uint32_t status; } he_bss_color_cmd;                   /* STATUS */
    uint32_t reserved;
    struct bss_config bss[BSS_COUNT];
};

/* One Ethernet port. */
struct ethernet_config {
    struct { uint32_t state; } shutdown_cmd;                        /* CONFIG_SET, CONFIG_NEGATED */
    CONFIG_POINTER_PAD(reserved)
    struct {
        uint32_t switchport_type;                                   /* SWITCHPORT_TYPE */
        CONFIG_POINTER_PAD(reserved)
        struct {
            uint32_t *list;                                         /* UINT: heap array of `count` VLAN ids */
            int32_t count;
            CONFIG_POINTER_PAD(reserved)
        } vlanid;
    } switchport_cmd;
    struct { uint32_t mtu; } mtu_cmd;                               /* UINT: octets */
    struct { uint32_t ip_type; struct ipv4_mask ip_addr; } ip_address_cmd; /* IP_TYPE, IPV4_MASK */
    struct { uint32_t status; } pppoe_cmd;                          /* STATUS */
    struct { uint32_t interval, echo_times; } pppoe_echo_interval_cmd; /* UINT: seconds, UINT */
    CONFIG_POINTER_PAD(reserved2)
    struct { char *username, *passwd; } pppoe_user_cmd;             /* text, text: secret */
};

/* One VLAN interface, found by vlan_id. */
struct vlan_config {
    uint32_t vlan_id;                                               /* UINT: IEEE 802.1Q VLAN id */
    struct { uint32_t ip_type; struct ipv4_mask ip_addr; } ip_address_cmd; /* IP_TYPE, IPV4_MASK */
    struct {
        uint32_t type;                                              /* DHCP_TYPE */
        CONFIG_POINTER_PAD(reserved)
        char *pool_name;                                            /* STRING */
        char *relay_name;                                           /* no key of its own */
    } dhcp_cmd;
};

/* One DHCP address pool, found by pool_name. */
struct pool_config {
    char *pool_name;                                                /* STRING */
    struct { uint32_t day, time; } lease_cmd;                       /* UINT, TIME_HHMMSS */
    struct { uint32_t start_ip, end_ip; } range_cmd;                /* IPV4, IPV4 */
    struct { uint32_t gateway; } gateway_cmd;                       /* IPV4 */
    struct { struct ipv4_mask network; } network_cmd;               /* IPV4_MASK */
    struct { uint32_t ignored; } ignore_cmd;                        /* STATUS */
    struct { char *domain; } domain_cmd;                            /* text */
    struct { uint32_t ip; } pool_dns_cmd[DNS_COUNT];                /* IPV4; unset: 0 */
    uint32_t reserved[2];
};

/* One entry of an IP access list: 56 bytes on every machine. */
struct CONFIG_ALIGN8 ace_config {
    struct ipv4_mask source_ip_addr;                                /* IPV4_MASK */
    uint32_t first_source_port;                                     /* UINT */
    uint32_t last_source_port;                                      /* UINT */
    struct ipv4_mask dest_ip_addr;                                  /* IPV4_MASK */
    uint32_t first_dest_port;                                       /* UINT */
    uint32_t last_dest_port;                                        /* UINT */
    uint32_t protocol;                                              /* UINT: IP protocol number */
    uint32_t reserved;
    uint64_t strategy;                                              /* UINT64 */
    uint32_t action;                                                /* UINT */
    uint32_t reserved2;
};

/* One IP access list, found by identify. */
struct ip_acl_config {
    uint32_t ace_count;                                             /* valid entries of `ace` */
    uint32_t identify;                                              /* UINT */
    struct ace_config ace[ACE_COUNT];
};

/* One FTP upload service. */
struct ftp_config {
    struct {
        uint8_t daily_hours;                                        /* UINT8 */
        uint8_t daily_minutes;                                      /* UINT8 */
        uint8_t reserved[2];
        uint32_t interval_type;                                     /* FTPS_INTERVAL_TYPE */
        uint8_t interval_value;                                     /* UINT8 */
        uint8_t reserved2[3];
    } timer_cmd;
    CONFIG_POINTER_PAD(reserved)
    struct {
        uint32_t ip;                                                /* IPV4 */
        uint32_t port;                                              /* UINT: TCP port */
        char *path;                                                 /* text */
        char *username;                                             /* text */
        char *password;                                             /* text, secret */
    } server_cmd;
    struct {
        uint32_t status;                                            /* STATUS */
        uint32_t mode;                                              /* FTPS_MODE_TYPE */
        uint32_t policy;                                            /* FTPS_POLICY_TYPE */
        CONFIG_POINTER_PAD(reserved)
        char *name;                                                 /* text */
    } service_cmd;
    struct { uint32_t type; } compress_type_cmd;                    /* FTPS_COMPRESS_TYPE */
    struct { uint32_t status; } compress_rename_cmd;                /* STATUS */
    struct { char *path; } local_path_cmd;                          /* text */
    struct { uint32_t status; } run_immediately_cmd;                /* STATUS */
    struct { uint32_t status; } upload_delete_cmd;                  /* STATUS */
    struct { uint16_t size; } max_log_cmd;                          /* UINT16 */
    struct { uint16_t size; } max_upbuf_cmd;                        /* UINT16 */
    struct { uint16_t bits; } all_service_cmd;                      /* UINT16 */
    uint16_t reserved2;
};

struct dhcp_server_config {
    struct { uint32_t ip; } dns_list_cmd[DNS_COUNT];                /* IPV4; unset: 0 */
    struct { uint32_t time; } def_lease_time_cmd;                   /* UINT: seconds */
    struct { uint32_t time; } max_lease_time_cmd;                   /* UINT: seconds */
    struct {
        struct pool_config *list;                                   /* heap array of `count` pools */
        int32_t count;
        CONFIG_POINTER_PAD(reserved)
    } pool;
};

/* The two dpi servers: `ip` holds for the address type ip, `domain` for domain. */
struct dpi_server {
    uint32_t ip;                                                    /* IPV4 */
    uint32_t type;                                                  /* ADDR_TYPE */
    uint32_t port;                                                  /* UINT */
    CONFIG_POINTER_PAD(reserved)
    char *domain;                                                   /* text */
};

/* The whole configuration. */
struct config_data {
    struct radio_config radio[RADIO_COUNT];
    struct { uint32_t code; } country_code_cmd;                     /* COUNTRY_CODE: ISO 3166-1 numeric */
    CONFIG_POINTER_PAD(reserved)
    struct ethernet_config ethernet[ETHERNET_COUNT];
    struct {
        struct { uint32_t state; } shutdown_cmd;                    /* CONFIG_SET, CONFIG_NEGATED */
        struct { uint32_t status; } gps_status_cmd;                 /* STATUS */
    } celluar;
    struct { uint32_t status; } ip_telnet_cmd;                      /* STATUS */
    struct { uint32_t status; } ip_telnet_wan_cmd;                  /* STATUS */
    struct { uint32_t status; } ip_ssh_cmd;                         /* STATUS */
    struct { uint32_t status; } ip_ssh_wan_cmd;                     /* STATUS */
    struct { uint32_t status; } ip_web_cmd;                         /* STATUS */
    struct { uint32_t status; } ip_web_wan_cmd;                     /* STATUS */
    struct { struct ipv4_mask dest_prefix; uint32_t gateway; } ip_route_cmd; /* IPV4_MASK, IPV4 */
    struct {
        struct { uint32_t outif_type, if_idx; } ip_nat_cmd;         /* IP_NAT_IF, UINT */
    } nat;
    CONFIG_POINTER_PAD(reserved2)
    struct dhcp_server_config dhcp_server;
    struct { uint32_t status; } arp_brcast_sup_cmd;                 /* STATUS */
    struct { uint32_t status; } dhcp_brcast_sup_cmd;                /* STATUS */
    struct { uint32_t status; } ap_traffic_upload_cmd;              /* STATUS */
    struct { uint32_t ip, type; } dns_server_cmd;                   /* IPV4, DNS_SERVER_TYPE */
    CONFIG_POINTER_PAD(reserved3)
    struct {
        struct { uint32_t status; } status_cmd;                     /* STATUS */
        struct { uint32_t status; } logging_mode_cmd;               /* STATUS */
        struct dpi_server logging_audit_cmd;
        struct dpi_server report_server_cmd;
    } dpi;
    struct {
        struct { uint32_t status; } status_cmd;                     /* STATUS */
        struct { uint32_t ip; } server_cmd;                         /* IPV4 */
    } ntp;
    struct {
        uint32_t fake_response_cmd_opt;                             /* any difference: the batch replaces the list */
        CONFIG_POINTER_PAD(reserved)
        struct {
            char *domain;                                           /* text; unset: 0 */
            uint32_t ip;                                            /* IPV4; unset: 0 */
            CONFIG_POINTER_PAD(reserved)
        } fake_response_cmd[5];
    } dns;
    struct {
        struct { uint32_t type, id; } interface_cmd;                /* CAPWAP_IF, UINT */
        struct { uint32_t time; } cloud_time_cmd;                   /* UINT: seconds */
        struct { uint32_t type, ip; } controller_ip_cmd[16];        /* CAPWAP_CTL_TYPE, IPV4 */
        CONFIG_POINTER_PAD(reserved)
        struct { char *name; } controller_name_cmd;                 /* text */
    } capwap;
    struct {
        struct { uint32_t type; } feature_cmd;                      /* LOCATION_FEATURE */
        struct { uint32_t mode; } mode_cmd;                         /* LOCATION_MODE */
        struct {
            uint32_t port;                                          /* UINT */
            uint32_t period;                                        /* UINT: milliseconds */
            uint32_t second_port;                                   /* UINT */
            CONFIG_POINTER_PAD(reserved)
            char *ip;                                               /* text */
            char *second_ip;                                        /* text */
        } server_cmd;
        struct { uint32_t status; } ebag_cmd;                       /* STATUS */
        struct { uint16_t code; } code_cmd;                         /* UINT16 */
        uint16_t reserved;
    } location;
    struct {
        struct { uint32_t status; } status_cmd;                     /* STATUS */
        struct { uint32_t period; } interval_cmd;                   /* UINT: seconds */
        struct { uint32_t limit; } limit_cmd;                       /* UINT */
    } dos;
    struct { uint32_t ip; } local_web_server_cmd;                   /* IPV4 */
    struct {
        struct { uint32_t status; } status_cmd;                     /* STATUS */
        struct { uint32_t status; } ouilist_status_cmd;             /* STATUS */
        struct { uint32_t policy; } policy_cmd;                     /* UINT */
        struct { uint32_t agetime; } agetime_cmd;                   /* UINT: seconds */
        struct { uint32_t status; } rssi_check_cmd;                 /* STATUS */
    } black_list;
    struct { uint32_t ip; } tagged_tunnel_server_cmd;               /* IPV4 */
    struct { uint32_t ip; } softgre_tunnel_server_cmd;              /* IPV4 */
    struct { uint32_t status; } wdt_cmd;                            /* STATUS */
    struct {
        uint32_t zone;                                              /* TIMEZONE; CONFIG_NEGATED */
        int32_t ohour;                                              /* SINT: offset from UTC */
        uint32_t ominute;                                           /* UINT */
        uint32_t sweek;                                             /* UINT: week of the month it starts in */
        uint32_t sday;                                              /* WEEKDAY */
        uint32_t smonth;                                            /* MONTH */
        uint32_t shour;                                             /* UINT */
        uint32_t sminute;                                           /* UINT */
        uint32_t eweek;                                             /* UINT: week of the month it ends in */
        uint32_t eday;                                              /* WEEKDAY */
        uint32_t emonth;                                            /* MONTH */
        uint32_t ehour;                                             /* UINT */
        uint32_t eminute;                                           /* UINT */
    } summer_time_cmd;
    struct { uint32_t zone; int32_t hour; uint32_t minute; } timezone_cmd; /* TIMEZONE; CONFIG_NEGATED, SINT, UINT */
    struct {
        uint32_t ping_type;                                         /* PING_TYPE */
        uint32_t ip_addr;                                           /* IPV4 */
        char *domain;                                               /* text */
    } uplink_check_cmd;
    struct { char *hostname; } hostname_cmd;                        /* text */
    struct { char *password; } password_cmd;                        /* text, secret */
    struct {
        uint32_t type;                                              /* COREDUMP_TYPE; CONFIG_NEGATED */
        uint32_t ip;                                                /* IPV4 */
        char *user;                                                 /* STRING; its key is "username" */
        char *password;                                             /* STRING, secret */
    } dump_server_cmd;
    struct { uint32_t severity, facility, reserved; } log_level_cmd[20]; /* SYSLOG_SEVERITY, SYSLOG_FACILITY */
    struct { uint32_t ip, facility, reserved; } log_server_cmd[20]; /* IPV4, SYSLOG_FACILITY */
    struct { uint32_t size; } log_size_cmd;                         /* UINT: KiB */
    struct { uint32_t status; } log_status_cmd;                     /* STATUS */
    struct { struct json_object *ism; } ism_cmd;                    /* RAW_JSON, owned; reporting it hands it over */
    struct { uint32_t status; } led_control_cmd;                    /* LED_STATUS */
    struct { struct mac_addr mac; } ac_mac_cmd;                     /* MAC_ADDR */
    uint8_t reserved4[2];
    uint32_t reserved5;
    struct CONFIG_ALIGN8 {
        uint64_t seq_num;                                           /* UINT64 */
        uint16_t port;                                              /* UINT16 */
        uint8_t reserved[2];
        uint32_t type;                                              /* ADDR_TYPE */
        uint32_t ip;                                                /* IPV4, with type ip */
        CONFIG_POINTER_PAD(reserved2)
        char *domain;                                               /* text, with type domain */
    } speed_test_cmd;
    struct CONFIG_ALIGN8 {
        uint64_t seq_num;                                           /* UINT64 */
        uint16_t port;                                              /* UINT16 */
        uint8_t reserved[2];
        uint32_t level;                                             /* SYSLOG_SEVERITY */
        uint32_t status;                                            /* STATUS */
        uint32_t type;                                              /* ADDR_TYPE */
        uint32_t ip;                                                /* IPV4, with type ip */
        CONFIG_POINTER_PAD(reserved2)
        char *domain;                                               /* text, with type domain */
    } trace_ap_cmd;
    struct CONFIG_ALIGN8 {
        uint64_t seq_num;                                           /* UINT64 */
        uint16_t port;                                              /* UINT16 */
        uint16_t interval;                                          /* UINT16 */
        uint16_t number;                                            /* UINT16 */
        uint16_t reserved;
        uint32_t type;                                              /* ADDR_TYPE */
        uint32_t ip;                                                /* IPV4, with type ip */
        char *domain;                                               /* text, with type domain */
        CONFIG_WORD_PAD(reserved2)
    } disturb_test_cmd;
    struct { uint32_t status; } config_save_cmd;                    /* STATUS */
    struct { uint32_t status; } multi_cast_cmd;                     /* STATUS */
    struct { uint32_t status; } lan_igmp_snoop_cmd;                 /* never reported */
    CONFIG_POINTER_PAD(reserved6)
    struct {
        struct vlan_config *list;                                   /* heap array of `count` VLANs */
        int32_t count;
        CONFIG_POINTER_PAD(reserved)
    } vlan;
    struct {
        struct ip_acl_config *list;                                 /* heap array of `count` access lists */
        int32_t count;
        CONFIG_POINTER_PAD(reserved)
    } ip_acl;
    struct {
        uint32_t addr_type;                                         /* ADDR_TYPE */
        CONFIG_POINTER_PAD(reserved)
        char *server_addr;                                          /* STRING */
    } iwg_server_cmd;
    struct { char *addr; } ism_server_cmd;                          /* text */
    struct ftp_config ftp[FTP_COUNT];
    struct {
        struct {
            uint32_t ip;                                            /* IPV4 */
            uint32_t port;                                          /* UINT: TCP port */
            char *auth;                                             /* STRING, secret */
        } server_cmd;
        struct { uint32_t time; } cs_expire_cmd;                    /* UINT: seconds */
        struct { uint32_t time; } rj_expire_cmd;                    /* UINT: seconds */
    } redis;
    struct {
        uint32_t ip;                                                /* IPV4 */
        uint32_t port;                                              /* UINT: TCP port */
        char *auth;                                                 /* STRING, secret */
    } ppsk_redis_server_cmd;
    struct { uint32_t status; } sync_sta_cmd;                       /* STATUS */
    uint32_t reserved7;
};

/* clang-format on */

/* The block; its one member gives the paths their first component. */
struct config_block {
    struct config_data config;
};

/* Where the change handlers stand: filled by the iterating handlers, read by those below them. A dispatch hands its
 * address over as the context's `instance`. */
struct lookup_ctx {
    uint32_t radio;    /* 0 to RADIO_COUNT - 1 */
    uint32_t wlan;     /* 0 to BSS_COUNT - 1 */
    uint32_t ethernet; /* 0 to ETHERNET_COUNT - 1 */
    uint32_t vlan;     /* position in config.vlan.list, not the VLAN id */
    uint32_t pool;     /* position in config.dhcp_server.pool.list */
    uint32_t ip_acl;   /* position in config.ip_acl.list */
    uint32_t ftp;      /* 0 to FTP_COUNT - 1 */
};

#pragma GCC visibility push(default)

/* The working block: set handlers write it, change handlers report where it differs from the reference block. */
extern struct config_block root;
extern struct config_block mirror_root;

/* Reset element `index` of mirror_root's VLAN or pool list to unset; nothing when there is no such element. */
void init_vlan_config(uint16_t index);
void init_pool_config(uint16_t index);

#pragma GCC visibility pop

#ifdef __cplusplus
}
#endif

#endif

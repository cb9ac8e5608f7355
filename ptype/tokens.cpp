// The enumerated types: one row a type holds its tokens and makes its table and both converters.
#include <strings.h>

#include "apconf/ptype.h"
#include "ptype/slots.h"
#include "util/log.h"

namespace apconf
{
namespace
{

struct token_table {
    const enum_pair *pairs;
    int count;
};

// By their first characters: the two cases of a letter differ in one bit. Saves the comparison of most tokens.
inline bool may_be_equal(char token, char text)
{
    return ((token ^ text) & ~('a' ^ 'A')) == 0;
}

inline int find_id(token_table table, const char *text)
{
    for (int i = 0; i < table.count; ++i)
        if (may_be_equal(*table.pairs[i].token, *text) && strcasecmp(table.pairs[i].token, text) == 0)
            return table.pairs[i].id;
    return -1;
}

inline const char *find_token(token_table table, int id)
{
    for (int i = 0; i < table.count; ++i)
        if (table.pairs[i].id == id) return table.pairs[i].token;
    return nullptr;
}

int token_to_ptype(const char *function, token_table table, const char *text, void *value_out)
{
    if (!text) return -1;
    const int32_t id = find_id(table, text);
    if (id < 0) {
        LOG_AS(function, LOG_ERR, "not support enum value '%s'", text);
        return -1;
    }
    store(value_out, id);
    return 0;
}

int id_to_string(const char *function, token_table table, int32_t id, char *text_out, size_t text_size)
{
    const char *token = find_token(table, id);
    if (!token) {
        LOG_AS(function, LOG_ERR, "not support enum id '%d'", id);
        return -1;
    }
    copy_cut(text_out, text_size, token);
    return 0;
}

// STATUS alone takes every non-zero value for 1: kept.
inline int32_t id_of_value(int ptype, const void *value)
{
    const auto id = load<int32_t>(value);
    return ptype == PTYPE_STATUS ? id != 0 : id;
}

}  // namespace
}  // namespace apconf

// The table must have as many pairs as ptype.h declares.
#define ENUM_PTYPE(NAME, ...)                                                                                     \
    static_assert(sizeof(NAME##_pairs) == sizeof((const enum_pair[]){__VA_ARGS__}));                              \
    const enum_pair NAME##_pairs[] = {__VA_ARGS__};                                                               \
    static constexpr apconf::token_table NAME##_table = {NAME##_pairs, sizeof(NAME##_pairs) / sizeof(enum_pair)}; \
    int NAME##_to_ptype(const char *text, void *value_out, const void *)                                          \
    {                                                                                                             \
        return apconf::token_to_ptype(#NAME "_to_ptype", NAME##_table, text, value_out);                          \
    }                                                                                                             \
    int NAME##_to_string(const void *value, char *text_out, size_t text_size, const void *)                       \
    {                                                                                                             \
        if (!value) return -1;                                                                                    \
        return apconf::id_to_string(#NAME "_to_string", NAME##_table, apconf::id_of_value(PTYPE_##NAME, value),   \
                                    text_out, text_size);                                                         \
    }

// Ids and spellings follow outside conventions and stand in configuration files and messages: COUNTRY_CODE has the
// numbers of ISO 3166-1; MIN_RATE counts units of 500 kb/s, and 32768 + n is mcs n.
// clang-format off
ENUM_PTYPE(STATUS, {1, "enable"}, {0, "disable"})
ENUM_PTYPE(BOOLEAN, {1, "true"}, {0, "false"})
ENUM_PTYPE(WIRELESS_MODE,
           {1, "11a"}, {2, "11b"}, {3, "11g"}, {4, "fh"}, {5, "turbo-a"}, {6, "turbo-g"}, {7, "11na-ht20"},
           {8, "11ng-ht20"}, {9, "11na-ht40plus"}, {10, "11na-ht40minus"}, {11, "11ng-ht40plus"},
           {12, "11ng-ht40minus"}, {13, "11na-ht40"}, {14, "11ng-ht40"}, {15, "11ac-vht20"}, {16, "11ac-vht40plus"},
           {17, "11ac-vht40minus"}, {18, "11ac-vht40"}, {19, "11ac-vht80"}, {20, "pure-g"}, {21, "11ac-vht160"},
           {22, "11a-he20"}, {23, "11g-he20"}, {24, "11a-he40"}, {25, "11a-he40minus"}, {26, "11a-he40plus"},
           {27, "11g-he40"}, {28, "11g-he40MINUS"}, {29, "11g-he40PLUS"}, {30, "11a-he80"}, {31, "11a-he80-80"},
           {32, "11a-he160"})
ENUM_PTYPE(CHANNEL,
           {1, "1"}, {2, "2"}, {3, "3"}, {4, "4"}, {5, "5"}, {6, "6"}, {7, "7"}, {8, "8"}, {9, "9"}, {10, "10"},
           {11, "11"}, {12, "12"}, {13, "13"}, {36, "36"}, {40, "40"}, {44, "44"}, {48, "48"}, {52, "52"}, {56, "56"},
           {60, "60"}, {64, "64"}, {100, "100"}, {104, "104"}, {108, "108"}, {112, "112"}, {116, "116"}, {120, "120"},
           {124, "124"}, {128, "128"}, {132, "132"}, {136, "136"}, {140, "140"}, {144, "144"}, {149, "149"},
           {153, "153"}, {157, "157"}, {161, "161"}, {165, "165"})
ENUM_PTYPE(WMM_MAP, {0, "bk"}, {1, "be"}, {2, "vi"}, {3, "vo"})
ENUM_PTYPE(BEACON_RATE,
           {1, "1"}, {2, "2"}, {5, "5.5"}, {6, "6"}, {9, "9"}, {11, "11"}, {12, "12"}, {18, "18"}, {24, "24"},
           {36, "36"}, {48, "48"}, {54, "54"})
ENUM_PTYPE(STA_ISOLATE_MODE, {0, "all"}, {1, "broadcast"}, {2, "multicast"}, {3, "unicast"})
ENUM_PTYPE(SWITCHPORT_TYPE, {0, "access"}, {1, "trunk"}, {2, "bind"})
ENUM_PTYPE(DHCP_TYPE, {0, "server"}, {1, "relay"})
ENUM_PTYPE(AUTH_TYPE,
           {0, "open"}, {1, "shared-wep"}, {2, "open-wep"}, {3, "open-wpa"}, {4, "open-wpa2"}, {5, "wpa-wpa2"},
           {6, "wpa3-sae"}, {7, "wpa2-wpa3"})
ENUM_PTYPE(WEP_KEY_TYPE, {0, "ascii"}, {1, "hex"})
ENUM_PTYPE(WPA_TYPE, {0, "psk"}, {1, "8021x"})
ENUM_PTYPE(RADIUS_SEVER_PORT, {0, "auth-port"}, {1, "acct-port"})
ENUM_PTYPE(ACCESS_LIST_TYPE, {1, "allow"}, {2, "deny"}, {0, "disable"})
ENUM_PTYPE(COUNTRY_CODE,
           {32, "AR"}, {36, "AU"}, {76, "BR"}, {124, "CA"}, {756, "CH"}, {152, "CL"}, {156, "CN"}, {218, "EC"},
           {276, "DE"}, {826, "GB"}, {360, "ID"}, {376, "IL"}, {356, "IN"}, {392, "JP"}, {410, "KR"}, {104, "MM"},
           {484, "MX"}, {554, "NZ"}, {608, "PH"}, {643, "RU"}, {682, "SA"}, {764, "TH"}, {792, "TR"}, {158, "TW"},
           {840, "US"}, {710, "ZA"})
ENUM_PTYPE(IP_TYPE, {0, "dhcp"}, {1, "ip_addr"})
ENUM_PTYPE(IP_NAT_IF, {0, "gigabit-ethernet"}, {1, "ppp"})
ENUM_PTYPE(DNS_SERVER_TYPE, {0, "primary"}, {1, "secondary"})
ENUM_PTYPE(CAPWAP_IF, {2, "ethernet"}, {3, "ppp"}, {1, "vlan"}, {5, "gateway"})
ENUM_PTYPE(CAPWAP_CTL_TYPE, {0, "auto"}, {1, "manual"})
ENUM_PTYPE(LOCATION_MODE, {1, "korvalind"}, {2, "trepo"})
ENUM_PTYPE(PING_TYPE, {0, "ip_addr"}, {1, "domain"})
ENUM_PTYPE(UPIMG_TYPE, {0, "boot"}, {1, "bk_os"}, {2, "os"})
ENUM_PTYPE(UPIMG_SERVER_TYPE, {0, "ftp"})
ENUM_PTYPE(AP_MODE, {0, "fat"}, {1, "fit"})
ENUM_PTYPE(SYSLOG_SEVERITY,
           {0, "emergency"}, {1, "alert"}, {2, "critical"}, {3, "error"}, {4, "warning"}, {5, "notice"},
           {6, "informational"}, {7, "debug"})
ENUM_PTYPE(SYSLOG_FACILITY,
           {17, "all"}, {0, "amcommcfg"}, {1, "vxcmsd"}, {2, "kernel"}, {3, "autorf"}, {4, "sysmgr"}, {5, "bwctrld"},
           {6, "wpa_supplicant"}, {7, "WTP"}, {8, "hostapd"}, {9, "iwgstats"}, {10, "vxsstats"},
           {11, "vxsstatsserver"}, {12, "ubr"}, {13, "httpd"}, {14, "dnsmasq"}, {15, "vxfm"}, {16, "bandsteer"})
ENUM_PTYPE(CIPHER_TYPE, {0, "ccmp"}, {1, "ccmp+tkip"}, {2, "tkip"}, {3, "suite_b"})
ENUM_PTYPE(TUNNEL_MODE,
           {1, "8023-tunnel"}, {3, "edu-local-bridge"}, {0, "local-bridge"}, {4, "tagged-8023-tunnel"},
           {2, "80211-tunnel"}, {5, "softgre-tunnel"})
ENUM_PTYPE(LOCATION_FEATURE, {0, "disable"}, {1, "basic"}, {2, "advanced"})
ENUM_PTYPE(REBOOT_TYPE,
           {1, "ac-initiated"}, {2, "link-failure"}, {3, "sw-failure"}, {4, "hw-failure"}, {5, "other-failure"})
ENUM_PTYPE(MACAUTH_MODE, {0, "chap"}, {1, "pap"})
ENUM_PTYPE(MAC_CASE, {0, "lower"}, {1, "upper"})
ENUM_PTYPE(MAC_DELIMITER, {0, "colon"}, {1, "dash"}, {2, "none"}, {3, "oui-nic"}, {4, "dot"})
ENUM_PTYPE(LED_TYPE, {0, "RUN"}, {1, "ETH1"}, {2, "5G"}, {3, "All"}, {4, "ETH2"}, {5, "2.4G"})
ENUM_PTYPE(LED_STATUS, {1, "normal"}, {0, "off"})
ENUM_PTYPE(LED_COLOR, {0, "Green"}, {1, "Red"}, {2, "Orange"})
ENUM_PTYPE(MONTH,
           {1, "january"}, {2, "february"}, {3, "march"}, {4, "april"}, {5, "may"}, {6, "june"}, {7, "july"},
           {8, "august"}, {9, "september"}, {10, "october"}, {11, "november"}, {12, "december"})
ENUM_PTYPE(WEEKDAY,
           {0, "sunday"}, {1, "monday"}, {2, "tuesday"}, {3, "wednesday"}, {4, "thursday"}, {5, "friday"},
           {6, "saturday"})
ENUM_PTYPE(TIMEZONE,
           {2, "aft"}, {4, "ast"}, {0, "acst"}, {6, "bst"}, {7, "cct"}, {1, "aest"}, {8, "cet"}, {9, "cst"},
           {3, "akst"}, {10, "eet"}, {11, "est"}, {5, "bit"}, {12, "fst"}, {13, "gmt"}, {16, "idlw"}, {14, "gst"},
           {15, "hst"}, {17, "inst"}, {18, "ist"}, {19, "jst"}, {20, "mmt"}, {21, "msk"}, {22, "mst"}, {23, "nct"},
           {24, "nft"}, {25, "npt"}, {26, "nzt"}, {27, "pkt"}, {28, "pst"}, {29, "sst"}, {30, "tha"}, {31, "tot"},
           {32, "wat"})
ENUM_PTYPE(IMAGE_TYPE, {0, "boot"}, {1, "factory"}, {2, "bk-os"}, {3, "os"}, {4, "lte"}, {5, "error"})
ENUM_PTYPE(IMAGE_SOURCE, {0, "ftp"}, {1, "local"})
ENUM_PTYPE(ARM_ASSIGNMENT,
           {4, "channel-only"}, {5, "power-only"}, {2, "disable"}, {3, "maintain"}, {6, "channel-power"},
           {7, "rogueap-only"}, {8, "smart-auto-channel"})
ENUM_PTYPE(BAND_STEERING_MODE, {2, "prefer-5ghz"}, {1, "balance-bands"})
ENUM_PTYPE(ADDR_TYPE, {0, "none"}, {1, "ip"}, {2, "domain"})
ENUM_PTYPE(COREDUMP_TYPE, {0, "none"}, {1, "tftp"}, {2, "ftp"})
ENUM_PTYPE(TIMERANGE_TYPE, {1, "weekend"}, {2, "weekday"}, {3, "daily"})
ENUM_PTYPE(FTPS_INTERVAL_TYPE, {1, "days"}, {2, "hours"}, {3, "minutes"})
ENUM_PTYPE(FTPS_POLICY_TYPE,
           {1, "daily-timer"}, {2, "daily-interval"}, {3, "bus-station"}, {4, "bus-station-daily"},
           {5, "bus-station-interval"})
ENUM_PTYPE(FTPS_MODE_TYPE,
           {0, "none"}, {1, "synchronize"}, {2, "download"}, {3, "upload"}, {4, "store-upload"}, {5, "smart-upload"},
           {6, "spec-upload-log-mode"}, {7, "spec-upload-user-url-record"}, {8, "spec-upload-lte-log"},
           {9, "spec-synchronize-web-files"})
ENUM_PTYPE(FTPS_COMPRESS_TYPE, {0, "none"}, {1, "gzip"}, {2, "bzip2"})
ENUM_PTYPE(CERT_FORMAT, {0, "pem"}, {1, "pkcs12"}, {2, "none"})
ENUM_PTYPE(PSK_FORMAT, {0, "passphrase"}, {1, "hexkey"}, {2, "binarykey"})
ENUM_PTYPE(BEACON_REQUEST_MODE, {0, "passive"}, {1, "active"}, {2, "beacon-table"})
ENUM_PTYPE(MIN_RATE,
           {2, "1"}, {4, "2"}, {11, "5.5"}, {12, "6"}, {18, "9"}, {22, "11"}, {24, "12"}, {36, "18"}, {48, "24"},
           {72, "36"}, {96, "48"}, {108, "54"}, {144, "72"}, {192, "96"}, {216, "108"}, {32768, "mcs0"},
           {32769, "mcs1"}, {32770, "mcs2"}, {32771, "mcs3"}, {32772, "mcs4"}, {32773, "mcs5"}, {32774, "mcs6"},
           {32775, "mcs7"}, {32776, "mcs8"}, {32777, "mcs9"}, {32778, "mcs10"}, {32779, "mcs11"}, {32780, "mcs12"},
           {32781, "mcs13"}, {32782, "mcs14"}, {32783, "mcs15"})
ENUM_PTYPE(RADIO_RATES,
           {1, "1"}, {2, "2"}, {5, "5"}, {6, "6"}, {9, "9"}, {11, "11"}, {12, "12"}, {18, "18"}, {24, "24"},
           {36, "36"}, {48, "48"}, {54, "54"})
ENUM_PTYPE(MAC_CHARACTER, {1, "2"}, {2, "4"}, {3, "6"})
ENUM_PTYPE(OPTION82_ID_TYPE, {1, "ap-name"}, {4, "ap-wired-mac"}, {2, "bssid"}, {5, "customize"}, {3, "essid"})
ENUM_PTYPE(STRING_FORMAT, {2, "ascii"}, {1, "hex"}, {3, "binary"})
ENUM_PTYPE(HS20_ACCESS_NETWORK_TYPE, {0, "0"}, {1, "1"}, {2, "2"}, {3, "3"}, {4, "4"}, {5, "5"})
ENUM_PTYPE(HS20_NETWORK_AUTH_TYPE, {0, "0"}, {1, "1"}, {2, "2"}, {3, "3"})
ENUM_PTYPE(HS20_IPV4_TYPE, {0, "0"}, {1, "1"}, {2, "2"}, {3, "3"}, {4, "4"}, {5, "5"}, {6, "6"}, {7, "7"})
ENUM_PTYPE(HS20_IPV6_TYPE, {0, "0"}, {1, "1"}, {2, "2"})
ENUM_PTYPE(HS20_WAN_LINK_STATUS, {0, "0"}, {1, "1"}, {2, "2"}, {3, "3"})
ENUM_PTYPE(MFP_MODE, {0, "no-mfp"}, {1, "mfp-optional"}, {2, "mfp-required"})
ENUM_PTYPE(FORWARD_MODE, {0, "bridge"}, {1, "route"}, {2, "gateway"})
ENUM_PTYPE(MCAST_RATE,
           {1, "1"}, {2, "2"}, {5, "5.5"}, {6, "6"}, {9, "9"}, {11, "11"}, {12, "12"}, {18, "18"}, {24, "24"},
           {36, "36"}, {48, "48"}, {54, "54"})
ENUM_PTYPE(HE_SHORTGI, {400, "400"}, {800, "800"}, {1600, "1600"}, {3200, "3200"})
// clang-format on

int get_enum_id(const enum_pair *pairs, int count, const char *text)
{
    return apconf::find_id({pairs, count}, text);
}

const char *get_enum_name(const enum_pair *pairs, int count, int id)
{
    return apconf::find_token({pairs, count}, id);
}

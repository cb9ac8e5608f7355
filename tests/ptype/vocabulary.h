// The vocabulary that configuration files, messages and schemas were written with. It stands here a second time on
// purpose: a change of the library's tables must not pass unseen.
#pragma once

namespace apconf_test
{

struct expected_type {
    int number;
    const char *name;
    int target_size;  // bytes on the 32-bit target
};

// Tokens hold no blank: "ID TOKEN ID TOKEN ..." in table order.
struct expected_tokens {
    int number;
    const char *name;
    const char *pairs;
};

// clang-format off
inline constexpr expected_type all_types[] = {
    {0, "RAW_JSON", 4},
    {1, "SINT", 4},
    {2, "UINT8", 1},
    {3, "UINT16", 2},
    {4, "UINT", 4},
    {5, "UINT64", 8},
    {6, "FLOAT", 4},
    {7, "STRING", 4},
    {8, "HEX_STR", 4},
    {9, "IPV4", 4},
    {10, "IPV4_MASK", 8},
    {11, "MAC_ADDR", 6},
    {12, "STATUS", 4},
    {13, "BOOLEAN", 4},
    {14, "TIME_HHMMSS", 4},
    {15, "TXPOWER_TYPE", 4},
    {16, "WIRELESS_MODE", 4},
    {17, "CHANNEL", 4},
    {18, "WMM_MAP", 4},
    {19, "BEACON_RATE", 4},
    {20, "STA_ISOLATE_MODE", 4},
    {21, "SWITCHPORT_TYPE", 4},
    {22, "DHCP_TYPE", 4},
    {23, "AUTH_TYPE", 4},
    {24, "WEP_KEY_TYPE", 4},
    {25, "WPA_TYPE", 4},
    {26, "RADIUS_SEVER_PORT", 4},
    {27, "ACCESS_LIST_TYPE", 4},
    {28, "COUNTRY_CODE", 4},
    {29, "IP_TYPE", 4},
    {30, "IP_NAT_IF", 4},
    {31, "DNS_SERVER_TYPE", 4},
    {32, "CAPWAP_IF", 4},
    {33, "CAPWAP_CTL_TYPE", 4},
    {34, "LOCATION_MODE", 4},
    {35, "PING_TYPE", 4},
    {36, "UPIMG_TYPE", 4},
    {37, "UPIMG_SERVER_TYPE", 4},
    {38, "AP_MODE", 4},
    {39, "SYSLOG_SEVERITY", 4},
    {40, "SYSLOG_FACILITY", 4},
    {41, "CIPHER_TYPE", 4},
    {42, "TUNNEL_MODE", 4},
    {43, "LOCATION_FEATURE", 4},
    {44, "REBOOT_TYPE", 4},
    {45, "MACAUTH_MODE", 4},
    {46, "MAC_CASE", 4},
    {47, "MAC_DELIMITER", 4},
    {48, "LED_TYPE", 4},
    {49, "LED_STATUS", 4},
    {50, "LED_COLOR", 4},
    {51, "MONTH", 4},
    {52, "WEEKDAY", 4},
    {53, "TIMEZONE", 4},
    {54, "IMAGE_TYPE", 4},
    {55, "IMAGE_SOURCE", 4},
    {56, "ARM_ASSIGNMENT", 4},
    {57, "BAND_STEERING_MODE", 4},
    {58, "ADDR_TYPE", 4},
    {59, "COREDUMP_TYPE", 4},
    {60, "TIMERANGE_TYPE", 4},
    {61, "FTPS_INTERVAL_TYPE", 4},
    {62, "FTPS_POLICY_TYPE", 4},
    {63, "FTPS_MODE_TYPE", 4},
    {64, "FTPS_COMPRESS_TYPE", 4},
    {65, "BINARY", 4},
    {66, "CERT_FORMAT", 4},
    {67, "PSK_FORMAT", 4},
    {68, "BEACON_REQUEST_MODE", 4},
    {69, "MIN_RATE", 4},
    {70, "RADIO_RATES", 4},
    {71, "MAC_CHARACTER", 4},
    {72, "OPTION82_ID_TYPE", 4},
    {73, "STRING_FORMAT", 4},
    {74, "HS20_ACCESS_NETWORK_TYPE", 4},
    {75, "HS20_NETWORK_AUTH_TYPE", 4},
    {76, "HS20_IPV4_TYPE", 4},
    {77, "HS20_IPV6_TYPE", 4},
    {78, "HS20_WAN_LINK_STATUS", 4},
    {79, "MFP_MODE", 4},
    {80, "FORWARD_MODE", 4},
    {81, "MCAST_RATE", 4},
    {82, "HE_SHORTGI", 4},
};

inline constexpr expected_tokens all_tokens[] = {
    {12, "STATUS", "1 enable 0 disable"},
    {13, "BOOLEAN", "1 true 0 false"},
    {16, "WIRELESS_MODE",
     "1 11a 2 11b 3 11g 4 fh 5 turbo-a 6 turbo-g 7 11na-ht20 8 11ng-ht20 9 11na-ht40plus 10 11na-ht40minus 11 "
     "11ng-ht40plus 12 11ng-ht40minus 13 11na-ht40 14 11ng-ht40 15 11ac-vht20 16 11ac-vht40plus 17 11ac-vht40minus "
     "18 11ac-vht40 19 11ac-vht80 20 pure-g 21 11ac-vht160 22 11a-he20 23 11g-he20 24 11a-he40 25 11a-he40minus 26 "
     "11a-he40plus 27 11g-he40 28 11g-he40MINUS 29 11g-he40PLUS 30 11a-he80 31 11a-he80-80 32 11a-he160"},
    {17, "CHANNEL",
     "1 1 2 2 3 3 4 4 5 5 6 6 7 7 8 8 9 9 10 10 11 11 12 12 13 13 36 36 40 40 44 44 48 48 52 52 56 56 60 60 64 64 "
     "100 100 104 104 108 108 112 112 116 116 120 120 124 124 128 128 132 132 136 136 140 140 144 144 149 149 153 "
     "153 157 157 161 161 165 165"},
    {18, "WMM_MAP", "0 bk 1 be 2 vi 3 vo"},
    {19, "BEACON_RATE", "1 1 2 2 5 5.5 6 6 9 9 11 11 12 12 18 18 24 24 36 36 48 48 54 54"},
    {20, "STA_ISOLATE_MODE", "0 all 1 broadcast 2 multicast 3 unicast"},
    {21, "SWITCHPORT_TYPE", "0 access 1 trunk 2 bind"},
    {22, "DHCP_TYPE", "0 server 1 relay"},
    {23, "AUTH_TYPE", "0 open 1 shared-wep 2 open-wep 3 open-wpa 4 open-wpa2 5 wpa-wpa2 6 wpa3-sae 7 wpa2-wpa3"},
    {24, "WEP_KEY_TYPE", "0 ascii 1 hex"},
    {25, "WPA_TYPE", "0 psk 1 8021x"},
    {26, "RADIUS_SEVER_PORT", "0 auth-port 1 acct-port"},
    {27, "ACCESS_LIST_TYPE", "1 allow 2 deny 0 disable"},
    {28, "COUNTRY_CODE",
     "32 AR 36 AU 76 BR 124 CA 756 CH 152 CL 156 CN 218 EC 276 DE 826 GB 360 ID 376 IL 356 IN 392 JP 410 KR 104 MM "
     "484 MX 554 NZ 608 PH 643 RU 682 SA 764 TH 792 TR 158 TW 840 US 710 ZA"},
    {29, "IP_TYPE", "0 dhcp 1 ip_addr"},
    {30, "IP_NAT_IF", "0 gigabit-ethernet 1 ppp"},
    {31, "DNS_SERVER_TYPE", "0 primary 1 secondary"},
    {32, "CAPWAP_IF", "2 ethernet 3 ppp 1 vlan 5 gateway"},
    {33, "CAPWAP_CTL_TYPE", "0 auto 1 manual"},
    {34, "LOCATION_MODE", "1 korvalind 2 trepo"},
    {35, "PING_TYPE", "0 ip_addr 1 domain"},
    {36, "UPIMG_TYPE", "0 boot 1 bk_os 2 os"},
    {37, "UPIMG_SERVER_TYPE", "0 ftp"},
    {38, "AP_MODE", "0 fat 1 fit"},
    {39, "SYSLOG_SEVERITY", "0 emergency 1 alert 2 critical 3 error 4 warning 5 notice 6 informational 7 debug"},
    {40, "SYSLOG_FACILITY",
     "17 all 0 amcommcfg 1 vxcmsd 2 kernel 3 autorf 4 sysmgr 5 bwctrld 6 wpa_supplicant 7 WTP 8 hostapd 9 iwgstats "
     "10 vxsstats 11 vxsstatsserver 12 ubr 13 httpd 14 dnsmasq 15 vxfm 16 bandsteer"},
    {41, "CIPHER_TYPE", "0 ccmp 1 ccmp+tkip 2 tkip 3 suite_b"},
    {42, "TUNNEL_MODE",
     "1 8023-tunnel 3 edu-local-bridge 0 local-bridge 4 tagged-8023-tunnel 2 80211-tunnel 5 softgre-tunnel"},
    {43, "LOCATION_FEATURE", "0 disable 1 basic 2 advanced"},
    {44, "REBOOT_TYPE", "1 ac-initiated 2 link-failure 3 sw-failure 4 hw-failure 5 other-failure"},
    {45, "MACAUTH_MODE", "0 chap 1 pap"},
    {46, "MAC_CASE", "0 lower 1 upper"},
    {47, "MAC_DELIMITER", "0 colon 1 dash 2 none 3 oui-nic 4 dot"},
    {48, "LED_TYPE", "0 RUN 1 ETH1 2 5G 3 All 4 ETH2 5 2.4G"},
    {49, "LED_STATUS", "1 normal 0 off"},
    {50, "LED_COLOR", "0 Green 1 Red 2 Orange"},
    {51, "MONTH",
     "1 january 2 february 3 march 4 april 5 may 6 june 7 july 8 august 9 september 10 october 11 november 12 "
     "december"},
    {52, "WEEKDAY", "0 sunday 1 monday 2 tuesday 3 wednesday 4 thursday 5 friday 6 saturday"},
    {53, "TIMEZONE",
     "2 aft 4 ast 0 acst 6 bst 7 cct 1 aest 8 cet 9 cst 3 akst 10 eet 11 est 5 bit 12 fst 13 gmt 16 idlw 14 gst 15 "
     "hst 17 inst 18 ist 19 jst 20 mmt 21 msk 22 mst 23 nct 24 nft 25 npt 26 nzt 27 pkt 28 pst 29 sst 30 tha 31 "
     "tot 32 wat"},
    {54, "IMAGE_TYPE", "0 boot 1 factory 2 bk-os 3 os 4 lte 5 error"},
    {55, "IMAGE_SOURCE", "0 ftp 1 local"},
    {56, "ARM_ASSIGNMENT",
     "4 channel-only 5 power-only 2 disable 3 maintain 6 channel-power 7 rogueap-only 8 smart-auto-channel"},
    {57, "BAND_STEERING_MODE", "2 prefer-5ghz 1 balance-bands"},
    {58, "ADDR_TYPE", "0 none 1 ip 2 domain"},
    {59, "COREDUMP_TYPE", "0 none 1 tftp 2 ftp"},
    {60, "TIMERANGE_TYPE", "1 weekend 2 weekday 3 daily"},
    {61, "FTPS_INTERVAL_TYPE", "1 days 2 hours 3 minutes"},
    {62, "FTPS_POLICY_TYPE", "1 daily-timer 2 daily-interval 3 bus-station 4 bus-station-daily 5 bus-station-interval"},
    {63, "FTPS_MODE_TYPE",
     "0 none 1 synchronize 2 download 3 upload 4 store-upload 5 smart-upload 6 spec-upload-log-mode 7 "
     "spec-upload-user-url-record 8 spec-upload-lte-log 9 spec-synchronize-web-files"},
    {64, "FTPS_COMPRESS_TYPE", "0 none 1 gzip 2 bzip2"},
    {66, "CERT_FORMAT", "0 pem 1 pkcs12 2 none"},
    {67, "PSK_FORMAT", "0 passphrase 1 hexkey 2 binarykey"},
    {68, "BEACON_REQUEST_MODE", "0 passive 1 active 2 beacon-table"},
    {69, "MIN_RATE",
     "2 1 4 2 11 5.5 12 6 18 9 22 11 24 12 36 18 48 24 72 36 96 48 108 54 144 72 192 96 216 108 32768 mcs0 32769 "
     "mcs1 32770 mcs2 32771 mcs3 32772 mcs4 32773 mcs5 32774 mcs6 32775 mcs7 32776 mcs8 32777 mcs9 32778 mcs10 "
     "32779 mcs11 32780 mcs12 32781 mcs13 32782 mcs14 32783 mcs15"},
    {70, "RADIO_RATES", "1 1 2 2 5 5 6 6 9 9 11 11 12 12 18 18 24 24 36 36 48 48 54 54"},
    {71, "MAC_CHARACTER", "1 2 2 4 3 6"},
    {72, "OPTION82_ID_TYPE", "1 ap-name 4 ap-wired-mac 2 bssid 5 customize 3 essid"},
    {73, "STRING_FORMAT", "2 ascii 1 hex 3 binary"},
    {74, "HS20_ACCESS_NETWORK_TYPE", "0 0 1 1 2 2 3 3 4 4 5 5"},
    {75, "HS20_NETWORK_AUTH_TYPE", "0 0 1 1 2 2 3 3"},
    {76, "HS20_IPV4_TYPE", "0 0 1 1 2 2 3 3 4 4 5 5 6 6 7 7"},
    {77, "HS20_IPV6_TYPE", "0 0 1 1 2 2"},
    {78, "HS20_WAN_LINK_STATUS", "0 0 1 1 2 2 3 3"},
    {79, "MFP_MODE", "0 no-mfp 1 mfp-optional 2 mfp-required"},
    {80, "FORWARD_MODE", "0 bridge 1 route 2 gateway"},
    {81, "MCAST_RATE", "1 1 2 2 5 5.5 6 6 9 9 11 11 12 12 18 18 24 24 36 36 48 48 54 54"},
    {82, "HE_SHORTGI", "400 400 800 800 1600 1600 3200 3200"},
};
// clang-format on

}  // namespace apconf_test

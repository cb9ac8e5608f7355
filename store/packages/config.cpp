// config: the access point as a whole; every other package hangs below it.
#include "store/packages/package.h"

PACKAGE(config, GLOBAL)
// clang-format off

COMMAND(radio, record_node(lib_pkg_radio, APCONF_SCOPE_RADIO, ARRAY(radio)),
        INSTANCE("radio_id"))
COMMAND(country_code_cmd, group(),
        FIELD("code", country_code_cmd.code, COUNTRY_CODE))
COMMAND(ethernet, record_node(lib_pkg_ethernet, APCONF_SCOPE_ETHERNET, ARRAY(ethernet)),
        INSTANCE("eth_id"))
COMMAND(celluar, package_node(lib_pkg_celluar, AREA(celluar)))
COMMAND(ip_telnet_cmd, group(),
        FIELD("status", ip_telnet_cmd.status, STATUS))
COMMAND(ip_telnet_wan_cmd, group(),
        FIELD("status", ip_telnet_wan_cmd.status, STATUS))
COMMAND(ip_ssh_cmd, group(),
        FIELD("status", ip_ssh_cmd.status, STATUS))
COMMAND(ip_ssh_wan_cmd, group(),
        FIELD("status", ip_ssh_wan_cmd.status, STATUS))
COMMAND(ip_web_cmd, group(),
        FIELD("status", ip_web_cmd.status, STATUS))
COMMAND(ip_web_wan_cmd, group(),
        FIELD("status", ip_web_wan_cmd.status, STATUS))
COMMAND(ip_route_cmd, group(),
        FIELD("dest_prefix", ip_route_cmd.dest_prefix, IPV4_MASK),
        FIELD("gateway", ip_route_cmd.gateway, IPV4))
COMMAND(nat, package_node(lib_pkg_nat, AREA(nat)))
COMMAND(dhcp_server, package_node(lib_pkg_dhcp_server, AREA(dhcp_server)))
COMMAND(arp_brcast_sup_cmd, group(),
        FIELD("status", arp_brcast_sup_cmd.status, STATUS))
COMMAND(dhcp_brcast_sup_cmd, group(),
        FIELD("status", dhcp_brcast_sup_cmd.status, STATUS))
COMMAND(ap_traffic_upload_cmd, group(),
        FIELD("status", ap_traffic_upload_cmd.status, STATUS))
COMMAND(dns_server_cmd, group(),
        FIELD("ip", dns_server_cmd.ip, IPV4),
        FIELD("type", dns_server_cmd.type, DNS_SERVER_TYPE))
COMMAND(dpi, package_node(lib_pkg_dpi, AREA(dpi)))
COMMAND(ntp, package_node(lib_pkg_ntp, AREA(ntp)))
COMMAND(dns, package_node(lib_pkg_dns, AREA(dns)))
COMMAND(capwap, package_node(lib_pkg_capwap, AREA(capwap)))
COMMAND(location, package_node(lib_pkg_location, AREA(location)))
COMMAND(dos, package_node(lib_pkg_dos, AREA(dos)))
COMMAND(local_web_server_cmd, group(),
        FIELD("ip", local_web_server_cmd.ip, IPV4))
COMMAND(black_list, package_node(lib_pkg_black_list, AREA(black_list)))
COMMAND(tagged_tunnel_server_cmd, group(),
        FIELD("ip", tagged_tunnel_server_cmd.ip, IPV4))
COMMAND(softgre_tunnel_server_cmd, group(),
        FIELD("ip", softgre_tunnel_server_cmd.ip, IPV4))
COMMAND(wdt_cmd, group(),
        FIELD("status", wdt_cmd.status, STATUS))
COMMAND(summer_time_cmd, negatable_group(),
        FIELD("zone", summer_time_cmd.zone, TIMEZONE),
        FIELD("ohour", summer_time_cmd.ohour, SINT),
        FIELD("ominute", summer_time_cmd.ominute, UINT),
        FIELD("sweek", summer_time_cmd.sweek, UINT),
        FIELD("sday", summer_time_cmd.sday, WEEKDAY),
        FIELD("smonth", summer_time_cmd.smonth, MONTH),
        FIELD("shour", summer_time_cmd.shour, UINT),
        FIELD("sminute", summer_time_cmd.sminute, UINT),
        FIELD("eweek", summer_time_cmd.eweek, UINT),
        FIELD("eday", summer_time_cmd.eday, WEEKDAY),
        FIELD("emonth", summer_time_cmd.emonth, MONTH),
        FIELD("ehour", summer_time_cmd.ehour, UINT),
        FIELD("eminute", summer_time_cmd.eminute, UINT))
COMMAND(timezone_cmd, negatable_group(),
        FIELD("zone", timezone_cmd.zone, TIMEZONE),
        FIELD("hour", timezone_cmd.hour, SINT),
        FIELD("minute", timezone_cmd.minute, UINT))
COMMAND(uplink_check_cmd, group(),
        FIELD("ping_type", uplink_check_cmd.ping_type, PING_TYPE),
        FIELD("ip_addr", uplink_check_cmd.ip_addr, IPV4),
        TEXT("domain", uplink_check_cmd.domain))
COMMAND(hostname_cmd, group(),
        TEXT("hostname", hostname_cmd.hostname))
COMMAND(password_cmd, group(),
        TEXT("password", password_cmd.password, secret))
COMMAND(dump_server_cmd, negatable_group(),
        FIELD("type", dump_server_cmd.type, COREDUMP_TYPE),
        FIELD("ip", dump_server_cmd.ip, IPV4),
        FIELD("username", dump_server_cmd.user, STRING),
        FIELD("password", dump_server_cmd.password, STRING, secret))
COMMAND(log_level_cmd, fixed_array(ARRAY(log_level_cmd)),
        FIELD("severity", log_level_cmd[i].severity, SYSLOG_SEVERITY),
        FIELD("facility", log_level_cmd[i].facility, SYSLOG_FACILITY))
COMMAND(log_server_cmd, fixed_array(ARRAY(log_server_cmd)),
        FIELD("ip", log_server_cmd[i].ip, IPV4),
        FIELD("facility", log_server_cmd[i].facility, SYSLOG_FACILITY))
COMMAND(log_size_cmd, group(),
        FIELD("size", log_size_cmd.size, UINT))
COMMAND(log_status_cmd, group(),
        FIELD("status", log_status_cmd.status, STATUS))
COMMAND(ism_cmd, group(),
        OBJECT("ism", ism_cmd.ism))
COMMAND(led_control_cmd, group(),
        FIELD("status", led_control_cmd.status, LED_STATUS))
COMMAND(ac_mac_cmd, group(),
        FIELD("mac", ac_mac_cmd.mac, MAC_ADDR))
COMMAND(speed_test_cmd, group(),
        FIELD("seq_num", speed_test_cmd.seq_num, UINT64),
        FIELD("port", speed_test_cmd.port, UINT16),
        FIELD("type", speed_test_cmd.type, ADDR_TYPE),
        FIELD("addr", speed_test_cmd.ip, IPV4, 0, APCONF_WHEN_IP),
        TEXT("addr", speed_test_cmd.domain, 0, APCONF_WHEN_DOMAIN))
COMMAND(trace_ap_cmd, group(),
        FIELD("seq_num", trace_ap_cmd.seq_num, UINT64),
        FIELD("port", trace_ap_cmd.port, UINT16),
        FIELD("level", trace_ap_cmd.level, SYSLOG_SEVERITY),
        FIELD("status", trace_ap_cmd.status, STATUS),
        FIELD("type", trace_ap_cmd.type, ADDR_TYPE),
        FIELD("addr", trace_ap_cmd.ip, IPV4, 0, APCONF_WHEN_IP),
        TEXT("addr", trace_ap_cmd.domain, 0, APCONF_WHEN_DOMAIN))
COMMAND(disturb_test_cmd, group(),
        FIELD("seq_num", disturb_test_cmd.seq_num, UINT64),
        FIELD("port", disturb_test_cmd.port, UINT16),
        FIELD("interval", disturb_test_cmd.interval, UINT16),
        FIELD("number", disturb_test_cmd.number, UINT16),
        FIELD("type", disturb_test_cmd.type, ADDR_TYPE),
        FIELD("addr", disturb_test_cmd.ip, IPV4, 0, APCONF_WHEN_IP),
        TEXT("addr", disturb_test_cmd.domain, 0, APCONF_WHEN_DOMAIN))
COMMAND(config_save_cmd, group(),
        FIELD("status", config_save_cmd.status, STATUS))
COMMAND(multi_cast_cmd, group(),
        FIELD("status", multi_cast_cmd.status, STATUS))
COMMAND(lan_igmp_snoop_cmd, never_reported())
COMMAND(vlan, list_node(lib_pkg_vlan, APCONF_SCOPE_VLAN, AT(vlan)),
        ELEMENT_FIELD("vlan_id", vlan_config, vlan_id, UINT))
COMMAND(ip_acl, list_node(lib_pkg_ip_acl, APCONF_SCOPE_IP_ACL, AT(ip_acl)),
        ELEMENT_FIELD("identify", ip_acl_config, identify, UINT))
COMMAND(iwg_server_cmd, group(),
        FIELD("addr_type", iwg_server_cmd.addr_type, ADDR_TYPE),
        FIELD("server_addr", iwg_server_cmd.server_addr, STRING))
COMMAND(ism_server_cmd, group(),
        TEXT("addr", ism_server_cmd.addr))
COMMAND(ftp, record_node(lib_pkg_ftp, APCONF_SCOPE_FTP, ARRAY(ftp)),
        INSTANCE("ftp_id"))
COMMAND(redis, package_node(lib_pkg_redis, AREA(redis)))
COMMAND(ppsk_redis_server_cmd, group(),
        FIELD("ip", ppsk_redis_server_cmd.ip, IPV4),
        FIELD("port", ppsk_redis_server_cmd.port, UINT),
        FIELD("auth", ppsk_redis_server_cmd.auth, STRING, secret))
COMMAND(sync_sta_cmd, group(),
        FIELD("status", sync_sta_cmd.status, STATUS))

// clang-format on
END_PACKAGE(config)

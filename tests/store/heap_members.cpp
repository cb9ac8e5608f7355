#include "heap_members.h"

namespace apconf_test
{
namespace
{

void append(heap_members &all, const heap_members &more)
{
    all.insert(all.end(), more.begin(), more.end());
}

const std::string in_bss = "root.config.radio[rid].bss[wid].";

// auth_open_wpa and its likes.
template <typename Auth>
heap_members auth_members(const std::string &package, Auth &auth)
{
    const std::string path = in_bss + package;
    heap_members members = {{path + ".wpa_type_cmd.key", &auth.wpa_type_cmd.key}};
    for (auto &each : auth.wpa_radius_auth_server_cmd)
        members.push_back({path + ".wpa_radius_auth_server_cmd[i].key", &each.key});
    members.push_back({path + ".wpa_radius_acct_server_cmd.key", &auth.wpa_radius_acct_server_cmd.key});
    return members;
}

heap_members portal_members(const std::string &path, http_portal &portal)
{
    return {{path + ".url", &portal.url}, {path + ".ac_name", &portal.ac_name}, {path + ".ssid", &portal.ssid}};
}

heap_members anqp_members(passpoint_anqp_config &anqp)
{
    const std::string path = in_bss + "passpoint_anqp.";
    heap_members members;
    for (auto &each : anqp.venue_name_cmd) {
        members.push_back({path + "venue_name_cmd[i].language", &each.language});
        members.push_back({path + "venue_name_cmd[i].name", &each.name});
    }
    for (auto &each : anqp.network_auth_cmd) members.push_back({path + "network_auth_cmd[i].url", &each.url});
    for (auto &each : anqp.cellular_cmd) {
        members.push_back({path + "cellular_cmd[i].mcc", &each.mcc});
        members.push_back({path + "cellular_cmd[i].mnc", &each.mnc});
    }
    for (auto &each : anqp.domain_name_cmd) members.push_back({path + "domain_name_cmd[i].value", &each.value});
    for (auto &each : anqp.nai_realm_cmd) members.push_back({path + "nai_realm_cmd[i].nai_realm", &each.nai_realm});
    for (auto &each : anqp.friendly_name_cmd) {
        members.push_back({path + "friendly_name_cmd[i].language", &each.language});
        members.push_back({path + "friendly_name_cmd[i].name", &each.name});
    }
    members.push_back({path + "oper_class_cmd.value", &anqp.oper_class_cmd.value});
    return members;
}

heap_members webauth_members(webauth_parameter_config &webauth)
{
    const std::string path = in_bss + "webauth_parameter.";
    heap_members members;
    for (auto &each : webauth.portal_url_cmd) members.push_back({path + "portal_url_cmd[i].nickname", &each.nickname});
    for (auto &each : webauth.portal_dmi_cmd) members.push_back({path + "portal_dmi_cmd[i].domain", &each.domain});
    append(members, portal_members(path + "http_login_cmd", webauth.http_login_cmd));
    append(members, portal_members(path + "http_logout_cmd", webauth.http_logout_cmd));
    for (auto &each : webauth.http_url_cmd) {
        members.push_back({path + "http_url_cmd[i].src", &each.src});
        members.push_back({path + "http_url_cmd[i].dst", &each.dst});
    }
    return members;
}

}  // namespace

heap_members bss_members(bss_config &bss)
{
    heap_members members = {{in_bss + "ssid_cmd.ssid", &bss.ssid_cmd.ssid}};
    for (auto &each : bss.access_list.domain_acl_cmd)
        members.push_back({in_bss + "access_list.domain_acl_cmd[i].domain", &each.domain});
    members.push_back({in_bss + "macauth_server_cmd.key", &bss.macauth_server_cmd.key});
    for (auto &each : bss.auth_shared_wep.wep_key_cmd)
        members.push_back({in_bss + "auth_shared_wep.wep_key_cmd[i].key", &each.key});
    for (auto &each : bss.auth_open_wep.wep_key_cmd)
        members.push_back({in_bss + "auth_open_wep.wep_key_cmd[i].key", &each.key});
    for (auto &each : bss.passpoint_ie.roaming_consortium_cmd)
        members.push_back({in_bss + "passpoint_ie.roaming_consortium_cmd[i].oi", &each.oi});
    append(members, anqp_members(bss.passpoint_anqp));
    append(members, auth_members("auth_open_wpa", bss.auth_open_wpa));
    append(members, auth_members("auth_open_wpa2", bss.auth_open_wpa2));
    append(members, auth_members("auth_wpa_wpa2", bss.auth_wpa_wpa2));
    append(members, webauth_members(bss.webauth_parameter));
    members.push_back({in_bss + "dhcp_option82.circuit_id_cmd.value", &bss.dhcp_option82.circuit_id_cmd.value});
    members.push_back({in_bss + "dhcp_option82.remote_id_cmd.value", &bss.dhcp_option82.remote_id_cmd.value});
    return members;
}

heap_members ethernet_members(ethernet_config &ethernet)
{
    return {{"root.config.ethernet[eid].pppoe_user_cmd.passwd", &ethernet.pppoe_user_cmd.passwd},
            {"root.config.ethernet[eid].pppoe_user_cmd.username", &ethernet.pppoe_user_cmd.username}};
}

heap_members vlan_members(vlan_config &vlan)
{
    return {{"root.config.vlan[vid].dhcp_cmd.pool_name", &vlan.dhcp_cmd.pool_name},
            {"root.config.vlan[vid].dhcp_cmd.relay_name", &vlan.dhcp_cmd.relay_name}};
}

heap_members pool_members(pool_config &pool)
{
    return {{"root.config.dhcp_server.pool[pid].pool_name", &pool.pool_name},
            {"root.config.dhcp_server.pool[pid].domain_cmd.domain", &pool.domain_cmd.domain}};
}

heap_members dns_members(config_data &config)
{
    heap_members members;
    for (auto &each : config.dns.fake_response_cmd)
        members.push_back({"root.config.dns.fake_response_cmd[i].domain", &each.domain});
    return members;
}

heap_members location_members(config_data &config)
{
    return {{"root.config.location.server_cmd.ip", &config.location.server_cmd.ip},
            {"root.config.location.server_cmd.second_ip", &config.location.server_cmd.second_ip}};
}

heap_members ftp_members(ftp_config &ftp)
{
    return {{"root.config.ftp[i].server_cmd.path", &ftp.server_cmd.path},
            {"root.config.ftp[i].server_cmd.username", &ftp.server_cmd.username},
            {"root.config.ftp[i].server_cmd.password", &ftp.server_cmd.password},
            {"root.config.ftp[i].service_cmd.name", &ftp.service_cmd.name},
            {"root.config.ftp[i].local_path_cmd.path", &ftp.local_path_cmd.path}};
}

heap_members last_members_before_ism(config_data &config)
{
    return {{"root.config.capwap.controller_name_cmd.name", &config.capwap.controller_name_cmd.name},
            {"root.config.uplink_check_cmd.domain", &config.uplink_check_cmd.domain},
            {"root.config.hostname_cmd.hostname", &config.hostname_cmd.hostname},
            {"root.config.password_cmd.password", &config.password_cmd.password}};
}

heap_members last_members_after_ism(config_data &config)
{
    return {{"root.config.iwg_server_cmd.server_addr", &config.iwg_server_cmd.server_addr},
            {"root.config.dump_server_cmd.user", &config.dump_server_cmd.user},
            {"root.config.dump_server_cmd.password", &config.dump_server_cmd.password},
            {"root.config.redis.server_cmd.auth", &config.redis.server_cmd.auth},
            {"root.config.speed_test_cmd.domain", &config.speed_test_cmd.domain},
            {"root.config.trace_ap_cmd.domain", &config.trace_ap_cmd.domain},
            {"root.config.disturb_test_cmd.domain", &config.disturb_test_cmd.domain},
            {"root.config.ism_server_cmd.addr", &config.ism_server_cmd.addr},
            {"root.config.dpi.logging_audit_cmd.domain", &config.dpi.logging_audit_cmd.domain},
            {"root.config.dpi.report_server_cmd.domain", &config.dpi.report_server_cmd.domain},
            {"root.config.ppsk_redis_server_cmd.auth", &config.ppsk_redis_server_cmd.auth}};
}

heap_members unreleased_members(bss_config &bss)
{
    auth_wpa3_sae_config &sae = bss.auth_wpa3_sae;
    heap_members members = {{"", &sae.wpa_type_cmd.sae_password},
                            {"", &sae.wpa_radius_acct_server_cmd.key},
                            {"", &bss.auth_wpa2_wpa3.wpa_type_cmd.key}};
    for (auto &each : sae.wpa_radius_auth_server_cmd) members.push_back({"", &each.key});
    return members;
}

heap_members all_texts(config_data &config)
{
    heap_members members;
    for (auto &radio : config.radio)
        for (auto &bss : radio.bss) append(members, bss_members(bss));
    for (auto &ethernet : config.ethernet) append(members, ethernet_members(ethernet));
    append(members, dns_members(config));
    append(members, location_members(config));
    for (auto &ftp : config.ftp) append(members, ftp_members(ftp));
    append(members, last_members_before_ism(config));
    append(members, last_members_after_ism(config));
    return members;
}

}  // namespace apconf_test

// How each kind of command reports its changes: what is compared, what goes into which object, and the log's words.
#include <json-c/json.h>

#include <cstdlib>
#include <cstring>

#include "memory.h"
#include "store_fixture.h"

namespace apconf_test
{
namespace
{

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string noall = R"({".OPT":"noall"})";
const std::string no = R"({".OPT":"no"})";

class change_handlers_test : public store_test
{
protected:
    void SetUp() override
    {
        store_test::SetUp();
        lookup = {1, 15, 4, 0, 0, 0, 15};
    }

    answer report(const std::string &package, const std::string &command, const std::string &args = "")
    {
        return apconf_test::report(package, command, &lookup, args);
    }

    bss_config &bss = root.config.radio[1].bss[15];
    bss_config &reference = mirror_root.config.radio[1].bss[15];
    radio_config &radio = root.config.radio[1];
    config_data &config = root.config;
    log_capture log;
};

// ---- the scalar group ----

TEST_F(change_handlers_test, a_changed_value_is_put_and_traced)
{
    bss.auth_open_wep.default_key_cmd.key = 3;
    EXPECT_EQ(report("auth_open_wep", "default_key_cmd"), reported(R"({"key":"3"})"));
    EXPECT_TRUE(log.has(7, "get_default_key_cmd",
                        "put UINT root.config.radio[rid].bss[wid].auth_open_wep.default_key_cmd.key"));
}

TEST_F(change_handlers_test, a_value_equal_to_the_reference_is_not_reported)
{
    bss.rts_threshold_cmd.rts = reference.rts_threshold_cmd.rts = 2346;
    EXPECT_EQ(report("bss", "rts_threshold_cmd"), nothing());
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(change_handlers_test, an_unset_value_that_differs_from_a_set_reference_is_reported)
{
    reference.rts_threshold_cmd.rts = 2346;
    EXPECT_EQ(report("bss", "rts_threshold_cmd"), reported(R"({"rts":"4294967295"})"));
}

TEST_F(change_handlers_test, all_changed_fields_of_a_command_share_one_object)
{
    bss.macauth_server_cmd.ip = 0xC0000201;
    bss.macauth_server_cmd.delimiter = 1;
    bss.macauth_server_cmd.key = text("k");
    EXPECT_EQ(report("bss", "macauth_server_cmd"), reported(R"({"ip":"192.0.2.1","delimiter":"dash","key":"k"})"));
    EXPECT_THAT(log.texts(7),
                testing::IsSupersetOf({"put IPV4 root.config.radio[rid].bss[wid].macauth_server_cmd.ip",
                                       "put MAC_DELIMITER root.config.radio[rid].bss[wid].macauth_server_cmd.delimiter",
                                       "put string root.config.radio[rid].bss[wid].macauth_server_cmd.key"}));
}

TEST_F(change_handlers_test, values_compare_at_their_width)
{
    config.ftp[15].timer_cmd.daily_minutes = 0;
    EXPECT_EQ(report("ftp", "timer_cmd"), reported(R"({"daily_minutes":"0"})"));
    config.ftp[15].max_log_cmd.size = 0xFF00;
    EXPECT_EQ(report("ftp", "max_log_cmd"), reported(R"({"size":"65280"})"));
    bss.session_id_cmd.sta_mac.octet[5] = 0;
    EXPECT_EQ(report("bss", "session_id_cmd"), reported(R"({"sta_mac":"FF:FF:FF:FF:FF:00"})"));
}

TEST_F(change_handlers_test, eight_byte_values_compare_both_words)
{
    bss.session_id_cmd.session_id_0 = 0xFFFFFFFF00000000u;
    bss.session_id_cmd.session_id_1 = 0x00000000FFFFFFFFu;
    EXPECT_EQ(report("bss", "session_id_cmd"),
              reported(R"({"session_id_0":"18446744069414584320","session_id_1":"4294967295"})"));
    config.ip_route_cmd.dest_prefix.prefix = 24;
    EXPECT_EQ(report("config", "ip_route_cmd"), reported(R"({"dest_prefix":"255.255.255.255/24"})"));
    mirror_root.config.ip_route_cmd.dest_prefix = {0x0A000000, 24};
    EXPECT_EQ(report("config", "ip_route_cmd"), reported(R"({"dest_prefix":"255.255.255.255/24"})"));
}

TEST_F(change_handlers_test, an_address_with_mask_prints_its_octets_reversed)
{
    config.ethernet[4].ip_address_cmd.ip_addr = {0xC0A80100, 24};
    EXPECT_EQ(report("ethernet", "ip_address_cmd"), reported(R"({"ip_addr":"0.1.168.192/24"})"));
}

// The object is there although its one value could not be written.
TEST_F(change_handlers_test, a_value_without_a_text_leaves_its_key_out)
{
    bss.auth_type_cmd.type = 99;
    EXPECT_EQ(report("bss", "auth_type_cmd"), reported("{}"));
    EXPECT_TRUE(log.has(3, "AUTH_TYPE_to_string", "not support enum id '99'"));
}

TEST_F(change_handlers_test, equal_text_under_a_new_pointer_is_a_change)
{
    bss.ssid_cmd.ssid = text("office");
    reference.ssid_cmd.ssid = text("office");
    EXPECT_EQ(report("bss", "ssid_cmd"), reported(R"({"ssid":"office"})"));
    EXPECT_TRUE(log.has(7, "get_ssid_cmd", "put string root.config.radio[rid].bss[wid].ssid_cmd.ssid"));
}

TEST_F(change_handlers_test, the_same_pointer_is_no_change)
{
    bss.ssid_cmd.ssid = reference.ssid_cmd.ssid = text("office");
    EXPECT_EQ(report("bss", "ssid_cmd"), nothing());
}

TEST_F(change_handlers_test, a_text_set_to_null_is_not_reported)
{
    reference.ssid_cmd.ssid = text("office");
    EXPECT_EQ(report("bss", "ssid_cmd"), nothing());
}

TEST_F(change_handlers_test, a_typed_text_is_put_through_its_type)
{
    config.redis.server_cmd.auth = text("secret");
    EXPECT_EQ(report("redis", "server_cmd"), reported(R"({"auth":"secret"})"));
    EXPECT_TRUE(log.has(7, "get_server_cmd", "put STRING root.config.redis.server_cmd.auth"));
}

TEST_F(change_handlers_test, long_texts_are_put_whole)
{
    const std::string value(5000, 'x');
    config.iwg_server_cmd.server_addr = text(value);
    bss.dhcp_option82.circuit_id_cmd.value = text(value);
    bss.dhcp_option82.circuit_id_cmd.format = 1;
    EXPECT_EQ(report("config", "iwg_server_cmd"), reported("{\"server_addr\":\"" + value + "\"}"));
    EXPECT_EQ(report("dhcp_option82", "circuit_id_cmd"), reported("{\"format\":\"hex\",\"value\":\"" + value + "\"}"));
}

// One field of every package, by the path that a programmer writes.
TEST_F(change_handlers_test, put_lines_name_the_path_of_every_package)
{
    lookup = {};
    make_vlans(1);
    make_pools(1);
    make_ip_acls(1);
#define EXPECT_PUT(type, package, command, path)                                            \
    do {                                                                                    \
        memset(&path, 1, sizeof path);                                                      \
        log.clear();                                                                        \
        report(package, #command);                                                          \
        EXPECT_TRUE(log.has(7, "get_" #command, "put " type " " #path)) << log.texts(7)[0]; \
    } while (0)
#define EXPECT_PUT_TEXT(type, package, command, path)                                       \
    do {                                                                                    \
        path = text("a");                                                                   \
        log.clear();                                                                        \
        report(package, #command);                                                          \
        EXPECT_TRUE(log.has(7, "get_" #command, "put " type " " #path)) << log.texts(7)[0]; \
    } while (0)
    constexpr int rid = 0, wid = 0, eid = 0, i = 0;
    EXPECT_PUT("ACCESS_LIST_TYPE", "access_list", acl_type_cmd,
               root.config.radio[rid].bss[wid].access_list.acl_type_cmd.type);
    EXPECT_PUT("MAC_ADDR", "access_list", mac_acl_cmd, root.config.radio[rid].bss[wid].access_list.mac_acl_cmd[i].mac);
    EXPECT_PUT_TEXT("string", "access_list", domain_acl_cmd,
                    root.config.radio[rid].bss[wid].access_list.domain_acl_cmd[i].domain);
    EXPECT_PUT_TEXT("string", "auth_open_wep", wep_key_cmd,
                    root.config.radio[rid].bss[wid].auth_open_wep.wep_key_cmd[i].key);
    EXPECT_PUT("CIPHER_TYPE", "auth_open_wpa", wpa_type_cmd,
               root.config.radio[rid].bss[wid].auth_open_wpa.wpa_type_cmd.cipher);
    EXPECT_PUT("UINT8", "auth_open_wpa2", wpa_type_cmd,
               root.config.radio[rid].bss[wid].auth_open_wpa2.wpa_type_cmd.pmk_cache_mode);
    EXPECT_PUT("WEP_KEY_TYPE", "auth_shared_wep", wep_key_cmd,
               root.config.radio[rid].bss[wid].auth_shared_wep.wep_key_cmd[i].type);
    EXPECT_PUT_TEXT("string", "auth_wpa2_wpa3", wpa_type_cmd,
                    root.config.radio[rid].bss[wid].auth_wpa2_wpa3.wpa_type_cmd.key);
    EXPECT_PUT_TEXT("string", "auth_wpa3_sae", wpa_type_cmd,
                    root.config.radio[rid].bss[wid].auth_wpa3_sae.wpa_type_cmd.sae_password);
    EXPECT_PUT("IPV4", "auth_wpa_wpa2", wpa_radius_acct_server_cmd,
               root.config.radio[rid].bss[wid].auth_wpa_wpa2.wpa_radius_acct_server_cmd.ip);
    EXPECT_PUT("UINT", "autorf", back_off_cmd, root.config.radio[rid].autorf.back_off_cmd.back_off);
    EXPECT_PUT("BAND_STEERING_MODE", "band_steering", band_steering_mode_cmd,
               root.config.radio[rid].bss[wid].band_steering.band_steering_mode_cmd.mode);
    EXPECT_PUT("UINT", "black_list", agetime_cmd, root.config.black_list.agetime_cmd.agetime);
    EXPECT_PUT("UINT", "bss", ssid_up_bw_cmd, root.config.radio[rid].bss[wid].ssid_up_bw_cmd.bandwidth);
    EXPECT_PUT("UINT8", "bss", ppsk_cmd, root.config.radio[rid].bss[wid].ppsk.ppsk_cmd.change);
    EXPECT_PUT("IPV4", "capwap", controller_ip_cmd, root.config.capwap.controller_ip_cmd[i].ip);
    EXPECT_PUT("STATUS", "celluar", gps_status_cmd, root.config.celluar.gps_status_cmd.status);
    EXPECT_PUT("SYSLOG_SEVERITY", "config", log_level_cmd, root.config.log_level_cmd[i].severity);
    EXPECT_PUT_TEXT("STRING", "config", dump_server_cmd, root.config.dump_server_cmd.user);
    EXPECT_PUT("MAC_CHARACTER", "dhcp_option82", mac_format_cmd,
               root.config.radio[rid].bss[wid].dhcp_option82.mac_format_cmd.character);
    EXPECT_PUT("IPV4", "dhcp_server", dns_list_cmd, root.config.dhcp_server.dns_list_cmd[i].ip);
    EXPECT_PUT_TEXT("string", "dns", fake_response_cmd, root.config.dns.fake_response_cmd[i].domain);
    EXPECT_PUT("UINT", "dos", limit_cmd, root.config.dos.limit_cmd.limit);
    EXPECT_PUT("CHANNEL", "dot11k_cfg", dot11g_bcn_req_list_cmd,
               root.config.radio[rid].bss[wid].dot11k_cfg.dot11g_bcn_req_list_cmd[i].channel);
    EXPECT_PUT("UINT", "dpi", logging_audit_cmd, root.config.dpi.logging_audit_cmd.port);
    EXPECT_PUT("UINT", "ethernet", mtu_cmd, root.config.ethernet[eid].mtu_cmd.mtu);
    EXPECT_PUT_TEXT("string", "ethernet", pppoe_user_cmd, root.config.ethernet[eid].pppoe_user_cmd.passwd);
    EXPECT_PUT("FTPS_POLICY_TYPE", "ftp", service_cmd, root.config.ftp[i].service_cmd.policy);
    EXPECT_PUT_TEXT("string", "location", server_cmd, root.config.location.server_cmd.second_ip);
    EXPECT_PUT("UINT", "multicast_to_unicast", query_interval_cmd,
               root.config.radio[rid].bss[wid].multicast_to_unicast.query_interval_cmd.interval);
    EXPECT_PUT("IP_NAT_IF", "nat", ip_nat_cmd, root.config.nat.ip_nat_cmd.outif_type);
    EXPECT_PUT("IPV4", "ntp", server_cmd, root.config.ntp.server_cmd.ip);
    EXPECT_PUT_TEXT("STRING", "passpoint_anqp", friendly_name_cmd,
                    root.config.radio[rid].bss[wid].passpoint_anqp.friendly_name_cmd[i].language);
    EXPECT_PUT("MAC_ADDR", "passpoint_ie", hessid_cmd, root.config.radio[rid].bss[wid].passpoint_ie.hessid_cmd.hessid);
    EXPECT_PUT("SINT", "radio", rf_opt_rssi_ck_frq_cmd, root.config.radio[rid].rf_opt_rssi_ck_frq_cmd.min_rssi_freq);
    EXPECT_PUT("UINT16", "radio", time_range_cmd, root.config.radio[rid].time_range_cmd[i].end_time);
    EXPECT_PUT("UINT", "redis", cs_expire_cmd, root.config.redis.cs_expire_cmd.time);
    EXPECT_PUT("UINT", "webauth_parameter", portal_url_cmd,
               root.config.radio[rid].bss[wid].webauth_parameter.portal_url_cmd[i].format);
    EXPECT_PUT("WMM_MAP", "wmm", ac_dscp_map_cmd,
               root.config.radio[rid].bss[wid].wmm.ac_dscp_map_cmd[i].wmm_ac_dscp_map);
#undef EXPECT_PUT
#undef EXPECT_PUT_TEXT
}

TEST_F(change_handlers_test, put_lines_of_lists_name_the_element_without_the_pointer)
{
    make_vlans(1);
    make_pools(1);
    make_ip_acls(1);
    config.vlan.list[0].dhcp_cmd.type = 0;
    config.vlan.list[0].dhcp_cmd.pool_name = text("lan");
    config.dhcp_server.pool.list[0].lease_cmd.time = 60;
    config.dhcp_server.pool.list[0].domain_cmd.domain = text("lan");
    config.ip_acl.list[0].ace_count = 1;
    report("vlan", "dhcp_cmd");
    report("pool", "lease_cmd");
    report("pool", "domain_cmd");
    report("ip_acl", "ace_cmd");
    EXPECT_TRUE(log.has(7, "get_dhcp_cmd", "put DHCP_TYPE root.config.vlan[vid].dhcp_cmd.type"));
    EXPECT_TRUE(log.has(7, "get_dhcp_cmd", "put STRING root.config.vlan[vid].dhcp_cmd.pool_name"));
    EXPECT_TRUE(log.has(7, "get_lease_cmd", "put TIME_HHMMSS root.config.dhcp_server.pool[pid].lease_cmd.time"));
    EXPECT_TRUE(log.has(7, "get_domain_cmd", "put string root.config.dhcp_server.pool[pid].domain_cmd.domain"));
    EXPECT_TRUE(log.has(7, "get_ace_cmd", "put IPV4_MASK root.config.ip_acl[i].ace[i].source_ip_addr"));
}

// ---- package nodes ----

TEST_F(change_handlers_test, a_package_node_is_entered_when_a_byte_of_its_group_differs)
{
    EXPECT_EQ(report("bss", "wmm"), nothing());
    bss.wmm.ac_dscp_map_cmd[3].wmm_ac_dscp_map_vo = 46;
    EXPECT_EQ(report("bss", "wmm"), reported("{}"));
    radio.autorf.scan_enable_cmd.status = 1;
    EXPECT_EQ(report("radio", "autorf"), reported("{}"));
    memset(bss.dot11k_cfg.reserved, 0, sizeof bss.dot11k_cfg.reserved);
    EXPECT_EQ(report("bss", "dot11k_cfg"), reported("{}"));
}

TEST_F(change_handlers_test, the_package_nodes_compare_just_their_own_group)
{
#define EXPECT_ENTERED(package, node, place)                                 \
    do {                                                                     \
        EXPECT_EQ(report(package, #node), nothing()) << #node;               \
        auto &first = *reinterpret_cast<char *>(&place);                     \
        auto &last = *(reinterpret_cast<char *>(&place) + sizeof place - 1); \
        for (char *byte : {&first, &last}) {                                 \
            const char before = *byte;                                       \
            *byte = static_cast<char>(~before);                              \
            EXPECT_EQ(report(package, #node), reported("{}")) << #node;      \
            *byte = before;                                                  \
        }                                                                    \
        memset(&place, 0x55, sizeof place);                                  \
    } while (0)
    // Each leaves its group changed, so that a later node that looks too far is seen.
    EXPECT_ENTERED("bss", wmm, bss.wmm);
    EXPECT_ENTERED("bss", auth_shared_wep, bss.auth_shared_wep);
    EXPECT_ENTERED("bss", auth_open_wep, bss.auth_open_wep);
    EXPECT_ENTERED("bss", auth_open_wpa, bss.auth_open_wpa);
    EXPECT_ENTERED("bss", auth_open_wpa2, bss.auth_open_wpa2);
    EXPECT_ENTERED("bss", auth_wpa_wpa2, bss.auth_wpa_wpa2);
    EXPECT_ENTERED("bss", auth_wpa3_sae, bss.auth_wpa3_sae);
    EXPECT_ENTERED("bss", auth_wpa2_wpa3, bss.auth_wpa2_wpa3);
    EXPECT_ENTERED("bss", access_list, bss.access_list);
    EXPECT_ENTERED("bss", webauth_parameter, bss.webauth_parameter);
    EXPECT_ENTERED("bss", band_steering, bss.band_steering);
    EXPECT_ENTERED("bss", dot11k_cfg, bss.dot11k_cfg);
    EXPECT_ENTERED("bss", dhcp_option82, bss.dhcp_option82);
    EXPECT_ENTERED("bss", multicast_to_unicast, bss.multicast_to_unicast);
    EXPECT_ENTERED("radio", autorf, radio.autorf);
    EXPECT_ENTERED("config", celluar, config.celluar);
    EXPECT_ENTERED("config", nat, config.nat);
    EXPECT_ENTERED("config", dhcp_server, config.dhcp_server);
    EXPECT_ENTERED("config", dpi, config.dpi);
    EXPECT_ENTERED("config", ntp, config.ntp);
    EXPECT_ENTERED("config", dns, config.dns);
    EXPECT_ENTERED("config", capwap, config.capwap);
    EXPECT_ENTERED("config", location, config.location);
    EXPECT_ENTERED("config", dos, config.dos);
    EXPECT_ENTERED("config", black_list, config.black_list);
    EXPECT_ENTERED("config", redis, config.redis);
#undef EXPECT_ENTERED
    init_cmd_tree_data();
}

TEST_F(change_handlers_test, unconditional_nodes_are_always_entered)
{
    EXPECT_EQ(report("root", "config"), reported("{}"));
    EXPECT_EQ(report("bss", "passpoint_ie"), reported("{}"));
    EXPECT_EQ(report("bss", "passpoint_anqp"), reported("{}"));
    EXPECT_EQ(apconf_test::report("root", "config", nullptr), reported("{}"));
}

// ---- flags ----

TEST_F(change_handlers_test, a_shutdown_is_reported_by_its_word_alone)
{
    struct flag {
        const char *package;
        uint32_t *state;
        uint32_t *reference;
    };
    for (const flag &each :
         {flag{"bss", &bss.shutdown_cmd.state, &reference.shutdown_cmd.state},
          flag{"radio", &radio.shutdown_cmd.state, &mirror_root.config.radio[1].shutdown_cmd.state},
          flag{"ethernet", &config.ethernet[4].shutdown_cmd.state, &mirror_root.config.ethernet[4].shutdown_cmd.state},
          flag{"celluar", &config.celluar.shutdown_cmd.state, &mirror_root.config.celluar.shutdown_cmd.state}}) {
        SCOPED_TRACE(each.package);
        *each.state = 1;
        EXPECT_EQ(report(each.package, "shutdown_cmd"), reported("{}"));
        *each.reference = 1;
        EXPECT_EQ(report(each.package, "shutdown_cmd"), reported("{}"));
        *each.state = *each.reference = 0xFFFFFFFE;
        EXPECT_EQ(report(each.package, "shutdown_cmd"), reported(no));
        for (const uint32_t other : {0u, 2u, 0xFFFFFFFDu, 0xFFFFFFFFu}) {
            *each.state = other;
            EXPECT_EQ(report(each.package, "shutdown_cmd"), nothing()) << other;
        }
    }
}

// ---- arrays ----

TEST_F(change_handlers_test, each_changed_element_has_an_object_of_its_own)
{
    bss.auth_shared_wep.wep_key_cmd[0].idx = 1;
    bss.auth_shared_wep.wep_key_cmd[2].type = 1;
    bss.auth_shared_wep.wep_key_cmd[2].key = text("abc");
    EXPECT_EQ(report("auth_shared_wep", "wep_key_cmd"), reported(R"([{"idx":"1"},{"type":"hex","key":"abc"}])"));
}

TEST_F(change_handlers_test, the_last_element_of_an_array_is_walked)
{
    bss.webauth_parameter.portal_url_cmd[12].index = 12;
    bss.webauth_parameter.http_url_cmd[15].dst = text("d");
    bss.webauth_parameter.portal_dmi_cmd[3].domain = text("d");
    bss.wmm.ac_dscp_map_cmd[3].wmm_ac_dscp_map_be = 8;
    config.log_server_cmd[19].facility = 17;
    config.log_level_cmd[19].facility = 17;
    config.dhcp_server.dns_list_cmd[1023].ip = 0x08080808;
    EXPECT_EQ(report("webauth_parameter", "portal_url_cmd"), reported(R"({"index":"12"})"));
    EXPECT_EQ(report("webauth_parameter", "http_url_cmd"), reported(R"({"dst":"d"})"));
    EXPECT_EQ(report("webauth_parameter", "portal_dmi_cmd"), reported(R"({"domain":"d"})"));
    EXPECT_EQ(report("wmm", "ac_dscp_map_cmd"), reported(R"({"wmm_ac_dscp_map_be":"8"})"));
    EXPECT_EQ(report("config", "log_server_cmd"), reported(R"({"facility":"all"})"));
    EXPECT_EQ(report("config", "log_level_cmd"), reported(R"({"facility":"all"})"));
    EXPECT_EQ(report("dhcp_server", "dns_list_cmd"), reported(R"({"ip":"8.8.8.8"})"));
}

TEST_F(change_handlers_test, the_third_word_of_a_log_entry_is_not_compared)
{
    config.log_server_cmd[0].reserved = 1;
    config.log_level_cmd[0].reserved = 1;
    EXPECT_EQ(report("config", "log_server_cmd"), nothing());
    EXPECT_EQ(report("config", "log_level_cmd"), nothing());
}

TEST_F(change_handlers_test, a_changed_option_word_resets_the_list_first)
{
    bss.time_range_cmd_opt = 0;
    EXPECT_EQ(report("bss", "time_range_cmd"), reported(noall));
    bss.time_range_cmd[7] = {3, 480, 0xFFFF};
    EXPECT_EQ(report("bss", "time_range_cmd"), reported("[" + noall + R"(,{"type":"daily","start_time":"480"}])"));
    reference.time_range_cmd_opt = 0;
    EXPECT_EQ(report("bss", "time_range_cmd"), reported(R"({"type":"daily","start_time":"480"})"));
    radio.time_range_cmd_opt = 17;
    EXPECT_EQ(report("radio", "time_range_cmd"), reported(noall));
}

TEST_F(change_handlers_test, channel_lists_and_dns_answers_reset_on_a_changed_option_word)
{
    bss.dot11k_cfg.dot11a_chan_rep_list_cmd_opt = 1;
    bss.dot11k_cfg.dot11a_chan_rep_list_cmd[63].channel = 165;
    bss.dot11k_cfg.dot11g_chan_rep_list_cmd[13].channel = 13;
    EXPECT_EQ(report("dot11k_cfg", "dot11a_chan_rep_list_cmd"), reported("[" + noall + R"(,{"channel":"165"}])"));
    EXPECT_EQ(report("dot11k_cfg", "dot11g_chan_rep_list_cmd"), reported(R"({"channel":"13"})"));
    bss.dot11k_cfg.dot11a_bcn_req_list_cmd_opt = bss.dot11k_cfg.dot11g_bcn_req_list_cmd_opt = 0;
    EXPECT_EQ(report("dot11k_cfg", "dot11a_bcn_req_list_cmd"), reported(noall));
    EXPECT_EQ(report("dot11k_cfg", "dot11g_bcn_req_list_cmd"), reported(noall));
    config.dns.fake_response_cmd_opt = 1;
    config.dns.fake_response_cmd[4].ip = 0x7F000001;
    config.dns.fake_response_cmd[4].domain = text("portal");
    EXPECT_EQ(report("dns", "fake_response_cmd"), reported("[" + noall + R"(,{"ip":"127.0.0.1","domain":"portal"}])"));
}

TEST_F(change_handlers_test, server_lists_are_reported_only_when_replaced)
{
    auto expect_only_when_replaced = [&](const char *package, uint32_t &option, radius_server *servers) {
        SCOPED_TRACE(package);
        servers[0].ip = 0x0A000001;
        servers[15].port = 1812;
        servers[15].key = text("s");
        for (const uint32_t other : {0u, 2u, 0xFFFFFFFEu, 0xFFFFFFFFu}) {
            option = other;
            EXPECT_EQ(report(package, "wpa_radius_auth_server_cmd"), nothing()) << other;
        }
        option = 1;
        EXPECT_EQ(report(package, "wpa_radius_auth_server_cmd"),
                  reported("[" + noall + R"(,{"ip":"10.0.0.1"},{"port":"1812","key":"s"}])"));
    };
    expect_only_when_replaced("auth_open_wpa", bss.auth_open_wpa.wpa_radius_auth_server_cmd_opt,
                              bss.auth_open_wpa.wpa_radius_auth_server_cmd);
    expect_only_when_replaced("auth_open_wpa2", bss.auth_open_wpa2.wpa_radius_auth_server_cmd_opt,
                              bss.auth_open_wpa2.wpa_radius_auth_server_cmd);
    expect_only_when_replaced("auth_wpa_wpa2", bss.auth_wpa_wpa2.wpa_radius_auth_server_cmd_opt,
                              bss.auth_wpa_wpa2.wpa_radius_auth_server_cmd);
    expect_only_when_replaced("auth_wpa3_sae", bss.auth_wpa3_sae.wpa_radius_auth_server_cmd_opt,
                              bss.auth_wpa3_sae.wpa_radius_auth_server_cmd);
}

TEST_F(change_handlers_test, a_replaced_server_list_without_entries_is_a_reset)
{
    bss.auth_open_wpa.wpa_radius_auth_server_cmd_opt = reference.auth_open_wpa.wpa_radius_auth_server_cmd_opt = 1;
    EXPECT_EQ(report("auth_open_wpa", "wpa_radius_auth_server_cmd"), reported(noall));
}

TEST_F(change_handlers_test, the_domain_list_resets_on_any_difference)
{
    EXPECT_EQ(report("access_list", "domain_acl_cmd"), nothing());
    bss.access_list.domain_acl_cmd[127].forward = 1;
    bss.access_list.domain_acl_cmd[127].domain = text("example.org");
    EXPECT_EQ(report("access_list", "domain_acl_cmd"),
              reported("[" + noall + R"(,{"forward":"1","domain":"example.org"}])"));
    bss.access_list.domain_acl_cmd_opt = 1;
    EXPECT_EQ(report("access_list", "domain_acl_cmd"),
              reported("[" + noall + R"(,{"forward":"1","domain":"example.org"}])"));
}

TEST_F(change_handlers_test, a_negated_domain_list_is_reset_without_a_difference)
{
    bss.access_list.domain_acl_cmd_opt = reference.access_list.domain_acl_cmd_opt = 0xFFFFFFFE;
    EXPECT_EQ(report("access_list", "domain_acl_cmd"), reported(noall));
    for (const uint32_t other : {0u, 1u, 2u}) {
        bss.access_list.domain_acl_cmd_opt = other;
        EXPECT_EQ(report("access_list", "domain_acl_cmd"), nothing()) << other;
    }
}

TEST_F(change_handlers_test, a_domain_set_to_null_resets_the_list)
{
    reference.access_list.domain_acl_cmd[0].domain = text("example.org");
    EXPECT_EQ(report("access_list", "domain_acl_cmd"), reported(noall));
}

TEST_F(change_handlers_test, passpoint_lists_are_always_reset_first)
{
    passpoint_anqp_config &anqp = bss.passpoint_anqp;
    anqp.venue_name_cmd[0] = {text("eng"), text("hall")};
    anqp.venue_name_cmd[63] = {nullptr, text("gate")};
    anqp.network_auth_cmd[63].auth_type = 2;
    anqp.cellular_cmd[41].mcc = text("262");
    anqp.domain_name_cmd[63].value = text("example.org");
    anqp.nai_realm_cmd[63].nai_realm = text("realm");
    anqp.friendly_name_cmd[63].name = text("friend");
    bss.passpoint_ie.roaming_consortium_cmd[191].oi = text("506F9A");
    auto reset_then = [](const std::string &elements) { return reported("[" + noall + "," + elements + "]"); };
    EXPECT_EQ(report("passpoint_anqp", "venue_name_cmd"),
              reset_then(R"({"language":"eng","name":"hall"},{"name":"gate"})"));
    EXPECT_EQ(report("passpoint_anqp", "network_auth_cmd"), reset_then(R"({"auth_type":"2"})"));
    EXPECT_EQ(report("passpoint_anqp", "cellular_cmd"), reset_then(R"({"mcc":"262"})"));
    EXPECT_EQ(report("passpoint_anqp", "domain_name_cmd"), reset_then(R"({"value":"example.org"})"));
    EXPECT_EQ(report("passpoint_anqp", "nai_realm_cmd"), reset_then(R"({"nai_realm":"realm"})"));
    EXPECT_EQ(report("passpoint_anqp", "friendly_name_cmd"), reset_then(R"({"name":"friend"})"));
    EXPECT_EQ(report("passpoint_ie", "roaming_consortium_cmd"), reset_then(R"({"oi":"506F9A"})"));
}

// ---- the MAC list ----

TEST_F(change_handlers_test, the_mac_list_ends_at_the_first_unchanged_entry)
{
    auto &macs = bss.access_list.mac_acl_cmd;
    macs[0].mac = {{2, 0, 0, 0, 0, 1}};
    macs[1].mac = {{2, 0, 0, 0, 0, 2}};
    macs[3].mac = {{2, 0, 0, 0, 0, 4}};
    EXPECT_EQ(report("access_list", "mac_acl_cmd"),
              reported(R"([{"mac":"02:00:00:00:00:01"},{"mac":"02:00:00:00:00:02"}])"));
    reference.access_list.mac_acl_cmd[0].mac = macs[0].mac;
    EXPECT_EQ(report("access_list", "mac_acl_cmd"), nothing());
}

TEST_F(change_handlers_test, the_mac_list_is_reset_by_option_1_alone)
{
    bss.access_list.mac_acl_cmd_opt = 1;
    EXPECT_EQ(report("access_list", "mac_acl_cmd"), reported(noall));
    bss.access_list.mac_acl_cmd[0].mac = {{2, 0, 0, 0, 0, 1}};
    EXPECT_EQ(report("access_list", "mac_acl_cmd"), reported("[" + noall + R"(,{"mac":"02:00:00:00:00:01"}])"));
    for (const uint32_t other : {0u, 2u, 0xFFFFFFFEu, 0xFFFFFFFFu}) {
        bss.access_list.mac_acl_cmd_opt = other;
        EXPECT_EQ(report("access_list", "mac_acl_cmd"), reported(R"({"mac":"02:00:00:00:00:01"})")) << other;
    }
}

TEST_F(change_handlers_test, a_full_mac_list_is_reported_whole)
{
    for (auto &entry : bss.access_list.mac_acl_cmd) entry.mac.octet[0] = 2;
    const answer given = report("access_list", "mac_acl_cmd");
    json_object *const list = json_tokener_parse(given.json.c_str());
    EXPECT_EQ(json_object_array_length(list), 256u);
    json_object_put(list);
}

// ---- unset means no ----

TEST_F(change_handlers_test, passpoint_scalars_that_are_unset_are_negated_without_comparison)
{
    for (const char *command :
         {"interworking_cmd", "access_network_type_cmd", "internet_cmd", "asra_cmd", "dgaf_block_cmd", "hessid_cmd",
          "pame_bi_cmd", "p2p_cross_connect_cmd", "p2p_dev_mgmt_cmd", "venue_info_cmd"})
        EXPECT_EQ(report("passpoint_ie", command), reported(no)) << command;
    for (const char *command : {"oper_class_cmd", "ip_address_availability_cmd", "wan_metrics_cmd"})
        EXPECT_EQ(report("passpoint_anqp", command), reported(no)) << command;
    reference.passpoint_ie.internet_cmd.value = 1;
    EXPECT_EQ(report("passpoint_ie", "internet_cmd"), reported(no));
    EXPECT_EQ(report("passpoint_ie", "query_response_length_limit_cmd"), nothing());
}

TEST_F(change_handlers_test, passpoint_scalars_that_are_set_are_compared)
{
    bss.passpoint_ie.venue_info_cmd = {1, 8};
    EXPECT_EQ(report("passpoint_ie", "venue_info_cmd"), reported(R"({"group":"1","type":"8"})"));
    reference.passpoint_ie.venue_info_cmd = {1, 8};
    EXPECT_EQ(report("passpoint_ie", "venue_info_cmd"), nothing());
    bss.passpoint_ie.hessid_cmd.hessid.octet[0] = 2;
    EXPECT_EQ(report("passpoint_ie", "hessid_cmd"), reported(R"({"hessid":"02:FF:FF:FF:FF:FF"})"));
}

TEST_F(change_handlers_test, only_the_first_field_decides_about_the_negation)
{
    bss.passpoint_anqp.wan_metrics_cmd.dl_speed = 1000;
    EXPECT_EQ(report("passpoint_anqp", "wan_metrics_cmd"), reported(no));
    bss.passpoint_anqp.wan_metrics_cmd.link_status = 1;
    EXPECT_EQ(report("passpoint_anqp", "wan_metrics_cmd"), reported(R"({"link_status":"1","dl_speed":"1000"})"));
}

TEST_F(change_handlers_test, a_null_operating_class_is_negated)
{
    reference.passpoint_anqp.oper_class_cmd.value = text("5173");
    EXPECT_EQ(report("passpoint_anqp", "oper_class_cmd"), reported(no));
    bss.passpoint_anqp.oper_class_cmd.value = text("5173");
    EXPECT_EQ(report("passpoint_anqp", "oper_class_cmd"), reported(R"({"value":"5173"})"));
    free(bss.passpoint_anqp.oper_class_cmd.value);
    bss.passpoint_anqp.oper_class_cmd.value = reference.passpoint_anqp.oper_class_cmd.value;
    EXPECT_EQ(report("passpoint_anqp", "oper_class_cmd"), nothing());
}

// ---- negatable groups ----

TEST_F(change_handlers_test, a_negated_first_field_is_reported_as_no)
{
    config.summer_time_cmd.zone = config.timezone_cmd.zone = config.dump_server_cmd.type = 0xFFFFFFFE;
    config.summer_time_cmd.ohour = config.timezone_cmd.hour = 1;
    config.dump_server_cmd.user = text("user");
    for (const char *command : {"summer_time_cmd", "timezone_cmd", "dump_server_cmd"})
        EXPECT_EQ(report("config", command), reported(no)) << command;
}

TEST_F(change_handlers_test, the_negatable_commands_are_scalar_groups_otherwise)
{
    config.timezone_cmd = {7, -3, 30};
    EXPECT_EQ(report("config", "timezone_cmd"), reported(R"({"zone":"cct","hour":"-3","minute":"30"})"));
    config.summer_time_cmd.smonth = 3;
    config.summer_time_cmd.eday = 0;
    EXPECT_EQ(report("config", "summer_time_cmd"), reported(R"({"smonth":"march","eday":"sunday"})"));
    config.dump_server_cmd.type = 1;
    config.dump_server_cmd.user = text("u");
    config.dump_server_cmd.password = text("p");
    EXPECT_EQ(report("config", "dump_server_cmd"), reported(R"({"type":"tftp","username":"u","password":"p"})"));
}

// ---- value arrays ----

TEST_F(change_handlers_test, changed_rates_are_collected_into_one_array)
{
    bss.supported_rates_cmd.rates[0] = 5;
    bss.supported_rates_cmd.rates[11] = 54;
    EXPECT_EQ(report("bss", "supported_rates_cmd"), reported(R"({"supported_rates":["5","54"]})"));
    EXPECT_TRUE(log.has(7, "get_supported_rates_cmd", "put 'supported_rates' array '5'"));
    EXPECT_TRUE(log.has(7, "get_supported_rates_cmd", "put 'supported_rates' array '54'"));
    bss.transmit_rates_cmd.rates[6] = 12;
    EXPECT_EQ(report("bss", "transmit_rates_cmd"), reported(R"({"transmit_rates":["12"]})"));
    reference.transmit_rates_cmd.rates[6] = 12;
    EXPECT_EQ(report("bss", "transmit_rates_cmd"), nothing());
}

TEST_F(change_handlers_test, a_rate_without_a_token_is_left_out)
{
    bss.supported_rates_cmd.rates[0] = 7;
    EXPECT_EQ(report("bss", "supported_rates_cmd"), nothing());
    bss.supported_rates_cmd.rates[1] = 6;
    EXPECT_EQ(report("bss", "supported_rates_cmd"), reported(R"({"supported_rates":["6"]})"));
}

TEST_F(change_handlers_test, an_array_without_an_object_to_hold_it_is_logged_and_dropped)
{
    bss.supported_rates_cmd.rates[0] = 6;
    const json_objects_fail short_of_memory;
    EXPECT_EQ(report("bss", "supported_rates_cmd"), nothing());
    EXPECT_TRUE(log.has(3, "get_supported_rates_cmd", "create_argv_obj failed"));
}

void set_ids(config_block &block, std::initializer_list<uint32_t> ids)
{
    auto &vlanid = block.config.ethernet[4].switchport_cmd.vlanid;
    vlanid.list = static_cast<uint32_t *>(realloc(vlanid.list, ids.size() * sizeof(uint32_t)));
    vlanid.count = static_cast<int32_t>(ids.size());
    std::copy(ids.begin(), ids.end(), vlanid.list);
}

TEST_F(change_handlers_test, vlan_ids_share_the_object_of_the_port_type)
{
    set_ids(root, {1, 2, 4094});
    EXPECT_EQ(report("ethernet", "switchport_cmd"), reported(R"({"vlanid":["1","2","4094"]})"));
    EXPECT_TRUE(log.has(7, "get_switchport_cmd", "put 'vlanid' array '4094'"));
    config.ethernet[4].switchport_cmd.switchport_type = 1;
    EXPECT_EQ(report("ethernet", "switchport_cmd"),
              reported(R"({"switchport_type":"trunk","vlanid":["1","2","4094"]})"));
}

TEST_F(change_handlers_test, vlan_ids_compare_with_the_reference_list_as_far_as_it_goes)
{
    set_ids(root, {1, 2, 3});
    set_ids(mirror_root, {1, 9});
    EXPECT_EQ(report("ethernet", "switchport_cmd"), reported(R"({"vlanid":["2","3"]})"));
    set_ids(mirror_root, {1, 2, 3, 4});
    EXPECT_EQ(report("ethernet", "switchport_cmd"), nothing());
}

TEST_F(change_handlers_test, an_empty_vlan_id_list_is_not_reported)
{
    set_ids(mirror_root, {1});
    EXPECT_EQ(report("ethernet", "switchport_cmd"), nothing());
    config.ethernet[4].switchport_cmd.vlanid.count = 5;  // without memory
    EXPECT_EQ(report("ethernet", "switchport_cmd"), nothing());
    set_ids(root, {1, 2});
    config.ethernet[4].switchport_cmd.vlanid.count = -2;
    EXPECT_EQ(report("ethernet", "switchport_cmd"), nothing());
}

TEST_F(change_handlers_test, the_vlan_id_of_a_bss_is_a_single_value)
{
    bss.switchport_cmd = {0, 7};
    EXPECT_EQ(report("bss", "switchport_cmd"), reported(R"({"switchport_type":"access","vlanid":"7"})"));
}

// ---- addresses by type ----

TEST_F(change_handlers_test, an_address_is_put_by_its_type)
{
    config.speed_test_cmd.ip = config.trace_ap_cmd.ip = config.disturb_test_cmd.ip = 0xC0000201;
    config.speed_test_cmd.domain = text("speed.example.org");
    config.trace_ap_cmd.domain = text("trace.example.org");
    config.disturb_test_cmd.domain = text("disturb.example.org");
    struct test_command {
        const char *name, *path;
        uint32_t *type;
        const char *domain;
    };
    for (const test_command &each :
         {test_command{"speed_test_cmd", "root.config.speed_test_cmd", &config.speed_test_cmd.type, "speed"},
          test_command{"trace_ap_cmd", "root.config.trace_ap_cmd", &config.trace_ap_cmd.type, "trace"},
          test_command{"disturb_test_cmd", "root.config.disturb_test_cmd", &config.disturb_test_cmd.type, "disturb"}}) {
        const std::string get = std::string("get_") + each.name, path = each.path;
        *each.type = 1;
        EXPECT_EQ(report("config", each.name), reported(R"({"type":"ip","addr":"192.0.2.1"})"));
        EXPECT_TRUE(log.has(7, get, "put IPV4 " + path + ".ip"));
        *each.type = 2;
        EXPECT_EQ(report("config", each.name),
                  reported(std::string(R"({"type":"domain","addr":")") + each.domain + R"(.example.org"})"));
        EXPECT_TRUE(log.has(7, get, "put string " + path + ".domain"));
        *each.type = 0;
        EXPECT_EQ(report("config", each.name), reported(R"({"type":"none"})"));
        *each.type = 0xFFFFFFFF;
        EXPECT_EQ(report("config", each.name), nothing());
    }
}

TEST_F(change_handlers_test, an_equal_type_still_chooses_the_address)
{
    config.speed_test_cmd.type = mirror_root.config.speed_test_cmd.type = 1;
    config.speed_test_cmd.ip = 0xC0000201;
    EXPECT_EQ(report("config", "speed_test_cmd"), reported(R"({"addr":"192.0.2.1"})"));
}

TEST_F(change_handlers_test, dpi_servers_have_a_key_for_each_kind_of_address)
{
    for (dpi_server *server : {&config.dpi.logging_audit_cmd, &config.dpi.report_server_cmd}) {
        const char *const command = server == &config.dpi.logging_audit_cmd ? "logging_audit_cmd" : "report_server_cmd";
        server->ip = 0xC0000201;
        server->port = 514;
        server->domain = text("log.example.org");
        server->type = 1;
        EXPECT_EQ(report("dpi", command), reported(R"({"ip":"192.0.2.1","type":"ip","port":"514"})"));
        server->type = 2;
        EXPECT_EQ(report("dpi", command), reported(R"({"type":"domain","port":"514","domain":"log.example.org"})"));
        server->type = 0;
        EXPECT_EQ(report("dpi", command), reported(R"({"type":"none","port":"514"})"));
    }
}

TEST_F(change_handlers_test, the_gateway_server_is_a_text_whatever_its_type)
{
    config.iwg_server_cmd.server_addr = text("192.0.2.1");
    EXPECT_EQ(report("config", "iwg_server_cmd"), reported(R"({"server_addr":"192.0.2.1"})"));
    for (const char *type : {"none", "ip", "domain"}) {
        ADDR_TYPE_to_ptype(type, &config.iwg_server_cmd.addr_type, nullptr);
        EXPECT_EQ(report("config", "iwg_server_cmd"),
                  reported(std::string(R"({"addr_type":")") + type + R"(","server_addr":"192.0.2.1"})"));
    }
    EXPECT_TRUE(log.has(7, "get_iwg_server_cmd", "put STRING root.config.iwg_server_cmd.server_addr"));
}

TEST_F(change_handlers_test, an_option_82_value_is_put_by_its_format)
{
    for (option82_id *id : {&bss.dhcp_option82.circuit_id_cmd, &bss.dhcp_option82.remote_id_cmd}) {
        const std::string command = id == &bss.dhcp_option82.circuit_id_cmd ? "circuit_id_cmd" : "remote_id_cmd";
        const std::string path = "root.config.radio[rid].bss[wid].dhcp_option82." + command + ".value";
        id->value = text("0aF9");
        id->format = 1;
        EXPECT_EQ(report("dhcp_option82", command), reported(R"({"format":"hex","value":"0aF9"})"));
        EXPECT_TRUE(log.has(7, "get_" + command, "put HEX_STR " + path));
        for (const auto &[format, name] : {std::pair{2u, "ascii"}, {3u, "binary"}}) {
            log.clear();
            id->format = format;
            EXPECT_EQ(report("dhcp_option82", command),
                      reported(std::string(R"({"format":")") + name + R"(","value":"0aF9"})"));
            EXPECT_TRUE(log.has(7, "get_" + command, "put string " + path));
        }
        id->format = 0xFFFFFFFF;
        EXPECT_EQ(report("dhcp_option82", command), reported(R"({"value":"0aF9"})"));
    }
}

// ---- the object that is handed over ----

TEST_F(change_handlers_test, an_object_is_handed_over_to_the_message)
{
    config.ism_cmd.ism = json_tokener_parse(R"({"a":[1,2]})");
    EXPECT_EQ(report("config", "ism_cmd"), reported(R"({"ism":{"a":[1,2]}})"));
    EXPECT_TRUE(log.has(7, "get_ism_cmd", "put object root.config.ism_cmd.ism"));
    EXPECT_EQ(config.ism_cmd.ism, nullptr);
    EXPECT_EQ(report("config", "ism_cmd"), nothing());
}

TEST_F(change_handlers_test, the_references_own_object_is_not_reported)
{
    config.ism_cmd.ism = mirror_root.config.ism_cmd.ism = json_object_new_object();
    EXPECT_EQ(report("config", "ism_cmd"), nothing());
    EXPECT_NE(config.ism_cmd.ism, nullptr);
}

TEST_F(change_handlers_test, an_object_that_finds_no_memory_stays_in_the_block)
{
    config.ism_cmd.ism = json_object_new_object();
    const json_objects_fail short_of_memory;
    EXPECT_EQ(report("config", "ism_cmd"), nothing());
    EXPECT_NE(config.ism_cmd.ism, nullptr);
}

// ---- what never reports ----

TEST_F(change_handlers_test, igmp_snooping_of_the_lan_is_never_reported)
{
    for (const uint32_t value : {0u, 1u, 0xFFFFFFFEu}) {
        config.lan_igmp_snoop_cmd.status = value;
        EXPECT_EQ(report("config", "lan_igmp_snoop_cmd"), nothing());
        EXPECT_EQ(report("config", "lan_igmp_snoop_cmd", R"({"status":"enable"})"), nothing());
    }
    EXPECT_THAT(log.lines(), IsEmpty());
}

// ---- the selected entry ----

TEST_F(change_handlers_test, controllers_are_an_array_without_arguments)
{
    config.capwap.controller_ip_cmd[0] = {1, 0xC0000201};
    config.capwap.controller_ip_cmd[15].ip = 0xC0000202;
    EXPECT_EQ(report("capwap", "controller_ip_cmd"),
              reported(R"([{"type":"manual","ip":"192.0.2.1"},{"ip":"192.0.2.2"}])"));
}

TEST_F(change_handlers_test, whichever_controller_is_asked_for_the_first_answers)
{
    config.capwap.controller_ip_cmd[0] = {1, 0xC0000201};
    config.capwap.controller_ip_cmd[1] = {0, 0xC0000202};
    for (const char *type : {"auto", "manual"}) {
        log.clear();
        EXPECT_EQ(report("capwap", "controller_ip_cmd", std::string(R"({"type":")") + type + "\"}"),
                  reported(R"({"type":"manual","ip":"192.0.2.1"})"));
        EXPECT_TRUE(log.has(6, "get_controller_ip_cmd", std::string("type: ") + type));
    }
}

TEST_F(change_handlers_test, an_unchanged_first_controller_answers_nothing)
{
    config.capwap.controller_ip_cmd[1] = {0, 0xC0000202};
    EXPECT_EQ(report("capwap", "controller_ip_cmd", R"({"type":"auto"})"), nothing());
}

TEST_F(change_handlers_test, a_missing_or_bad_controller_type_fails)
{
    config.capwap.controller_ip_cmd[0] = {1, 0xC0000201};
    EXPECT_EQ(report("capwap", "controller_ip_cmd", "{}"), failed());
    EXPECT_EQ(report("capwap", "controller_ip_cmd", R"({"type":"both"})"), failed());
    EXPECT_TRUE(log.has(4, "fetch_arg_value_inner", "[controller_ip_cmd]no such arg 'type'"));
    EXPECT_TRUE(
        log.has(3, "fetch_arg_value_inner", "[controller_ip_cmd]convert value string 'both' for arg'type' failed"));
}

// ---- access list entries ----

TEST_F(change_handlers_test, access_list_entries_are_reported_by_their_count_without_comparison)
{
    make_ip_acls(1);
    ip_acl_config &list = config.ip_acl.list[0];
    list.ace_count = 1;
    list.ace[0] = {{0x0A000000, 8}, 1, 2, {0x0B000000, 16}, 3, 4, 6, 0, 1ull << 40, 1, 0};
    EXPECT_EQ(report("ip_acl", "ace_cmd"),
              reported(R"({"source_ip_addr":"0.0.0.10/8","first_source_port":"1","last_source_port":"2",)"
                       R"("dest_ip_addr":"0.0.0.11/16","first_dest_port":"3","last_dest_port":"4","protocol":"6",)"
                       R"("strategy":"1099511627776","action":"1"})"));
    list.ace_count = 0;
    EXPECT_EQ(report("ip_acl", "ace_cmd"), nothing());
}

TEST_F(change_handlers_test, an_access_list_reports_128_entries_at_most)
{
    make_ip_acls(1);
    for (const uint32_t count : {128u, 129u, 0x80000000u, 0xFFFFFFFFu}) {
        config.ip_acl.list[0].ace_count = count;
        json_object *const entries = json_tokener_parse(report("ip_acl", "ace_cmd").json.c_str());
        EXPECT_EQ(json_object_array_length(entries), 128u) << count;
        json_object_put(entries);
    }
}

// ---- where no record is ----

TEST_F(change_handlers_test, handlers_below_an_empty_or_shorter_list_report_nothing)
{
    for (const auto &[package, command] : {std::pair{"vlan", "dhcp_cmd"}, {"pool", "lease_cmd"}, {"ip_acl", "ace_cmd"}})
        EXPECT_EQ(report(package, command), nothing()) << package;
    make_vlans(1);
    make_pools(1);
    make_ip_acls(1);
    lookup.vlan = lookup.pool = lookup.ip_acl = 1;
    for (const auto &[package, command] : {std::pair{"vlan", "dhcp_cmd"}, {"pool", "lease_cmd"}, {"ip_acl", "ace_cmd"}})
        EXPECT_EQ(report(package, command), nothing()) << package;
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(change_handlers_test, a_missing_reference_element_counts_as_unset)
{
    make_vlans(2);
    make_pools(2);
    lookup.vlan = lookup.pool = 1;
    EXPECT_EQ(report("vlan", "ip_address_cmd"), nothing());
    EXPECT_EQ(report("pool", "pool_dns_cmd"), nothing());
    config.vlan.list[1].ip_address_cmd = {1, {0x0100A8C0, 24}};
    config.vlan.list[1].dhcp_cmd.pool_name = text("lan");
    config.dhcp_server.pool.list[1].pool_dns_cmd[1023].ip = 0x08080808;
    config.dhcp_server.pool.list[1].range_cmd.end_ip = 0x0A0000FE;
    config.dhcp_server.pool.list[1].domain_cmd.domain = text("lan");
    EXPECT_EQ(report("vlan", "ip_address_cmd"), reported(R"({"ip_type":"ip_addr","ip_addr":"192.168.0.1/24"})"));
    EXPECT_EQ(report("vlan", "dhcp_cmd"), reported(R"({"pool_name":"lan"})"));
    EXPECT_EQ(report("pool", "pool_dns_cmd"), reported(R"({"ip":"8.8.8.8"})"));
    EXPECT_EQ(report("pool", "range_cmd"), reported(R"({"end_ip":"10.0.0.254"})"));
    EXPECT_EQ(report("pool", "domain_cmd"), reported(R"({"domain":"lan"})"));
}

TEST_F(change_handlers_test, handlers_that_need_a_place_fail_without_a_lookup_context)
{
    for (const apconf_package *package : apconf_packages) {
        for (uint32_t c = 0; c < package->command_count; c++) {
            const apconf_command &command = package->commands[c];
            SCOPED_TRACE(testing::Message() << package->name << ' ' << command.name);
            log.clear();
            const bool iterating = command.variant == APCONF_RECORD_NODE || command.variant == APCONF_LIST_NODE;
            const bool needs_place = iterating || command.scope != APCONF_SCOPE_GLOBAL;
            EXPECT_EQ(apconf_test::report(package->name, command.name, nullptr).result, needs_place ? -1 : 0);
            EXPECT_EQ(log.has(3, std::string("get_") + command.name, "no lookup context"), needs_place);
        }
    }
}

TEST_F(change_handlers_test, an_index_outside_the_block_is_refused)
{
    lookup = {2, 0, 5, 0, 0, 0, 16};
    EXPECT_EQ(report("radio", "channel_cmd"), failed());
    EXPECT_EQ(report("bss", "ssid_cmd"), failed());
    EXPECT_EQ(report("ethernet", "mtu_cmd"), failed());
    EXPECT_EQ(report("ftp", "timer_cmd"), failed());
    lookup = {0, 16, 0, 0, 0, 0, 0};
    EXPECT_EQ(report("wmm", "status_cmd"), failed());
    EXPECT_TRUE(log.has(3, "get_status_cmd", "no such instance of 'status_cmd'"));
}

}  // namespace
}  // namespace apconf_test

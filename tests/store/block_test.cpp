// The data block: its unset state, its lengths and orders, and the ways to its records.
#include <algorithm>
#include <cstring>
#include <iterator>

#include "heap_members.h"
#include "store_fixture.h"

namespace apconf_test
{
namespace
{

class block_test : public store_test
{
};

bool all_zero(const void *memory, size_t size)
{
    const auto *const bytes = static_cast<const char *>(memory);
    return std::all_of(bytes, bytes + size, [](char byte) { return byte == 0; });
}

// Seen before main, so before any test could initialise them.
const bool zero_at_load = all_zero(&root, sizeof root) && all_zero(&mirror_root, sizeof mirror_root);

TEST_F(block_test, both_blocks_are_zero_before_they_are_initialised)
{
    EXPECT_TRUE(zero_at_load);
}

TEST_F(block_test, a_fresh_block_equals_the_reference_byte_for_byte)
{
    EXPECT_EQ(memcmp(&root, &mirror_root, sizeof root), 0);
}

TEST_F(block_test, unset_numbers_read_all_ones)
{
    const bss_config &bss = root.config.radio[1].bss[15];
    EXPECT_EQ(bss.wired_lan_cmd.lan_id, 255);
    EXPECT_EQ(bss.rts_threshold_cmd.rts, 4294967295u);
    EXPECT_EQ(root.config.ftp[15].max_log_cmd.size, 65535);
    EXPECT_EQ(root.config.speed_test_cmd.seq_num, UINT64_MAX);
    EXPECT_EQ(root.config.radio[0].location_rssi_threshold_cmd.rssi, -1);
    EXPECT_EQ(bss.state, 0xFFFFFFFFu);
    EXPECT_EQ(bss.shutdown_cmd.state, 0xFFFFFFFFu);
    EXPECT_STREQ(get_ptype_value_string(PTYPE_IPV4, &root.config.ntp.server_cmd.ip), "255.255.255.255");
    EXPECT_STREQ(get_ptype_value_string(PTYPE_MAC_ADDR, &root.config.ac_mac_cmd.mac), "FF:FF:FF:FF:FF:FF");
}

TEST_F(block_test, unset_pointers_and_counts_are_zero)
{
    for (config_block *block : {&root, &mirror_root}) {
        config_data &config = block->config;
        for (const heap_member &member : all_texts(config)) EXPECT_EQ(*member.place, nullptr) << member.path;
        for (auto &radio : config.radio)
            for (auto &bss : radio.bss)
                for (const heap_member &member : unreleased_members(bss)) EXPECT_EQ(*member.place, nullptr);
        for (auto &ethernet : config.ethernet) {
            EXPECT_EQ(ethernet.switchport_cmd.vlanid.list, nullptr);
            EXPECT_EQ(ethernet.switchport_cmd.vlanid.count, 0);
        }
        EXPECT_EQ(config.ism_cmd.ism, nullptr);
        EXPECT_EQ(config.vlan.list, nullptr);
        EXPECT_EQ(config.vlan.count, 0);
        EXPECT_EQ(config.dhcp_server.pool.list, nullptr);
        EXPECT_EQ(config.dhcp_server.pool.count, 0);
        EXPECT_EQ(config.ip_acl.list, nullptr);
        EXPECT_EQ(config.ip_acl.count, 0);
    }
}

TEST_F(block_test, the_zero_filled_arrays_read_zero)
{
    for (const auto &radio : root.config.radio) {
        for (const auto &bss : radio.bss) {
            EXPECT_EQ(bss.access_list.mac_acl_cmd_opt, 0u);
            EXPECT_TRUE(all_zero(bss.access_list.mac_acl_cmd, sizeof bss.access_list.mac_acl_cmd));
            EXPECT_EQ(bss.access_list.domain_acl_cmd_opt, 0xFFFFFFFFu);
        }
    }
    EXPECT_TRUE(all_zero(root.config.dns.fake_response_cmd, sizeof root.config.dns.fake_response_cmd));
    EXPECT_TRUE(all_zero(root.config.dhcp_server.dns_list_cmd, sizeof root.config.dhcp_server.dns_list_cmd));
}

TEST_F(block_test, an_unset_record_of_a_list_has_null_pointers_and_no_entries)
{
    make_vlans(1);
    make_pools(1);
    make_ip_acls(1);
    EXPECT_EQ(root.config.vlan.list[0].vlan_id, 0xFFFFFFFFu);
    EXPECT_EQ(root.config.vlan.list[0].dhcp_cmd.pool_name, nullptr);
    EXPECT_EQ(root.config.vlan.list[0].dhcp_cmd.relay_name, nullptr);
    EXPECT_EQ(root.config.dhcp_server.pool.list[0].pool_name, nullptr);
    EXPECT_EQ(root.config.dhcp_server.pool.list[0].domain_cmd.domain, nullptr);
    EXPECT_EQ(root.config.ip_acl.list[0].ace_count, 0u);
    EXPECT_EQ(root.config.ip_acl.list[0].identify, 0xFFFFFFFFu);
}

// A reference list of zeroed records.
template <typename List>
void make_reference(List &list, int count)
{
    list.list = static_cast<decltype(list.list)>(calloc(static_cast<size_t>(count), sizeof *list.list));
    list.count = count;
}

TEST_F(block_test, init_vlan_config_resets_one_element_of_the_reference)
{
    make_reference(mirror_root.config.vlan, 3);
    init_vlan_config(1);
    const vlan_config *const vlans = mirror_root.config.vlan.list;
    EXPECT_TRUE(all_zero(&vlans[0], sizeof vlans[0]));
    EXPECT_TRUE(all_zero(&vlans[2], sizeof vlans[2]));
    EXPECT_EQ(vlans[1].vlan_id, 0xFFFFFFFFu);
    EXPECT_EQ(vlans[1].ip_address_cmd.ip_addr.prefix, 0xFFFFFFFFu);
    EXPECT_EQ(vlans[1].dhcp_cmd.type, 0xFFFFFFFFu);
    EXPECT_EQ(vlans[1].dhcp_cmd.pool_name, nullptr);
    EXPECT_EQ(vlans[1].dhcp_cmd.relay_name, nullptr);
}

TEST_F(block_test, init_pool_config_resets_one_element_of_the_reference)
{
    make_reference(mirror_root.config.dhcp_server.pool, 3);
    pool_config *const pools = mirror_root.config.dhcp_server.pool.list;
    memset(pools[1].pool_dns_cmd, 1, sizeof pools[1].pool_dns_cmd);
    init_pool_config(1);
    EXPECT_TRUE(all_zero(&pools[0], sizeof pools[0]));
    EXPECT_TRUE(all_zero(&pools[2], sizeof pools[2]));
    EXPECT_EQ(pools[1].lease_cmd.day, 0xFFFFFFFFu);
    EXPECT_EQ(pools[1].ignore_cmd.ignored, 0xFFFFFFFFu);
    EXPECT_EQ(pools[1].pool_name, nullptr);
    EXPECT_EQ(pools[1].domain_cmd.domain, nullptr);
    EXPECT_TRUE(all_zero(pools[1].pool_dns_cmd, sizeof pools[1].pool_dns_cmd));
    EXPECT_EQ(pools[1].reserved[1], 0xFFFFFFFFu);
}

TEST_F(block_test, resetting_an_element_that_is_not_there_does_nothing)
{
    make_reference(mirror_root.config.vlan, 2);
    make_reference(mirror_root.config.dhcp_server.pool, 2);
    for (const int index : {2, 3, 65535}) {
        init_vlan_config(static_cast<uint16_t>(index));
        init_pool_config(static_cast<uint16_t>(index));
    }
    EXPECT_TRUE(all_zero(mirror_root.config.vlan.list, 2 * sizeof(vlan_config)));
    EXPECT_TRUE(all_zero(mirror_root.config.dhcp_server.pool.list, 2 * sizeof(pool_config)));
    mirror_root.config.vlan.count = -1;
    init_vlan_config(0);
    EXPECT_TRUE(all_zero(mirror_root.config.vlan.list, 2 * sizeof(vlan_config)));
}

TEST_F(block_test, resetting_without_a_reference_list_does_nothing)
{
    mirror_root.config.vlan.count = 1;
    mirror_root.config.dhcp_server.pool.count = 1;
    make_vlans(1);
    make_pools(1);
    root.config.vlan.list[0].vlan_id = 7;
    init_vlan_config(0);
    init_pool_config(0);
    EXPECT_EQ(root.config.vlan.list[0].vlan_id, 7u);
    EXPECT_EQ(mirror_root.config.vlan.list, nullptr);
    EXPECT_EQ(mirror_root.config.dhcp_server.pool.list, nullptr);
}

TEST_F(block_test, a_fresh_block_has_nothing_to_report_but_resets_and_unconditional_nodes)
{
    for (const apconf_package *package : apconf_packages) {
        for (uint32_t c = 0; c < package->command_count; c++) {
            const apconf_command &command = package->commands[c];
            SCOPED_TRACE(testing::Message() << package->name << ' ' << command.name);
            const answer given = report(package->name, command.name, &lookup);
            if (command.variant == APCONF_ALWAYS_RESET)
                EXPECT_EQ(given, reported(R"({".OPT":"noall"})"));
            else if (command.variant == APCONF_UNSET_MEANS_NO)
                EXPECT_EQ(given, reported(R"({".OPT":"no"})"));
            else if (command.variant == APCONF_UNCONDITIONAL_NODE)
                EXPECT_EQ(given, reported("{}"));
            else
                EXPECT_EQ(given, nothing());
        }
    }
}

TEST_F(block_test, the_arrays_have_their_lengths)
{
    const config_data &config = root.config;
    const bss_config &bss = config.radio[0].bss[0];
    EXPECT_EQ(std::size(config.radio), 2u);
    EXPECT_EQ(std::size(config.radio[0].bss), 16u);
    EXPECT_EQ(std::size(config.radio[0].time_range_cmd), 8u);
    EXPECT_EQ(std::size(bss.time_range_cmd), 8u);
    EXPECT_EQ(std::size(bss.auth_open_wep.wep_key_cmd), 4u);
    EXPECT_EQ(std::size(bss.auth_shared_wep.wep_key_cmd), 4u);
    EXPECT_EQ(std::size(bss.auth_open_wpa.wpa_radius_auth_server_cmd), 16u);
    EXPECT_EQ(std::size(bss.auth_open_wpa2.wpa_radius_auth_server_cmd), 16u);
    EXPECT_EQ(std::size(bss.auth_wpa_wpa2.wpa_radius_auth_server_cmd), 16u);
    EXPECT_EQ(std::size(bss.auth_wpa3_sae.wpa_radius_auth_server_cmd), 16u);
    EXPECT_EQ(std::size(bss.webauth_parameter.portal_url_cmd), 13u);
    EXPECT_EQ(std::size(bss.webauth_parameter.portal_dmi_cmd), 4u);
    EXPECT_EQ(std::size(bss.webauth_parameter.http_url_cmd), 16u);
    EXPECT_EQ(std::size(bss.dot11k_cfg.dot11g_bcn_req_list_cmd), 14u);
    EXPECT_EQ(std::size(bss.dot11k_cfg.dot11g_chan_rep_list_cmd), 14u);
    EXPECT_EQ(std::size(bss.dot11k_cfg.dot11a_bcn_req_list_cmd), 64u);
    EXPECT_EQ(std::size(bss.dot11k_cfg.dot11a_chan_rep_list_cmd), 64u);
    EXPECT_EQ(std::size(bss.access_list.mac_acl_cmd), 256u);
    EXPECT_EQ(std::size(bss.access_list.domain_acl_cmd), 128u);
    EXPECT_EQ(std::size(bss.wmm.ac_dscp_map_cmd), 4u);
    EXPECT_EQ(std::size(bss.passpoint_ie.roaming_consortium_cmd), 192u);
    EXPECT_EQ(std::size(bss.passpoint_anqp.venue_name_cmd), 64u);
    EXPECT_EQ(std::size(bss.passpoint_anqp.friendly_name_cmd), 64u);
    EXPECT_EQ(std::size(bss.passpoint_anqp.network_auth_cmd), 64u);
    EXPECT_EQ(std::size(bss.passpoint_anqp.cellular_cmd), 42u);
    EXPECT_EQ(std::size(bss.passpoint_anqp.domain_name_cmd), 64u);
    EXPECT_EQ(std::size(bss.passpoint_anqp.nai_realm_cmd), 64u);
    EXPECT_EQ(std::size(bss.supported_rates_cmd.rates), 12u);
    EXPECT_EQ(std::size(bss.transmit_rates_cmd.rates), 12u);
    EXPECT_EQ(std::size(config.ethernet), 5u);
    EXPECT_EQ(std::size(config.ftp), 16u);
    EXPECT_EQ(std::size(config.dns.fake_response_cmd), 5u);
    EXPECT_EQ(std::size(config.capwap.controller_ip_cmd), 16u);
    EXPECT_EQ(std::size(config.log_server_cmd), 20u);
    EXPECT_EQ(std::size(config.log_level_cmd), 20u);
    EXPECT_EQ(std::size(config.dhcp_server.dns_list_cmd), 1024u);
    EXPECT_EQ(std::size(pool_config{}.pool_dns_cmd), 1024u);
    EXPECT_EQ(std::size(ip_acl_config{}.ace), 128u);
}

// The members of each array's elements follow each other in the stated order.
TEST_F(block_test, elements_hold_their_fields_in_order)
{
#define IN_ORDER(element, first, second)                                                                 \
    EXPECT_LT(static_cast<const void *>(&(element).first), static_cast<const void *>(&(element).second)) \
        << #first " " #second
    const bss_config &bss = root.config.radio[0].bss[0];
    IN_ORDER(bss, state, shutdown_cmd);
    IN_ORDER(bss, shutdown_cmd, ssid_cmd);
    IN_ORDER(bss.auth_open_wep.wep_key_cmd[0], idx, type);
    IN_ORDER(bss.auth_open_wep.wep_key_cmd[0], type, key);
    IN_ORDER(bss.time_range_cmd[0], type, start_time);
    IN_ORDER(bss.time_range_cmd[0], start_time, end_time);
    IN_ORDER(bss.auth_open_wpa.wpa_radius_auth_server_cmd[0], ip, port);
    IN_ORDER(bss.auth_open_wpa.wpa_radius_auth_server_cmd[0], port, key);
    IN_ORDER(bss.webauth_parameter.portal_url_cmd[0], index, format);
    IN_ORDER(bss.webauth_parameter.portal_url_cmd[0], format, nickname);
    IN_ORDER(bss.webauth_parameter.portal_dmi_cmd[0], ip, domain);
    IN_ORDER(bss.webauth_parameter.http_url_cmd[0], src, dst);
    IN_ORDER(bss.wmm.ac_dscp_map_cmd[0], wmm_ac_dscp_map, wmm_ac_dscp_map_bk);
    IN_ORDER(bss.wmm.ac_dscp_map_cmd[0], wmm_ac_dscp_map_bk, wmm_ac_dscp_map_be);
    IN_ORDER(bss.wmm.ac_dscp_map_cmd[0], wmm_ac_dscp_map_be, wmm_ac_dscp_map_vi);
    IN_ORDER(bss.wmm.ac_dscp_map_cmd[0], wmm_ac_dscp_map_vi, wmm_ac_dscp_map_vo);
    IN_ORDER(bss.passpoint_anqp.venue_name_cmd[0], language, name);
    IN_ORDER(bss.passpoint_anqp.friendly_name_cmd[0], language, name);
    IN_ORDER(bss.passpoint_anqp.network_auth_cmd[0], auth_type, url);
    IN_ORDER(bss.passpoint_anqp.cellular_cmd[0], mcc, mnc);
    IN_ORDER(bss.access_list.domain_acl_cmd[0], forward, domain);
    IN_ORDER(root.config.dns.fake_response_cmd[0], domain, ip);
    IN_ORDER(root.config.capwap.controller_ip_cmd[0], type, ip);
    IN_ORDER(root.config.log_server_cmd[0], ip, facility);
    IN_ORDER(root.config.log_server_cmd[0], facility, reserved);
    IN_ORDER(root.config.log_level_cmd[0], severity, facility);
    IN_ORDER(root.config.log_level_cmd[0], facility, reserved);
#undef IN_ORDER
}

TEST_F(block_test, a_record_is_found_by_the_slots_of_the_lookup)
{
    lookup = {1, 15, 4, 1, 0, 0, 15};
    make_vlans(2);
    EXPECT_EQ(apconf_scope_record(APCONF_SCOPE_GLOBAL, &root, nullptr), &root.config);
    EXPECT_EQ(apconf_scope_record(APCONF_SCOPE_RADIO, &root, &lookup), &root.config.radio[1]);
    EXPECT_EQ(apconf_scope_record(APCONF_SCOPE_BSS, &mirror_root, &lookup), &mirror_root.config.radio[1].bss[15]);
    EXPECT_EQ(apconf_scope_record(APCONF_SCOPE_ETHERNET, &root, &lookup), &root.config.ethernet[4]);
    EXPECT_EQ(apconf_scope_record(APCONF_SCOPE_FTP, &root, &lookup), &root.config.ftp[15]);
    EXPECT_EQ(apconf_scope_record(APCONF_SCOPE_VLAN, &root, &lookup), &root.config.vlan.list[1]);
}

TEST_F(block_test, there_is_no_record_outside_an_array_or_list)
{
    lookup = {2, 0, 5, 1, 0, 0, 16};
    make_vlans(1);
    root.config.ip_acl.count = 1;  // without memory
    for (const apconf_scope scope : {APCONF_SCOPE_RADIO, APCONF_SCOPE_BSS, APCONF_SCOPE_ETHERNET, APCONF_SCOPE_FTP,
                                     APCONF_SCOPE_VLAN, APCONF_SCOPE_POOL, APCONF_SCOPE_IP_ACL}) {
        EXPECT_EQ(apconf_scope_record(scope, &root, &lookup), nullptr) << scope;
        EXPECT_EQ(apconf_scope_record(scope, &root, nullptr), nullptr) << scope;
    }
    lookup = {0, 16, 0, 0xFFFFFFFFu, 0, 0, 0};
    EXPECT_EQ(apconf_scope_record(APCONF_SCOPE_BSS, &root, &lookup), nullptr);
    EXPECT_EQ(apconf_scope_record(APCONF_SCOPE_VLAN, &root, &lookup), nullptr);
    root.config.vlan.count = -1;
    lookup.vlan = 0;
    EXPECT_EQ(apconf_scope_record(APCONF_SCOPE_VLAN, &root, &lookup), nullptr);
    root.config.vlan.count = 1;
}

}  // namespace
}  // namespace apconf_test

// The widths, offsets and orders that peers and other builds rely on, proved by the compiler. Records that hold
// pointers have their stated widths on 32-bit machines, the target; elsewhere only the pointers are wider.
#include <cstddef>
#include <initializer_list>
#include <type_traits>
#include <utility>

#include "apconf/apconf.h"

namespace
{

constexpr bool target = sizeof(void *) == 4;
constexpr size_t word = 4;

consteval bool in_order(std::initializer_list<size_t> places)
{
    for (const size_t *place = places.begin() + 1; place < places.end(); ++place)
        if (place[-1] >= *place) return false;
    return true;
}

// Each place is the next word, from the record's first on.
consteval bool are_words(std::initializer_list<size_t> places)
{
    size_t expected = 0;
    for (const size_t place : places) {
        if (place != expected) return false;
        expected += word;
    }
    return true;
}

#define ON_TARGET(...) static_assert(!target || (__VA_ARGS__))
#define AT(member) offsetof(record, member)
#define SIZE(member) sizeof(std::declval<record &>().member)
#define LENGTH(array) std::extent_v<std::remove_reference_t<decltype((std::declval<record &>().array))>>

namespace tree
{
using record = cmd_node;
ON_TARGET(sizeof(record) == 8 * word);
ON_TARGET(are_words({AT(name), AT(repeat), AT(no), AT(set), AT(get), AT(params), AT(param_count), AT(children)}));
}  // namespace tree

namespace parameter
{
using record = cmd_param;
ON_TARGET(sizeof(record) == 5 * word);
ON_TARGET(are_words({AT(name), AT(ptype), AT(reserved), AT(range), AT(default_value)}));
}  // namespace parameter

namespace argument_table
{
using record = cpath_arg;
ON_TARGET(sizeof(record) == 4 * word);
ON_TARGET(are_words({AT(name), AT(ptype), AT(values), AT(count)}));
}  // namespace argument_table

namespace stack_entry
{
using record = cpath_stack_entry;
ON_TARGET(sizeof(record) == 2 * word && are_words({AT(args), AT(node)}));
}  // namespace stack_entry

namespace dispatch_context
{
using record = cpath_ctx;
static_assert(AT(stack) == 0 && LENGTH(stack) == 32);
ON_TARGET(sizeof(record) == 70 * word && AT(depth) == 64 * word && AT(is_get) == 65 * word);
ON_TARGET(AT(instance) == 66 * word && AT(user) == 67 * word && AT(module) == 68 * word && AT(result) == 69 * word);
}  // namespace dispatch_context

namespace message_info
{
using record = cmesage_info;
static_assert(AT(is_get) == 0 && AT(is_connect_status) == 1 && AT(is_config) == 2);
ON_TARGET(sizeof(record) == 5 * word);
ON_TARGET(are_words({AT(is_get), AT(has_cpath), AT(module), AT(path), AT(body)}));
}  // namespace message_info

namespace io_header
{
using record = io_msg;
static_assert(sizeof(record) == 12 && IO_MSG_HEADER_SIZE == 12 && AT(data) == 12);
static_assert(AT(reserved0) == 0 && AT(type) == 1 && AT(code) == 2 && AT(reserved3) == 3);
static_assert(are_words({AT(reserved0), AT(count), AT(data_len)}));
}  // namespace io_header

namespace ptype
{
using record = ptype_record;
ON_TARGET(sizeof(record) == 5 * word);
ON_TARGET(are_words({AT(name), AT(ptype), AT(size), AT(to_value), AT(to_string)}));
}  // namespace ptype

namespace token
{
using record = enum_pair;
ON_TARGET(sizeof(record) == 2 * word && are_words({AT(id), AT(token)}));
}  // namespace token

namespace syntax
{
using record = ptype_info;
ON_TARGET(sizeof(record) == 4 * word && are_words({AT(name), AT(min), AT(max), AT(format)}));
}  // namespace syntax

namespace help
{
using record = help_entry;
ON_TARGET(sizeof(record) == 3 * word && are_words({AT(key), AT(text), AT(printed)}));
static_assert(SIZE(printed) == 1);
}  // namespace help

namespace retrieval
{
using record = rtv_record;
ON_TARGET(sizeof(record) == 3 * word && are_words({AT(name), AT(children), AT(value)}));
}  // namespace retrieval

namespace masked_address
{
using record = ipv4_mask;
static_assert(sizeof(record) == 8 && are_words({AT(address), AT(prefix)}));
}  // namespace masked_address

// Ranges, and values that are more than one number.
static_assert(sizeof(length_range) == 8 && sizeof(mac_addr) == 6);
static_assert(sizeof(sint_range) == 8 && sizeof(uint_range) == 8 && sizeof(uint64_range) == 16);
static_assert(sizeof(uint8_range) == 2 && sizeof(uint16_range) == 4 && sizeof(float_range) == 8);

namespace lookup
{
using record = lookup_ctx;
static_assert(sizeof(record) == 7 * word);
static_assert(are_words({AT(radio), AT(wlan), AT(ethernet), AT(vlan), AT(pool), AT(ip_acl), AT(ftp)}));
}  // namespace lookup

// The data block: what has a stated place, order or length.
namespace block
{
using record = config_data;
static_assert(AT(radio) == 0 && LENGTH(radio) == 2);
static_assert(LENGTH(ethernet) == 5 && LENGTH(ftp) == 16);
static_assert(in_order({AT(ip_acl.list), AT(ip_acl.count)}) && in_order({AT(vlan.list), AT(vlan.count)}));
static_assert(in_order({AT(dhcp_server.pool.list), AT(dhcp_server.pool.count)}));
static_assert(SIZE(dhcp_server.dns_list_cmd) == 4096);
static_assert(LENGTH(capwap.controller_ip_cmd) == 16);
static_assert(in_order({AT(capwap.controller_ip_cmd[0].type), AT(capwap.controller_ip_cmd[0].ip)}));
static_assert(LENGTH(dns.fake_response_cmd) == 5);
static_assert(in_order({AT(dns.fake_response_cmd[0].domain), AT(dns.fake_response_cmd[0].ip)}));
static_assert(SIZE(log_server_cmd) == 60 * word && SIZE(log_level_cmd) == 60 * word);
static_assert(in_order({AT(log_server_cmd[0].ip), AT(log_server_cmd[0].facility), AT(log_server_cmd[0].reserved)}));
static_assert(in_order({AT(log_level_cmd[0].severity), AT(log_level_cmd[0].facility), AT(log_level_cmd[0].reserved)}));
}  // namespace block

namespace radio
{
using record = radio_config;
static_assert(AT(bss) == 64 * word && LENGTH(bss) == 16);
static_assert(LENGTH(time_range_cmd) == 8);
}  // namespace radio

namespace timing
{
using record = time_range;
static_assert(sizeof(record) == 8 && AT(type) == 0 && AT(start_time) == 4 && AT(end_time) == 6);
}  // namespace timing

namespace bss
{
using record = bss_config;
static_assert(are_words({AT(state), AT(shutdown_cmd.state), AT(ssid_cmd.ssid)}));
static_assert(LENGTH(time_range_cmd) == 8);
static_assert(SIZE(supported_rates_cmd) == 12 * word && SIZE(transmit_rates_cmd) == 12 * word);
static_assert(LENGTH(auth_open_wep.wep_key_cmd) == 4);
static_assert(LENGTH(auth_shared_wep.wep_key_cmd) == 4);
static_assert(LENGTH(auth_open_wpa.wpa_radius_auth_server_cmd) == 16);
static_assert(LENGTH(auth_open_wpa2.wpa_radius_auth_server_cmd) == 16);
static_assert(LENGTH(auth_wpa_wpa2.wpa_radius_auth_server_cmd) == 16);
static_assert(LENGTH(auth_wpa3_sae.wpa_radius_auth_server_cmd) == 16);
}  // namespace bss

namespace wep
{
using record = wep_key;
static_assert(in_order({AT(idx), AT(type), AT(key)}));
}  // namespace wep

namespace radius
{
using record = radius_server;
static_assert(in_order({AT(ip), AT(port), AT(key)}));
}  // namespace radius

namespace access_list
{
using record = access_list_config;
static_assert(AT(mac_acl_cmd) == AT(mac_acl_cmd_opt) + word && SIZE(mac_acl_cmd) == 256 * sizeof(mac_addr));
static_assert(LENGTH(domain_acl_cmd) == 128);
static_assert(in_order({AT(domain_acl_cmd[0].forward), AT(domain_acl_cmd[0].domain)}));
}  // namespace access_list

namespace webauth
{
using record = webauth_parameter_config;
static_assert(LENGTH(portal_url_cmd) == 13 && LENGTH(portal_dmi_cmd) == 4);
static_assert(LENGTH(http_url_cmd) == 16);
static_assert(in_order({AT(portal_url_cmd[0].index), AT(portal_url_cmd[0].format), AT(portal_url_cmd[0].nickname)}));
static_assert(in_order({AT(portal_dmi_cmd[0].ip), AT(portal_dmi_cmd[0].domain)}));
static_assert(in_order({AT(http_url_cmd[0].src), AT(http_url_cmd[0].dst)}));
}  // namespace webauth

namespace wmm
{
using record = wmm_config;
static_assert(LENGTH(ac_dscp_map_cmd) == 4);
static_assert(SIZE(ac_dscp_map_cmd[0]) == 5 * word && AT(ac_dscp_map_cmd[0].wmm_ac_dscp_map) == AT(ac_dscp_map_cmd));
static_assert(in_order({AT(ac_dscp_map_cmd[0].wmm_ac_dscp_map), AT(ac_dscp_map_cmd[0].wmm_ac_dscp_map_bk),
                        AT(ac_dscp_map_cmd[0].wmm_ac_dscp_map_be), AT(ac_dscp_map_cmd[0].wmm_ac_dscp_map_vi),
                        AT(ac_dscp_map_cmd[0].wmm_ac_dscp_map_vo)}));
}  // namespace wmm

namespace dot11k
{
using record = dot11k_cfg_config;
static_assert(SIZE(dot11g_bcn_req_list_cmd) == 14 * word && SIZE(dot11g_chan_rep_list_cmd) == 14 * word);
static_assert(SIZE(dot11a_bcn_req_list_cmd) == 64 * word && SIZE(dot11a_chan_rep_list_cmd) == 64 * word);
}  // namespace dot11k

namespace passpoint
{
static_assert(std::extent_v<decltype(passpoint_ie_config::roaming_consortium_cmd)> == 192);

using record = passpoint_anqp_config;
static_assert(LENGTH(venue_name_cmd) == 64);
static_assert(LENGTH(friendly_name_cmd) == 64);
static_assert(LENGTH(network_auth_cmd) == 64);
static_assert(LENGTH(cellular_cmd) == 42 && LENGTH(domain_name_cmd) == 64 && LENGTH(nai_realm_cmd) == 64);
static_assert(in_order({AT(venue_name_cmd[0].language), AT(venue_name_cmd[0].name)}));
static_assert(in_order({AT(friendly_name_cmd[0].language), AT(friendly_name_cmd[0].name)}));
static_assert(in_order({AT(network_auth_cmd[0].auth_type), AT(network_auth_cmd[0].url)}));
static_assert(in_order({AT(cellular_cmd[0].mcc), AT(cellular_cmd[0].mnc)}));
}  // namespace passpoint

namespace vlan
{
using record = vlan_config;
static_assert(AT(vlan_id) == 0 && AT(dhcp_cmd.relay_name) == sizeof(record) - sizeof(char *));
static_assert(in_order({AT(vlan_id), AT(ip_address_cmd.ip_type), AT(ip_address_cmd.ip_addr), AT(dhcp_cmd.type),
                        AT(dhcp_cmd.pool_name), AT(dhcp_cmd.relay_name)}));
ON_TARGET(AT(dhcp_cmd.pool_name) == sizeof(record) - 2 * word);
}  // namespace vlan

namespace pool
{
using record = pool_config;
static_assert(AT(pool_name) == 0);
static_assert(in_order({AT(pool_name), AT(lease_cmd.day), AT(lease_cmd.time), AT(range_cmd.start_ip),
                        AT(range_cmd.end_ip), AT(gateway_cmd.gateway), AT(network_cmd.network), AT(ignore_cmd.ignored),
                        AT(domain_cmd.domain), AT(pool_dns_cmd), AT(reserved)}));
static_assert(SIZE(pool_dns_cmd) == 4096 && AT(reserved) == AT(pool_dns_cmd) + 4096);
static_assert(sizeof(record) == AT(reserved) + 2 * word);
}  // namespace pool

namespace ip_acl
{
using record = ip_acl_config;
static_assert(AT(ace_count) == 0 && AT(identify) == 4 && AT(ace) == 8 && LENGTH(ace) == 128);
static_assert(sizeof(record) == 8 + 128 * 56);
}  // namespace ip_acl

namespace ace
{
using record = ace_config;
static_assert(sizeof(record) == 56 && AT(source_ip_addr) == 0 && AT(first_source_port) == 8);
static_assert(AT(last_source_port) == 12 && AT(dest_ip_addr) == 16 && AT(first_dest_port) == 24);
static_assert(AT(last_dest_port) == 28 && AT(protocol) == 32 && AT(strategy) == 40 && AT(action) == 48);
}  // namespace ace

namespace ftp
{
using record = ftp_config;
static_assert(AT(timer_cmd.daily_hours) == 0 && AT(timer_cmd.daily_minutes) == 1);
static_assert(in_order({AT(timer_cmd.daily_minutes), AT(timer_cmd.interval_type), AT(timer_cmd.interval_value),
                        AT(server_cmd.port), AT(server_cmd.path), AT(server_cmd.username), AT(server_cmd.password),
                        AT(service_cmd.status), AT(service_cmd.mode), AT(service_cmd.policy), AT(service_cmd.name),
                        AT(compress_type_cmd.type), AT(compress_rename_cmd.status), AT(local_path_cmd.path),
                        AT(run_immediately_cmd.status), AT(upload_delete_cmd.status), AT(max_log_cmd.size),
                        AT(max_upbuf_cmd.size), AT(all_service_cmd.bits)}));
}  // namespace ftp

}  // namespace

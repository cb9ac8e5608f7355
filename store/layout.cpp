// The widths, offsets and orders that peers and other builds rely on, proved by the compiler. Those that hold pointers
// have their stated widths on 32-bit machines, the target; elsewhere only the pointers are wider.
#include <cstddef>

#include "apconf/apconf.h"

namespace
{

constexpr bool target = sizeof(void *) == 4;
constexpr size_t word = 4;

#define ON_TARGET(condition) static_assert(!target || (condition))
#define IN_ORDER(type, first, second) static_assert(offsetof(type, first) < offsetof(type, second))

// Records of the command tree and of its messages.
ON_TARGET(sizeof(cmd_node) == 8 * word);
ON_TARGET(offsetof(cmd_node, repeat) == 4 && offsetof(cmd_node, no) == 8 && offsetof(cmd_node, set) == 12);
ON_TARGET(offsetof(cmd_node, get) == 16 && offsetof(cmd_node, params) == 20);
ON_TARGET(offsetof(cmd_node, param_count) == 24 && offsetof(cmd_node, children) == 28);
ON_TARGET(sizeof(cmd_param) == 5 * word && offsetof(cmd_param, default_value) == 16);
ON_TARGET(sizeof(cpath_arg) == 4 * word && offsetof(cpath_arg, count) == 12);
ON_TARGET(sizeof(cpath_stack_entry) == 8 && sizeof(cpath_ctx) == 70 * word);
ON_TARGET(offsetof(cpath_ctx, depth) == 256 && offsetof(cpath_ctx, is_get) == 260);
ON_TARGET(offsetof(cpath_ctx, instance) == 264 && offsetof(cpath_ctx, result) == 276);
ON_TARGET(sizeof(cmesage_info) == 20 && offsetof(cmesage_info, has_cpath) == 4);
ON_TARGET(offsetof(cmesage_info, module) == 8 && offsetof(cmesage_info, body) == 16);
ON_TARGET(sizeof(ptype_record) == 5 * word && sizeof(enum_pair) == 8);
static_assert(sizeof(io_msg) == IO_MSG_HEADER_SIZE && offsetof(io_msg, data) == 12);
static_assert(offsetof(io_msg, type) == 1 && offsetof(io_msg, code) == 2);
static_assert(offsetof(io_msg, count) == 4 && offsetof(io_msg, data_len) == 8);
static_assert(sizeof(length_range) == 8 && sizeof(ipv4_mask) == 8 && sizeof(mac_addr) == 6);
static_assert(sizeof(lookup_ctx) == 7 * word && offsetof(lookup_ctx, ftp) == 24);

// The data block: what has a stated place or order.
static_assert(offsetof(radio_config, bss) == 64 * word);
static_assert(offsetof(config_data, radio) == 0);
static_assert(offsetof(bss_config, state) == 0 && offsetof(bss_config, shutdown_cmd) == 4);
static_assert(offsetof(bss_config, ssid_cmd) == 8);
static_assert(offsetof(access_list_config, mac_acl_cmd) == offsetof(access_list_config, mac_acl_cmd_opt) + 4);
static_assert(sizeof(access_list_config::mac_acl_cmd) == 256 * sizeof(mac_addr));
static_assert(sizeof(time_range) == 8 &&
              sizeof(config_data::log_server_cmd) == 20 * sizeof(config_data::log_server_cmd[0]));
static_assert(sizeof(dhcp_server_config::dns_list_cmd) == 4096);
static_assert(offsetof(vlan_config, vlan_id) == 0);
IN_ORDER(vlan_config, vlan_id, ip_address_cmd);
IN_ORDER(vlan_config, ip_address_cmd, dhcp_cmd.type);
IN_ORDER(vlan_config, dhcp_cmd.type, dhcp_cmd.pool_name);
static_assert(offsetof(vlan_config, dhcp_cmd.relay_name) == sizeof(vlan_config) - sizeof(char *));
static_assert(offsetof(pool_config, pool_name) == 0);
IN_ORDER(pool_config, lease_cmd.day, lease_cmd.time);
IN_ORDER(pool_config, lease_cmd.time, range_cmd.start_ip);
IN_ORDER(pool_config, range_cmd.end_ip, gateway_cmd.gateway);
IN_ORDER(pool_config, gateway_cmd.gateway, network_cmd.network);
IN_ORDER(pool_config, network_cmd.network, ignore_cmd.ignored);
IN_ORDER(pool_config, ignore_cmd.ignored, domain_cmd.domain);
IN_ORDER(pool_config, domain_cmd.domain, pool_dns_cmd);
static_assert(offsetof(pool_config, reserved) == offsetof(pool_config, pool_dns_cmd) + 4096);
static_assert(offsetof(ip_acl_config, ace_count) == 0 && offsetof(ip_acl_config, identify) == 4);
static_assert(sizeof(ace_config) == 56 && offsetof(ace_config, strategy) == 40 && offsetof(ace_config, action) == 48);
static_assert(sizeof(ip_acl_config) == 2 * word + ACE_COUNT * sizeof(ace_config));
IN_ORDER(ftp_config, timer_cmd, server_cmd);
IN_ORDER(ftp_config, server_cmd, service_cmd);
IN_ORDER(ftp_config, service_cmd, compress_type_cmd);
IN_ORDER(ftp_config, compress_type_cmd, compress_rename_cmd);
IN_ORDER(ftp_config, compress_rename_cmd, local_path_cmd);
IN_ORDER(ftp_config, local_path_cmd, run_immediately_cmd);
IN_ORDER(ftp_config, run_immediately_cmd, upload_delete_cmd);
IN_ORDER(ftp_config, upload_delete_cmd, max_log_cmd);
IN_ORDER(ftp_config, max_log_cmd, max_upbuf_cmd);
IN_ORDER(ftp_config, max_upbuf_cmd, all_service_cmd);

}  // namespace

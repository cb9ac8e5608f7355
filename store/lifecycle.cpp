// A batch's life: the unset state, the commit, and the release of what the batch held on the heap.
#include <json-c/json.h>

#include <cstring>

#include "apconf/cmclient.h"
#include "apconf/cmessage.h"
#include "apconf/cmq.h"
#include "apconf/store.h"
#include "apconf/util.h"
#include "store/scope.h"
#include "util/log.h"
#include "util/owners.h"

namespace apconf
{
namespace
{

int committed_index = -1;

// Which heap members are released, and in which order: those of a command, or the one under a key.
struct release_step {
    const char *package;
    const char *command;
    const char *key = nullptr;
    const apconf_command *described = nullptr;  // the command, once it has been looked up
};

constinit release_step bss_steps[] = {
    {"bss", "ssid_cmd"},
    {"access_list", "domain_acl_cmd"},
    {"bss", "macauth_server_cmd"},
    {"auth_shared_wep", "wep_key_cmd"},
    {"auth_shared_wep", "wep_key_cmd"},  // kept: the second pass finds nothing left
    {"auth_open_wep", "wep_key_cmd"},
    {"passpoint_ie", "roaming_consortium_cmd"},
    {"passpoint_anqp", "venue_name_cmd"},
    {"passpoint_anqp", "network_auth_cmd"},
    {"passpoint_anqp", "cellular_cmd"},
    {"passpoint_anqp", "domain_name_cmd"},
    {"passpoint_anqp", "nai_realm_cmd"},
    {"passpoint_anqp", "friendly_name_cmd"},
    {"passpoint_anqp", "oper_class_cmd"},
    {"auth_open_wpa", "wpa_type_cmd"},
    {"auth_open_wpa", "wpa_radius_auth_server_cmd"},
    {"auth_open_wpa", "wpa_radius_acct_server_cmd"},
    {"auth_open_wpa2", "wpa_type_cmd"},
    {"auth_open_wpa2", "wpa_radius_auth_server_cmd"},
    {"auth_open_wpa2", "wpa_radius_acct_server_cmd"},
    {"auth_wpa_wpa2", "wpa_type_cmd"},
    {"auth_wpa_wpa2", "wpa_radius_auth_server_cmd"},
    {"auth_wpa_wpa2", "wpa_radius_acct_server_cmd"},
    {"webauth_parameter", "portal_url_cmd"},
    {"webauth_parameter", "portal_dmi_cmd"},
    {"webauth_parameter", "http_login_cmd"},
    {"webauth_parameter", "http_logout_cmd"},
    {"webauth_parameter", "http_url_cmd"},
    {"dhcp_option82", "circuit_id_cmd"},
    {"dhcp_option82", "remote_id_cmd"},
};
constinit release_step ethernet_steps[] = {
    {"ethernet", "pppoe_user_cmd", "passwd"},
    {"ethernet", "pppoe_user_cmd", "username"},
    {"ethernet", "switchport_cmd"},
};
constinit release_step vlan_steps[] = {{"vlan", "dhcp_cmd"}};
constinit release_step pool_steps[] = {{"dhcp_server", "pool"}, {"pool", "domain_cmd"}};
constinit release_step dns_steps[] = {{"dns", "fake_response_cmd"}};
constinit release_step location_steps[] = {{"location", "server_cmd"}};
constinit release_step ftp_steps[] = {{"ftp", "server_cmd"}, {"ftp", "service_cmd"}, {"ftp", "local_path_cmd"}};
constinit release_step global_steps[] = {
    {"capwap", "controller_name_cmd"}, {"config", "uplink_check_cmd"}, {"config", "hostname_cmd"},
    {"config", "password_cmd"},        {"config", "ism_cmd"},          {"config", "iwg_server_cmd"},
    {"config", "dump_server_cmd"},     {"redis", "server_cmd"},        {"config", "speed_test_cmd"},
    {"config", "trace_ap_cmd"},        {"config", "disturb_test_cmd"}, {"config", "ism_server_cmd"},
    {"dpi", "logging_audit_cmd"},      {"dpi", "report_server_cmd"},   {"config", "ppsk_redis_server_cmd"},
};

const apconf_command *find_command(const release_step &step)
{
    for (const apconf_package *package : apconf_packages) {
        if (strcmp(package->name, step.package) != 0) continue;
        for (uint32_t i = 0; i < package->command_count; i++)
            if (strcmp(package->commands[i].name, step.command) == 0) return &package->commands[i];
    }
    return nullptr;
}

// Every commit takes every step, so each command is looked up once.
const apconf_command &command_of(release_step &step)
{
    if (!step.described) step.described = find_command(step);
    return *step.described;
}

void log_free(const char *function, const char *what, apconf_scope scope, const char *member)
{
    LOG_AS(function, LOG_DEBUG, "free %s%s%s", what, apconf_scope_prefix(scope), member);
}

// Releases a heap member of root that the reference block does not share, and takes over the reference's pointer.
// A null `reference` counts as a null pointer there.
void release_member(const char *function, const apconf_command &command, const apconf_field &field, char *ours,
                    const char *reference)
{
    if (field.kind == APCONF_FIELD_VALUE || field.kind == APCONF_FIELD_VALUES) return;
    void *const pointer = load<void *>(ours);
    void *const kept = reference ? load<void *>(reference) : nullptr;
    if (!pointer || pointer == kept) return;
    const auto scope = static_cast<apconf_scope>(command.scope);
    if (field.kind == APCONF_FIELD_OBJECT) {
        log_free(function, "obj ", scope, field.member);
        json_object_put(static_cast<json_object *>(pointer));
    } else {
        log_free(function, "", scope, field.member);
        free(pointer);
    }
    if (field.kind == APCONF_FIELD_LIST)
        list_view(ours).store(kept, reference ? static_cast<int32_t>(list_view(reference).count()) : 0);
    else
        memcpy(ours, &kept, sizeof kept);
}

// Runs the steps over one record of root; a null `reference` counts as unset.
template <size_t count>
void release_record(const char *function, release_step (&steps)[count], char *ours, const char *reference)
{
    for (release_step &step : steps) {
        const apconf_command &command = command_of(step);
        for (uint32_t i = 0; i < element_count(command); i++) {
            const size_t shift = size_t{i} * command.array.step;
            for (const apconf_field &field : fields_of(command)) {
                if (step.key && strcmp(step.key, field.key) != 0) continue;
                const size_t place = field.offset + shift;
                release_member(function, command, field, ours + place, reference ? reference + place : nullptr);
            }
        }
    }
}

char *bytes_of(void *record)
{
    return static_cast<char *>(record);
}

void release_bss(bss_config &ours, bss_config &reference)
{
    release_record("free_vap_cmd_tree_data", bss_steps, bytes_of(&ours), bytes_of(&reference));
}

// Empties a list of the reference block.
template <typename List>
void drop_reference_list(List &list)
{
    free(list.list);
    list.list = nullptr;
    list.count = 0;
}

// Releases a list of records whose own members are released already.
template <typename List>
void release_list(const char *function, const char *path, List &ours, const List &reference)
{
    if (!ours.list || ours.list == reference.list) return;
    LOG_AS(function, LOG_DEBUG, "free %s", path);
    free(ours.list);
    ours.list = reference.list;
    ours.count = reference.count;
}

template <typename List, size_t count>
void release_list_members(const char *function, release_step (&steps)[count], List &ours, List &reference)
{
    for (int32_t i = 0; ours.list && i < ours.count; i++)
        release_record(function, steps, bytes_of(&ours.list[i]),
                       reference.list && i < reference.count ? bytes_of(&reference.list[i]) : nullptr);
}

void release_global_members()
{
    const char *const function = "apply_cmd_tree_data";
    config_data &ours = root.config;
    config_data &reference = mirror_root.config;
    for (int eid = 0; eid < ETHERNET_COUNT; eid++) {
        release_record(function, ethernet_steps, bytes_of(&ours.ethernet[eid]), bytes_of(&reference.ethernet[eid]));
        drop_reference_list(reference.ethernet[eid].switchport_cmd.vlanid);
    }
    release_list_members(function, vlan_steps, ours.vlan, reference.vlan);
    release_list(function, "root.config.vlan", ours.vlan, reference.vlan);
    drop_reference_list(reference.vlan);
    release_list_members(function, pool_steps, ours.dhcp_server.pool, reference.dhcp_server.pool);
    release_list(function, "root.config.dhcp_server.pool", ours.dhcp_server.pool, reference.dhcp_server.pool);
    drop_reference_list(reference.dhcp_server.pool);
    release_record(function, dns_steps, bytes_of(&ours), bytes_of(&reference));
    release_list(function, "root.config.ip_acl", ours.ip_acl, reference.ip_acl);
    reference.ip_acl.list = nullptr;
    reference.ip_acl.count = 0;
    release_record(function, location_steps, bytes_of(&ours), bytes_of(&reference));
    for (int i = 0; i < FTP_COUNT; i++)
        release_record(function, ftp_steps, bytes_of(&ours.ftp[i]), bytes_of(&reference.ftp[i]));
    release_record(function, global_steps, bytes_of(&ours), bytes_of(&reference));
}

// Releases what a batch set in the BSSes and copies the reference over them. They are nearly all of the block, and most
// batches leave most of them as they are: a single look at a BSS settles it.
void reset_bsses()
{
    for (int radio = 0; radio < RADIO_COUNT; radio++) {
        for (int wlan = 0; wlan < BSS_COUNT; wlan++) {
            bss_config &ours = root.config.radio[radio].bss[wlan];
            bss_config &reference = mirror_root.config.radio[radio].bss[wlan];
            if (memcmp(&ours, &reference, sizeof ours) == 0) continue;
            release_bss(ours, reference);
            memcpy(&ours, &reference, sizeof ours);
        }
    }
}

// Copies the reference over the rest of root.
void reset_others()
{
    constexpr size_t radios = sizeof root.config.radio;
    static_assert(offsetof(config_data, radio) == 0 &&
                  offsetof(radio_config, bss) + sizeof radio_config::bss == sizeof(radio_config));
    for (int radio = 0; radio < RADIO_COUNT; radio++)
        memcpy(&root.config.radio[radio], &mirror_root.config.radio[radio], offsetof(radio_config, bss));
    memcpy(bytes_of(&root) + radios, bytes_of(&mirror_root) + radios, sizeof root - radios);
}

struct queued_message {
    json_object *message;
    int result;  // of writing it
};

int put_message(void *arg, int index)
{
    auto *const queued = static_cast<queued_message *>(arg);
    return queued->result = cmq_put_cmessage(queued->message, index);
}

// Queues what differs as one message. Returns its index, or -1.
int queue_changes()
{
    json_ptr message(json_object_new_object());
    if (!message) return -1;
    cmd_node tree = {"root", 0, nullptr, nullptr, nullptr, nullptr, 0, lib_pkg_root};
    lookup_ctx lookup = {};
    cpath_ctx ctx = {};
    ctx.stack[0].node = &tree;
    ctx.is_get = 1;
    ctx.instance = &lookup;
    ctx.module = get_io_module();
    package_get_all(&tree, message.get(), &ctx);
    json_object_object_add(message.get(), "MODULE", json_object_new_string(get_io_module()));
    json_object_object_add(message.get(), "ACTION", json_object_new_string("set"));
    // The queue gives an index also to a message that could not be written.
    queued_message queued = {message.get(), -1};
    const int index = cmq_handle_cmessage(put_message, &queued);
    return queued.result < 0 ? -1 : index;
}

}  // namespace
}  // namespace apconf

using namespace apconf;

void init_cmd_tree_data(void)
{
    apconf_unset_record(APCONF_SCOPE_GLOBAL, &mirror_root.config);
    memcpy(&root, &mirror_root, sizeof root);
}

void free_vap_cmd_tree_data(uint32_t radio, uint32_t wlan)
{
    if (radio >= RADIO_COUNT || wlan >= BSS_COUNT) return;
    release_bss(root.config.radio[radio].bss[wlan], mirror_root.config.radio[radio].bss[wlan]);
}

int apply_cmd_tree_data(void)
{
    committed_index = queue_changes();
    reset_bsses();
    release_global_members();
    reset_others();
    const int result = send_io_notify(IO_MSG_APPLIED, nullptr, 0);
    // Kept: success is silent.
    if (result != 0) LOG(LOG_INFO, "send config message over, result code = %d", result);
    return result;
}

int apconf_committed_index(void)
{
    return committed_index;
}

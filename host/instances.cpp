// The instances of the iterating packages: radios, BSSes, Ethernet ports and FTP services by number, VLANs, DHCP pools
// and IP access lists by the key that their records hold.
#include "instances.h"

#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>

#include "block.h"

namespace apconf_host
{

namespace
{

// A variable list as the block holds it, whatever its records are.
struct list_place {
    char *records;
    int32_t count;
};

list_place load_list(apconf_scope scope)
{
    switch (scope) {
        case APCONF_SCOPE_VLAN:
            return {reinterpret_cast<char *>(root.config.vlan.list), root.config.vlan.count};
        case APCONF_SCOPE_POOL:
            return {reinterpret_cast<char *>(root.config.dhcp_server.pool.list), root.config.dhcp_server.pool.count};
        case APCONF_SCOPE_IP_ACL:
            return {reinterpret_cast<char *>(root.config.ip_acl.list), root.config.ip_acl.count};
        default:
            return {nullptr, 0};
    }
}

void store_list(apconf_scope scope, list_place list)
{
    switch (scope) {
        case APCONF_SCOPE_VLAN:
            root.config.vlan.list = reinterpret_cast<vlan_config *>(list.records);
            root.config.vlan.count = list.count;
            break;
        case APCONF_SCOPE_POOL:
            root.config.dhcp_server.pool.list = reinterpret_cast<pool_config *>(list.records);
            root.config.dhcp_server.pool.count = list.count;
            break;
        case APCONF_SCOPE_IP_ACL:
            root.config.ip_acl.list = reinterpret_cast<ip_acl_config *>(list.records);
            root.config.ip_acl.count = list.count;
            break;
        default:
            break;
    }
}

std::string key_of(apconf_scope scope, const char *record)
{
    switch (scope) {
        case APCONF_SCOPE_VLAN:
            return std::to_string(reinterpret_cast<const vlan_config *>(record)->vlan_id);
        case APCONF_SCOPE_POOL: {
            const char *name = reinterpret_cast<const pool_config *>(record)->pool_name;
            return name ? name : "";
        }
        case APCONF_SCOPE_IP_ACL:
            return std::to_string(reinterpret_cast<const ip_acl_config *>(record)->identify);
        default:
            return "";
    }
}

uint32_t number(const std::string &key)
{
    return static_cast<uint32_t>(strtoul(key.c_str(), nullptr, 10));
}

void set_key(apconf_scope scope, char *record, const std::string &key)
{
    switch (scope) {
        case APCONF_SCOPE_VLAN:
            reinterpret_cast<vlan_config *>(record)->vlan_id = number(key);
            break;
        case APCONF_SCOPE_POOL: {
            char *name = strdup(key.c_str());
            if (!name) throw std::bad_alloc();
            reinterpret_cast<pool_config *>(record)->pool_name = name;
            break;
        }
        case APCONF_SCOPE_IP_ACL:
            reinterpret_cast<ip_acl_config *>(record)->identify = number(key);
            break;
        default:
            break;
    }
}

// What a record holds besides its commands' fields.
void release_key(apconf_scope scope, char *record)
{
    if (scope == APCONF_SCOPE_POOL) free(reinterpret_cast<pool_config *>(record)->pool_name);
}

}  // namespace

bool is_iterating(const apconf_command &command)
{
    return command.variant == APCONF_RECORD_NODE || command.variant == APCONF_LIST_NODE;
}

const char *index_key(const apconf_command &package)
{
    return is_iterating(package) && package.field_count ? package.fields[0].key : nullptr;
}

uint32_t &slot_of(apconf_scope scope, lookup_ctx &lookup)
{
    return *apconf_scope_slot(scope, &lookup);
}

std::string instance_name(apconf_scope scope, const lookup_ctx &lookup)
{
    lookup_ctx chosen = lookup;
    const uint32_t slot = slot_of(scope, chosen);
    const list_place list = load_list(scope);
    if (!list.records) return std::to_string(slot);
    return slot < static_cast<uint32_t>(list.count) ? key_of(scope, list_record(scope, static_cast<int32_t>(slot)))
                                                    : "";
}

int32_t list_count(apconf_scope scope)
{
    return load_list(scope).count;
}

char *list_record(apconf_scope scope, int32_t position)
{
    return load_list(scope).records + static_cast<size_t>(position) * apconf_scope_size(scope);
}

int32_t find_record(apconf_scope scope, const std::string &key)
{
    for (int32_t i = 0; i < list_count(scope); ++i)
        if (key_of(scope, list_record(scope, i)) == key) return i;
    return -1;
}

int32_t append_record(apconf_scope scope, const std::string &key)
{
    list_place list = load_list(scope);
    const size_t size = apconf_scope_size(scope);
    const size_t count = static_cast<size_t>(list.count) + 1;
    if (list.count == std::numeric_limits<int32_t>::max() || count > std::numeric_limits<size_t>::max() / size)
        throw std::bad_alloc();
    char *records = static_cast<char *>(realloc(list.records, count * size));
    if (!records) throw std::bad_alloc();
    // The count follows when the new record stands; the pointer must not wait for it.
    store_list(scope, {records, list.count});
    char *record = records + (count - 1) * size;
    apconf_unset_record(scope, record);
    set_key(scope, record, key);
    store_list(scope, {records, list.count + 1});
    return list.count;
}

bool is_bare(const apconf_command &package, int32_t position)
{
    const auto scope = static_cast<apconf_scope>(package.scope);
    const apconf_field &key = package.fields[0];
    const char *record = list_record(scope, position);
    std::string bare(unset_record(scope), apconf_scope_size(scope));
    bare.replace(key.offset, apconf_field_size(&key), record + key.offset, apconf_field_size(&key));
    return memcmp(record, bare.data(), bare.size()) == 0;
}

void remove_record(apconf_scope scope, int32_t position)
{
    list_place list = load_list(scope);
    const size_t size = apconf_scope_size(scope);
    char *record = list_record(scope, position);
    release_key(scope, record);
    reset_record(scope, record);
    memmove(record, record + size, static_cast<size_t>(list.count - position - 1) * size);
    --list.count;
    if (list.count == 0) {
        free(list.records);
        list.records = nullptr;
    }
    store_list(scope, list);
}

void remove_all_records(apconf_scope scope)
{
    while (list_count(scope) > 0) remove_record(scope, list_count(scope) - 1);
}

std::string existing_keys(apconf_scope scope)
{
    constexpr int32_t shown = 16;
    std::string keys;
    for (int32_t i = 0; i < list_count(scope) && i < shown; ++i)
        keys += (keys.empty() ? "" : ", ") + key_of(scope, list_record(scope, i));
    if (list_count(scope) > shown) keys += ", ...";
    return keys.empty() ? "none" : keys;
}

}  // namespace apconf_host

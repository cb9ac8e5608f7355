// The records of the data block by their scope, and views of it for the code that works from descriptions.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "apconf/description.h"

namespace apconf
{

// Where the records of a scope lie.
struct scope_row {
    const char *prefix;  // what log lines put before a member
    uint32_t size;       // bytes of a record
    apconf_scope enclosing;
    uint32_t count;   // records of a fixed array; 0: a variable list
    uint32_t offset;  // of the array or of the {list, count} pair in the enclosing record
    uint32_t lookup_ctx::*slot;
};

// Every scope is described here and nowhere else: the type of its records, and where they lie.
template <int scope>
struct scope_description;

// clang-format off
#define SCOPE(name, record_type, prefix, enclosing, count, offset, slot)                                        \
    template <> struct scope_description<APCONF_SCOPE_##name> {                                                 \
        using record = record_type;                                                                             \
        static constexpr scope_row row = {prefix, sizeof(record), APCONF_SCOPE_##enclosing, count, offset, slot}; \
    };

SCOPE(GLOBAL,   config_data,     "root.config.",
      GLOBAL, 1,              0,                                       nullptr)
SCOPE(RADIO,    radio_config,    "root.config.radio[rid].",
      GLOBAL, RADIO_COUNT,    offsetof(config_data, radio),            &lookup_ctx::radio)
SCOPE(BSS,      bss_config,      "root.config.radio[rid].bss[wid].",
      RADIO,  BSS_COUNT,      offsetof(radio_config, bss),             &lookup_ctx::wlan)
SCOPE(ETHERNET, ethernet_config, "root.config.ethernet[eid].",
      GLOBAL, ETHERNET_COUNT, offsetof(config_data, ethernet),         &lookup_ctx::ethernet)
SCOPE(FTP,      ftp_config,      "root.config.ftp[i].",
      GLOBAL, FTP_COUNT,      offsetof(config_data, ftp),              &lookup_ctx::ftp)
SCOPE(VLAN,     vlan_config,     "root.config.vlan[vid].",
      GLOBAL, 0,              offsetof(config_data, vlan),             &lookup_ctx::vlan)
SCOPE(POOL,     pool_config,     "root.config.dhcp_server.pool[pid].",
      GLOBAL, 0,              offsetof(config_data, dhcp_server.pool), &lookup_ctx::pool)
SCOPE(IP_ACL,   ip_acl_config,   "root.config.ip_acl[i].",
      GLOBAL, 0,              offsetof(config_data, ip_acl),           &lookup_ctx::ip_acl)
#undef SCOPE
// clang-format on

// A {list, count} pair of the block, whatever its elements are. A list without memory, or a negative count, is empty.
class list_view
{
public:
    struct pair {
        void *list;
        int32_t count;
    };

    explicit list_view(void *place);
    explicit list_view(const void *place) : list_view(const_cast<void *>(place)) {}
    void *list() const { return pair_.list; }
    uint32_t count() const { return static_cast<uint32_t>(pair_.count); }
    char *element(uint32_t index, uint32_t size) const
    {
        return static_cast<char *>(pair_.list) + size_t{index} * size;
    }
    void store(void *list, int32_t count);

private:
    char *place_;
    pair pair_;
};

// The fields of a command, for range-based loops.
struct field_range {
    const apconf_field *first;
    const apconf_field *last;
    const apconf_field *begin() const { return first; }
    const apconf_field *end() const { return last; }
};
inline field_range fields_of(const apconf_command &command)
{
    return {command.fields, command.fields + command.field_count};
}

// Elements of the command's array; 1 for a command without one.
uint32_t element_count(const apconf_command &command);

template <typename Value>
Value load(const void *place)
{
    Value value;
    memcpy(&value, place, sizeof value);
    return value;
}

}  // namespace apconf

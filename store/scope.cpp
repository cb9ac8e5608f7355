// The records that the fields of a package lie in: where each is in a block, and how it is made unset.
#include "store/scope.h"

#include <array>
#include <cstring>
#include <utility>

config_block root;
config_block mirror_root;

namespace apconf
{
namespace
{

template <int... scope>
consteval auto describe_scopes(std::integer_sequence<int, scope...>)
{
    return std::array<scope_row, sizeof...(scope)>{scope_description<scope>::row...};
}
constexpr auto scope_rows = describe_scopes(std::make_integer_sequence<int, APCONF_SCOPE_COUNT>{});

// The {list, count} pairs are of different pointer types; all lie alike.
static_assert(sizeof(config_data::vlan) == sizeof(list_view::pair) &&
              sizeof(config_data::ip_acl) == sizeof(list_view::pair));
static_assert(offsetof(decltype(config_data::vlan), count) == offsetof(list_view::pair, count));

void unset_field(const apconf_field &field, char *place)
{
    switch (field.kind) {
        case APCONF_FIELD_TEXT:
        case APCONF_FIELD_TYPED:
        case APCONF_FIELD_OBJECT:
            memset(place, 0, sizeof(void *));
            break;
        case APCONF_FIELD_LIST:
            list_view(place).store(nullptr, 0);
            break;
        default:
            break;
    }
}

void unset_command(const apconf_command &command, char *record)
{
    const bool zero_option =
        command.variant == APCONF_COUNTED_ARRAY || (command.variant == APCONF_PACKED_LIST && command.zero_unset);
    if (zero_option) memset(record + command.option, 0, sizeof(uint32_t));
    if (command.zero_unset) {
        memset(record + command.array.offset, 0, size_t{command.array.step} * command.array.count);
        return;
    }
    for (const apconf_field &field : fields_of(command))
        for (uint32_t i = 0; i < element_count(command); i++)
            unset_field(field, record + field.offset + size_t{i} * command.array.step);
}

}  // namespace

list_view::list_view(void *place) : place_(static_cast<char *>(place))
{
    memcpy(&pair_, place_, sizeof pair_);
    if (!pair_.list || pair_.count < 0) pair_.count = 0;
}

void list_view::store(void *list, int32_t count)
{
    pair_.list = list;
    pair_.count = count;
    // What lies behind the count is declared padding and stays as it is.
    memcpy(place_, &pair_.list, sizeof pair_.list);
    memcpy(place_ + offsetof(pair, count), &pair_.count, sizeof pair_.count);
}

uint32_t element_count(const apconf_command &command)
{
    return command.array.count ? command.array.count : 1;
}

}  // namespace apconf

using namespace apconf;

void *apconf_scope_record(apconf_scope scope, config_block *block, const lookup_ctx *lookup)
{
    if (scope == APCONF_SCOPE_GLOBAL) return &block->config;
    if (!lookup) return nullptr;
    const scope_row &row = scope_rows[scope];
    char *enclosing = static_cast<char *>(apconf_scope_record(row.enclosing, block, lookup));
    if (!enclosing) return nullptr;
    const uint32_t index = lookup->*row.slot;
    char *place = enclosing + row.offset;
    if (row.count) return index < row.count ? place + size_t{index} * row.size : nullptr;
    const list_view list(place);
    return index < list.count() ? list.element(index, row.size) : nullptr;
}

const char *apconf_scope_prefix(apconf_scope scope)
{
    return scope_rows[scope].prefix;
}

uint32_t apconf_scope_size(apconf_scope scope)
{
    return scope_rows[scope].size;
}

apconf_scope apconf_enclosing_scope(apconf_scope scope)
{
    return scope_rows[scope].enclosing;
}

uint32_t *apconf_scope_slot(apconf_scope scope, lookup_ctx *lookup)
{
    return scope == APCONF_SCOPE_GLOBAL ? nullptr : &(lookup->*scope_rows[scope].slot);
}

void apconf_unset_record(apconf_scope scope, void *record)
{
    char *const bytes = static_cast<char *>(record);
    memset(bytes, 0xFF, scope_rows[scope].size);
    for (const apconf_package *package : apconf_packages)
        for (uint32_t i = 0; i < package->command_count; i++)
            if (package->commands[i].scope == scope) unset_command(package->commands[i], bytes);
    for (int inner = 0; inner < APCONF_SCOPE_COUNT; inner++) {
        const scope_row &row = scope_rows[inner];
        if (inner == scope || row.enclosing != scope || inner == APCONF_SCOPE_GLOBAL) continue;
        for (uint32_t i = 0; i < row.count; i++)
            apconf_unset_record(static_cast<apconf_scope>(inner), bytes + row.offset + size_t{i} * row.size);
        if (!row.count) list_view(bytes + row.offset).store(nullptr, 0);
    }
}

uint32_t apconf_field_size(const apconf_field *field)
{
    switch (field->kind) {
        case APCONF_FIELD_VALUE:
            return static_cast<uint32_t>(param_types[field->ptype].size);
        case APCONF_FIELD_VALUES:
            return static_cast<uint32_t>(param_types[field->ptype].size) * field->count;
        case APCONF_FIELD_LIST:
            return static_cast<uint32_t>(sizeof(void *) + sizeof(int32_t));
        default:
            return sizeof(void *);
    }
}

int apconf_field_applies(const apconf_command *command, const apconf_field *field, const void *base)
{
    if (field->when == APCONF_WHEN_ALWAYS) return 1;
    const bool by_address = field->when == APCONF_WHEN_IP || field->when == APCONF_WHEN_DOMAIN;
    for (const apconf_field &selecting : fields_of(*command)) {
        if (selecting.ptype != (by_address ? PTYPE_ADDR_TYPE : PTYPE_STRING_FORMAT)) continue;
        uint32_t selected;
        memcpy(&selected, static_cast<const char *>(base) + selecting.offset, sizeof selected);
        switch (field->when) {
            case APCONF_WHEN_IP:
                return selected == 1;  // ADDR_TYPE "ip"
            case APCONF_WHEN_DOMAIN:
                return selected == 2;  // ADDR_TYPE "domain"
            default:                   // STRING_FORMAT "hex" is 1
                return (selected == 1) == (field->when == APCONF_WHEN_HEX);
        }
    }
    return 1;
}

static void unset_list_element(apconf_scope scope, uint32_t index)
{
    const scope_row &row = scope_rows[scope];
    const list_view list(reinterpret_cast<char *>(&mirror_root.config) + row.offset);
    if (index < list.count()) apconf_unset_record(scope, list.element(index, row.size));
}

void init_vlan_config(uint16_t index)
{
    unset_list_element(APCONF_SCOPE_VLAN, index);
}

void init_pool_config(uint16_t index)
{
    unset_list_element(APCONF_SCOPE_POOL, index);
}

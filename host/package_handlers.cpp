// What set and no do to packages: they choose, create and remove instances.
#include <cstdlib>
#include <cstring>
#include <optional>

#include "block.h"
#include "call.h"
#include "expectation.h"
#include "instances.h"
#include "json.h"

namespace apconf_host
{

namespace
{

// The index value in the arguments: of a list of argument objects, the one that all give. Null: not there.
json_object *index_value(const call &call, json_object *args, bool &agree)
{
    const char *key = index_key(call.command);
    json_object *found = nullptr;
    int cursor = 0;
    while (json_object *single = get_json_obj(args, &cursor)) {
        json_object *value = member(single, key);
        if (found && value && !json_object_equal(found, value)) agree = false;
        if (value) found = value;
    }
    return found;
}

// The index as a checked text. Nothing when it was refused.
std::optional<std::string> read_instance(const call &call, json_object *args)
{
    const apconf_field &field = call.command.fields[0];
    bool agree = true;
    json_object *value = index_value(call, args, agree);
    if (value && agree) return read_index(call.node, field, call.path, value, call.message.result);
    call.refuse(field.key, "",
                agree ? accepted_value(call.node, field) + ", which must be given" : "the same in all entries");
    return std::nullopt;
}

uint32_t number(const std::string &index)
{
    return static_cast<uint32_t>(strtoul(index.c_str(), nullptr, 10));
}

bool in_array(const call &call, const std::string &index)
{
    const auto count = capacity(call.command, call.node);
    if (number(index) < count) return true;
    call.refuse(index_key(call.command), index,
                std::string("a ") + index_key(call.command) + " from 0 to " + std::to_string(count - 1));
    return false;
}

int enter_record(const call &call, json_object *args)
{
    const auto index = read_instance(call, args);
    if (!index || !in_array(call, *index)) return call::refused;
    slot_of(call.scope(), call.lookup) = number(*index);
    if (call.scope() == APCONF_SCOPE_BSS && call.in_batch() && !is_removal(args)) {
        auto *bss = reinterpret_cast<bss_config *>(call.record());
        if (bss->state == CONFIG_NEGATED) bss->state = BSS_RECREATE;
    }
    return call::done;
}

int enter_element(const call &call, json_object *args)
{
    const auto key = read_instance(call, args);
    if (!key) return call::refused;
    int32_t position = find_record(call.scope(), *key);
    if (position < 0 && is_removal(args))
        return call.refuse(index_key(call.command), *key, "an existing one: " + existing_keys(call.scope()));
    if (position < 0) {
        if (call.node.repeat > 0 && list_count(call.scope()) >= call.node.repeat)
            return call.refuse(index_key(call.command), *key,
                               "at most " + std::to_string(call.node.repeat) + " entries");
        position = append_record(call.scope(), *key);
        call.changed();
    }
    slot_of(call.scope(), call.lookup) = static_cast<uint32_t>(position);
    return call::done;
}

// Makes the chosen instance unset, and with a radio its BSSes. False when it was.
bool reset_instance(apconf_scope scope, lookup_ctx lookup)
{
    auto *record = static_cast<char *>(apconf_scope_record(scope, &root, &lookup));
    const bool was_set = memcmp(record, unset_record(scope), apconf_scope_size(scope)) != 0;
    if (scope == APCONF_SCOPE_RADIO)
        for (lookup.wlan = 0; lookup.wlan < BSS_COUNT; ++lookup.wlan) reset_instance(APCONF_SCOPE_BSS, lookup);
    reset_record(scope, record);
    return was_set;
}

bool remove_list(apconf_scope scope)
{
    const bool was_set = list_count(scope) > 0;
    remove_all_records(scope);
    return was_set;
}

bool reset_records(const apconf_command &command, lookup_ctx lookup)
{
    const auto scope = static_cast<apconf_scope>(command.scope);
    uint32_t &slot = slot_of(scope, lookup);
    bool changed = false;
    for (slot = 0; slot < command.array.count; ++slot) changed = reset_instance(scope, lookup) || changed;
    return changed;
}

bool reset_below(const cmd_node &package, const lookup_ctx &lookup)
{
    bool changed = false;
    for (const cmd_node *child = package.children; child && child->name; ++child) {
        const apconf_command *command = apconf_find_command(child);
        if (!command) continue;
        const auto scope = static_cast<apconf_scope>(command->scope);
        if (command->variant == APCONF_LIST_NODE)
            changed = remove_list(scope) || changed;
        else if (command->variant == APCONF_RECORD_NODE)
            changed = reset_records(*command, lookup) || changed;
        else if (is_node(*command))
            changed = reset_below(*child, lookup) || changed;
        else if (void *record = apconf_scope_record(scope, &root, &lookup))
            changed = reset_command(*command, static_cast<char *>(record)) || changed;
    }
    return changed;
}

// All that is below the package reports when it is unset.
bool all_report_removal(const cmd_node &package)
{
    for (const cmd_node *child = package.children; child->name; ++child)
        if (!reports_removal(*apconf_find_command(child))) return false;
    return true;
}

bool remove_record_at(const call &call, uint32_t index)
{
    slot_of(call.scope(), call.lookup) = index;
    const bool was_set = reset_instance(call.scope(), call.lookup);
    if (call.scope() != APCONF_SCOPE_BSS || !call.in_batch()) return was_set;
    // The one removal of an instance that a batch reports.
    reinterpret_cast<bss_config *>(call.record())->state = CONFIG_NEGATED;
    return true;
}

bool remove_all_instances(const call &call)
{
    if (call.command.variant == APCONF_LIST_NODE) return remove_list(call.scope());
    bool changed = false;
    for (uint32_t i = 0; i < capacity(call.command, call.node); ++i) changed = remove_record_at(call, i) || changed;
    return changed;
}

int remove_instance(const call &call, json_object *args)
{
    const auto key = read_instance(call, args);
    if (!key) return call::refused;
    if (call.command.variant == APCONF_LIST_NODE) {
        const int32_t position = find_record(call.scope(), *key);
        if (position < 0) return call.nothing_to_remove();
        remove_record(call.scope(), position);
        return call.changed();
    }
    if (!in_array(call, *key)) return call::refused;
    return remove_record_at(call, number(*key)) ? call.changed() : call.nothing_to_remove();
}

// The message goes on with what takes the place of the removed package.
bool is_replaced(const call &call)
{
    json_object *value = call.ctx.stack[call.ctx.depth].args;
    const size_t count = json_object_is_type(value, json_type_array) ? json_object_array_length(value) : 0;
    return count > 1 && !is_removal(json_object_array_get_idx(value, count - 1));
}

}  // namespace

int enter_package(const call &call, json_object *args)
{
    if (args && !json_object_is_type(args, json_type_object) &&
        !(call.message.single && json_object_is_type(args, json_type_array)))
        return call.refuse("", shown(args), "an object");
    json_object *option = member(args, ".OPT");
    if (option && !is_removal(args)) return call.refuse(".OPT", shown(option), "no or noall");
    switch (call.command.variant) {
        case APCONF_RECORD_NODE:
            return enter_record(call, args);
        case APCONF_LIST_NODE:
            return enter_element(call, args);
        default:
            return call::done;
    }
}

int remove_package(const call &call, json_object *args)
{
    if (is_iterating(call.command)) {
        bool agree = true;
        if (index_value(call, args, agree)) return remove_instance(call, args);
        return remove_all_instances(call) ? call.changed() : call.nothing_to_remove();
    }
    // The whole configuration at once is asked for by mistake more often than not.
    if (call.command.variant == APCONF_UNCONDITIONAL_NODE && call.scope() == APCONF_SCOPE_GLOBAL &&
        (call.in_batch() || !is_replaced(call)))
        return call.refuse("", "no", "the removal of a package or command below it");
    bool changed = reset_below(call.node, call.lookup);
    if (!all_report_removal(call.node)) return changed ? call.changed() : call.nothing_to_remove();
    if (call.report_bss()) changed = true;
    return changed ? call.changed() : call::no_change;
}

}  // namespace apconf_host

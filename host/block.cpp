// The memory of `root`: reading, writing, comparing and releasing fields, elements and records as their descriptions
// lay them out.
#include "block.h"

#include <json-c/json.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <vector>

namespace apconf_host
{

namespace
{

// A LIST field: a pointer, and its count behind it.
struct list_header {
    void *list;
    int32_t count;
};

template <typename Value>
Value load(const char *from)
{
    Value value;
    memcpy(&value, from, sizeof value);
    return value;
}

template <typename Value>
void store(char *to, Value value)
{
    memcpy(to, &value, sizeof value);
}

list_header load_list(const apconf_field &field, const element &at)
{
    const char *place = at.stored + field.offset;
    return {load<void *>(place), load<int32_t>(place + sizeof(void *))};
}

void store_list(const apconf_field &field, const element &at, list_header header)
{
    char *place = at.stored + field.offset;
    free(load<void *>(place));
    store(place, header.list);
    store(place + sizeof(void *), header.count);
}

void write_list(const apconf_field &field, const element &at, const std::string &values)
{
    if (values.empty()) return store_list(field, at, {nullptr, 0});
    void *copy = malloc(values.size());
    if (!copy) throw std::bad_alloc();
    memcpy(copy, values.data(), values.size());
    const auto size = static_cast<size_t>(get_ptype_size(field.ptype));
    store_list(field, at, {copy, static_cast<int32_t>(values.size() / size)});
}

void write_text(const apconf_field &field, const element &at, const std::string &text)
{
    // A fresh copy even of an equal text: texts are compared by pointer.
    char *copy = strdup(text.c_str());
    if (!copy) throw std::bad_alloc();
    free(load_text(field, at));
    store(at.stored + field.offset, copy);
}

void write_object(const apconf_field &field, const element &at, json_object *object)
{
    json_object_get(object);
    json_object_put(load<json_object *>(at.stored + field.offset));
    store(at.stored + field.offset, object);
}

// Leaves null behind: two rows of a command may stand for one member.
void release(const apconf_field &field, const element &at)
{
    char *place = at.stored + field.offset;
    if (is_heap_text(field)) {
        free(load_text(field, at));
        store<char *>(place, nullptr);
    } else if (field.kind == APCONF_FIELD_OBJECT) {
        json_object_put(load<json_object *>(place));
        store<json_object *>(place, nullptr);
    } else if (field.kind == APCONF_FIELD_LIST) {
        store_list(field, at, {nullptr, 0});
    }
}

std::vector<char> make_unset(apconf_scope scope)
{
    std::vector<char> record(apconf_scope_size(scope));
    apconf_unset_record(scope, record.data());
    return record;
}

void release_command(const apconf_command &command, char *record)
{
    const size_t count = std::max<size_t>(command.array.count, 1);
    for (size_t i = 0; i < count; ++i)
        for (unsigned f = 0; f < command.field_count; ++f) release(command.fields[f], element_at(command, record, i));
}

}  // namespace

const char *unset_record(apconf_scope scope)
{
    static const std::vector<char> vlan = make_unset(APCONF_SCOPE_VLAN);
    static const std::vector<char> pool = make_unset(APCONF_SCOPE_POOL);
    static const std::vector<char> ip_acl = make_unset(APCONF_SCOPE_IP_ACL);
    switch (scope) {
        case APCONF_SCOPE_VLAN:
            return vlan.data();
        case APCONF_SCOPE_POOL:
            return pool.data();
        case APCONF_SCOPE_IP_ACL:
            return ip_acl.data();
        default: {
            // The reference block is unset throughout, but for its lists.
            const lookup_ctx first = {};
            return static_cast<const char *>(apconf_scope_record(scope, &mirror_root, &first));
        }
    }
}

element element_at(const apconf_command &command, char *record, size_t index)
{
    const size_t shift = index * command.array.step;
    return {record + shift, unset_record(static_cast<apconf_scope>(command.scope)) + shift};
}

size_t capacity(const apconf_command &command, const cmd_node &node)
{
    const size_t room = std::max<size_t>(command.array.count, 1);
    return node.repeat > 0 ? std::min(room, static_cast<size_t>(node.repeat)) : room;
}

bool is_heap_text(const apconf_field &field)
{
    return field.kind == APCONF_FIELD_TEXT || field.kind == APCONF_FIELD_TYPED;
}

char *load_text(const apconf_field &field, const element &at)
{
    return load<char *>(at.stored + field.offset);
}

bool is_set(const apconf_field &field, const element &at)
{
    switch (field.kind) {
        case APCONF_FIELD_VALUE:
        case APCONF_FIELD_VALUES:
            return memcmp(at.stored + field.offset, at.unset + field.offset, apconf_field_size(&field)) != 0;
        default:
            return load<void *>(at.stored + field.offset) != nullptr;
    }
}

bool any_set(const apconf_command &command, const element &at)
{
    return std::any_of(command.fields, command.fields + command.field_count,
                       [&at](const apconf_field &field) { return is_set(field, at); });
}

bool holds(const element &at, const argument &argument)
{
    const apconf_field &field = *argument.field;
    const char *place = at.stored + field.offset;
    switch (field.kind) {
        case APCONF_FIELD_TEXT:
        case APCONF_FIELD_TYPED:
            return load_text(field, at) && argument.bytes == load_text(field, at);
        case APCONF_FIELD_OBJECT:
            return load<json_object *>(place) && json_object_equal(load<json_object *>(place), argument.object);
        case APCONF_FIELD_LIST: {
            const list_header stored = load_list(field, at);
            const size_t size = static_cast<size_t>(stored.count) * static_cast<size_t>(get_ptype_size(field.ptype));
            return size == argument.bytes.size() &&
                   (size == 0 || memcmp(stored.list, argument.bytes.data(), size) == 0);
        }
        default: {
            // Of a row of values the rest is unset.
            const size_t given = argument.bytes.size();
            return memcmp(place, argument.bytes.data(), given) == 0 &&
                   memcmp(place + given, at.unset + field.offset + given, apconf_field_size(&field) - given) == 0;
        }
    }
}

bool looks_unset(const argument &argument, const element &at)
{
    const apconf_field &field = *argument.field;
    const auto size = static_cast<size_t>(get_ptype_size(field.ptype));
    const std::string all_ones(size, '\xFF');
    const char *nothing = field.kind == APCONF_FIELD_LIST ? all_ones.data() : at.unset + field.offset;
    switch (field.kind) {
        case APCONF_FIELD_VALUE:
        case APCONF_FIELD_VALUES:
        case APCONF_FIELD_LIST:
            for (size_t i = 0; i + size <= argument.bytes.size(); i += size)
                if (memcmp(argument.bytes.data() + i, nothing, size) == 0) return true;
            return false;
        default:
            return false;
    }
}

void write(const element &at, const argument &argument)
{
    const apconf_field &field = *argument.field;
    switch (field.kind) {
        case APCONF_FIELD_TEXT:
        case APCONF_FIELD_TYPED:
            return write_text(field, at, argument.bytes);
        case APCONF_FIELD_OBJECT:
            return write_object(field, at, argument.object);
        case APCONF_FIELD_LIST:
            return write_list(field, at, argument.bytes);
        default:
            unset(field, at);
            memcpy(at.stored + field.offset, argument.bytes.data(), argument.bytes.size());
    }
}

void unset(const apconf_field &field, const element &at)
{
    release(field, at);
    memcpy(at.stored + field.offset, at.unset + field.offset, apconf_field_size(&field));
}

void unset_all(const apconf_command &command, const element &at)
{
    for (unsigned f = 0; f < command.field_count; ++f) unset(command.fields[f], at);
}

void remove_element(const apconf_command &command, char *record, size_t index, size_t count)
{
    const element gone = element_at(command, record, index);
    unset_all(command, gone);
    char *first = record + command.array.offset;
    const size_t step = command.array.step;
    memmove(first + index * step, first + (index + 1) * step, (count - index - 1) * step);
    const size_t last = command.array.offset + (count - 1) * step;
    memcpy(record + last, unset_record(static_cast<apconf_scope>(command.scope)) + last, step);
}

uint32_t option_word(const apconf_command &command, const char *record)
{
    return load<uint32_t>(record + command.option);
}

uint32_t unset_option(const apconf_command &command)
{
    return load<uint32_t>(unset_record(static_cast<apconf_scope>(command.scope)) + command.option);
}

void set_option(const apconf_command &command, char *record, uint32_t word)
{
    store(record + command.option, word);
}

bool reset_command(const apconf_command &command, char *record)
{
    bool changed = false;
    const size_t count = std::max<size_t>(command.array.count, 1);
    for (size_t i = 0; i < count; ++i) {
        const element at = element_at(command, record, i);
        changed = changed || any_set(command, at);
        unset_all(command, at);
    }
    if (command.option != APCONF_NO_OPTION) {
        changed = changed || option_word(command, record) != unset_option(command);
        set_option(command, record, unset_option(command));
    }
    return changed;
}

void reset_record(apconf_scope scope, char *record)
{
    for (const apconf_package *package : apconf_packages)
        for (uint32_t i = 0; i < package->command_count; ++i) {
            const apconf_command &command = package->commands[i];
            if (!is_node(command) && command.scope == scope) release_command(command, record);
        }
    memcpy(record, unset_record(scope), apconf_scope_size(scope));
}

bool is_node(const apconf_command &command)
{
    return command.variant >= APCONF_PACKAGE_NODE;
}

bool reports_removal(const apconf_command &command)
{
    return command.variant == APCONF_UNSET_MEANS_NO || command.variant == APCONF_ALWAYS_RESET;
}

}  // namespace apconf_host

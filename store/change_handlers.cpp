// How commands are reported: one function a manner, all working from the command's description.
//
// A comparison is cheap: values at their width, texts by pointer, whole records and areas with one memcmp, so that
// unchanged subtrees are never entered.
#include "store/change_handlers.h"

#include <json-c/json.h>

#include <climits>
#include <cstring>

#include "apconf/command.h"
#include "store/scope.h"
#include "util/log.h"
#include "util/owners.h"

namespace apconf
{
namespace
{

// One call of a change handler.
struct report {
    const apconf_command &command;
    const char *handler;
    json_object *args;
    json_object **result;
    cpath_ctx *ctx;
    char *ours;             // the scope's record in root
    const char *reference;  // the same in mirror_root; null: there is none, which counts as unset
};

lookup_ctx *lookup_of(const cpath_ctx *ctx)
{
    return static_cast<lookup_ctx *>(ctx->instance);
}

bool all_bytes(const char *bytes, size_t size, char value)
{
    for (size_t i = 0; i < size; i++)
        if (bytes[i] != value) return false;
    return true;
}

bool same_bytes(const char *ours, const char *reference, size_t size)
{
    switch (size) {
        case 4:
            return load<uint32_t>(ours) == load<uint32_t>(reference);
        case 1:
            return *ours == *reference;
        case 2:
            return load<uint16_t>(ours) == load<uint16_t>(reference);
        case 8:
            return load<uint64_t>(ours) == load<uint64_t>(reference);
        default:
            return memcmp(ours, reference, size) == 0;
    }
}

bool value_differs(const report &report, const char *ours, const char *reference, size_t size)
{
    if (!reference) return !all_bytes(ours, size, report.command.zero_unset ? '\0' : '\xFF');
    return !same_bytes(ours, reference, size);
}

// Texts and objects: a null is never a change, and equal text under another pointer is one.
bool pointer_differs(const char *ours, const char *reference)
{
    const void *const pointer = load<void *>(ours);
    return pointer && (!reference || load<void *>(reference) != pointer);
}

json_object *object_of(const report &report, json_object *&object)
{
    if (!object) object = create_argv_obj(report.result);
    return object;
}

// One object that holds nothing but the option.
json_object *put_option(const report &report, const char *option)
{
    json_object *const object = create_argv_obj(report.result);
    if (object) put_arg_string(object, ".OPT", option);
    return object;
}

#define LOG_PUT(report, what, field)                         \
    LOG_AS((report).handler, LOG_DEBUG, "put %s %s%s", what, \
           apconf_scope_prefix(static_cast<apconf_scope>((report).command.scope)), (field).member)

// Collects the values that differ into one JSON array and puts it under the field's key.
void put_values(const report &report, json_object *&object, const apconf_field &field, const char *ours, uint32_t count,
                const char *reference, uint32_t reference_count)
{
    const auto size = static_cast<uint32_t>(param_types[field.ptype].size);
    json_ptr array;
    for (uint32_t i = 0; i < count; i++) {
        const char *const value = ours + size_t{i} * size;
        const char *const known = i < reference_count ? reference + size_t{i} * size : nullptr;
        if (!value_differs(report, value, known, size)) continue;
        LOG_AS(report.handler, LOG_DEBUG, "put '%s' array '%d'", field.key, load<int32_t>(value));
        json_object *const text = convert_ptype_value_to_obj(field.ptype, value);
        if (!text) continue;
        if (!array) array.reset(json_object_new_array());
        if (!array || json_object_array_add(array.get(), text) != 0) json_object_put(text);
    }
    if (!array) return;
    if (!object_of(report, object)) {
        LOG_AS(report.handler, LOG_ERR, "create_argv_obj failed");
        return;
    }
    if (json_object_object_add(object, field.key, array.get()) == 0) array.release();
}

void put_object(const report &report, json_object *&object, const apconf_field &field, char *ours)
{
    if (!object_of(report, object)) return;
    LOG_PUT(report, "object", field);
    if (json_object_object_add(object, field.key, load<json_object *>(ours)) != 0) return;
    memset(ours, 0, sizeof(void *));  // the message owns it now
}

// Puts one field when it differs; `object` is made by the first that does. `ours` and `reference` are the field's
// places.
void put_field(const report &report, json_object *&object, const apconf_field &field, char *ours, const char *reference)
{
    switch (field.kind) {
        case APCONF_FIELD_VALUE:
            if (!value_differs(report, ours, reference, static_cast<size_t>(param_types[field.ptype].size))) return;
            break;
        case APCONF_FIELD_VALUES:
            put_values(report, object, field, ours, field.count, reference, reference ? field.count : 0);
            return;
        case APCONF_FIELD_LIST: {
            const list_view list(ours);
            const void *const known = reference ? list_view(reference).list() : nullptr;
            put_values(report, object, field, static_cast<const char *>(list.list()), list.count(),
                       static_cast<const char *>(known), known ? list_view(reference).count() : 0);
            return;
        }
        default:
            if (!pointer_differs(ours, reference)) return;
    }
    if (field.kind == APCONF_FIELD_OBJECT) {
        put_object(report, object, field, ours);
        return;
    }
    if (!object_of(report, object)) return;
    if (field.kind == APCONF_FIELD_TEXT) {
        LOG_PUT(report, "string", field);
        put_arg_string(object, field.key, load<char *>(ours));
    } else {
        LOG_PUT(report, get_ptype_name(field.ptype), field);
        put_arg_value(object, field.ptype, field.key, ours);
    }
}

// All fields of the command, or of one element of its array, into one object.
void put_fields(const report &report, uint32_t element)
{
    const size_t shift = size_t{element} * report.command.array.step;
    json_object *object = nullptr;
    for (const apconf_field &field : fields_of(report.command)) {
        if (!field.key || !apconf_field_applies(&report.command, &field, report.ours + shift)) continue;
        put_field(report, object, field, report.ours + shift + field.offset,
                  report.reference ? report.reference + shift + field.offset : nullptr);
    }
}

void put_elements(const report &report)
{
    for (uint32_t i = 0; i < report.command.array.count; i++) put_fields(report, i);
}

uint32_t option_of(const report &report)
{
    return load<uint32_t>(report.ours + report.command.option);
}

bool option_differs(const report &report)
{
    return value_differs(report, report.ours + report.command.option,
                         report.reference ? report.reference + report.command.option : nullptr, sizeof(uint32_t));
}

bool area_differs(const report &report)
{
    const apconf_array &area = report.command.array;
    const size_t size = size_t{area.step} * area.count;
    return !report.reference || memcmp(report.ours + area.offset, report.reference + area.offset, size) != 0;
}

void put_flag(const report &report)
{
    const uint32_t state = option_of(report);
    if (state == CONFIG_NEGATED)
        put_option(report, "no");
    else if (state == CONFIG_SET)
        create_argv_obj(report.result);
}

bool first_field_unset(const report &report)
{
    const apconf_field &first = report.command.fields[0];
    const char *const place = report.ours + first.offset;
    if (first.kind != APCONF_FIELD_VALUE) return !load<void *>(place);
    return all_bytes(place, static_cast<size_t>(param_types[first.ptype].size), '\xFF');
}

void put_packed_list(const report &report)
{
    const apconf_field &field = report.command.fields[0];
    const apconf_array &array = report.command.array;
    for (uint32_t i = 0; i < array.count; i++) {
        const size_t place = field.offset + size_t{i} * array.step;
        // Kept: the walk ends at the first unchanged entry, whatever follows it.
        if (!value_differs(report, report.ours + place, report.reference ? report.reference + place : nullptr,
                           array.step))
            return;
        put_fields(report, i);
    }
}

// The entries are in force by their count, not by a difference.
void put_counted(const report &report)
{
    const apconf_array &array = report.command.array;
    const uint32_t count = option_of(report) < array.count ? option_of(report) : array.count;
    for (uint32_t i = 0; i < count; i++) {
        json_object *const object = create_argv_obj(report.result);
        if (!object) return;
        for (const apconf_field &field : fields_of(report.command)) {
            LOG_PUT(report, get_ptype_name(field.ptype), field);
            put_arg_value(object, field.ptype, field.key, report.ours + field.offset + size_t{i} * array.step);
        }
    }
}

// Kept: whichever entry is asked for, the first one answers.
int put_selected(const report &report)
{
    if (!report.args) {
        put_elements(report);
        return 0;
    }
    const apconf_field &key = report.command.fields[0];
    uint32_t asked;
    const char *const text = fetch_arg_value(report.args, key.key, key.ptype, &asked, report.ctx);
    if (!text) return -1;
    LOG_AS(report.handler, LOG_INFO, "%s: %s", key.key, text);
    put_fields(report, 0);
    return 0;
}

// What the log says when an instance of a numbered package is entered; bss is silent.
const char *entered_as(apconf_scope scope)
{
    switch (scope) {
        case APCONF_SCOPE_RADIO:
            return "radio";
        case APCONF_SCOPE_ETHERNET:
            return "ethernet";
        case APCONF_SCOPE_FTP:
            return "ftpserver";
        default:
            return nullptr;
    }
}

int enter_record(const report &report)
{
    const apconf_command &command = report.command;
    const char *const key = command.fields[0].key;
    const auto scope = static_cast<apconf_scope>(command.scope);
    uint32_t index;
    const char *const text = fetch_arg_value(report.args, key, PTYPE_UINT, &index, report.ctx);
    if (!text) return -1;
    if (index >= command.array.count) {
        LOG_AS(report.handler, LOG_ERR, "%s '%s' is not from 0 to %d", key, text, command.array.count - 1);
        return -1;
    }
    *apconf_scope_slot(scope, lookup_of(report.ctx)) = index;
    if (entered_as(scope)) LOG_AS(report.handler, LOG_INFO, "enter %s, %s: %s", entered_as(scope), key, text);
    return 0;
}

void enumerate_records(const report &report)
{
    const apconf_command &command = report.command;
    const char *const key = command.fields[0].key;
    for (uint32_t i = 0; i < command.array.count; i++) {
        const size_t place = command.array.offset + size_t{i} * command.array.step;
        if (memcmp(report.ours + place, report.reference + place, command.array.step) == 0) continue;
        json_object *const object = create_argv_obj(report.result);
        if (!object) return;
        put_arg_value(object, PTYPE_UINT, key, &i);
        if (command.option == APCONF_NO_OPTION) continue;
        const uint32_t state = load<uint32_t>(report.ours + command.option + size_t{i} * command.array.step);
        if (state != CONFIG_NEGATED && state != BSS_RECREATE) continue;
        put_arg_string(object, ".OPT", "no");
        if (state != BSS_RECREATE) continue;
        json_object *const created_again = create_argv_obj(report.result);
        if (created_again) put_arg_value(created_again, PTYPE_UINT, key, &i);
    }
}

// Position of the first element whose key is what the argument says, or the count.
uint32_t find_element(const report &report, const list_view &list, const void *wanted)
{
    const apconf_field &key = report.command.fields[0];
    const uint32_t size = apconf_scope_size(static_cast<apconf_scope>(report.command.scope));
    for (uint32_t i = 0; i < list.count(); i++) {
        const char *const place = list.element(i, size) + key.offset;
        if (key.kind == APCONF_FIELD_VALUE) {
            if (load<uint32_t>(place) == *static_cast<const uint32_t *>(wanted)) return i;
        } else {
            const char *const name = load<char *>(place);
            if (name && strcmp(name, *static_cast<const char *const *>(wanted)) == 0) return i;
        }
    }
    return list.count();
}

int enter_element(const report &report)
{
    const apconf_field &key = report.command.fields[0];
    const auto scope = static_cast<apconf_scope>(report.command.scope);
    const list_view list(report.ours + report.command.array.offset);
    if (!list.count() && scope != APCONF_SCOPE_IP_ACL) return 0;
    union {
        uint32_t number;
        const char *text;
    } wanted;
    if (!fetch_arg_value(report.args, key.key, key.ptype, &wanted, report.ctx)) return -1;
    const uint32_t position = find_element(report, list, &wanted);
    if (position == list.count()) {
        if (key.kind == APCONF_FIELD_VALUE)
            LOG_AS(report.handler, LOG_ERR, "not find %s: %d", key.key, static_cast<int>(wanted.number));
        else
            LOG_AS(report.handler, LOG_ERR, "not find %s: %s", key.key, wanted.text);
        return -1;
    }
    *apconf_scope_slot(scope, lookup_of(report.ctx)) = position;
    return 0;
}

// Gives the reference block a list of unset elements as long as root's, so that everything in root's counts as changed.
bool rebuild_reference(const report &report, const list_view &list)
{
    const auto scope = static_cast<apconf_scope>(report.command.scope);
    const uint32_t size = apconf_scope_size(scope);
    char *elements = nullptr;
    if (list.count()) {
        size_t bytes;
        if (!__builtin_mul_overflow(size_t{list.count()}, size, &bytes)) elements = static_cast<char *>(malloc(bytes));
        if (!elements) {
            LOG_AS(report.handler, LOG_ERR, "malloc %d %s failed", static_cast<int>(list.count()), report.command.name);
            return false;
        }
        for (uint32_t i = 0; i < list.count(); i++) apconf_unset_record(scope, elements + size_t{i} * size);
    }
    list_view reference(const_cast<char *>(report.reference) + report.command.array.offset);
    void *const old = reference.list();
    reference.store(elements, static_cast<int32_t>(list.count()));
    if (old != list.list()) free(old);  // a list that both blocks share is root's from now on
    return true;
}

int enumerate_list(const report &report)
{
    const apconf_field &key = report.command.fields[0];
    const auto scope = static_cast<apconf_scope>(report.command.scope);
    const list_view list(report.ours + report.command.array.offset);
    if (scope != APCONF_SCOPE_IP_ACL && !rebuild_reference(report, list)) return -1;
    for (uint32_t i = 0; i < list.count(); i++) {
        const char *const place = list.element(i, apconf_scope_size(scope)) + key.offset;
        json_object *const object = create_argv_obj(report.result);
        if (!object) return 0;
        if (key.kind == APCONF_FIELD_VALUE)
            put_arg_value(object, key.ptype, key.key, place);
        else if (const char *const name = load<char *>(place))
            put_arg_string(object, key.key, name);
    }
    return 0;
}

int report_in_manner(const report &report)
{
    switch (report.command.variant) {
        case APCONF_NEGATABLE_GROUP:
            if (load<uint32_t>(report.ours + report.command.fields[0].offset) == CONFIG_NEGATED)
                put_option(report, "no");
            else
                put_fields(report, 0);
            return 0;
        case APCONF_UNSET_MEANS_NO:
            if (first_field_unset(report))
                put_option(report, "no");
            else
                put_fields(report, 0);
            return 0;
        case APCONF_GROUP:
            put_fields(report, 0);
            return 0;
        case APCONF_FLAG:
            put_flag(report);
            return 0;
        case APCONF_FIXED_ARRAY:
            put_elements(report);
            return 0;
        case APCONF_RESET_ON_CHANGE:
            if (option_differs(report)) put_option(report, "noall");
            put_elements(report);
            return 0;
        case APCONF_RESET_ON_DIFFERENCE:
            if (option_of(report) != CONFIG_NEGATED && !area_differs(report)) return 0;
            put_option(report, "noall");
            put_elements(report);
            return 0;
        case APCONF_ALWAYS_RESET:
            put_option(report, "noall");
            put_elements(report);
            return 0;
        case APCONF_ONLY_WHEN_REPLACED:
            if (option_of(report) != LIST_REPLACED) return 0;
            put_option(report, "noall");
            put_elements(report);
            return 0;
        case APCONF_PACKED_LIST:
            if (option_of(report) == LIST_REPLACED) put_option(report, "noall");
            put_packed_list(report);
            return 0;
        case APCONF_COUNTED_ARRAY:
            put_counted(report);
            return 0;
        case APCONF_SELECTED_ENTRY:
            return put_selected(report);
        case APCONF_PACKAGE_NODE:
            if (area_differs(report)) create_argv_obj(report.result);
            return 0;
        case APCONF_UNCONDITIONAL_NODE:
            create_argv_obj(report.result);
            return 0;
        case APCONF_RECORD_NODE:
            if (report.args) return enter_record(report);
            enumerate_records(report);
            return 0;
        case APCONF_LIST_NODE:
            return report.args ? enter_element(report) : enumerate_list(report);
        default:  // APCONF_NEVER_REPORTED. Kept: peers do not expect the command.
            return 0;
    }
}

bool is_iterating(const apconf_command &command)
{
    return command.variant == APCONF_RECORD_NODE || command.variant == APCONF_LIST_NODE;
}

}  // namespace

int report_changes(const apconf_command &command, const char *handler, json_object *args, json_object **result,
                   cpath_ctx *ctx)
{
    auto scope = static_cast<apconf_scope>(command.scope);
    const bool iterating = is_iterating(command);
    if (iterating) scope = apconf_enclosing_scope(scope);
    if (!lookup_of(ctx) && (iterating || scope != APCONF_SCOPE_GLOBAL)) {
        LOG_AS(handler, LOG_ERR, "no lookup context");
        return -1;
    }
    auto *const ours = static_cast<char *>(apconf_scope_record(scope, &root, lookup_of(ctx)));
    if (!ours) {
        // A list below which nothing stands has nothing to report; a numbered record is always there.
        if (scope == APCONF_SCOPE_VLAN || scope == APCONF_SCOPE_POOL || scope == APCONF_SCOPE_IP_ACL) return 0;
        LOG_AS(handler, LOG_ERR, "no such instance of '%s'", command.name);
        return -1;
    }
    const auto *const reference = static_cast<const char *>(apconf_scope_record(scope, &mirror_root, lookup_of(ctx)));
    return report_in_manner({command, handler, args, result, ctx, ours, reference});
}

}  // namespace apconf

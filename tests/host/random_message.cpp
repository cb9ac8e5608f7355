#include "host/random_message.h"

#include <algorithm>
#include <set>
#include <utility>

#include "host/block.h"
#include "host/expectation.h"

namespace apconf_test
{

namespace
{

const apconf_field *chosen_row(const apconf_command &command, const std::string &key, const std::string &selected)
{
    const apconf_field *found = nullptr;
    for (unsigned i = 0; i < command.field_count; ++i) {
        const apconf_field &field = command.fields[i];
        if (!field.key || key != field.key) continue;
        const bool holds = field.when == APCONF_WHEN_ALWAYS || (field.when == APCONF_WHEN_IP && selected == "ip") ||
                           (field.when == APCONF_WHEN_DOMAIN && selected == "domain") ||
                           (field.when == APCONF_WHEN_HEX && selected == "hex") ||
                           (field.when == APCONF_WHEN_PLAIN && selected != "hex");
        if (holds) found = &field;
    }
    return found;
}

template <typename Range>
std::pair<uint64_t, uint64_t> limits(const void *range, uint64_t most)
{
    if (!range) return {0, most};
    return {static_cast<const Range *>(range)->min, static_cast<const Range *>(range)->max};
}

void add(json_object *object, const char *key, const std::string &text)
{
    json_object_object_add(object, key, json_object_new_string_len(text.data(), static_cast<int>(text.size())));
}

}  // namespace

apconf_host::json_ptr random_message::make()
{
    apconf_host::json_ptr message(json_object_new_object());
    add(message.get(), "ACTION", "set");
    json_object_object_add(message.get(), "config", package(lib_pkg_root[0]));
    return message;
}

json_object *random_message::package(const cmd_node &node)
{
    json_object *object = json_object_new_object();
    for (const cmd_node *child = node.children; child->name; ++child) {
        const apconf_command &described = *apconf_find_command(child);
        json_object *content = nullptr;
        if (apconf_host::is_iterating(described))
            content = instances(*child, described);
        else if (child->children)
            content = package(*child);
        else if (chance(density_) && described.variant != APCONF_NEVER_REPORTED)
            content = command(*child, described);
        if (content) json_object_object_add(object, child->name, content);
    }
    return object;
}

json_object *random_message::instances(const cmd_node &node, const apconf_command &described)
{
    const apconf_field &key = described.fields[0];
    std::set<std::string> used;
    json_object *array = json_object_new_array();
    for (uint64_t count = number(0, 3); count > 0; --count) {
        const std::string chosen = index(node, described);
        if (!used.insert(chosen).second) continue;
        json_object *instance = package(node);
        json_object *named = json_object_new_object();
        add(named, key.key, chosen);
        json_object_object_add(instance, "INDEX", named);
        // INDEX first, as reports have it; members keep the order in which they were added.
        json_object *ordered = json_object_new_object();
        json_object_object_add(ordered, "INDEX", json_object_get(named));
        json_object_object_foreach(instance, name, value)
        {
            if (std::string(name) != "INDEX") json_object_object_add(ordered, name, json_object_get(value));
        }
        json_object_put(instance);
        json_object_array_add(array, ordered);
    }
    if (described.variant == APCONF_LIST_NODE && json_object_array_length(array) == 1)
        fill_if_bare(node, json_object_array_get_idx(array, 0));
    return array;
}

// No batch can carry a single element of a list in which nothing is set.
void random_message::fill_if_bare(const cmd_node &node, json_object *instance)
{
    if (!is_null_package_obj(instance)) return;
    const unsigned density = std::exchange(density_, 100U);
    const apconf_host::json_ptr content(package(node));
    density_ = density;
    json_object_object_foreach(content.get(), name, value)
    {
        json_object_object_add(instance, name, json_object_get(value));
    }
}

std::string random_message::index(const cmd_node &node, const apconf_command &described)
{
    if (described.variant != APCONF_RECORD_NODE) return single_value(node, described.fields[0]);
    return std::to_string(number(0, described.array.count - 1U));
}

json_object *random_message::command(const cmd_node &node, const apconf_command &described)
{
    made_.insert(&node);
    switch (described.variant) {
        case APCONF_FLAG:
        case APCONF_NEGATABLE_GROUP:
            if (chance(40)) {
                json_object *negated = json_object_new_object();
                add(negated, ".OPT", "no");
                return negated;
            }
            return arguments(node, described);
        case APCONF_GROUP:
        case APCONF_UNSET_MEANS_NO:
            return arguments(node, described);
        default:
            return elements(node, described);
    }
}

json_object *random_message::elements(const cmd_node &node, const apconf_command &described)
{
    json_object *array = json_object_new_array();
    const bool has_noall = described.variant != APCONF_FIXED_ARRAY && described.variant != APCONF_SELECTED_ENTRY &&
                           described.variant != APCONF_COUNTED_ARRAY;
    if (has_noall && chance(40)) {
        json_object *cleared = json_object_new_object();
        add(cleared, ".OPT", "noall");
        json_object_array_add(array, cleared);
    }
    const uint64_t room = std::min<uint64_t>(apconf_host::capacity(described, node), 6);
    std::set<std::string> indexes;
    for (uint64_t count = number(1, room); count > 0; --count) {
        json_object *element = arguments(node, described);
        for (unsigned i = 0; i < described.field_count; ++i)
            if (described.fields[i].flags & APCONF_FIELD_INDEX &&
                !indexes.insert(json_object_get_string(apconf_host::member(element, described.fields[i].key))).second) {
                json_object_put(element);
                element = nullptr;
                break;
            }
        if (element) json_object_array_add(array, element);
    }
    return array;
}

json_object *random_message::arguments(const cmd_node &node, const apconf_command &described)
{
    json_object *object = json_object_new_object();
    std::string selected;
    for (unsigned i = 0; i < described.field_count; ++i) {
        const apconf_field &field = described.fields[i];
        if (field.ptype != PTYPE_ADDR_TYPE && field.ptype != PTYPE_STRING_FORMAT) continue;
        selected = single_value(node, field);
        add(object, field.key, selected);
    }
    for (unsigned i = 0; i < described.field_count; ++i) {
        const char *key = described.fields[i].key;
        if (!key || apconf_host::member(object, key)) continue;
        const apconf_field *field = chosen_row(described, key, selected);
        if (field) json_object_object_add(object, key, value(node, *field));
    }
    return object;
}

json_object *random_message::some_arguments(const cmd_node &node, const apconf_command &described)
{
    json_object *object = arguments(node, described);
    const bool first_needed = described.variant == APCONF_UNSET_MEANS_NO || described.variant == APCONF_NEGATABLE_GROUP;
    for (unsigned i = 0; i < described.field_count; ++i) {
        const apconf_field &field = described.fields[i];
        const bool selects = field.ptype == PTYPE_ADDR_TYPE || field.ptype == PTYPE_STRING_FORMAT;
        // A text that stays would have to fit the new format.
        const bool formatted = field.when == APCONF_WHEN_HEX || field.when == APCONF_WHEN_PLAIN;
        const bool needed = selects || formatted || described.variant == APCONF_COUNTED_ARRAY ||
                            (first_needed && i == 0) || (field.flags & APCONF_FIELD_INDEX) ||
                            json_object_object_length(object) == 1;
        if (field.key && !needed && chance(50)) json_object_object_del(object, field.key);
    }
    return object;
}

json_object *random_message::value(const cmd_node &node, const apconf_field &field)
{
    if (field.kind == APCONF_FIELD_OBJECT)
        return json_tokener_parse("{\"servers\":[{\"name\":\"a/b\",\"port\":5060}],\"on\":true}");
    if (field.kind == APCONF_FIELD_VALUES || field.kind == APCONF_FIELD_LIST) {
        json_object *array = json_object_new_array();
        for (uint64_t count = number(1, 5); count > 0; --count)
            json_object_array_add(array, json_object_new_string(single_value(node, field).c_str()));
        return array;
    }
    const std::string single = single_value(node, field);
    return json_object_new_string_len(single.data(), static_cast<int>(single.size()));
}

std::string random_message::text(uint32_t ptype, const void *range)
{
    static const std::string plain = "abcdefXYZ0189 .:-_/\\\"'<&%{}\xC3\xA9";
    static const std::string hex = "0123456789abcdefABCDEF";
    const auto [least, most] = limits<length_range>(range, 40);
    const std::string &letters = ptype == PTYPE_HEX_STR ? hex : plain;
    std::string result;
    // The converter back to text measures a HEX_STR with its end; one less keeps both directions inside the range.
    for (uint64_t left = number(std::max<uint64_t>(least, 1), std::max(least, std::min<uint64_t>(most, 40))); left;
         --left)
        result += letters[static_cast<size_t>(number(0, letters.size() - 1))];
    return result;
}

std::string random_message::single_value(const cmd_node &node, const apconf_field &field)
{
    const void *range = apconf_host::range_of(node, field);
    const auto in = [this](std::pair<uint64_t, uint64_t> limit, uint64_t unset) {
        uint64_t drawn = number(limit.first, limit.second);
        // Now and then the edges, where mistakes live.
        if (chance(20)) drawn = chance(50) ? limit.first : limit.second;
        return std::to_string(drawn == unset ? limit.first : drawn);
    };
    switch (field.ptype) {
        case PTYPE_SINT: {
            const auto *limit = static_cast<const sint_range *>(range);
            const int64_t least = limit ? limit->min : INT32_MIN;
            const int64_t most = limit ? limit->max : INT32_MAX;
            const int64_t drawn = std::uniform_int_distribution<int64_t>(least, most)(source_);
            return std::to_string(drawn == -1 ? least : drawn);
        }
        case PTYPE_UINT8:
            return in(limits<uint8_range>(range, UINT8_MAX), UINT8_MAX);
        case PTYPE_UINT16:
            return in(limits<uint16_range>(range, UINT16_MAX), UINT16_MAX);
        case PTYPE_UINT:
            return in(limits<uint_range>(range, UINT32_MAX), UINT32_MAX);
        case PTYPE_UINT64:
            return in(limits<uint64_range>(range, UINT64_MAX), UINT64_MAX);
        case PTYPE_STRING:
        case PTYPE_HEX_STR:
            return text(field.ptype, range);
        case PTYPE_IPV4:
            return "10." + std::to_string(number(0, 255)) + "." + std::to_string(number(0, 255)) + "." +
                   std::to_string(number(0, 255));
        case PTYPE_IPV4_MASK:
            return "172." + std::to_string(number(0, 255)) + ".0." + std::to_string(number(0, 255)) + "/" +
                   std::to_string(number(0, 32));
        case PTYPE_MAC_ADDR: {
            char mac[18];
            snprintf(mac, sizeof mac, "02:%02X:%02X:00:FF:%02X", static_cast<unsigned>(number(0, 255)),
                     static_cast<unsigned>(number(0, 255)), static_cast<unsigned>(number(0, 255)));
            return mac;
        }
        case PTYPE_TIME_HHMMSS:
            return std::to_string(number(0, 23)) + ":" + std::to_string(number(0, 59)) + ":" +
                   std::to_string(number(0, 59));
        default: {
            const auto tokens = apconf_host::tokens_of(field.ptype);
            return tokens.at(static_cast<size_t>(number(0, tokens.size() - 1)));
        }
    }
}

}  // namespace apconf_test

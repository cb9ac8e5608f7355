// Commands differ by the manner in which they are reported: some remember that they were removed or cleared, and cannot
// be brought back to never having been set.
#include "command_difference.h"

#include <algorithm>
#include <cstring>

#include "json_build.h"

namespace apconf_host
{

namespace
{

change impossible()
{
    return std::nullopt;
}

change nothing()
{
    return json_ptr();
}

bool is_object(json_object *value)
{
    return json_object_is_type(value, json_type_object) != 0;
}

bool asks_for(json_object *object, const char *word)
{
    return scalar_text(member(object, ".OPT")) == word;
}

// Every key of the other object is in this one, whatever its value.
bool has_keys_of(json_object *object, json_object *other)
{
    if (!is_object(object) || !is_object(other)) return false;
    json_object_object_foreach(other, key, value)
    {
        (void)value;
        if (!json_object_object_get_ex(object, key, nullptr)) return false;
    }
    return true;
}

bool holds_object(const apconf_command &command)
{
    return std::any_of(command.fields, command.fields + command.field_count,
                       [](const apconf_field &field) { return field.kind == APCONF_FIELD_OBJECT; });
}

change group_change(const apconf_command &command, json_object *from, json_object *to)
{
    const bool was_negated = asks_for(from, "no");
    if (!to) {
        if (command.variant == APCONF_NEGATABLE_GROUP) return impossible();  // a removal is remembered
        return was_negated ? nothing() : removal("no");
    }
    if (asks_for(to, "no")) return shared(to);
    // Objects within a command are compared by their content, but reported in their order.
    const bool overwrites = !from || was_negated || (has_keys_of(to, from) && !holds_object(command));
    const bool needs_first_key = command.variant == APCONF_NEGATABLE_GROUP && (was_negated || !overwrites);
    if (needs_first_key && !member(to, command.fields[0].key)) return impossible();
    if (overwrites) return shared(to);
    std::vector<json_ptr> list;
    list.push_back(removal("no"));
    list.push_back(shared(to));
    return as_value(std::move(list));
}

// What a report says about a list: whether it opens with "noall", and the entries.
struct list_report {
    explicit list_report(json_object *value) : entries(elements_of(value))
    {
        cleared = !entries.empty() && asks_for(entries.front(), "noall");
        if (cleared) entries.erase(entries.begin());
    }

    bool cleared = false;
    elements entries;
};

bool contains(const elements &list, json_object *entry)
{
    return std::any_of(list.begin(), list.end(), [entry](json_object *other) { return same(entry, other); });
}

// Removing `entry` by its keys would remove the other one with it.
bool takes_along(json_object *entry, json_object *other)
{
    json_object_object_foreach(entry, key, value)
    {
        if (!json_object_equal(value, member(other, key))) return false;
    }
    return true;
}

// The entries that stay are the first of the new list, in its order, and can be told from those that go.
bool only_loses_and_gains(const elements &stay, const elements &go, const elements &to)
{
    if (stay.size() > to.size()) return false;
    for (size_t i = 0; i < stay.size(); ++i)
        if (!same(stay[i], to[i])) return false;
    return std::none_of(go.begin(), go.end(), [&stay](json_object *gone) {
        return std::any_of(stay.begin(), stay.end(), [gone](json_object *kept) { return takes_along(gone, kept); });
    });
}

json_ptr removal_of(json_object *entry)
{
    json_ptr object = removal("no");
    json_object_object_foreach(entry, key, value)
    {
        add(object.get(), key, shared(value));
    }
    return object;
}

json_ptr entry_by_entry(const elements &go, const elements &come)
{
    std::vector<json_ptr> list;
    for (json_object *entry : go) list.push_back(removal_of(entry));
    for (json_object *entry : come) list.push_back(shared(entry));
    return as_value(std::move(list));
}

json_ptr cleared_and_filled(const elements &entries)
{
    std::vector<json_ptr> list;
    list.push_back(removal("noall"));
    for (json_object *entry : entries) list.push_back(shared(entry));
    return as_value(std::move(list));
}

// Whether clearing a list is remembered and reported as "noall" from then on.
bool remembers_clearing(const apconf_command &command)
{
    switch (command.variant) {
        case APCONF_RESET_ON_CHANGE:
        case APCONF_RESET_ON_DIFFERENCE:
        case APCONF_ONLY_WHEN_REPLACED:
        case APCONF_PACKED_LIST:
            return true;
        default:
            return false;
    }
}

// Entry by entry the mark of a clearing stays as it is. One variant reports it with every entry, and sets it when the
// last one goes.
bool keeps_mark(const apconf_command &command, const list_report &from, const list_report &to)
{
    if (command.variant == APCONF_RESET_ON_DIFFERENCE) return !to.entries.empty();
    return from.cleared == to.cleared || command.variant == APCONF_ALWAYS_RESET;
}

change list_change(const apconf_command &command, json_object *from_value, json_object *to_value)
{
    const list_report from(from_value);
    const list_report to(to_value);
    elements stay;
    elements go;
    for (json_object *entry : from.entries) (contains(to.entries, entry) ? stay : go).push_back(entry);
    const bool keeps = keeps_mark(command, from, to);
    if (keeps && only_loses_and_gains(stay, go, to.entries) && (!stay.empty() || go.empty())) {
        const auto first_new = to.entries.begin() + static_cast<std::ptrdiff_t>(stay.size());
        return entry_by_entry(go, {first_new, to.entries.end()});
    }
    if (to.cleared || !remembers_clearing(command)) return cleared_and_filled(to.entries);
    if (keeps) return entry_by_entry(from.entries, to.entries);
    return impossible();
}

}  // namespace

change command_change(const apconf_command &command, json_object *from, json_object *to)
{
    switch (command.variant) {
        case APCONF_GROUP:
        case APCONF_NEGATABLE_GROUP:
        case APCONF_UNSET_MEANS_NO:
            return group_change(command, from, to);
        case APCONF_FLAG:
            return to ? change(shared(to)) : impossible();  // a removal is remembered
        case APCONF_NEVER_REPORTED:
            return nothing();
        default:
            return list_change(command, from, to);
    }
}

elements elements_of(json_object *value)
{
    elements list;
    int cursor = 0;
    while (json_object *element = get_json_obj(value, &cursor))
        if (is_object(element)) list.push_back(element);
    return list;
}

json_ptr as_value(std::vector<json_ptr> list)
{
    if (list.empty()) return nullptr;
    if (list.size() == 1) return std::move(list.front());
    json_ptr array = made(json_object_new_array());
    for (json_ptr &element : list) append(array.get(), std::move(element));
    return array;
}

bool same(json_object *one, json_object *other)
{
    return one == other || (one && other && strcmp(to_line(one), to_line(other)) == 0);
}

json_ptr removal(const char *word)
{
    json_ptr object = new_object();
    add(object.get(), ".OPT", new_text(word));
    return object;
}

}  // namespace apconf_host

// What set and no do to commands, by the manner in which each is reported: what is stored here must be reported so that
// whoever applies the report stores the same.
#include <algorithm>
#include <cstring>
#include <optional>

#include "block.h"
#include "call.h"
#include "expectation.h"
#include "json.h"

namespace apconf_host
{

namespace
{

bool is_negated(const apconf_command &command, const element &at)
{
    const uint32_t mark = CONFIG_NEGATED;
    return memcmp(at.stored + command.fields[0].offset, &mark, sizeof mark) == 0;
}

bool is_array(const apconf_command &command)
{
    switch (command.variant) {
        case APCONF_FIXED_ARRAY:
        case APCONF_RESET_ON_CHANGE:
        case APCONF_RESET_ON_DIFFERENCE:
        case APCONF_ALWAYS_RESET:
        case APCONF_ONLY_WHEN_REPLACED:
        case APCONF_PACKED_LIST:
        case APCONF_SELECTED_ENTRY:
        case APCONF_COUNTED_ARRAY:
            return true;
        default:
            return false;
    }
}

// Elements in use, up to the last one that holds anything.
size_t used_elements(const call &call, char *record)
{
    if (call.command.variant == APCONF_COUNTED_ARRAY)
        return std::min<size_t>(option_word(call.command, record), call.command.array.count);
    size_t used = call.command.array.count;
    while (used > 0 && !any_set(call.command, element_at(call.command, record, used - 1))) --used;
    return used;
}

const argument *index_argument(const std::vector<argument> &arguments)
{
    for (const argument &argument : arguments)
        if (argument.field->flags & APCONF_FIELD_INDEX) return &argument;
    return nullptr;
}

const apconf_field *index_field(const apconf_command &command)
{
    for (unsigned i = 0; i < command.field_count; ++i)
        if (command.fields[i].flags & APCONF_FIELD_INDEX) return &command.fields[i];
    return nullptr;
}

bool holds_all(const element &at, const std::vector<argument> &arguments)
{
    return std::all_of(arguments.begin(), arguments.end(),
                       [&at](const argument &argument) { return holds(at, argument); });
}

// The element is exactly these arguments and nothing else.
bool is_identical(const call &call, const element &at, const std::vector<argument> &arguments)
{
    const apconf_command &command = call.command;
    for (unsigned i = 0; i < command.field_count; ++i) {
        const bool given = std::any_of(arguments.begin(), arguments.end(),
                                       [&](const argument &argument) { return argument.field == &command.fields[i]; });
        if (!given && is_set(command.fields[i], at)) return false;
    }
    return holds_all(at, arguments);
}

// Marks in the option word that go with a list which has been given elements.
void mark_list_set(const apconf_command &command, char *record)
{
    if (command.variant == APCONF_ONLY_WHEN_REPLACED) set_option(command, record, LIST_REPLACED);
    if (command.variant == APCONF_RESET_ON_DIFFERENCE) set_option(command, record, unset_option(command));
}

// The word that makes a cleared list's report tell the reader to clear it too.
std::optional<uint32_t> cleared_mark(const apconf_command &command)
{
    switch (command.variant) {
        case APCONF_RESET_ON_CHANGE:
        case APCONF_ONLY_WHEN_REPLACED:
        case APCONF_PACKED_LIST:
            return LIST_REPLACED;
        case APCONF_RESET_ON_DIFFERENCE:
            return CONFIG_NEGATED;
        default:
            return std::nullopt;
    }
}

int set_element(const call &call, char *record, const std::vector<argument> &arguments)
{
    const apconf_command &command = call.command;
    const size_t used = used_elements(call, record);
    const size_t room = capacity(command, call.node);
    const argument *index = index_argument(arguments);
    size_t place = room;
    for (size_t i = 0; i < used; ++i) {
        const element at = element_at(command, record, i);
        if (is_identical(call, at, arguments)) return call::no_change;
        if (index && holds(at, *index)) place = i;
        if (place == room && command.variant != APCONF_COUNTED_ARRAY && !any_set(command, at)) place = i;
    }
    if (place == room && used < room) place = used;
    if (place >= room) return call.refuse("", "", "at most " + std::to_string(room) + " entries; remove one first");
    const element at = element_at(command, record, place);
    unset_all(command, at);
    write_arguments(command, at, arguments);
    if (command.variant == APCONF_COUNTED_ARRAY) set_option(command, record, static_cast<uint32_t>(used + 1));
    mark_list_set(command, record);
    return call.changed();
}

// The keys without which what is given could not be reported.
int check_needed(const call &call, const element &at, const std::vector<argument> &arguments)
{
    const apconf_command &command = call.command;
    const auto given = [&arguments](const apconf_field &field) {
        return std::any_of(arguments.begin(), arguments.end(),
                           [&field](const argument &argument) { return strcmp(argument.field->key, field.key) == 0; });
    };
    const auto need = [&call](const apconf_field &field) {
        return call.refuse(field.key, "", accepted_value(call.node, field) + ", which must be given");
    };
    if (arguments.empty()) return call.refuse("", "", accepted_keys(command));
    if (const apconf_field *index = is_array(command) ? index_field(command) : nullptr; index && !given(*index))
        return need(*index);
    if (command.variant == APCONF_UNSET_MEANS_NO && !is_set(command.fields[0], at) && !given(command.fields[0]))
        return need(command.fields[0]);
    if (command.variant == APCONF_NEGATABLE_GROUP && is_negated(command, at) && !given(command.fields[0]))
        return need(command.fields[0]);
    if (command.variant == APCONF_COUNTED_ARRAY)
        for (unsigned i = 0; i < command.field_count; ++i)
            if (command.fields[i].key && !given(command.fields[i])) return need(command.fields[i]);
    return call::done;
}

int set_group(const call &call, const element &at, const std::vector<argument> &arguments)
{
    if (holds_all(at, arguments)) return call::no_change;
    write_arguments(call.command, at, arguments);
    return call.changed();
}

int set_flag(const call &call, char *record, uint32_t state)
{
    if (option_word(call.command, record) == state) return call::no_change;
    set_option(call.command, record, state);
    return call.changed();
}

// Of what is unset these commands report the removal, also when a batch has not set it before; but only with their BSS.
int remove_reported(const call &call, char *record)
{
    bool changed = reset_command(call.command, record);
    if (call.report_bss()) changed = true;
    return changed ? call.changed() : call::no_change;
}

int clear_list(const call &call, char *record)
{
    if (reports_removal(call.command)) return remove_reported(call, record);
    const auto mark = cleared_mark(call.command);
    const bool marked = !mark || option_word(call.command, record) == *mark;
    const bool had = used_elements(call, record) > 0;
    if (!had && marked) return mark ? call::no_change : call.nothing_to_remove();
    reset_command(call.command, record);
    if (mark) set_option(call.command, record, *mark);
    if (call.command.variant == APCONF_COUNTED_ARRAY) set_option(call.command, record, 0);
    return call.changed();
}

int remove_matching(const call &call, char *record, const std::vector<argument> &arguments)
{
    const apconf_command &command = call.command;
    size_t used = used_elements(call, record);
    const size_t before = used;
    for (size_t i = used; i-- > 0;)
        if (any_set(command, element_at(command, record, i)) && holds_all(element_at(command, record, i), arguments))
            remove_element(command, record, i, used--);
    if (used == before) return call.nothing_to_remove();
    if (command.variant == APCONF_COUNTED_ARRAY) set_option(command, record, static_cast<uint32_t>(used));
    // A batch replaces these lists whole: that it leaves nothing in one must be reported too.
    if (command.variant == APCONF_ONLY_WHEN_REPLACED) set_option(command, record, LIST_REPLACED);
    if (command.variant == APCONF_RESET_ON_DIFFERENCE && used == 0) set_option(command, record, CONFIG_NEGATED);
    if (command.variant == APCONF_ALWAYS_RESET) call.report_bss();
    return call.changed();
}

int remove_group(const call &call, char *record, const std::vector<argument> &arguments)
{
    const apconf_command &command = call.command;
    const element at = element_at(command, record);
    const bool any = any_set(command, at);
    if (!arguments.empty() && (!any || !holds_all(at, arguments))) return call.nothing_to_remove();
    if (command.variant == APCONF_NEGATABLE_GROUP) {
        if (is_negated(command, at)) return call::no_change;
        unset_all(command, at);
        const uint32_t mark = CONFIG_NEGATED;
        memcpy(at.stored + command.fields[0].offset, &mark, sizeof mark);
        return call.changed();
    }
    if (reports_removal(command)) return remove_reported(call, record);
    if (!any) return call.nothing_to_remove();
    unset_all(command, at);
    return call.changed();
}

int set_elements(const call &call, char *record, const std::vector<argument> &arguments)
{
    if (call.command.variant == APCONF_FLAG) return set_flag(call, record, CONFIG_SET);
    if (call.command.variant == APCONF_NEVER_REPORTED) return call::no_change;
    const element first = element_at(call.command, record);
    if (check_needed(call, first, arguments) != call::done) return call::refused;
    return is_array(call.command) ? set_element(call, record, arguments) : set_group(call, first, arguments);
}

int remove_elements(const call &call, char *record, const std::vector<argument> &arguments)
{
    if (call.command.variant == APCONF_FLAG) return set_flag(call, record, CONFIG_NEGATED);
    if (call.command.variant == APCONF_NEVER_REPORTED) return call::no_change;
    if (!is_array(call.command)) return remove_group(call, record, arguments);
    return arguments.empty() ? clear_list(call, record) : remove_matching(call, record, arguments);
}

// One argument object, read: what it asks for.
struct step {
    bool removes;
    std::vector<argument> arguments;
};

std::optional<step> read_step(const call &call, char *record, json_object *args)
{
    const bool clears = scalar_text(member(args, ".OPT")) == "noall";
    if (!args || clears) return step{clears, {}};
    auto arguments =
        read_arguments({call.command, call.node, call.path, call.keys_of_path(), element_at(call.command, record)},
                       args, call.message.result);
    if (!arguments) return std::nullopt;
    return step{is_removal(args), std::move(*arguments)};
}

// All objects are read before the first is carried out.
std::optional<std::vector<step>> read_steps(const call &call, char *record, json_object *args)
{
    std::vector<step> steps;
    bool all_read = true;
    const size_t count = json_object_is_type(args, json_type_array) ? json_object_array_length(args) : 1;
    for (size_t i = 0; i < count; ++i) {
        json_object *single = json_object_is_type(args, json_type_array) ? json_object_array_get_idx(args, i) : args;
        if (!single && args) continue;
        auto step = read_step(call, record, single);
        all_read = all_read && step;
        if (step) steps.push_back(std::move(*step));
    }
    if (!all_read) return std::nullopt;
    return steps;
}

int carry_out(const call &call, char *record, const std::vector<step> &steps)
{
    int result = call::no_change;
    for (const step &step : steps) {
        const int answer =
            step.removes ? remove_elements(call, record, step.arguments) : set_elements(call, record, step.arguments);
        if (answer == call::refused) return answer;
        if (answer == call::done) result = answer;
    }
    return result;
}

}  // namespace

int set_command(const call &call, json_object *args)
{
    char *record = call.record();
    if (!record) return call.refuse("", "", "an instance that exists");
    const auto steps = read_steps(call, record, args);
    return steps ? carry_out(call, record, *steps) : call::refused;
}

int remove_command(const call &call, json_object *args)
{
    char *record = call.record();
    if (!record) return call.refuse("", "", "an instance that exists");
    const auto step = read_step(call, record, args);
    return step ? remove_elements(call, record, step->arguments) : call::refused;
}

}  // namespace apconf_host

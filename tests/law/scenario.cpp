// What each manner of command is tried with, and what a batch can and cannot say of it.
#include "law/scenario.h"

#include <algorithm>
#include <cstring>
#include <set>

#include "host/block.h"

namespace apconf_test
{

using apconf_host::json_ptr;

namespace
{

constexpr size_t instances_tried = 3;
constexpr unsigned all = 100;

// A removal without arguments that a batch tells the server, also when the batch has not set what is removed.
bool carries_removal(const apconf_command &command)
{
    switch (command.variant) {
        case APCONF_FLAG:
        case APCONF_NEGATABLE_GROUP:
        case APCONF_UNSET_MEANS_NO:
        case APCONF_RESET_ON_CHANGE:
        case APCONF_RESET_ON_DIFFERENCE:
        case APCONF_ALWAYS_RESET:
        case APCONF_ONLY_WHEN_REPLACED:
        case APCONF_PACKED_LIST:
            return true;
        default:
            return (command.scope == APCONF_SCOPE_BSS && command.variant == APCONF_RECORD_NODE) ||
                   strcmp(command.name, "passpoint_anqp") == 0;  // all of it is reported when it is unset
    }
}

// The key that an element of a list goes by; empty: there is none.
std::string index_of(const apconf_command &command, json_object *element)
{
    for (unsigned f = 0; f < command.field_count; ++f)
        if (command.fields[f].flags & APCONF_FIELD_INDEX)
            return apconf_host::scalar_text(apconf_host::member(element, command.fields[f].key)).value_or("");
    return "";
}

}  // namespace

bool is_list(const apconf_command &command)
{
    return !apconf_host::is_node(command) && command.array.count > 0;
}

bool is_replaced_whole(const apconf_command &command)
{
    return command.variant == APCONF_RESET_ON_DIFFERENCE || command.variant == APCONF_ALWAYS_RESET ||
           command.variant == APCONF_ONLY_WHEN_REPLACED;
}

change_list that_surely_fit(change_list changes)
{
    std::erase_if(changes, [](const change &change) {
        const apconf_command &command = *apconf_find_command(change.way.back().node);
        return is_list(command) && !is_replaced_whole(command);
    });
    return changes;
}

bool is_reset_with_its_bss(const apconf_command &command)
{
    return command.variant == APCONF_ALWAYS_RESET || command.variant == APCONF_UNSET_MEANS_NO;
}

scenario::scenario(const cmd_node &node, uint64_t seed)
    : node_(node), command_(*apconf_find_command(&node)), random_(seed, all)
{
    while (ways_.size() < instances_tried && add_way()) {
    }
}

// Adds another way than those there are, unless all are there.
bool scenario::add_way()
{
    for (int tries = 0; tries < 50; ++tries) {
        route way = route_to(node_);
        for (stop &stop : way) {
            const apconf_command &package = *apconf_find_command(stop.node);
            if (apconf_host::is_iterating(package)) stop.index = random_.index(*stop.node, package);
        }
        const bool known = std::any_of(ways_.begin(), ways_.end(),
                                       [&way](const route &other) { return to_text(other) == to_text(way); });
        if (known) continue;
        ways_.push_back(way);
        return true;
    }
    return false;
}

const route &scenario::way(size_t number) const
{
    return ways_[number % ways_.size()];
}

void scenario::set(change_list &list, size_t number, json_object *arguments)
{
    list.push_back({way(number), deed::set, json_ptr(arguments)});
}

void scenario::remove(change_list &list, size_t number, deed what, json_object *arguments)
{
    list.push_back({way(number), what, json_ptr(arguments)});
}

// For how many elements there certainly is room.
size_t scenario::room(size_t number) const
{
    const auto used = used_.find(number % ways_.size());
    return apconf_host::capacity(command_, node_) - (used == used_.end() ? 0 : used->second);
}

void scenario::add_elements(change_list &list, size_t number, uint64_t count, bool at_once)
{
    count = std::min<uint64_t>(count, room(number));
    used_[number % ways_.size()] += static_cast<size_t>(count);
    json_ptr elements(json_object_new_array());
    std::set<std::string> indexes;
    for (size_t tries = 0; count > 0 && tries < 2000; ++tries) {
        json_ptr element(some_keys());
        const std::string index = index_of(command_, element.get());
        if (!index.empty() && !indexes.insert(index).second) continue;
        --count;
        if (at_once)
            json_object_array_add(elements.get(), element.release());
        else
            set(list, number, element.release());
    }
    if (json_object_array_length(elements.get()) > 0) set(list, number, elements.release());
}

// One of the elements that a change has set.
json_ptr scenario::any_element(const change &change)
{
    json_object *elements = change.arguments.get();
    const auto last = json_object_array_length(elements) - 1;
    return json_ptr(json_object_get(json_object_array_get_idx(elements, static_cast<size_t>(random_.number(0, last)))));
}

void scenario::vary_list(change_list &list, size_t number)
{
    switch (number % instances_tried) {
        case 0:
            add_elements(list, number, random_.number(2, 4), true);
            remove(list, number, deed::no, any_element(list.back()).release());
            add_elements(list, number, random_.number(1, 3), false);
            break;
        case 1:
            add_elements(list, number, random_.number(1, 3), false);
            remove(list, number, random_.chance(50) ? deed::no : deed::noall);
            used_[number % ways_.size()] = 0;
            if (random_.chance(70)) add_elements(list, number, random_.number(1, 3), true);
            break;
        default:
            // To the brim, or nearly.
            add_elements(list, number, room(number) - std::min(room(number), random_.chance(50) ? 0 : size_t{3}), true);
    }
}

// The command's arguments; a flag has none.
json_object *scenario::all_keys()
{
    return command_.variant == APCONF_FLAG ? nullptr : random_.arguments(node_, command_);
}

json_object *scenario::some_keys()
{
    return command_.variant == APCONF_FLAG ? nullptr : random_.some_arguments(node_, command_);
}

void scenario::vary_group(change_list &list, size_t number)
{
    switch (number % instances_tried) {
        case 0:
            set(list, number, all_keys());
            break;
        case 1:
            set(list, number, some_keys());
            remove(list, number, deed::no);
            if (random_.chance(50)) set(list, number, some_keys());
            break;
        default:
            for (uint64_t times = random_.number(2, 4); times > 0; --times) set(list, number, some_keys());
    }
}

// Changes something below the package, whatever the density.
void scenario::vary_package(change_list &list, size_t number, unsigned density)
{
    for (change_list some; some.empty(); density = all) {
        random_message content(random_.number(0, UINT64_MAX), density);
        const json_ptr below(content.package(node_));
        some = changes_of(below.get(), way(number));
        for (change &each : some) list.push_back(std::move(each));
    }
}

change_list scenario::from_nothing()
{
    change_list list;
    for (size_t number = 0; number < (node_.children ? ways_.size() : instances_tried); ++number) {
        if (node_.children)
            vary_package(list, number, 30);
        else if (is_list(command_))
            vary_list(list, number);
        else
            vary_group(list, number);
    }
    if (node_.children && ways_.size() > 1) {
        // One of the instances goes, another goes and comes again.
        remove(list, 2, deed::no);
        remove(list, 1, deed::no);
        vary_package(list, 1, 10);
    }
    return list;
}

change_list scenario::on_top()
{
    change_list list;
    if (node_.children) {
        vary_package(list, 0, 10);
        list = that_surely_fit(std::move(list));
        if (carries_removal(command_)) remove(list, 1, deed::no);
        return list;
    }
    // In another instance than the removal, or it could look as if the batch undid itself.
    if (is_list(command_)) {
        if (is_replaced_whole(command_)) used_[0] = 0;
        const bool ends_empty = is_replaced_whole(command_) && random_.chance(40);
        add_elements(list, 0, ends_empty ? 1 : 2, true);
        if (ends_empty) remove(list, 0, deed::no, any_element(list.back()).release());
    } else {
        set(list, 0, some_keys());
    }
    if (carries_removal(command_) && (ways_.size() > 1 || random_.chance(50))) {
        if (ways_.size() == 1) list.clear();
        remove(list, 1, is_list(command_) && random_.chance(50) ? deed::noall : deed::no);
    }
    if (add_way()) set(list, ways_.size() - 1, all_keys());
    return list;
}

change_list scenario::that_no_batch_carries()
{
    change_list list;
    if (!carries_removal(command_) && &node_ != lib_pkg_root) remove(list, 0, deed::no);
    return list;
}

}  // namespace apconf_test

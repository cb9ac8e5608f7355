// Walks two reports of a configuration side by side, by the command tree. Removals come before what is set, so that
// lists have room; what is set stands in the order of the reports, which is the order of the lists.
#include "difference.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "command_difference.h"
#include "handlers.h"
#include "instances.h"
#include "json_build.h"

namespace apconf_host
{

namespace
{

json_ptr replaced(json_object *by)
{
    std::vector<json_ptr> list;
    list.push_back(removal("noall"));
    list.push_back(shared(by));
    return as_value(std::move(list));
}

change change_below(const cmd_node &package, json_object *from, json_object *to, json_ptr into);

change package_change(const cmd_node &package, json_object *from, json_object *to)
{
    if (!to) return removal("noall");
    change below = change_below(package, from, to, new_object());
    return below ? std::move(below) : replaced(to);
}

struct instances {
    const cmd_node &node;
    const char *key;

    std::string name(json_object *instance) const
    {
        return scalar_text(member(member(instance, "INDEX"), key)).value_or("");
    }

    json_object *find(const elements &list, json_object *instance) const
    {
        const auto found =
            std::find_if(list.begin(), list.end(), [&](json_object *other) { return name(other) == name(instance); });
        return found == list.end() ? nullptr : *found;
    }

    json_ptr named(json_object *instance, bool removed) const
    {
        json_ptr index = new_object();
        add(index.get(), key, shared(member(member(instance, "INDEX"), key)));
        if (removed) add(index.get(), ".OPT", new_text("no"));
        json_ptr object = new_object();
        add(object.get(), "INDEX", std::move(index));
        return object;
    }

    change change_of(json_object *from, json_object *to) const
    {
        if (same(from, to)) return json_ptr();
        return change_below(node, from, to, named(to, false));
    }
};

// Numbered instances stand where their number says; each can be replaced by itself.
std::vector<json_ptr> record_changes(const instances &instances, const elements &from, const elements &to)
{
    std::vector<json_ptr> removed;
    std::vector<json_ptr> set;
    for (json_object *gone : from)
        if (!instances.find(to, gone)) removed.push_back(instances.named(gone, true));
    for (json_object *wanted : to) {
        json_object *present = instances.find(from, wanted);
        change below = present ? instances.change_of(present, wanted) : change();
        if (present && !below) removed.push_back(instances.named(present, true));
        json_ptr said = below ? std::move(*below) : shared(wanted);
        if (said) set.push_back(std::move(said));
    }
    removed.insert(removed.end(), std::make_move_iterator(set.begin()), std::make_move_iterator(set.end()));
    return removed;
}

// A new element goes to the end: from the first one that is out of place, or has to be replaced, all are made anew.
std::vector<json_ptr> element_changes(const instances &instances, const elements &from, const elements &to)
{
    std::vector<json_ptr> removed;
    std::vector<json_ptr> set;
    elements stay;
    for (json_object *present : from)
        if (instances.find(to, present))
            stay.push_back(present);
        else
            removed.push_back(instances.named(present, true));
    size_t kept = 0;
    for (; kept < std::min(stay.size(), to.size()) && instances.name(stay[kept]) == instances.name(to[kept]); ++kept) {
        change below = instances.change_of(stay[kept], to[kept]);
        if (!below) break;
        if (*below) set.push_back(std::move(*below));
    }
    for (size_t i = kept; i < stay.size(); ++i) removed.push_back(instances.named(stay[i], true));
    for (size_t i = kept; i < to.size(); ++i) set.push_back(shared(to[i]));
    removed.insert(removed.end(), std::make_move_iterator(set.begin()), std::make_move_iterator(set.end()));
    return removed;
}

json_ptr all_instances_removed()
{
    json_ptr object = new_object();
    add(object.get(), "INDEX", removal("noall"));
    return object;
}

json_ptr instances_change(const cmd_node &node, const apconf_command &command, json_object *from_value,
                          json_object *to_value)
{
    const instances instances{node, index_key(command)};
    const elements from = elements_of(from_value);
    const elements to = elements_of(to_value);
    std::vector<json_ptr> list;
    if (from.empty() || to.empty()) {
        // An answer leaves an only instance out that holds nothing: it may be there.
        list.push_back(all_instances_removed());
        for (json_object *instance : to) list.push_back(shared(instance));
    } else {
        list = command.variant == APCONF_LIST_NODE ? element_changes(instances, from, to)
                                                   : record_changes(instances, from, to);
    }
    return as_value(std::move(list));
}

change node_change(const cmd_node &node, json_object *from, json_object *to)
{
    const apconf_command &command = *apconf_find_command(&node);
    if (same(from, to)) return json_ptr();
    if (is_iterating(command)) return instances_change(node, command, from, to);
    return node.children ? package_change(node, from, to) : command_change(command, from, to);
}

// Adds to `into` what changes below a package, child by child in the order of the table.
change change_below(const cmd_node &package, json_object *from, json_object *to, json_ptr into)
{
    bool any = false;
    for (const cmd_node *child = package.children; child && child->name; ++child) {
        change said = node_change(*child, member(from, child->name), member(to, child->name));
        if (!said) return change();
        if (!*said) continue;
        add(into.get(), child->name, std::move(*said));
        any = true;
    }
    return any ? change(std::move(into)) : json_ptr();
}

json_ptr message_of(json_ptr config)
{
    json_ptr message = new_object();
    if (config) add(message.get(), "config", std::move(config));
    return message;
}

json_ptr config_of(json_object *configuration)
{
    json_object *config = member(configuration, "config");
    return config ? shared(config) : new_object();
}

size_t changed_in(const cmd_node &node, json_object *from, json_object *to);

size_t changed_below(const cmd_node &package, json_object *from, json_object *to)
{
    size_t count = 0;
    for (const cmd_node *child = package.children; child && child->name; ++child)
        count += changed_in(*child, member(from, child->name), member(to, child->name));
    return count;
}

size_t changed_instances(const instances &instances, const elements &from, const elements &to)
{
    size_t count = 0;
    for (json_object *present : from)
        if (!instances.find(to, present)) count += changed_below(instances.node, present, nullptr);
    for (json_object *wanted : to) count += changed_below(instances.node, instances.find(from, wanted), wanted);
    return count;
}

size_t changed_in(const cmd_node &node, json_object *from, json_object *to)
{
    if (same(from, to)) return 0;
    const apconf_command &command = *apconf_find_command(&node);
    if (is_iterating(command)) return changed_instances({node, index_key(command)}, elements_of(from), elements_of(to));
    return node.children ? changed_below(node, from, to) : 1;
}

const cmd_node &config_node()
{
    return *search_child_cmd(get_cmd_tree(), "config");
}

}  // namespace

json_ptr difference(json_object *from, json_object *to)
{
    const json_ptr wanted = config_of(to);
    return message_of(*package_change(config_node(), config_of(from).get(), wanted.get()));
}

size_t changed_commands(json_object *from, json_object *to)
{
    return changed_below(config_node(), config_of(from).get(), config_of(to).get());
}

json_ptr replacement(json_object *to)
{
    return message_of(replaced(config_of(to).get()));
}

}  // namespace apconf_host

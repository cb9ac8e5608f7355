// Building and taking apart messages.
#include "law/change.h"

#include "host/instances.h"

namespace apconf_test
{

using apconf_host::json_ptr;
using apconf_host::member;
using apconf_host::scalar_text;

namespace
{

// The node's own record and the packages above it. Empty: it is not below.
route search(cmd_node *table, const cmd_node &wanted)
{
    for (cmd_node *node = table; node->name; ++node) {
        if (node == &wanted) return {{node, ""}};
        if (!node->children) continue;
        route below = search(node->children, wanted);
        if (below.empty()) continue;
        below.insert(below.begin(), {node, ""});
        return below;
    }
    return {};
}

const char *key_of(const stop &stop)
{
    return apconf_host::index_key(*apconf_find_command(stop.node));
}

void add_text(json_object *object, const char *key, const std::string &text)
{
    json_object_object_add(object, key, json_object_new_string_len(text.data(), static_cast<int>(text.size())));
}

json_ptr copy(json_object *value)
{
    json_object *result = nullptr;
    if (value) json_object_deep_copy(value, &result, nullptr);
    return json_ptr(result);
}

const char *option_of(deed what)
{
    return what == deed::no ? "no" : "noall";
}

// Calls visit(object) for the argument object, or for each of a list.
template <typename Visit>
void for_each_object(json_object *arguments, const Visit &visit)
{
    int cursor = 0;
    while (json_object *object = get_json_obj(arguments, &cursor)) visit(object);
}

json_ptr object_or_copy(json_object *arguments)
{
    return arguments ? copy(arguments) : json_ptr(json_object_new_object());
}

// {"INDEX": {...}} or {}, with the option if the instance itself is removed.
json_ptr instance_of(const stop &stop, const char *option)
{
    json_ptr instance(json_object_new_object());
    if (stop.index.empty()) {
        if (option) add_text(instance.get(), ".OPT", option);
        return instance;
    }
    json_object *index = json_object_new_object();
    add_text(index, key_of(stop), stop.index);
    if (option) add_text(index, ".OPT", option);
    json_object_object_add(instance.get(), "INDEX", index);
    return instance;
}

}  // namespace

route route_to(const cmd_node &node)
{
    return search(lib_pkg_root, node);
}

std::string to_text(const route &way)
{
    std::string text;
    for (const stop &stop : way) {
        text += (text.empty() ? "" : "/") + std::string(stop.node->name);
        if (!stop.index.empty()) text += "[" + stop.index + "]";
    }
    return text;
}

std::string change::path() const
{
    std::string text;
    for (const stop &stop : way) text += std::string("/") + stop.node->name;
    return text;
}

json_ptr change::param() const
{
    json_ptr param = object_or_copy(arguments.get());
    for_each_object(param.get(), [this](json_object *object) {
        for (const stop &stop : way)
            if (!stop.index.empty()) add_text(object, key_of(stop), stop.index);
        if (what == deed::noall) add_text(object, ".OPT", option_of(what));
    });
    return param;
}

json_ptr change::in_a_tree() const
{
    const char *option = what == deed::set ? nullptr : option_of(what);
    json_ptr tree;
    if (way.back().node->children) {
        tree = instance_of(way.back(), option);
    } else {
        tree = object_or_copy(arguments.get());
        for_each_object(tree.get(), [option](json_object *object) {
            if (option) add_text(object, ".OPT", option);
        });
    }
    for (size_t i = way.size() - 1; i > 0; --i) {
        json_ptr outer = i > 1 ? instance_of(way[i - 1], nullptr) : json_ptr(json_object_new_object());
        json_object_object_add(outer.get(), way[i].node->name, tree.release());
        tree = std::move(outer);
    }
    return tree;
}

std::string to_text(const change &change)
{
    std::string text = (change.what == deed::noall ? "noall" : change.action()) + " " + to_text(change.way);
    if (change.arguments) text += " " + apconf_host::shown(change.arguments.get());
    return text;
}

json_ptr batch_of(const change_list &changes)
{
    json_ptr message(json_object_new_object());
    json_object *list = json_object_new_array();
    for (const change &change : changes) json_object_array_add(list, change.in_a_tree().release());
    json_object_object_add(message.get(), "config", list);
    return message;
}

change_list changes_of(json_object *content, const route &above)
{
    change_list found;
    json_object_object_foreach(content, name, value)
    {
        cmd_node *child = search_child_cmd(const_cast<cmd_node *>(above.back().node), name);
        if (!child) continue;
        for_each_object(value, [&](json_object *object) {
            route way = above;
            way.push_back({child, ""});
            if (child->children) {
                if (key_of(way.back()))
                    way.back().index = scalar_text(member(member(object, "INDEX"), key_of(way.back()))).value_or("");
                change_list below = changes_of(object, way);
                for (change &each : below) found.push_back(std::move(each));
                return;
            }
            const auto option = scalar_text(member(object, ".OPT"));
            json_ptr arguments = copy(object);
            json_object_object_del(arguments.get(), ".OPT");
            if (json_object_object_length(arguments.get()) == 0) arguments.reset();
            const deed what = option == "no" ? deed::no : option == "noall" ? deed::noall : deed::set;
            found.push_back({way, what, std::move(arguments)});
        });
    }
    return found;
}

json_object *place_in(json_object *config, const route &way)
{
    json_object *here = config;
    for (size_t i = 1; i < way.size(); ++i) {
        json_object *instances = member(here, way[i].node->name);
        here = instances;
        if (way[i].index.empty()) continue;
        here = nullptr;
        for_each_object(instances, [&](json_object *instance) {
            if (scalar_text(member(member(instance, "INDEX"), key_of(way[i]))) == way[i].index) here = instance;
        });
    }
    return here;
}

bool is_unset(json_object *value)
{
    if (json_object_is_type(value, json_type_array)) {
        for (size_t i = 0; i < json_object_array_length(value); ++i)
            if (!is_unset(json_object_array_get_idx(value, i))) return false;
        return true;
    }
    if (!json_object_is_type(value, json_type_object)) return value == nullptr;
    if (json_object_object_length(value) == 0) return false;  // a flag that is set
    json_object_object_foreach(value, key, inner)
    {
        if (std::string(key) != ".OPT" && std::string(key) != "INDEX" && !is_unset(inner)) return false;
    }
    return true;
}

}  // namespace apconf_test

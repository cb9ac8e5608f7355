// Finds what a message names and the tree does not know, and what is no object where one is needed. The dispatch passes
// over both.
#include <cstring>

#include "arguments.h"
#include "expectation.h"
#include "handlers.h"
#include "instances.h"
#include "json.h"
#include "secrets.h"

namespace apconf_host
{

namespace
{

bool is_header(const std::string &name)
{
    return name == "MODULE" || name == "ACTION";
}

// Of an instance's INDEX object: its package's key and ".OPT" are all it may hold.
void check_index(json_object *index, const apconf_command *package, const std::string &path, outcome &outcome)
{
    if (!index) return;
    if (!json_object_is_type(index, json_type_object))
        return outcome.refuse({path, "INDEX", shown(index), "an object"});
    const char *known = package ? index_key(*package) : nullptr;
    json_object_object_foreach(index, key, value)
    {
        (void)value;
        if (strcmp(key, ".OPT") == 0 || (known && strcmp(key, known) == 0)) continue;
        outcome.refuse({path, key, "", known ? std::string("the key ") + known : "no index key"});
    }
}

void refuse_type(const cmd_node &node, json_object *value, const std::string &path, outcome &outcome)
{
    const apconf_command *command = apconf_find_command(&node);
    const bool leaf = command && !node.children;
    outcome.refuse({path, "", leaf && has_secret(*command) ? masked_secret : shown(value),
                    leaf ? "an object with " + accepted_keys(*command) : "an object"});
}

void find_below(cmd_node &node, json_object *object, const std::string &path, outcome &outcome)
{
    const apconf_command *package = apconf_find_command(&node);
    const char *own_key = package ? index_key(*package) : nullptr;
    json_object_object_foreach(object, name, value)
    {
        if (outcome.refusals.size() >= outcome::MAX_REFUSALS) return;  // more would only cost time
        if (path.empty() && is_header(name)) continue;
        if (!path.empty() && strcmp(name, ".OPT") == 0) continue;
        if (!path.empty() && strcmp(name, "INDEX") == 0) {
            check_index(value, package, path, outcome);
            continue;
        }
        // An instance without INDEX holds its key itself.
        if (own_key && strcmp(name, own_key) == 0 && !member(object, "INDEX")) continue;
        const std::string here = path.empty() ? name : path + "/" + name;
        cmd_node *child = search_child_cmd(&node, name);
        if (!child) {
            outcome.refuse({here, "", "", accepted_command(node, path, name)});
            continue;
        }
        int cursor = 0;
        while (json_object *single = get_json_obj(value, &cursor)) {
            if (!json_object_is_type(single, json_type_object))
                refuse_type(*child, single, here, outcome);
            else if (child->children)
                find_below(*child, single, here, outcome);
        }
    }
}

// What a set of a package itself can mean: of a list, that the element exists.
void check_package(const cmd_node &node, json_object *param, const std::string &path, outcome &outcome)
{
    const apconf_command *package = apconf_find_command(&node);
    const auto option = scalar_text(member(param, ".OPT"));
    if (option == "no" || option == "noall" || (package && package->variant == APCONF_LIST_NODE)) return;
    outcome.refuse({path, "", "", accepted_command(node, path, "")});
}

// An argument object or a list of them.
void check_param(const cmd_node &node, json_object *param, const std::string &path, outcome &outcome)
{
    int cursor = 0;
    while (json_object *single = get_json_obj(param, &cursor))
        if (!json_object_is_type(single, json_type_object)) refuse_type(node, single, path, outcome);
}

void check_path(const char *text, json_object *param, outcome &outcome)
{
    cmd_node *node = get_cmd_tree();
    std::string path;
    std::string rest = text;
    while (!rest.empty()) {
        const size_t slash = rest.find('/');
        const std::string name = rest.substr(0, slash);
        rest = slash == std::string::npos ? "" : rest.substr(slash + 1);
        if (name.empty()) continue;
        const std::string below = path;
        path += (path.empty() ? "" : "/") + name;
        cmd_node *child = search_child_cmd(node, name.c_str());
        if (!child) return outcome.refuse({path, "", "", accepted_command(*node, below, name)});
        node = child;
    }
    check_param(*node, param, path, outcome);
    if (node->children) check_package(*node, param, path.empty() ? "/" : path, outcome);
}

}  // namespace

void find_unknown(json_object *message, outcome &outcome)
{
    cmesage_info info = {};
    if (!json_object_is_type(message, json_type_object) || get_cmesage_info(message, &info) != 0) return;
    if (info.has_cpath)
        check_path(info.path, member(info.body, "param"), outcome);
    else
        find_below(*get_cmd_tree(), message, "", outcome);
}

}  // namespace apconf_host

// Keeps secrets out of what people read: keys and passwords in messages and answers become "***".
#include "secrets.h"

#include <functional>

#include "json.h"

namespace apconf_host
{

namespace
{

// What is done to a secret: the path of its command, the arguments that hold it and its key there.
using secret_visit = std::function<void(const std::string &, json_object *, const char *)>;

void visit_arguments(const apconf_command &command, const std::string &path, json_object *arguments,
                     const secret_visit &visit)
{
    for (unsigned i = 0; i < command.field_count; ++i) {
        const apconf_field &field = command.fields[i];
        if (field.key && (field.flags & APCONF_FIELD_SECRET) && member(arguments, field.key))
            visit(path, arguments, field.key);
    }
}

void visit_node(cmd_node &node, const std::string &path, json_object *value, const secret_visit &visit)
{
    const apconf_command *command = apconf_find_command(&node);
    int cursor = 0;
    while (json_object *single = get_json_obj(value, &cursor)) {
        if (!json_object_is_type(single, json_type_object)) continue;
        if (!node.children) {
            if (command) visit_arguments(*command, path, single, visit);
            continue;
        }
        json_object_object_foreach(single, name, content)
        {
            if (cmd_node *child = search_child_cmd(&node, name))
                visit_node(*child, path.empty() ? name : path + "/" + name, content, visit);
        }
    }
}

cmd_node *node_at(std::string path)
{
    cmd_node *node = get_cmd_tree();
    while (node && !path.empty()) {
        const size_t slash = path.find('/');
        const std::string name = path.substr(0, slash);
        path = slash == std::string::npos ? "" : path.substr(slash + 1);
        if (!name.empty()) node = search_child_cmd(node, name.c_str());
    }
    return node;
}

void visit_secrets(json_object *tree, const secret_visit &visit)
{
    visit_node(*get_cmd_tree(), "", tree, visit);
    json_object *single = member(tree, "CPATH");
    const auto path = scalar_text(member(single, "path"));
    if (!path) return;
    if (cmd_node *node = node_at(*path)) visit_node(*node, *path, member(single, "param"), visit);
}

void mask(const std::string &, json_object *arguments, const char *key)
{
    json_object_object_add(arguments, key, json_object_new_string(masked_secret));
}

}  // namespace

void mask_arguments(const apconf_command &command, json_object *arguments)
{
    visit_arguments(command, "", arguments, mask);
}

void mask_secrets(json_object *tree)
{
    visit_secrets(tree, mask);
}

std::vector<std::string> masked_secrets_in(json_object *tree)
{
    std::vector<std::string> found;
    visit_secrets(tree, [&found](const std::string &path, json_object *arguments, const char *key) {
        if (scalar_text(member(arguments, key)) == masked_secret) found.push_back(path + ": " + key);
    });
    return found;
}

}  // namespace apconf_host

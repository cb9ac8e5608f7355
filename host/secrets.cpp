// Keeps secrets out of what people read: keys and passwords in messages and answers become "***".
#include "secrets.h"

#include "json.h"

namespace apconf_host
{

namespace
{

void mask_arguments(const apconf_command &command, json_object *arguments)
{
    for (unsigned i = 0; i < command.field_count; ++i) {
        const apconf_field &field = command.fields[i];
        if (!field.key || !(field.flags & APCONF_FIELD_SECRET) || !member(arguments, field.key)) continue;
        json_object_object_add(arguments, field.key, json_object_new_string(masked_secret));
    }
}

void mask_node(cmd_node &node, json_object *value)
{
    const apconf_command *command = apconf_find_command(&node);
    int cursor = 0;
    while (json_object *single = get_json_obj(value, &cursor)) {
        if (!json_object_is_type(single, json_type_object)) continue;
        if (!node.children) {
            if (command) mask_arguments(*command, single);
            continue;
        }
        json_object_object_foreach(single, name, content)
        {
            if (cmd_node *child = search_child_cmd(&node, name)) mask_node(*child, content);
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

}  // namespace

void mask_secrets(json_object *tree)
{
    mask_node(*get_cmd_tree(), tree);
    json_object *single = member(tree, "CPATH");
    const auto path = scalar_text(member(single, "path"));
    if (!path) return;
    if (cmd_node *node = node_at(*path)) mask_node(*node, member(single, "param"));
}

}  // namespace apconf_host

// What could stand at the end of a path or an assignment of the tool's command line.
#include "cli/path_completion.h"

#include <algorithm>
#include <cstring>
#include <set>

#include "block.h"
#include "expectation.h"
#include "instances.h"

namespace apconf_host
{

namespace
{

struct component {
    std::string name;
    bool has_instance;
};

// Of "a[x/y]/b"; a slash in brackets separates nothing.
std::vector<component> components_of(const std::string &path)
{
    std::vector<component> components;
    for (size_t at = 0; at < path.size();) {
        const size_t end = std::min(path.find_first_of("/[", at), path.size());
        const bool has_instance = end < path.size() && path[end] == '[';
        if (end > at) components.push_back({path.substr(at, end - at), has_instance});
        const size_t slash = has_instance ? path.find("]/", end) : end;
        if (slash == std::string::npos) break;
        at = slash + (has_instance ? 2 : 1);
    }
    return components;
}

struct followed_path {
    std::vector<const cmd_node *> nodes;  // from "config" on; empty: it leads nowhere
    std::set<std::string> keys;           // index keys whose instance the path gives
};

followed_path follow(const std::string &path)
{
    auto components = components_of(path);
    if (components.empty() || components.front().name != "config")
        components.insert(components.begin(), {"config", false});
    followed_path followed;
    cmd_node *node = get_cmd_tree();
    for (const component &part : components) {
        node = search_child_cmd(node, part.name.c_str());
        if (!node) return {};
        followed.nodes.push_back(node);
        const char *key = part.has_instance ? index_key(*apconf_find_command(node)) : nullptr;
        if (key) followed.keys.insert(key);
    }
    return followed;
}

// Where the last component begins.
size_t last_component(const std::string &path)
{
    size_t begin = 0;
    for (size_t slash = path.find('/'); slash != std::string::npos; slash = path.find('/', slash + 1)) {
        const size_t bracket = path.find('[', begin);
        if (bracket > slash || path[slash - 1] == ']') begin = slash + 1;
    }
    return begin;
}

// Instances have numbers where the block has a place for each.
size_t numbered_instances(const cmd_node &node)
{
    const apconf_command &package = *apconf_find_command(&node);
    return package.variant == APCONF_RECORD_NODE ? capacity(package, node) : 0;
}

std::vector<std::string> starting_with(const std::string &typed, std::vector<std::string> words)
{
    std::erase_if(words, [&](const std::string &word) { return !word.starts_with(typed); });
    return words;
}

bool is_index_key(const cmd_node &node, const char *key)
{
    const char *own = node.children ? index_key(*apconf_find_command(&node)) : nullptr;
    return own && strcmp(own, key) == 0;
}

}  // namespace

std::vector<std::string> complete_path(const std::string &typed)
{
    const size_t begin = last_component(typed);
    const std::string before = typed.substr(0, begin);
    const followed_path around = follow(before);
    if (around.nodes.empty() || !around.nodes.back()->children) return {};
    std::vector<std::string> words;
    if (components_of(before).empty()) words.push_back(before + "config/");
    for (const cmd_node *child = around.nodes.back()->children; child->name; ++child) {
        const std::string word = before + child->name;
        words.push_back(word + (child->children ? "/" : ""));
        if (!child->children || !is_iterating(*apconf_find_command(child))) continue;
        const bool in_brackets = typed.starts_with(word + "[");
        if (!in_brackets) words.push_back(word + "[");
        for (size_t i = 0; in_brackets && i < numbered_instances(*child); ++i)
            words.push_back(word + "[" + std::to_string(i) + "]/");
    }
    return starting_with(typed, std::move(words));
}

std::vector<std::string> complete_assignment(const std::string &path, const std::vector<std::string> &before,
                                             const std::string &typed)
{
    followed_path followed = follow(path);
    std::set<std::string> &given = followed.keys;
    for (const std::string &assignment : before) given.insert(assignment.substr(0, assignment.find('=')));

    const bool at_value = typed.find('=') != std::string::npos;
    std::vector<std::string> words;
    for (const cmd_node *node : followed.nodes) {
        const apconf_command &command = *apconf_find_command(node);
        for (unsigned i = 0; i < command.field_count; ++i) {
            const apconf_field &field = command.fields[i];
            if (!field.key || given.contains(field.key) || (node->children && !is_index_key(*node, field.key)))
                continue;
            const std::string start = std::string(field.key) + "=";
            if (!at_value && std::find(words.begin(), words.end(), start) == words.end()) words.push_back(start);
            if (!at_value) continue;
            for (const std::string &token : tokens_of(field.ptype)) words.push_back(start + token);
        }
    }
    return starting_with(typed, std::move(words));
}

}  // namespace apconf_host

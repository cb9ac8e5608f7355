// What a command line addresses: a path with its instances and arguments, all checked against the loaded schema.
#include "tool/target.h"

#include <algorithm>

#include "arguments.h"
#include "expectation.h"
#include "instances.h"

namespace apconf_host
{

namespace
{

struct component {
    std::string name;
    std::string instance;  // what stood in brackets
    bool has_instance = false;
};

// Splits "a[x]/b" at the slashes outside brackets; a pool's name may hold a slash.
std::vector<component> split_path(const std::string &path)
{
    std::vector<component> components;
    size_t at = 0;
    while (at < path.size()) {
        if (path[at] == '/') {
            ++at;
            continue;
        }
        component part;
        const size_t end = path.find_first_of("/[", at);
        part.name = path.substr(at, end - at);
        at = end == std::string::npos ? path.size() : end;
        if (at < path.size() && path[at] == '[') {
            size_t close = path.find("]/", at);
            if (close == std::string::npos && path.back() == ']') close = path.size() - 1;
            if (close == std::string::npos) throw usage_problem("'" + path + "': a bracket is not closed");
            part.instance = path.substr(at + 1, close - at - 1);
            part.has_instance = true;
            at = close + 1;
        }
        components.push_back(std::move(part));
    }
    return components;
}

struct step {
    component part;
    cmd_node *node;
    std::string path;
};

// The paths of all nodes below that have this name, or have it but for their "_cmd".
void find_named(const cmd_node &node, const std::string &path, const std::string &name, std::vector<std::string> &found)
{
    for (const cmd_node *child = node.children; child && child->name; ++child) {
        const std::string here = path.empty() ? child->name : path + "/" + child->name;
        if (child->name == name || child->name == name + "_cmd") found.push_back(here);
        find_named(*child, here, name, found);
    }
}

// Somebody who knows a command's name only is told where it is.
std::string accepted_step(const cmd_node &parent, const std::string &above, const std::string &name)
{
    std::vector<std::string> elsewhere;
    if (above.empty() || above == "config") find_named(*get_cmd_tree(), "", name, elsewhere);
    if (elsewhere.empty()) return accepted_command(parent, above, name);
    constexpr size_t most = 3;
    std::string text = "a path from config on, perhaps ";
    for (size_t i = 0; i < std::min(elsewhere.size(), most); ++i) text += (i ? ", " : "") + elsewhere[i];
    return text + (elsewhere.size() > most ? ", ..." : "");
}

// The nodes from "config" down to the one that the path names.
std::vector<step> steps_of(const std::string &path)
{
    auto components = split_path(path);
    if (components.empty() || components.front().name != "config")
        components.insert(components.begin(), {"config", "", false});
    std::vector<step> steps;
    cmd_node *node = get_cmd_tree();
    std::string above;
    for (const component &part : components) {
        cmd_node *child = search_child_cmd(node, part.name.c_str());
        const std::string here = above.empty() ? part.name : above + "/" + part.name;
        if (!child && node->children) throw refused_by_schema({here, "", "", accepted_step(*node, above, part.name)});
        if (!child) throw refused_by_schema({here, "", "", above + ", which is a command with nothing below it"});
        steps.push_back({part, child, here});
        node = child;
        above = here;
    }
    return steps;
}

void add_text(json_object *object, const std::string &key, const std::string &text)
{
    json_object_object_add(object, key.c_str(), json_object_new_string(text.c_str()));
}

// A key that is given again makes a list of its values.
void add_value(json_object *object, const std::string &key, json_object *value)
{
    json_object *before = json_object_get(member(object, key.c_str()));
    add_json_obj(&before, value);
    json_object_object_add(object, key.c_str(), before);
}

json_object *value_for(const apconf_command &command, const std::string &path, const std::string &key,
                       const std::string &text)
{
    for (unsigned i = 0; i < command.field_count; ++i) {
        const apconf_field &field = command.fields[i];
        if (!field.key || key != field.key || field.kind != APCONF_FIELD_OBJECT) continue;
        json_object *parsed = json_tokener_parse(text.c_str());
        if (!parsed) throw refused_by_schema({path, key, text, "a JSON object"});
        return parsed;
    }
    return json_object_new_string(text.c_str());
}

class parser
{
public:
    explicit parser(action action) : action_(action)
    {
        target_.index.reset(json_object_new_object());
        target_.arguments.reset(json_object_new_object());
    }

    target parse(const std::string &path, const std::vector<std::string> &assignments)
    {
        walk(path);
        for (const auto &assignment : assignments) assign(assignment);
        choose_instances();
        check_arguments();
        return std::move(target_);
    }

private:
    void walk(const std::string &path)
    {
        for (const step &step : steps_of(path)) {
            const char *key = index_key(*apconf_find_command(step.node));
            if (step.part.has_instance && !key)
                throw refused_by_schema(
                    {step.path, "", step.part.instance, step.path + " without an instance; there is only one"});
            if (step.part.has_instance) add_text(target_.index.get(), key, step.part.instance);
            target_.nodes.push_back(step.node);
            names_ = step.path;
        }
        target_.wire_path = "/" + names_;
        target_.command = apconf_find_command(target_.nodes.back());
    }

    void assign(const std::string &assignment)
    {
        const size_t equals = assignment.find('=');
        if (equals == std::string::npos || equals == 0)
            throw usage_problem("'" + assignment + "' is not of the form KEY=VALUE");
        const std::string key = assignment.substr(0, equals);
        const std::string text = assignment.substr(equals + 1);
        if (key == ".OPT") throw usage_problem("'.OPT' is not given here; 'apconf no' removes");
        if (!is_index_key(key)) {
            add_value(target_.arguments.get(), key, value_for(*target_.command, names_, key, text));
            return;
        }
        const auto before = scalar_text(member(target_.index.get(), key.c_str()));
        if (before && *before != text)
            throw refused_by_schema({names_, key, text, "one instance, and '" + *before + "' has been given"});
        add_text(target_.index.get(), key, text);
    }

    bool is_index_key(const std::string &key) const
    {
        for (const cmd_node *node : target_.nodes) {
            const char *own = index_key(*apconf_find_command(node));
            if (own && key == own) return true;
        }
        return false;
    }

    // Every iterating package on the way needs its instance; the one addressed only where there must be one.
    void choose_instances()
    {
        for (size_t depth = 0; depth < target_.nodes.size(); ++depth) {
            const cmd_node &node = *target_.nodes[depth];
            const apconf_command &package = *apconf_find_command(&node);
            target_.shown_path += (depth ? "/" : "") + std::string(node.name);
            const char *key = index_key(package);
            if (!key) continue;
            json_object *given = member(target_.index.get(), key);
            const bool last = depth + 1 == target_.nodes.size();
            if (!given && last && action_ != action::set) continue;
            if (!given) fail(key, "", accepted_value(node, package.fields[0]) + ", which must be given");
            outcome outcome;
            const auto text = read_index(node, package.fields[0], target_.shown_path, given, outcome);
            if (!text) throw refused_by_schema(outcome.refusals);
            check_number(node, package, *text);
            add_text(target_.index.get(), key, *text);
            target_.shown_path += "[" + *text + "]";
        }
    }

    void check_number(const cmd_node &node, const apconf_command &package, const std::string &text)
    {
        if (package.variant != APCONF_RECORD_NODE) return;
        const size_t count = capacity(package, node);
        if (strtoul(text.c_str(), nullptr, 10) >= count)
            fail(package.fields[0].key, text,
                 std::string("a ") + package.fields[0].key + " from 0 to " + std::to_string(count - 1));
    }

    void check_arguments()
    {
        json_object *arguments = target_.arguments.get();
        const cmd_node &node = target_.node();
        if (node.children) return check_package();
        if (json_object_object_length(arguments) == 0 && needs_arguments())
            fail("", "", accepted_keys(*target_.command));
        outcome outcome;
        lookup_ctx first = {};
        auto *record =
            static_cast<char *>(apconf_scope_record(static_cast<apconf_scope>(target_.command->scope), &root, &first));
        std::string scratch;
        if (!record) {
            // A variable list has no element here: an unset one stands for it.
            const auto scope = static_cast<apconf_scope>(target_.command->scope);
            scratch.assign(unset_record(scope), apconf_scope_size(scope));
            record = scratch.data();
        }
        read_arguments({*target_.command, node, target_.shown_path, {}, element_at(*target_.command, record), false},
                       arguments, outcome);
        if (!outcome.refusals.empty()) throw refused_by_schema(outcome.refusals);
    }

    bool needs_arguments() const
    {
        return action_ == action::set && target_.command->variant != APCONF_FLAG &&
               target_.command->variant != APCONF_NEVER_REPORTED;
    }

    void check_package()
    {
        json_object_object_foreach(target_.arguments.get(), key, value)
        {
            (void)value;
            const char *own = index_key(*target_.command);
            fail(key, "", own ? std::string("the key ") + own : "no key");
        }
        if (action_ == action::set && target_.command->variant != APCONF_LIST_NODE)
            fail("", "", accepted_command(target_.node(), target_.shown_path, ""));
        if (action_ == action::no && target_.nodes.size() == 1)
            fail("", "no", "the removal of a package or command below it");
    }

    [[noreturn]] void fail(const std::string &key, const std::string &value, const std::string &accepted) const
    {
        const std::string &path = target_.shown_path.empty() ? names_ : target_.shown_path;
        throw refused_by_schema({path, key, value, accepted});
    }

    action action_;
    target target_;
    std::string names_;
};

}  // namespace

json_ptr target::param() const
{
    json_ptr both(json_object_new_object());
    for (json_object *part : {index.get(), arguments.get()}) {
        json_object_object_foreach(part, key, value)
        {
            json_object_object_add(both.get(), key, json_object_get(value));
        }
    }
    return both;
}

named_node find_node(const std::string &path)
{
    const step last = steps_of(path).back();
    return {last.node, last.path};
}

const syntax_command &find_syntax(const vocabulary &vocabulary, const std::string &path)
{
    const named_node named = find_node(path);
    const syntax_command *found = vocabulary.find(named.node);
    if (!found) throw failure(named.path + ": the command-tree file has no words for it; 'apconf check' says more");
    return *found;
}

target parse_target(action action, const std::string &path, const std::vector<std::string> &assignments)
{
    return parser(action).parse(path, assignments);
}

std::string chosen_instance(const target &target, size_t depth)
{
    const char *key = index_key(*apconf_find_command(target.nodes[depth]));
    return key ? scalar_text(member(target.index.get(), key)).value_or("") : "";
}

}  // namespace apconf_host

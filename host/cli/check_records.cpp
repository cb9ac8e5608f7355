// The elements of a command-tree file against the compiled-in tree, and their PARAMs against the descriptions: every
// record has its element and every key its PARAM, of the same type, with a range, default and choices of that type.
#include <algorithm>
#include <cstdlib>
#include <map>

#include "block.h"
#include "cli/check_parts.h"
#include "expectation.h"
#include "text.h"

namespace apconf_host
{

namespace
{

// The ptypes of the rows with this key; two rows can share one.
std::vector<uint32_t> types_of(const apconf_command &command, const std::string &key)
{
    std::vector<uint32_t> types;
    for (unsigned i = 0; i < command.field_count; ++i)
        if (command.fields[i].key && key == command.fields[i].key) types.push_back(command.fields[i].ptype);
    return types;
}

std::string names_of(const std::vector<uint32_t> &types)
{
    std::vector<std::string> names;
    names.reserve(types.size());
    for (const uint32_t type : types) names.push_back(get_ptype_name(type));
    return joined(names, " or ");
}

// The parameters of a command, or of a package's INDEX.
class command_checker
{
public:
    command_checker(const xmlNode *element, const apconf_command &command, element_faults &faults)
        : element_(element), command_(command), faults_(faults)
    {
    }

    void check()
    {
        if (attribute(element_, "cli_cmd").empty())
            faults_.add(element_, "has no cli_cmd: accepted are the words of its command line");
        check_repeat();
        check_params(element_);
        if (is_list() && attribute(element_, "ntype") == "cmd" && !selects_)
            faults_.add(element_,
                        "has no PARAM with the option pindex: accepted is at least one, for the \"no\" line of "
                        "a list names the entry");
        for (unsigned i = 0; i < command_.field_count; ++i) {
            const char *key = command_.fields[i].key;
            if (!key || !params_.emplace(key, nullptr).second) continue;
            faults_.add(element_, std::string("has no PARAM of the key ") + key + ": accepted is one of ptype " +
                                      names_of(types_of(command_, key)));
        }
    }

private:
    bool is_list() const { return command_.array.count > 1; }

    void check_repeat()
    {
        const std::string repeat = attribute(element_, "repeat");
        const int count = atoi(repeat.c_str());
        if (count <= 0 || command_.variant == APCONF_LIST_NODE) return;
        const size_t room = command_.array.count;
        if (!is_list())
            faults_.add(element_, refused("repeat", repeat, "none: there is room for one"));
        else if (static_cast<size_t>(count) > room)
            faults_.add(element_, refused("repeat", repeat, "at most " + std::to_string(room)));
    }

    // Those inside BODYs and other PARAMs belong to the command as well.
    void check_params(const xmlNode *parent)
    {
        for (const xmlNode *element : children_of(parent)) {
            if (is_named(element, "PARAM")) check_one(element);
            if (is_item(element)) check_params(element);
        }
    }

    void check_one(const xmlNode *param)
    {
        const std::string name = attribute(param, "name");
        if (name.empty()) return faults_.add(param, "has no name: accepted is " + accepted_keys(command_));
        const auto types = types_of(command_, name);
        if (types.empty()) return faults_.add(param, refused("PARAM", name, accepted_keys(command_)));
        const std::string ptype = attribute(param, "ptype");
        const auto type = static_cast<uint32_t>(get_ptype_by_name(ptype.c_str()));
        const auto [first, added] = params_.emplace(name, param);
        if (ptype.empty()) return faults_.add(param, "has no ptype: accepted is " + names_of(types));
        if (std::find(types.begin(), types.end(), type) == types.end())
            return faults_.add(param, refused("ptype", ptype, names_of(types)));
        if (!added) check_again(param, first->second);
        selects_ = (check_param(param, type, faults_) & PARAM_OPTION_PINDEX) != 0 || selects_;
        if (command_.variant == APCONF_RECORD_NODE) check_index(param);
        if (!is_node(command_)) check_unset(param, type);
    }

    // The number of an instance is its place in the block.
    void check_index(const xmlNode *param)
    {
        const std::string max = attribute(param, "max");
        const auto last = command_.array.count - 1U;
        if (!max.empty() && strtoul(max.c_str(), nullptr, 10) > last)
            faults_.add(param, refused("max", max, "at most " + std::to_string(last)));
    }

    // A key can stand again where another choice leads, so that a line can tell what stays stored.
    void check_again(const xmlNode *param, const xmlNode *first)
    {
        const std::string line = std::to_string(xmlGetLineNo(first));
        const std::string name = attribute(param, "name");
        if (!in_other_choice(param, first))
            return faults_.add(param, refused("PARAM", name, "one PARAM a key on a line; it stands in line " + line));
        if (attribute(param, "ptype") != attribute(first, "ptype")) return;
        for (const char *limit : {"min", "max"})
            if (attribute(param, limit) != attribute(first, limit))
                faults_.add(param, refused(limit, attribute(param, limit),
                                           "'" + attribute(first, limit) + "' as in line " + line));
    }

    static bool in_other_choice(const xmlNode *param, const xmlNode *first)
    {
        for (const xmlNode *around = param->parent; around && is_item(around); around = around->parent)
            for (const xmlNode *other = first->parent; other && is_item(other); other = other->parent)
                if (around == other) return attribute(around, "option").find("list") != std::string::npos;
        return false;
    }

    // The block keeps one value of a number for "not set". As a limit it looks as if it could be set.
    void check_unset(const xmlNode *param, uint32_t type)
    {
        const char *unset = unset_value(attribute(param, "name"), type);
        for (const char *limit : {"min", "max"})
            if (unset && attribute(param, limit) == unset)
                faults_.add(param, refused(limit, unset, "a limit without it, for it means \"not set\""));
    }

    // As text; null: all values of the key can be set.
    const char *unset_value(const std::string &key, uint32_t type) const
    {
        if (command_.variant == APCONF_COUNTED_ARRAY) return nullptr;
        const auto scope = static_cast<apconf_scope>(command_.scope);
        std::vector<uint64_t> record(apconf_scope_size(scope) / sizeof(uint64_t) + 1);
        apconf_unset_record(scope, record.data());
        for (unsigned i = 0; i < command_.field_count; ++i) {
            const apconf_field &field = command_.fields[i];
            if (field.key && key == field.key && field.ptype == type && field.kind == APCONF_FIELD_VALUE)
                return get_ptype_value_string(type, reinterpret_cast<const char *>(record.data()) + field.offset);
        }
        return nullptr;
    }

    const xmlNode *element_;
    const apconf_command &command_;
    element_faults &faults_;
    std::map<std::string, const xmlNode *> params_;  // the first of each key met so far
    bool selects_ = false;                           // one of them picks the entry
};

class tree_checker
{
public:
    tree_checker(element_faults &faults, schema_report &report) : faults_(faults), report_(report) {}

    void check_package(xmlNode *element, cmd_node &node, const std::string &path)
    {
        std::map<std::string, long> lines;
        const std::string above = path.empty() ? "" : path + "/";
        for (xmlNode *child : children_of(element)) {
            if (is_named(child, "INDEX")) continue;
            const std::string name = reinterpret_cast<const char *>(child->name);
            cmd_node *below = search_child_cmd(&node, name.c_str());
            const auto [first, added] = lines.emplace(name, xmlGetLineNo(child));
            if (!below)
                faults_.add(child, "unknown: accepted is " + accepted_command(node, path, name));
            else if (!added)
                faults_.add(child, "stands in line " + std::to_string(first->second) +
                                       " already: accepted is one element a command");
            else
                check_element(child, *below, above + name);
        }
        for (const std::string &name : names_below(node))
            if (!lines.count(name))
                faults_.add(element, "has no element " + name + ": accepted is one for each command of the package");
    }

private:
    void check_element(xmlNode *element, cmd_node &node, const std::string &path)
    {
        const std::string ntype = attribute(element, "ntype");
        const bool is_package = node.children != nullptr;
        if (is_package && ntype != "package")
            return faults_.add(element, refused("ntype", ntype, "package, which this is"));
        if (!is_package && (ntype.empty() || ntype == "package"))
            return faults_.add(element, refused("ntype", ntype, "cmd, for this is a command"));
        ++(is_package ? report_.packages : report_.commands);
        xmlNode *words = words_of(element);
        if (!words)
            faults_.add(element, "has no INDEX: accepted is one, before the package's commands");
        else
            command_checker(words, *apconf_find_command(&node), faults_).check();
        if (is_package) check_package(element, node, path);
    }

    element_faults &faults_;
    schema_report &report_;
};

}  // namespace

void check_records(xmlNode *root, element_faults &faults, schema_report &report)
{
    tree_checker(faults, report).check_package(root, *get_cmd_tree(), "");
}

}  // namespace apconf_host

// Reads the command-tree file for the command line: one walk over its elements, beside the loaded command tree.
#include "cli/vocabulary.h"

#include <libxml/parser.h>

#include <algorithm>
#include <cstring>
#include <sstream>
#include <stdexcept>

#include "cli/xml.h"

#include "json.h"

namespace apconf_host
{

namespace
{

const cmd_param *find_param(const cmd_node &node, const std::string &name, const std::string &ptype)
{
    const int number = get_ptype_by_name(ptype.c_str());
    for (uint32_t i = 0; node.params && i < node.param_count; ++i)
        if (node.params[i].name && name == node.params[i].name && node.params[i].ptype == number)
            return &node.params[i];
    return nullptr;
}

// Two rows can share a key; the one of the parameter's own type goes before.
const apconf_field *find_field(const apconf_command &command, const std::string &name, const cmd_param *param)
{
    const apconf_field *found = nullptr;
    for (unsigned i = 0; i < command.field_count; ++i) {
        const apconf_field &field = command.fields[i];
        if (!field.key || name != field.key) continue;
        if (param && static_cast<uint32_t>(param->ptype) == field.ptype) return &field;
        if (!found) found = &field;
    }
    return found;
}

std::vector<std::string> split_words(const std::string &text)
{
    std::istringstream stream(text);
    std::vector<std::string> words;
    for (std::string word; stream >> word;) words.push_back(word);
    return words;
}

// Every element below `parent` that is an item. What is neither PARAM nor BODY, or has no name, says nothing.
std::vector<syntax_item> read_items(xmlNode *parent, const syntax_command &owner)
{
    std::vector<syntax_item> items;
    for (xmlNode *element = xmlFirstElementChild(parent); element; element = xmlNextElementSibling(element)) {
        const bool is_param = is_named(element, "PARAM");
        syntax_item item;
        item.name = attribute(element, "name");
        if ((!is_param && !is_named(element, "BODY")) || item.name.empty()) continue;
        uint8_t flags = 0;
        resolve_param_option_attr(get_xmlnode_attr(element, "option"), &flags);
        item.optional = flags & PARAM_OPTION_OPTIONAL;
        item.hidden = flags & PARAM_OPTION_HIDDEN;
        item.selects = flags & PARAM_OPTION_PINDEX;
        item.help = attribute(element, "help");
        if (is_param) {
            item.what = flags & PARAM_OPTION_LIST ? syntax_item::kind::choice : syntax_item::kind::value;
            item.ptype = attribute(element, "ptype");
            item.min = attribute(element, "min");
            item.max = attribute(element, "max");
            item.default_value = attribute(element, "default");
            item.source = attribute(element, "source");
            item.param = find_param(*owner.node, item.name, item.ptype);
            item.field = find_field(*owner.command, item.name, item.param);
            if (!item.param || !item.field) continue;
        }
        item.items = read_items(element, owner);
        items.push_back(std::move(item));
    }
    return items;
}

std::unique_ptr<syntax_command> read_command(xmlNode *element, cmd_node *node, const syntax_command *package)
{
    const bool is_package = node && node->children;
    xmlNode *words = is_package ? search_child_node(element, "INDEX") : element;
    const apconf_command *description = node ? apconf_find_command(node) : nullptr;
    if (!description || !words || attribute(words, "cli_cmd").empty()) return nullptr;

    auto command = std::make_unique<syntax_command>();
    command->node = node;
    command->command = description;
    command->package = package;
    command->path = (package ? package->path + "/" : "") + node->name;
    command->words = split_words(attribute(words, "cli_cmd"));
    command->has_no = attribute(words, "ntype") == "cmd";
    command->help = attribute(words, "help");
    command->source = attribute(words, "source");
    command->items = read_items(words, *command);
    if (!is_package) return command;
    for (xmlNode *child = xmlFirstElementChild(element); child; child = xmlNextElementSibling(child)) {
        cmd_node *below = search_child_cmd(node, reinterpret_cast<const char *>(child->name));
        if (auto read = read_command(child, below, command.get())) command->below.push_back(std::move(read));
    }
    return command;
}

void collect_values(const std::vector<syntax_item> &items, std::vector<const syntax_item *> &values)
{
    for (const syntax_item &item : items) {
        if (item.what != syntax_item::kind::word) values.push_back(&item);
        collect_values(item.items, values);
    }
}

const syntax_command *find_below(const syntax_command &command, const cmd_node *node)
{
    if (command.node == node) return &command;
    for (const auto &below : command.below)
        if (const syntax_command *found = find_below(*below, node)) return found;
    return nullptr;
}

}  // namespace

std::string syntax_command::line_words() const
{
    std::string text;
    for (const std::string &word : words) text += (text.empty() ? "" : " ") + word;
    return text;
}

std::vector<const syntax_item *> values_of(const syntax_command &command)
{
    std::vector<const syntax_item *> values;
    collect_values(command.items, values);
    return values;
}

std::string in_brackets(json_object *index)
{
    std::string text;
    if (!json_object_is_type(index, json_type_object)) return text;
    json_object_object_foreach(index, key, value)
    {
        if (strcmp(key, ".OPT") != 0) text += "[" + shown(value) + "]";
    }
    return text;
}

vocabulary::vocabulary(const char *file)
    : document_(
          xmlReadFile(file, "UTF-8", XML_PARSE_NOBLANKS | XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING))
{
    xmlNode *root_element = document_ ? xmlDocGetRootElement(document_.get()) : nullptr;
    xmlNode *element = root_element ? search_child_node(root_element, "config") : nullptr;
    if (element) config_ = read_command(element, search_child_cmd(get_cmd_tree(), "config"), nullptr);
    if (!config_) throw std::runtime_error(std::string(file) + ": no command-tree file; 'apconf check' says why");
}

const syntax_command *vocabulary::find(const cmd_node *node) const
{
    return find_below(*config_, node);
}

xmlNode *vocabulary::document_root() const
{
    return xmlDocGetRootElement(document_.get());
}

}  // namespace apconf_host

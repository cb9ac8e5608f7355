// A command-tree file against its grammar. What the grammar's own lists do not explain is narrowed down: to the command
// or package that is refused when it stands alone, and in it to the parameter without which it is not.
#include <libxml/parser.h>

#include <new>

#include "cli/check_parts.h"
#include "cli/grammar.h"

namespace apconf_host
{

namespace
{

// The least that stands for a package's INDEX and for a command.
constexpr const char *least_index = R"(<INDEX ntype="node" cli_cmd="x" help="HELP_X"/>)";
constexpr const char *least_command = R"(<x ntype="cmd" cli_cmd="x" help="HELP_X"/>)";

document_ptr package_with(const std::string &contents)
{
    const std::string text = "<config_cmd_tree><x ntype=\"package\">" + contents + "</x></config_cmd_tree>";
    document_ptr document(xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, nullptr, 0));
    if (!document) throw std::bad_alloc();
    return document;
}

xmlNode *copy_into(const document_ptr &document, const xmlNode *element)
{
    constexpr int whole = 1;
    xmlNode *copy = xmlDocCopyNode(const_cast<xmlNode *>(element), document.get(), whole);
    if (!copy) throw std::bad_alloc();
    return copy;
}

bool is_package(const xmlNode *element)
{
    return attribute(element, "ntype") == "package";
}

// A command or INDEX in a package that holds nothing else.
struct lone_element {
    document_ptr document;
    xmlNode *element;

    explicit lone_element(const xmlNode *original)
        : document(package_with(is_named(original, "INDEX") ? least_command : least_index)),
          element(copy_into(document, original))
    {
        xmlNode *other = xmlFirstElementChild(xmlFirstElementChild(xmlDocGetRootElement(document.get())));
        if (is_named(original, "INDEX"))
            xmlAddPrevSibling(other, element);
        else
            xmlAddNextSibling(other, element);
    }
};

// A package with the least for each of its elements: it shows whether they stand in the right order.
document_ptr shape_of(const xmlNode *package)
{
    std::string contents;
    for (const xmlNode *child : children_of(package))
        contents += is_named(child, "INDEX") ? least_index : least_command;
    return package_with(contents);
}

void collect_items(const xmlNode *parent, std::vector<xmlNode *> &items)
{
    for (xmlNode *child : children_of(parent)) {
        collect_items(child, items);
        items.push_back(child);
    }
}

class grammar_checker
{
public:
    explicit grammar_checker(element_faults &faults) : faults_(faults) {}

    void check(xmlNode *root)
    {
        const std::string complaint = grammar_.complaint(root->doc);
        if (complaint.empty()) return;
        explain(root);
        narrow_down(root);
        if (faults_.all().empty()) add_complaint(root, complaint);
    }

private:
    // Whatever the grammar's lists of attributes and elements show to be wrong, here and below.
    void explain(const xmlNode *element)
    {
        if (!faults_.has(element)) explain_attributes(element);
        const auto &allowed = grammar_.rules_of(element).children;
        for (const xmlNode *child : children_of(element)) {
            if (is_allowed(child, allowed))
                explain(child);
            else if (!faults_.has(child))
                faults_.add(child,
                            "refused: accepted is " +
                                (allowed.empty() ? "no element" : alternatives({allowed.begin(), allowed.end()})) +
                                " here");
        }
    }

    static bool is_allowed(const xmlNode *child, const std::set<std::string> &allowed)
    {
        if (is_item(child) || is_named(child, "INDEX"))
            return allowed.count(reinterpret_cast<const char *>(child->name)) != 0;
        return allowed.count("command") || allowed.count("package");
    }

    void explain_attributes(const xmlNode *element)
    {
        const attribute_rules &rules = grammar_.rules_of(element).attributes;
        std::vector<std::string> names;
        for (const auto &[name, rule] : rules) names.push_back(name);
        for (const xmlAttr *given = element->properties; given; given = given->next) {
            const std::string name = reinterpret_cast<const char *>(given->name);
            const std::string value = attribute(element, name.c_str());
            const auto rule = rules.find(name);
            if (rule == rules.end())
                faults_.add(element, refused("attribute", name, names.empty() ? "none" : alternatives(names)));
            else if (!rule->second.fits(value))
                faults_.add(element, refused(name, value, rule->second.in_words()));
        }
        for (const auto &[name, rule] : rules)
            if (rule.required && !get_xmlnode_attr(element, name.c_str()))
                faults_.add(element, "has no " + name + ": accepted is " + rule.in_words());
    }

    // What has faults already, here or below, is left alone.
    bool has_faults(const xmlNode *element) const
    {
        for (const xmlNode *child : children_of(element))
            if (has_faults(child)) return true;
        return faults_.has(element);
    }

    void narrow_down(const xmlNode *package)
    {
        for (const xmlNode *child : children_of(package)) {
            if (is_package(child))
                narrow_down(child);
            else if (!has_faults(child))
                check_alone(child);
        }
        if (is_package(package) && !has_faults(package))
            if (const auto complaint = grammar_.complaint(shape_of(package).get()); !complaint.empty())
                add_complaint(package, complaint);
    }

    void check_alone(const xmlNode *element)
    {
        const std::string complaint = grammar_.complaint(lone_element(element).document.get());
        if (complaint.empty()) return;
        std::vector<xmlNode *> items;
        collect_items(element, items);
        for (size_t i = 0; i < items.size(); ++i)
            if (is_at_fault(element, i)) return explain_item(element, items[i], i);
        add_complaint(element, complaint);
    }

    // Without this item the command is valid.
    bool is_at_fault(const xmlNode *command, size_t number) const
    {
        const lone_element alone(command);
        xmlNode *item = item_of(alone, number);
        xmlUnlinkNode(item);
        xmlFreeNode(item);
        return grammar_.complaint(alone.document.get()).empty();
    }

    // Perhaps it is valid without one of its attributes.
    void explain_item(const xmlNode *command, const xmlNode *item, size_t number)
    {
        for (const xmlAttr *given = item->properties; given; given = given->next) {
            const std::string name = reinterpret_cast<const char *>(given->name);
            const lone_element alone(command);
            xmlUnsetProp(item_of(alone, number), given->name);
            if (grammar_.complaint(alone.document.get()).empty())
                return faults_.add(item, refused(name, attribute(item, name.c_str()), "the element without it here"));
        }
        faults_.add(item, "the grammar has no place for it here: accepted is what config_cmd_tree.rng says");
    }

    static xmlNode *item_of(const lone_element &alone, size_t number)
    {
        std::vector<xmlNode *> items;
        collect_items(alone.element, items);
        return items[number];
    }

    void add_complaint(const xmlNode *element, const std::string &complaint)
    {
        faults_.add(element,
                    "does not follow the grammar: " + complaint + "; accepted is what config_cmd_tree.rng says");
    }

    grammar grammar_;
    element_faults &faults_;
};

}  // namespace

void check_grammar(xmlNode *root, element_faults &faults)
{
    grammar_checker(faults).check(root);
}

}  // namespace apconf_host

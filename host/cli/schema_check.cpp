// Reads the document, has every part look at it, and puts the faults into the order of their lines.
#include "cli/schema_check.h"

#include <libxml/parser.h>

#include <algorithm>
#include <limits>
#include <sstream>

#include "cli/check_parts.h"

namespace apconf_host
{

namespace
{

// The first thing that libxml2 finds; what follows is mostly its consequence.
class first_error
{
public:
    first_error() { xmlSetStructuredErrorFunc(this, note); }
    ~first_error() { xmlSetStructuredErrorFunc(nullptr, nullptr); }
    first_error(const first_error &) = delete;
    first_error &operator=(const first_error &) = delete;

    size_t line = 1;
    std::string text;

private:
    static void note(void *self, xmlErrorPtr error)
    {
        auto &first = *static_cast<first_error *>(self);
        if (error->level < XML_ERR_ERROR || !first.text.empty() || !error->message) return;
        first.line = static_cast<size_t>(std::max(error->line, 1));
        first.text = error->message;
        first.text.erase(std::min(first.text.find('\n'), first.text.size()));
    }
};

// libxml2 notes the line in which a start tag ends; people look for the one in which it begins.
class line_finder
{
public:
    explicit line_finder(const std::string &text)
    {
        std::istringstream stream(text);
        for (std::string line; std::getline(stream, line);) lines_.push_back(line);
    }

    void correct(xmlNode *element) const
    {
        constexpr size_t most = std::numeric_limits<decltype(element->line)>::max();
        const std::string tag = std::string("<") + reinterpret_cast<const char *>(element->name);
        size_t line = std::min(static_cast<size_t>(xmlGetLineNo(element)), lines_.size());
        while (line > 0 && lines_[line - 1].find(tag) == std::string::npos) --line;
        if (line > 0 && line < most) element->line = static_cast<decltype(element->line)>(line);
        for (xmlNode *child : children_of(element)) correct(child);
    }

private:
    std::vector<std::string> lines_;
};

document_ptr parse(const schema_text &tree, schema_report &report)
{
    const first_error error;
    document_ptr document(xmlReadMemory(tree.text.data(), static_cast<int>(tree.text.size()), tree.name.c_str(),
                                        "UTF-8", XML_PARSE_NOBLANKS | XML_PARSE_NONET | XML_PARSE_BIG_LINES));
    if (document) {
        line_finder(tree.text).correct(xmlDocGetRootElement(document.get()));
        return document;
    }
    const std::string what = error.text.empty() ? "it cannot be read" : error.text;
    report.faults.push_back({tree.name, error.line, "", "not well-formed: " + what + "; accepted is XML"});
    return nullptr;
}

bool holds_commands(const xmlNode *element)
{
    const bool root = !element->parent || element->parent->type != XML_ELEMENT_NODE;
    return root || attribute(element, "ntype") == "package";
}

// "config/radio/channel_cmd"; what is inside a command or INDEX has its own name behind a blank.
std::string label(const xmlNode *element)
{
    std::string name = reinterpret_cast<const char *>(element->name);
    const xmlNode *parent = element->parent;
    if (parent->type != XML_ELEMENT_NODE) return name;
    if (is_named(element, "INDEX")) return label(parent) + " INDEX";
    if (holds_commands(parent) && !is_item(element)) {
        const bool top = parent->parent->type != XML_ELEMENT_NODE;
        return top ? name : label(parent) + "/" + name;
    }
    while (!holds_commands(parent) && !holds_commands(parent->parent)) parent = parent->parent;
    if (is_named(parent, "INDEX")) parent = parent->parent;
    const std::string own = attribute(element, "name");
    return label(parent) + " " + (own.empty() ? name : own);
}

}  // namespace

schema_report check_schema(const schema_text &tree, const schema_text *help)
{
    schema_report report;
    const document_ptr document = parse(tree, report);
    if (!document) return report;

    xmlNode *root = xmlDocGetRootElement(document.get());
    element_faults faults;
    check_records(root, faults, report);
    if (report.packages == 0) {
        const auto line = static_cast<size_t>(xmlGetLineNo(root));
        report.faults.push_back(
            {tree.name, line, label(root), "holds no command: accepted is a config_cmd_tree with the element config"});
        return report;
    }
    check_words(root, faults);
    if (help) check_help_keys(root, *help, faults, report);
    check_grammar(root, faults);

    std::vector<schema_fault> of_tree;
    for (const auto &fault : faults.all())
        of_tree.push_back(
            {tree.name, static_cast<size_t>(xmlGetLineNo(fault.element)), label(fault.element), fault.text});
    std::stable_sort(of_tree.begin(), of_tree.end(),
                     [](const schema_fault &one, const schema_fault &other) { return one.line < other.line; });
    report.faults.insert(report.faults.begin(), of_tree.begin(), of_tree.end());
    return report;
}

std::string to_text(const schema_fault &fault)
{
    return fault.file + ":" + std::to_string(fault.line) + ": " + (fault.element.empty() ? "" : fault.element + ": ") +
           fault.text;
}

}  // namespace apconf_host

#include "vocabulary/tree_file.h"

#include <gtest/gtest.h>
#include <libxml/parser.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace apconf_test
{

namespace
{

const xmlNode *index_of(const xmlNode *package)
{
    for (const xmlNode *child : elements_below(package))
        if (is_named(child, "INDEX")) return child;
    return nullptr;
}

void collect(const xmlNode *element, const cmd_node *around, const std::string &path, std::vector<entry> &found)
{
    const auto *name = reinterpret_cast<const char *>(element->name);
    const cmd_node *node = search_child_cmd(const_cast<cmd_node *>(around), name);
    const bool package = attribute(element, "ntype") == "package";
    const std::string here = path.empty() ? name : path + "/" + name;
    const xmlNode *line = package ? index_of(element) : element;
    found.push_back({here, element, line, node, node ? apconf_find_command(node) : nullptr});
    if (!package) return;
    for (const xmlNode *child : elements_below(element))
        if (!is_named(child, "INDEX")) collect(child, node, here, found);
}

// Once in a process: loading twice would give every node its parameters twice.
const std::vector<log_line> &load()
{
    static const std::vector<log_line> lines = [] {
        std::filesystem::copy_file(tree_path, "/etc/config_cmd_tree.xml",
                                   std::filesystem::copy_options::overwrite_existing);
        register_root_cmd(lib_pkg_root);
        const log_capture log;
        EXPECT_EQ(command_tree_parser(), 0);
        return log.lines();
    }();
    return lines;
}

}  // namespace

const std::vector<entry> &entries()
{
    static const std::vector<entry> all = [] {
        load();
        std::vector<entry> found;
        for (const xmlNode *element : elements_below(tree_root())) collect(element, get_cmd_tree(), "", found);
        return found;
    }();
    return all;
}

std::vector<entry> described()
{
    std::vector<entry> found;
    for (const entry &entry : entries())
        if (entry.command && entry.line) found.push_back(entry);
    return found;
}

xmlNode *tree_root()
{
    static const apconf::xml_doc document = parsed(contents(tree_path));
    return xmlDocGetRootElement(document.get());
}

const std::vector<log_line> &loading_log()
{
    return load();
}

std::string contents(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file) << path;
    return {std::istreambuf_iterator<char>(file), {}};
}

apconf::xml_doc parsed(const std::string &xml)
{
    apconf::xml_doc document(
        xmlReadMemory(xml.data(), static_cast<int>(xml.size()), "vocabulary.xml", "UTF-8", XML_PARSE_NOBLANKS));
    EXPECT_TRUE(document);
    return document;
}

std::vector<const xmlNode *> elements_below(const xmlNode *parent)
{
    std::vector<const xmlNode *> children;
    for (const xmlNode *child = parent->children; child; child = child->next)
        if (child->type == XML_ELEMENT_NODE) children.push_back(child);
    return children;
}

bool is_named(const xmlNode *element, const char *name)
{
    return strcmp(reinterpret_cast<const char *>(element->name), name) == 0;
}

bool has_attribute(const xmlNode *element, const char *name)
{
    return get_xmlnode_attr(element, name) != nullptr;
}

std::string attribute(const xmlNode *element, const char *name)
{
    const char *text = get_xmlnode_attr(element, name);
    return text ? text : "";
}

bool has_option(const xmlNode *element, uint8_t option)
{
    uint8_t flags = 0;
    resolve_param_option_attr(attribute(element, "option").c_str(), &flags);
    return (flags & option) != 0;
}

std::vector<const xmlNode *> parameters(const xmlNode *line)
{
    std::vector<const xmlNode *> found;
    for (const xmlNode *child : elements_below(line)) {
        if (is_named(child, "PARAM")) found.push_back(child);
        const auto inside = parameters(child);
        found.insert(found.end(), inside.begin(), inside.end());
    }
    return found;
}

}  // namespace apconf_test

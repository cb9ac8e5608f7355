// Makes the reduced command-tree files that the library's listing and help read, and takes its output apart.
#include "cli/listing.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <sstream>
#include <stdexcept>

#include "cli/xml.h"

namespace apconf_host
{

namespace
{

struct file_release {
    void operator()(FILE *file) const { fclose(file); }
};
using file_ptr = std::unique_ptr<FILE, file_release>;

document_ptr empty_document()
{
    document_ptr document(xmlNewDoc(nullptr));
    xmlNode *root = document ? xmlNewNode(nullptr, reinterpret_cast<const xmlChar *>("config_cmd_tree")) : nullptr;
    if (!root) throw std::bad_alloc();
    xmlDocSetRootElement(document.get(), root);
    return document;
}

xmlNode *element_of(const vocabulary &vocabulary, const syntax_command &command)
{
    xmlNode *parent = command.package ? element_of(vocabulary, *command.package) : vocabulary.document_root();
    return search_child_node(parent, command.node->name);
}

void add_copy(xmlNode *parent, xmlNode *element, extent extent)
{
    constexpr int whole = 1;
    constexpr int attributes_only = 2;
    xmlNode *index = search_child_node(element, "INDEX");
    const bool alone = index && extent == extent::itself;
    xmlNode *copy = xmlDocCopyNode(element, parent->doc, alone ? attributes_only : whole);
    if (!copy) throw std::bad_alloc();
    xmlAddChild(parent, copy);
    if (alone) add_copy(copy, index, extent);
}

document_ptr document_of(const vocabulary &vocabulary, const syntax_command &command, extent extent)
{
    document_ptr document = empty_document();
    add_copy(xmlDocGetRootElement(document.get()), element_of(vocabulary, command), extent);
    return document;
}

// What `print` writes about a file that holds this document, line by line.
std::vector<std::string> printed(xmlDoc *document, void print(FILE *, const char *))
{
    const file_ptr file(fdopen(memfd_create("command-tree", MFD_CLOEXEC), "w"));
    if (!file || xmlDocDump(file.get(), document) < 0 || fflush(file.get()) != 0)
        throw std::runtime_error("no memory for a command-tree file");
    const std::string name = "/proc/self/fd/" + std::to_string(fileno(file.get()));

    char *text = nullptr;
    size_t size = 0;
    file_ptr out(open_memstream(&text, &size));
    if (!out) throw std::bad_alloc();
    print(out.get(), name.c_str());
    out.reset();
    std::istringstream stream(std::string(text, size));
    free(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

// "KEY       = text", or the key alone.
help_line parse(const std::string &line)
{
    const size_t equals = line.find(" = ");
    const std::string key = line.substr(0, equals);
    return {key.substr(0, key.find_last_not_of(' ') + 1), equals == std::string::npos ? "" : line.substr(equals + 3)};
}

std::vector<help_line> parse_all(const std::vector<std::string> &lines)
{
    std::vector<help_line> parsed;
    parsed.reserve(lines.size());
    for (const std::string &line : lines) parsed.push_back(parse(line));
    return parsed;
}

}  // namespace

std::vector<std::string> syntax_lines(const vocabulary &vocabulary, const syntax_command &command, extent extent)
{
    return printed(document_of(vocabulary, command, extent).get(), cli_list);
}

std::string help_line::printed() const
{
    if (text.empty()) return key;
    std::string line = key;
    line.resize(std::max<size_t>(key.size(), 32), ' ');
    return line + " = " + text;
}

std::vector<help_line> help_lines(const vocabulary &vocabulary, const syntax_command &command)
{
    const document_ptr document = document_of(vocabulary, command, extent::with_what_below);
    auto lines = parse_all(printed(document.get(), help_dump));
    // The front end's own keys go before.
    lines.erase(lines.begin(), lines.begin() + static_cast<ptrdiff_t>(front_end_help().size()));
    return lines;
}

std::vector<help_line> front_end_help()
{
    return parse_all(printed(empty_document().get(), help_dump));
}

}  // namespace apconf_host

// docs/commands.md has every package and command, and its links lead somewhere.
#include <apconf/apconf.h>
#include <gtest/gtest.h>

#include <set>

#include "docs/document.h"

using namespace apconf_test;

namespace
{

std::string page()
{
    return source_file("docs/commands.md");
}

// The place of a heading, as pages are rendered: small letters, blanks as hyphens, no other signs.
std::string anchor(const std::string &heading)
{
    std::string name;
    for (const char c : heading) {
        if (isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '-')
            name += static_cast<char>(tolower(static_cast<unsigned char>(c)));
        if (c == ' ') name += '-';
    }
    return name;
}

std::set<std::string> headings()
{
    std::set<std::string> found;
    for (const auto &heading : matches(page(), "\n#+ ([^\n]*)")) found.insert(heading[1]);
    return found;
}

// The part below a package's heading, up to the next package.
std::string section(const std::string &path)
{
    const std::string text = page();
    const size_t begin = text.find("\n## " + path + "\n");
    if (begin == std::string::npos) return "";
    return text.substr(begin, text.find("\n## ", begin + 1) - begin);
}

void expect_all_below(const cmd_node &package, const std::string &path, const std::set<std::string> &known)
{
    const std::string own = section(path);
    EXPECT_NE(own, "") << path;
    for (const cmd_node *node = package.children; node->name; ++node) {
        const std::string here = path + "/" + node->name;
        if (node->children)
            expect_all_below(*node, here, known);
        else
            EXPECT_TRUE(known.contains(here) !=
                        (own.find("\n| `" + std::string(node->name) + "` | ") != std::string::npos))
                << here << " has one place";
    }
}

}  // namespace

TEST(commands, every_package_and_command_has_its_place)
{
    expect_all_below(lib_pkg_root[0], "config", headings());
}

TEST(commands, links_lead_to_a_heading)
{
    std::set<std::string> anchors;
    for (const std::string &heading : headings()) EXPECT_TRUE(anchors.insert(anchor(heading)).second) << heading;
    const auto links = matches(page(), "\\]\\(#([^)]*)\\)");
    EXPECT_GT(links.size(), 36U);
    for (const auto &link : links) EXPECT_TRUE(anchors.contains(link[1])) << link[1];
}

TEST(commands, no_row_of_a_table_has_another_number_of_cells_than_its_head)
{
    const std::string text = page();
    size_t rows = 0;
    for (const auto &row : matches(text, "\n\\|([^\n]*)\\|")) {
        size_t cells = 1;
        for (size_t i = 1; i < row[1].size(); ++i) cells += row[1][i] == '|' && row[1][i - 1] != '\\';
        rows += cells == 4;
        EXPECT_TRUE(cells == 4 || cells == 2) << row[0];
    }
    EXPECT_GT(rows, 256U);
}

// Each help key of the tree file, and each that the command line itself needs, has one text; no text is for nothing.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <sstream>

#include "apconf/help.h"
#include "support/printed.h"
#include "vocabulary/tree_file.h"

namespace
{

using namespace apconf_test;

const std::set<std::string> keys_of_the_command_line = {
    "HELP_COMMIT",
    "HELP_NO",
    "HELP_END",
    "HELP_EXIT",
    "HELP_SHOW",
    "HELP_SHOW_RUNNING_CONFIG",
    "HELP_SHOW_CONFIGUREHELP_PIPE",
    "HELP_PIPE_FILTER_TYPE",
    "HELP_PIPE_FILTER_INCLUDE",
    "HELP_PIPE_FILTER_EXCLUDE",
    "HELP_PIPE_REGEXPR",
};

void add_keys(const xmlNode *element, std::set<std::string> &keys)
{
    if (has_attribute(element, "help")) keys.insert(attribute(element, "help"));
    for (const xmlNode *child : elements_below(element)) add_keys(child, keys);
}

// Key and text of each line that has both; a key that stands twice counts twice.
std::multimap<std::string, std::string> texts()
{
    std::multimap<std::string, std::string> found;
    std::istringstream file(contents(help_path));
    for (std::string line; std::getline(file, line);) {
        const size_t equals = line.find('=');
        if (equals == std::string::npos) continue;
        const std::string key = line.substr(0, line.find_last_not_of(' ', equals - 1) + 1);
        const size_t begin = line.find_first_not_of(' ', equals + 1);
        found.emplace(key, begin == std::string::npos ? "" : line.substr(begin));
    }
    return found;
}

TEST(Help, EachKeyHasOneTextAndEachTextAKey)
{
    std::set<std::string> used = keys_of_the_command_line;
    for (const entry &entry : described()) add_keys(entry.element, used);
    const auto given = texts();
    std::set<std::string> keys;
    for (const auto &[key, text] : given) {
        EXPECT_TRUE(keys.insert(key).second) << key << " stands twice";
        EXPECT_NE(text, "") << key;
        EXPECT_EQ(text.find("  "), std::string::npos) << key;
    }
    EXPECT_EQ(keys, used);
}

TEST(Help, LinesFitTheReadersBuffer)
{
    std::istringstream file(contents(help_path));
    for (std::string line; std::getline(file, line);) EXPECT_LE(line.size(), 511U) << line;
}

TEST(Help, NoKeyIsPrintedBare)
{
    write_file("/etc/cmd_tree_help.txt", contents(help_path));
    std::istringstream dump(printed([](FILE *out) { help_dump(out, tree_path); }));
    size_t lines = 0;
    for (std::string line; std::getline(dump, line); ++lines) EXPECT_THAT(line, testing::HasSubstr(" = "));
    EXPECT_EQ(lines, texts().size());
    remove("/etc/cmd_tree_help.txt");
}

}  // namespace

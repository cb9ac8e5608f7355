// docs/architecture.md says which folder may use which, what the manners and scopes are and where things stand; the
// source tree agrees.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <set>

#include "docs/document.h"

using namespace apconf_test;
namespace fs = std::filesystem;

namespace
{

using name_set = std::set<std::string>;

std::string architecture()
{
    return source_file("docs/architecture.md");
}

name_set words_of(const std::string &cell)
{
    name_set words;
    for (const auto &word : matches(cell, "[a-z]+")) words.insert(word[0]);
    return words;
}

struct folder {
    name_set headers;  // its public ones
    name_set may_use;  // "apconf" stands for all public headers
};

std::map<std::string, folder> documented_folders()
{
    std::map<std::string, folder> folders;
    for (const auto &row : table_below(architecture(), "## Folders")) {
        folder &entry = folders[row[0].substr(0, row[0].find('/'))];
        for (const auto &header : matches(row[2], "[a-z_]+\\.h")) entry.headers.insert(header[0]);
        entry.may_use = words_of(row[3]);
    }
    return folders;
}

std::string owner_of(const std::string &public_header, const std::map<std::string, folder> &folders)
{
    for (const auto &[name, entry] : folders)
        if (entry.headers.contains(public_header)) return name;
    return public_header == "apconf.h" ? "apconf" : "";
}

// The folders whose headers a file includes; files of its own folder count for nothing.
name_set used_folders(const std::string &text, const std::string &own, const std::map<std::string, folder> &folders)
{
    name_set used;
    for (const auto &include : matches(text, R"re(#include ["<]([a-z_]+)/([a-z_/0-9]+\.h)[">])re")) {
        const std::string &where = include[1];
        const bool is_public = where == "apconf";
        if (!is_public && !folders.contains(where)) continue;
        const std::string user = is_public && own != "host" ? owner_of(include[2], folders) : where;
        if (user != own) used.insert(user);
    }
    return used;
}

std::vector<fs::path> sources_below(const std::string &name)
{
    std::vector<fs::path> found;
    for (const auto &entry : fs::recursive_directory_iterator(fs::path(APCONF_SOURCE_DIR) / name))
        if (entry.path().extension() == ".cpp" || entry.path().extension() == ".h") found.push_back(entry.path());
    return found;
}

std::vector<std::string> first_column(const std::string &heading)
{
    std::vector<std::string> names;
    for (const auto &row : table_below(architecture(), heading)) names.push_back(row[0]);
    return names;
}

std::vector<std::string> enumerators(const std::string &enumeration, const std::string &but)
{
    const std::string body = between(source_file("include/apconf/description.h"), "enum " + enumeration + " {", "\n};");
    std::vector<std::string> names;
    for (const auto &name : matches(body, "\n    (APCONF_[A-Z_]+)"))
        if (name[1] != but) names.push_back(name[1]);
    return names;
}

}  // namespace

TEST(architecture, folders_use_only_what_the_table_allows)
{
    const auto folders = documented_folders();
    ASSERT_EQ(folders.size(), 6U);
    for (const auto &[name, entry] : folders)
        for (const fs::path &path : sources_below(name))
            for (const std::string &used :
                 used_folders(source_file(fs::relative(path, APCONF_SOURCE_DIR)), name, folders))
                EXPECT_TRUE(entry.may_use.contains(used)) << path << " uses " << used;
}

TEST(architecture, every_public_header_has_its_folder)
{
    const auto folders = documented_folders();
    for (const fs::path &path : sources_below("include/apconf"))
        EXPECT_NE(owner_of(path.filename(), folders), "") << path;
}

TEST(architecture, all_manners_stand_in_the_table)
{
    EXPECT_EQ(first_column("### Manners"), enumerators("apconf_variant", ""));
}

TEST(architecture, all_scopes_stand_in_the_table)
{
    EXPECT_EQ(first_column("### Scopes"), enumerators("apconf_scope", "APCONF_SCOPE_COUNT"));
}

TEST(architecture, the_files_that_the_documentation_names_exist)
{
    for (const char *document : {"README.md", "DEVELOPERS.md", "docs/architecture.md", "docs/wire.md",
                                 "docs/handlers.md", "docs/target.md", "CHANGELOG.md"}) {
        const auto names = matches(source_file(document), "`(([a-z_0-9]+/)+[a-z_0-9]+\\.[a-z]+)`");
        for (const auto &name : names)
            EXPECT_TRUE(fs::exists(fs::path(APCONF_SOURCE_DIR) / name[1])) << document << " names " << name[1];
    }
}

TEST(documents, links_lead_to_something_to_read)
{
    size_t followed = 0;
    for (const char *document : {"README.md", "DEVELOPERS.md", "packaging/README.md", "docs/architecture.md"})
        for (const auto &link : matches(source_file(document), "\\]\\(([^)#]+)\\)")) {
            const fs::path target = fs::path(APCONF_SOURCE_DIR) / fs::path(document).parent_path() / link[1];
            followed++;
            ASSERT_TRUE(fs::exists(target)) << document << " links to " << link[1];
            EXPECT_TRUE(fs::is_directory(target) || fs::file_size(target) > 100) << target << " is empty";
        }
    EXPECT_GT(followed, 15U);
}

TEST(architecture, quoted_code_stands_so_in_its_file)
{
    size_t quoted = 0;
    for (const char *document : {"README.md", "docs/architecture.md", "docs/handlers.md"})
        for (const fenced_block &block : fenced_blocks(source_file(document))) {
            if (block.name.find('/') == std::string::npos) continue;
            quoted++;
            EXPECT_NE(source_file(block.name).find(block.text), std::string::npos)
                << document << " quotes of " << block.name << ":\n"
                << block.text;
        }
    EXPECT_GE(quoted, 2U);
}

// The tree file and the compiled-in tables say the same: the same records in the same order, the same keys of the same
// types, as many entries as there is room for.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

#include "vocabulary/tree_file.h"

namespace
{

using namespace apconf_test;
using testing::ElementsAre;
using testing::IsEmpty;

void add_paths(const cmd_node *node, const std::string &path, std::vector<std::string> &paths)
{
    for (; node && node->name; ++node) {
        const std::string here = path.empty() ? node->name : path + "/" + node->name;
        paths.push_back(here);
        add_paths(node->children, here, paths);
    }
}

TEST(Agreement, EachRecordHasAnElementInItsPlace)
{
    std::vector<std::string> of_tables;
    add_paths(lib_pkg_root, "", of_tables);
    EXPECT_EQ(of_tables.size(), static_cast<size_t>(APCONF_RECORD_COUNT));
    std::vector<std::string> of_file;
    for (const entry &entry : entries()) of_file.push_back(entry.path);
    EXPECT_EQ(of_file, of_tables);
}

TEST(Agreement, PackagesArePackages)
{
    for (const entry &entry : entries()) {
        ASSERT_TRUE(entry.node) << entry.path << " is not in the tables";
        EXPECT_EQ(entry.is_package(), entry.node->children != nullptr) << entry.path;
        ASSERT_TRUE(entry.line) << entry.path << " has no INDEX";
    }
}

TEST(Agreement, LoadingFindsNothingWrong)
{
    std::vector<std::string> complaints;
    for (const log_line &line : loading_log())
        if (line.priority <= 4) complaints.push_back(line.function + ": " + line.text);
    EXPECT_THAT(complaints, IsEmpty());
}

using key_types = std::map<std::string, std::set<int>>;

// A text is written once, also where the block holds it as one of two text types.
void join_texts(std::set<int> &types)
{
    if (types.contains(PTYPE_STRING)) types.erase(PTYPE_HEX_STR);
}

key_types keys_of_table(const apconf_command &command)
{
    key_types keys;
    for (unsigned i = 0; i < command.field_count; ++i)
        if (command.fields[i].key) keys[command.fields[i].key].insert(command.fields[i].ptype);
    for (auto &[key, types] : keys) join_texts(types);
    return keys;
}

key_types keys_of_file(const entry &entry)
{
    key_types keys;
    for (const xmlNode *param : parameters(entry.line))
        keys[attribute(param, "name")].insert(get_ptype_by_name(attribute(param, "ptype").c_str()));
    return keys;
}

TEST(Agreement, EachKeyIsAParameterOfItsType)
{
    for (const entry &entry : described()) EXPECT_EQ(keys_of_file(entry), keys_of_table(*entry.command)) << entry.path;
}

TEST(Agreement, ParameterInSeveralChoicesIsTheSameEverywhere)
{
    for (const entry &entry : described()) {
        std::map<std::string, std::string> limits;
        for (const xmlNode *param : parameters(entry.line)) {
            const std::string type = attribute(param, "name") + " " + attribute(param, "ptype");
            const std::string range = attribute(param, "min") + " to " + attribute(param, "max");
            EXPECT_EQ(limits.emplace(type, range).first->second, range) << entry.path << ": " << type;
        }
    }
}

bool is_list(const apconf_command &command)
{
    return command.array.count > 1 && command.variant < APCONF_PACKAGE_NODE;
}

TEST(Agreement, RepeatIsTheRoomThereIs)
{
    for (const entry &entry : described()) {
        const int repeat = has_attribute(entry.line, "repeat") ? std::stoi(attribute(entry.line, "repeat")) : 0;
        const bool fixed = is_list(*entry.command) || entry.command->variant == APCONF_RECORD_NODE;
        if (entry.command->variant == APCONF_LIST_NODE) {
            EXPECT_GT(repeat, 0) << entry.path;
        } else {
            EXPECT_EQ(repeat, fixed ? entry.command->array.count : 0) << entry.path;
        }
    }
}

TEST(Agreement, EntriesOfAListAreTakenOutByName)
{
    for (const entry &entry : described()) {
        if (!is_list(*entry.command)) continue;
        std::set<std::string> selecting;
        for (const xmlNode *param : parameters(entry.line))
            if (has_option(param, PARAM_OPTION_PINDEX)) selecting.insert(attribute(param, "name"));
        EXPECT_FALSE(selecting.empty()) << entry.path;
        for (unsigned i = 0; i < entry.command->field_count; ++i) {
            const apconf_field &field = entry.command->fields[i];
            EXPECT_TRUE(!(field.flags & APCONF_FIELD_INDEX) || selecting.contains(field.key)) << entry.path;
        }
    }
}

TEST(Agreement, OnlyInstancesThatCanGoHaveANoLine)
{
    std::vector<std::string> removable;
    for (const entry &entry : described())
        if (entry.is_package() && attribute(entry.line, "ntype") == "cmd") removable.push_back(entry.node->name);
    EXPECT_THAT(removable, ElementsAre("bss", "pool", "vlan", "ip_acl", "ftp"));
}

}  // namespace

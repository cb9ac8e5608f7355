// The vocabulary, held against a list that was written down by hand: catalogue.txt has a line a record, in table
// order, "package: command; key TYPE, ..." or "package: node -> package". TYPE[] is an array of values, "string" a text
// that is put as it is, ".OPT no" an option that the command can report.
#include <json-c/json.h>

#include <cstring>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

#include "samples.h"
#include "store_fixture.h"

namespace apconf_test
{
namespace
{

struct listed_key {
    std::string key;
    std::string type;
    bool operator==(const listed_key &other) const = default;
};
std::ostream &operator<<(std::ostream &stream, const listed_key &shown)
{
    return stream << shown.key << ' ' << shown.type;
}

struct listed_record {
    std::string name;
    std::string children;  // of a node: the package below it
    std::vector<listed_key> keys;
    std::string option;  // what ".OPT" can be, or empty
};

using catalogue = std::map<std::string, std::vector<listed_record>>;

void read_keys(const std::string &list, listed_record &record)
{
    std::istringstream keys(list);
    for (std::string entry; std::getline(keys >> std::ws, entry, ',');) {
        const size_t blank = entry.find(' ');
        const listed_key key{entry.substr(0, blank), entry.substr(blank + 1)};
        if (key.key == ".OPT")
            record.option = key.type;
        else
            record.keys.push_back(key);
    }
}

catalogue read_catalogue()
{
    catalogue listed;
    std::ifstream file(APCONF_SOURCE_DIR "/tests/store/catalogue.txt");
    for (std::string line; std::getline(file, line);) {
        const size_t colon = line.find(": ");
        const size_t semicolon = line.find("; ");
        const size_t arrow = line.find(" -> ");
        listed_record record;
        record.name = line.substr(colon + 2, std::min(semicolon, arrow) - colon - 2);
        if (arrow != std::string::npos) record.children = line.substr(arrow + 4);
        if (semicolon != std::string::npos) read_keys(line.substr(semicolon + 2), record);
        listed[line.substr(0, colon)].push_back(record);
    }
    return listed;
}

class catalogue_test : public store_test
{
protected:
    // Blocks with one element in each list.
    void start()
    {
        reset_blocks();
        lookup = {};
        make_vlans(1);
        make_pools(1);
        make_ip_acls(1);
        root.config.vlan.list[0].vlan_id = 1;
        root.config.dhcp_server.pool.list[0].pool_name = text("pool");
        root.config.ip_acl.list[0].identify = 1;
    }

    char *record_of(const apconf_command &command)
    {
        return static_cast<char *>(apconf_scope_record(static_cast<apconf_scope>(command.scope), &root, &lookup));
    }

    const catalogue listed = read_catalogue();
};

// Gives every field of the command (of an array: of its first element) a value, and has it reported.
void set_command(const apconf_command &command, char *record, bool first_alternative)
{
    for (uint32_t f = 0; f < command.field_count; f++)
        if (is_alternative(command.fields[f], first_alternative))
            set_sample(command.fields[f], record + command.fields[f].offset);
    select_alternative(command, record, first_alternative);
    if (command.variant == APCONF_FLAG || command.variant == APCONF_ONLY_WHEN_REPLACED ||
        command.variant == APCONF_COUNTED_ARRAY)
        set_word(record + command.option, 1);
}

bool is_node(const apconf_command &command)
{
    return command.variant >= APCONF_PACKAGE_NODE;
}

// The tables by the names that programs use. A program that names one may hold a copy of it, which then is the table.
const std::map<std::string, cmd_node *> exported = {
#define EXPORTED_TABLE(name) {#name, lib_pkg_##name},
    APCONF_PACKAGES(EXPORTED_TABLE)
#undef EXPORTED_TABLE
};

TEST_F(catalogue_test, the_list_is_whole)
{
    size_t records = 0, nodes = 0;
    for (const auto &[package, commands] : listed) {
        records += commands.size();
        for (const listed_record &record : commands) nodes += !record.children.empty();
    }
    EXPECT_EQ(listed.size(), 37u);
    EXPECT_EQ(records, 292u);
    EXPECT_EQ(nodes, 36u);
}

TEST_F(catalogue_test, the_tables_hold_the_listed_records_in_order)
{
    ASSERT_EQ(exported.size(), listed.size());
    std::set<decltype(cmd_node::get)> handlers;
    for (const auto &[package, records] : listed) {
        SCOPED_TRACE(package);
        const cmd_node *node = exported.at(package);
        for (const listed_record &record : records) {
            SCOPED_TRACE(record.name);
            ASSERT_TRUE(node->name);
            EXPECT_EQ(node->name, record.name);
            EXPECT_EQ(node->repeat, 0u);
            EXPECT_EQ(node->no, nullptr);
            EXPECT_EQ(node->set, nullptr);
            ASSERT_NE(node->get, nullptr);
            EXPECT_TRUE(handlers.insert(node->get).second) << "another record has the same handler";
            EXPECT_EQ(node->params, nullptr);
            EXPECT_EQ(node->param_count, 0u);
            EXPECT_EQ(node->children, record.children.empty() ? nullptr : exported.at(record.children));
            node++;
        }
        EXPECT_EQ(node->name, nullptr) << "the table goes on";
    }
    EXPECT_EQ(handlers.size(), 292u);
}

TEST_F(catalogue_test, no_two_records_of_a_table_share_a_name)
{
    for (const apconf_package *package : apconf_packages) {
        std::set<std::string> names;
        for (const cmd_node *node = package->table; node->name; node++)
            EXPECT_TRUE(names.insert(node->name).second) << package->name << ' ' << node->name;
    }
}

TEST_F(catalogue_test, each_record_leads_to_its_description)
{
    for (const apconf_package *package : apconf_packages) {
        EXPECT_EQ(package->table, exported.at(package->name));
        EXPECT_EQ(package->command_count, listed.at(package->name).size());
        for (uint32_t i = 0; i < package->command_count; i++) {
            EXPECT_EQ(apconf_find_command(&package->table[i]), &package->commands[i]);
            EXPECT_STREQ(package->commands[i].name, package->table[i].name);
        }
        EXPECT_EQ(apconf_find_command(&package->table[package->command_count]), nullptr);
    }
}

// The type that a handler's line says it put: "put TYPE path", and for arrays what the description says.
std::string logged_type(const log_line &line, const apconf_command &command)
{
    const std::string rest = line.text.substr(strlen("put "));
    if (!rest.starts_with('\'')) return rest.substr(0, rest.find(' '));
    const std::string key = rest.substr(1, rest.find('\'', 1) - 1);
    for (uint32_t f = 0; f < command.field_count; f++)
        if (command.fields[f].key == key) return std::string(get_ptype_name(command.fields[f].ptype)) + "[]";
    return "";
}

// The keys in the order they stand in an object, with the types that the log tells in the same order.
std::vector<listed_key> put_keys(const log_capture &log, const apconf_command &command, json_object *object)
{
    std::vector<std::string> types;
    std::string array_line;
    for (const log_line &line : log.lines()) {
        if (line.function != std::string("get_") + command.name || !line.text.starts_with("put ")) continue;
        const bool in_array = line.text.starts_with("put '");
        if (in_array && line.text == array_line) continue;  // a further value of the same array
        array_line = in_array ? line.text : "";
        types.push_back(logged_type(line, command));
    }
    std::vector<listed_key> keys;
    json_object_object_foreach(object, key, value)
    {
        (void)value;
        keys.push_back({key, keys.size() < types.size() ? types[keys.size()] : ""});
    }
    EXPECT_EQ(keys.size(), types.size());
    return keys;
}

// The last object that a handler reported.
json_object *last_object(json_object *result)
{
    if (!json_object_is_type(result, json_type_array)) return result;
    return json_object_array_get_idx(result, json_object_array_length(result) - 1);
}

// The listed keys that hold for this alternative.
std::vector<listed_key> in_force(const std::string &package, const listed_record &record, bool first)
{
    std::vector<listed_key> keys;
    for (const listed_key &key : record.keys) {
        int same = 0;
        for (const listed_key &other : record.keys) same += other.key == key.key;
        const bool is_dpi_server =
            package == "dpi" && (record.name == "logging_audit_cmd" || record.name == "report_server_cmd");
        const bool alternates = same > 1 || (is_dpi_server && (key.key == "ip" || key.key == "domain"));
        if (alternates && (key.type == "string") == first) continue;
        keys.push_back(key);
    }
    return keys;
}

TEST_F(catalogue_test, handlers_put_the_listed_keys_in_order_and_type)
{
    for (const auto &[package, records] : listed) {
        for (const listed_record &listed_command : records) {
            const apconf_command &command = command_of(package, listed_command.name);
            if (is_node(command)) continue;
            for (const bool first : {true, false}) {
                SCOPED_TRACE(package + ' ' + listed_command.name + (first ? "" : ", the other alternative"));
                start();
                set_command(command, record_of(command), first);
                cpath_ctx ctx = {};
                ctx.instance = &lookup;
                json_object *result = nullptr;
                log_capture log;
                EXPECT_EQ(node_of(package, listed_command.name)->get(nullptr, &result, &ctx), 0);
                EXPECT_EQ(result == nullptr, listed_command.name == "lan_igmp_snoop_cmd");
                if (!result) continue;
                EXPECT_EQ(put_keys(log, command, last_object(result)), in_force(package, listed_command, first));
                json_object_put(result);
            }
        }
    }
}

TEST_F(catalogue_test, values_are_put_in_the_text_form_of_their_type)
{
    for (const apconf_package *package : apconf_packages) {
        for (uint32_t c = 0; c < package->command_count; c++) {
            const apconf_command &command = package->commands[c];
            if (is_node(command) || command.field_count == 0) continue;
            SCOPED_TRACE(testing::Message() << package->name << ' ' << command.name);
            start();
            set_command(command, record_of(command), true);
            bool has_alternatives = false;
            std::map<std::string, std::string> expected;
            for (uint32_t f = 0; f < command.field_count; f++) {
                const apconf_field &field = command.fields[f];
                if (field.when != APCONF_WHEN_ALWAYS) has_alternatives = true;
                if (field.key && is_alternative(field, true)) expected[field.key] = shown_sample(field);
            }
            if (has_alternatives) {
                for (uint32_t f = 0; f < command.field_count; f++) {
                    if (command.fields[f].ptype == PTYPE_ADDR_TYPE) expected[command.fields[f].key] = "\"ip\"";
                    if (command.fields[f].ptype == PTYPE_STRING_FORMAT) expected[command.fields[f].key] = "\"hex\"";
                }
            }
            cpath_ctx ctx = {};
            ctx.instance = &lookup;
            json_object *result = nullptr;
            package->table[c].get(nullptr, &result, &ctx);
            std::map<std::string, std::string> put;
            json_object_object_foreach(last_object(result), key, value)
            {
                put[key] = json_text(value);
            }
            EXPECT_EQ(put, expected);
            json_object_put(result);
        }
    }
}

// Brings a command into the state in which it reports its option.
void ask_for_option(const apconf_command &command, char *record)
{
    switch (command.variant) {
        case APCONF_FLAG:
        case APCONF_RESET_ON_DIFFERENCE:
            set_word(record + command.option, CONFIG_NEGATED);
            break;
        case APCONF_NEGATABLE_GROUP:
            set_word(record + command.fields[0].offset, CONFIG_NEGATED);
            break;
        default:
            if (command.option != APCONF_NO_OPTION) set_word(record + command.option, LIST_REPLACED);
    }
}

TEST_F(catalogue_test, exactly_the_listed_commands_report_their_option)
{
    for (const auto &[package, records] : listed) {
        for (const listed_record &record : records) {
            const apconf_command &command = command_of(package, record.name);
            if (is_node(command) || command.variant == APCONF_COUNTED_ARRAY) continue;
            SCOPED_TRACE(package + ' ' + record.name);
            start();
            ask_for_option(command, record_of(command));
            if (record.option.empty())
                EXPECT_EQ(report(package, record.name, &lookup), nothing());
            else
                EXPECT_EQ(report(package, record.name, &lookup), reported("{\".OPT\":\"" + record.option + "\"}"));
        }
    }
}

// Checks one instance of a package in a message in which everything is set, and what is below it.
void expect_in_order(const catalogue &listed, const std::string &package, json_object *instance)
{
    SCOPED_TRACE(package);
    std::vector<std::string> names, expected;
    json_object_object_foreach(instance, name, value)
    {
        (void)value;
        if (strcmp(name, "INDEX") != 0) names.push_back(name);
    }
    for (const listed_record &record : listed.at(package))
        if (record.name != "lan_igmp_snoop_cmd") expected.push_back(record.name);
    EXPECT_EQ(names, expected);
    for (const listed_record &record : listed.at(package)) {
        json_object *below = nullptr;
        if (record.children.empty() || !json_object_object_get_ex(instance, record.name.c_str(), &below)) continue;
        expect_in_order(listed, record.children, last_object(below));
    }
}

TEST_F(catalogue_test, a_message_with_everything_in_it_has_the_order_of_the_tables)
{
    start();
    for (const apconf_package *package : apconf_packages)
        for (uint32_t c = 0; c < package->command_count; c++)
            if (!is_node(package->commands[c]))
                set_command(package->commands[c], record_of(package->commands[c]), true);
    json_object *const message = walk_tree();
    expect_in_order(listed, "root", message);
    json_object_put(message);
}

}  // namespace
}  // namespace apconf_test

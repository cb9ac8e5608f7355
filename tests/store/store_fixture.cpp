#include "store_fixture.h"

#include <json-c/json.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>

namespace apconf_test
{
namespace
{

std::set<void *> memory;
std::set<json_object *> objects;

template <typename Value>
Value value_at(const char *place)
{
    Value value;
    memcpy(&value, place, sizeof value);
    return value;
}

// Notes what a record holds on the heap; a member that two rows or both blocks name is noted once.
void note_record(apconf_scope scope, const void *record)
{
    for (const apconf_package *package : apconf_packages) {
        for (uint32_t c = 0; c < package->command_count; c++) {
            const apconf_command &command = package->commands[c];
            if (command.scope != scope || command.variant == APCONF_RECORD_NODE) continue;
            const uint32_t elements = command.array.count ? command.array.count : 1;
            for (uint32_t f = 0; f < command.field_count; f++) {
                const apconf_field &field = command.fields[f];
                if (field.kind == APCONF_FIELD_VALUE || field.kind == APCONF_FIELD_VALUES) continue;
                for (uint32_t i = 0; i < elements; i++) {
                    const char *place =
                        static_cast<const char *>(record) + field.offset + size_t{i} * command.array.step;
                    if (!value_at<void *>(place)) continue;
                    if (field.kind == APCONF_FIELD_OBJECT)
                        objects.insert(value_at<json_object *>(place));
                    else
                        memory.insert(value_at<void *>(place));
                }
            }
        }
    }
}

template <typename List>
void note_list(apconf_scope scope, const List &list)
{
    for (int i = 0; list.list && i < list.count; i++) note_record(scope, &list.list[i]);
    memory.insert(list.list);
}

void note_block(const config_data &block)
{
    note_record(APCONF_SCOPE_GLOBAL, &block);
    for (const radio_config &radio : block.radio)
        for (const bss_config &bss : radio.bss) note_record(APCONF_SCOPE_BSS, &bss);
    for (const ethernet_config &ethernet : block.ethernet) note_record(APCONF_SCOPE_ETHERNET, &ethernet);
    for (const ftp_config &ftp : block.ftp) note_record(APCONF_SCOPE_FTP, &ftp);
    note_list(APCONF_SCOPE_VLAN, block.vlan);
    note_list(APCONF_SCOPE_POOL, block.dhcp_server.pool);
    memory.insert(block.ip_acl.list);
}

template <typename List>
void make_list(List &list, apconf_scope scope, int count)
{
    list.list = static_cast<decltype(list.list)>(malloc(sizeof *list.list * static_cast<size_t>(count)));
    list.count = count;
    for (int i = 0; i < count; i++) apconf_unset_record(scope, &list.list[i]);
}

}  // namespace

void reset_blocks()
{
    note_block(root.config);
    note_block(mirror_root.config);
    for (void *each : memory) free(each);
    for (json_object *each : objects) json_object_put(each);
    memory.clear();
    objects.clear();
    init_cmd_tree_data();
}

void store_test::SetUp()
{
    for (const char *directory : {CMQ_NEW_DIR, CMQ_OLD_DIR, CMQ_BAD_DIR}) {
        std::filesystem::remove_all(directory);
        std::filesystem::create_directories(directory);
    }
    std::ofstream(CMQ_MAX_INDEX) << "1 ";
    std::ofstream(CMQ_CUR_INDEX) << "1 ";
    init_cmd_tree_data();
}

void store_test::TearDown()
{
    reset_blocks();
}

char *text(const std::string &value)
{
    return strdup(value.c_str());
}

const apconf_package &package_of(const std::string &name)
{
    for (const apconf_package *package : apconf_packages)
        if (package->name == name) return *package;
    abort();
}

cmd_node *node_of(const std::string &package, const std::string &command)
{
    for (cmd_node *node = package_of(package).table; node->name; node++)
        if (node->name == command) return node;
    abort();
}

const apconf_command &command_of(const std::string &package, const std::string &command)
{
    return *apconf_find_command(node_of(package, command));
}

bool operator==(const answer &one, const answer &other)
{
    return one.result == other.result && one.json == other.json;
}

std::ostream &operator<<(std::ostream &stream, const answer &shown)
{
    return stream << shown.result << ' ' << shown.json;
}

std::string json_text(json_object *object)
{
    return json_object_to_json_string_ext(object, JSON_C_TO_STRING_PLAIN | JSON_C_TO_STRING_NOSLASHESCAPE);
}

answer report(const std::string &package, const std::string &command, lookup_ctx *lookup, const std::string &args)
{
    cmd_node *const node = node_of(package, command);
    cpath_ctx ctx = {};
    ctx.stack[0].node = node;
    ctx.is_get = 1;
    ctx.instance = lookup;
    json_object *const arguments = args.empty() ? nullptr : json_tokener_parse(args.c_str());
    json_object *result = nullptr;
    answer given = {node->get(arguments, &result, &ctx), ""};
    if (result) given.json = json_text(result);
    json_object_put(result);
    json_object_put(arguments);
    return given;
}

json_object *walk_tree()
{
    cmd_node tree = {"root", 0, nullptr, nullptr, nullptr, nullptr, 0, lib_pkg_root};
    lookup_ctx lookup = {};
    cpath_ctx ctx = {};
    ctx.stack[0].node = &tree;
    ctx.is_get = 1;
    ctx.instance = &lookup;
    json_object *const message = json_object_new_object();
    package_get_all(&tree, message, &ctx);
    return message;
}

std::string walk_tree_text()
{
    json_object *const message = walk_tree();
    std::string shown = json_text(message);
    json_object_put(message);
    return shown;
}

std::vector<std::string> lines_of(const log_capture &log, int priority, const std::string &beginning)
{
    std::vector<std::string> found;
    for (const std::string &line : log.texts(priority))
        if (line.starts_with(beginning)) found.push_back(line);
    return found;
}

void make_vlans(int count)
{
    make_list(root.config.vlan, APCONF_SCOPE_VLAN, count);
}

void make_pools(int count)
{
    make_list(root.config.dhcp_server.pool, APCONF_SCOPE_POOL, count);
}

void make_ip_acls(int count)
{
    make_list(root.config.ip_acl, APCONF_SCOPE_IP_ACL, count);
}

}  // namespace apconf_test

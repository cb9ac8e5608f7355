// Applying messages to the configuration in `root`, reading it back, committing and releasing it.
#include <new>
#include <string>
#include <vector>

#include "block.h"
#include "call.h"
#include "handlers.h"
#include "instances.h"
#include "json.h"

namespace apconf_host
{

namespace
{

// Reporting hands the ism object over to whoever reads it; its block gets it back.
class ism_keeper
{
public:
    ism_keeper() : kept_(json_object_get(root.config.ism_cmd.ism)) {}
    ism_keeper(const ism_keeper &) = delete;
    ism_keeper &operator=(const ism_keeper &) = delete;
    ~ism_keeper()
    {
        if (root.config.ism_cmd.ism)
            json_object_put(kept_);
        else
            root.config.ism_cmd.ism = kept_;
    }

private:
    json_object *kept_;
};

// The packages from "config" down to one whose instances are elements of a variable list.
using list_path = std::vector<const cmd_node *>;

// Calls visit(path) for every such package in which there is one element and nothing is set in it: reports leave it
// out.
template <typename Visit>
void for_each_unreported_element(const cmd_node &package, list_path &path, const Visit &visit)
{
    path.push_back(&package);
    const apconf_command &command = *apconf_find_command(&package);
    if (command.variant == APCONF_LIST_NODE) {
        if (list_count(static_cast<apconf_scope>(command.scope)) == 1 && is_bare(command, 0)) visit(path);
    } else if (!is_iterating(command)) {
        for (const cmd_node *child = package.children; child->name; ++child)
            if (child->children) for_each_unreported_element(*child, path, visit);
    }
    path.pop_back();
}

json_object *member_or_new(json_object *object, const char *name)
{
    if (json_object *found = member(object, name)) return found;
    json_object *made = json_object_new_object();
    if (!made || json_object_object_add(object, name, made) != 0) throw std::bad_alloc();
    return made;
}

// A configuration that is saved must have such an element too.
void add_unreported_elements(json_object *configuration)
{
    list_path path;
    for_each_unreported_element(lib_pkg_root[0], path, [configuration](const list_path &found) {
        json_object *here = configuration;
        for (const cmd_node *package : found) here = member_or_new(here, package->name);
        const apconf_command &command = *apconf_find_command(found.back());
        const std::string key = instance_name(static_cast<apconf_scope>(command.scope), {});
        json_object_object_add(member_or_new(here, "INDEX"), index_key(command), json_object_new_string(key.c_str()));
    });
}

// A batch that says nothing else of such an element could not say it to the server.
void refuse_unreported_elements(outcome &outcome)
{
    list_path path;
    for_each_unreported_element(lib_pkg_root[0], path, [&outcome](const list_path &found) {
        const apconf_command &command = *apconf_find_command(found.back());
        std::string text;
        for (const cmd_node *package : found) text += (text.empty() ? "" : "/") + std::string(package->name);
        outcome.refuse({text + "[" + instance_name(static_cast<apconf_scope>(command.scope), {}) + "]", "", "",
                        "a command below it; a batch can carry no single " + std::string(command.name) + " without"});
    });
}

json_object *report(const cmesage_info &info)
{
    const ism_keeper keeper;
    lookup_ctx lookup = {};
    json_object *answer = nullptr;
    if (cmessage_parser(&info, &answer, 0, &lookup) == 0) return answer;
    json_object_put(answer);
    return nullptr;
}

// Calls visit(scope, record) for every record of the fixed scopes in `root`, outermost last.
template <typename Visit>
void for_each_record(const Visit &visit)
{
    for (auto &radio : root.config.radio) {
        for (auto &bss : radio.bss) visit(APCONF_SCOPE_BSS, reinterpret_cast<char *>(&bss));
        visit(APCONF_SCOPE_RADIO, reinterpret_cast<char *>(&radio));
    }
    for (auto &port : root.config.ethernet) visit(APCONF_SCOPE_ETHERNET, reinterpret_cast<char *>(&port));
    for (auto &service : root.config.ftp) visit(APCONF_SCOPE_FTP, reinterpret_cast<char *>(&service));
    visit(APCONF_SCOPE_GLOBAL, reinterpret_cast<char *>(&root.config));
}

// The texts of one record that a commit leaves to their setter.
void collect_unreleased(apconf_scope scope, char *record, std::vector<char *> &texts)
{
    for (const apconf_package *package : apconf_packages)
        for (uint32_t c = 0; c < package->command_count; ++c) {
            const apconf_command &command = package->commands[c];
            if (is_node(command) || command.scope != scope) continue;
            for (size_t i = 0; i < std::max<size_t>(command.array.count, 1); ++i)
                for (unsigned f = 0; f < command.field_count; ++f) {
                    const apconf_field &field = command.fields[f];
                    if (!(field.flags & APCONF_FIELD_UNRELEASED) || !is_heap_text(field)) continue;
                    char *text = load_text(field, element_at(command, record, i));
                    if (text) texts.push_back(text);
                }
        }
}

}  // namespace

bool apply_message(json_object *message, outcome &outcome)
{
    cmesage_info info = {};
    if (!json_object_is_type(message, json_type_object) || get_cmesage_info(message, &info) != 0) {
        outcome.refuse({"message", "", "", "an object with ACTION and either CPATH with a path, or config"});
        return false;
    }
    if (info.is_get) {
        outcome.refuse({"message", "ACTION", "get", "set"});
        return false;
    }
    find_unknown(message, outcome);
    request request{outcome, info.has_cpath != 0};
    lookup_ctx lookup = {};
    json_object *unused = nullptr;
    cmessage_parser(&info, &unused, reinterpret_cast<uintptr_t>(&request), &lookup);
    json_object_put(unused);
    if (outcome.as == role::batch && outcome.refusals.empty()) refuse_unreported_elements(outcome);
    return true;
}

json_object *running_configuration()
{
    const json_ptr everything(json_object_new_object());
    if (!everything) return nullptr;
    cmesage_info info = {};
    info.is_get = 1;
    info.body = everything.get();
    json_ptr configuration(report(info));
    if (configuration) add_unreported_elements(configuration.get());
    return configuration.release();
}

json_object *answer_get(json_object *message)
{
    cmesage_info info = {};
    if (!json_object_is_type(message, json_type_object) || get_cmesage_info(message, &info) != 0) return nullptr;
    return info.is_get ? report(info) : nullptr;
}

int commit_batch()
{
    std::vector<char *> texts;
    for_each_record([&texts](apconf_scope scope, char *record) { collect_unreleased(scope, record, texts); });
    const int result = apply_cmd_tree_data();
    for (char *text : texts) free(text);
    return result;
}

void release_configuration()
{
    for (const apconf_scope scope : {APCONF_SCOPE_VLAN, APCONF_SCOPE_POOL, APCONF_SCOPE_IP_ACL})
        remove_all_records(scope);
    for_each_record([](apconf_scope scope, char *record) { reset_record(scope, record); });
    // The enumeration of the lists leaves unset elements in the reference block.
    free(mirror_root.config.vlan.list);
    free(mirror_root.config.dhcp_server.pool.list);
    free(mirror_root.config.ip_acl.list);
    init_cmd_tree_data();
}

}  // namespace apconf_host

// The tool's side of the conversation with the configuration server.
#include "tool/server.h"

#include <cstring>

#include "arguments.h"
#include "instances.h"
#include "reply_codes.h"
#include "secrets.h"

namespace apconf_host
{

namespace
{

struct message_release {
    void operator()(io_msg *message) const { free(message); }
};
using message_ptr = std::unique_ptr<io_msg, message_release>;

const apconf_field *field_of(const apconf_command &command, const char *key)
{
    for (unsigned i = 0; i < command.field_count; ++i)
        if (command.fields[i].key && strcmp(command.fields[i].key, key) == 0) return &command.fields[i];
    return nullptr;
}

// Two texts of one value, such as "0x10" and "16".
bool same_text(const cmd_node &node, const apconf_command &command, const char *key, json_object *one,
               json_object *other)
{
    const auto first = scalar_text(one);
    const auto second = scalar_text(other);
    if (!first || !second) return false;
    if (*first == *second) return true;
    for (unsigned i = 0; i < command.field_count; ++i) {
        const apconf_field &field = command.fields[i];
        if (!field.key || strcmp(field.key, key) != 0 || is_heap_text(field)) continue;
        const auto value = convert_value(node, field, *first);
        if (value && value == convert_value(node, field, *second)) return true;
    }
    return false;
}

bool same_value(const cmd_node &node, const apconf_command &command, const char *key, json_object *asked,
                json_object *shown)
{
    const apconf_field *field = field_of(command, key);
    if (field && field->kind == APCONF_FIELD_OBJECT) return json_object_equal(asked, shown) != 0;
    int at_asked = 0;
    int at_shown = 0;
    while (true) {
        json_object *one = get_json_obj(asked, &at_asked);
        json_object *other = get_json_obj(shown, &at_shown);
        if (!one || !other) return one == other;
        if (!same_text(node, command, key, one, other)) return false;
    }
}

bool shows_all(const target &target, json_object *element)
{
    json_object_object_foreach(target.arguments.get(), key, value)
    {
        if (!same_value(target.node(), *target.command, key, value, member(element, key))) return false;
    }
    return true;
}

bool is_mark(json_object *element)
{
    return member(element, ".OPT") != nullptr;
}

// An element of the answer that has all that was asked for.
bool shows_arguments(const target &target, json_object *value)
{
    int cursor = 0;
    while (json_object *element = get_json_obj(value, &cursor))
        if (!is_mark(element) && shows_all(target, element)) return true;
    return false;
}

bool shows_anything(json_object *value)
{
    int cursor = 0;
    while (json_object *element = get_json_obj(value, &cursor))
        if (!is_mark(element)) return true;
    return false;
}

bool shows_instance(const target &target, json_object *value)
{
    const size_t last = target.nodes.size() - 1;
    const std::string chosen = chosen_instance(target, last);
    if (chosen.empty()) return !is_null_package_obj(value);
    const char *key = index_key(*target.command);
    int cursor = 0;
    while (json_object *instance = get_json_obj(value, &cursor))
        if (scalar_text(member(member(instance, "INDEX"), key)) == chosen) return true;
    return false;
}

bool took(action action, const target &target, json_object *value)
{
    const bool has_arguments = json_object_object_length(target.arguments.get()) > 0;
    // An element of a list with nothing set in it may be left out of an answer, so its absence proves nothing.
    if (target.node().children) return action == action::set || !shows_instance(target, value);
    if (action == action::no) return has_arguments ? !shows_arguments(target, value) : !shows_anything(value);
    return shows_arguments(target, value);
}

}  // namespace

server_connection::server_connection()
{
    if (init_cmclient(nullptr, nullptr) < 0)
        throw failure("there is no configuration server at " IO_SOCK_PATH
                      ", or it does not let this user configure; is apconfd running?");
}

server_connection::~server_connection()
{
    deinit_cmclient();
}

json_ptr server_connection::get(const target &target, json_object *param) const
{
    io_msg *reply = nullptr;
    const int result = send_cpath_cmd_obj("get", target.wire_path.c_str(), param, &reply);
    const message_ptr owner(reply);
    if (result != 0 || !reply) throw failure(target.shown_path + ": the server did not answer");
    if (reply->code != 0)
        throw failure(target.shown_path + ": the server answered: " + describe(static_cast<reply_code>(reply->code)));
    json_ptr answer(json_tokener_parse(reply->data));
    if (!answer) throw failure(target.shown_path + ": the server's answer is no JSON");
    return answer;
}

void server_connection::send(action action, const target &target) const
{
    const json_ptr param = target.param();
    const bool empty = json_object_object_length(param.get()) == 0;
    const char *word = action == action::no ? "no" : "set";
    if (send_cpath_cmd_obj(word, target.wire_path.c_str(), empty ? nullptr : param.get(), nullptr) != 0)
        throw failure(target.shown_path + ": the message could not be sent");
}

json_object *addressed(json_object *answer, const target &target)
{
    json_object *here = answer;
    for (const cmd_node *node : target.nodes) here = member(here, node->name);
    return here;
}

std::string difference_after(action action, const server_connection &server, const target &target)
{
    if (target.command->variant == APCONF_NEVER_REPORTED) return "";
    // Of a package all instances are asked for: the one that was removed cannot be.
    json_ptr param(json_object_new_object());
    for (size_t depth = 0; depth < target.nodes.size(); ++depth) {
        const bool last = depth + 1 == target.nodes.size();
        const char *key = index_key(*apconf_find_command(target.nodes[depth]));
        json_object *value = key ? member(target.index.get(), key) : nullptr;
        if (value && !last) json_object_object_add(param.get(), key, json_object_get(value));
    }
    const json_ptr answer = server.get(target, param.get());
    json_object *value = addressed(answer.get(), target);
    if (took(action, target, value)) return "";
    mask_secrets(answer.get());
    value = addressed(answer.get(), target);
    return value ? shown(value) : "not set";
}

}  // namespace apconf_host

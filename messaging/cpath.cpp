// Sending a command by its path: builds the configuration message and hands it to the client connection.
#include "apconf/cpath.h"

#include <json-c/json.h>

#include <cstring>
#include <utility>

#include "apconf/cmclient.h"
#include "apconf/command.h"
#include "apconf/io_sock.h"
#include "apconf/ptype.h"
#include "apconf/util.h"
#include "util/log.h"
#include "util/owners.h"

namespace apconf
{
namespace
{

bool put(json_object *object, const char *key, json_ptr value)
{
    if (!value || json_object_object_add(object, key, value.get()) != 0) return false;
    value.release();
    return true;
}

bool put_text(json_object *object, const char *key, const char *text)
{
    return put(object, key, json_ptr(json_object_new_string(text)));
}

// The text stays valid as long as `value`.
const char *plain_text(json_object *value)
{
    return json_object_to_json_string_ext(value, JSON_C_TO_STRING_PLAIN);
}

bool is_action(const char *action)
{
    return strcmp(action, "set") == 0 || strcmp(action, "get") == 0 || strcmp(action, "no") == 0;
}

json_ptr build_cpath(const char *cpath, json_object *param)
{
    json_ptr result(json_object_new_object());
    if (!result || !put_text(result.get(), "path", cpath)) return json_ptr();
    if (param && !put(result.get(), "param", json_ptr(json_object_get(param)))) return json_ptr();
    return result;
}

// Null when memory is short.
json_ptr build_message(const char *action, const char *cpath, json_object *param)
{
    json_ptr message(json_object_new_object());
    const bool complete = message && put_text(message.get(), "MODULE", get_io_module()) &&
                          put_text(message.get(), "ACTION", action) &&
                          put(message.get(), "CPATH", build_cpath(cpath, param));
    return complete ? std::move(message) : json_ptr();
}

// `action` is "set" or "get".
int send_message(const char *action, const char *cpath, json_object *param, struct io_msg **reply)
{
    const json_ptr message = build_message(action, cpath, param);
    const char *text = message ? plain_text(message.get()) : nullptr;
    if (!text) {
        LOG_AS("send_cpath_cmd_obj", LOG_ERR, "convert json string failed, action:%s, cpath:%s", action, cpath);
        return -1;
    }
    const auto length = static_cast<uint32_t>(strlen(text) + 1);
    if (strcmp(action, "get") == 0) return configure_request(IO_MSG_GET, text, length, reply) < 0 ? -1 : 0;
    return send_io_notify(IO_MSG_SET, text, length) != 0 ? -1 : 0;
}

// A removal travels as a set with an option beside its parameters.
int send_removal(const char *cpath, json_object *param, struct io_msg **reply)
{
    const json_ptr changed(param ? json_object_get(param) : json_object_new_object());
    if (!json_object_is_type(changed.get(), json_type_object) || !put_text(changed.get(), ".OPT", "no")) {
        LOG_AS("send_cpath_cmd_obj", LOG_ERR, "invalid cpath param %s", param ? plain_text(param) : "");
        return -1;
    }
    return send_message("set", cpath, changed.get(), reply);
}

// The values of one argument: a string, or an array of strings. False when one of them does not convert.
bool collect_values(const struct cpath_arg &arg, json_ptr &collected)
{
    const int size = get_ptype_size(arg.ptype);
    json_object *values = nullptr;
    bool complete = true;
    for (int32_t i = 0; complete && i < arg.count; i++) {
        const size_t offset = size < 0 ? 0 : static_cast<size_t>(i) * static_cast<size_t>(size);
        complete = add_arg_value(&values, arg.ptype, static_cast<const char *>(arg.values) + offset) == 0;
    }
    collected.reset(values);
    return complete;
}

// Fills `param` from the table; it stays null when no record is kept. False: logged.
bool build_param(const char *cpath, const struct cpath_arg *args, json_ptr &param)
{
    for (const struct cpath_arg *arg = args; arg && arg->name; arg++) {
        if (!arg->values) continue;
        if (!param) param.reset(json_object_new_object());
        json_ptr values;
        if (!param || !collect_values(*arg, values) || (values && !put(param.get(), arg->name, std::move(values)))) {
            LOG_AS("send_cpath_cmd", LOG_ERR, "convert arg '%s' of cpath %s failed", arg->name, cpath);
            return false;
        }
    }
    return true;
}

}  // namespace
}  // namespace apconf

int send_cpath_cmd_obj(const char *action, const char *cpath, struct json_object *param, struct io_msg **reply)
{
    if (!action || !cpath) return -1;
    if (!apconf::is_action(action)) {
        LOG(LOG_ERR, "invalid cpath action '%s'", action);
        return -1;
    }
    if (strcmp(action, "no") == 0) return apconf::send_removal(cpath, param, reply);
    return apconf::send_message(action, cpath, param, reply);
}

int send_cpath_cmd_str(const char *action, const char *cpath, const char *param_text, struct io_msg **reply)
{
    // Kept: the parsed value outlives the call. The next call replaces it.
    static json_object *parsed;
    json_object_put(std::exchange(parsed, nullptr));
    if (!param_text) return send_cpath_cmd_obj(action, cpath, nullptr, reply);

    parsed = json_tokener_parse(param_text);
    if (!parsed) {
        LOG(LOG_ERR, "invalid cpath param %s", param_text);
        return -1;
    }
    const bool no_keys = json_object_is_type(parsed, json_type_object) && json_object_object_length(parsed) == 0;
    const bool no_elements = json_object_is_type(parsed, json_type_array) && json_object_array_length(parsed) == 0;
    return send_cpath_cmd_obj(action, cpath, no_keys || no_elements ? nullptr : parsed, reply);
}

int send_cpath_cmd(const char *action, const char *cpath, const struct cpath_arg *args, struct io_msg **reply)
{
    // What the log shows; a missing action or path is refused below.
    const char *shown_action = action ? action : "(null)";
    const char *shown_cpath = cpath ? cpath : "(null)";
    apconf::json_ptr param;
    if (!apconf::build_param(shown_cpath, args, param)) return -1;
    LOG(LOG_DEBUG, "'%s' cpath = '%s'", get_io_module(), shown_cpath);
    const int result = send_cpath_cmd_obj(action, cpath, param.get(), reply);
    if (result != 0)
        LOG(LOG_ERR, "%s %s %s failed", shown_action, shown_cpath, param ? apconf::plain_text(param.get()) : "");
    return result;
}

// Command arguments: JSON objects that carry typed values as text, written and read through the parameter types.
#include "apconf/command.h"

#include <json-c/json.h>

#include <cstdlib>
#include <utility>

#include "apconf/ptype.h"
#include "apconf/util.h"
#include "util/always_assert.h"
#include "util/log.h"
#include "util/owners.h"

namespace apconf
{
namespace
{

constexpr size_t usual_text_size = 512;
constexpr int conversion_attempts = 3;

// What a log line shows for a text that may be missing.
const char *shown(const char *text)
{
    return text ? text : "(null)";
}

const char *type_name(uint32_t ptype)
{
    return shown(get_ptype_name(ptype));
}

bool is_object(json_object *value)
{
    return json_object_is_type(value, json_type_object) != 0;
}

json_object *find_arg(json_object *args, const char *name)
{
    return name ? search_child_obj(args, name, nullptr) : nullptr;
}

// The value's text, of an array its first element's; any kind of JSON value has one, only a missing one has not.
const char *arg_text(json_object *value)
{
    if (json_object_is_type(value, json_type_array)) value = json_object_array_get_idx(value, 0);
    return json_object_get_string(value);
}

// The name of the command that is being handled.
const char *command_name(const struct cpath_ctx *ctx)
{
    if (!ctx || ctx->depth < 0 || ctx->depth >= CPATH_STACK_DEPTH) return nullptr;
    const struct cmd_node *node = ctx->stack[ctx->depth].node;
    return node ? node->name : nullptr;
}

bool grow(heap_text &buffer, size_t size)
{
    auto *grown = static_cast<char *>(realloc(buffer.get(), size));
    if (!grown) return false;
    buffer.release();
    buffer.reset(grown);
    return true;
}

// Puts `text` under `name`; the new JSON string, owned by `args`, or null when memory is short.
json_object *put_text(json_object *args, const char *name, const char *text)
{
    json_ptr value(json_object_new_string(text));
    if (!value || json_object_object_add(args, name, value.get()) != 0) return nullptr;
    return value.release();
}

}  // namespace
}  // namespace apconf

using apconf::shown;
using apconf::type_name;

const char *fetch_arg_string(struct json_object *args, const char *name)
{
    json_object *value = apconf::find_arg(args, name);
    if (!value) {
        LOG(LOG_ERR, "no such arg '%s'", shown(name));
        return nullptr;
    }
    const char *text = apconf::arg_text(value);
    if (!text) LOG(LOG_ERR, "get value string for arg'%s' failed", name);
    return text;
}

const char *fetch_arg_value_inner(struct json_object *args, const char *name, uint32_t ptype, void *value_out,
                                  const char *const *command_name)
{
    const char *command = shown(command_name ? *command_name : nullptr);
    json_object *value = apconf::find_arg(args, name);
    if (!value) {
        LOG(LOG_WARNING, "[%s]no such arg '%s'", command, shown(name));
        return nullptr;
    }
    const char *text = apconf::arg_text(value);
    if (!text) {
        LOG(LOG_ERR, "[%s]get value string for arg'%s' failed", command, name);
        return nullptr;
    }
    if (convert_ptype_to_value(ptype, value_out, text, get_value_range(name, ptype, command_name)) != 0) {
        LOG(LOG_ERR, "[%s]convert value string '%s' for arg'%s' failed", command, text, name);
        return nullptr;
    }
    LOG(LOG_DEBUG, "[%s]%s: %s", command, name, text);
    return text;
}

const char *fetch_arg_value(struct json_object *args, const char *name, uint32_t ptype, void *value_out,
                            const struct cpath_ctx *ctx)
{
    const char *command = apconf::command_name(ctx);
    return fetch_arg_value_inner(args, name, ptype, value_out, &command);
}

int fetch_arg_default_value(const char *name, uint32_t, void *, const struct cpath_ctx *ctx)
{
    LOG(LOG_ERR, "[%s]arg '%s' no default value", shown(apconf::command_name(ctx)), shown(name));
    return 0;
}

int string2ptype_value(uint32_t ptype, void *value_out, const char *text)
{
    if (convert_ptype_to_value(ptype, value_out, text, nullptr) == 0) return 0;
    LOG(LOG_ERR, "convert '%s' to %s value failed", shown(text), type_name(ptype));
    return -1;
}

struct json_object *convert_ptype_value_to_obj(uint32_t ptype, const void *value)
{
    if (!value) return nullptr;
    char usual_text[apconf::usual_text_size] = {};
    apconf::heap_text long_text;
    char *text = usual_text;
    size_t size = sizeof usual_text;
    for (int attempt = 0; attempt < apconf::conversion_attempts; attempt++) {
        const int result = convert_ptype_to_string(ptype, value, text, size);
        if (result == 0) return json_object_new_string(text);
        if (result < 0) {
            LOG(LOG_ERR, "convert '%s' value failed", type_name(ptype));
            return nullptr;
        }
        // A converter refuses a buffer of just the size that it asks for.
        size = static_cast<size_t>(result) + 1;
        if (!apconf::grow(long_text, size)) return nullptr;
        text = long_text.get();
    }
    return nullptr;
}

struct json_object *convert_ptype_string_to_obj(uint32_t ptype, const char *text)
{
    if (!text || check_ptype_string(ptype, text, nullptr) != 0) return nullptr;
    return json_object_new_string(text);
}

struct json_object *create_argv_obj(struct json_object **new_argv_obj)
{
    ALWAYS_ASSERT(new_argv_obj);
    json_object *args = json_object_new_object();
    add_json_obj(new_argv_obj, args);
    return args;
}

int add_arg_value(struct json_object **value_obj, uint32_t ptype, const void *value)
{
    ALWAYS_ASSERT(value_obj);
    json_object *added = convert_ptype_value_to_obj(ptype, value);
    if (!added) {
        LOG(LOG_ERR, "add value to object failed");
        return -1;
    }
    add_json_obj(value_obj, added);
    return 0;
}

int add_arg_string(struct json_object **value_obj, uint32_t ptype, const char *text)
{
    ALWAYS_ASSERT(value_obj);
    json_object *added = convert_ptype_string_to_obj(ptype, text);
    if (!added) {
        LOG(LOG_ERR, "add string value to object failed");
        return -1;
    }
    add_json_obj(value_obj, added);
    return 0;
}

// The replacing forms convert first: the new value may be a text of the old one.
int arg_value2obj(struct json_object **value_obj, uint32_t ptype, const void *value)
{
    ALWAYS_ASSERT(value_obj);
    const apconf::json_ptr old(std::exchange(*value_obj, convert_ptype_value_to_obj(ptype, value)));
    if (*value_obj) return 0;
    LOG(LOG_ERR, "convert value to object failed");
    return -1;
}

int arg_string2obj(struct json_object **value_obj, uint32_t ptype, const char *text)
{
    ALWAYS_ASSERT(value_obj);
    const apconf::json_ptr old(std::exchange(*value_obj, convert_ptype_string_to_obj(ptype, text)));
    if (*value_obj) return 0;
    LOG(LOG_ERR, "convert string value to object failed");
    return -1;
}

const char *put_arg_value(struct json_object *args, uint32_t ptype, const char *name, const void *value)
{
    if (!apconf::is_object(args) || !name) {
        LOG(LOG_INFO, "put arg '%s' value failed", shown(name));
        return nullptr;
    }
    apconf::json_ptr added(convert_ptype_value_to_obj(ptype, value));
    if (!added || json_object_object_add(args, name, added.get()) != 0) {
        LOG(LOG_ERR, "convert '%s' arg '%s' value failed", type_name(ptype), name);
        return nullptr;
    }
    const char *text = json_object_get_string(added.release());
    LOG(LOG_DEBUG, "put arg '%s' value '%s' success", name, text);
    return text;
}

int put_arg_value_string(struct json_object *args, uint32_t ptype, const char *name, const char *text)
{
    if (!apconf::is_object(args) || !name || !text || check_ptype_string(ptype, text, nullptr) != 0) return -1;
    LOG(LOG_DEBUG, "string value name:%s, value:%s", name, text);
    return apconf::put_text(args, name, text) ? 0 : -1;
}

void put_arg_string(struct json_object *args, const char *name, const char *text)
{
    if (!apconf::is_object(args) || !name || !text) return;
    LOG(LOG_DEBUG, "string value name:%s, value:%s", name, text);
    apconf::put_text(args, name, text);
}

// Retrieval: building a request from a table, answering it through the get handlers, and pruning what came out empty.
#include "apconf/retrieve.h"

#include <json-c/json.h>

#include <utility>

#include "apconf/util.h"
#include "messaging/dispatch.h"
#include "util/log.h"
#include "util/owners.h"

namespace apconf
{
namespace
{

bool is_object(json_object *value)
{
    return json_object_is_type(value, json_type_object) != 0;
}

// Puts `value` under `key`; on failure the value is released.
bool put_member(json_object *object, const char *key, json_ptr value)
{
    if (!value || json_object_object_add(object, key, value.get()) != 0) return false;
    value.release();
    return true;
}

json_ptr initial_value(const struct rtv_record &record)
{
    if (!record.value) return json_ptr(json_object_new_object());
    json_ptr value(json_tokener_parse(record.value));
    if (!value)
        LOG_AS("rtv_gen_json_table", LOG_ERR, "json_tokener_parse %s of cmd '%s' failed, skip it", record.value,
               record.name);
    return value;
}

// Calls `visit` with the value itself or, of an array, with each element. What is no object has no members to visit.
template <typename Visit>
void for_each_object(json_object *value, Visit visit)
{
    int cursor = 0;
    while (json_object *element = get_json_obj(value, &cursor))
        if (is_object(element)) visit(element);
}

// -1: neither an object nor an array.
long member_count(json_object *value)
{
    if (is_object(value)) return json_object_object_length(value);
    if (json_object_is_type(value, json_type_array)) return static_cast<long>(json_object_array_length(value));
    return -1;
}

// The answer as a message; null when the request was refused or memory is short.
json_ptr finish_message(json_ptr answer, const char *module)
{
    if (!answer || !put_member(answer.get(), "MODULE", json_ptr(json_object_new_string(module))) ||
        !put_member(answer.get(), "ACTION", json_ptr(json_object_new_string("set"))))
        return json_ptr();
    return answer;
}

}  // namespace
}  // namespace apconf

void rtv_gen_json_table(struct json_object *obj, const struct rtv_record *table)
{
    if (!table || !apconf::is_object(obj)) return;
    for (const struct rtv_record *record = table; record->name; record++) {
        apconf::json_ptr value = apconf::initial_value(*record);
        apconf::for_each_object(value.get(),
                                [record](json_object *member) { rtv_gen_json_table(member, record->children); });
        apconf::put_member(obj, record->name, std::move(value));
    }
}

void retrieve_config(struct json_object **msg, void *instance, const char *module)
{
    if (!msg) return;
    const apconf::json_ptr request(*msg ? *msg : json_object_new_object());
    struct cpath_ctx ctx = {};
    ctx.is_get = 1;
    ctx.instance = instance;
    ctx.module = module ? module : "UNKNOWN";
    apconf::dispatch_tree(request.get(), &ctx.result, &ctx);
    *msg = apconf::finish_message(apconf::json_ptr(ctx.result), ctx.module).release();
}

void rtv_remove_null_obj(struct json_object *obj, const struct rtv_record *table)
{
    if (!table || !apconf::is_object(obj)) return;
    for (const struct rtv_record *record = table; record->name; record++) {
        json_object *member = search_child_obj(obj, record->name, nullptr);
        const long count = apconf::member_count(member);
        if (count == 0) json_object_object_del(obj, record->name);
        if (count <= 0) continue;
        apconf::for_each_object(member,
                                [record](json_object *element) { rtv_remove_null_obj(element, record->children); });
    }
}

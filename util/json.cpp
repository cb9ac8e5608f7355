// Values that are one JSON value or an array of values, and members by key.
#include <json-c/json.h>

#include <cstring>

#include "apconf/util.h"
#include "util/owners.h"

json_object *get_json_obj(json_object *obj, int *index)
{
    if (!obj || !index) return nullptr;
    if (!json_object_is_type(obj, json_type_array)) {
        if (*index != 0) return nullptr;
        *index = 1;
        return obj;
    }
    while (static_cast<size_t>(*index) < json_object_array_length(obj)) {
        json_object *element = json_object_array_get_idx(obj, static_cast<size_t>(*index));
        ++*index;
        if (element) return element;
    }
    return nullptr;
}

// The slot owns `obj` in every case; when memory is short the value is released and the slot keeps what it had.
void add_json_obj(json_object **slot, json_object *obj)
{
    if (!slot || !obj) return;
    if (!*slot) {
        *slot = obj;
        return;
    }
    apconf::json_ptr value(obj);
    if (!json_object_is_type(*slot, json_type_array)) {
        apconf::json_ptr array(json_object_new_array());
        if (!array || json_object_array_add(array.get(), *slot) != 0) return;
        *slot = array.release();
    }
    if (json_object_array_add(*slot, value.get()) == 0) value.release();
}

json_object *search_child_obj(json_object *obj, const char *key, const char *value)
{
    json_object *member;
    if (!json_object_object_get_ex(obj, key, &member) || !value) return member;
    const char *text = json_object_get_string(member);
    return text && strcmp(text, value) == 0 ? member : nullptr;
}

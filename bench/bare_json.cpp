#include "bench/bare_json.h"

#include <cstdio>
#include <cstdlib>

namespace apconf_bench
{

void bare_message::record(const char *key, json_object *value)
{
    const json_type type = json_object_get_type(value);
    if (type == json_type_object) {
        steps_.push_back({type, static_cast<size_t>(json_object_object_length(value)), key, ""});
        json_object_object_foreach(value, name, member) record(name, member);
    } else if (type == json_type_array) {
        steps_.push_back({type, json_object_array_length(value), key, ""});
        for (size_t i = 0; i < json_object_array_length(value); ++i) record("", json_object_array_get_idx(value, i));
    } else if (type == json_type_string) {
        steps_.push_back({type, 0, key, json_object_get_string(value)});
    } else {
        fprintf(stderr, "a message holds objects, arrays and strings; this one has a %s\n", json_type_to_name(type));
        exit(1);
    }
}

json_object *bare_message::build_next(const step *&next) const
{
    const step &current = *next++;
    if (current.type == json_type_string)
        return json_object_new_string_len(current.text.data(), static_cast<int>(current.text.size()));
    if (current.type == json_type_array) {
        json_object *const array = json_object_new_array();
        for (size_t i = 0; i < current.members; ++i) json_object_array_add(array, build_next(next));
        return array;
    }
    json_object *const object = json_object_new_object();
    for (size_t i = 0; i < current.members; ++i) {
        const char *const key = next->key.c_str();
        json_object_object_add(object, key, build_next(next));
    }
    return object;
}

json_object *bare_message::build() const
{
    const step *next = steps_.data();
    return build_next(next);
}

}  // namespace apconf_bench

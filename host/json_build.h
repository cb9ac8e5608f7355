// Making json-c values. When memory is short, std::bad_alloc is thrown and nothing leaks.
#pragma once

#include <json-c/json.h>

#include <new>
#include <utility>

#include "json.h"

namespace apconf_host
{

// Owns what a json-c constructor has made.
inline json_ptr made(json_object *fresh)
{
    if (!fresh) throw std::bad_alloc();
    return json_ptr(fresh);
}

inline json_ptr new_object()
{
    return made(json_object_new_object());
}

inline json_ptr new_text(const char *text)
{
    return made(json_object_new_string(text));
}

inline json_ptr new_number(int64_t number)
{
    return made(json_object_new_int64(number));
}

// One more owner of a value.
inline json_ptr shared(json_object *value)
{
    return json_ptr(json_object_get(value));
}

inline void add(json_object *object, const char *key, json_ptr value)
{
    if (json_object_object_add(object, key, value.get()) != 0) throw std::bad_alloc();
    static_cast<void>(value.release());
}

inline void append(json_object *array, json_ptr value)
{
    if (json_object_array_add(array, value.get()) != 0) throw std::bad_alloc();
    static_cast<void>(value.release());
}

// The text of a value on one line; it lives as long as the value and is not changed.
inline const char *to_line(json_object *value)
{
    const char *const text = json_object_to_json_string_ext(value, JSON_C_TO_STRING_PLAIN);
    if (!text) throw std::bad_alloc();
    return text;
}

}  // namespace apconf_host

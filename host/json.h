// Owners and small readers of json-c values.
#pragma once

#include <json-c/json.h>

#include <memory>
#include <optional>
#include <string>

namespace apconf_host
{

struct json_release {
    void operator()(json_object *object) const { json_object_put(object); }
};
using json_ptr = std::unique_ptr<json_object, json_release>;

// The member `key` of an object; null when it is absent or JSON null, or when `object` is no object.
inline json_object *member(json_object *object, const char *key)
{
    json_object *value = nullptr;
    if (!json_object_is_type(object, json_type_object)) return nullptr;
    json_object_object_get_ex(object, key, &value);
    return value;
}

// The text of a string, number or boolean; nothing for other types and for a text that holds a NUL.
inline std::optional<std::string> scalar_text(json_object *value)
{
    switch (json_object_get_type(value)) {
        case json_type_string: {
            std::string text(json_object_get_string(value), static_cast<size_t>(json_object_get_string_len(value)));
            if (text.find('\0') != std::string::npos) return std::nullopt;
            return text;
        }
        case json_type_int:
        case json_type_double:
        case json_type_boolean:
            return json_object_get_string(value);
        default:
            return std::nullopt;
    }
}

// Any value as people can read it: a text as it is, everything else as JSON.
inline std::string shown(json_object *value)
{
    if (const auto text = scalar_text(value)) return *text;
    return json_object_to_json_string_ext(value, JSON_C_TO_STRING_PLAIN | JSON_C_TO_STRING_NOSLASHESCAPE);
}

}  // namespace apconf_host

#include "host/missing.h"

#include <apconf/apconf.h>

namespace apconf_test
{

using apconf_host::member;
using apconf_host::shown;

namespace
{

bool counts(const char *key, json_object *value)
{
    return !is_null_package_obj(value) && std::string(key) != ".OPT";
}

bool says(json_object *whole, json_object *part)
{
    int cursor = 0;
    if (json_object_is_type(part, json_type_array)) {
        while (json_object *each = get_json_obj(part, &cursor))
            if (!says(whole, each)) return false;
        return true;
    }
    if (json_object_is_type(whole, json_type_array)) {
        while (json_object *each = get_json_obj(whole, &cursor))
            if (says(each, part)) return true;
        return false;
    }
    if (!json_object_is_type(part, json_type_object)) return json_object_equal(whole, part) != 0;
    json_object_object_foreach(part, key, value)
    {
        if (counts(key, value) && !says(member(whole, key), value)) return false;
    }
    return true;
}

}  // namespace

std::string missing(json_object *whole, json_object *part)
{
    if (says(whole, part)) return "";
    if (json_object_is_type(part, json_type_array)) {
        int cursor = 0;
        while (json_object *each = get_json_obj(part, &cursor))
            if (!says(whole, each)) return missing(whole, each);
    }
    if (!json_object_is_type(part, json_type_object) || !json_object_is_type(whole, json_type_object))
        return ": " + shown(part) + ", but " + shown(whole);
    json_object_object_foreach(part, key, value)
    {
        if (counts(key, value) && !says(member(whole, key), value))
            return std::string("/") + key + missing(member(whole, key), value);
    }
    return "";
}

}  // namespace apconf_test

// A message that is built with json-c alone, again and again. What to build is kept as one list of steps, read from
// front to back: looking it up costs next to nothing beside building it.
#pragma once

#include <json-c/json.h>

#include <cstddef>
#include <string>
#include <vector>

namespace apconf_bench
{

class bare_message
{
public:
    explicit bare_message(json_object *message) { record("", message); }

    // The caller owns it.
    json_object *build() const;

private:
    struct step {
        json_type type;
        size_t members;    // of an object or array: how many steps below it follow
        std::string key;   // in an object
        std::string text;  // of a string
    };

    void record(const char *key, json_object *value);
    json_object *build_next(const step *&next) const;

    std::vector<step> steps_;
};

}  // namespace apconf_bench

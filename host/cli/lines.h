// Configuration messages as command lines, in the words of the library's converter: each line can be read back.
#pragma once

#include <string>
#include <vector>

#include "cli/vocabulary.h"
#include "json.h"

namespace apconf_host
{

// Something in a message that no line can say, or that its line says only in part.
struct unsayable {
    std::string path;    // "config/radio[0]/bss[1]/ssid_cmd"
    std::string value;   // the JSON there
    std::string reason;  // "ssid is missing"
};

struct line_text {
    std::string text;  // one line a command instance, one blank of indentation a package
    std::vector<unsayable> left_out;
};

enum class secrets { shown, hidden };

// The lines of a message: a whole-tree message or a single-command one. Values that need it are quoted, so that
// read_lines makes the same message of them. Hidden secrets are "***", in what is left out too.
line_text to_lines(const vocabulary &vocabulary, json_object *message, secrets secrets = secrets::shown);

// A copy of a configuration without what only a program needs: marks that clear a list before its elements, removals
// of what is unset anyway, packages and instances in which nothing is set.
json_ptr tidied(json_object *configuration);

}  // namespace apconf_host

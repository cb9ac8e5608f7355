// What the subcommands read: whole files or standard input, as text or as one JSON message.
#pragma once

#include <string>

#include "json.h"

namespace apconf_host
{

// The whole content of a file; of standard input for "-". Throws failure.
std::string read_input(const std::string &file);

// The JSON object in `text`, which came from `file`. Throws failure with the line where the text stops being one.
json_ptr parse_message(const std::string &text, const std::string &file);

}  // namespace apconf_host

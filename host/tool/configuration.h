// The configurations that the subcommands compare, show and convert: the running one, archived ones and files.
#pragma once

#include <string>

#include "cli/lines.h"
#include "json.h"

namespace apconf_host
{

// What the server runs: {"config": {...}}. Throws failure.
json_ptr running();

// A configuration that somebody names: "running", the number of an archived one, or a file ("-": standard input) that
// holds a message or command lines. `what` receives how to call it: "running", "archived 12", "ap.conf". Throws
// failure.
json_ptr named_configuration(const vocabulary &vocabulary, const std::string &name, std::string &what);

// A message in `text`, JSON or command lines. Throws failure with every faulty line as "file:line:column: ...".
json_ptr message_in(const vocabulary &vocabulary, const std::string &text, const std::string &file);

bool looks_like_json(const std::string &text);

// Says on standard error what no line says. Returns whether there was anything.
bool report_left_out(const line_text &lines);

}  // namespace apconf_host

// Holding what a configuration says against what was asked for.
#pragma once

#include <string>

#include "host/json.h"

namespace apconf_test
{

// What `part` says and `whole` does not, in one of its elements where that is a list; empty when it says everything.
std::string missing(json_object *whole, json_object *part);

}  // namespace apconf_test

// Telling people what of a message was not carried out.
#pragma once

#include <string>
#include <vector>

#include "host/handlers.h"

namespace apconf_host
{

// One warning a refusal, each opening with `where`; beyond a limit only how many there are.
void log_refusals(const std::string &where, const std::vector<refusal> &refusals);

}  // namespace apconf_host

// Refusals on the log.
#include "host/server/refusal_log.h"

#include <algorithm>

#include "host/server/limits.h"
#include "host/server/log.h"

namespace apconf_host
{

void log_refusals(const std::string &where, const std::vector<refusal> &refusals)
{
    const size_t shown = std::min(refusals.size(), limits::logged_refusals);
    for (size_t i = 0; i < shown; ++i)
        SERVER_LOG(LOG_WARNING, "%s: %s", where.c_str(), one_line(to_text(refusals[i])).c_str());
    if (shown < refusals.size())
        SERVER_LOG(LOG_WARNING, "%s: %zu more refusals", where.c_str(), refusals.size() - shown);
}

}  // namespace apconf_host

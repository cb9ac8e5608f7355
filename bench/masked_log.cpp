// Masks every log priority before main, so that a log line costs what its mask check costs: where no system log runs,
// each line would try to connect to it. Linked into the benchmarks and preloaded into the server that they start.
#include <syslog.h>

namespace
{

// setlogmask ignores 0, so the mask that lets nothing pass is one without any real priority.
const int previous_mask [[maybe_unused]] = setlogmask(~LOG_UPTO(LOG_DEBUG));

}  // namespace

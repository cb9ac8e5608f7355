// Masks every log priority, so that a log line costs what its mask check costs: where no system log runs, each line
// would try to connect to it. Linked into the benchmarks and preloaded into the server that they start.
#include <dlfcn.h>
#include <syslog.h>

namespace
{

using setlogmask_fn = int (*)(int);

// The C library ignores a mask of 0, so the one that lets nothing pass is one without any priority that exists.
constexpr int nothing_passes = ~LOG_UPTO(LOG_DEBUG);

const int previous_mask [[maybe_unused]] =
    reinterpret_cast<setlogmask_fn>(dlsym(RTLD_NEXT, "setlogmask"))(nothing_passes);

}  // namespace

// The program's own mask does not replace it.
extern "C" int setlogmask(int) noexcept
{
    return nothing_passes;
}

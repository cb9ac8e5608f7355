// Time that nobody sets: it runs from the machine's start, also while the machine sleeps, and says nothing about the
// time before. So a moment is worth something only together with the boot that it belongs to.
#pragma once

#include <chrono>
#include <string>

namespace apconf_host
{

struct boot_moment {
    std::string boot;  // names one run of the machine; empty when the kernel does not tell
    std::chrono::milliseconds since_start{};
};

boot_moment now();

}  // namespace apconf_host

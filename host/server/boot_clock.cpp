// The kernel's clock and name of this boot.
#include "host/server/boot_clock.h"

#include <time.h>

#include <fstream>

namespace apconf_host
{
namespace
{

std::string name_of_boot()
{
    std::string name;
    std::ifstream("/proc/sys/kernel/random/boot_id") >> name;
    return name;
}

}  // namespace

boot_moment now()
{
    timespec time = {};
    clock_gettime(CLOCK_BOOTTIME, &time);
    static const std::string boot = name_of_boot();
    return {boot, std::chrono::seconds(time.tv_sec) + std::chrono::milliseconds(time.tv_nsec / 1000000)};
}

}  // namespace apconf_host

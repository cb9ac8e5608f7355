// All packages, and the way from a record of their tables back to its description.
#include "apconf/description.h"

namespace apconf
{
#define DECLARE_PACKAGE(name) extern const apconf_package package_##name;
APCONF_PACKAGES(DECLARE_PACKAGE)
#undef DECLARE_PACKAGE
}  // namespace apconf

#define PACKAGE_ADDRESS(name) &apconf::package_##name,
const apconf_package *const apconf_packages[APCONF_PACKAGE_COUNT] = {APCONF_PACKAGES(PACKAGE_ADDRESS)};
#undef PACKAGE_ADDRESS

const apconf_command *apconf_find_command(const cmd_node *node)
{
    for (const apconf_package *package : apconf_packages)
        if (node >= package->table && node < package->table + package->command_count)
            return &package->commands[node - package->table];
    return nullptr;
}

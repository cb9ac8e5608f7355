#include "support/private_namespace.h"

#include <cstdlib>
#include <cstring>

#include <gtest/gtest.h>

namespace apconf_test
{

bool in_private_namespace()
{
    const char *marker = getenv("APCONF_PRIVATE_NAMESPACE");
    return marker && strcmp(marker, "inside") == 0;
}

namespace
{

// Stops the program before any test can touch the machine's own /etc and /tmp.
class private_namespace_guard : public testing::Environment
{
    void SetUp() override
    {
        ASSERT_TRUE(in_private_namespace())
            << "run this program through tests/support/private_namespace.sh: it writes below /etc and /tmp";
    }
};

const auto *const guard [[maybe_unused]] = testing::AddGlobalTestEnvironment(new private_namespace_guard);

}  // namespace
}  // namespace apconf_test

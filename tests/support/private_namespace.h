// Tests write below /etc and /tmp; they may only do so where tests/support/private_namespace.sh has made both private.
#pragma once

namespace apconf_test
{

bool in_private_namespace();

}  // namespace apconf_test

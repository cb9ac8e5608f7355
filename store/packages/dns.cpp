// dns: answers that the access point gives to DNS queries itself.
#include "store/packages/package.h"

PACKAGE(dns, GLOBAL)
// clang-format off

COMMAND(fake_response_cmd, reset_on_change(ARRAY(dns.fake_response_cmd), AT(dns.fake_response_cmd_opt)).zero_when_unset(),
        FIELD("ip", dns.fake_response_cmd[i].ip, IPV4),
        TEXT("domain", dns.fake_response_cmd[i].domain))

// clang-format on
END_PACKAGE(dns)

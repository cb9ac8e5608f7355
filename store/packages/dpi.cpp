// dpi: deep packet inspection and where its reports go.
#include "store/packages/package.h"

PACKAGE(dpi, GLOBAL)
// clang-format off

COMMAND(status_cmd, group(),
        FIELD("status", dpi.status_cmd.status, STATUS))
COMMAND(logging_mode_cmd, group(),
        FIELD("status", dpi.logging_mode_cmd.status, STATUS))
COMMAND(logging_audit_cmd, group(),
        FIELD("ip", dpi.logging_audit_cmd.ip, IPV4, 0, APCONF_WHEN_IP),
        FIELD("type", dpi.logging_audit_cmd.type, ADDR_TYPE),
        FIELD("port", dpi.logging_audit_cmd.port, UINT),
        TEXT("domain", dpi.logging_audit_cmd.domain, 0, APCONF_WHEN_DOMAIN))
COMMAND(report_server_cmd, group(),
        FIELD("ip", dpi.report_server_cmd.ip, IPV4, 0, APCONF_WHEN_IP),
        FIELD("type", dpi.report_server_cmd.type, ADDR_TYPE),
        FIELD("port", dpi.report_server_cmd.port, UINT),
        TEXT("domain", dpi.report_server_cmd.domain, 0, APCONF_WHEN_DOMAIN))

// clang-format on
END_PACKAGE(dpi)

// ftp: one FTP upload service.
#include "store/packages/package.h"

PACKAGE(ftp, FTP)
// clang-format off

COMMAND(timer_cmd, group(),
        FIELD("daily_hours", timer_cmd.daily_hours, UINT8),
        FIELD("daily_minutes", timer_cmd.daily_minutes, UINT8),
        FIELD("interval_type", timer_cmd.interval_type, FTPS_INTERVAL_TYPE),
        FIELD("interval_value", timer_cmd.interval_value, UINT8))
COMMAND(server_cmd, group(),
        FIELD("ip", server_cmd.ip, IPV4),
        FIELD("port", server_cmd.port, UINT),
        TEXT("path", server_cmd.path),
        TEXT("username", server_cmd.username),
        TEXT("password", server_cmd.password, secret))
COMMAND(service_cmd, group(),
        FIELD("status", service_cmd.status, STATUS),
        FIELD("mode", service_cmd.mode, FTPS_MODE_TYPE),
        FIELD("policy", service_cmd.policy, FTPS_POLICY_TYPE),
        TEXT("name", service_cmd.name))
COMMAND(compress_type_cmd, group(),
        FIELD("type", compress_type_cmd.type, FTPS_COMPRESS_TYPE))
COMMAND(compress_rename_cmd, group(),
        FIELD("status", compress_rename_cmd.status, STATUS))
COMMAND(local_path_cmd, group(),
        TEXT("path", local_path_cmd.path))
COMMAND(run_immediately_cmd, group(),
        FIELD("status", run_immediately_cmd.status, STATUS))
COMMAND(upload_delete_cmd, group(),
        FIELD("status", upload_delete_cmd.status, STATUS))
COMMAND(max_log_cmd, group(),
        FIELD("size", max_log_cmd.size, UINT16))
COMMAND(max_upbuf_cmd, group(),
        FIELD("size", max_upbuf_cmd.size, UINT16))
COMMAND(all_service_cmd, group(),
        FIELD("bits", all_service_cmd.bits, UINT16))

// clang-format on
END_PACKAGE(ftp)

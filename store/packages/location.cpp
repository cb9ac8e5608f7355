// location: reporting of where stations are.
#include "store/packages/package.h"

PACKAGE(location, GLOBAL)
// clang-format off

COMMAND(feature_cmd, group(),
        FIELD("type", location.feature_cmd.type, LOCATION_FEATURE))
COMMAND(mode_cmd, group(),
        FIELD("mode", location.mode_cmd.mode, LOCATION_MODE))
COMMAND(server_cmd, group(),
        FIELD("port", location.server_cmd.port, UINT),
        FIELD("period", location.server_cmd.period, UINT),
        FIELD("second_port", location.server_cmd.second_port, UINT),
        TEXT("ip", location.server_cmd.ip),
        TEXT("second_ip", location.server_cmd.second_ip))
COMMAND(ebag_cmd, group(),
        FIELD("status", location.ebag_cmd.status, STATUS))
COMMAND(code_cmd, group(),
        FIELD("code", location.code_cmd.code, UINT16))

// clang-format on
END_PACKAGE(location)

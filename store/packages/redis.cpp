// redis: the Redis server that shares state between access points.
#include "store/packages/package.h"

PACKAGE(redis, GLOBAL)
// clang-format off

COMMAND(server_cmd, group(),
        FIELD("ip", redis.server_cmd.ip, IPV4),
        FIELD("port", redis.server_cmd.port, UINT),
        FIELD("auth", redis.server_cmd.auth, STRING, secret))
COMMAND(cs_expire_cmd, group(),
        FIELD("time", redis.cs_expire_cmd.time, UINT))
COMMAND(rj_expire_cmd, group(),
        FIELD("time", redis.rj_expire_cmd.time, UINT))

// clang-format on
END_PACKAGE(redis)

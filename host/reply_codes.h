// The codes that the configuration server puts into the header of its replies. Clients may rely on these numbers; new
// codes get new numbers. The library itself only knows that 0 is success.
#pragma once

#include <cstdint>

namespace apconf_host
{

enum class reply_code : uint8_t {
    ok = 0,
    bad_message = 1,    // the data is no JSON text, no configuration message, or no module name
    not_a_get = 2,      // a get request whose "ACTION" is not "get"
    too_large = 3,      // more than the server takes; after too many bytes the connection is closed
    refused = 4,        // a set was not, or not wholly, carried out
    unknown_type = 5,   // a message type that this server does not know
    not_permitted = 6,  // the peer's user may not configure; the connection is closed
    busy = 7,           // too many connections or too much unfinished data; the connection is closed
    failed = 8,         // the server could not do it: it is short of memory or disk space
    unconfirmed = 9,    // another commit still waits to be confirmed
    not_waiting = 10,   // there is no applied commit that waits to be confirmed
};

constexpr const char *describe(reply_code code)
{
    switch (code) {
        case reply_code::ok:
            return "success";
        case reply_code::bad_message:
            return "not a configuration message";
        case reply_code::not_a_get:
            return "not a get message";
        case reply_code::too_large:
            return "message too large";
        case reply_code::refused:
            return "refused";
        case reply_code::unknown_type:
            return "unknown message type";
        case reply_code::not_permitted:
            return "not permitted";
        case reply_code::busy:
            return "server busy";
        case reply_code::failed:
            return "server failure";
        case reply_code::unconfirmed:
            return "an earlier commit waits to be confirmed";
        case reply_code::not_waiting:
            return "no commit waits to be confirmed";
    }
    return "unknown reply code";
}

}  // namespace apconf_host

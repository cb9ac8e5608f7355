// The messages between apconf and apconfd that only this host knows. The library's own types are in apconf/io_sock.h; a
// host's start at IO_MSG_HOST_FIRST. Clients may rely on these numbers.
#pragma once

#include <cstdint>

namespace apconf_host
{

enum class message_type : uint8_t {
    status = 64,     // what is applied, and whether a commit waits to be confirmed
    commit = 65,     // queue a message that is undone unless it is confirmed in time
    confirm = 66,    // keep it
    subscribe = 67,  // tell me what is applied from now on
    applied = 68     // from the server: a message has been applied
};

}  // namespace apconf_host

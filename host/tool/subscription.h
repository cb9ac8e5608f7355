// A connection of its own on which the server tells of every message that it applies: replies to requests on it could
// not be told from events.
#pragma once

#include "json.h"

namespace apconf_host
{

class subscription
{
public:
    // Events from now on are not missed. Throws failure.
    subscription();
    ~subscription();
    subscription(const subscription &) = delete;
    subscription &operator=(const subscription &) = delete;

    // Waits for the next event: {"time", "number" unless it came over a socket, "changes", "refusals", "message"}.
    // Null: the connection has ended.
    json_ptr next();

    // For signal handlers, which may shut it down.
    int descriptor() const { return fd_; }

private:
    void request(int type, const void *data, uint32_t size) const;

    int fd_;
};

}  // namespace apconf_host

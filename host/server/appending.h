// The server as a producer, and as one that must never wait for producers.
#pragma once

#include <json-c/json.h>

#include <functional>
#include <optional>

#include "host/server/owners.h"

namespace apconf_host
{

// Keeps producers from appending while it lives and `held`. Without an index file there is nothing to hold, and nobody
// can append either. Never waits: a producer may have stopped in the middle of an append.
class append_lock
{
public:
    append_lock();
    bool held() const { return held_; }

private:
    fd_owner fd_;
    bool held_;
};

// Appends a message to the queue. `number_given` hears the number before the message is there, and may say false: then
// nothing is appended. The number, or nothing, logged, when it could not be appended now.
std::optional<int> append_message(json_object *message, const std::function<bool(int)> &number_given);

}  // namespace apconf_host

// What the tool asks the server beside the library's own messages: its state, and commits that are to be confirmed.
#pragma once

#include <optional>

#include "json.h"
#include "message_types.h"
#include "reply_codes.h"
#include "tool/server.h"

namespace apconf_host
{

struct server_answer {
    reply_code code;
    json_ptr data;  // null: none
};

// Asks and waits for the answer. Throws failure when there is none, or when the server does not know the request.
server_answer ask(const server_connection &server, message_type type, json_object *data = nullptr);

struct server_state {
    int applied = 0;                 // the last queued message that was applied
    int unconfirmed = 0;             // the commit that waits to be confirmed; 0: none
    std::optional<int64_t> seconds;  // how long it may wait; nothing while it is not applied
};

server_state state_of(const server_connection &server);

// Whether queued message `number` is applied, now or within some seconds.
bool wait_until_applied(const server_connection &server, int number);

// Says on standard error that message `number` is undone as well unless an earlier one is confirmed, if there is one.
void warn_of_unconfirmed(int number);

}  // namespace apconf_host

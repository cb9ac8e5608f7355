// The tool's side of the conversation with the configuration server.
#pragma once

#include "json.h"
#include "tool/target.h"

namespace apconf_host
{

// One connection; closed when it goes. Throws failure when there is no server.
class server_connection
{
public:
    server_connection();
    ~server_connection();
    server_connection(const server_connection &) = delete;
    server_connection &operator=(const server_connection &) = delete;

    // The whole answer of the server: the path repeated as nested objects.
    json_ptr get(const target &target, json_object *param) const;

    // Sends a set or no; there is no reply.
    void send(action action, const target &target) const;
};

// Of an answer, what it says about the addressed node; null when nothing.
json_object *addressed(json_object *answer, const target &target);

// Whether the server shows what was set, or no longer shows what was removed. Empty when it does, else what it shows.
std::string difference_after(action action, const server_connection &server, const target &target);

}  // namespace apconf_host

// What the server does with a message from a client, by its type.
#pragma once

#include <json-c/json.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "host/reply_codes.h"
#include "host/server/queue_drain.h"
#include "host/server/running_state.h"
#include "host/server/watchers.h"

namespace apconf_host
{

struct reply {
    reply_code code = reply_code::ok;
    std::string data;  // empty: none
};

// What the service remembers of a client.
struct client_record {
    std::string module;   // as registered; empty before and after
    watchers::push push;  // sends it an event; set by its connection
    std::unique_ptr<watchers::subscription> subscription;
};

class service
{
public:
    service(running_state &state, queue_drain &queue, watchers &watchers)
        : state_(state), queue_(queue), watchers_(watchers)
    {
    }

    // Carries out one message. What comes back is to be sent; everything that it tells is on disk.
    std::optional<reply> serve(client_record &client, uint8_t type, const std::string &data);

private:
    std::optional<reply> dispatch(client_record &client, uint8_t type, const std::string &data);
    static reply register_module(client_record &client, const std::string &data);
    void set(const client_record &client, const std::string &data);
    static reply get(const std::string &data);
    reply status() const;
    reply commit(const client_record &client, const std::string &data);
    reply confirm();
    reply subscribe(client_record &client);

    running_state &state_;
    queue_drain &queue_;
    watchers &watchers_;
};

}  // namespace apconf_host

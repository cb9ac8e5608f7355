// Clients that want to hear of every message as it is applied.
#pragma once

#include <json-c/json.h>

#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <string>

#include "host/handlers.h"

namespace apconf_host
{

class watchers
{
public:
    // Hears each event: a JSON text with its NUL.
    using push = std::function<void(const std::string &event)>;

    // Lasts until it is destroyed, which must not happen within the push itself.
    class subscription
    {
    public:
        subscription(std::list<push> &all, push on_event)
            : all_(all), place_(all.insert(all.end(), std::move(on_event)))
        {
        }
        ~subscription() { all_.erase(place_); }
        subscription(const subscription &) = delete;
        subscription &operator=(const subscription &) = delete;

    private:
        std::list<push> &all_;
        std::list<push>::iterator place_;
    };

    // Null: there are too many already.
    std::unique_ptr<subscription> add(push on_event);

    // A message has been applied and recorded. `number`: its number in the queue; nothing for one from a socket.
    void tell(std::optional<int> number, json_object *message, const outcome &result);

private:
    std::list<push> all_;
};

}  // namespace apconf_host

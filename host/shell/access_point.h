// What a session asks of the access point that it configures.
#pragma once

#include <string>

#include "json.h"

namespace apconf_host
{

// What became of a batch that was queued.
struct committed {
    std::string text;      // for people, whole lines
    bool refused = false;  // some of it was not applied; the text says why
};

class access_point
{
public:
    virtual ~access_point() = default;

    // What is in force below a package: "config/radio[0]" gives {"config": {"radio": {...}}}. Throws failure.
    virtual json_ptr running(const std::string &path) = 0;

    // Queues a batch, whole or not at all. Throws failure or refused_by_schema; then nothing was queued.
    virtual committed commit(json_object *batch) = 0;

    // Likewise; undone by the access point unless it is confirmed within so many seconds.
    virtual committed commit_to_be_confirmed(json_object *batch, int seconds) = 0;

    // Keeps what waits to be confirmed, and says so. Throws failure when nothing does.
    virtual std::string confirm() = 0;
};

}  // namespace apconf_host

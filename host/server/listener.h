// Accepts clients and keeps their connections.
#pragma once

#include <event2/event.h>

#include <cstddef>
#include <memory>
#include <unordered_map>
#include <vector>

#include "host/server/connection.h"
#include "host/server/credentials.h"
#include "host/server/timer.h"

namespace apconf_host
{

class listener
{
public:
    // `socket` is listening and non-blocking; it stays the caller's. At most `limit` clients at a time.
    listener(event_base *base, int socket, const access_rule &rule, service &requests, size_t limit);

private:
    void on_acceptable();
    bool accept_one();
    void welcome(fd_owner fd);
    void turn_away(const fd_owner &fd) const;
    void bury(connection *closed);

    struct event_release {
        void operator()(event *owned) const { event_free(owned); }
    };

    int socket_;
    access_rule rule_;
    size_t limit_;
    timer resume_timer_;
    timer burial_timer_;
    connection::common shared_;
    std::unordered_map<connection *, std::unique_ptr<connection>> connections_;
    std::vector<std::unique_ptr<connection>> closed_;
    std::unique_ptr<event, event_release> acceptable_;
};

// Makes room for that many clients. Returns how many there is room for.
size_t raise_descriptor_limit(size_t clients);

}  // namespace apconf_host

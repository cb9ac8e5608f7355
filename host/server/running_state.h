// The running configuration on disk, so that the server comes back with it however it ended: which queued message was
// applied last, and what the configuration is. Written whole and atomically; what it says has happened, has happened.
#pragma once

#include <json-c/json.h>

#include <string>

#include "host/server/archive.h"
#include "host/server/owners.h"
#include "host/server/timer.h"

namespace apconf_host
{

class running_state
{
public:
    explicit running_state(event_base *base);

    // Brings back what was recorded: from the state file, or, when that is missing or damaged, from the newest readable
    // file of `old`. Called once, on an unset configuration.
    void restore(const archive &old);

    // Whether restore found anything.
    bool found() const { return found_; }

    // The last queued message whose effect the configuration has; 0 when there was none.
    int applied() const { return applied_; }

    // Records the configuration as it is after queued message `index`. False: not on disk yet; call again.
    bool record(int index);

    // Something else than a queued message changed the configuration. Many changes make one write: before the next
    // reply to anybody, and at the latest in the next turn of the loop.
    void mark_changed();

    // False: not on disk yet; it is tried again.
    bool flush();

private:
    struct saved {
        int applied = 0;
        json_ptr config;  // what stands under "config"
    };
    static bool load_state_file(saved &result);
    static bool load_newest(const archive &old, saved &result);
    static void apply(const saved &saved);
    bool write();

    bool found_ = false;
    int applied_ = 0;
    bool changed_ = false;
    timer flush_timer_;
};

// The running configuration as {"config": {...}}, also when everything is unset. Does not speak to the log.
json_ptr configuration_snapshot();

}  // namespace apconf_host

// Applies the queued messages, one a turn of the loop, each exactly once and in order, however often the server is
// killed in between. A message counts as applied when the running state says so; everything that is done before can be
// done again, everything after it is tidying that the next start repeats.
#pragma once

#include <json-c/json.h>

#include <cstddef>
#include <string>

#include "host/handlers.h"
#include "host/server/archive.h"
#include "host/server/running_state.h"
#include "host/server/timer.h"

namespace apconf_host
{

class queue_drain
{
public:
    // The queue's directories must exist. `archive_limit`: files kept in "old" and in "bad".
    queue_drain(event_base *base, running_state &state, size_t archive_limit);

    // At start: restores the running state, repairs what a crash left of the queue, applies what was fetched but not
    // recorded, and starts draining.
    void start();

    // Something was queued.
    void request();

private:
    bool indexes_are_sound() const;
    bool repair_indexes();
    void queue_start_configuration();
    void apply_unrecorded();
    void tidy();
    void turn_or_retry();
    void turn();
    bool pending() const;
    void fetch_one();
    void note_unreadable(int first, int end);
    void apply(int index, json_object *message);
    bool finish();

    // What is left to do for the message that was applied in memory and is not on disk yet.
    struct unfinished {
        int index = 0;  // 0: none
        outcome result;
        std::string module;
    };

    running_state &state_;
    archive old_;
    archive bad_;
    unfinished unfinished_;
    bool caught_up_ = false;  // nothing is left that was fetched before this start and not recorded
    timer turn_timer_;
};

}  // namespace apconf_host

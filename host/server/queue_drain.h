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
#include "host/server/unconfirmed_commit.h"
#include "host/server/watchers.h"

namespace apconf_host
{

class queue_drain
{
public:
    // The queue's directories must exist. `archive_limit`: files kept in "old" and in "bad".
    queue_drain(event_base *base, running_state &state, watchers &watchers, size_t archive_limit);

    // At start: restores the running state, repairs what a crash left of the queue, applies what was fetched but not
    // recorded, and starts draining.
    void start();

    // Something was queued.
    void request();

    // Queues a message that is undone unless it is confirmed within `time` after it is applied.
    unconfirmed_commit::queued commit(json_object *message, std::chrono::seconds time);
    unconfirmed_commit &unconfirmed() { return unconfirmed_; }

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
    void note_undone(const unconfirmed_commit::undone &undone);

    // What is left to do for the message that was applied in memory and is not on disk yet.
    struct unfinished {
        int index = 0;  // 0: none
        outcome result;
        json_ptr message;
    };

    running_state &state_;
    watchers &watchers_;
    archive old_;
    archive bad_;
    unfinished unfinished_;
    bool caught_up_ = false;  // nothing is left that was fetched and is to be applied anew
    unconfirmed_commit unconfirmed_;
    timer turn_timer_;
};

}  // namespace apconf_host

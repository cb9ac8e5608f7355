// The commit that is undone unless somebody confirms it in time: for operators who may lock themselves out.
//
// Which message it is stands on disk before the message can be fetched; the configuration before it and the deadline,
// before it is applied. So however the server ends, it knows at its next start what to undo and when. The undo puts the
// old configuration back in place, and with it undoes everything that was applied since; then it queues that
// configuration as a message of the server's own, so that it has a number like every other change.
#pragma once

#include <json-c/json.h>

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "host/reply_codes.h"
#include "host/server/boot_clock.h"
#include "host/server/owners.h"
#include "host/server/running_state.h"
#include "host/server/timer.h"

namespace apconf_host
{

class unconfirmed_commit
{
public:
    // What was undone: this message, which had so much time, and all others up to the undo's own.
    struct undone {
        int number;
        std::chrono::seconds time;
        int undo;
    };

    // `when_undone` is called when the message of an undo is in the queue.
    unconfirmed_commit(event_base *base, running_state &state, std::function<void(const undone &)> when_undone);

    // At start, when the running state and the queue's indexes are in order and nothing has been applied yet.
    void restore();

    // At start, when all that had been fetched is applied: undoes what nobody confirmed while no server ran.
    void resume();

    // The queue number of the commit, and how long it may still wait; no time when it is not applied yet.
    struct waiting {
        int number;
        std::optional<std::chrono::milliseconds> left;
    };
    std::optional<waiting> current() const;

    // Queues a message that has to be confirmed within `time` after it is applied. The number, or what is in the way.
    struct queued {
        reply_code code;
        int number = 0;
    };
    queued commit(json_object *message, std::chrono::seconds time);

    // Message `index` is about to be applied. False: it must not be, because what would undo it cannot be written now.
    bool prepare(int index, json_object *message);

    // Keeps what is applied. `ok`, `not_waiting` or `failed`; the number with the first.
    queued confirm();

private:
    // The message waits in the queue; once it is about to be applied, also how to undo it.
    struct undo {
        boot_moment deadline;
        json_ptr configuration;  // {"config": {...}}
    };
    struct record {
        int number = 0;
        std::chrono::seconds time{};
        json_ptr message;
        std::optional<undo> how;
    };

    static std::optional<record> load();
    static bool save(const record &commit);
    bool is_obsolete(const record &commit) const;
    bool forget();
    static std::chrono::milliseconds left_of(const record &commit);
    void check_time();
    void put_back();
    bool queue_undo();

    running_state &state_;
    std::function<void(const undone &)> when_undone_;
    std::optional<record> record_;
    bool put_back_ = false;     // the undo is carried out, not yet queued
    bool undo_queued_ = false;  // and queued; the record on disk is still to be removed
    timer timer_;
};

}  // namespace apconf_host

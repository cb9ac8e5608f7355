// Fetches, applies, records and archives queued messages.
#include "host/server/queue_drain.h"

#include <apconf/cmessage.h>
#include <apconf/cmq.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <string>

#include "host/bad_file.h"
#include "host/server/appending.h"
#include "host/server/files.h"
#include "host/server/limits.h"
#include "host/server/log.h"
#include "host/server/refusal_log.h"

namespace apconf_host
{
namespace
{

// How long a start waits for a producer that is just appending.
constexpr int repair_attempts = 100;
constexpr useconds_t repair_pause_microseconds = 10000;

std::string module_of(json_object *message)
{
    json_object *module = nullptr;
    if (!json_object_is_type(message, json_type_object) || !json_object_object_get_ex(message, "MODULE", &module) ||
        !json_object_is_type(module, json_type_string))
        return "UNKNOWN";
    return one_line(json_object_get_string(module), 63);
}

// The running configuration as a message of its own, in the name of whom it came from.
json_ptr archived_message(const std::string &module)
{
    json_ptr message = configuration_snapshot();
    json_object_object_add(message.get(), "MODULE", json_object_new_string(module.c_str()));
    json_object_object_add(message.get(), "ACTION", json_object_new_string("set"));
    return message;
}

bool save_bad_file(int index, const std::vector<refusal> &refusals)
{
    const file_owner file(cmq_create_bad_file(index));
    if (!file) return false;
    for (const refusal &refusal : refusals)
        fprintf(file.get(), "%s\n", one_line(to_text(refusal), std::string::npos).c_str());
    return fflush(file.get()) == 0;
}

}  // namespace

queue_drain::queue_drain(event_base *base, running_state &state, watchers &watchers, size_t archive_limit)
    : state_(state),
      watchers_(watchers),
      old_(CMQ_OLD_DIR, ".json", archive_limit),
      bad_(CMQ_BAD_DIR, ".txt", archive_limit),
      unconfirmed_(base, state, [this](const unconfirmed_commit::undone &undone) { note_undone(undone); }),
      turn_timer_(base, [this] { turn_or_retry(); })
{
}

void queue_drain::start()
{
    state_.restore(old_);
    for (int attempt = 0; !repair_indexes() && attempt < repair_attempts; ++attempt) usleep(repair_pause_microseconds);
    cmq_init();
    queue_start_configuration();
    tidy();
    unconfirmed_.restore();
    apply_unrecorded();
    unconfirmed_.resume();
    request();
}

void queue_drain::request()
{
    turn_timer_.start_next_turn();
}

unconfirmed_commit::queued queue_drain::commit(json_object *message, std::chrono::seconds time)
{
    request();
    return unconfirmed_.commit(message, time);
}

// Fresh: set up by cmq_init.
bool queue_drain::indexes_are_sound() const
{
    const int current = cmq_get_current_index();
    const int end = get_message_index(CMQ_MAX_INDEX);
    const bool fresh = current < 1 && end < 1 && state_.applied() == 0;
    return fresh || (current > state_.applied() && end >= current);
}

// Numbers go on where they stood, whatever became of the index files: a number that was used once would be taken for a
// message that has been applied. False: a producer is appending, try again.
bool queue_drain::repair_indexes()
{
    if (indexes_are_sound()) return true;
    const append_lock lock;
    if (!lock.held()) return false;
    const int current = cmq_get_current_index();
    const int next = std::max(current, state_.applied() + 1);
    if (next != current) {
        SERVER_LOG(LOG_WARNING, "the queue's current index is %d, it continues at %d", current, next);
        set_message_index(CMQ_CUR_INDEX, next);
    }
    const int end = get_message_index(CMQ_MAX_INDEX);
    if (end >= next) return true;
    const int repaired = std::max(next, calc_max_msg_index() + 1);
    SERVER_LOG(LOG_WARNING, "the queue's maximum index is %d, it continues at %d", end, repaired);
    set_message_index(CMQ_MAX_INDEX, repaired);
    return true;
}

// cmq_init does this on a fresh queue. When it was killed on the way, the queue is set up and the start configuration
// is not in it: nothing was ever queued and nothing ever applied.
void queue_drain::queue_start_configuration()
{
    if (get_message_index(CMQ_MAX_INDEX) != 1 || !old_.empty() || state_.found()) return;
    if (access(CMQ_START_CONFIG, F_OK) < 0) return;
    SERVER_LOG(LOG_INFO, "queueing the start configuration");
    cmq_handle_cmessage(cmq_put_cmessage_start_config, const_cast<char *>(CMQ_START_CONFIG));
}

// What a kill after the record has left undone.
void queue_drain::tidy()
{
    const int applied = state_.applied();
    if (applied > 0 && !old_.holds(applied)) {
        cmq_save_old_config(applied, archived_message("UNKNOWN").get());
        old_.added(applied);
    }
    for (const int index : numbers_in(CMQ_NEW_DIR, ".json"))
        if (index <= applied) cmq_delete_new_msg(index, 0);
}

// Messages that were fetched but whose effect died with the last server.
void queue_drain::apply_unrecorded()
{
    const int current = cmq_get_current_index();
    for (const int index : numbers_in(CMQ_NEW_DIR, ".json")) {
        if (index <= state_.applied() || index >= current) continue;
        const json_ptr message(json_object_from_file(numbered_file(CMQ_NEW_DIR, index, ".json").c_str()));
        if (!message) {
            note_unreadable(index, index + 1);
            continue;
        }
        SERVER_LOG(LOG_INFO, "applying message %d anew", index);
        apply(index, message.get());
        caught_up_ = caught_up_ && unfinished_.index == 0;
        if (!caught_up_) return;
    }
    caught_up_ = true;
}

void queue_drain::turn_or_retry()
{
    try {
        turn();
    } catch (...) {
        turn_timer_.start(limits::write_retry);
        throw;
    }
}

void queue_drain::turn()
{
    if (unfinished_.index != 0 && !finish()) {
        turn_timer_.start(limits::write_retry);
        return;
    }
    if (!caught_up_) apply_unrecorded();
    if (!caught_up_) {
        turn_timer_.start(limits::write_retry);
        return;
    }
    if (!indexes_are_sound()) {
        if (!repair_indexes()) {
            turn_timer_.start(limits::write_retry);
            return;
        }
        cmq_init();
    }
    if (!pending()) return;
    fetch_one();
    const bool done = caught_up_ && unfinished_.index == 0;
    turn_timer_.start(done ? std::chrono::milliseconds::zero() : limits::write_retry);
}

// Read twice, because a producer may be writing the number just now. It says so when it is done, so a number that is
// not to be trusted yet can wait.
bool queue_drain::pending() const
{
    const int end = get_message_index(CMQ_MAX_INDEX);
    return cmq_get_current_index() < end && get_message_index(CMQ_MAX_INDEX) >= end;
}

void queue_drain::fetch_one()
{
    const int expected = cmq_get_current_index();
    int index = 0;
    const json_ptr message(cmq_fetch_a_message(&index));
    note_unreadable(expected, message ? index : cmq_get_current_index());
    if (message) apply(index, message.get());
}

// Unreadable messages are skipped for good; "bad" says so.
void queue_drain::note_unreadable(int first, int end)
{
    for (int index = first; index < end; ++index) {
        SERVER_LOG(LOG_ERR, "message %d cannot be read and is skipped", index);
        const file_owner file(cmq_create_bad_file(index));
        if (!file) continue;
        fputs("the message cannot be read: there is no such file, or it is no JSON text\n", file.get());
        bad_.added(index);
    }
}

void queue_drain::apply(int index, json_object *message)
{
    unfinished_ = {};
    unfinished_.message = json_ptr(json_object_get(message));
    caught_up_ = false;  // should memory or disk be too short to apply it, it stays to be applied
    if (!unconfirmed_.prepare(index, message)) return;
    apply_message(message, unfinished_.result);
    caught_up_ = true;
    unfinished_.index = index;
    finish();
}

// Puts on disk what the applied message did. The record is the point of no return: before it come the files that nobody
// could write later, after it the message goes.
bool queue_drain::finish()
{
    const int index = unfinished_.index;
    const outcome &result = unfinished_.result;
    const std::string module = module_of(unfinished_.message.get());
    if (!result.refusals.empty()) {
        if (!save_bad_file(index, result.refusals))
            SERVER_LOG(LOG_ERR, "cannot write the bad file of message %d", index);
        bad_.added(index);
    }
    cmq_save_old_config(index, archived_message(module).get());
    old_.added(index);
    if (!state_.record(index)) return false;

    cmq_delete_new_msg(index, 0);
    SERVER_LOG(LOG_INFO, "applied message %d from %s: %u changes, %zu refusals", index, module.c_str(), result.changes,
               result.refusals.size());
    log_refusals("message " + std::to_string(index), result.refusals);
    watchers_.tell(index, unfinished_.message.get(), result);
    unfinished_ = {};
    return true;
}

// Beside the refusals of the messages, if they had any.
void queue_drain::note_undone(const unconfirmed_commit::undone &undone)
{
    std::string why =
        undone_mark + std::string("it was not confirmed within ") + std::to_string(undone.time.count()) + " s\n";
    for (int index = undone.number; index < undone.undo; ++index) {
        const fd_owner fd(open(numbered_file(CMQ_BAD_DIR, index, ".txt").c_str(),
                               O_WRONLY | O_CREAT | O_APPEND | O_NOFOLLOW | O_CLOEXEC, 0600));
        if (!fd || write(fd.get(), why.data(), why.size()) != static_cast<ssize_t>(why.size()))
            SERVER_LOG(LOG_ERR, "cannot write the bad file of message %d", index);
        bad_.added(index);
        why = undone_mark + std::string("together with message ") + std::to_string(undone.number) + "\n";
    }
    request();
}

}  // namespace apconf_host

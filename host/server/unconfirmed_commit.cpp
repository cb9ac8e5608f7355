// Keeps, watches and carries out the undo of one commit.
#include "host/server/unconfirmed_commit.h"

#include <apconf/cmq.h>

#include <algorithm>

#include "host/difference.h"
#include "host/handlers.h"
#include "host/json_build.h"
#include "host/server/appending.h"
#include "host/server/files.h"
#include "host/server/limits.h"
#include "host/server/log.h"
#include "host/server/refusal_log.h"

namespace apconf_host
{
namespace
{

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr const char *record_path = CMQ_DIR "/unconfirmed.json";

json_ptr object_of(json_object *value)
{
    return json_object_is_type(value, json_type_object) ? shared(value) : nullptr;
}

int64_t number_in(json_object *object, const char *key)
{
    return json_object_get_int64(member(object, key));
}

// The message that puts the configuration back, in the server's own name.
json_ptr undo_message(json_object *configuration)
{
    json_ptr message = replacement(configuration);
    add(message.get(), "MODULE", new_text("apconfd"));
    add(message.get(), "ACTION", new_text("set"));
    return message;
}

// The message's number when it is in the queue already: the last server may have ended right after it put it there.
std::optional<int> number_in_queue(json_object *message, int applied)
{
    for (const int number : numbers_in(CMQ_NEW_DIR, ".json")) {
        if (number <= applied || number >= get_message_index(CMQ_MAX_INDEX)) continue;
        const json_ptr other(json_object_from_file(numbered_file(CMQ_NEW_DIR, number, ".json").c_str()));
        if (json_object_equal(other.get(), message)) return number;
    }
    return std::nullopt;
}

}  // namespace

unconfirmed_commit::unconfirmed_commit(event_base *base, running_state &state,
                                       std::function<void(const undone &)> when_undone)
    : state_(state), when_undone_(std::move(when_undone)), timer_(base, [this] { check_time(); })
{
}

void unconfirmed_commit::restore()
{
    record_ = load();
    if (!record_ || !is_obsolete(*record_)) return;
    SERVER_LOG(LOG_WARNING, "message %d, which was to be confirmed, was never applied", record_->number);
    forget();
}

void unconfirmed_commit::resume()
{
    if (record_ && record_->how && state_.applied() >= record_->number) check_time();
}

std::optional<unconfirmed_commit::waiting> unconfirmed_commit::current() const
{
    if (!record_ || put_back_) return std::nullopt;
    if (!record_->how) return waiting{record_->number, std::nullopt};
    return waiting{record_->number, std::max(left_of(*record_), milliseconds::zero())};
}

unconfirmed_commit::queued unconfirmed_commit::commit(json_object *message, seconds time)
{
    if (record_) return {reply_code::unconfirmed};
    record fresh;
    fresh.time = time;
    fresh.message = shared(message);
    const auto number = append_message(message, [&](int given) {
        fresh.number = given;
        return given > state_.applied() && save(fresh);
    });
    if (!number) {
        forget();
        return {reply_code::failed};
    }
    record_ = std::move(fresh);
    return {reply_code::ok, *number};
}

bool unconfirmed_commit::prepare(int index, json_object *message)
{
    if (!record_ || put_back_ || index < record_->number) return true;
    const bool in_force = record_->how && state_.applied() >= record_->number;
    if (index > record_->number && in_force) return true;
    if (index > record_->number || !json_object_equal(message, record_->message.get())) {
        // The server that was to queue it ended before it could, and somebody else's message got the number.
        SERVER_LOG(LOG_WARNING, "message %d, which was to be confirmed, was never applied", record_->number);
        return forget();
    }
    record next;
    next.number = index;
    next.time = record_->time;
    next.message = shared(message);
    boot_moment deadline = now();
    deadline.since_start += next.time;
    next.how = undo{deadline, configuration_snapshot()};
    if (!save(next)) return false;
    record_ = std::move(next);
    timer_.start(limits::confirm_check);
    SERVER_LOG(LOG_INFO, "message %d has to be confirmed within %lld s", index,
               static_cast<long long>(record_->time.count()));
    return true;
}

unconfirmed_commit::queued unconfirmed_commit::confirm()
{
    if (record_ && record_->how && !put_back_) check_time();
    if (!record_ || !record_->how || put_back_) return {reply_code::not_waiting};
    const int number = record_->number;
    if (!forget()) return {reply_code::failed};
    SERVER_LOG(LOG_INFO, "message %d is confirmed", number);
    return {reply_code::ok, number};
}

std::optional<unconfirmed_commit::record> unconfirmed_commit::load()
{
    const json_ptr file(json_object_from_file(record_path));
    if (!file && access(record_path, F_OK) != 0) return std::nullopt;
    record result;
    result.number = static_cast<int>(number_in(file.get(), "number"));
    result.time = seconds(number_in(file.get(), "seconds"));
    result.message = object_of(member(file.get(), "message"));
    if (json_object *how = member(file.get(), "undo")) {
        const boot_moment deadline{scalar_text(member(how, "boot")).value_or(""),
                                   milliseconds(number_in(how, "deadline"))};
        result.how = undo{deadline, object_of(member(how, "configuration"))};
    }
    if (result.number >= 1 && result.message && (!result.how || result.how->configuration)) return result;
    SERVER_LOG(LOG_ERR, "'%s' is damaged: a commit may be left that nobody has confirmed", record_path);
    return std::nullopt;
}

bool unconfirmed_commit::save(const record &commit)
{
    const json_ptr file = new_object();
    add(file.get(), "number", new_number(commit.number));
    add(file.get(), "seconds", new_number(commit.time.count()));
    add(file.get(), "message", shared(commit.message.get()));
    if (commit.how) {
        json_ptr how = new_object();
        add(how.get(), "boot", new_text(commit.how->deadline.boot.c_str()));
        add(how.get(), "deadline", new_number(commit.how->deadline.since_start.count()));
        add(how.get(), "configuration", shared(commit.how->configuration.get()));
        add(file.get(), "undo", std::move(how));
    }
    return replace_file(record_path, to_line(file.get()));
}

// A server that ended between record and queue leaves a record without its message.
bool unconfirmed_commit::is_obsolete(const record &commit) const
{
    if (commit.how && state_.applied() >= commit.number) return false;
    return commit.number <= state_.applied() || commit.number >= get_message_index(CMQ_MAX_INDEX);
}

bool unconfirmed_commit::forget()
{
    if (!remove_file(record_path)) return false;
    record_.reset();
    put_back_ = undo_queued_ = false;
    timer_.stop();
    return true;
}

// After another start of the machine nothing is left: nobody can tell how long it was off. Nor is a clock believed that
// shows more than the whole time.
milliseconds unconfirmed_commit::left_of(const record &commit)
{
    const boot_moment present = now();
    const milliseconds left = commit.how->deadline.since_start - present.since_start;
    if (commit.how->deadline.boot != present.boot || left > commit.time) return milliseconds::zero();
    return left;
}

void unconfirmed_commit::check_time()
{
    const milliseconds left = left_of(*record_);
    if (left > milliseconds::zero() && !put_back_) {
        timer_.start(std::min(left, limits::confirm_check));
        return;
    }
    put_back();
    if (!state_.flush() || !queue_undo() || !forget()) timer_.start(limits::write_retry);
}

// At once and in memory, whatever the disk says.
void unconfirmed_commit::put_back()
{
    if (put_back_) return;
    SERVER_LOG(LOG_WARNING, "message %d was not confirmed within %lld s: the configuration before it is back",
               record_->number, static_cast<long long>(record_->time.count()));
    const json_ptr message = undo_message(record_->how->configuration.get());
    outcome result;
    {
        const quiet_log quiet(LOG_CRIT);  // it is as long as the whole configuration
        apply_message(message.get(), result);
    }
    put_back_ = true;
    state_.mark_changed();
    log_refusals("the configuration before message " + std::to_string(record_->number), result.refusals);
}

bool unconfirmed_commit::queue_undo()
{
    if (undo_queued_) return true;
    const json_ptr message = undo_message(record_->how->configuration.get());
    auto number = number_in_queue(message.get(), state_.applied());
    if (!number) number = append_message(message.get(), [this](int given) { return given > state_.applied(); });
    undo_queued_ = number.has_value();
    if (number) when_undone_({record_->number, record_->time, *number});
    return undo_queued_;
}

}  // namespace apconf_host

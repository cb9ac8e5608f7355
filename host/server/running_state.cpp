// Saves and restores the running configuration.
#include "host/server/running_state.h"

#include <apconf/cmq.h>

#include <climits>
#include <new>

#include "host/handlers.h"
#include "host/json_build.h"
#include "host/server/files.h"
#include "host/server/limits.h"
#include "host/server/log.h"
#include "host/server/refusal_log.h"

namespace apconf_host
{
namespace
{

constexpr const char *state_path = CMQ_DIR "/running.json";

// Takes the object under "config" out of a loaded file, as a reference of its own.
json_ptr config_of(json_object *file)
{
    json_object *config = nullptr;
    if (!json_object_is_type(file, json_type_object) || !json_object_object_get_ex(file, "config", &config) ||
        !json_object_is_type(config, json_type_object))
        return nullptr;
    return json_ptr(json_object_get(config));
}

int applied_of(json_object *file)
{
    json_object *number = nullptr;
    if (!json_object_object_get_ex(file, "applied", &number) || !json_object_is_type(number, json_type_int)) return -1;
    const int64_t value = json_object_get_int64(number);
    return value >= 0 && value < INT_MAX ? static_cast<int>(value) : -1;
}

}  // namespace

json_ptr configuration_snapshot()
{
    const quiet_log quiet;
    json_ptr snapshot(running_configuration());
    if (!snapshot) throw std::bad_alloc();
    if (!json_object_object_get_ex(snapshot.get(), "config", nullptr))
        json_object_object_add(snapshot.get(), "config", new_object().release());
    return snapshot;
}

running_state::running_state(event_base *base) : flush_timer_(base, [this] { flush(); }) {}

void running_state::restore(const archive &old)
{
    saved last;
    const bool from_state = load_state_file(last);
    found_ = from_state || load_newest(old, last);
    if (!found_) return;
    applied_ = last.applied;
    apply(last);
    SERVER_LOG(LOG_INFO, "configuration restored as of message %d", applied_);
    if (!from_state) write();
}

bool running_state::load_state_file(saved &result)
{
    const json_ptr file(json_object_from_file(state_path));
    if (file) {
        result.config = config_of(file.get());
        result.applied = result.config ? applied_of(file.get()) : -1;
        if (result.config && result.applied >= 0) return true;
    }
    if (access(state_path, F_OK) == 0) SERVER_LOG(LOG_ERR, "'%s' is damaged", state_path);
    return false;
}

bool running_state::load_newest(const archive &old, saved &result)
{
    const auto &numbers = old.numbers();
    for (auto number = numbers.rbegin(); number != numbers.rend(); ++number) {
        const json_ptr file(json_object_from_file(numbered_file(CMQ_OLD_DIR, *number, ".json").c_str()));
        result.config = config_of(file.get());
        result.applied = *number;
        if (!result.config) continue;
        SERVER_LOG(LOG_WARNING, "falling back to the configuration saved for message %d", *number);
        return true;
    }
    return false;
}

void running_state::apply(const saved &saved)
{
    if (json_object_object_length(saved.config.get()) == 0) return;
    const json_ptr message = new_object();
    json_object_object_add(message.get(), "MODULE", json_object_new_string("apconfd"));
    json_object_object_add(message.get(), "ACTION", json_object_new_string("set"));
    json_object_object_add(message.get(), "config", json_object_get(saved.config.get()));
    outcome result;
    apply_message(message.get(), result);
    log_refusals("the saved configuration", result.refusals);
}

bool running_state::record(int index)
{
    applied_ = index;
    changed_ = true;
    return write();
}

void running_state::mark_changed()
{
    changed_ = true;
    flush_timer_.start_next_turn();
}

bool running_state::flush()
{
    if (!changed_ || write()) return true;
    flush_timer_.start(limits::write_retry);
    return false;
}

bool running_state::write()
{
    const json_ptr state = new_object();
    const json_ptr snapshot = configuration_snapshot();
    json_object_object_add(state.get(), "applied", json_object_new_int(applied_));
    json_object_object_add(state.get(), "config", config_of(snapshot.get()).release());
    const char *const text = json_object_to_json_string_ext(state.get(), JSON_C_TO_STRING_PLAIN);
    if (!text) throw std::bad_alloc();
    if (!replace_file(state_path, text)) return false;
    changed_ = false;
    flush_timer_.stop();
    return true;
}

}  // namespace apconf_host

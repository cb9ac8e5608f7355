// Carries out the messages of clients.
#include "host/server/service.h"

#include <apconf/cmessage.h>
#include <apconf/io_sock.h>

#include <chrono>
#include <memory>
#include <string_view>

#include "host/handlers.h"
#include "host/json_build.h"
#include "host/message_types.h"
#include "host/server/limits.h"
#include "host/server/log.h"
#include "host/server/owners.h"
#include "host/server/refusal_log.h"

namespace apconf_host
{
namespace
{

struct tokener_release {
    void operator()(json_tokener *tokener) const { json_tokener_free(tokener); }
};

// The data up to its NUL, or all of it: a sender may leave the NUL out.
std::string_view text_of(const std::string &data)
{
    return std::string_view(data).substr(0, data.find('\0'));
}

// How many values a JSON text can hold at most, without parsing it.
size_t values_in(std::string_view text)
{
    size_t values = 1;
    bool quoted = false;
    for (size_t i = 0; i < text.size(); ++i) {
        const char character = text[i];
        if (quoted && character == '\\')
            ++i;
        else if (character == '"')
            quoted = !quoted;
        else if (!quoted && (character == ',' || character == '{' || character == '['))
            ++values;
    }
    return values;
}

// The elements of all lists in a message; its nesting is bounded by the parser.
size_t list_elements_in(json_object *value)
{
    size_t count = 0;
    if (json_object_is_type(value, json_type_array)) {
        count = json_object_array_length(value);
        for (size_t i = 0; i < json_object_array_length(value); ++i)
            count += list_elements_in(json_object_array_get_idx(value, i));
    } else if (json_object_is_type(value, json_type_object)) {
        json_object_object_foreach(value, name, child)
        {
            (void)name;
            count += list_elements_in(child);
        }
    }
    return count;
}

// The one JSON object that the text consists of; nothing more may follow it.
json_ptr parse(std::string_view text)
{
    const std::unique_ptr<json_tokener, tokener_release> tokener(json_tokener_new());
    if (!tokener) return nullptr;
    json_ptr message(json_tokener_parse_ex(tokener.get(), text.data(), static_cast<int>(text.size())));
    if (!message || text.substr(json_tokener_get_parse_end(tokener.get())).find_first_not_of(" \t\r\n") != text.npos)
        return nullptr;
    return json_object_is_type(message.get(), json_type_object) ? std::move(message) : nullptr;
}

reply with_data(json_object *object)
{
    const std::string_view text = to_line(object);
    return {reply_code::ok, std::string(text.data(), text.size() + 1)};  // with its NUL
}

reply with_number(const unconfirmed_commit::queued &result)
{
    if (result.code != reply_code::ok) return {result.code, {}};
    const json_ptr answer = new_object();
    add(answer.get(), "number", new_number(result.number));
    return with_data(answer.get());
}

bool is_set_message(json_object *message)
{
    cmesage_info info;
    return json_object_is_type(message, json_type_object) && get_cmesage_info(message, &info) == 0 && !info.is_get;
}

}  // namespace

std::optional<reply> service::serve(client_record &client, uint8_t type, const std::string &data)
{
    auto result = dispatch(client, type, data);
    if (result) state_.flush();
    return result;
}

std::optional<reply> service::dispatch(client_record &client, uint8_t type, const std::string &data)
{
    switch (type) {
        case IO_MSG_REGISTER:
            return register_module(client, data);
        case IO_MSG_UNREGISTER:
            client.module.clear();
            return std::nullopt;
        case IO_MSG_APPLIED:
            queue_.request();
            return std::nullopt;
        case IO_MSG_SET:
            set(client, data);
            return std::nullopt;
        case IO_MSG_GET:
            return get(data);
        case static_cast<uint8_t>(message_type::status):
            return status();
        case static_cast<uint8_t>(message_type::commit):
            return commit(client, data);
        case static_cast<uint8_t>(message_type::confirm):
            return confirm();
        case static_cast<uint8_t>(message_type::subscribe):
            return subscribe(client);
        default:
            SERVER_LOG(LOG_WARNING, "message of unknown type %d from '%s'", type, client.module.c_str());
            return reply{reply_code::unknown_type, {}};
    }
}

reply service::register_module(client_record &client, const std::string &data)
{
    const std::string_view name = text_of(data).substr(0, IO_MODULE_SIZE - 1);
    if (name.empty()) return {reply_code::bad_message, {}};
    client.module = one_line(name);
    SERVER_LOG(LOG_INFO, "'%s' registered", client.module.c_str());
    return {};
}

void service::set(const client_record &client, const std::string &data)
{
    const size_t values = values_in(text_of(data));
    if (values > limits::message_values) {
        SERVER_LOG(LOG_WARNING, "'%s' sent a set message of more than %zu values: refused", client.module.c_str(),
                   limits::message_values);
        return;
    }
    const json_ptr message = parse(text_of(data));
    cmesage_info info;
    if (get_cmesage_info(message.get(), &info) != 0 || info.is_get) {
        SERVER_LOG(LOG_WARNING, "'%s' sent what is no set message", client.module.c_str());
        return;
    }
    const std::string sender = info.module ? one_line(info.module, IO_MODULE_SIZE - 1) : "UNKNOWN";
    outcome result;
    {
        std::optional<quiet_log> quiet;
        if (values > limits::logged_values) quiet.emplace(LOG_CRIT);
        apply_message(message.get(), result);
    }
    if (result.changes > 0) {
        state_.mark_changed();
        watchers_.tell(std::nullopt, message.get(), result);
    }
    SERVER_LOG(LOG_INFO, "set from %s: %u changes, %zu refusals", sender.c_str(), result.changes,
               result.refusals.size());
    log_refusals("set from " + sender, result.refusals);
}

reply service::get(const std::string &data)
{
    if (values_in(text_of(data)) > limits::message_values) return {reply_code::too_large, {}};
    const json_ptr message = parse(text_of(data));
    cmesage_info info;
    if (get_cmesage_info(message.get(), &info) != 0) return {reply_code::bad_message, {}};
    if (!info.is_get) return {reply_code::not_a_get, {}};
    if (list_elements_in(message.get()) > limits::get_elements) return {reply_code::too_large, {}};
    const quiet_log quiet;
    const json_ptr answer(answer_get(message.get()));
    if (!answer) return {reply_code::bad_message, {}};
    return with_data(answer.get());
}

reply service::status() const
{
    const json_ptr answer = new_object();
    add(answer.get(), "applied", new_number(state_.applied()));
    if (const auto waiting = queue_.unconfirmed().current()) {
        json_ptr unconfirmed = new_object();
        add(unconfirmed.get(), "number", new_number(waiting->number));
        if (waiting->left)
            add(unconfirmed.get(), "seconds", new_number(ceil<std::chrono::seconds>(*waiting->left).count()));
        add(answer.get(), "unconfirmed", std::move(unconfirmed));
    }
    return with_data(answer.get());
}

// The limits on a set do not hold: this one goes through the queue.
reply service::commit(const client_record &client, const std::string &data)
{
    const json_ptr request = parse(text_of(data));
    json_object *const seconds = member(request.get(), "seconds");
    json_object *const message = member(request.get(), "message");
    const std::chrono::seconds time(json_object_is_type(seconds, json_type_int) ? json_object_get_int64(seconds) : 0);
    if (time.count() < 1 || time > limits::confirm_time || !is_set_message(message))
        return {reply_code::bad_message, {}};
    const auto result = queue_.commit(message, time);
    if (result.code == reply_code::ok)
        SERVER_LOG(LOG_INFO, "'%s' queued message %d, to be confirmed", client.module.c_str(), result.number);
    return with_number(result);
}

reply service::confirm()
{
    return with_number(queue_.unconfirmed().confirm());
}

reply service::subscribe(client_record &client)
{
    if (!client.subscription) client.subscription = watchers_.add(client.push);
    return {client.subscription ? reply_code::ok : reply_code::busy, {}};
}

}  // namespace apconf_host

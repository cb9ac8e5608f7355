// Requests over the library's connection.
#include "tool/requests.h"

#include <chrono>
#include <cstdio>
#include <cstring>
#include <thread>

#include "json_build.h"
#include "tool/problem.h"

namespace apconf_host
{

namespace
{

struct message_release {
    void operator()(io_msg *message) const { free(message); }
};

}  // namespace

server_answer ask(const server_connection &, message_type type, json_object *data)
{
    const char *text = data ? to_line(data) : nullptr;
    const auto size = text ? static_cast<uint32_t>(strlen(text) + 1) : 0U;
    io_msg *reply = nullptr;
    const int code = configure_request(static_cast<int>(type), text, size, &reply);
    const std::unique_ptr<io_msg, message_release> owner(reply);
    if (code < 0 || !reply) throw failure("the server did not answer");
    const auto said = static_cast<reply_code>(code);
    if (said == reply_code::unknown_type) throw failure("this server is too old: it does not know the request");
    return {said, json_ptr(reply->data_len > 0 ? json_tokener_parse(reply->data) : nullptr)};
}

server_state state_of(const server_connection &server)
{
    const server_answer answer = ask(server, message_type::status);
    if (answer.code != reply_code::ok) throw failure(std::string("the server answered: ") + describe(answer.code));
    server_state state;
    state.applied = json_object_get_int(member(answer.data.get(), "applied"));
    json_object *unconfirmed = member(answer.data.get(), "unconfirmed");
    state.unconfirmed = json_object_get_int(member(unconfirmed, "number"));
    if (json_object *seconds = member(unconfirmed, "seconds")) state.seconds = json_object_get_int64(seconds);
    return state;
}

bool wait_until_applied(const server_connection &server, int number)
{
    constexpr std::chrono::milliseconds pause(5);
    for (auto waited = pause; state_of(server).applied < number; waited += pause) {
        if (waited > std::chrono::seconds(10)) return false;
        std::this_thread::sleep_for(pause);
    }
    return true;
}

void warn_of_unconfirmed(int number)
{
    try {
        const int earlier = state_of(server_connection()).unconfirmed;
        if (earlier > 0 && earlier < number)
            fprintf(stderr,
                    "apconf: message %d waits to be confirmed; unless it is, message %d is undone together with it\n",
                    earlier, number);
    } catch (const failure &) {
        // Without a server, or with one that knows no confirmation, there is nothing to warn of.
    }
}

}  // namespace apconf_host

// Reads events by the library's means.
#include "tool/subscription.h"

#include <apconf/apconf.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <memory>

#include "message_types.h"
#include "reply_codes.h"
#include "tool/problem.h"

namespace apconf_host
{

namespace
{

struct message_release {
    void operator()(io_msg *message) const { free(message); }
};
using message_ptr = std::unique_ptr<io_msg, message_release>;

message_ptr receive(int fd)
{
    int closed = 0;
    return message_ptr(recv_io_msg(fd, nullptr, &closed));
}

}  // namespace

subscription::subscription() : fd_(init_io_sock(0, nullptr))
{
    if (fd_ < 0) throw failure("there is no configuration server at " IO_SOCK_PATH "; is apconfd running?");
    try {
        const char *module = get_io_module();
        request(IO_MSG_REGISTER, module, static_cast<uint32_t>(strlen(module) + 1));
        request(static_cast<int>(message_type::subscribe), nullptr, 0);
    } catch (...) {
        close(fd_);
        throw;
    }
}

subscription::~subscription()
{
    close(fd_);
}

void subscription::request(int type, const void *data, uint32_t size) const
{
    if (send_io_request(fd_, type, data, size) != 0) throw failure("the server has ended the connection");
    const message_ptr reply = receive(fd_);
    if (!reply) throw failure("the server did not answer");
    const auto code = static_cast<reply_code>(reply->code);
    if (code == reply_code::busy) throw failure("the server has as many watchers as it allows");
    if (code != reply_code::ok) throw failure(std::string("the server answered: ") + describe(code));
}

json_ptr subscription::next()
{
    const message_ptr event = receive(fd_);
    if (!event || event->type != static_cast<uint8_t>(message_type::applied)) return nullptr;
    return json_ptr(json_tokener_parse(event->data));
}

}  // namespace apconf_host

// The configuration client: opens and registers this process's connection to the server, sends requests and
// notifications over it, and reconnects when a send fails.
#include "apconf/cmclient.h"

#include <poll.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

#include "messaging/connection.h"
#include "util/log.h"

namespace apconf
{
namespace
{

// Registering is itself a send that may reconnect. A server that accepts and hangs up at once must not drive this
// process out of stack.
constexpr int reconnect_limit = 50;
constexpr useconds_t farewell_microseconds = 100;

int reconnections = 0;  // those nested in the send that is under way

// Takes at most 63 characters; `module` may be io_module itself.
void set_io_module(const char *module)
{
    const size_t length = module ? strnlen(module, IO_MODULE_SIZE - 1) : 0;
    if (module) memmove(io_module, module, length);
    io_module[length] = '\0';
    if (!module) get_io_module();
}

int send_once(int type, const void *data, uint32_t len)
{
    return send_io_request(connection_fd(), type & 0xff, data, len);
}

// Kept: the new connection goes to the default path, whatever path the lost one used.
int send_or_reconnect(const char *function, int type, const void *data, uint32_t len)
{
    if (send_once(type, data, len) == 0) return 0;
    if (reconnections == reconnect_limit) {
        LOG_AS(function, LOG_ERR, "no connection after %d reconnections", reconnect_limit);
        return -1;
    }
    LOG_AS(function, LOG_INFO, "reconnect cm server");
    deinit_io_sock();
    ++reconnections;
    init_cmclient(nullptr, io_module[0] != '\0' ? io_module : nullptr);
    --reconnections;
    return send_once(type, data, len);
}

// Whether the server answered the registration with 0.
bool register_module(const char *function)
{
    char name[IO_MODULE_SIZE];  // a copy, because a send fills an empty io_module
    memcpy(name, io_module, sizeof name);
    io_msg *reply = nullptr;
    configure_request(IO_MSG_REGISTER, name, static_cast<uint32_t>(strlen(name) + 1), &reply);
    if (!reply) {
        LOG_AS(function, LOG_INFO, "connetct config server failed");
        return false;
    }
    const int code = reply->code;
    free(reply);
    if (code == 0)
        LOG_AS(function, LOG_INFO, "connetct config server success, fd:%d", io_sockfd);
    else
        LOG_AS(function, LOG_INFO, "connetct config server failed, return code:%d", code);
    return code == 0;
}

}  // namespace
}  // namespace apconf

using namespace apconf;

int init_cmclient(const char *path, const char *module)
{
    set_io_module(module);
    io_sockfd = init_io_sock(0, path);
    connection_opened();
    if (io_sockfd < 0) return io_sockfd;
    // Registering may have reconnected: from here on the connection is what io_sockfd says.
    if (register_module(__func__)) return io_sockfd;
    deinit_io_sock();
    io_sockfd = -1;
    return -1;
}

int configure_request(int type, const void *data, uint32_t len, struct io_msg **reply)
{
    if (reply) *reply = nullptr;
    if (send_or_reconnect(__func__, type, data, len) < 0) return -1;

    pollfd readable = {io_sockfd, POLLIN, 0};
    poll(&readable, 1, 0);  // kept; its answer is not used, the read blocks
    int closed = 0;
    io_msg *const message = recv_io_msg(io_sockfd, nullptr, &closed);
    if (!message) return -1;
    const int code = message->code;
    if (reply)
        *reply = message;
    else
        free(message);
    return code;
}

int send_io_notify(int type, const void *data, uint32_t len)
{
    return send_or_reconnect(__func__, type, data, len);
}

void deinit_cmclient(void)
{
    send_once(IO_MSG_UNREGISTER, nullptr, 0);
    usleep(farewell_microseconds);  // so that the notice leaves before the close
    deinit_io_sock();
}

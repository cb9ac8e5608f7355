// The local stream socket: framing of io messages, the send and receive loops with their retry rules, the set-up of
// listening and connected sockets, and the module name by which this process identifies itself.
#include "apconf/io_sock.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "messaging/connection.h"
#include "util/log.h"
#include "util/owners.h"

int io_sockfd = -1;
char io_module[IO_MODULE_SIZE];

namespace apconf
{
namespace
{

constexpr int attempt_limit = 51;  // the first attempt is number 1, and this one is never made
constexpr int listen_backlog = 128;
constexpr size_t process_path_size = 64;

static_assert(sizeof(struct io_msg) == IO_MSG_HEADER_SIZE);

// The number that deinit_io_sock closed last while io_sockfd still holds it, else -1.
int released_fd = -1;

uint32_t request_count = 0;

// A control message with room for exactly one descriptor: of several only one could be found and closed again.
struct descriptor_message {
    alignas(cmsghdr) char bytes[CMSG_SPACE(sizeof(int))];
};
constexpr size_t descriptor_message_length = CMSG_LEN(sizeof(int));
static_assert(sizeof(void *) != 4 || descriptor_message_length == 16);

int clamp_to_int(size_t bytes)
{
    return bytes > INT_MAX ? INT_MAX : static_cast<int>(bytes);
}

void set_control(msghdr &message, descriptor_message &control, int fd)
{
    memset(&control, 0, sizeof control);
    message.msg_control = control.bytes;
    message.msg_controllen = descriptor_message_length;
    cmsghdr *const header = CMSG_FIRSTHDR(&message);
    header->cmsg_len = descriptor_message_length;
    header->cmsg_level = SOL_SOCKET;
    header->cmsg_type = SCM_RIGHTS;
    memcpy(CMSG_DATA(header), &fd, sizeof fd);
}

void clear_control(msghdr &message)
{
    message.msg_control = nullptr;
    message.msg_controllen = 0;
}

// The descriptor in a received control message, or -1. Other kinds, such as credentials, are none.
int received_descriptor(const msghdr &message)
{
    const cmsghdr *const header = CMSG_FIRSTHDR(&message);
    if (!header || header->cmsg_level != SOL_SOCKET || header->cmsg_type != SCM_RIGHTS ||
        header->cmsg_len < descriptor_message_length)
        return -1;
    int fd = -1;
    memcpy(&fd, CMSG_DATA(header), sizeof fd);
    return fd;
}

// Takes `sent` bytes off the front of the gather list. Returns whether anything is left to send.
bool advance(msghdr &message, size_t sent)
{
    while (message.msg_iovlen > 0 && sent >= message.msg_iov->iov_len) {
        sent -= message.msg_iov->iov_len;
        ++message.msg_iov;
        --message.msg_iovlen;
    }
    if (message.msg_iovlen == 0) return false;
    message.msg_iov->iov_base = static_cast<char *>(message.msg_iov->iov_base) + sent;
    message.msg_iov->iov_len -= sent;
    return true;
}

// Whether the send that failed with `error` may be attempted again; says why it failed.
bool may_send_again(const char *function, int fd, int error, int attempt)
{
    if (error == EINTR) {
        LOG_AS(function, LOG_ERR, "sendmsg return errno: EINTR, counter = %d", attempt);
    } else if (error == EAGAIN) {
        LOG_AS(function, LOG_ERR, "sendmsg return errno: EAGAIN, counter = %d", attempt);
        pollfd writable = {fd, POLLOUT, 0};
        poll(&writable, 1, 0);
    } else {
        LOG_AS(function, LOG_ERR, "sendmsg return errno:%d(%s), fd:%d", error, strerror(error), fd);
        return false;
    }
    if (attempt + 1 < attempt_limit) return true;
    LOG_AS(function, LOG_ERR, "sendmsg return error out of %d", attempt + 1);
    return false;
}

// Sends header and data in one gather write, the data uncopied. Without a data pointer the length counts for nothing.
int send_message(int fd, io_msg header, const void *data, uint32_t len, int pass_fd)
{
    header.data_len = data ? len : 0;
    iovec parts[] = {{&header, IO_MSG_HEADER_SIZE}, {const_cast<void *>(data), len}};
    return writev_data(fd, parts, data ? 2 : 1, pass_fd) < 0 ? -1 : 0;
}

// A zeroed message with room for `data_len` bytes and the NUL. calloc, because the length is a peer's word: memory is
// spent only on bytes that really arrive.
io_msg *create_io_msg(uint32_t data_len)
{
    const uint64_t size = uint64_t{IO_MSG_HEADER_SIZE} + data_len + 1;
    void *const block = size > INT_MAX ? nullptr : calloc(1, static_cast<size_t>(size));
    if (!block) LOG(LOG_ERR, "create io message failed, data_len:%u", data_len + 1);
    return static_cast<io_msg *>(block);
}

bool serve(const char *function, int fd, const sockaddr_un &address)
{
    const int on = 1;
    fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) | O_NONBLOCK);
    setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    if (bind(fd, reinterpret_cast<const sockaddr *>(&address), sizeof address) < 0) {
        LOG_AS(function, LOG_ERR, "init socket: bind failed");
        return false;
    }
    if (listen(fd, listen_backlog) < 0) {
        LOG_AS(function, LOG_ERR, "init socket: listen failed");
        return false;
    }
    return true;
}

bool connect_to(const char *function, int fd, const sockaddr_un &address)
{
    fcntl(fd, F_SETFD, fcntl(fd, F_GETFD) | FD_CLOEXEC);
    if (connect(fd, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0 || errno == EINPROGRESS)
        return true;
    const int error = errno;
    LOG_AS(function, LOG_ERR, "init socket: connect failed, errno:%d, %s", error, strerror(error));
    return false;
}

bool connection_is_released()
{
    if (released_fd != io_sockfd) released_fd = -1;  // somebody has put another number there
    return released_fd >= 0;
}

}  // namespace

int connection_fd()
{
    return connection_is_released() && fcntl(io_sockfd, F_GETFD) >= 0 ? -1 : io_sockfd;
}

void connection_opened()
{
    released_fd = -1;
}

}  // namespace apconf

using namespace apconf;

int writev_data(int fd, struct iovec *iov, int iov_count, int pass_fd)
{
    msghdr message = {};
    message.msg_iov = iov;
    message.msg_iovlen = static_cast<decltype(message.msg_iovlen)>(iov_count);
    descriptor_message control;
    size_t total = 0;
    for (int attempt = 1;;) {
        if (pass_fd < 0)
            clear_control(message);
        else
            set_control(message, control, pass_fd);
        const ssize_t sent = sendmsg(fd, &message, MSG_NOSIGNAL);
        if (sent < 0) {
            if (!may_send_again(__func__, fd, errno, attempt)) return -1;
            ++attempt;
            continue;
        }
        // Kept: after a partial first call the descriptor goes along with the second one, too.
        if (total != 0) pass_fd = -1;
        total += static_cast<size_t>(sent);
        if (!advance(message, static_cast<size_t>(sent))) return clamp_to_int(total);
        attempt = 1;
    }
}

int recv_data(int fd, struct iovec *iov, int *received_fd, int *closed)
{
    if (received_fd) *received_fd = -1;
    size_t total = 0;
    while (iov->iov_len != 0) {
        msghdr message = {};
        message.msg_iov = iov;
        message.msg_iovlen = 1;
        descriptor_message control;
        // Where nobody takes a descriptor no room is offered either, and the kernel closes what came along.
        if (received_fd) set_control(message, control, -1);
        const ssize_t received = recvmsg(fd, &message, 0);
        if (received == 0) {
            if (closed) *closed = 1;
            LOG(LOG_ERR, "client(fd:%d) has performed an orderly shutdown.", fd);
            return -1;
        }
        if (received < 0) {
            const int error = errno;
            if (error == EINTR) continue;
            if (error == EAGAIN) return 0;  // kept: bytes read so far are lost to the caller
            LOG(LOG_ERR, "recieve failed, errno:%d(%s), fd:%d", error, strerror(error), fd);
            return -1;
        }
        if (received_fd) *received_fd = received_descriptor(message);
        received_fd = nullptr;
        iov->iov_base = static_cast<char *>(iov->iov_base) + received;
        iov->iov_len -= static_cast<size_t>(received);
        total += static_cast<size_t>(received);
    }
    return clamp_to_int(total);
}

int send_io_request(int fd, int type, const void *data, uint32_t len)
{
    io_msg header = {};
    header.type = static_cast<uint8_t>(type);
    header.count = ++request_count;
    LOG(LOG_DEBUG, "'%s' count = %d", get_io_module(), static_cast<int>(header.count));
    if (send_message(fd, header, data, len, fd) == 0) return 0;
    LOG(LOG_ERR, "send io request failed");
    return -1;
}

int send_io_reply(int fd, int code, const void *data, uint32_t len)
{
    io_msg header = {};
    header.code = static_cast<uint8_t>(code);
    if (send_message(fd, header, data, len, -1) == 0) return 0;
    LOG(LOG_ERR, "send io reply failed");
    return -1;
}

struct io_msg *recv_io_msg(int fd, int *received_fd, int *closed)
{
    io_msg header = {};
    iovec head = {&header, IO_MSG_HEADER_SIZE};
    if (recv_data(fd, &head, received_fd, closed) < IO_MSG_HEADER_SIZE) {
        LOG(LOG_ERR, "recv io msg failed or data is incomplete");
        return nullptr;
    }
    owner<io_msg *, [](io_msg *message) { free(message); }> message(create_io_msg(header.data_len));
    if (!message) return nullptr;
    memcpy(message.get(), &header, IO_MSG_HEADER_SIZE);
    if (header.data_len == 0) return message.release();

    iovec body = {message.get()->data, header.data_len};
    if (recv_data(fd, &body, nullptr, closed) <= 0) {
        LOG(LOG_ERR, "no data");
        return nullptr;
    }
    return message.release();
}

int init_io_sock(int server, const char *path)
{
    if (!path) path = IO_SOCK_PATH;
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    const size_t length = strlen(path);
    if (length >= sizeof address.sun_path) {
        LOG(LOG_ERR, "invalid socket path");
        errno = EINVAL;
        return -1;
    }
    memcpy(address.sun_path, path, length);

    unique_fd fd(socket(AF_UNIX, SOCK_STREAM, 0));
    if (!fd) {
        const int error = errno;
        LOG(LOG_ERR, "create socket failed, errno:%d, %s", error, strerror(error));
        return -1;
    }
    const bool ready = server ? serve(__func__, fd.get(), address) : connect_to(__func__, fd.get(), address);
    return ready ? fd.release() : -1;
}

void deinit_io_sock(void)
{
    if (connection_is_released() || io_sockfd < 0) return;
    close(io_sockfd);
    released_fd = io_sockfd;
}

int get_process_name(char *dst, size_t len)
{
    if (len == 0) return -1;
    char text[process_path_size];
    snprintf(text, sizeof text, "/proc/%d/cmdline", static_cast<int>(getpid()));
    unique_file file(fopen(text, "r"));
    if (!file || !fgets(text, sizeof text, file.get())) return -1;
    const char *const slash = strrchr(text, '/');
    strncpy(dst, slash ? slash + 1 : text, len);
    dst[len - 1] = '\0';
    return 0;
}

const char *get_io_module(void)
{
    if (io_module[0] == '\0' && get_process_name(io_module, sizeof io_module) < 0)
        snprintf(io_module, sizeof io_module, "pid%d", static_cast<int>(getpid()));
    return io_module;
}

#include "messaging/system_calls.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/file.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <utility>

namespace apconf_test
{
namespace
{

system_calls *active = nullptr;

template <typename Function>
Function *real(const char *name)
{
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

outcome next(std::deque<outcome> &outcomes, const std::vector<outcome> &always)
{
    if (outcomes.empty()) return always.empty() ? outcome{} : always.front();
    const outcome result = outcomes.front();
    outcomes.pop_front();
    return result;
}

message_call describe(int fd, const msghdr *message, int flags)
{
    message_call call = {fd, flags, -1, message->msg_controllen, message->msg_iovlen, 0};
    for (size_t i = 0; i < message->msg_iovlen; ++i) call.bytes += message->msg_iov[i].iov_len;
    const cmsghdr *header = CMSG_FIRSTHDR(message);
    if (header && header->cmsg_type == SCM_RIGHTS) memcpy(&call.passed_fd, CMSG_DATA(header), sizeof(int));
    return call;
}

// The gather list cut off after `limit` bytes.
std::vector<iovec> shortened(const msghdr *message, size_t limit)
{
    std::vector<iovec> parts(message->msg_iov, message->msg_iov + message->msg_iovlen);
    for (iovec &part : parts) {
        part.iov_len = std::min(part.iov_len, limit);
        limit -= part.iov_len;
    }
    return parts;
}

}  // namespace

system_calls::system_calls()
{
    active = this;
}
system_calls::~system_calls()
{
    active = nullptr;
}

}  // namespace apconf_test

using namespace apconf_test;

extern "C" {

ssize_t sendmsg(int fd, const msghdr *message, int flags)
{
    static auto *const call = real<ssize_t(int, const msghdr *, int)>("sendmsg");
    if (!active) return call(fd, message, flags);
    if (active->before_send) active->before_send();
    active->sends.push_back(describe(fd, message, flags));
    const outcome result = next(active->send_outcomes, active->send_always);
    if (result.error) {
        errno = result.error;
        return -1;
    }
    auto parts = shortened(message, result.limit);
    msghdr copy = *message;
    copy.msg_iov = parts.data();
    return call(fd, &copy, flags);
}

ssize_t recvmsg(int fd, msghdr *message, int flags)
{
    static auto *const call = real<ssize_t(int, msghdr *, int)>("recvmsg");
    if (!active) return call(fd, message, flags);
    active->receives.push_back(describe(fd, message, flags));
    const outcome result = next(active->receive_outcomes, active->receive_always);
    if (result.error) {
        errno = result.error;
        return -1;
    }
    auto parts = shortened(message, result.limit);
    iovec *const kept = std::exchange(message->msg_iov, parts.data());
    const ssize_t received = call(fd, message, flags);
    message->msg_iov = kept;
    return received;
}

int poll(pollfd *fds, nfds_t count, int timeout)
{
    static auto *const call = real<int(pollfd *, nfds_t, int)>("poll");
    if (active) {
        active->polls.insert(active->polls.end(), fds, fds + count);
        active->poll_timeouts.push_back(timeout);
    }
    return call(fds, count, timeout);
}

// What poll becomes with _FORTIFY_SOURCE.
int __poll_chk(pollfd *fds, nfds_t count, int timeout, size_t size);
int __poll_chk(pollfd *fds, nfds_t count, int timeout, size_t)
{
    return poll(fds, count, timeout);
}

int listen(int fd, int backlog) noexcept
{
    static auto *const call = real<int(int, int)>("listen");
    if (!active || !active->listen_error) return call(fd, backlog);
    errno = active->listen_error;
    return -1;
}

int bind(int fd, const sockaddr *address, socklen_t length) noexcept
{
    static auto *const call = real<int(int, const sockaddr *, socklen_t)>("bind");
    if (active) active->bind_lengths.push_back(length);
    return call(fd, address, length);
}

int connect(int fd, const sockaddr *address, socklen_t length)
{
    static auto *const call = real<int(int, const sockaddr *, socklen_t)>("connect");
    if (active) active->connect_lengths.push_back(length);
    if (!active || !active->connect_error) return call(fd, address, length);
    errno = active->connect_error;
    return -1;
}

FILE *fopen(const char *name, const char *mode)
{
    static auto *const call = real<FILE *(const char *, const char *)>("fopen");
    if (!active) return call(name, mode);
    active->opened.emplace_back(name, mode);
    const auto found = active->redirected_files.find(name);
    if (found == active->redirected_files.end()) return call(name, mode);
    if (!found->second.empty()) return call(found->second.c_str(), mode);
    errno = ENOENT;
    return nullptr;
}

// Files that are read and written without a stream count as opened in the mode that a stream would have.
int open(const char *name, int flags, ...)
{
    static auto *const call = real<int(const char *, int, ...)>("open");
    va_list arguments;
    va_start(arguments, flags);
    const mode_t permissions = flags & O_CREAT ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    if (active && (flags & O_ACCMODE) == O_RDWR) active->opened.emplace_back(name, flags & O_TRUNC ? "w+" : "r+");
    return call(name, flags, permissions);
}

int flock(int fd, int operation) noexcept
{
    static auto *const call = real<int(int, int)>("flock");
    if (!active) return call(fd, operation);
    if (active->before_flock) active->before_flock(operation);
    active->flocks.push_back(operation);
    int error = 0;
    if (!active->flock_errors.empty()) {
        error = active->flock_errors.front();
        active->flock_errors.pop_front();
    }
    if (!error) return call(fd, operation);
    errno = error;
    return -1;
}

int system(const char *command)
{
    static auto *const call = real<int(const char *)>("system");
    if (active) active->commands.emplace_back(command);
    return call(command);
}
}

// Forks into the background and reports back.
#include "host/server/background.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace apconf_host
{
namespace
{

// The child has written, or it has ended without.
[[noreturn]] void wait_for_child(int fd)
{
    char byte = 0;
    ssize_t count;
    do count = read(fd, &byte, 1);
    while (count < 0 && errno == EINTR);
    _exit(count == 1 ? 0 : 1);
}

}  // namespace

void background::enter()
{
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) < 0) throw std::system_error(errno, std::generic_category(), "pipe");
    fd_owner child_end(ends[0]);
    waiting_parent_ = fd_owner(ends[1]);
    const pid_t child = fork();
    if (child < 0) throw std::system_error(errno, std::generic_category(), "fork");
    if (child > 0) {
        close(waiting_parent_.release());
        wait_for_child(child_end.get());
    }
    setsid();
    if (chdir("/") < 0) throw std::system_error(errno, std::generic_category(), "/");
}

void background::ready()
{
    if (!waiting_parent_) return;
    const int null = open("/dev/null", O_RDWR);
    for (int fd = 0; null >= 0 && fd <= 2; ++fd) dup2(null, fd);
    if (null > 2) close(null);
    const ssize_t told = write(waiting_parent_.get(), "1", 1);
    (void)told;  // a parent that was killed does not matter
    waiting_parent_ = fd_owner();
}

}  // namespace apconf_host

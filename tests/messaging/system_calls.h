// System calls under the test's control. The test program defines them itself, so the library's calls arrive here; each
// does the real thing unless a test says otherwise. One `system_calls` at a time; its end restores the real behaviour.
#pragma once

#include <poll.h>
#include <sys/socket.h>

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace apconf_test
{

// What the next call does: fails with `error`, or carries `limit` bytes at most.
struct outcome {
    int error = 0;
    size_t limit = SIZE_MAX;
};
inline outcome fail(int error)
{
    return {error, SIZE_MAX};
}
inline outcome at_most(size_t bytes)
{
    return {0, bytes};
}

struct message_call {
    int fd;
    int flags;
    int passed_fd;          // in the control message that was sent, -1: no control message
    size_t control_length;  // as offered by the caller
    size_t parts;           // entries of the gather list
    size_t bytes;           // bytes in them
};

class system_calls
{
public:
    system_calls();
    ~system_calls();
    system_calls(const system_calls &) = delete;
    system_calls &operator=(const system_calls &) = delete;

    // Outcomes in order; when they are used up `..._always`, if any, holds for every further call.
    std::deque<outcome> send_outcomes, receive_outcomes;
    std::vector<outcome> send_always, receive_always;
    std::function<void()> before_send;
    std::vector<message_call> sends, receives;
    std::vector<pollfd> polls;
    std::vector<int> poll_timeouts;

    int listen_error = 0;
    int connect_error = 0;
    std::vector<socklen_t> bind_lengths, connect_lengths;

    // Files that open as another one; an empty name: as none, with ENOENT.
    std::map<std::string, std::string> redirected_files;
    std::vector<std::pair<std::string, std::string>> opened;  // name, mode

    std::deque<int> flock_errors;  // 0: the real call
    std::function<void(int operation)> before_flock;
    std::vector<int> flocks;            // operations
    std::vector<std::string> commands;  // given to system()
};

}  // namespace apconf_test

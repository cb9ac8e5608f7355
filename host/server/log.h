// The server's log lines, in the form of the library's: one syslog call each, opening with function and line.
#pragma once

#include <syslog.h>

#include <string>
#include <string_view>

#define SERVER_LOG(priority, format, ...) \
    syslog(priority, "[%s:%d] " format "\n", __func__, __LINE__ __VA_OPT__(, ) __VA_ARGS__)

namespace apconf_host
{

// A peer's text made fit for a line: control characters become "?", and what is longer than `limit` is cut.
std::string one_line(std::string_view text, size_t limit = 1024);

// Keeps everything below `least` out of the log while it lives: the library has a line for each command that it walks
// over. Without effect when the log is to show everything, debug lines included.
class quiet_log
{
public:
    explicit quiet_log(int least = LOG_WARNING);
    ~quiet_log() { setlogmask(mask_); }
    quiet_log(const quiet_log &) = delete;
    quiet_log &operator=(const quiet_log &) = delete;

private:
    int mask_;
};

}  // namespace apconf_host

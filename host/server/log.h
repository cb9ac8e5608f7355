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

// Keeps everything below a warning out of the log while it lives. For walks over the whole tree that nobody asked for.
class quiet_log
{
public:
    quiet_log() : mask_(setlogmask(LOG_UPTO(LOG_WARNING))) {}
    ~quiet_log() { setlogmask(mask_); }
    quiet_log(const quiet_log &) = delete;
    quiet_log &operator=(const quiet_log &) = delete;

private:
    int mask_;
};

}  // namespace apconf_host

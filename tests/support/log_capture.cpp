#include "support/log_capture.h"

#include <syslog.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>

namespace
{

std::vector<apconf_test::log_line> captured;
bool capturing = false;

void record(int priority, const char *format, va_list arguments)
{
    if (!capturing) return;
    char buffer[8192];
    vsnprintf(buffer, sizeof buffer, format, arguments);
    std::string text = buffer;
    std::string function;
    const auto colon = text.find(':');
    const auto end = text.find("] ");
    if (text.starts_with("[") && colon != std::string::npos && end != std::string::npos) {
        function = text.substr(1, colon - 1);
        text = text.substr(end + 2);
    }
    if (text.ends_with("\n")) text.pop_back();
    captured.push_back({priority, function, text});
}

}  // namespace

extern "C" {

void syslog(int priority, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    record(priority, format, arguments);
    va_end(arguments);
}

// What syslog becomes with _FORTIFY_SOURCE.
void __syslog_chk(int priority, int, const char *format, ...);
void __syslog_chk(int priority, int, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    record(priority, format, arguments);
    va_end(arguments);
}
}

namespace apconf_test
{

log_capture::log_capture()
{
    captured.clear();
    capturing = true;
}

log_capture::~log_capture()
{
    capturing = false;
}

const std::vector<log_line> &log_capture::lines() const
{
    return captured;
}

std::vector<std::string> log_capture::texts() const
{
    std::vector<std::string> result;
    for (const auto &line : captured) result.push_back(line.text);
    return result;
}

std::vector<std::string> log_capture::texts(int priority) const
{
    std::vector<std::string> result;
    for (const auto &line : captured)
        if (line.priority == priority) result.push_back(line.text);
    return result;
}

bool log_capture::has(int priority, const std::string &function, const std::string &text) const
{
    return std::any_of(captured.begin(), captured.end(), [&](const log_line &line) {
        return line.priority == priority && line.function == function && line.text == text;
    });
}

void log_capture::clear()
{
    captured.clear();
}

}  // namespace apconf_test

// The log lines of the code under test. The test program defines syslog itself, so every line that the library writes
// arrives here instead of on the system log.
#pragma once

#include <string>
#include <vector>

namespace apconf_test
{

struct log_line {
    int priority;
    std::string function;  // from the prefix "[function:line] "
    std::string text;      // what follows the prefix, without the closing newline
};

// Collects from construction on; captures do not nest.
class log_capture
{
public:
    log_capture();
    ~log_capture();
    log_capture(const log_capture &) = delete;
    log_capture &operator=(const log_capture &) = delete;

    const std::vector<log_line> &lines() const;
    std::vector<std::string> texts() const;              // all texts, in order
    std::vector<std::string> texts(int priority) const;  // those of one priority
    bool has(int priority, const std::string &function, const std::string &text) const;
    void clear();
};

}  // namespace apconf_test

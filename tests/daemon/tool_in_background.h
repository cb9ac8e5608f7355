// apconf running beside the test, as one that a person has started and not ended yet.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <string>

namespace apconf_test
{

class tool_in_background
{
public:
    // Through the shell. Ended with SIGKILL when it is destroyed.
    explicit tool_in_background(const std::string &arguments);
    ~tool_in_background();
    tool_in_background(const tool_in_background &) = delete;
    tool_in_background &operator=(const tool_in_background &) = delete;

    void send(int signal_number) const;
    int exit_status();  // waits for the end; -1: it died of a signal
    std::string output() const;
    std::string errors() const;
    bool wait_for_output(const std::string &text) const;

private:
    std::string output_path_;
    std::string errors_path_;
    pid_t pid_;
};

}  // namespace apconf_test

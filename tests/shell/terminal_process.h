// A program on a pseudo-terminal.
#pragma once

#include <sys/types.h>
#include <termios.h>

#include <optional>
#include <string>

#include "shell/screen.h"

namespace apconf_test
{

constexpr const char *apconf_shell = APCONF_TOOL " shell";

class terminal_process
{
public:
    // Runs a command line of sh.
    explicit terminal_process(const std::string &command, size_t columns = 80);
    ~terminal_process();
    terminal_process(const terminal_process &) = delete;
    terminal_process &operator=(const terminal_process &) = delete;

    // Types the keys, one after the other has been taken, as people do.
    void type(const std::string &keys);
    // All at once, as terminals hand over what is pasted.
    void paste(const std::string &text);

    // Waits until the cursor stands behind this text; the prompt, that is, with what is typed.
    void expect_cursor_behind(const std::string &text);
    // Types a line and waits for the next prompt.
    void enter(const std::string &line, const std::string &next_prompt);

    const screen &seen() const { return screen_; }
    std::vector<std::string> rows() const { return screen_.rows(); }
    // The row that is so many above the cursor's.
    std::string row_above(size_t distance) const;

    void resize(size_t columns);
    void send_signal(int number) const;

    // Waits for the end: the exit status, or the negative number of the signal.
    std::optional<int> exit_status();

    // The terminal's settings now, and as they were before the program came.
    bool settings_are_restored() const;

private:
    bool read_some(int milliseconds);

    pid_t pid_ = -1;
    int master_ = -1;
    int slave_ = -1;  // kept open, so that the settings outlive the program
    termios before_ = {};
    screen screen_;
};

}  // namespace apconf_test

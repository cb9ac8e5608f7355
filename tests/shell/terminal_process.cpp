#include "shell/terminal_process.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utmp.h>

#include <chrono>
#include <cstring>
#include <stdexcept>

namespace apconf_test
{

namespace
{

using clock = std::chrono::steady_clock;
constexpr auto patience = std::chrono::seconds(20);

winsize size_of(size_t columns)
{
    winsize size = {};
    size.ws_row = 40;
    size.ws_col = static_cast<unsigned short>(columns);
    return size;
}

}  // namespace

terminal_process::terminal_process(const std::string &command, size_t columns) : screen_(columns)
{
    winsize size = size_of(columns);
    if (openpty(&master_, &slave_, nullptr, nullptr, &size) != 0)
        throw std::runtime_error(std::string("no pseudo-terminal: ") + strerror(errno));
    tcgetattr(slave_, &before_);
    pid_ = fork();
    if (pid_ != 0) return;
    close(master_);
    login_tty(slave_);
    setenv("TERM", "xterm", 1);
    setenv("LC_ALL", "C.UTF-8", 1);
    unsetenv("EDITRC");
    execl("/bin/sh", "sh", "-c", ("exec " + command).c_str(), nullptr);
    _exit(127);
}

terminal_process::~terminal_process()
{
    if (pid_ > 0) {
        kill(pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
    }
    close(master_);
    close(slave_);
}

bool terminal_process::read_some(int milliseconds)
{
    pollfd readable = {master_, POLLIN, 0};
    if (poll(&readable, 1, milliseconds) <= 0) return false;
    char buffer[4096];
    const ssize_t count = read(master_, buffer, sizeof buffer);
    if (count <= 0) return false;
    screen_.write(std::string(buffer, static_cast<size_t>(count)));
    return true;
}

void terminal_process::paste(const std::string &text)
{
    ASSERT_EQ(write(master_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
}

void terminal_process::type(const std::string &keys)
{
    for (const char key : keys) {
        paste(std::string(1, key));
        read_some(200);
    }
}

void terminal_process::expect_cursor_behind(const std::string &text)
{
    const auto end = clock::now() + patience;
    while (clock::now() < end) {
        if (!read_some(50) && screen_.before_cursor() == text) return;
    }
    FAIL() << "the cursor is not behind '" << text << "' but behind '" << screen_.before_cursor() << "' on\n"
           << screen_.text();
}

void terminal_process::enter(const std::string &line, const std::string &next_prompt)
{
    // The prompt that is there already is not the next one.
    const size_t rows_before = screen_.rows().size();
    paste(line + "\r");
    const auto end = clock::now() + patience;
    while (screen_.rows().size() == rows_before && clock::now() < end) read_some(50);
    expect_cursor_behind(next_prompt);
}

std::string terminal_process::row_above(size_t distance) const
{
    const auto all = screen_.rows();
    return distance < all.size() ? all[all.size() - 1 - distance] : "";
}

void terminal_process::resize(size_t columns)
{
    const winsize size = size_of(columns);
    screen_.resize(columns);
    ioctl(master_, TIOCSWINSZ, &size);
}

void terminal_process::send_signal(int number) const
{
    kill(pid_, number);
}

std::optional<int> terminal_process::exit_status()
{
    const auto end = clock::now() + patience;
    int status = 0;
    while (waitpid(pid_, &status, WNOHANG) != pid_) {
        if (clock::now() > end) return std::nullopt;
        read_some(20);
    }
    while (read_some(20)) {
    }
    pid_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

bool terminal_process::settings_are_restored() const
{
    termios now = {};
    tcgetattr(slave_, &now);
    return now.c_iflag == before_.c_iflag && now.c_oflag == before_.c_oflag && now.c_lflag == before_.c_lflag &&
           memcmp(now.c_cc, before_.c_cc, sizeof now.c_cc) == 0;
}

}  // namespace apconf_test

#include "daemon/tool_in_background.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "daemon/server_process.h"

namespace apconf_test
{

tool_in_background::tool_in_background(const std::string &arguments)
{
    static int started = 0;
    const std::string name = "/tmp/tool-" + std::to_string(++started);
    output_path_ = name + ".output";
    errors_path_ = name + ".errors";
    const std::string line = "exec " APCONF_TOOL " " + arguments + " >" + output_path_ + " 2>" + errors_path_;
    pid_ = fork();
    if (pid_ != 0) return;
    execl("/bin/sh", "sh", "-c", line.c_str(), nullptr);
    _exit(127);
}

tool_in_background::~tool_in_background()
{
    if (pid_ < 0) return;
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
}

void tool_in_background::send(int signal_number) const
{
    kill(pid_, signal_number);
}

int tool_in_background::exit_status()
{
    int status = 0;
    if (!eventually([&] { return waitpid(pid_, &status, WNOHANG) == pid_; })) return -1;
    pid_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string tool_in_background::output() const
{
    return read_file(output_path_);
}

std::string tool_in_background::errors() const
{
    return read_file(errors_path_);
}

bool tool_in_background::wait_for_output(const std::string &text) const
{
    return eventually([&] { return output().find(text) != std::string::npos; });
}

}  // namespace apconf_test

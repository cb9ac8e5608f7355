// Namespaces, processes and files of the machines under test.
#include "law/machine.h"

#include <apconf/apconf.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <thread>

namespace apconf_test
{

namespace fs = std::filesystem;

namespace
{

using namespace std::chrono_literals;

// This process has one connection, as every client has; here is whose it is.
const machine *connected = nullptr;

std::string content(const std::string &path)
{
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

std::vector<std::string> words(const std::string &line)
{
    std::istringstream stream(line);
    return {std::istream_iterator<std::string>(stream), {}};
}

template <typename Condition>
bool eventually(Condition condition)
{
    const auto end = std::chrono::steady_clock::now() + 30s;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(500us);
    }
    return true;
}

void redirect(int fd, const std::string &path, int flags)
{
    const int opened = open(path.c_str(), flags, 0600);
    dup2(opened, fd);
    close(opened);
}

[[noreturn]] void become(std::vector<std::string> command)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);  // a test program that crashes leaves nothing behind
    std::vector<char *> argv;
    for (std::string &word : command) argv.push_back(word.data());
    argv.push_back(nullptr);
    execvp(argv[0], argv.data());
    _exit(127);
}

}  // namespace

void load_vocabulary()
{
    static const bool loaded = [] {
        for (const char *name : {"config_cmd_tree.xml", "cmd_tree_help.txt"})
            fs::copy_file(std::string(APCONF_SOURCE_DIR "/etc/") + name, std::string("/etc/") + name,
                          fs::copy_options::overwrite_existing);
        register_root_cmd(lib_pkg_root);
        return command_tree_parser() == 0;
    }();
    ASSERT_TRUE(loaded);
}

machine::machine(const std::string &name) : directory_("/tmp/machines/" + name)
{
    for (const char *own : {"/tmp", "/config"}) fs::create_directories(directory_ + own);
    int input[2];
    int ready[2];
    if (pipe2(input, O_CLOEXEC) != 0 || pipe2(ready, O_CLOEXEC) != 0) abort();
    keeper_ = fork();
    if (keeper_ == 0) {
        dup2(input[0], 0);
        dup2(ready[1], 1);
        become({APCONF_SOURCE_DIR "/tests/law/machine.sh", directory_, "sh", "-c", "echo ready; exec cat"});
    }
    close(input[0]);
    close(ready[1]);
    keeper_input_ = input[1];
    char word[8];
    EXPECT_GT(read(ready[0], word, sizeof word), 0) << "machine " << name << " has no namespace";
    close(ready[0]);
}

machine::~machine()
{
    kill();
    close(keeper_input_);
    waitpid(keeper_, nullptr, 0);
}

void machine::clear()
{
    kill();
    fs::remove_all(queue());
    fs::remove(directory_ + "/tmp/config_cmd_sock");
    fs::remove(directory_ + "/config/start_config.json");
}

void machine::install_start_configuration(const std::string &text) const
{
    std::ofstream(directory_ + "/config/start_config.json") << text;
}

pid_t machine::run(std::vector<std::string> command, const std::string &input, const std::string &output,
                   const std::string &errors) const
{
    const pid_t pid = fork();
    if (pid != 0) return pid;
    redirect(0, input, O_RDONLY);
    redirect(1, output, O_WRONLY | O_CREAT | O_TRUNC);
    redirect(2, errors, O_WRONLY | O_CREAT | O_APPEND);
    command.insert(command.begin(), {"nsenter", "--mount=/proc/" + std::to_string(keeper_) + "/ns/mnt", "--"});
    become(command);
}

void machine::start()
{
    std::vector<std::string> command = words(APCONF_SERVER);
    command.insert(command.end(), {"--foreground", "--verbose"});
    server_ = run(command, "/dev/null", "/dev/null", directory_ + "/log");
}

void machine::kill()
{
    disconnect();
    if (server_ < 0) return;
    ::kill(server_, SIGKILL);
    waitpid(server_, nullptr, 0);
    server_ = -1;
}

void machine::connect()
{
    if (connected == this) return;
    if (connected) deinit_cmclient();
    const std::string socket = directory_ + "/tmp/config_cmd_sock";
    connected =
        eventually([&] { return fs::exists(socket) && init_cmclient(socket.c_str(), "law") >= 0; }) ? this : nullptr;
    ASSERT_TRUE(connected) << "the server does not serve:\n" << content(directory_ + "/log");
}

void machine::disconnect()
{
    if (connected != this) return;
    deinit_cmclient();
    connected = nullptr;
}

void machine::send(const std::string &action, const std::string &path, json_object *param)
{
    connect();
    EXPECT_EQ(send_cpath_cmd_obj(action.c_str(), path.c_str(), param, nullptr), 0);
}

std::string machine::running_configuration()
{
    connect();
    io_msg *reply = nullptr;
    EXPECT_EQ(send_cpath_cmd_obj("get", "/", nullptr, &reply), 0);
    const std::string text = reply && reply->code == 0 ? reply->data : "no answer";
    free(reply);
    return text;
}

finished_process machine::commit(const std::string &batch) const
{
    const std::string input = directory_ + "/batch";
    const std::string output = directory_ + "/output";
    const std::string errors = directory_ + "/errors";
    std::ofstream(input) << batch;
    fs::remove(errors);
    std::vector<std::string> command = words(APCONF_TOOL);
    command.insert(command.end(), {"commit", "-"});
    int status = 0;
    waitpid(run(command, input, output, errors), &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, content(output), content(errors)};
}

bool machine::wait_until_applied(int index) const
{
    const std::string number = std::to_string(index);
    return eventually([&] {
        return fs::exists(queue() + "/old/" + number + ".json") && !fs::exists(queue() + "/new/" + number + ".json");
    });
}

std::string machine::saved_configuration(int index) const
{
    return content(queue() + "/old/" + std::to_string(index) + ".json");
}

std::string machine::refusals(int index) const
{
    return content(queue() + "/bad/" + std::to_string(index) + ".txt");
}

int machine::next_index() const
{
    return atoi(content(queue() + "/new/.max_index").c_str());
}

std::string machine::take_logged_refusals()
{
    std::ifstream log(directory_ + "/log");
    log.seekg(read_of_log_);
    std::string refusals;
    for (std::string line; std::getline(log, line); read_of_log_ += static_cast<std::streamoff>(line.size()) + 1)
        if (line.find(" refused: accepted is ") != std::string::npos) refusals += line + "\n";
    return refusals;
}

}  // namespace apconf_test

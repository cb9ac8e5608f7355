#include "host/tool_process.h"

#include <apconf/apconf.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

namespace apconf_test
{

namespace fs = std::filesystem;

std::string content(const char *file)
{
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    return text.str();
}

tool_result apconf(const std::string &arguments, const std::string &input)
{
    std::ofstream("/tmp/input") << input;
    const int status = system((APCONF_TOOL " " + arguments + " </tmp/input >/tmp/output 2>/tmp/errors").c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, content("/tmp/output"), content("/tmp/errors")};
}

void tool::SetUp()
{
    fs::copy_file(APCONF_SOURCE_DIR "/etc/config_cmd_tree.xml", "/etc/config_cmd_tree.xml",
                  fs::copy_options::overwrite_existing);
    fs::remove_all(CMQ_DIR);
    fs::remove(IO_SOCK_PATH);
}

void tool::make_queue()
{
    for (const char *directory : {CMQ_NEW_DIR, CMQ_OLD_DIR, CMQ_BAD_DIR}) fs::create_directories(directory);
    std::ofstream(CMQ_MAX_INDEX) << "7 ";
    std::ofstream(CMQ_CUR_INDEX) << "6 ";
}

void tool_with_server::SetUp()
{
    tool::SetUp();
    start_server();
}

void tool_with_server::TearDown()
{
    stop_server();
}

void tool_with_server::start_server()
{
    server_ = fork();
    if (server_ == 0) {
        execl("/bin/sh", "sh", "-c", "exec " APCONF_SERVER " --foreground", nullptr);
        _exit(127);
    }
    for (int i = 0; i < 200 && !fs::exists(IO_SOCK_PATH); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    ASSERT_TRUE(fs::exists(IO_SOCK_PATH)) << "the server did not start";
}

void tool_with_server::stop_server()
{
    kill(server_, SIGTERM);
    int status = 0;
    waitpid(server_, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "the server ended with " << status;
}

}  // namespace apconf_test

// Starting and ending the server: options, directories, the socket file, the background.
#include <apconf/apconf.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "daemon/server_process.h"

using namespace apconf_test;
using testing::HasSubstr;

namespace
{

class starting : public testing::Test
{
protected:
    void SetUp() override { make_fresh_machine(); }
};

// The pid of whoever listens on the server's socket.
pid_t server_pid()
{
    const raw_client client;
    ucred peer = {};
    socklen_t size = sizeof peer;
    if (!client.connected() || getsockopt(client.fd(), SOL_SOCKET, SO_PEERCRED, &peer, &size) < 0) return -1;
    return peer.pid;
}

TEST_F(starting, help_and_version_need_nothing_and_bad_options_are_a_usage_error)
{
    std::string output;
    EXPECT_EQ(run_to_end({"--help"}, &output), 0);
    for (const char *option : {"--foreground", "--verbose", "--group", "--archive-limit", "--version"})
        EXPECT_THAT(output, HasSubstr(option));
    EXPECT_EQ(run_to_end({"--version"}, &output), 0);
    EXPECT_THAT(output, HasSubstr("apconfd "));
    EXPECT_EQ(run_to_end({"--no-such-option"}), 2);
    EXPECT_EQ(run_to_end({"--archive-limit", "0"}), 2);
    EXPECT_EQ(run_to_end({"extra"}), 2);
    EXPECT_FALSE(exists(IO_SOCK_PATH));
}

TEST_F(starting, unknown_group_is_named_in_the_error)
{
    std::string output;
    EXPECT_EQ(run_to_end({"--foreground", "--group", "no-such-group"}, &output), 1);
    EXPECT_THAT(output, HasSubstr("there is no group 'no-such-group'"));
}

TEST_F(starting, missing_command_tree_is_named_in_the_error)
{
    std::filesystem::remove("/etc/config_cmd_tree.xml");
    std::string output;
    EXPECT_EQ(run_to_end({"--foreground"}, &output), 1);
    EXPECT_THAT(output, HasSubstr("'/etc/config_cmd_tree.xml' cannot be loaded"));
}

TEST_F(starting, background_start_returns_when_the_server_serves)
{
    ASSERT_EQ(run_to_end({}), 0);
    const pid_t pid = server_pid();
    ASSERT_GT(pid, 0);
    EXPECT_NE(getsid(pid), getsid(0));

    std::string output;
    EXPECT_EQ(run_to_end({}, &output), 1);
    EXPECT_THAT(output, HasSubstr("another server is running"));
    EXPECT_EQ(server_pid(), pid);

    kill(pid, SIGTERM);
    EXPECT_TRUE(eventually([] { return !exists(IO_SOCK_PATH); }));
}

TEST_F(starting, signals_end_it_cleanly_and_the_socket_goes)
{
    for (const int signal_number : {SIGTERM, SIGINT}) {
        server_process server;
        ASSERT_TRUE(server.wait_until_serving());
        EXPECT_EQ(server.terminate(signal_number), 0);
        EXPECT_FALSE(exists(IO_SOCK_PATH));
    }
}

TEST_F(starting, stale_socket_is_replaced)
{
    server_process killed;
    ASSERT_TRUE(killed.wait_until_serving());
    killed.kill();
    ASSERT_TRUE(exists(IO_SOCK_PATH));
    server_process server;
    EXPECT_TRUE(server.wait_until_serving());
    EXPECT_TRUE(server.wait_for_log("replacing the stale socket"));
}

TEST_F(starting, second_server_is_refused_and_the_first_one_goes_on)
{
    server_process server;
    ASSERT_TRUE(server.wait_until_serving());
    std::string output;
    EXPECT_EQ(run_to_end({"--foreground"}, &output), 1);
    EXPECT_THAT(output, HasSubstr("another server is running"));
    EXPECT_EQ(server_pid(), server.pid());
}

TEST_F(starting, live_socket_of_another_kind_of_server_is_refused)
{
    const int other = init_io_sock(1, nullptr);
    ASSERT_GE(other, 0);
    std::string output;
    EXPECT_EQ(run_to_end({"--foreground"}, &output), 1);
    EXPECT_THAT(output, HasSubstr("is in use: another server is running"));
    EXPECT_TRUE(raw_client().connected());
    close(other);
}

TEST_F(starting, file_in_the_sockets_place_is_left_alone)
{
    write_file(IO_SOCK_PATH, "mine");
    std::string output;
    EXPECT_EQ(run_to_end({"--foreground"}, &output), 1);
    EXPECT_THAT(output, HasSubstr("is no socket"));
    EXPECT_EQ(read_file(IO_SOCK_PATH), "mine");
}

TEST_F(starting, queue_directories_are_made_for_the_own_user_only)
{
    server_process server;
    ASSERT_TRUE(server.wait_until_serving());
    for (const char *path : {CMQ_DIR, CMQ_NEW_DIR, CMQ_OLD_DIR, CMQ_BAD_DIR}) {
        struct stat status = {};
        ASSERT_EQ(lstat(path, &status), 0) << path;
        EXPECT_EQ(status.st_mode & 07777, 0700u) << path;
    }
}

TEST_F(starting, open_queue_directories_are_closed_to_others)
{
    ASSERT_EQ(mkdir(CMQ_DIR, 0777), 0);
    ASSERT_EQ(chmod(CMQ_DIR, 0777), 0);
    server_process server;
    ASSERT_TRUE(server.wait_until_serving());
    struct stat status = {};
    ASSERT_EQ(stat(CMQ_DIR, &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0700u);
}

TEST_F(starting, symbolic_link_in_place_of_a_queue_directory_is_refused)
{
    ASSERT_EQ(mkdir("/tmp/elsewhere", 0700), 0);
    ASSERT_EQ(symlink("/tmp/elsewhere", CMQ_DIR), 0);
    std::string output;
    EXPECT_EQ(run_to_end({"--foreground"}, &output), 1);
    EXPECT_THAT(output, HasSubstr("'/tmp/cmessage_queue' is no directory"));

    ASSERT_EQ(unlink(CMQ_DIR), 0);
    ASSERT_EQ(mkdir(CMQ_DIR, 0700), 0);
    ASSERT_EQ(symlink("/tmp/elsewhere", CMQ_NEW_DIR), 0);
    EXPECT_EQ(run_to_end({"--foreground"}, &output), 1);
    EXPECT_THAT(output, HasSubstr("'/tmp/cmessage_queue/new' is no directory"));
    EXPECT_TRUE(std::filesystem::is_empty("/tmp/elsewhere"));
    rmdir("/tmp/elsewhere");
}

TEST_F(starting, queue_directory_of_somebody_else_is_refused)
{
    const char *foreign = nullptr;
    for (const char *path :
         {"/usr", "/var/cache/man", "/var/cache/apt/archives/partial", "/var/lib/apt/lists/partial"}) {
        struct stat status = {};
        if (stat(path, &status) == 0 && status.st_uid != geteuid()) foreign = path;
    }
    if (!foreign) GTEST_SKIP() << "this machine has no directory of another user";
    ASSERT_EQ(mkdir(CMQ_DIR, 0700), 0);
    ASSERT_EQ(mount(foreign, CMQ_DIR, nullptr, MS_BIND, nullptr), 0);
    std::string output;
    EXPECT_EQ(run_to_end({"--foreground"}, &output), 1);
    umount(CMQ_DIR);
    EXPECT_THAT(output, HasSubstr("'/tmp/cmessage_queue' belongs to user "));
}

}  // namespace

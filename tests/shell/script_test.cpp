// apconf shell with lines from a file: faults by number, nothing half-committed, exit status.
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "host/tool_process.h"

namespace
{

namespace fs = std::filesystem;
using apconf_test::apconf;
using apconf_test::tool_result;
using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;

class script : public apconf_test::tool_with_server
{
protected:
    void SetUp() override
    {
        fs::copy_file(APCONF_SOURCE_DIR "/etc/cmd_tree_help.txt", "/etc/cmd_tree_help.txt",
                      fs::copy_options::overwrite_existing);
        tool_with_server::SetUp();
    }
};

TEST_F(script, commits_and_shows)
{
    const tool_result done = apconf("shell", "hostname lobby\nradio 0\n txpower 9\n\n! a remark\ncommit\nend\nshow\n");
    EXPECT_EQ(done.errors, "");
    EXPECT_THAT(done.output, MatchesRegex("message [0-9]+ is applied\nradio 0\n txpower 9\nhostname lobby\n"));
    EXPECT_EQ(done.status, 0);
}

TEST_F(script, names_every_faulty_line_and_commits_nothing)
{
    const tool_result failed =
        apconf("shell", "hostname lobby\nradio 0\n txpower loud\nchannal 6\ncommit\nshow changes\n");
    EXPECT_EQ(failed.errors,
              "apconf: line 3, column 10: 'loud' does not fit; expected is a UINT from 0 to 36 (txpower)\n"
              "apconf: line 4, column 1: 'channal' is no command here; perhaps 'channel'\n"
              "apconf: line 5: not committed: a line before was refused; 'discard' forgets the others too\n"
              "apconf: the session ended with changes that were not committed; they are lost\n");
    EXPECT_EQ(failed.output, "hostname lobby\n") << "the rest is read all the same";
    EXPECT_EQ(failed.status, 1);
    EXPECT_EQ(apconf("get hostname_cmd").output, "null\n");
}

TEST_F(script, says_that_changes_were_not_committed)
{
    for (const char *lines : {"hostname lobby\n", "hostname lobby\nquit\ncommit\n", "hostname lobby"}) {
        const tool_result failed = apconf("shell", lines);
        EXPECT_EQ(failed.errors, "apconf: the session ended with changes that were not committed; they are lost\n");
        EXPECT_EQ(failed.status, 1);
    }
    EXPECT_EQ(apconf("shell", "hostname lobby\ndiscard\n").status, 0);
    EXPECT_EQ(apconf("shell", "").status, 0);
}

TEST_F(script, a_running_configuration_as_lines_is_the_same_configuration)
{
    ASSERT_EQ(apconf("shell",
                     "hostname \"two words\"\npassword hush-hush\nradio 1\n bss 3\n  ssid guests\n  shutdown\n"
                     " shutdown\nvlan 7\ncommit\n")
                  .errors,
              "");
    const std::string lines = apconf("show --secrets").output;
    EXPECT_THAT(lines, HasSubstr("password hush-hush\n"));
    const tool_result again = apconf("shell", lines + "commit\n");
    EXPECT_EQ(again.output, "This is how it is configured; nothing was queued.\n");
    EXPECT_EQ(again.errors, "");
    EXPECT_EQ(again.status, 0);
    EXPECT_THAT(apconf("shell", apconf("show").output).errors, HasSubstr("*** stands for a secret"));
}

TEST_F(script, queues_for_a_server_that_is_not_there)
{
    stop_server();
    const tool_result queued = apconf("shell", "hostname lobby\ncommit\nshow\n");
    EXPECT_THAT(queued.output,
                MatchesRegex("message [0-9]+ is queued; there is no server, which applies it when it starts\n"));
    EXPECT_THAT(queued.errors, HasSubstr("apconf: line 3: there is no configuration server"));
    EXPECT_EQ(queued.status, 1);
    start_server();
    EXPECT_THAT(apconf("get hostname_cmd").output, HasSubstr("lobby"));
}

TEST_F(script, without_the_queue_the_changes_are_kept)
{
    stop_server();
    fs::remove_all("/tmp/cmessage_queue");
    const tool_result failed = apconf("shell", "hostname lobby\ncommit\nshow changes\n");
    EXPECT_THAT(failed.errors, HasSubstr("apconf: line 2: /tmp/cmessage_queue: there is no queue to write to"));
    EXPECT_EQ(failed.output, "hostname lobby\n");
    EXPECT_EQ(failed.status, 1);
    start_server();
}

}  // namespace

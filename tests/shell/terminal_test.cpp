// apconf shell on a real terminal beside a running server: keys, prompt, history, and how it leaves the terminal.
#include <signal.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <thread>

#include "host/tool_process.h"
#include "shell/terminal_process.h"

namespace
{

namespace fs = std::filesystem;
using apconf_test::apconf;
using apconf_test::apconf_shell;
using apconf_test::content;
using apconf_test::terminal_process;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

constexpr const char *history = "/tmp/home/.apconf_history";

class terminal : public apconf_test::tool_with_server
{
protected:
    void SetUp() override
    {
        fs::remove_all("/tmp/home");
        fs::create_directory("/tmp/home");
        setenv("HOME", "/tmp/home", 1);
        fs::copy_file(APCONF_SOURCE_DIR "/etc/cmd_tree_help.txt", "/etc/cmd_tree_help.txt",
                      fs::copy_options::overwrite_existing);
        tool_with_server::SetUp();
    }
};

TEST_F(terminal, tab_completes_and_shows_candidates)
{
    terminal_process shell(apconf_shell);
    shell.expect_cursor_behind("apconf> ");
    shell.type("hostn\t");
    shell.expect_cursor_behind("apconf> hostname ");
    shell.type("lobby\r");
    shell.expect_cursor_behind("apconf*> ");
    shell.enter("radio 0", "apconf(radio 0)*> ");
    shell.type("vht\t");
    shell.expect_cursor_behind("apconf(radio 0)*> vht-");
    shell.type("\t");
    shell.expect_cursor_behind("apconf(radio 0)*> vht-");
    EXPECT_EQ(shell.row_above(1), "vht-max-ampdu  vht-short-gi");
    EXPECT_EQ(shell.row_above(2), "apconf(radio 0)*> vht-");
    shell.type("s\te\t");
    shell.expect_cursor_behind("apconf(radio 0)*> vht-short-gi enable ");
}

TEST_F(terminal, question_mark_shows_help_and_the_line_again)
{
    terminal_process shell(apconf_shell);
    shell.expect_cursor_behind("apconf> ");
    shell.enter("radio 0", "apconf(radio 0)> ");
    shell.type("beacon-interval ?");
    shell.expect_cursor_behind("apconf(radio 0)> beacon-interval ");
    EXPECT_EQ(shell.row_above(1), "  <20-1000>  Time in units of 1024 microseconds; default 100");
    EXPECT_EQ(shell.row_above(2), "apconf(radio 0)> beacon-interval");
    shell.enter("200", "apconf(radio 0)*> ");
    shell.enter("show changes", "apconf(radio 0)*> ");
    EXPECT_EQ(shell.row_above(1), " beacon-interval 200");
}

TEST_F(terminal, question_mark_in_quotes_is_a_character)
{
    terminal_process shell(apconf_shell);
    shell.expect_cursor_behind("apconf> ");
    shell.enter("hostname \"who?\"", "apconf*> ");
    shell.enter("show changes", "apconf*> ");
    EXPECT_EQ(shell.row_above(1), "hostname \"who?\"");
}

TEST_F(terminal, help_below_a_line_that_takes_two_rows_leaves_everything_to_be_read)
{
    terminal_process shell(apconf_shell, 40);
    shell.expect_cursor_behind("apconf> ");
    const std::string name(30, 'n');
    shell.type("hostname " + name + " ?");
    shell.expect_cursor_behind("nnnnnnn ");
    const auto rows = shell.rows();
    const std::string first = "apconf> hostname " + name.substr(0, 23);
    EXPECT_THAT(std::vector(rows.end() - 5, rows.end()),
                ElementsAre(first, "nnnnnnn", "  <cr>  end of the line", first, "nnnnnnn"));
}

TEST_F(terminal, a_caret_stands_under_what_is_wrong)
{
    terminal_process shell(apconf_shell);
    shell.expect_cursor_behind("apconf> ");
    shell.enter("hostname \"größe\" extra", "apconf> ");
    EXPECT_EQ(shell.row_above(3), "apconf> hostname \"größe\" extra");
    EXPECT_EQ(shell.row_above(2), "                         ^");
    EXPECT_EQ(shell.row_above(1), "'extra' does not fit; expected is the end of the line");
}

TEST_F(terminal, control_c_clears_the_line_and_keeps_the_changes)
{
    terminal_process shell(apconf_shell);
    shell.expect_cursor_behind("apconf> ");
    shell.enter("hostname lobby", "apconf*> ");
    shell.type("hostname ha\003");
    shell.expect_cursor_behind("apconf*> ");
    shell.enter("show changes", "apconf*> ");
    EXPECT_EQ(shell.row_above(1), "hostname lobby");
}

TEST_F(terminal, control_c_is_never_lost)
{
    terminal_process shell(apconf_shell, 40);
    shell.expect_cursor_behind("apconf> ");
    for (int i = 0; i < 50; ++i) shell.paste("hostname " + std::string(60, 'n') + "\003");
    shell.expect_cursor_behind("apconf> ");
    shell.enter("hostname lobby", "apconf*> ");
    shell.enter("show changes", "apconf*> ");
    EXPECT_EQ(shell.row_above(1), "hostname lobby");
}

TEST_F(terminal, an_interrupt_from_elsewhere_clears_the_line_too)
{
    terminal_process shell(apconf_shell);
    shell.expect_cursor_behind("apconf> ");
    shell.enter("hostname lobby", "apconf*> ");
    shell.type("hostname ha");
    shell.expect_cursor_behind("apconf*> hostname ha");
    shell.send_signal(SIGINT);
    shell.expect_cursor_behind("apconf*> ");
}

TEST_F(terminal, asks_once_before_changes_are_lost)
{
    const std::string question = "There are changes that are not committed. Leave and lose them? [y/N] ";
    terminal_process shell(apconf_shell);
    shell.expect_cursor_behind("apconf> ");
    shell.enter("hostname lobby", "apconf*> ");
    shell.enter("quit", question);
    shell.enter("n", "apconf*> ");
    shell.type("\004");
    shell.expect_cursor_behind(question);
    shell.enter("", "apconf*> ");
    shell.enter("exit", question);
    shell.type("\003");
    shell.expect_cursor_behind("apconf*> ");
    shell.enter("quit", question);
    shell.paste("y\r");
    EXPECT_EQ(shell.exit_status(), 0);
    EXPECT_TRUE(shell.settings_are_restored());
}

TEST_F(terminal, the_end_of_the_input_ends_it_also_at_the_question)
{
    terminal_process calm(apconf_shell);
    calm.expect_cursor_behind("apconf> ");
    calm.type("\004");
    EXPECT_EQ(calm.exit_status(), 0);

    terminal_process shell(apconf_shell);
    shell.expect_cursor_behind("apconf> ");
    shell.enter("hostname lobby", "apconf*> ");
    shell.type("\004\004");
    EXPECT_EQ(shell.exit_status(), 0);
    EXPECT_TRUE(shell.settings_are_restored());
}

TEST_F(terminal, a_signal_that_ends_it_leaves_the_terminal_as_it_was)
{
    for (const int signal : {SIGTERM, SIGHUP, SIGQUIT}) {
        terminal_process shell(apconf_shell);
        shell.expect_cursor_behind("apconf> ");
        EXPECT_FALSE(shell.settings_are_restored()) << "while a line is edited, keys come one by one";
        shell.send_signal(signal);
        EXPECT_EQ(shell.exit_status(), -signal);
        EXPECT_TRUE(shell.settings_are_restored());
    }
}

TEST_F(terminal, stops_and_goes_on)
{
    terminal_process shell(std::string("sh -m -c '") + apconf_shell +
                           "; stty; for time in 1 2; do printf \"stopped> \"; read line; fg >/dev/null; done; exit'");
    shell.expect_cursor_behind("apconf> ");
    shell.enter("hostname lobby", "apconf*> ");
    shell.type("hostn");
    shell.expect_cursor_behind("apconf*> hostn");
    for (int time = 0; time < 2; ++time) {
        shell.type("\032");
        shell.expect_cursor_behind("stopped> ");
        shell.enter("", "apconf*> hostn");
    }
    EXPECT_THAT(shell.seen().text(), HasSubstr("speed ")) << "stty has run";
    EXPECT_THAT(shell.seen().text(), Not(testing::ContainsRegex("-icanon|-echo\\b"))) << "on an ordinary terminal";
    shell.enter("ame hall", "apconf*> ");
    shell.enter("quit", "There are changes that are not committed. Leave and lose them? [y/N] ");
    shell.paste("y\r");
    EXPECT_EQ(shell.exit_status(), 0);
}

TEST_F(terminal, what_is_typed_while_a_command_runs_is_not_lost)
{
    terminal_process shell(apconf_shell);
    shell.expect_cursor_behind("apconf> ");
    shell.paste("hostname lobby\rcommit\rshow\rhostname ha\177\177hal\tl\rshow changes\r\004\004");
    EXPECT_EQ(shell.exit_status(), 0);
    const auto rows = shell.rows();
    EXPECT_THAT(rows, Contains("apconf*> commit"));
    EXPECT_THAT(rows, Contains("apconf> show"));
    EXPECT_THAT(rows, Contains("hostname hall"));
}

TEST_F(terminal, pasted_text_lands_where_its_indentation_says)
{
    terminal_process shell(apconf_shell);
    shell.expect_cursor_behind("apconf> ");
    shell.paste("radio 0\r channel 11\r bss 0\r  ssid \"a b?\"\r shutdown\rhostname hall\r");
    shell.expect_cursor_behind("apconf*> ");
    shell.paste("radio 1\r\tchannel 36\r\tbss 0\r");
    shell.expect_cursor_behind("apconf(radio 1, bss 0)*> ");
    shell.enter("shutdown", "apconf(radio 1, bss 0)*> ");
    shell.enter("end", "apconf*> ");
    shell.enter("show changes | exclude xyzzy", "apconf*> ");
    const auto rows = shell.rows();
    EXPECT_THAT(std::vector(rows.end() - 11, rows.end() - 1),
                ElementsAre("radio 0", " channel 11", " bss 0", "  ssid \"a b?\"", " shutdown", "radio 1",
                            " channel 36", " bss 0", "  shutdown", "hostname hall"));
}

TEST_F(terminal, follows_the_size_of_the_window)
{
    terminal_process shell(apconf_shell);
    shell.expect_cursor_behind("apconf> ");
    shell.type("radio 0");
    shell.resize(30);
    shell.expect_cursor_behind("apconf> radio 0");
    shell.enter("", "apconf(radio 0)> ");
    shell.type("rf-optimization \t");
    shell.expect_cursor_behind("on ");
    const auto rows = shell.rows();
    EXPECT_THAT(rows, Contains("handoff-assist")) << "one column: two do not fit\n" << shell.seen().text();
}

TEST_F(terminal, earlier_lines_come_back)
{
    {
        terminal_process shell(apconf_shell);
        shell.expect_cursor_behind("apconf> ");
        shell.enter("hostname lobby", "apconf*> ");
        shell.enter("discard", "apconf> ");
        shell.paste("\033[A\033[A");
        shell.expect_cursor_behind("apconf> hostname lobby");
        shell.type("\003");
        shell.expect_cursor_behind("apconf> ");
        shell.type("\004");
        EXPECT_EQ(shell.exit_status(), 0);
    }
    struct stat status = {};
    ASSERT_EQ(stat(history, &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
    EXPECT_EQ(content(history), "hostname lobby\ndiscard\n");
    terminal_process again(apconf_shell);
    again.expect_cursor_behind("apconf> ");
    again.enter("history", "apconf> ");
    EXPECT_EQ(again.row_above(1), "discard");
    again.type("\022host");
    again.type("\r");
    again.expect_cursor_behind("apconf*> ");
}

TEST_F(terminal, no_secret_reaches_the_history_file)
{
    terminal_process shell(apconf_shell);
    shell.expect_cursor_behind("apconf> ");
    shell.enter("password hush-hush", "apconf*> ");
    shell.enter("pasword hush-hush", "apconf*> ");
    shell.enter("password \"hush", "apconf*> ");
    shell.enter("radio 0", "apconf(radio 0)*> ");
    EXPECT_EQ(content(history), "radio 0\n");
    shell.paste("\033[A\033[A\033[A\033[A");
    shell.expect_cursor_behind("apconf(radio 0)*> password hush-hush");
}

TEST_F(terminal, sets_commits_shows_and_removes)
{
    terminal_process shell(apconf_shell);
    shell.expect_cursor_behind("apconf> ");
    shell.enter("radio 0", "apconf(radio 0)> ");
    shell.enter("txpower 12", "apconf(radio 0)*> ");
    shell.enter("bss 1", "apconf(radio 0, bss 1)*> ");
    shell.enter("ssid \"two words\"", "apconf(radio 0, bss 1)*> ");
    shell.enter("commit", "apconf(radio 0, bss 1)> ");
    EXPECT_THAT(shell.row_above(1), testing::MatchesRegex("message [0-9]+ is applied"));
    EXPECT_EQ(apconf("get 'radio[0]/txpower_cmd'").output, "{\n  \"txpower\": \"12\"\n}\n");
    shell.enter("show", "apconf(radio 0, bss 1)> ");
    EXPECT_EQ(shell.row_above(1), "ssid \"two words\"");
    shell.enter("no ssid", "apconf(radio 0, bss 1)*> ");
    shell.enter("commit", "apconf(radio 0, bss 1)> ");
    shell.enter("show", "apconf(radio 0, bss 1)> ");
    EXPECT_EQ(shell.row_above(1), "apconf(radio 0, bss 1)> show") << "nothing is set any more";
    shell.enter("exit", "apconf(radio 0)> ");
    shell.enter("show | include ssid|txpower", "apconf(radio 0)> ");
    EXPECT_EQ(shell.row_above(1), "txpower 12");
    shell.enter("txpower 12", "apconf(radio 0)*> ");
    shell.enter("commit", "apconf(radio 0)> ");
    EXPECT_EQ(shell.row_above(1), "This is how it is configured; nothing was queued.");
}

TEST_F(terminal, commits_that_are_confirmed_stay_and_others_are_undone)
{
    terminal_process shell(apconf_shell);
    shell.expect_cursor_behind("apconf> ");
    shell.enter("hostname lobby", "apconf*> ");
    shell.enter("commit confirm 600", "apconf> ");
    EXPECT_THAT(shell.row_above(2), testing::MatchesRegex("message [0-9]+ is applied"));
    EXPECT_EQ(shell.row_above(1), "'confirm' within 600 s keeps it; else it is undone");
    shell.enter("radio 0", "apconf(radio 0)> ");
    shell.enter("txpower 12", "apconf(radio 0)*> ");
    shell.enter("commit", "apconf(radio 0)> ");
    EXPECT_THAT(
        shell.row_above(1),
        testing::MatchesRegex("message [0-9]+ waits to be confirmed; unless it is, this one is undone with it"));
    shell.enter("confirm", "apconf(radio 0)> ");
    EXPECT_THAT(shell.row_above(1), testing::MatchesRegex("message [0-9]+ is confirmed"));
    shell.enter("confirm", "apconf(radio 0)> ");
    EXPECT_EQ(shell.row_above(1), "there is nothing to confirm: no commit waits for it");
    shell.enter("txpower 20", "apconf(radio 0)*> ");
    shell.enter("commit confirm 1", "apconf(radio 0)> ");
    for (int i = 0; i < 100 && apconf("get 'radio[0]/txpower_cmd'").output.find("12") == std::string::npos; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    shell.enter("show", "apconf(radio 0)> ");
    EXPECT_EQ(shell.row_above(1), "txpower 12");
}

TEST_F(terminal, a_server_that_goes_away_costs_no_changes)
{
    terminal_process shell(apconf_shell);
    shell.expect_cursor_behind("apconf> ");
    shell.enter("hostname lobby", "apconf*> ");
    stop_server();
    shell.enter("show", "apconf*> ");
    EXPECT_THAT(shell.seen().text(), HasSubstr("\nthere is no configuration server at /tmp/config_cmd_sock"));
    shell.enter("show changes", "apconf*> ");
    EXPECT_EQ(shell.row_above(1), "hostname lobby");
    start_server();
    shell.enter("commit", "apconf> ");
    EXPECT_THAT(shell.row_above(1), testing::MatchesRegex("message [0-9]+ is applied"));
    EXPECT_THAT(apconf("get hostname_cmd").output, HasSubstr("lobby"));
}

}  // namespace

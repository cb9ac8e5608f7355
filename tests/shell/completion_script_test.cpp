// Completion of the tool's command lines in the user's shell: `apconf complete`, and the scripts that ask it.
#include <filesystem>
#include <fstream>

#include "host/tool_process.h"
#include "shell/terminal_process.h"
#include "support/lines.h"

namespace
{

namespace fs = std::filesystem;
using apconf_test::apconf;
using apconf_test::content;
using apconf_test::lines_of;
using apconf_test::terminal_process;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class completed : public apconf_test::tool
{
protected:
    // The words that `apconf complete` prints, without their help. The line's words are quoted for sh.
    static std::vector<std::string> words(const std::string &line)
    {
        const auto result = apconf("complete -- " + line);
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.errors, "");
        std::vector<std::string> words;
        for (const std::string &row : lines_of(result.output)) words.push_back(row.substr(0, row.find('\t')));
        return words;
    }
};

TEST_F(completed, subcommands_and_options_come_from_the_parser)
{
    const auto all = words("''");
    EXPECT_THAT(all, Contains("get"));
    EXPECT_THAT(all, Contains("shell"));
    EXPECT_THAT(all, Not(Contains("complete"))) << "it is for scripts";
    EXPECT_THAT(apconf("--help").output, Not(HasSubstr("complete")));
    EXPECT_THAT(words("she"), ElementsAre("shell"));
    EXPECT_THAT(words("--v"), ElementsAre("--version"));
    EXPECT_THAT(words("queue ''"), ElementsAre("list", "show"));
    EXPECT_THAT(words("queue show --s"), ElementsAre("--secrets"));
    EXPECT_THAT(words("get radio --"), ElementsAre("--help", "--json", "--secrets"));
    EXPECT_THAT(words("get --json ra"), ElementsAre("radio/", "radio["));
    EXPECT_THAT(words("nothing ''"), IsEmpty());
    EXPECT_THAT(apconf("complete -- quit queue sh").output, IsEmpty());
    EXPECT_THAT(lines_of(apconf("complete -- queue li").output),
                ElementsAre("list\tList all messages: number, state, time and sender"));
}

TEST_F(completed, paths_grow_by_a_component)
{
    EXPECT_THAT(words("get ra"), ElementsAre("radio/", "radio["));
    EXPECT_THAT(words("get radio/chan"), ElementsAre("radio/channel_cmd"));
    EXPECT_THAT(words("get 'radio[1]/bs'"), ElementsAre("radio[1]/bss/", "radio[1]/bss["));
    EXPECT_THAT(words("get config/nt"), ElementsAre("config/ntp/"));
    EXPECT_THAT(words("get /config/nt"), ElementsAre("/config/ntp/"));
    EXPECT_THAT(words("get conf"), ElementsAre("config/", "config_save_cmd"));
    EXPECT_THAT(words("get radio/channel_cmd/"), IsEmpty());
    EXPECT_THAT(words("get nowhere/"), IsEmpty());
    EXPECT_THAT(words("get 'vlan[a/b]/dh'"), ElementsAre("vlan[a/b]/dhcp_cmd")) << "a slash in brackets is none";
}

TEST_F(completed, instances_with_numbers_are_counted)
{
    EXPECT_THAT(words("get 'radio['"), ElementsAre("radio[0]/", "radio[1]/"));
    EXPECT_THAT(words("get 'radio[0]/bss[1'"),
                ElementsAre("radio[0]/bss[1]/", "radio[0]/bss[10]/", "radio[0]/bss[11]/", "radio[0]/bss[12]/",
                            "radio[0]/bss[13]/", "radio[0]/bss[14]/", "radio[0]/bss[15]/"));
    EXPECT_THAT(words("get 'vlan['"), IsEmpty());
}

TEST_F(completed, keys_and_values_come_from_the_command)
{
    EXPECT_THAT(words("set 'radio[0]/short_gi_cmd' ''"), ElementsAre("status="));
    EXPECT_THAT(words("set radio/short_gi_cmd ''"), ElementsAre("radio_id=", "status="));
    EXPECT_THAT(words("set radio/short_gi_cmd radio_id=0 ''"), ElementsAre("status="));
    EXPECT_THAT(words("set radio/short_gi_cmd radio_id=0 status="), ElementsAre("status=enable", "status=disable"));
    EXPECT_THAT(words("set radio/short_gi_cmd radio_id=0 status=d"), ElementsAre("status=disable"));
    EXPECT_THAT(words("set radio/txpower_cmd txpower="), IsEmpty()) << "a number is nothing to choose from";
    EXPECT_THAT(words("set nowhere_cmd ''"), IsEmpty());
}

TEST_F(completed, files_are_left_to_the_shell)
{
    EXPECT_THAT(words("commit x"), ElementsAre(":file"));
    EXPECT_THAT(words("apply --dry-run x"), ElementsAre(":file"));
    EXPECT_THAT(words("diff running x"), ElementsAre(":file"));
    EXPECT_THAT(words("check --help-file x"), ElementsAre(":file"));
    EXPECT_THAT(words("commit --confirm ''"), IsEmpty());
    EXPECT_THAT(words("commit --confirm 60 x"), ElementsAre(":file"));
    EXPECT_THAT(words("commit --"), Not(Contains(":file")));
    EXPECT_THAT(words("queue show ''"), IsEmpty());
}

// The script's function as bash calls it, with the line split as bash splits it.
class bash : public completed
{
protected:
    static std::vector<std::string> reply(const std::string &words)
    {
        std::ofstream("/tmp/complete.bash") << "apconf() { " APCONF_TOOL
                                               " \"$@\"; }\n"
                                               "compopt() { echo \"compopt $*\"; }\n"
                                               "source " APCONF_SOURCE_DIR
                                               "/completions/bash/apconf\n"
                                               "COMP_WORDS=(apconf " +
                                                   words +
                                                   ")\n"
                                                   "COMP_CWORD=$((${#COMP_WORDS[@]} - 1))\n"
                                                   "_apconf\n"
                                                   "[ ${#COMPREPLY[@]} = 0 ] || printf '%s\\n' \"${COMPREPLY[@]}\"\n";
        EXPECT_EQ(system("bash --norc /tmp/complete.bash >/tmp/reply 2>/tmp/reply.errors"), 0);
        EXPECT_EQ(content("/tmp/reply.errors"), "");
        return lines_of(content("/tmp/reply"));
    }
};

TEST_F(bash, completes_subcommands_options_and_paths)
{
    EXPECT_THAT(reply("she"), ElementsAre("shell"));
    EXPECT_THAT(reply("get --js"), ElementsAre("--json"));
    EXPECT_THAT(reply("get \"'radio[0]/chan\""), ElementsAre("radio[0]/channel_cmd")) << "behind an open quote";
    EXPECT_THAT(reply("get config/nt"), ElementsAre("compopt -o nospace", "config/ntp/"));
}

TEST_F(bash, completes_behind_the_signs_where_it_splits_words)
{
    EXPECT_THAT(reply("set radio/short_gi_cmd stat"), ElementsAre("compopt -o nospace", "status="));
    EXPECT_THAT(reply("set radio/short_gi_cmd status ="), ElementsAre("enable", "disable"));
    EXPECT_THAT(reply("set radio/short_gi_cmd status = en"), ElementsAre("enable"));
    EXPECT_THAT(reply("set radio/short_gi_cmd status = enable ''"), ElementsAre("compopt -o nospace", "radio_id="));
    EXPECT_THAT(reply("set 'radio[0]/bss[0]/access_list/mac_acl_cmd' mac = 02 : 00 : 00 ''"), Not(Contains("mac=")));
}

TEST_F(bash, leaves_files_to_the_shell)
{
    EXPECT_THAT(reply("commit x"), ElementsAre("compopt -o default"));
}

TEST_F(bash, works_where_people_type)
{
    std::ofstream("/tmp/bashrc") << "PS1='$ '\napconf() { " APCONF_TOOL
                                    " \"$@\"; }\n"
                                    "source " APCONF_SOURCE_DIR "/completions/bash/apconf\n";
    terminal_process shell("env INPUTRC=/dev/null bash --noprofile --rcfile /tmp/bashrc -i");
    shell.expect_cursor_behind("$ ");
    shell.type("apconf se\t");
    shell.expect_cursor_behind("$ apconf set ");
    shell.type("radio[0\tsho\tg\t");
    shell.expect_cursor_behind("$ apconf set radio[0]/short_gi_cmd ");
    shell.type("st\td\t");
    shell.expect_cursor_behind("$ apconf set radio[0]/short_gi_cmd status=disable ");
}

// The script with what zsh's completion system would give it.
TEST_F(completed, zsh_gets_words_with_their_help)
{
    const auto reply = [](const std::string &words, const std::string &prefix) {
        std::ofstream("/tmp/complete.zsh") << "_call_program() { shift; eval \"$*\" }\n"
                                              "apconf() { " APCONF_TOOL
                                              " \"$@\" }\n"
                                              "_files() { print files }\n"
                                              "compadd() { print -r -- \"$1\" \"$2\" ${(P)@[-1]} }\n"
                                              "words=(apconf " +
                                                  words + " '" + prefix + "'); CURRENT=${#words}; PREFIX='" + prefix +
                                                  "'\n"
                                                  "asked_function() { source " APCONF_SOURCE_DIR
                                                  "/completions/zsh/_apconf }\nasked_function\n";
        EXPECT_EQ(system("zsh -f /tmp/complete.zsh >/tmp/reply 2>/tmp/reply.errors"), 0);
        EXPECT_EQ(content("/tmp/reply.errors"), "");
        return lines_of(content("/tmp/reply"));
    };
    EXPECT_THAT(reply("", "she"), ElementsAre("-l -d shell", "-S "));
    EXPECT_THAT(reply("get", "radio\\[0\\]/bs"), ElementsAre("-l -d", "-S  radio[0]/bss/ radio[0]/bss["));
    EXPECT_THAT(reply("set radio/short_gi_cmd radio_id=0", ""), ElementsAre("-l -d", "-S  status="));
    EXPECT_THAT(reply("commit", ""), ElementsAre("files"));
}

}  // namespace

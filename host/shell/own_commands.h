// The commands of a session itself, beside those of the vocabulary: show, commit, exit and so on.
#pragma once

#include <string>
#include <vector>

#include "shell/line_filter.h"
#include "shell/offer.h"

namespace apconf_host
{

struct own_command {
    enum class action {
        show,
        show_changes,
        show_json,
        commit,
        commit_to_be_confirmed,
        confirm,
        discard,
        history,
        help,
        exit,
        end,
        quit
    };
    action what;
    std::vector<std::string> words;
    const char *help;     // a key of the help file, or a text
    bool prints = false;  // pipes may follow
    bool takes_seconds = false;
};

const std::vector<own_command> &own_commands();

// A line as far as it is one of these commands.
struct own_match {
    const own_command *command = nullptr;
    struct filter {
        const filter_kind *kind;
        std::string expression;  // may hold blanks; a pipe between blanks ends it
        size_t column;
    };
    std::vector<filter> filters;
    int seconds = 0;
    bool complete = false;        // the line may end where it does
    size_t place = 0;             // the first word that does not fit, or the number of words
    std::vector<offer> expected;  // what fits there
};

own_match match_own(const std::vector<word> &words);

// The line begins with the first word of one of them.
bool is_own(const std::vector<word> &words);

// All of them with their help, for people.
std::string own_help(size_t width);

}  // namespace apconf_host

// Recognises one command line in a package: which command it is, what its arguments say, and what could stand at each
// place. Reading files, completion and inline help all ask here.
#pragma once

#include <string>
#include <vector>

#include "cli/vocabulary.h"
#include "cli/words.h"
#include "json.h"

namespace apconf_host
{

// One thing that could stand at a place of a line.
struct expected_word {
    std::string text = {};                    // a fixed word; empty: a value of `item`
    const syntax_item *item = nullptr;        // null: a command's word, or the end of the line
    const syntax_command *command = nullptr;  // the command that this word belongs to; null: "no" or the end
    bool end = false;                         // the line may end here
    bool last_command_word = false;           // of a command's words: the last one, so `command->help` tells it

    // "A.B.C.D", "<0-255>", "enable", "<cr>"; for people, in lists.
    std::string token() const;
    // The help text of the item or command, from the loaded help map.
    std::string help() const;
};

struct line_match {
    const syntax_command *command = nullptr;  // null: not recognised
    bool removes = false;                     // "no"
    json_ptr arguments;  // with ".OPT" where it removes; keys in the block's order; of a package: its INDEX
                         // object, or null when it has none
    // Without a match: the word that does not fit, or the number of words when more are needed, and what fits there.
    size_t wrong_word = 0;
    std::vector<expected_word> expected;

    explicit operator bool() const { return command != nullptr; }
};

// The line as a command or sub-package of `package`.
line_match match_line(const syntax_command &package, const std::vector<word> &words);

// What can follow the words in `package`; empty when they fit nothing. With no words: the commands and "no".
std::vector<expected_word> what_follows(const syntax_command &package, const std::vector<word> &words);

// The command words at the beginning of the line (after "no") are those of a command in `package`.
bool knows_command(const syntax_command &package, const std::vector<word> &words);

// What a value must be, in words: "a UINT from 1 to 255".
std::string accepted(const syntax_command &command, const syntax_item &item);

}  // namespace apconf_host

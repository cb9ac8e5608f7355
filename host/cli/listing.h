// What the library prints about a vocabulary, for a part of it. The library reads files, so it gets one in memory that
// holds nothing but the part.
#pragma once

#include <string>
#include <vector>

#include "cli/vocabulary.h"

namespace apconf_host
{

enum class extent {
    itself,          // of a package: its own line
    with_what_below  // and those of everything in it
};

// The syntax lines of a command or package, as cli_list prints them: the "no" form first when there is one.
std::vector<std::string> syntax_lines(const vocabulary &vocabulary, const syntax_command &command, extent extent);

// A help key of the command-tree file.
struct help_line {
    std::string key;
    std::string text;  // empty: the help file has none

    std::string printed() const;  // as help_dump prints it
};

// The help keys of a command or package and of what is below, each once, as help_dump finds them in
// /etc/cmd_tree_help.txt. Empties the loaded help map.
std::vector<help_line> help_lines(const vocabulary &vocabulary, const syntax_command &command);

// The keys that a front end uses itself. Empties the loaded help map.
std::vector<help_line> front_end_help();

}  // namespace apconf_host

// The manual pages as the tests read them: their mdoc source, not what is printed of it.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

namespace apconf_test
{

// How a subcommand is called: by its --help, or by the heading of its entry in a manual page.
struct call_form {
    std::set<std::string> options;    // "--json", "-n"
    std::set<std::string> arguments;  // "PATH", "KEY=VALUE"
    bool operator==(const call_form &) const = default;
};

// A subcommand's entry: between ".It Xo" and ".Xc" stand its name, options and arguments.
struct manual_entry {
    call_form heading;
    std::set<std::string> described;  // options that an item of the entry explains
};

struct manual_page {
    std::map<std::string, manual_entry> entries;
    std::set<std::string> described;  // options that an item outside the entries explains
};

manual_page read_manual(const std::string &source);

// An example, and what the comment above it says that is to be done with it.
struct manual_example {
    std::string instruction;  // empty: none
    std::string text;
};

std::vector<manual_example> manual_examples(const std::string &source);

// The words behind a macro, wherever it stands: all of "Fn name" for "Fn".
std::set<std::string> words_behind(const std::string &source, const std::string &macro);

// What --help prints, and the names of the subcommands there.
struct help_text {
    call_form form;
    std::vector<std::string> subcommands;
};

help_text read_help(const std::string &text);

}  // namespace apconf_test

// Everything that there is to know about one command, put together from its description, the command-tree file and the
// help texts: what 'apconf describe' and the command reference show.
#pragma once

#include <string>
#include <vector>

#include "cli/vocabulary.h"

namespace apconf_host
{

struct choice_facts {
    std::string word;
    std::string help;
};

struct key_facts {
    std::string key;
    std::string ptype;
    std::string accepted;               // "a UINT from 1 to 255"
    std::string default_value;          // empty: none
    std::string help;                   // the text
    std::string source;                 // of the limits; empty: not given
    bool optional = false;              // on the command line, wherever it stands there
    bool secret = false;                // shown only when asked for
    bool selects = false;               // a "no" line names it
    std::vector<choice_facts> choices;  // of a parameter whose values have a help text each
};

struct command_facts {
    std::string path;  // "config/radio/bss/ssid_cmd"
    std::string help;
    std::string source;
    std::vector<std::string> set_lines;  // the syntax on the command line
    std::vector<std::string> no_lines;   // empty: it cannot be removed there
    std::string removal;                 // what "no" does
    std::vector<std::string> instances;  // the keys that choose the packages around it
    size_t entries = 0;                  // of a list, or instances of a package: at most so many; 0: it is neither
    std::string reported;                // when a get or commit shows it
    std::vector<key_facts> keys;         // in the order of the line
};

// Texts come from the loaded help map.
command_facts facts_of(const vocabulary &vocabulary, const syntax_command &command);

}  // namespace apconf_host

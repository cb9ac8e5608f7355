// Checks a command-tree file against everything that it must agree with: XML, its grammar, the compiled-in tree and
// descriptions, the ptypes, and its help file. What the loader would log and pass over comes out here as a fault.
#pragma once

#include <string>
#include <vector>

namespace apconf_host
{

struct schema_fault {
    std::string file;     // the command-tree file or the help file
    size_t line = 0;      // from 1
    std::string element;  // "config/radio/channel_cmd", "config/radio/channel_cmd channel" for its PARAM or BODY; of a
                          // help file: the key. May be empty
    std::string text;     // what is wrong, and what would be accepted
};

struct schema_text {
    std::string name;  // for faults
    std::string text;
};

struct schema_report {
    std::vector<schema_fault> faults;  // in the order of their lines, those of the help file last
    size_t packages = 0;               // elements that the tree knows
    size_t commands = 0;
};

// With a null `help`, help keys are not looked up. The tree must have been registered; it is not loaded.
schema_report check_schema(const schema_text &tree, const schema_text *help);

// "FILE:line: element: text".
std::string to_text(const schema_fault &fault);

}  // namespace apconf_host

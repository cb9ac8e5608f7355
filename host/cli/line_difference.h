// What changed between two configurations, as command lines.
#pragma once

#include <string>
#include <vector>

namespace apconf_host
{

// Command lines as they are and as they may be shown, line by line.
struct compared_lines {
    std::string real;
    std::string shown;
};

struct changed_line {
    char sign;         // '-' only before, '+' only after, ' ' a package around such lines
    std::string text;  // with its indentation
};

// The shortest list of lines to take out and put in, each below the packages that it stands in. Empty: no difference.
std::vector<changed_line> line_difference(const compared_lines &before, const compared_lines &after);

}  // namespace apconf_host

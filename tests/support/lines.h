// Texts as their lines.
#pragma once

#include <sstream>
#include <string>
#include <vector>

namespace apconf_test
{

inline std::vector<std::string> lines_of(const std::string &text)
{
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

}  // namespace apconf_test

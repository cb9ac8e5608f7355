// Lists of words as one text.
#pragma once

#include <string>
#include <vector>

namespace apconf_host
{

inline std::string joined(const std::vector<std::string> &words, const std::string &separator = ", ")
{
    std::string text;
    for (size_t i = 0; i < words.size(); ++i) text += (i ? separator : "") + words[i];
    return text;
}

}  // namespace apconf_host

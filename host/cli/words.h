// A command line as words: separated by blanks, in double quotes where they hold what would separate them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace apconf_host
{

struct word {
    std::string text;
    size_t column = 0;    // where it begins in the line, in bytes from 0
    bool quoted = false;  // stood in quotes: never a fixed word
};

struct split_line {
    std::vector<word> words;
    bool ends_in_word = false;  // nothing separates the last word from what would be typed next
    bool open_quote = false;    // a quote that is not closed
    size_t error_column = 0;    // of the open quote or of a bad escape
    bool bad_escape = false;

    bool ok() const { return !open_quote && !bad_escape; }
};

// Escapes in quotes: \" \\ \n \r \t and \xHH. A line whose first word begins with "!" or "#" is a comment: no words.
split_line split_words(std::string_view line);

// The value as a word: in quotes where it needs them.
std::string quoted(std::string_view value);

}  // namespace apconf_host

// What can stand at a place of a line, as completion types it and inline help shows it.
#pragma once

#include <string>
#include <vector>

#include "cli/matching.h"

namespace apconf_host
{

struct offer {
    std::vector<std::string> words = {};  // what completion can type; empty: a value of one's own, or the line's end
    std::string token;                    // "channel", "<20-1000>", "<cr>"
    std::string help = {};
    bool end = false;      // the line may end here
    bool several = false;  // values joined by commas
};

offer offer_of(const expected_word &expected);

// A fixed word; `help` is a key of the help file or a text.
offer offer_of_word(const std::string &word, const char *help);

offer line_end();

// The offers that what has been typed of the word so far leaves, each with the words that it leaves.
std::vector<offer> fitting(const std::vector<offer> &offers, const std::string &typed);

// The words of all offers, each once: fixed words sorted, then the values of types in the types' own order.
std::vector<std::string> words_of(const std::vector<offer> &offers);

// Rows of token and help, sorted, the line's end last. Lines are broken at `width` columns.
std::string help_rows(const std::vector<offer> &offers, size_t width);

// Words in columns, read downwards.
std::string in_columns(const std::vector<std::string> &words, size_t width);

}  // namespace apconf_host

// What can stand at a place of a line, as completion types it and inline help shows it.
#include "shell/offer.h"

#include <algorithm>
#include <set>

#include "expectation.h"

namespace apconf_host
{

namespace
{

bool holds_several(const syntax_item &item)
{
    return item.field->kind == APCONF_FIELD_VALUES || item.field->kind == APCONF_FIELD_LIST;
}

// Breaks at blanks, so that no line is longer than `width` where that can be. Lines after the first are indented.
std::string wrapped(const std::string &text, size_t indent, size_t width)
{
    const size_t room = width > indent + 20 ? width - indent : 20;
    std::string result;
    size_t at = 0;
    while (text.size() - at > room) {
        size_t blank = text.rfind(' ', at + room);
        if (blank == std::string::npos || blank <= at) blank = text.find(' ', at);
        if (blank == std::string::npos) break;
        result += text.substr(at, blank - at) + "\n" + std::string(indent, ' ');
        at = blank + 1;
    }
    return result + text.substr(at);
}

// The values of a type, when the token does not list them.
std::string values_in_words(const offer &offer)
{
    if (offer.words.size() < 2 || offer.token.find('|') != std::string::npos) return "";
    std::string text = "one of";
    for (const std::string &word : offer.words) text += (&word == &offer.words.front() ? " " : ", ") + word;
    return text;
}

// Where the words of several commands begin alike, one row; the help is that of the command that ends with this word.
void merge(std::vector<offer> &offers)
{
    std::stable_sort(offers.begin(), offers.end(), [](const offer &one, const offer &other) {
        if (one.end != other.end) return other.end;
        return one.token < other.token;
    });
    std::vector<offer> merged;
    for (const offer &one : offers) {
        if (merged.empty() || merged.back().token != one.token)
            merged.push_back(one);
        else if (merged.back().help.empty())
            merged.back().help = one.help;
    }
    offers = std::move(merged);
}

}  // namespace

offer offer_of(const expected_word &expected)
{
    offer made{.token = expected.token(), .help = expected.help(), .end = expected.end};
    if (expected.end) return made;
    if (!expected.text.empty()) {
        made.words = {expected.text};
        return made;
    }
    made.words = tokens_of(static_cast<uint32_t>(expected.item->param->ptype));
    made.several = holds_several(*expected.item);
    if (!expected.item->default_value.empty())
        made.help += (made.help.empty() ? "" : "; ") + ("default " + expected.item->default_value);
    return made;
}

offer offer_of_word(const std::string &word, const char *help)
{
    return {.words = {word}, .token = word, .help = get_help_string(help)};
}

offer line_end()
{
    return offer_of(expected_word{.end = true});
}

std::vector<offer> fitting(const std::vector<offer> &offers, const std::string &typed)
{
    std::vector<offer> fit;
    for (const offer &whole : offers) {
        // A value of one's own may be anything.
        const bool own_value = whole.words.empty() && !whole.end;
        offer left = whole;
        const size_t comma = whole.several ? typed.rfind(',') : std::string::npos;
        const std::string before = comma == std::string::npos ? "" : typed.substr(0, comma + 1);
        for (std::string &word : left.words) word.insert(0, before);
        std::erase_if(left.words, [&](const std::string &word) { return !word.starts_with(typed); });
        if (own_value || !left.words.empty() || (whole.end && typed.empty())) fit.push_back(std::move(left));
    }
    return fit;
}

std::vector<std::string> words_of(const std::vector<offer> &offers)
{
    std::set<std::string> fixed;
    for (const offer &one : offers)
        if (one.words.size() == 1) fixed.insert(one.words.front());
    std::vector<std::string> words(fixed.begin(), fixed.end());
    for (const offer &one : offers)
        for (const std::string &word : one.words)
            if (std::find(words.begin(), words.end(), word) == words.end()) words.push_back(word);
    return words;
}

std::string help_rows(const std::vector<offer> &offers, size_t width)
{
    std::vector<offer> rows = offers;
    merge(rows);
    size_t widest = 0;
    for (const offer &row : rows) widest = std::max(widest, std::min<size_t>(row.token.size(), 30));
    const size_t indent = widest + 4;

    std::string text;
    for (const offer &row : rows) {
        text += "  " + row.token;
        std::string help = row.help;
        const std::string values = values_in_words(row);
        if (!values.empty()) help += (help.empty() ? "" : "; ") + values;
        if (!help.empty()) {
            text += row.token.size() > widest ? "\n" + std::string(indent, ' ')
                                              : std::string(indent - 2 - row.token.size(), ' ');
            text += wrapped(help, indent, width);
        }
        text += "\n";
    }
    return text;
}

std::string in_columns(const std::vector<std::string> &words, size_t width)
{
    size_t widest = 0;
    for (const std::string &word : words) widest = std::max(widest, word.size());
    const size_t columns = std::max<size_t>(1, width / (widest + 2));
    const size_t rows = (words.size() + columns - 1) / columns;
    std::string text;
    for (size_t row = 0; row < rows; ++row) {
        for (size_t i = row; i < words.size(); i += rows) {
            text += words[i];
            if (i + rows < words.size()) text += std::string(widest + 2 - words[i].size(), ' ');
        }
        text += "\n";
    }
    return text;
}

}  // namespace apconf_host

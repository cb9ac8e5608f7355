// The commands of a session itself, and how lines of them are recognised.
#include "shell/own_commands.h"

#include <algorithm>
#include <charconv>

#include "server/limits.h"

namespace apconf_host
{

namespace
{

constexpr auto most_seconds = static_cast<int>(limits::confirm_time.count());

bool is_fixed(const word &word, const std::string &text)
{
    return !word.quoted && word.text == text;
}

size_t words_in_common(const own_command &command, const std::vector<word> &words)
{
    size_t count = 0;
    while (count < command.words.size() && count < words.size() && is_fixed(words[count], command.words[count]))
        ++count;
    return count;
}

const filter_kind *find_filter(const word &word)
{
    for (const filter_kind &kind : filter_kinds())
        if (is_fixed(word, kind.name)) return &kind;
    return nullptr;
}

std::vector<offer> end_or_pipe(const own_command &command)
{
    std::vector<offer> expected = {line_end()};
    if (command.prints) expected.push_back(offer_of_word("|", "HELP_PIPE_FILTER_TYPE"));
    return expected;
}

std::vector<offer> filter_names()
{
    std::vector<offer> names;
    for (const filter_kind &kind : filter_kinds()) names.push_back(offer_of_word(kind.name, kind.help));
    return names;
}

// The command whose words these are, as far as any go.
void match_words(const std::vector<word> &words, own_match &match)
{
    for (const own_command &command : own_commands())
        match.place = std::max(match.place, words_in_common(command, words));
    for (const own_command &command : own_commands()) {
        if (words_in_common(command, words) < match.place) continue;
        const bool ends = command.words.size() == match.place;
        if (ends) match.command = &command;
        const std::vector<offer> expected =
            ends ? end_or_pipe(command)
                 : std::vector<offer>{offer_of_word(command.words[match.place],
                                                    command.words.size() == match.place + 1 ? command.help : "")};
        match.expected.insert(match.expected.end(), expected.begin(), expected.end());
    }
}

// The number that follows; false when it is none.
bool match_seconds(const std::vector<word> &words, own_match &match)
{
    match.expected = {offer{.token = "<1-" + std::to_string(most_seconds) + ">", .help = "Seconds"}};
    if (match.place == words.size()) return false;
    const std::string &text = words[match.place].text;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), match.seconds);
    const bool whole = error == std::errc() && end == text.data() + text.size();
    if (!whole || match.seconds < 1 || match.seconds > most_seconds) return false;
    ++match.place;
    match.expected = {line_end()};
    return true;
}

// One "| include REGEX"; false when it is not complete.
bool match_filter(const std::vector<word> &words, own_match &match)
{
    ++match.place;
    match.expected = filter_names();
    const filter_kind *kind = match.place < words.size() ? find_filter(words[match.place]) : nullptr;
    if (!kind) return false;
    ++match.place;
    match.expected = {offer{.token = "REGEX", .help = get_help_string("HELP_PIPE_REGEXPR")}};
    if (match.place == words.size()) return false;
    own_match::filter filter{kind, words[match.place].text, words[match.place].column};
    while (++match.place < words.size() && !is_fixed(words[match.place], "|"))
        filter.expression += " " + words[match.place].text;
    match.filters.push_back(std::move(filter));
    match.expected = end_or_pipe(*match.command);
    return true;
}

}  // namespace

const std::vector<own_command> &own_commands()
{
    using action = own_command::action;
    static const std::vector<own_command> commands = {
        {action::show, {"show"}, "HELP_SHOW_RUNNING_CONFIG", true},
        {action::show_changes, {"show", "changes"}, "HELP_SHOW_CONFIGUREHELP_PIPE", true},
        {action::show_json, {"show", "json"}, "Show the configuration in effect as JSON", true},
        {action::commit, {"commit"}, "HELP_COMMIT"},
        {.what = action::commit_to_be_confirmed,
         .words = {"commit", "confirm"},
         .help = "Apply them, and undo it all unless 'confirm' follows in time",
         .takes_seconds = true},
        {action::confirm, {"confirm"}, "Keep what was committed to be confirmed"},
        {action::discard, {"discard"}, "Forget the pending configuration changes"},
        {action::history, {"history"}, "Show the lines typed before, without those that hold a key or password", true},
        {action::help, {"help"}, "Show how this session is used", true},
        {action::exit, {"exit"}, "HELP_EXIT"},
        {action::end, {"end"}, "Leave all levels"},
        {action::quit, {"quit"}, "End the session"},
    };
    return commands;
}

own_match match_own(const std::vector<word> &words)
{
    own_match match;
    match_words(words, match);
    if (!match.command) return match;
    if (match.command->takes_seconds && !match_seconds(words, match)) return match;
    while (match.command->prints && match.place < words.size() && is_fixed(words[match.place], "|"))
        if (!match_filter(words, match)) return match;
    match.complete = match.place == words.size();
    return match;
}

bool is_own(const std::vector<word> &words)
{
    return !words.empty() && std::any_of(own_commands().begin(), own_commands().end(), [&](const own_command &command) {
        return is_fixed(words.front(), command.words.front());
    });
}

std::string own_help(size_t width)
{
    std::vector<offer> rows;
    for (const own_command &command : own_commands()) {
        std::string words;
        for (const std::string &word : command.words) words += (words.empty() ? "" : " ") + word;
        rows.push_back(offer_of_word(words, command.help));
    }
    return help_rows(rows, width);
}

}  // namespace apconf_host

// An interactive session without its terminal.
#include "shell/session.h"

#include <algorithm>
#include <sstream>

#include "arguments.h"
#include "cli/lines.h"
#include "expectation.h"
#include "secrets.h"
#include "tool/problem.h"

namespace apconf_host
{

namespace
{

constexpr const char *usage =
    "Lines such as 'hostname lobby' change a candidate; 'commit' makes it the configuration.\n"
    "'radio 0', then 'bss 1', enter a part of the configuration; the prompt shows where you stand, and a star while\n"
    "changes are uncommitted. 'no' before a line removes what it sets. Tab completes, ? shows what can stand there.\n"
    "Behind a pipe, regular expressions choose lines: show | include ssid | exclude guest\n\n";

size_t indentation_of(const std::string &line)
{
    return std::min(line.find_first_not_of(' '), line.size());
}

// One line to each path that a session prints for what no line can say; it reads as a comment.
std::string with_remarks(const line_text &lines)
{
    std::string text = lines.text;
    for (const unsayable &unsaid : lines.left_out)
        text += "! no line can say " + unsaid.path + " " + unsaid.value + ": " + unsaid.reason + "\n";
    return text;
}

// What stands inside the packages of the first `depth` levels, as if they were the top.
std::string inner_lines(const std::string &text, size_t depth)
{
    std::istringstream lines(text);
    std::string inner;
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("!"))
            inner += line + "\n";
        else if (indentation_of(line) >= depth)
            inner += line.substr(depth) + "\n";
    }
    return inner;
}

std::string as_text(const std::vector<refusal> &refusals)
{
    std::string text = "not committed:";
    for (const refusal &refusal : refusals) text += "\n" + to_text(refusal);
    return text;
}

size_t end_of(const split_line &split, size_t length)
{
    return split.ends_in_word ? length + 1 : length;
}

problem unfinished_or_wrong(const own_match &match, const split_line &split, size_t length)
{
    const bool at_end = match.place >= split.words.size();
    problem problem;
    problem.column = at_end ? end_of(split, length) : split.words[match.place].column;
    problem.text = at_end ? "the line is not complete" : "'" + split.words[match.place].text + "' does not fit";
    std::vector<std::string> choices;
    for (const offer &offer : match.expected) choices.push_back(offer.end ? "the end of the line" : offer.token);
    for (size_t i = 0; i < choices.size(); ++i)
        problem.text += (i == 0 ? "; expected is " : i + 1 == choices.size() ? " or " : ", ") + choices[i];
    return problem;
}

std::string common_beginning(const std::vector<std::string> &words)
{
    std::string common = words.front();
    for (const std::string &word : words) {
        const auto differs = std::mismatch(common.begin(), common.end(), word.begin(), word.end());
        common.erase(differs.first, common.end());
    }
    return common;
}

// The words before the one at the cursor, and as much of that one as is typed.
struct cursor_place {
    std::vector<word> words;
    std::string typed;
    bool in_quotes = false;
};

cursor_place place_of_cursor(const std::string &line)
{
    split_line split = split_words(line);
    cursor_place place{std::move(split.words), "", !split.ok()};
    if (!split.ends_in_word || place.words.empty()) return place;
    place.in_quotes = place.in_quotes || place.words.back().quoted;
    place.typed = place.words.back().text;
    place.words.pop_back();
    return place;
}

}  // namespace

session::session(const vocabulary &vocabulary, access_point &access_point)
    : vocabulary_(vocabulary), access_point_(access_point), reader_(vocabulary)
{
}

reply session::execute(const std::string &line)
{
    reply reply;
    try {
        reply = run(line);
    } catch (const refused_by_schema &refused) {
        reply.wrong = problem{std::nullopt, as_text(refused.refusals)};
    } catch (const std::exception &failed) {
        reply.wrong = problem{std::nullopt, failed.what()};
    }
    if (reply.keepable) history_.push_back(line);
    return reply;
}

reply session::run(const std::string &line)
{
    if (const size_t nul = line.find('\0'); nul != std::string::npos) {
        faulty_ = true;
        return {.output = "", .wrong = problem{nul, "a NUL byte; expected is text"}};
    }
    const split_line split = split_words(line);
    if (split.ok() && split.words.empty()) return {};
    if (!split.ok() || !is_own(split.words)) return read(line, split);
    const bool leaves = split.words.size() == 1 && split.words[0].text == "exit";
    if (!leaves) return run_own(split, line.size());
    leave(indentation_of(line));
    return {.output = "", .keepable = true};
}

reply session::run_own(const split_line &split, size_t length)
{
    const own_match match = match_own(split.words);
    if (!match.complete) return {.output = "", .wrong = unfinished_or_wrong(match, split, length)};
    std::vector<line_filter> filters;
    for (const auto &[kind, expression, column] : match.filters) {
        try {
            filters.emplace_back(*kind, expression);
        } catch (const bad_expression &bad) {
            return {.output = "", .wrong = problem{column, bad.what()}};
        }
    }
    std::string output = output_of(match);
    for (const line_filter &filter : filters) output = filter.apply(output);
    return {.output = output, .keepable = true};
}

std::string session::output_of(const own_match &match)
{
    switch (match.command->what) {
        case own_command::action::show:
            return show();
        case own_command::action::show_changes:
            return show_changes();
        case own_command::action::show_json:
            return show_json();
        case own_command::action::commit:
        case own_command::action::commit_to_be_confirmed:
            return commit(match.seconds);
        case own_command::action::confirm:
            return access_point_.confirm();
        case own_command::action::discard:
            return discard();
        case own_command::action::help:
            return usage + own_help(width_);
        case own_command::action::history: {
            std::string text;
            for (const std::string &line : history_) text += line + "\n";
            return text;
        }
        case own_command::action::exit:
            break;
        case own_command::action::end:
            reader_.end();
            base_ = 0;
            indented_ = false;
            break;
        case own_command::action::quit:
            ended_ = true;
            break;
    }
    return "";
}

std::string session::show() const
{
    const json_ptr running = tidied(access_point_.running(reader_.path()).get());
    return inner_lines(with_remarks(to_lines(vocabulary_, running.get(), secrets::hidden)), reader_.place().size());
}

std::string session::show_json() const
{
    const json_ptr running = tidied(access_point_.running(reader_.path()).get());
    mask_secrets(running.get());
    return std::string(json_object_to_json_string_ext(
               running.get(), JSON_C_TO_STRING_PRETTY | JSON_C_TO_STRING_SPACED | JSON_C_TO_STRING_NOSLASHESCAPE)) +
           "\n";
}

std::string session::show_changes() const
{
    return with_remarks(to_lines(vocabulary_, reader_.changes().get(), secrets::hidden));
}

std::string session::commit(int seconds)
{
    if (faulty_) throw failure("not committed: a line before was refused; 'discard' forgets the others too");
    if (!has_changes()) return "There are no changes to commit.\n";
    const json_ptr batch = reader_.changes();
    const committed done =
        seconds > 0 ? access_point_.commit_to_be_confirmed(batch.get(), seconds) : access_point_.commit(batch.get());
    reader_.take();
    if (done.refused) throw failure(done.text.substr(0, done.text.find_last_not_of('\n') + 1));
    return done.text;
}

std::string session::discard()
{
    reader_.take();
    faulty_ = false;
    return "";
}

// `exit`: leaves the innermost package, or in an indented text the one that the line's indentation shows.
void session::leave(size_t indentation)
{
    const size_t depth = reader_.place().size();
    if (depth == 0) {
        ended_ = true;
        return;
    }
    const size_t shown = base_ + indentation;
    const bool at_shown = (indented_ || indentation > 0) && shown <= depth;
    reader_.read_indented(std::string(at_shown ? shown : depth, ' ') + "exit");
}

void session::pause()
{
    faulty_ = false;
    indented_ = false;
}

// The package that a line belongs to. Pasted text shows it by its indentation, and there a line without any belongs
// where the text began; else it is the innermost package that knows the line's first words.
size_t session::depth_of(const split_line &split, size_t indentation) const
{
    const size_t innermost = reader_.place().size();
    const size_t shown = base_ + indentation;
    if ((indentation > 0 || indented_) && shown <= innermost && knows_command(package_at(shown), split.words))
        return shown;
    for (size_t depth = innermost; depth > 0; --depth)
        if (knows_command(package_at(depth), split.words)) return depth;
    return knows_command(package_at(0), split.words) ? 0 : innermost;
}

const syntax_command &session::package_at(size_t depth) const
{
    const auto packages = reader_.packages();
    return *packages[packages.size() - 1 - depth];
}

reply session::read(const std::string &line, const split_line &split)
{
    const size_t indentation = indentation_of(line);
    const size_t depth = split.ok() ? depth_of(split, indentation) : reader_.place().size();
    const line_match match = match_line(package_at(depth), split.words);
    const bool secret = match && has_secret(*match.command->command);
    auto wrong = reader_.read_indented(std::string(depth, ' ') + line.substr(indentation));
    if (wrong) wrong->column += indentation - depth;
    if (wrong) {
        faulty_ = true;
        return {.output = "", .wrong = explain(*wrong, split)};
    }
    if (match.removes && match.command->is_package()) reader_.exit();
    indented_ = indentation > 0 || (indented_ && depth == base_);
    if (indentation == 0) base_ = depth;
    return {.output = "", .keepable = !secret};
}

// A first word that fits nothing is answered shortly: most of a package's commands would be expected there.
problem session::explain(const line_problem &wrong, const split_line &split) const
{
    if (!split.ok() || wrong.column != split.words.front().column) return {wrong.column, wrong.text};
    std::vector<std::string> names;
    for (const offer &offer : offers({}, ""))
        for (const std::string &word : offer.words) names.push_back(word);
    const std::string &typed = split.words.front().text;
    const std::string like = nearest(typed, names);
    const std::string remedy = like.empty() ? "? shows what can stand there" : "perhaps '" + like + "'";
    return {wrong.column, "'" + typed + "' is no command here; " + remedy};
}

std::string session::prompt() const
{
    std::string labels;
    for (const std::string &label : reader_.place()) labels += (labels.empty() ? "" : ", ") + label;
    return "apconf" + (labels.empty() ? "" : "(" + labels + ")") + (has_changes() ? "*> " : "> ");
}

// Of the innermost package that offers anything, so that what a line would do there hides the same words further out.
std::vector<offer> session::offers(const std::vector<word> &words, const std::string &typed) const
{
    std::vector<offer> own;
    if (words.empty() || is_own(words)) {
        const own_match match = match_own(words);
        if (match.place == words.size()) own = fitting(match.expected, typed);
        if (!words.empty()) return own;
    }
    for (const syntax_command *package : reader_.packages()) {
        std::vector<offer> all;
        for (const expected_word &expected : what_follows(*package, words)) all.push_back(offer_of(expected));
        std::vector<offer> fit = fitting(all, typed);
        if (fit.empty()) continue;
        fit.insert(fit.end(), own.begin(), own.end());
        return fit;
    }
    return own;
}

completion session::complete(const std::string &line) const
{
    const cursor_place place = place_of_cursor(line);
    if (place.in_quotes) return {};
    const std::vector<offer> found = offers(place.words, place.typed);
    completion result;
    std::vector<std::string> &words = result.candidates = words_of(found);
    if (words.empty()) {
        result.help = help_rows(found, width_);
        return result;
    }
    // A word that may as well be left out is not typed unasked.
    const bool asked = !place.typed.empty() || found.size() == 1;
    if (asked) result.insertion = common_beginning(words).substr(place.typed.size());
    if (asked && words.size() == 1) result.insertion += " ";
    if (!result.insertion.empty()) words.clear();
    return result;
}

std::string session::inline_help(const std::string &line) const
{
    const cursor_place place = place_of_cursor(line);
    const std::vector<offer> found = offers(place.words, place.typed);
    return found.empty() ? "  nothing fits here: what stands before is no command\n" : help_rows(found, width_);
}

void session::remember(const std::vector<std::string> &lines)
{
    history_.insert(history_.end(), lines.begin(), lines.end());
}

}  // namespace apconf_host

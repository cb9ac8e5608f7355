// Reads command lines into a message: finds the package that each belongs to and adds what it says there.
#include "cli/line_reader.h"

#include <algorithm>
#include <sstream>

#include "expectation.h"
#include "secrets.h"

namespace apconf_host
{

namespace
{

// Puts one more value under `key`: of several an array.
void add_to(json_object *object, const char *key, json_object *value)
{
    json_object *present = json_object_get(member(object, key));
    add_json_obj(&present, value);
    json_object_object_add(object, key, present);
}

bool is_removal(json_object *index)
{
    return member(index, ".OPT") != nullptr;
}

std::string label_of(const syntax_command &package, json_object *index)
{
    std::string label = package.line_words();
    if (!index) return label;
    json_object_object_foreach(index, key, value)
    {
        if (std::string(key) != ".OPT") label += " " + quoted(shown(value));
    }
    return label;
}

std::string or_list(const std::vector<std::string> &choices)
{
    constexpr size_t most = 12;
    std::string text;
    for (size_t i = 0; i < choices.size() && i < most; ++i)
        text += (i == 0 ? "" : i + 1 == choices.size() ? " or " : ", ") + choices[i];
    return choices.size() > most ? text + ", ..." : text;
}

bool expects_secret(const line_match &match)
{
    return std::any_of(match.expected.begin(), match.expected.end(), [](const expected_word &expected) {
        return expected.text.empty() && expected.item && (expected.item->field->flags & APCONF_FIELD_SECRET);
    });
}

// "channel 'fast': expected is ..." of a line that matches nothing in `package`.
line_problem explain(const line_match &match, const split_line &line, size_t length)
{
    line_problem problem;
    const bool at_end = match.wrong_word >= line.words.size();
    problem.column = at_end ? length : line.words[match.wrong_word].column;
    std::vector<std::string> choices;
    std::vector<std::string> names;
    for (const expected_word &expected : match.expected) {
        std::string choice = expected.end ? "the end of the line" : expected.text;
        if (!expected.end && expected.text.empty())
            choice = accepted(*expected.command, *expected.item) + " (" + expected.item->name + ")";
        if (!expected.text.empty()) names.push_back(expected.text);
        if (std::find(choices.begin(), choices.end(), choice) == choices.end()) choices.push_back(choice);
    }
    const std::string like = at_end ? "" : nearest(line.words[match.wrong_word].text, names);
    const std::string typed = at_end ? "" : expects_secret(match) ? masked_secret : line.words[match.wrong_word].text;
    problem.text = at_end ? "the line is not complete" : "'" + typed + "' does not fit";
    problem.text += "; expected is " + or_list(choices);
    if (!at_end && line.words[match.wrong_word].text == masked_secret)
        problem.text += "; *** stands for a secret that was not shown, --secrets shows it";
    if (!like.empty() && choices.size() > 1) problem.text += "; perhaps '" + like + "'";
    return problem;
}

// An object of a package in which nothing is set, removed or created.
bool says_nothing(const syntax_command &package, json_object *object)
{
    json_object *index = member(object, "INDEX");
    if (is_removal(index) || package.command->variant == APCONF_LIST_NODE) return false;
    for (const auto &command : package.below) {
        json_object *value = member(object, command->node->name);
        if (value && !command->is_package()) return false;
        int cursor = 0;
        while (json_object *instance = get_json_obj(value, &cursor))
            if (!says_nothing(*command, instance)) return false;
    }
    return true;
}

void drop_entered(const syntax_command &package, json_object *object)
{
    for (const auto &command : package.below) {
        const char *name = command->node->name;
        if (!command->is_package() || !member(object, name)) continue;
        json_object *kept = nullptr;
        int cursor = 0;
        while (json_object *instance = get_json_obj(member(object, name), &cursor)) {
            if (says_nothing(*command, instance)) continue;
            drop_entered(*command, instance);
            add_json_obj(&kept, json_object_get(instance));
        }
        if (kept)
            json_object_object_add(object, name, kept);
        else
            json_object_object_del(object, name);
    }
}

size_t indentation(const std::string &line)
{
    const size_t blanks = line.find_first_not_of(' ');
    return blanks == std::string::npos ? 0 : blanks;
}

bool is_single(const split_line &line, const char *word)
{
    return line.words.size() == 1 && !line.words[0].quoted && line.words[0].text == word;
}

}  // namespace

line_reader::line_reader(const vocabulary &vocabulary)
{
    levels_.push_back({&vocabulary.config(), nullptr, nullptr, "", vocabulary.config().path});
}

std::optional<line_problem> line_reader::read(const std::string &line)
{
    return read_words(split_words(line), levels_.size() - 1, 0);
}

std::optional<line_problem> line_reader::read_indented(const std::string &line)
{
    const split_line split = split_words(line);
    if (split.words.empty() && split.ok()) return read_words(split, levels_.size() - 1, 0);
    const size_t depth = indentation(line);
    if (depth >= levels_.size())
        return line_problem{depth, "the line is indented by " + std::to_string(depth) +
                                       " blanks; expected is at most " + std::to_string(levels_.size() - 1) +
                                       ": one for each package around it"};
    return read_words(split, depth, depth);
}

std::optional<line_problem> line_reader::read_words(const split_line &line, size_t innermost, size_t outermost)
{
    last_path_.clear();
    if (line.open_quote) return line_problem{line.error_column, "the quote is not closed"};
    if (line.bad_escape)
        return line_problem{line.error_column, "unknown escape; expected is one of \\\\ \\\" \\n \\r \\t \\xHH"};
    if (line.words.empty()) return std::nullopt;
    if (is_single(line, "end")) return end(), std::nullopt;
    if (is_single(line, "exit")) return leave_below(innermost), exit(), std::nullopt;

    size_t depth = innermost;
    while (depth > outermost && !knows_command(*levels_[depth].package, line.words)) --depth;
    const bool known = knows_command(*levels_[depth].package, line.words);
    if (!known) depth = innermost;
    line_match match = match_line(*levels_[depth].package, line.words);
    if (!match) {
        const word &last = line.words.back();
        return explain(match, line, last.column + last.text.size() + (last.quoted ? 2 : 0) + 1);
    }
    leave_below(depth);
    if (match.command->is_package())
        enter(std::move(match));
    else
        add(std::move(match));
    return std::nullopt;
}

void line_reader::enter(line_match match)
{
    const level &around = levels_.back();
    level entered{match.command, std::move(match.arguments), nullptr, "", ""};
    entered.label = label_of(*match.command, entered.index.get());
    entered.path = around.path + "/" + match.command->node->name + in_brackets(entered.index.get());
    levels_.push_back(std::move(entered));
    last_path_ = levels_.back().path;
    instance(levels_.size() - 1);
}

void line_reader::add(line_match match)
{
    json_object *package = instance(levels_.size() - 1);
    add_to(package, match.command->node->name, match.arguments.release());
    last_path_ = levels_.back().path + "/" + match.command->node->name;
}

// The object of the package at `depth` in the message: an instance that is there is continued, unless it was removed.
json_object *line_reader::instance(size_t depth)
{
    level &here = levels_[depth];
    if (here.object) return here.object;
    if (depth == 0) {
        if (!message_) message_.reset(json_object_new_object());
        here.object = json_object_new_object();
        json_object_object_add(message_.get(), here.package->node->name, here.object);
        return here.object;
    }
    json_object *around = instance(depth - 1);
    const char *name = here.package->node->name;
    int cursor = 0;
    while (json_object *present = get_json_obj(member(around, name), &cursor)) {
        json_object *index = member(present, "INDEX");
        // What stands before a removal is not continued behind it.
        if (is_removal(index)) here.object = nullptr;
        if (!is_removal(here.index.get()) && json_object_equal(index, here.index.get())) here.object = present;
    }
    if (here.object) return here.object;
    here.object = json_object_new_object();
    if (here.index) json_object_object_add(here.object, "INDEX", json_object_get(here.index.get()));
    add_to(around, name, here.object);
    return here.object;
}

void line_reader::leave_below(size_t depth)
{
    levels_.resize(std::min(depth + 1, levels_.size()));
}

void line_reader::exit()
{
    if (levels_.size() > 1) levels_.pop_back();
}

void line_reader::end()
{
    leave_below(0);
}

const syntax_command &line_reader::package() const
{
    return *levels_.back().package;
}

std::vector<std::string> line_reader::place() const
{
    std::vector<std::string> labels;
    for (size_t i = 1; i < levels_.size(); ++i) labels.push_back(levels_[i].label);
    return labels;
}

std::vector<const syntax_command *> line_reader::packages() const
{
    std::vector<const syntax_command *> packages;
    for (auto around = levels_.rbegin(); around != levels_.rend(); ++around) packages.push_back(around->package);
    return packages;
}

bool line_reader::empty() const
{
    return says_nothing(*levels_.front().package, member(message_.get(), "config"));
}

json_ptr line_reader::changes() const
{
    json_object *copy = nullptr;
    json_object_deep_copy(message_.get(), &copy, nullptr);
    json_ptr changes(copy ? copy : json_object_new_object());
    if (json_object *config = member(changes.get(), "config"))
        drop_entered(*levels_.front().package, config);
    else
        json_object_object_add(changes.get(), "config", json_object_new_object());
    return changes;
}

json_ptr line_reader::take()
{
    for (level &open : levels_) open.object = nullptr;
    json_ptr taken = std::move(message_);
    if (!taken) taken.reset(json_object_new_object());
    if (!member(taken.get(), "config")) json_object_object_add(taken.get(), "config", json_object_new_object());
    return taken;
}

size_t line_of(const read_result &read, const std::string &path)
{
    const auto source = std::find_if(read.sources.begin(), read.sources.end(),
                                     [&path](const auto &candidate) { return candidate.first.starts_with(path); });
    return source == read.sources.end() ? 0 : source->second;
}

read_result read_lines(const vocabulary &vocabulary, const std::string &text)
{
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    const bool indented = std::any_of(lines.begin(), lines.end(), [](const std::string &line) {
        return indentation(line) > 0 && !split_words(line).words.empty();
    });

    line_reader reader(vocabulary);
    read_result result;
    for (size_t i = 0; i < lines.size(); ++i) {
        const auto problem = indented ? reader.read_indented(lines[i]) : reader.read(lines[i]);
        if (problem)
            result.problems.push_back({i + 1, problem->column + 1, problem->text});
        else if (!reader.last_path().empty())
            result.sources.emplace_back(reader.last_path(), i + 1);
    }
    if (result.problems.empty()) result.message = reader.take();
    return result;
}

}  // namespace apconf_host

// Recognises command lines: walks a command's items beside the words, trying every reading that the optional ones
// allow, and notes what would have fitted at each place.
#include "cli/matching.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <span>

#include "arguments.h"
#include "block.h"
#include "expectation.h"
#include "secrets.h"

namespace apconf_host
{

namespace
{

using kind = syntax_item::kind;

// The values of a field that holds several: one word, joined by commas.
std::vector<std::string> split_values(const std::string &text)
{
    std::vector<std::string> values;
    size_t begin = 0;
    for (size_t comma = text.find(','); comma != std::string::npos; comma = text.find(',', begin)) {
        values.push_back(text.substr(begin, comma - begin));
        begin = comma + 1;
    }
    values.push_back(text.substr(begin));
    return values;
}

bool holds_several(const apconf_field &field)
{
    return field.kind == APCONF_FIELD_VALUES || field.kind == APCONF_FIELD_LIST;
}

// The value as messages carry it; null when the word is none.
json_ptr value_of(const syntax_command &command, const syntax_item &item, const std::string &text)
{
    const apconf_field &field = *item.field;
    const auto fits = [&](const std::string &single) {
        const auto ptype = static_cast<uint32_t>(item.param->ptype);
        if (ptype == PTYPE_STRING || ptype == PTYPE_HEX_STR || ptype == PTYPE_BINARY)
            return check_ptype_string(ptype, single.c_str(), item.param->range) == 0;
        return convert_value(*command.node, field, single).has_value();
    };
    if (field.kind == APCONF_FIELD_OBJECT) {
        json_ptr object(json_tokener_parse(text.c_str()));
        return json_object_is_type(object.get(), json_type_object) ? std::move(object) : nullptr;
    }
    if (!holds_several(field)) return json_ptr(fits(text) ? json_object_new_string(text.c_str()) : nullptr);
    json_ptr values(json_object_new_array());
    for (const std::string &single : split_values(text)) {
        if (!fits(single)) return nullptr;
        json_object_array_add(values.get(), json_object_new_string(single.c_str()));
    }
    return values;
}

// What is shown instead of a secret is never taken for one.
bool stands_for_secret(const syntax_item &item, const word &word)
{
    return (item.field->flags & APCONF_FIELD_SECRET) && !word.quoted && word.text == masked_secret;
}

bool same_expectation(const expected_word &one, const expected_word &other)
{
    return one.text == other.text && one.item == other.item && one.end == other.end &&
           (!one.text.empty() || one.command == other.command);
}

// What would fit at the last place that any reading reaches.
class expectations
{
public:
    void add(size_t place, expected_word word)
    {
        if (place < place_) return;
        if (place > place_) words_.clear();
        place_ = place;
        const bool known =
            std::any_of(words_.begin(), words_.end(), [&](const auto &other) { return same_expectation(word, other); });
        if (!known) words_.push_back(std::move(word));
    }
    size_t place() const { return place_; }
    std::vector<expected_word> &words() { return words_; }

private:
    size_t place_ = 0;
    std::vector<expected_word> words_;
};

using item_list = std::span<const syntax_item>;

class matcher
{
public:
    matcher(const std::vector<word> &words, expectations &expected) : words_(words), expected_(expected) {}

    // The command's items from word number `first` on; false when they do not fit the line to its end.
    bool match(const syntax_command &command, size_t first, bool removes)
    {
        command_ = &command;
        selecting_only_ = removes && !command.is_package();
        values_.clear();
        return items(command.items, {first, nullptr}, [this](state at) { return line_ends(at); });
    }

    // A list whose "no" line names no entry: all of them.
    bool ends_after(size_t first) { return line_ends({first, nullptr}); }

    struct value {
        const syntax_item *item;
        std::string text;
    };
    const std::vector<value> &values() const { return values_; }

private:
    struct state {
        size_t place;                // the next word
        const syntax_item *pending;  // an optional word that stands before the next value
    };
    using then = std::function<bool(state)>;

    bool items(item_list list, state at, const then &next)
    {
        if (list.empty()) return next(at);
        const syntax_item &item = list.front();
        const item_list rest = list.subspan(1);
        const then others = [this, rest, &next](state after) { return items(rest, after, next); };
        if (selecting_only_ && !item.selects) return others(at);
        if (item.what == kind::word) return word_item(item, at, others);
        // The value may be left out only when there is another way to read the line.
        return value_item(item, at, others) || (item.optional && others(at));
    }

    bool word_item(const syntax_item &item, state at, const then &next)
    {
        if (item.optional) return items(item.items, {at.place, &item}, next);
        if (!fixed_word(item, item.name, at)) return false;
        return items(item.items, {at.place + 1, nullptr}, next);
    }

    bool value_item(const syntax_item &item, state at, const then &next)
    {
        if (at.pending) {
            if (!fixed_word(*at.pending, at.pending->name, at)) return false;
            at = {at.place + 1, nullptr};
        }
        return item.what == kind::choice ? choice(item, at, next) : plain_value(item, item, at, next);
    }

    bool choice(const syntax_item &item, state at, const then &next)
    {
        for (const syntax_item &chosen : item.items) {
            const size_t kept = values_.size();
            values_.push_back({&item, chosen.name});
            const bool matched = chosen.what == kind::word ? fixed_word(chosen, chosen.name, at) &&
                                                                 items(chosen.items, {at.place + 1, nullptr}, next)
                                                           : plain_value(chosen, chosen, at, next);
            if (matched) return true;
            values_.resize(kept);
        }
        return false;
    }

    bool plain_value(const syntax_item &item, const syntax_item &owner, state at, const then &next)
    {
        expect(at.place, {.item = &item, .command = command_});
        if (at.place >= words_.size() || stands_for_secret(item, words_[at.place])) return false;
        if (!value_of(*command_, item, words_[at.place].text)) return false;
        const size_t kept = values_.size();
        values_.push_back({&owner, words_[at.place].text});
        if (items(item.items, {at.place + 1, nullptr}, next)) return true;
        values_.resize(kept);
        return false;
    }

    bool fixed_word(const syntax_item &item, const std::string &text, state at)
    {
        expect(at.place, {.text = text, .item = &item, .command = command_});
        return at.place < words_.size() && !words_[at.place].quoted && words_[at.place].text == text;
    }

    bool line_ends(state at)
    {
        expect(at.place, {.command = command_, .end = true});
        return at.place == words_.size();
    }

    void expect(size_t place, expected_word word)
    {
        if (!word.item || !word.item->hidden) expected_.add(place, std::move(word));
    }

    const std::vector<word> &words_;
    expectations &expected_;
    const syntax_command *command_ = nullptr;
    bool selecting_only_ = false;
    std::vector<value> values_;
};

// What one value list says, in the order in which the block holds the keys.
json_ptr to_arguments(const syntax_command &command, const std::vector<matcher::value> &values)
{
    json_ptr unordered(json_object_new_object());
    for (const auto &[item, text] : values) {
        json_ptr value = item->what == kind::choice ? json_ptr(json_object_new_string(text.c_str()))
                                                    : value_of(command, *item, text);
        json_object_object_add(unordered.get(), item->name.c_str(), value.release());
    }
    json_ptr ordered(json_object_new_object());
    for (unsigned i = 0; i < command.command->field_count; ++i) {
        const char *key = command.command->fields[i].key;
        json_object *value = key ? member(unordered.get(), key) : nullptr;
        if (value) json_object_object_add(ordered.get(), key, json_object_get(value));
    }
    return ordered;
}

void set_option(json_object *arguments, const char *word)
{
    json_object_object_add(arguments, ".OPT", json_object_new_string(word));
}

bool is_fixed(const word &word, const std::string &text)
{
    return !word.quoted && word.text == text;
}

// One line against all commands of a package.
class line_matcher
{
public:
    line_matcher(const syntax_command &package, const std::vector<word> &words) : package_(package), words_(words)
    {
        removes_ = !words.empty() && is_fixed(words.front(), "no");
        first_ = removes_ ? 1 : 0;
    }

    line_match match()
    {
        for (const auto &command : package_.below)
            if (matches(*command)) return std::move(result_);
        if (!removes_) expected_.add(0, {.text = "no"});
        result_.wrong_word = expected_.place();
        result_.expected = std::move(expected_.words());
        return std::move(result_);
    }

    bool knows()
    {
        return std::any_of(package_.below.begin(), package_.below.end(), [this](const auto &command) {
            return (!removes_ || command->has_no) && match_words(*command);
        });
    }

    // All that any reading expects behind the given words.
    std::vector<expected_word> following()
    {
        for (const auto &command : package_.below) matches(*command);
        if (!removes_) expected_.add(0, {.text = "no"});
        if (expected_.place() != words_.size()) return {};
        return std::move(expected_.words());
    }

private:
    bool matches(const syntax_command &command)
    {
        return (!removes_ || command.has_no) && match_words(command) && match_items(command);
    }

    bool match_words(const syntax_command &command)
    {
        for (size_t i = 0; i < command.words.size(); ++i) {
            const size_t place = first_ + i;
            expected_.add(
                place,
                {.text = command.words[i], .command = &command, .last_command_word = i + 1 == command.words.size()});
            if (place >= words_.size() || !is_fixed(words_[place], command.words[i])) return false;
        }
        return true;
    }

    bool match_items(const syntax_command &command)
    {
        const size_t first = first_ + command.words.size();
        matcher matcher(words_, expected_);
        const bool selects = std::any_of(command.items.begin(), command.items.end(),
                                         [](const syntax_item &item) { return item.selects; });
        const bool all = removes_ && !command.is_package() && selects && matcher.ends_after(first);
        if (!all && !matcher.match(command, first, removes_)) return false;
        // What else could follow is still of interest to completion.
        if (all) matcher.match(command, first, removes_);
        result_.command = &command;
        result_.removes = removes_;
        result_.arguments = to_arguments(command, all ? std::vector<matcher::value>{} : matcher.values());
        if (command.is_package() && json_object_object_length(result_.arguments.get()) == 0) result_.arguments.reset();
        if (removes_) {
            if (!result_.arguments) result_.arguments.reset(json_object_new_object());
            set_option(result_.arguments.get(), all ? "noall" : "no");
        }
        return true;
    }

    const syntax_command &package_;
    const std::vector<word> &words_;
    bool removes_;
    size_t first_;
    expectations expected_;
    line_match result_;
};

std::string range_token(const syntax_item &item)
{
    const std::string &ptype = item.ptype;
    const bool text = ptype == "STRING" || ptype == "HEX_STR" || ptype == "BINARY";
    if (text) return ptype + (item.min.empty() && item.max.empty() ? "" : "<" + item.min + "-" + item.max + ">");
    if (!item.min.empty() || !item.max.empty()) return "<" + item.min + "-" + item.max + ">";
    return ptype;
}

}  // namespace

std::string expected_word::token() const
{
    if (end) return "<cr>";
    if (!text.empty()) return text;
    const std::string several = holds_several(*item->field) ? ",..." : "";
    switch (item->param->ptype) {
        case PTYPE_IPV4:
            return "A.B.C.D" + several;
        case PTYPE_IPV4_MASK:
            return "A.B.C.D/M" + several;
        case PTYPE_MAC_ADDR:
            return "HH:HH:HH:HH:HH:HH" + several;
        case PTYPE_TIME_HHMMSS:
            return "HH:MM:SS" + several;
        default: {
            const auto tokens = tokens_of(static_cast<uint32_t>(item->param->ptype));
            if (tokens.empty()) return range_token(*item) + several;
            std::string list;
            for (const auto &token : tokens) list += (list.empty() ? "(" : "|") + token;
            return (list.size() < 40 ? list + ")" : item->ptype) + several;
        }
    }
}

std::string expected_word::help() const
{
    if (end) return "end of the line";
    if (item) return item->help.empty() ? "" : get_help_string(item->help.c_str());
    if (!command) return get_help_string("HELP_NO");
    return last_command_word && !command->help.empty() ? get_help_string(command->help.c_str()) : "";
}

line_match match_line(const syntax_command &package, const std::vector<word> &words)
{
    return line_matcher(package, words).match();
}

std::vector<expected_word> what_follows(const syntax_command &package, const std::vector<word> &words)
{
    return line_matcher(package, words).following();
}

bool knows_command(const syntax_command &package, const std::vector<word> &words)
{
    return line_matcher(package, words).knows();
}

std::string accepted(const syntax_command &command, const syntax_item &item)
{
    return accepted_value(*command.node, *item.field);
}

}  // namespace apconf_host

#include "vocabulary/reading_rules.h"

#include <set>

#include "vocabulary/tree_file.h"

namespace apconf_test
{

namespace
{

// Walks a command's elements in the order in which a line names them.
class reader
{
public:
    std::vector<std::string> read(const xmlNode *line)
    {
        list(line, false);
        return std::move(problems_);
    }

private:
    // `selected`: a word before these elements stands in "no" lines, so what it announces must, too.
    void list(const xmlNode *parent, bool selected)
    {
        std::set<std::string> words;
        for (const xmlNode *element : elements_below(parent)) {
            const std::string name = attribute(element, "name");
            if (is_named(element, "PARAM"))
                bare(element);
            else if (!words.insert(name).second)
                report("the word " + name + " stands twice");
            else if (has_option(element, PARAM_OPTION_OPTIONAL))
                optional_word(element);
            else
                word(element);
            const bool selects = has_option(element, PARAM_OPTION_PINDEX);
            if (selected && !selects) report(name + " is not in the \"no\" line that its word is in");
        }
    }

    void bare(const xmlNode *param)
    {
        const std::string name = attribute(param, "name");
        if (has_option(param, PARAM_OPTION_OPTIONAL)) report(name + " may be left out and has no word");
        if (behind_optional_) report(name + " has no word and stands behind an optional one");
        value(param);
    }

    void word(const xmlNode *body)
    {
        behind_optional_ = false;
        const bool selected = has_option(body, PARAM_OPTION_PINDEX);
        for (const xmlNode *param : parameters(body))
            if (!selected && has_option(param, PARAM_OPTION_PINDEX))
                report(attribute(param, "name") + " is missing in the \"no\" line, because its word is");
        list(body, selected);
    }

    void optional_word(const xmlNode *body)
    {
        const auto inside = elements_below(body);
        const std::string name = attribute(body, "name");
        if (inside.size() != 1 || !is_named(inside[0], "PARAM")) return report(name + " announces not one PARAM");
        if (!has_option(inside[0], PARAM_OPTION_OPTIONAL)) report(name + " is optional, what it announces is not");
        if (has_option(body, PARAM_OPTION_PINDEX) != has_option(inside[0], PARAM_OPTION_PINDEX))
            report(name + " and what it announces differ in \"no\" lines");
        value(inside[0]);
        behind_optional_ = true;
    }

    void value(const xmlNode *param)
    {
        if (!has_option(param, PARAM_OPTION_LIST)) return list(param, false);
        check_alternatives(param);
        const bool before = behind_optional_;
        bool after = before;
        for (const xmlNode *choice : elements_below(param)) {
            behind_optional_ = before;
            list(choice, false);
            after = after || behind_optional_;
        }
        behind_optional_ = after;
    }

    void check_alternatives(const xmlNode *param)
    {
        std::set<std::string> words;
        const xmlNode *typed = nullptr;
        for (const xmlNode *choice : elements_below(param)) {
            const std::string name = attribute(choice, "name");
            if (is_named(choice, "BODY")) {
                if (!words.insert(name).second) report("the choice " + name + " stands twice");
            } else if (typed) {
                report("a value could be " + attribute(typed, "name") + " or " + name);
            } else {
                typed = choice;
            }
        }
        if (!typed) return;
        const int ptype = get_ptype_by_name(attribute(typed, "ptype").c_str());
        for (const std::string &word : words)
            if (convert_ptype_to_value(static_cast<uint32_t>(ptype), nullptr, word.c_str(), nullptr) == 0)
                report("the word " + word + " could be a value of " + attribute(typed, "name"));
    }

    void report(std::string problem) { problems_.push_back(std::move(problem)); }

    bool behind_optional_ = false;
    std::vector<std::string> problems_;
};

std::string words_of(const xmlNode *element)
{
    for (const xmlNode *child : elements_below(element))
        if (is_named(child, "INDEX")) return attribute(child, "cli_cmd");
    return attribute(element, "cli_cmd");
}

bool begins(const std::string &words, const std::string &others)
{
    return (others + " ").starts_with(words + " ");
}

}  // namespace

std::vector<std::string> ambiguities(const xmlNode *line)
{
    return reader().read(line);
}

std::vector<std::string> confusable_words(const xmlNode *package)
{
    std::vector<std::string> problems;
    for (const xmlNode *one : elements_below(package)) {
        if (is_named(one, "INDEX")) continue;
        const std::string words = words_of(one);
        for (const char *taken : {"no", "end", "exit"})
            if (begins(taken, words)) problems.push_back(words + " is taken");
        for (const xmlNode *other : elements_below(package))
            if (other != one && !is_named(other, "INDEX") && begins(words, words_of(other)))
                problems.push_back(words + " begins " + words_of(other));
    }
    return problems;
}

}  // namespace apconf_test

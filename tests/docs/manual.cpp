// Reads manual pages and the help of programs.
#include "docs/manual.h"

#include <gtest/gtest.h>

#include <cctype>
#include <sstream>

#include "docs/document.h"
#include "support/lines.h"

namespace apconf_test
{
namespace
{

std::vector<std::string> words_of(const std::string &line)
{
    std::istringstream stream(line);
    std::vector<std::string> words;
    for (std::string word; stream >> word;) words.push_back(word);
    return words;
}

bool is_macro(const std::string &word)
{
    return word.size() == 2 && isupper(static_cast<unsigned char>(word[0])) &&
           islower(static_cast<unsigned char>(word[1]));
}

// "Op Fl n , -newest Ar N": options; "Op Ar KEY=VALUE ...": an argument. That of an option is part of the option.
void add_words(const std::string &line, call_form &form, std::string &name)
{
    std::string macro;
    bool of_option = false;
    for (const std::string &word : words_of(line.substr(1))) {
        if (is_macro(word)) {
            macro = word;
            of_option = of_option || word == "Fl";
        } else if (word == "," || word == "...") {
            continue;
        } else if (macro == "Cm") {
            name += (name.empty() ? "" : " ") + word;
        } else if (macro == "Fl") {
            form.options.insert("-" + word);
        } else if (macro == "Ar" && !of_option) {
            form.arguments.insert(word);
        }
    }
}

std::string as_printed(const std::string &line)
{
    std::string text;
    for (size_t i = 0; i < line.size(); ++i) {
        if (line[i] != '\\' || i + 1 == line.size()) {
            text += line[i];
            continue;
        }
        ++i;
        EXPECT_TRUE(line[i] == 'e' || line[i] == '&' || line[i] == '-') << "escape in: " << line;
        if (line[i] == 'e') text += '\\';
        if (line[i] == '-') text += '-';
    }
    return text;
}

// "  -n,--newest N:INT in [1 - 9]=20  How many": the names.
std::set<std::string> option_names(const std::string &line)
{
    std::set<std::string> names;
    std::istringstream stream(words_of(line).front());
    for (std::string name; std::getline(stream, name, ',');) names.insert(name);
    return names;
}

}  // namespace

manual_page read_manual(const std::string &source)
{
    manual_page page;
    manual_entry *entry = nullptr;
    const auto lines = lines_of(source);
    for (size_t i = 0; i < lines.size(); ++i) {
        if (lines[i].starts_with(".Sh ")) entry = nullptr;
        if (lines[i] == ".It Xo") {
            std::string name;
            manual_entry read;
            for (++i; i < lines.size() && lines[i] != ".Xc"; ++i) add_words(lines[i], read.heading, name);
            EXPECT_FALSE(page.entries.contains(name)) << name << " has two entries";
            entry = &(page.entries[name] = read);
        } else if (lines[i].starts_with(".It Fl ")) {
            call_form item;
            std::string none;
            add_words(lines[i], item, none);
            (entry ? entry->described : page.described).merge(item.options);
        }
    }
    return page;
}

std::vector<manual_example> manual_examples(const std::string &source)
{
    std::vector<manual_example> examples;
    const auto lines = lines_of(source);
    for (size_t i = 0; i < lines.size(); ++i) {
        if (!lines[i].starts_with(".Bd -literal")) continue;
        const std::string mark = ".\\\" ";
        const bool told = i > 0 && lines[i - 1].starts_with(mark);
        manual_example example = {told ? lines[i - 1].substr(mark.size()) : "", ""};
        for (++i; i < lines.size() && lines[i] != ".Ed"; ++i) example.text += as_printed(lines[i]) + "\n";
        examples.push_back(example);
    }
    return examples;
}

std::set<std::string> words_behind(const std::string &source, const std::string &macro)
{
    std::set<std::string> found;
    for (const auto &match : matches(source, "[. ]" + macro + " ([A-Za-z0-9_]+)")) found.insert(match[1]);
    return found;
}

help_text read_help(const std::string &text)
{
    help_text help;
    std::string section;
    for (const std::string &line : lines_of(text)) {
        if (!line.empty() && line[0] != ' ') section = line.back() == ':' ? line : "";
        const bool entry = line.size() > 2 && line.starts_with("  ") && line[2] != ' ';
        if (!entry || section.empty()) continue;
        if (section == "Options:")
            help.form.options.merge(option_names(line));
        else if (section == "Positionals:")
            help.form.arguments.insert(words_of(line).front());
        else
            help.subcommands.push_back(words_of(line).front());
    }
    return help;
}

}  // namespace apconf_test

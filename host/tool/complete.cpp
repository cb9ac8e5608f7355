// apconf complete: what could stand at the end of a command line of this tool, for the completion scripts of the user's
// shell. Subcommands and options come from the parser, paths, keys and values from the schema.
#include <cstdio>

#include "cli/path_completion.h"
#include "tool/command_line.h"
#include "tool/subcommands.h"

namespace apconf_host
{

namespace
{

// Tells the script that the user's shell knows better.
constexpr const char *a_file = ":file";

// The command line before the word at the cursor.
struct typed_line {
    const CLI::App *app;  // the innermost subcommand that was named
    std::vector<std::string> arguments = {};
    const CLI::Option *waiting = nullptr;  // the option whose value stands at the cursor
};

void print(const std::string &word, const std::string &help)
{
    printf("%s\t%s\n", word.c_str(), help.c_str());
}

void print_if(const std::string &typed, const std::string &word, const std::string &help)
{
    if (word.starts_with(typed)) print(word, help);
}

// What has no heading in the help is hidden.
template <typename Listed>
bool is_hidden(const Listed &listed)
{
    return listed.get_group().empty();
}

const CLI::App *subcommand_called(const CLI::App &app, const std::string &name)
{
    for (const CLI::App *subcommand : app.get_subcommands({}))
        if (subcommand->get_name() == name) return subcommand;
    return nullptr;
}

const CLI::Option *waiting_option(const CLI::App &app, const std::string &name)
{
    const CLI::Option *option = app.get_option_no_throw(name);
    return option && option->get_items_expected_max() > 0 ? option : nullptr;
}

typed_line follow(const CLI::App &app, const std::vector<std::string> &words)
{
    typed_line line{&app};
    for (const std::string &word : words) {
        const CLI::App *named = line.arguments.empty() ? subcommand_called(*line.app, word) : nullptr;
        if (line.waiting)
            line.waiting = nullptr;
        else if (word.size() > 1 && word.starts_with("-"))
            line.waiting = waiting_option(*line.app, word);
        else if (named)
            line.app = named;
        else
            line.arguments.push_back(word);
    }
    return line;
}

void print_options(const CLI::App &app, const std::string &typed)
{
    for (const CLI::Option *option : app.get_options())
        for (const std::string &name : option->get_lnames())
            if (!is_hidden(*option)) print_if(typed, "--" + name, option->get_description());
}

void print_subcommands(const CLI::App &app, const std::string &typed)
{
    for (const CLI::App *subcommand : app.get_subcommands({}))
        if (!is_hidden(*subcommand)) print_if(typed, subcommand->get_name(), subcommand->get_description());
}

// The name of the argument in this place: "PATH". The last one may take many.
std::string argument_at(const CLI::App &app, size_t place)
{
    const auto arguments = app.get_options([](const CLI::Option *option) { return option->get_positional(); });
    if (place < arguments.size()) return arguments[place]->get_name(true);
    const bool many = !arguments.empty() && arguments.back()->get_items_expected_max() > 1;
    return many ? arguments.back()->get_name(true) : "";
}

void print_arguments(const typed_line &line, const std::string &typed)
{
    const std::string name = argument_at(*line.app, line.arguments.size());
    std::vector<std::string> words;
    if (name == "PATH") words = complete_path(typed);
    if (name == "KEY=VALUE")
        words = complete_assignment(line.arguments.front(), {line.arguments.begin() + 1, line.arguments.end()}, typed);
    if (name == "FILE" || name == "BEFORE" || name == "AFTER") words = {a_file};
    for (const std::string &word : words) print(word, "");
}

int complete(const CLI::App &tool, std::vector<std::string> words)
{
    if (words.empty()) words.emplace_back();
    const std::string typed = words.back();
    words.pop_back();
    const typed_line line = follow(tool, words);
    if (line.waiting) {
        if (line.waiting->get_type_name() == "FILE") print(a_file, "");
        return 0;
    }
    if (typed.starts_with("-")) {
        print_options(*line.app, typed);
    } else {
        if (line.arguments.empty()) print_subcommands(*line.app, typed);
        print_arguments(line, typed);
    }
    return 0;
}

}  // namespace

void add_complete(command_line &line)
{
    const auto words = std::make_shared<std::vector<std::string>>();
    CLI::App &added =
        line.add({"", "complete", "Print what could stand at the end of a command line, each with its help",
                  "apconf complete -- get radio", [&line, words] { return complete(line.parser(), *words); }});
    added.add_option("WORDS", *words, "The words of the command line, the last one as far as it is typed");
}

}  // namespace apconf_host

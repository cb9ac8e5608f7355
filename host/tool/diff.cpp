// apconf diff: what changed between two configurations, as command lines.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "cli/line_difference.h"
#include "tool/command_line.h"
#include "tool/configuration.h"
#include "tool/problem.h"
#include "tool/subcommands.h"

namespace apconf_host
{

namespace
{

struct diff_options {
    std::string before;
    std::string after = "running";
    bool exit_code = false;
    bool json = false;
    bool secrets = false;
};

struct side {
    std::string name;
    compared_lines lines;
};

side load(const vocabulary &vocabulary, const std::string &name, bool with_secrets)
{
    side loaded;
    const json_ptr configuration = tidied(named_configuration(vocabulary, name, loaded.name).get());
    const line_text real = to_lines(vocabulary, configuration.get());
    const line_text hidden = to_lines(vocabulary, configuration.get(), secrets::hidden);
    report_left_out(hidden);
    loaded.lines = {real.text, with_secrets ? real.text : hidden.text};
    return loaded;
}

const char *colour_of(char sign)
{
    static const bool coloured = isatty(STDOUT_FILENO) && !getenv("NO_COLOR");
    if (!coloured) return "";
    return sign == '-' ? "\033[31m" : sign == '+' ? "\033[32m" : "";
}

void print(const std::string &line, char sign)
{
    const char *colour = colour_of(sign);
    printf("%s%s%s\n", colour, line.c_str(), *colour ? "\033[0m" : "");
}

void print_json(const side &before, const side &after, const std::vector<changed_line> &changes)
{
    const json_ptr result(json_object_new_object());
    json_object_object_add(result.get(), "before", json_object_new_string(before.name.c_str()));
    json_object_object_add(result.get(), "after", json_object_new_string(after.name.c_str()));
    json_object *list = json_object_new_array();
    json_object_object_add(result.get(), "changes", list);
    for (const changed_line &change : changes) {
        json_object *entry = json_object_new_object();
        json_object_object_add(entry, "sign", json_object_new_string(std::string(1, change.sign).c_str()));
        json_object_object_add(entry, "line", json_object_new_string(change.text.c_str()));
        json_object_array_add(list, entry);
    }
    puts(json_object_to_json_string_ext(result.get(), JSON_C_TO_STRING_PLAIN | JSON_C_TO_STRING_NOSLASHESCAPE));
}

int diff(const diff_options &options)
{
    const vocabulary vocabulary;
    const side before = load(vocabulary, options.before, options.secrets);
    const side after = load(vocabulary, options.after, options.secrets);
    const auto changes = line_difference(before.lines, after.lines);
    if (options.json) {
        print_json(before, after, changes);
    } else if (!changes.empty()) {
        print("--- " + before.name, '-');
        print("+++ " + after.name, '+');
        for (const changed_line &change : changes) print(change.sign + change.text, change.sign);
    }
    return options.exit_code && !changes.empty() ? EXIT_REFUSED : EXIT_DONE;
}

}  // namespace

void add_diff(command_line &line)
{
    const auto options = std::make_shared<diff_options>();
    CLI::App &added = line.add({group::running, "diff", "Show what changed between two configurations, line by line",
                                "apconf diff 12 running", [options] { return diff(*options); }});
    constexpr const char *what =
        "A file of JSON or command lines, the number of an archived configuration, or 'running'";
    added.add_option("BEFORE", options->before, what)->required();
    added.add_option("AFTER", options->after, what)->capture_default_str();
    added.add_flag("--exit-code", options->exit_code, "Exit with 1 when there are differences");
    added.add_flag("--json", options->json, "Print the changes as JSON");
    add_secrets(added, options->secrets);
}

}  // namespace apconf_host

// apconf list: the syntax of command lines.
#include "cli/listing.h"
#include "json.h"
#include "tool/command_line.h"
#include "tool/problem.h"
#include "tool/subcommands.h"
#include "tool/target.h"

namespace apconf_host
{

namespace
{

struct list_options {
    std::string path;
    bool json = false;
};

void add_commands(const vocabulary &vocabulary, const syntax_command &command, json_object *list)
{
    json_object *entry = json_object_new_object();
    json_object *lines = json_object_new_array();
    for (const std::string &line : syntax_lines(vocabulary, command, extent::itself))
        json_object_array_add(lines, json_object_new_string(line.c_str()));
    json_object_object_add(entry, "path", json_object_new_string(command.path.c_str()));
    json_object_object_add(entry, "lines", lines);
    json_object_array_add(list, entry);
    for (const auto &below : command.below) add_commands(vocabulary, *below, list);
}

int list(const list_options &options)
{
    const vocabulary vocabulary;
    if (options.json) {
        const json_ptr list(json_object_new_array());
        add_commands(vocabulary, find_syntax(vocabulary, options.path), list.get());
        puts(shown(list.get()).c_str());
    } else if (options.path.empty()) {
        cli_list(stdout, vocabulary::default_file);
    } else {
        for (const std::string &line :
             syntax_lines(vocabulary, find_syntax(vocabulary, options.path), extent::with_what_below))
            puts(line.c_str());
    }
    return EXIT_DONE;
}

}  // namespace

void add_list(command_line &line)
{
    const auto options = std::make_shared<list_options>();
    CLI::App &added =
        line.add({group::vocabulary, "list", "Print the syntax of every command line, or of those of PATH",
                  "apconf list radio/bss/wmm", [options] { return list(*options); }});
    added.add_option("PATH", options->path, "A package, with all that is in it, or a command");
    added.add_flag("--json", options->json, "Print an array of objects with path and lines");
}

}  // namespace apconf_host

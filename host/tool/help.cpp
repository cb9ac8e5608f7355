// apconf help: the help texts of the vocabulary.
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

struct help_options {
    std::string path;
    bool json = false;
};

void add_texts(const std::vector<help_line> &lines, json_object *texts)
{
    for (const auto &[key, text] : lines)
        json_object_object_add(texts, key.c_str(), text.empty() ? nullptr : json_object_new_string(text.c_str()));
}

int help(const help_options &options)
{
    const vocabulary vocabulary;
    if (options.path.empty() && !options.json) {
        help_dump(stdout, vocabulary::default_file);
        return EXIT_DONE;
    }
    const auto lines = help_lines(vocabulary, find_syntax(vocabulary, options.path));
    if (options.json) {
        const json_ptr texts(json_object_new_object());
        if (options.path.empty()) add_texts(front_end_help(), texts.get());
        add_texts(lines, texts.get());
        puts(shown(texts.get()).c_str());
    } else {
        for (const help_line &line : lines) puts(line.printed().c_str());
    }
    return EXIT_DONE;
}

}  // namespace

void add_help(command_line &line)
{
    const auto options = std::make_shared<help_options>();
    CLI::App &added = line.add({group::vocabulary, "help", "Print the help texts of all commands, or of those of PATH",
                                "apconf help radio/bss/ssid_cmd", [options] { return help(*options); }});
    added.add_option("PATH", options->path, "A package, with all that is in it, or a command");
    added.add_flag("--json", options->json, "Print an object of keys and texts; null: no text");
}

}  // namespace apconf_host

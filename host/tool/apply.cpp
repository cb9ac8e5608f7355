// apconf apply: command lines as one message of changes.
#include <cstdio>

#include "cli/line_reader.h"
#include "tool/batch.h"
#include "tool/command_line.h"
#include "tool/input.h"
#include "tool/problem.h"
#include "tool/subcommands.h"
#include "tool/unconfirmed.h"

namespace apconf_host
{

namespace
{

struct apply_options {
    std::string file;
    bool dry_run = false;
    bool json = false;
    int confirm = 0;  // seconds; 0: it needs no confirmation
};

// "file:line: " of the first line that a refused command or package came from.
std::string place_of(const read_result &read, const std::string &file, const std::string &path)
{
    const size_t line = line_of(read, path);
    return line == 0 ? "" : file + ":" + std::to_string(line) + ": ";
}

int apply(const apply_options &options)
{
    const read_result read = read_lines(vocabulary(), read_input(options.file));
    for (const read_problem &problem : read.problems)
        fprintf(stderr, "%s:%zu:%zu: %s\n", options.file.c_str(), problem.line, problem.column, problem.text.c_str());
    if (!read.message) return EXIT_REFUSED;
    const outcome expected = check_message(read.message.get());
    for (const refusal &refusal : expected.refusals)
        fprintf(stderr, "%s%s\n", place_of(read, options.file, refusal.path).c_str(), to_text(refusal).c_str());
    if (!expected.refusals.empty()) return EXIT_REFUSED;
    if (options.json)
        puts(json_object_to_json_string_ext(read.message.get(),
                                            JSON_C_TO_STRING_PLAIN | JSON_C_TO_STRING_NOSLASHESCAPE));
    if (options.dry_run) return EXIT_DONE;
    if (expected.changes > 0 && options.confirm > 0) return queue_to_be_confirmed(read.message.get(), options.confirm);
    if (expected.changes > 0) return report(queue_message(read.message.get()));
    fprintf(stderr, "apconf: %s: this is how it is configured; nothing was queued\n", options.file.c_str());
    return EXIT_DONE;
}

}  // namespace

void add_apply(command_line &line)
{
    const auto options = std::make_shared<apply_options>();
    CLI::App &added =
        line.add({group::change, "apply", "Queue command lines as one message, all of them or none; prints its number",
                  "apconf show --secrets > ap.conf; apconf apply ap.conf", [options] { return apply(*options); }});
    added.add_option("FILE", options->file, "Command lines as 'apconf show' prints them; - is standard input")
        ->required();
    added.add_flag("--dry-run", options->dry_run, "Check the lines and change nothing");
    added.add_flag("--json", options->json, "Print the message that the lines make, too");
    add_confirm_option(added, options->confirm);
}

}  // namespace apconf_host

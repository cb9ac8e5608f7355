// apconf show: the running configuration as command lines.
#include <cstdio>

#include "secrets.h"
#include "tool/command_line.h"
#include "tool/configuration.h"
#include "tool/problem.h"
#include "tool/server.h"
#include "tool/subcommands.h"

namespace apconf_host
{

namespace
{

struct show_options {
    std::string path = "config";
    bool json = false;
    bool secrets = false;
};

int show(const show_options &options)
{
    const target target = parse_target(action::get, options.path, {});
    const json_ptr answer = server_connection().get(target, target.param().get());
    const json_ptr configuration = tidied(answer.get());
    if (options.json) {
        if (!options.secrets) mask_secrets(configuration.get());
        puts(json_object_to_json_string_ext(
            configuration.get(), JSON_C_TO_STRING_PRETTY | JSON_C_TO_STRING_SPACED | JSON_C_TO_STRING_NOSLASHESCAPE));
        return EXIT_DONE;
    }
    const line_text lines =
        to_lines(vocabulary(), configuration.get(), options.secrets ? secrets::shown : secrets::hidden);
    fputs(lines.text.c_str(), stdout);
    report_left_out(lines);
    return EXIT_DONE;
}

}  // namespace

void add_show(command_line &line)
{
    const auto options = std::make_shared<show_options>();
    CLI::App &added = line.add({group::running, "show", "Print the running configuration as command lines",
                                "apconf show radio[0]/bss[1]", [options] { return show(*options); }});
    added.add_option("PATH", options->path, "A package or command; without it, everything");
    added.add_flag("--json", options->json, "Print it as JSON");
    add_secrets(added, options->secrets);
}

}  // namespace apconf_host

// apconf get: what is configured.
#include <cstdio>

#include "secrets.h"
#include "tool/command_line.h"
#include "tool/server.h"
#include "tool/subcommands.h"

namespace apconf_host
{

namespace
{

struct get_options {
    address where;
    bool json = false;  // the raw answer on one line
    bool secrets = false;
};

void print(json_object *value, int form)
{
    puts(json_object_to_json_string_ext(value, form | JSON_C_TO_STRING_NOSLASHESCAPE));
}

int get(const get_options &options)
{
    const target target = parse_target(action::get, options.where.path, options.where.assignments);
    const server_connection server;
    const json_ptr answer = server.get(target, target.param().get());
    if (!options.secrets) mask_secrets(answer.get());
    if (options.json)
        print(answer.get(), JSON_C_TO_STRING_PLAIN);
    else
        print(addressed(answer.get(), target), JSON_C_TO_STRING_PRETTY | JSON_C_TO_STRING_SPACED);
    return EXIT_DONE;
}

}  // namespace

void add_get(command_line &line)
{
    const auto options = std::make_shared<get_options>();
    CLI::App &added = line.add({group::running, "get", "Print what is configured, as JSON; null: nothing",
                                "apconf get radio[0]/bss[1]/ssid_cmd", [options] { return get(*options); }});
    add_address(added, options->where);
    added.add_flag("--json", options->json, "Print the server's whole answer on one line");
    add_secrets(added, options->secrets);
}

}  // namespace apconf_host

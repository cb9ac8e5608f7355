// apconf get, set and no: one command of a running access point.
#include <cstdio>

#include "secrets.h"
#include "tool/server.h"
#include "tool/subcommands.h"

namespace apconf_host
{

namespace
{

void print(json_object *value, int form)
{
    puts(json_object_to_json_string_ext(value, form | JSON_C_TO_STRING_NOSLASHESCAPE));
}

int change(action action, const change_options &options)
{
    const target target = parse_target(action, options.path, options.assignments);
    const server_connection server;
    server.send(action, target);
    const std::string difference = difference_after(action, server, target);
    if (difference.empty()) return EXIT_DONE;
    throw failure(target.shown_path + ": the server did not take it: it shows " + difference +
                  "; the reason is in its log");
}

}  // namespace

int get_command(const get_options &options)
{
    const target target = parse_target(action::get, options.path, options.assignments);
    const server_connection server;
    const json_ptr answer = server.get(target, target.param().get());
    if (!options.secrets) mask_secrets(answer.get());
    if (options.json)
        print(answer.get(), JSON_C_TO_STRING_PLAIN);
    else
        print(addressed(answer.get(), target), JSON_C_TO_STRING_PRETTY | JSON_C_TO_STRING_SPACED);
    return EXIT_DONE;
}

int set_command(const change_options &options)
{
    return change(action::set, options);
}
int no_command(const change_options &options)
{
    return change(action::no, options);
}

}  // namespace apconf_host

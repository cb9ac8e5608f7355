// apconf set and no: change one command of a running access point.
#include "tool/command_line.h"
#include "tool/server.h"
#include "tool/subcommands.h"

namespace apconf_host
{

namespace
{

int change(action action, const address &where)
{
    const target target = parse_target(action, where.path, where.assignments);
    const server_connection server;
    server.send(action, target);
    const std::string difference = difference_after(action, server, target);
    if (difference.empty()) return EXIT_DONE;
    throw failure(target.shown_path + ": the server did not take it: it shows " + difference +
                  "; the reason is in its log");
}

void add_change(command_line &line, action action, const char *name, const char *description, const char *example)
{
    const auto options = std::make_shared<address>();
    const auto run = [options, action] { return change(action, *options); };
    add_address(line.add({group::change, name, description, example, run}), *options);
}

}  // namespace

void add_set(command_line &line)
{
    add_change(line, action::set, "set", "Set a command and read back that the server took it",
               "apconf set radio[0]/txpower_cmd txpower=17");
}

void add_no(command_line &line)
{
    add_change(line, action::no, "no", "Remove a command's setting, or the entries of a list whose keys all match",
               "apconf no radio[0]/bss[1]/access_list/mac_acl_cmd mac=02:00:00:00:00:01");
}

}  // namespace apconf_host

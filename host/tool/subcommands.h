// The subcommands of apconf. Each file in this folder holds one, or a few that belong together: its options, what it
// does, and the function that adds it to the command line.
#pragma once

namespace apconf_host
{

class command_line;

void add_apply(command_line &line);
void add_check(command_line &line);
void add_commit(command_line &line);
void add_confirm(command_line &line);
void add_convert(command_line &line);
void add_describe(command_line &line);
void add_diff(command_line &line);
void add_get(command_line &line);
void add_help(command_line &line);
void add_history(command_line &line);
void add_list(command_line &line);
void add_no(command_line &line);
void add_paths(command_line &line);
void add_queue(command_line &line);
void add_rollback(command_line &line);
void add_save(command_line &line);
void add_set(command_line &line);
void add_shell(command_line &line);
void add_complete(command_line &line);
void add_show(command_line &line);
void add_watch(command_line &line);

}  // namespace apconf_host

// apconf, the command-line tool: reads and changes the configuration of a running access point, commits batches of
// changes, and shows what the queue holds.
#include <cstdio>

#include "handlers.h"
#include "tool/command_line.h"
#include "tool/problem.h"
#include "tool/subcommands.h"

namespace apconf_host
{

namespace
{

// In the order of 'apconf --help'.
void add_all(command_line &line)
{
    add_show(line);
    add_diff(line);
    add_get(line);
    add_set(line);
    add_no(line);
    add_apply(line);
    add_commit(line);
    add_confirm(line);
    add_rollback(line);
    add_save(line);
    add_queue(line);
    add_history(line);
    add_watch(line);
    add_shell(line);
    add_complete(line);
    add_convert(line);
    add_list(line);
    add_help(line);
    add_paths(line);
    add_describe(line);
    add_check(line);
}

int run(int argc, char **argv)
{
    try {
        command_line line;
        add_all(line);
        return line.run(argc, argv);
    } catch (const usage_problem &problem) {
        fprintf(stderr, "apconf: %s\n", problem.what());
        return EXIT_USAGE;
    } catch (const refused_by_schema &problem) {
        for (const refusal &refusal : problem.refusals) fprintf(stderr, "apconf: %s\n", to_text(refusal).c_str());
    } catch (const std::exception &problem) {
        fprintf(stderr, "apconf: %s\n", problem.what());
    }
    return EXIT_REFUSED;
}

}  // namespace
}  // namespace apconf_host

int main(int argc, char **argv)
{
    return apconf_host::run(argc, argv);
}

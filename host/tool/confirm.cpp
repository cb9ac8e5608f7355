// apconf confirm: keeps what 'apconf commit --confirm' has changed.
#include <cstdio>

#include "tool/command_line.h"
#include "tool/problem.h"
#include "tool/subcommands.h"
#include "tool/unconfirmed.h"

namespace apconf_host
{

namespace
{

int confirm()
{
    printf("message %d is confirmed\n", request_confirmation());
    return EXIT_DONE;
}

}  // namespace

void add_confirm(command_line &line)
{
    line.add({group::change, "confirm", "Keep what 'apconf commit --confirm' has changed", "apconf confirm", confirm,
              false});
}

}  // namespace apconf_host

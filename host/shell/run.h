// Runs a session to its end. Each returns the exit status of `apconf shell`.
#pragma once

#include <istream>

#include "shell/session.h"

namespace apconf_host
{

// On the terminal that standard input and output are.
int run_on_terminal(session &session);

// Lines from elsewhere: a faulty one is reported with its number, and the rest is read all the same, but not committed
// any more.
int run_script(session &session, std::istream &lines);

}  // namespace apconf_host

// Running in the background. The process that was started waits until the server in the background serves, so that its
// exit status tells whether it does.
#pragma once

#include "host/server/owners.h"

namespace apconf_host
{

class background
{
public:
    // Forks and goes on in the child. Throws std::system_error.
    void enter();

    // The server serves: lets the waiting parent go with status 0 and leaves its terminal. Without enter, nothing.
    void ready();

private:
    fd_owner waiting_parent_;
};

}  // namespace apconf_host

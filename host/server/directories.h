// The places on disk that must be the server's own before it starts: the queue's directories, and the lock that makes
// it the only server.
#pragma once

#include "host/server/owners.h"

namespace apconf_host
{

// Makes the queue's directories, open to this user only. One that is a symbolic link, no directory or somebody else's
// is refused with a std::runtime_error; one that others can enter is closed to them.
void make_queue_directories();

// Holds the lock of the one server while it lives. Throws std::runtime_error when another one has it. The kernel
// releases it with the process, however that ends.
class server_lock
{
public:
    server_lock();

private:
    fd_owner fd_;
};

}  // namespace apconf_host

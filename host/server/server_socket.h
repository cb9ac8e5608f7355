// The server's socket file: a stale one is replaced, a live one never, and who may connect is settled before anybody
// can.
#pragma once

#include <sys/types.h>

#include <optional>

#include "host/server/owners.h"

namespace apconf_host
{

class server_socket
{
public:
    // Listens on the library's path, open to this user, and to `group` if there is one. Throws std::runtime_error.
    // Called with the server's lock held.
    explicit server_socket(std::optional<gid_t> group);
    ~server_socket();
    server_socket(const server_socket &) = delete;
    server_socket &operator=(const server_socket &) = delete;

    int get() const { return fd_.get(); }

private:
    fd_owner fd_;
    dev_t device_ = 0;  // of the file that this server made: only that one is removed at the end
    ino_t inode_ = 0;
};

}  // namespace apconf_host

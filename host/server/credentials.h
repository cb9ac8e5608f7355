// Who is at the other end of a connection, and whether that user may configure. Reaching the socket is no permission.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

namespace apconf_host
{

struct peer {
    pid_t pid = 0;
    uid_t uid = 0;
    std::vector<gid_t> groups;  // the primary one and the supplementary ones
};

// As the kernel saw the peer when it connected; nothing when the kernel does not say.
std::optional<peer> peer_of(int fd);

// Root, the server's own user, and the members of `group` when there is one.
struct access_rule {
    uid_t own_user = 0;
    std::optional<gid_t> group;

    bool permits(const peer &peer) const;
};

// The number of a group given by name or number. Throws std::runtime_error when there is none.
gid_t group_number(const std::string &name);

}  // namespace apconf_host

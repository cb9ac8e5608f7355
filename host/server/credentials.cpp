// Peer credentials from the kernel, and the rule that they are held against.
#include "host/server/credentials.h"

#include <grp.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <stdexcept>

namespace apconf_host
{
namespace
{

// The supplementary groups. Empty on kernels that cannot tell (before 4.13): then only the primary one counts.
std::vector<gid_t> supplementary_groups(int fd)
{
    std::vector<gid_t> groups;
#ifdef SO_PEERGROUPS
    socklen_t size = 0;
    if (getsockopt(fd, SOL_SOCKET, SO_PEERGROUPS, nullptr, &size) < 0 && errno != ERANGE) return groups;
    groups.resize(size / sizeof(gid_t));
    if (groups.empty()) return groups;
    if (getsockopt(fd, SOL_SOCKET, SO_PEERGROUPS, groups.data(), &size) < 0) groups.clear();
#else
    (void)fd;
#endif
    return groups;
}

}  // namespace

std::optional<peer> peer_of(int fd)
{
    ucred credentials = {};
    socklen_t size = sizeof credentials;
    if (getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &credentials, &size) < 0) return std::nullopt;
    peer result = {credentials.pid, credentials.uid, supplementary_groups(fd)};
    result.groups.push_back(credentials.gid);
    return result;
}

bool access_rule::permits(const peer &peer) const
{
    if (peer.uid == 0 || peer.uid == own_user) return true;
    return group && std::find(peer.groups.begin(), peer.groups.end(), *group) != peer.groups.end();
}

gid_t group_number(const std::string &name)
{
    if (const struct group *const entry = getgrnam(name.c_str())) return entry->gr_gid;
    gid_t number = 0;
    const char *const end = name.data() + name.size();
    const auto [stop, error] = std::from_chars(name.data(), end, number);
    if (error != std::errc() || stop != end) throw std::runtime_error("there is no group '" + name + "'");
    return number;
}

}  // namespace apconf_host

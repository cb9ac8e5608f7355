// Sets up the listening socket.
#include "host/server/server_socket.h"

#include <apconf/io_sock.h>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>

#include "host/server/log.h"

namespace apconf_host
{
namespace
{

constexpr const char *path = IO_SOCK_PATH;

[[noreturn]] void fail(const std::string &what)
{
    throw std::runtime_error(std::string("'") + path + "' " + what);
}

// Only a refused connection proves that nobody listens.
bool nobody_listens()
{
    const fd_owner fd(socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    memcpy(address.sun_path, path, strlen(path));
    return connect(fd.get(), reinterpret_cast<const sockaddr *>(&address), sizeof address) < 0 &&
           (errno == ECONNREFUSED || errno == ENOENT);
}

void remove_stale()
{
    struct stat status = {};
    if (lstat(path, &status) < 0) return;
    if (!S_ISSOCK(status.st_mode)) fail("is no socket");
    if (!nobody_listens()) fail("is in use: another server is running");
    SERVER_LOG(LOG_INFO, "replacing the stale socket '%s'", path);
    if (unlink(path) < 0) fail(std::string("is stale and cannot be removed: ") + strerror(errno));
}

void open_to(gid_t group)
{
    if (lchown(path, static_cast<uid_t>(-1), group) < 0 || chmod(path, 0660) < 0)
        fail(std::string("cannot be opened to group ") + std::to_string(group) + ": " + strerror(errno));
}

}  // namespace

server_socket::server_socket(std::optional<gid_t> group)
{
    remove_stale();
    const mode_t mask = umask(0177);
    fd_ = fd_owner(init_io_sock(1, path));
    umask(mask);
    if (!fd_) fail("cannot be listened on");
    fcntl(fd_.get(), F_SETFD, FD_CLOEXEC);
    struct stat status = {};
    if (lstat(path, &status) == 0) {
        device_ = status.st_dev;
        inode_ = status.st_ino;
    }
    if (group) open_to(*group);
}

server_socket::~server_socket()
{
    struct stat status = {};
    if (lstat(path, &status) == 0 && status.st_dev == device_ && status.st_ino == inode_) unlink(path);
}

}  // namespace apconf_host

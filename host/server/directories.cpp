// The queue's directories and the lock of the one server.
#include "host/server/directories.h"

#include <apconf/cmq.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>

#include "host/server/log.h"

namespace apconf_host
{
namespace
{

constexpr const char *lock_path = CMQ_DIR "/.server_lock";

[[noreturn]] void refuse(const std::string &path, const std::string &reason)
{
    throw std::runtime_error("'" + path + "' " + reason);
}

void make_private_directory(const char *path)
{
    if (mkdir(path, 0700) < 0 && errno != EEXIST) refuse(path, std::string("cannot be made: ") + strerror(errno));
    struct stat status = {};
    if (lstat(path, &status) < 0) refuse(path, strerror(errno));
    if (!S_ISDIR(status.st_mode)) refuse(path, "is no directory");
    if (status.st_uid != geteuid()) refuse(path, "belongs to user " + std::to_string(status.st_uid));
    if ((status.st_mode & 07777) == 0700) return;
    SERVER_LOG(LOG_WARNING, "closing '%s' to other users", path);
    if (chmod(path, 0700) < 0) refuse(path, std::string("cannot be closed to others: ") + strerror(errno));
}

}  // namespace

void make_queue_directories()
{
    for (const char *path : {CMQ_DIR, CMQ_NEW_DIR, CMQ_OLD_DIR, CMQ_BAD_DIR}) make_private_directory(path);
}

server_lock::server_lock() : fd_(open(lock_path, O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600))
{
    if (!fd_) refuse(lock_path, std::string("cannot be opened: ") + strerror(errno));
    if (flock(fd_.get(), LOCK_EX | LOCK_NB) < 0) refuse(lock_path, "is held: another server is running");
}

}  // namespace apconf_host

// apconf save: the running configuration becomes the one that the access point starts with.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "json_build.h"
#include "tool/command_line.h"
#include "tool/configuration.h"
#include "tool/problem.h"
#include "tool/requests.h"
#include "tool/subcommands.h"

namespace apconf_host
{

namespace
{

namespace fs = std::filesystem;

[[noreturn]] void fail(const fs::path &path)
{
    throw failure(path.string() + ": " + strerror(errno));
}

class open_file
{
public:
    open_file(const fs::path &path, int flags, mode_t mode = 0) : fd_(open(path.c_str(), flags | O_CLOEXEC, mode))
    {
        if (fd_ < 0) fail(path);
    }
    ~open_file() { close(fd_); }
    open_file(const open_file &) = delete;
    open_file &operator=(const open_file &) = delete;
    int get() const { return fd_; }

private:
    int fd_;
};

// Whom the file belongs to: of a file that is replaced, as before; of a new one, its directory's owner alone, for it
// holds keys and passwords.
struct stat ownership_of(const fs::path &file, int directory)
{
    struct stat status;
    if (stat(file.c_str(), &status) == 0) return status;
    if (fstat(directory, &status) != 0) fail(file.parent_path());
    status.st_mode = 0600;
    return status;
}

void write_all(int fd, std::string_view text, const fs::path &path)
{
    while (!text.empty()) {
        const ssize_t written = write(fd, text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) fail(path);
        text.remove_prefix(static_cast<size_t>(written));
    }
}

void write_synced(const fs::path &path, const std::string &text, const struct stat &ownership)
{
    const open_file file(path, O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW, 0600);
    write_all(file.get(), text, path);
    // Only root can give a file away; anybody else's keeps its own owner.
    if (fchown(file.get(), ownership.st_uid, ownership.st_gid) != 0 && geteuid() == 0) fail(path);
    if (fchmod(file.get(), ownership.st_mode & 07777) != 0 || fsync(file.get()) != 0) fail(path);
}

// Whoever reads the file finds the old text or the new one, whenever this process or the machine ends.
void replace(const fs::path &path, const std::string &text)
{
    const open_file directory(path.parent_path(), O_RDONLY | O_DIRECTORY);
    if (flock(directory.get(), LOCK_EX) != 0) fail(path.parent_path());  // the temporary file has one writer
    const fs::path fresh = path.string() + ".tmp";
    try {
        write_synced(fresh, text, ownership_of(path, directory.get()));
        if (rename(fresh.c_str(), path.c_str()) != 0) fail(path);
    } catch (const failure &) {
        unlink(fresh.c_str());
        throw;
    }
    if (fsync(directory.get()) != 0) fail(path.parent_path());
}

void check_nothing_waits()
{
    const int waiting = state_of(server_connection()).unconfirmed;
    if (waiting > 0)
        throw failure("message " + std::to_string(waiting) +
                      " waits to be confirmed: what may be undone is not saved; 'apconf confirm' first");
}

std::string start_configuration()
{
    const json_ptr present = running();
    json_object *config = member(present.get(), "config");
    const json_ptr message = new_object();
    add(message.get(), "MODULE", new_text("start_config"));
    add(message.get(), "ACTION", new_text("set"));
    add(message.get(), "config", config ? shared(config) : new_object());
    return json_object_to_json_string_ext(
               message.get(), JSON_C_TO_STRING_PRETTY | JSON_C_TO_STRING_SPACED | JSON_C_TO_STRING_NOSLASHESCAPE) +
           std::string("\n");
}

int save()
{
    check_nothing_waits();
    const std::string text = start_configuration();
    std::error_code error;
    fs::create_directories(fs::path(CMQ_START_CONFIG).parent_path(), error);
    // A link to where the device keeps it stays a link.
    const fs::path real = fs::weakly_canonical(CMQ_START_CONFIG, error);
    replace(error ? fs::path(CMQ_START_CONFIG) : real, text);
    return EXIT_DONE;
}

}  // namespace

void add_save(command_line &line)
{
    line.add({group::change, "save", "Make the running configuration the one that the access point starts with",
              "apconf save", save});
}

}  // namespace apconf_host

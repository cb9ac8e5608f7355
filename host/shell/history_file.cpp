// The lines that were typed in earlier sessions.
#include "shell/history_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>

namespace apconf_host
{

namespace
{

struct file_release {
    void operator()(FILE *file) const { fclose(file); }
};
using file_ptr = std::unique_ptr<FILE, file_release>;

// Readable for its owner alone, also when it was there before.
file_ptr open_for_append(const std::string &path)
{
    const int fd = open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0600);
    if (fd < 0) return nullptr;
    struct stat status;
    file_ptr file;
    if (fstat(fd, &status) == 0 && S_ISREG(status.st_mode) && fchmod(fd, 0600) == 0) file.reset(fdopen(fd, "a"));
    if (!file) close(fd);
    return file;
}

// A reader sees the old lines or the new ones, whole.
void replace(const std::string &path, const std::vector<std::string> &lines)
{
    const std::string next = path + ".new";
    unlink(next.c_str());
    {
        const file_ptr file = open_for_append(next);
        if (!file) return;
        for (const std::string &line : lines) fprintf(file.get(), "%s\n", line.c_str());
        if (fflush(file.get()) != 0) return;
    }
    rename(next.c_str(), path.c_str());
}

}  // namespace

history_file history_file::of_user()
{
    const char *home = getenv("HOME");
    return history_file(home && *home ? std::string(home) + "/.apconf_history" : "");
}

std::vector<std::string> history_file::load() const
{
    std::vector<std::string> lines;
    struct stat status;
    if (path_.empty() || stat(path_.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return lines;
    std::ifstream stream(path_);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    if (lines.size() <= most_lines) return lines;
    lines.erase(lines.begin(), lines.end() - static_cast<std::ptrdiff_t>(most_lines));
    replace(path_, lines);
    return lines;
}

void history_file::append(const std::string &line) const
{
    if (path_.empty()) return;
    if (const file_ptr file = open_for_append(path_)) fprintf(file.get(), "%s\n", line.c_str());
}

}  // namespace apconf_host

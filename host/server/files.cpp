// Numbered files, and replacing a file whole.
#include "host/server/files.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string_view>

#include "host/server/log.h"
#include "host/server/owners.h"

namespace apconf_host
{
namespace
{

// The N of "N<suffix>", 0 when the name has another form.
int number_of(std::string_view name, std::string_view suffix)
{
    if (!name.ends_with(suffix)) return 0;
    name.remove_suffix(suffix.size());
    int number = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
    if (error != std::errc() || end != name.data() + name.size() || name.starts_with('0')) return 0;
    return number > 0 ? number : 0;
}

bool write_all(int fd, std::string_view text)
{
    while (!text.empty()) {
        const ssize_t written = write(fd, text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        text.remove_prefix(static_cast<size_t>(written));
    }
    return true;
}

bool write_synced(const std::string &path, const std::string &text)
{
    const fd_owner fd(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, 0600));
    return fd && write_all(fd.get(), text) && fsync(fd.get()) == 0;
}

void sync_directory_of(const std::string &path)
{
    const fd_owner fd(open(path.substr(0, path.rfind('/')).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (fd) fsync(fd.get());
}

}  // namespace

std::vector<int> numbers_in(const std::string &directory, const std::string &suffix)
{
    struct directory_release {
        void operator()(DIR *open_directory) const { closedir(open_directory); }
    };
    std::vector<int> numbers;
    const std::unique_ptr<DIR, directory_release> entries(opendir(directory.c_str()));
    if (!entries) return numbers;
    while (const dirent *entry = readdir(entries.get()))
        if (const int number = number_of(entry->d_name, suffix)) numbers.push_back(number);
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

std::string numbered_file(const std::string &directory, int number, const std::string &suffix)
{
    return directory + "/" + std::to_string(number) + suffix;
}

bool replace_file(const std::string &path, const std::string &text)
{
    const std::string fresh = path + ".tmp";
    if (!write_synced(fresh, text) || rename(fresh.c_str(), path.c_str()) != 0) {
        SERVER_LOG(LOG_ERR, "cannot write '%s': %s", path.c_str(), strerror(errno));
        unlink(fresh.c_str());
        return false;
    }
    sync_directory_of(path);
    return true;
}

bool remove_file(const std::string &path)
{
    if (unlink(path.c_str()) != 0 && errno != ENOENT) {
        SERVER_LOG(LOG_ERR, "cannot remove '%s': %s", path.c_str(), strerror(errno));
        return false;
    }
    sync_directory_of(path);
    return true;
}

}  // namespace apconf_host

// Reads the queue's directories.
#include "tool/queue_files.h"

#include <apconf/apconf.h>
#include <sys/stat.h>

#include <algorithm>
#include <charconv>
#include <ctime>
#include <optional>

#include "json.h"
#include "tool/problem.h"

namespace apconf_host
{

namespace
{

namespace fs = std::filesystem;

// The number in "17.json"; nothing for other names.
std::optional<int> number_of(const fs::path &file, const char *extension)
{
    const std::string stem = file.stem().string();
    int number = 0;
    const auto [end, error] = std::from_chars(stem.data(), stem.data() + stem.size(), number);
    if (file.extension() != extension || error != std::errc() || end != stem.data() + stem.size() || number < 1)
        return std::nullopt;
    return number;
}

void add_entries(const char *directory, const char *extension, const char *state, std::vector<queue_entry> &entries)
{
    std::error_code error;
    fs::directory_iterator files(directory, error);
    if (error) throw failure(std::string(directory) + ": " + error.message() + "; apconfd makes it when it starts");
    for (const auto &file : files)
        if (const auto number = number_of(file.path(), extension)) entries.push_back({*number, state, file.path()});
}

}  // namespace

// Of the messages, those before the next to be fetched have been handled and are kept as backups.
std::vector<queue_entry> all_entries()
{
    std::vector<queue_entry> entries;
    add_entries(CMQ_NEW_DIR, ".json", "pending", entries);
    const int next = get_message_index(CMQ_CUR_INDEX);
    for (queue_entry &entry : entries)
        if (entry.number < next) entry.state = "handled";
    add_entries(CMQ_OLD_DIR, ".json", "applied", entries);
    add_entries(CMQ_BAD_DIR, ".txt", "refused", entries);
    std::stable_sort(entries.begin(), entries.end(),
                     [](const queue_entry &one, const queue_entry &other) { return one.number < other.number; });
    return entries;
}

std::string local_time(int64_t seconds_since_1970)
{
    const auto time = static_cast<time_t>(seconds_since_1970);
    struct tm parts;
    char text[32];
    if (!localtime_r(&time, &parts) || !strftime(text, sizeof text, "%F %T", &parts)) return "-";
    return text;
}

int64_t written_at(const queue_entry &entry)
{
    struct stat status;
    return stat(entry.file.c_str(), &status) == 0 ? status.st_mtime : 0;
}

std::string time_of(const queue_entry &entry)
{
    const int64_t time = written_at(entry);
    return time != 0 ? local_time(time) : "-";
}

std::string sender_of(json_object *message)
{
    std::string sender = scalar_text(member(message, "MODULE")).value_or("-");
    for (char &c : sender)
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) c = '?';
    return sender;
}

std::string sender_of(const queue_entry &entry)
{
    if (!entry.is_message()) return "-";
    return sender_of(json_ptr(json_object_from_file(entry.file.c_str())).get());
}

}  // namespace apconf_host

// apconf queue: what waits to be applied, what was applied and what was refused.
#include <sys/stat.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "json.h"
#include "secrets.h"
#include "tool/problem.h"
#include "tool/subcommands.h"

namespace apconf_host
{

namespace
{

namespace fs = std::filesystem;

struct entry {
    int number;
    const char *state;
    fs::path file;
};

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

void add_entries(const char *directory, const char *extension, const char *state, std::vector<entry> &entries)
{
    std::error_code error;
    fs::directory_iterator files(directory, error);
    if (error) throw failure(std::string(directory) + ": " + error.message() + "; apconfd makes it when it starts");
    for (const auto &file : files)
        if (const auto number = number_of(file.path(), extension)) entries.push_back({*number, state, file.path()});
}

// Of the messages, those before the next to be fetched have been handled and are kept as backups.
std::vector<entry> all_entries()
{
    std::vector<entry> entries;
    add_entries(CMQ_NEW_DIR, ".json", "pending", entries);
    const int next = get_message_index(CMQ_CUR_INDEX);
    for (entry &entry : entries)
        if (entry.number < next) entry.state = "handled";
    add_entries(CMQ_OLD_DIR, ".json", "applied", entries);
    add_entries(CMQ_BAD_DIR, ".txt", "refused", entries);
    std::stable_sort(entries.begin(), entries.end(),
                     [](const entry &one, const entry &other) { return one.number < other.number; });
    return entries;
}

std::string time_of(const fs::path &file)
{
    struct stat status;
    if (stat(file.c_str(), &status) != 0) return "-";
    struct tm parts;
    char text[32];
    if (!localtime_r(&status.st_mtime, &parts) || !strftime(text, sizeof text, "%F %T", &parts)) return "-";
    return text;
}

std::string sender_of(const entry &entry)
{
    if (entry.file.extension() != ".json") return "-";
    const json_ptr message(json_object_from_file(entry.file.c_str()));
    std::string sender = scalar_text(member(message.get(), "MODULE")).value_or("-");
    for (char &c : sender)
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) c = '?';
    return sender;
}

void show(const entry &entry, bool secrets)
{
    printf("%d %s, %s\n", entry.number, entry.state, time_of(entry.file).c_str());
    if (entry.file.extension() != ".json") {
        std::ifstream text(entry.file);
        for (std::string line; std::getline(text, line);) printf("%s\n", line.c_str());
        return;
    }
    const json_ptr message(json_object_from_file(entry.file.c_str()));
    if (!message) throw failure(entry.file.string() + ": no JSON");
    if (!secrets) mask_secrets(message.get());
    puts(json_object_to_json_string_ext(
        message.get(), JSON_C_TO_STRING_PRETTY | JSON_C_TO_STRING_SPACED | JSON_C_TO_STRING_NOSLASHESCAPE));
}

}  // namespace

int list_queue(const queue_options &)
{
    const auto entries = all_entries();
    if (entries.empty()) {
        puts("the queue is empty");
        return EXIT_DONE;
    }
    printf("%8s  %-8s %-20s %s\n", "NUMBER", "STATE", "TIME", "SENDER");
    for (const entry &entry : entries)
        printf("%8d  %-8s %-20s %s\n", entry.number, entry.state, time_of(entry.file).c_str(),
               sender_of(entry).c_str());
    return EXIT_DONE;
}

int show_queued(const queue_options &options)
{
    bool found = false;
    for (const entry &entry : all_entries()) {
        if (entry.number != options.number) continue;
        show(entry, options.secrets);
        found = true;
    }
    if (!found) throw failure("message " + std::to_string(options.number) + " is not in the queue");
    return EXIT_DONE;
}

}  // namespace apconf_host

// The files of the queue as people ask for them: what waits, what was applied and what was refused.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "json.h"

namespace apconf_host
{

struct queue_entry {
    int number;
    const char *state;  // "pending", "handled", "applied" or "refused"
    std::filesystem::path file;

    bool is_message() const { return file.extension() == ".json"; }
};

// All of them by number. Throws failure.
std::vector<queue_entry> all_entries();

// When the file was written, in seconds since 1970; 0 when that cannot be told.
int64_t written_at(const queue_entry &entry);

// The same in words, and by whom its message was sent; "-" when that cannot be told.
std::string time_of(const queue_entry &entry);
std::string sender_of(const queue_entry &entry);

std::string local_time(int64_t seconds_since_1970);
std::string sender_of(json_object *message);

}  // namespace apconf_host

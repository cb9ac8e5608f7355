// The configuration message queue: appending under a lock, fetching in number order, and what the server keeps of
// handled messages. The state is files; only the ring of backed-up numbers lives in the process.
#include "apconf/cmq.h"

#include <dirent.h>
#include <fcntl.h>
#include <json-c/json.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "ptype/target_parse.h"
#include "util/log.h"
#include "util/owners.h"

namespace apconf
{
namespace
{

// How many characters of an index file are looked at.
constexpr size_t short_line = 15;
constexpr size_t long_line = 63;
constexpr size_t command_size = 128;

using unique_dir = owner<DIR *, [](DIR *directory) { closedir(directory); }>;

struct message_path {
    char text[64];
};

int backups[CMQ_BACKUP_COUNT];
int backup_position = 0;

// <directory>/<index><suffix>; the longest one fits with room to spare.
message_path path_of(const char *directory, int index, const char *suffix)
{
    message_path path;
    snprintf(path.text, sizeof path.text, "%s/%d%s", directory, index, suffix);
    return path;
}

message_path new_path(int index)
{
    return path_of(CMQ_NEW_DIR, index, ".json");
}

// Index files are a few bytes long and every append goes through one, so they are read and written without a stream.
unique_fd open_index(const char *path, int flags)
{
    return unique_fd(open(path, flags | O_RDWR | O_CLOEXEC, 0666));
}

// The first line, at most `limit` characters of it. False: there is none.
bool read_line(int fd, char (&line)[long_line + 1], size_t limit)
{
    ssize_t length;
    do length = pread(fd, line, limit, 0);
    while (length < 0 && errno == EINTR);
    if (length <= 0) return false;
    line[length] = '\0';
    if (char *const end = strchr(line, '\n')) end[1] = '\0';
    return true;
}

// The number in an open index file, taken from its first `limit` characters; 0, logged, when there is none or it is
// below `lowest`. INT_MAX is none either: no number follows it.
int read_index(const char *function, int fd, const char *path, size_t limit, int lowest)
{
    char line[long_line + 1];
    if (!read_line(fd, line, limit)) {
        LOG_AS(function, LOG_ERR, "get message index from '%s' failed!", path);
        return 0;
    }
    const int index = apconf::parse_leading_int(line);
    if (index != 0 && index != INT_MAX && index >= lowest) return index;
    LOG_AS(function, LOG_ERR, "invalid message index '%s' in file '%s'", line, path);
    return 0;
}

// The number is in the file when this returns, and so before a lock is released.
bool write_index(const char *function, int fd, const char *path, int index)
{
    char text[short_line + 1];
    const int length = snprintf(text, sizeof text, "%d ", index);
    ssize_t written;
    do written = pwrite(fd, text, static_cast<size_t>(length), 0);
    while (written < 0 && errno == EINTR);
    if (written == length) return true;
    LOG_AS(function, LOG_ERR, "write '%s' failed!", path);
    return false;
}

bool lock(int fd)
{
    int result;
    do result = flock(fd, LOCK_EX);
    while (result < 0 && errno == EINTR);
    return result == 0;
}

// Whether `file` stands in a shell command as one plain word: none of `special`, and no option to the command.
bool is_safe_word(const char *function, const char *file, const char *special)
{
    if (file && file[0] != '-' && !strpbrk(file, special)) return true;
    LOG_AS(function, LOG_ERR, "refused file name '%s'", file ? file : "(null)");
    return false;
}

// Runs a shell command. One that does not fit is refused: cut off, it could name another file.
[[gnu::format(printf, 2, 3)]] int run(const char *function, const char *format, ...)
{
    char command[command_size];
    va_list arguments;
    va_start(arguments, format);
    const int length = vsnprintf(command, sizeof command, format, arguments);
    va_end(arguments);
    if (length >= 0 && static_cast<size_t>(length) < sizeof command) return system(command);
    LOG_AS(function, LOG_ERR, "command too long: '%s...'", command);
    return -1;
}

// Index files for a queue that has none: both point past what "new" still holds.
bool start_indexes(const char *function)
{
    const int highest = calc_max_msg_index();
    if (highest >= INT_MAX - 1) {
        LOG_AS(function, LOG_ERR, "no message index follows %d", highest);
        return false;
    }
    set_message_index(CMQ_CUR_INDEX, highest + 1);
    set_message_index(CMQ_MAX_INDEX, highest + 1);
    return true;
}

}  // namespace
}  // namespace apconf

using namespace apconf;

int get_message_index(const char *path)
{
    const unique_fd file = open_index(path, 0);
    if (!file) return -1;
    const int index = read_index(__func__, file.get(), path, short_line, INT_MIN);
    return index != 0 ? index : -1;
}

int set_message_index(const char *path, int n)
{
    const unique_fd file = open_index(path, O_CREAT | O_TRUNC);
    if (!file) {
        LOG(LOG_ERR, "open '%s failed!", path);  // kept: the closing quote is missing
        return -1;
    }
    return write_index(__func__, file.get(), path, n) ? n : -1;
}

int calc_max_msg_index(void)
{
    unique_dir directory(opendir(CMQ_NEW_DIR));
    if (!directory) {
        LOG(LOG_ERR, "open config dir '%s' failed", CMQ_NEW_DIR);
        return 0;
    }
    int highest = 0;
    while (const dirent *entry = readdir(directory.get())) {
        if (!strstr(entry->d_name, ".json")) continue;
        const int index = apconf::parse_leading_int(entry->d_name);
        if (index > highest) highest = index;
    }
    return highest;
}

int cmq_init(void)
{
    const int current = get_message_index(CMQ_CUR_INDEX);
    if (current > 0) return get_message_index(CMQ_MAX_INDEX) < current ? set_message_index(CMQ_MAX_INDEX, current) : 0;
    if (!start_indexes(__func__)) return -1;
    // Kept: this is message 1 even when the fresh indexes stand higher.
    if (access(CMQ_START_CONFIG, F_OK) < 0) return -1;
    return cmq_handle_cmessage(cmq_put_cmessage_start_config, const_cast<char *>(CMQ_START_CONFIG));
}

int cmq_handle_cmessage(cmq_put_fn *put, void *arg)
{
    const unique_fd file = open_index(CMQ_MAX_INDEX, 0);
    if (!file) {
        LOG(LOG_ERR, "open '%s failed!", CMQ_MAX_INDEX);  // kept: the closing quote is missing
        return -1;
    }
    if (!lock(file.get())) {
        LOG(LOG_ERR, "lock '%s' failed!", CMQ_MAX_INDEX);
        return -1;
    }
    const int index = read_index(__func__, file.get(), CMQ_MAX_INDEX, short_line, INT_MIN);
    int result = index != 0 ? index : -1;
    if (index != 0) {
        // Kept: a failed writer is logged only, and the next message gets the number again.
        if (put(arg, index) < 0)
            LOG(LOG_ERR, "set fail");
        else if (!write_index(__func__, file.get(), CMQ_MAX_INDEX, index + 1))
            result = -1;
    }
    flock(file.get(), LOCK_UN);
    return result;
}

int cmq_put_cmessage(void *msg, int index)
{
    if (index < 1) return -1;
    return json_object_to_file_ext(new_path(index).text, static_cast<json_object *>(msg), JSON_C_TO_STRING_PRETTY);
}

int cmq_put_cmessage_file(void *file, int index)
{
    if (index < 1) return -1;
    const char *const name = static_cast<const char *>(file);
    if (!is_safe_word(__func__, name, "'")) return -1;
    return run(__func__, "mv -f '%s' " CMQ_NEW_DIR "/%d.json", name, index);
}

int cmq_put_cmessage_start_config(void *file, int)
{
    const char *const name = static_cast<const char *>(file);
    if (!is_safe_word(__func__, name, " \t\n|&;<>()$`\\\"'*?[]#~!{}")) return -1;
    return run(__func__, "cp -f %s " CMQ_NEW_DIR "/1.json", name);
}

struct json_object *cmq_fetch_a_message(int *index)
{
    const unique_fd file = open_index(CMQ_CUR_INDEX, 0);
    if (!file) {
        LOG(LOG_ERR, "open '%s' failed!", CMQ_CUR_INDEX);
        return nullptr;
    }
    int current = read_index(__func__, file.get(), CMQ_CUR_INDEX, long_line, 1);
    if (current == 0) return nullptr;
    const int end = get_message_index(CMQ_MAX_INDEX);
    if (current >= end) {
        LOG(LOG_INFO, "no new message");
        return nullptr;
    }
    for (; current < end; ++current) {
        if (json_object *const message = json_object_from_file(new_path(current).text)) {
            write_index(__func__, file.get(), CMQ_CUR_INDEX, current + 1);
            if (index) *index = current;
            return message;
        }
        LOG(LOG_ERR, "load config %d.json failed", current);
    }
    write_index(__func__, file.get(), CMQ_CUR_INDEX, end);
    return nullptr;
}

int cmq_get_current_index(void)
{
    return get_message_index(CMQ_CUR_INDEX);
}

void cmq_save_old_config(int index, struct json_object *config)
{
    if (!config) return;
    if (json_object_to_file_ext(path_of(CMQ_OLD_DIR, index, ".json").text, config, JSON_C_TO_STRING_PRETTY) < 0)
        LOG(LOG_ERR, "save current config failed");
}

FILE *cmq_create_bad_file(int index)
{
    return index < 1 ? nullptr : fopen(path_of(CMQ_BAD_DIR, index, ".txt").text, "w+");
}

void cmq_delete_new_msg(int index, int is_backup)
{
    LOG(LOG_DEBUG, "msg_index %d, is_backup %d", index, is_backup);
    if (is_backup) {
        index = std::exchange(backups[backup_position], index);
        backup_position = (backup_position + 1) % CMQ_BACKUP_COUNT;
    }
    if (index == 0) return;
    const message_path path = new_path(index);
    LOG(LOG_DEBUG, "remove %s", path.text);
    remove(path.text);
}

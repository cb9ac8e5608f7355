// Appends to the queue by the library's means.
#include "host/server/appending.h"

#include <apconf/cmq.h>
#include <fcntl.h>
#include <sys/file.h>

#include <exception>

#include "host/server/log.h"

namespace apconf_host
{
namespace
{

struct appended {
    json_object *message;
    const std::function<bool(int)> &number_given;
    std::optional<int> number;
};

int put(void *arg, int number)
{
    auto &appended = *static_cast<struct appended *>(arg);
    try {
        if (!appended.number_given(number) || cmq_put_cmessage(appended.message, number) < 0) return -1;
    } catch (const std::exception &error) {
        // The library's frames know no exceptions: none passes through them.
        SERVER_LOG(LOG_ERR, "%s", error.what());
        return -1;
    }
    appended.number = number;
    return 0;
}

}  // namespace

append_lock::append_lock()
    : fd_(open(CMQ_MAX_INDEX, O_RDWR | O_CLOEXEC)), held_(!fd_ || flock(fd_.get(), LOCK_EX | LOCK_NB) == 0)
{
}

std::optional<int> append_message(json_object *message, const std::function<bool(int)> &number_given)
{
    if (!append_lock().held()) {
        SERVER_LOG(LOG_WARNING, "a producer is appending: not now");
        return std::nullopt;
    }
    appended result = {message, number_given, std::nullopt};
    if (cmq_handle_cmessage(put, &result) < 0) return std::nullopt;
    return result.number;
}

}  // namespace apconf_host

// Single-shot timers of the event loop.
#include "host/server/timer.h"

#include <exception>
#include <new>

#include "host/server/log.h"

namespace apconf_host
{

timer::timer(event_base *base, std::function<void()> action)
    : action_(std::move(action)), event_(evtimer_new(base, fire, this))
{
    if (!event_) throw std::bad_alloc();
}

void timer::start(std::chrono::milliseconds delay)
{
    if (running()) return;
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(delay);
    timeval duration = {};
    duration.tv_sec = static_cast<decltype(duration.tv_sec)>(seconds.count());
    duration.tv_usec = static_cast<decltype(duration.tv_usec)>((delay - seconds).count() * 1000);
    event_add(event_.get(), &duration);
}

void timer::start_this_turn()
{
    if (!running()) event_active(event_.get(), EV_TIMEOUT, 0);
}

void timer::stop()
{
    event_del(event_.get());
}

bool timer::running() const
{
    return event_pending(event_.get(), EV_TIMEOUT, nullptr) != 0;
}

void timer::fire(evutil_socket_t, short, void *self)
{
    try {
        // A copy, so that the action outlives a timer that it destroys.
        const auto action = static_cast<timer *>(self)->action_;
        action();
    } catch (const std::exception &error) {
        SERVER_LOG(LOG_ERR, "%s", error.what());
    }
}

}  // namespace apconf_host

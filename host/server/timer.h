// A single-shot timer of the event loop. At zero it runs in the next turn of the loop, after all descriptors have been
// looked at: that is how one party's work is cut into turns.
#pragma once

#include <event2/event.h>

#include <chrono>
#include <functional>
#include <memory>

namespace apconf_host
{

class timer
{
public:
    // `action` may destroy the timer. What it throws is logged and goes no further: the loop is C.
    timer(event_base *base, std::function<void()> action);

    // Starting a running timer changes nothing: the first deadline stands.
    void start(std::chrono::milliseconds delay);
    void start_next_turn() { start(std::chrono::milliseconds::zero()); }
    // In this turn of the loop, after all that its descriptors have called for.
    void start_this_turn();
    void stop();
    bool running() const;

private:
    static void fire(evutil_socket_t, short, void *self);

    struct event_release {
        void operator()(event *owned) const { event_free(owned); }
    };
    std::function<void()> action_;
    std::unique_ptr<event, event_release> event_;
};

}  // namespace apconf_host

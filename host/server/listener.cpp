// Accepting clients.
#include "host/server/listener.h"

#include <sys/resource.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <exception>
#include <new>

#include "host/server/limits.h"
#include "host/server/log.h"

namespace apconf_host
{

listener::listener(event_base *base, int socket, const access_rule &rule, service &requests, size_t limit)
    : socket_(socket),
      rule_(rule),
      limit_(limit),
      resume_timer_(base, [this] { event_add(acceptable_.get(), nullptr); }),
      burial_timer_(base, [this] { closed_.clear(); }),
      shared_{base, requests, 0, [this](connection *closed) { bury(closed); }},
      acceptable_(event_new(
          base, socket, EV_READ | EV_PERSIST,
          [](evutil_socket_t, short, void *self) { static_cast<listener *>(self)->on_acceptable(); }, this))
{
    if (!acceptable_ || event_add(acceptable_.get(), nullptr) < 0) throw std::bad_alloc();
}

void listener::on_acceptable()
{
    try {
        for (int count = 0; count < limits::accepts_per_turn && accept_one(); ++count) {
        }
    } catch (const std::exception &error) {
        SERVER_LOG(LOG_ERR, "%s", error.what());
    }
}

bool listener::accept_one()
{
    fd_owner fd(accept4(socket_, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
    if (fd) {
        welcome(std::move(fd));
        return true;
    }
    if (errno == EINTR || errno == ECONNABORTED) return true;
    if (errno == EAGAIN) return false;
    // Out of descriptors or memory: the client stays in the kernel's queue, and the loop must not spin over it.
    SERVER_LOG(LOG_ERR, "accept: %s", strerror(errno));
    event_del(acceptable_.get());
    resume_timer_.start(limits::accept_pause);
    return false;
}

void listener::welcome(fd_owner fd)
{
    if (connections_.size() >= limit_) {
        turn_away(fd);
        return;
    }
    const auto who = peer_of(fd.get());
    if (!who) {
        SERVER_LOG(LOG_WARNING, "client dropped: its credentials are unknown");
        return;
    }
    auto fresh = std::make_unique<connection>(shared_, std::move(fd), *who, rule_.permits(*who));
    connection *const key = fresh.get();
    connections_.emplace(key, std::move(fresh));
}

void listener::turn_away(const fd_owner &fd) const
{
    const auto who = peer_of(fd.get());
    SERVER_LOG(LOG_WARNING, "client (pid %d, uid %u) dropped: there are %zu clients already", who ? who->pid : 0,
               who ? who->uid : 0, limit_);
    io_msg header = {};
    header.code = static_cast<uint8_t>(reply_code::busy);
    send(fd.get(), &header, IO_MSG_HEADER_SIZE, MSG_DONTWAIT | MSG_NOSIGNAL);
}

// A closed connection is still in its own functions; it is destroyed in the next turn.
void listener::bury(connection *closed)
{
    const auto found = connections_.find(closed);
    if (found == connections_.end()) return;
    closed_.push_back(std::move(found->second));
    connections_.erase(found);
    burial_timer_.start_next_turn();
}

size_t raise_descriptor_limit(size_t clients)
{
    rlimit descriptors = {};
    if (getrlimit(RLIMIT_NOFILE, &descriptors) < 0) return clients;
    const rlim_t wanted = clients + limits::spare_descriptors;
    if (descriptors.rlim_cur != RLIM_INFINITY && descriptors.rlim_cur < wanted) {
        rlimit raised = {wanted, std::max(wanted, descriptors.rlim_max)};
        if (setrlimit(RLIMIT_NOFILE, &raised) < 0) {
            raised = {std::min(wanted, descriptors.rlim_max), descriptors.rlim_max};
            setrlimit(RLIMIT_NOFILE, &raised);
        }
        getrlimit(RLIMIT_NOFILE, &descriptors);
    }
    if (descriptors.rlim_cur >= wanted) return clients;
    const size_t room = descriptors.rlim_cur > limits::spare_descriptors
                            ? static_cast<size_t>(descriptors.rlim_cur) - limits::spare_descriptors
                            : 1;
    SERVER_LOG(LOG_WARNING, "there are descriptors for %zu clients only", room);
    return room;
}

}  // namespace apconf_host

// One client: takes whole messages off its stream, one a turn of the loop, and hands it replies, within the limits that
// limits.h grants. Reads are plain reads, so descriptors that a peer sends along are closed by the kernel.
#pragma once

#include <apconf/io_sock.h>
#include <event2/buffer.h>
#include <event2/bufferevent.h>
#include <event2/event.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "host/server/credentials.h"
#include "host/server/owners.h"
#include "host/server/service.h"
#include "host/server/timer.h"

namespace apconf_host
{

class connection
{
public:
    // What all connections share.
    struct common {
        event_base *base;
        service &requests;
        size_t unfinished = 0;                          // bytes that large messages have reserved
        std::function<void(connection *)> when_closed;  // may not destroy the connection at once
    };

    // `permitted`: else the first message is answered with a refusal.
    connection(common &shared, fd_owner fd, const peer &peer, bool permitted);
    ~connection();
    connection(const connection &) = delete;
    connection &operator=(const connection &) = delete;

private:
    enum class progress { complete, incomplete, failed };

    void on_readable();
    void read_some();
    void resume_reading();
    void on_replies_taken();
    void on_lost();
    template <typename Action>
    void guarded(Action action);

    void turn();
    progress take_message(io_msg &header, std::string &data);
    bool accept_header(const io_msg &header);
    bool reserve(size_t size);
    void release();
    void wait_for_more();
    void serve(const io_msg &header, const std::string &data);
    void send(const io_msg &header, const std::string &data);
    void push(const std::string &event);
    size_t send_now(io_msg header, const std::string &data);
    void send_last(reply_code code);
    void drop(const std::string &reason);
    void close();
    size_t received() const;
    size_t room() const;
    size_t waiting_replies() const;
    std::string name() const;

    struct event_release {
        void operator()(event *owned) const { event_free(owned); }
        void operator()(evbuffer *owned) const { evbuffer_free(owned); }
        void operator()(bufferevent *owned) const { bufferevent_free(owned); }
    };

    common &shared_;
    peer peer_;
    bool permitted_;
    bool peer_writes_ = true;  // false: what it has sent is all there will be
    bool peer_reads_ = true;   // false: replies to it are pointless
    bool paused_ = false;      // not read until it has taken its replies
    size_t reserved_ = 0;      // of shared_.unfinished, for the message that is under way
    client_record client_;
    timer turn_timer_;
    timer message_timer_;
    timer reply_timer_;
    std::unique_ptr<evbuffer, event_release> input_;
    std::unique_ptr<bufferevent, event_release> output_;  // owns the descriptor; null when closed
    std::unique_ptr<event, event_release> readable_;
};

}  // namespace apconf_host

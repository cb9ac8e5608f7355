// The framing and the patience of one client connection.
#include "host/server/connection.h"

#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <exception>
#include <new>

#include "host/message_types.h"
#include "host/server/limits.h"
#include "host/server/log.h"

namespace apconf_host
{
namespace
{

constexpr size_t header_size = IO_MSG_HEADER_SIZE;
static_assert(sizeof(io_msg) == header_size);
static_assert(limits::message_data < limits::unfinished_data);

io_msg reply_header(reply_code code, size_t data_size)
{
    io_msg header = {};
    header.code = static_cast<uint8_t>(code);
    header.data_len = static_cast<uint32_t>(data_size);
    return header;
}

io_msg event_header(size_t data_size)
{
    io_msg header = {};
    header.type = static_cast<uint8_t>(message_type::applied);
    header.data_len = static_cast<uint32_t>(data_size);
    return header;
}

}  // namespace

connection::connection(common &shared, fd_owner fd, const peer &peer, bool permitted)
    : shared_(shared),
      peer_(peer),
      permitted_(permitted),
      turn_timer_(shared.base, [this] { guarded([this] { turn(); }); }),
      message_timer_(shared.base, [this] { drop("a message was not complete in time"); }),
      reply_timer_(shared.base, [this] { drop("it did not read its replies in time"); }),
      input_(evbuffer_new()),
      output_(bufferevent_socket_new(shared.base, fd.get(), BEV_OPT_CLOSE_ON_FREE)),
      readable_(event_new(
          shared.base, fd.get(), EV_READ | EV_PERSIST,
          [](evutil_socket_t, short, void *self) { static_cast<connection *>(self)->on_readable(); }, this))
{
    if (output_) fd.release();
    if (!input_ || !output_ || !readable_) throw std::bad_alloc();
    bufferevent_setcb(
        output_.get(), nullptr, [](bufferevent *, void *self) { static_cast<connection *>(self)->on_replies_taken(); },
        [](bufferevent *, short, void *self) { static_cast<connection *>(self)->on_lost(); }, this);
    bufferevent_enable(output_.get(), EV_WRITE);
    client_.push = [this](const std::string &event) { guarded([&] { push(event); }); };
    resume_reading();
    if (!permitted_) message_timer_.start(limits::message_time);
}

connection::~connection()
{
    release();
}

// The loop is C: nothing may be thrown through it. Who makes the server run out of memory loses the connection.
template <typename Action>
void connection::guarded(Action action)
{
    try {
        if (output_) action();
    } catch (const std::exception &error) {
        drop(error.what());
    }
}

// Only takes bytes; the work is done in this client's turn.
void connection::on_readable()
{
    read_some();
    if (!peer_writes_ || room() == 0) event_del(readable_.get());
    turn_timer_.start_this_turn();
}

void connection::read_some()
{
    evbuffer_iovec space;
    if (evbuffer_reserve_space(input_.get(), static_cast<ev_ssize_t>(room()), &space, 1) != 1) return;
    const ssize_t count = read(bufferevent_getfd(output_.get()), space.iov_base, std::min(space.iov_len, room()));
    if (count > 0) {
        space.iov_len = static_cast<size_t>(count);
        evbuffer_commit_space(input_.get(), &space, 1);
    } else if (count == 0) {
        peer_writes_ = false;
    } else if (errno != EAGAIN && errno != EINTR) {
        peer_writes_ = peer_reads_ = false;
    }
}

void connection::resume_reading()
{
    if (peer_writes_ && !paused_ && room() > 0) event_add(readable_.get(), nullptr);
}

void connection::on_replies_taken()
{
    reply_timer_.stop();
    paused_ = false;
    resume_reading();
    turn_timer_.start_next_turn();
}

// It cannot be written to any more. What it sent before it went away still counts, and is served turn by turn.
void connection::on_lost()
{
    peer_reads_ = false;
    on_replies_taken();
}

void connection::turn()
{
    if (peer_reads_ && waiting_replies() > limits::reply_backlog) {
        paused_ = true;
        message_timer_.stop();
        event_del(readable_.get());
        return;
    }
    io_msg header = {};
    std::string data;
    switch (take_message(header, data)) {
        case progress::failed:
            return;
        case progress::incomplete:
            wait_for_more();
            return;
        case progress::complete:
            message_timer_.stop();
            serve(header, data);
            if (!output_) return;
            resume_reading();
            if (received() > 0 || !peer_writes_) turn_timer_.start_next_turn();
    }
}

connection::progress connection::take_message(io_msg &header, std::string &data)
{
    if (evbuffer_copyout(input_.get(), &header, header_size) < static_cast<ev_ssize_t>(header_size))
        return progress::incomplete;
    if (!accept_header(header)) return progress::failed;
    if (received() < header_size + header.data_len) return progress::incomplete;
    evbuffer_drain(input_.get(), header_size);
    data.resize(header.data_len);
    evbuffer_remove(input_.get(), data.data(), data.size());
    release();
    return progress::complete;
}

bool connection::accept_header(const io_msg &header)
{
    if (!permitted_) {
        send_last(reply_code::not_permitted);
        drop("it is not permitted");
    } else if (header.data_len > limits::message_data) {
        send_last(reply_code::too_large);
        drop("its message has " + std::to_string(header.data_len) + " bytes of data, more than the " +
             std::to_string(limits::message_data) + " allowed");
    } else if (!reserve(header_size + header.data_len)) {
        send_last(reply_code::busy);
        drop("too much unfinished data of all clients");
    }
    return output_ != nullptr;
}

// Room for a message that is larger than what is read ahead anyway.
bool connection::reserve(size_t size)
{
    if (reserved_ != 0 || size <= limits::read_ahead) return true;
    if (shared_.unfinished + size > limits::unfinished_data) return false;
    shared_.unfinished += size;
    reserved_ = size;
    return true;
}

void connection::release()
{
    shared_.unfinished -= reserved_;
    reserved_ = 0;
}

void connection::wait_for_more()
{
    if (peer_writes_) {
        resume_reading();
        if (received() > 0) message_timer_.start(limits::message_time);
    } else if (received() > 0) {
        drop("it left in the middle of a message");
    } else if (!peer_reads_ || waiting_replies() == 0) {
        SERVER_LOG(LOG_DEBUG, "client %s has left", name().c_str());
        close();
    }
}

void connection::serve(const io_msg &header, const std::string &data)
{
    const auto answer = shared_.requests.serve(client_, header.type, data);
    if (answer && peer_reads_) send(reply_header(answer->code, answer->data.size()), answer->data);
}

// Others' changes come as fast as they are made: a client that falls behind is not waited for.
void connection::push(const std::string &event)
{
    if (!peer_reads_) return;
    if (waiting_replies() > limits::watch_backlog)
        drop("it does not read its events");
    else
        send(event_header(event.size()), event);
}

void connection::send(const io_msg &header, const std::string &data)
{
    const size_t sent = waiting_replies() == 0 ? send_now(header, data) : 0;
    if (sent == header_size + data.size()) return;
    const size_t of_header = std::min(sent, header_size);
    const size_t of_data = sent - of_header;
    if (bufferevent_write(output_.get(), reinterpret_cast<const char *>(&header) + of_header, header_size - of_header) <
            0 ||
        bufferevent_write(output_.get(), data.data() + of_data, data.size() - of_data) < 0)
        throw std::bad_alloc();
    if (waiting_replies() > limits::pending_replies)
        drop("it does not read its replies");
    else
        reply_timer_.start(limits::reply_time);
}

// Most replies fit into the socket and need no second turn of the loop. Returns the bytes that it took; a socket that
// takes none, or is broken, is the buffered writer's to deal with.
size_t connection::send_now(io_msg header, const std::string &data)
{
    iovec parts[] = {{&header, header_size}, {const_cast<char *>(data.data()), data.size()}};
    msghdr message = {};
    message.msg_iov = parts;
    message.msg_iovlen = 2;
    const ssize_t count = sendmsg(bufferevent_getfd(output_.get()), &message, MSG_DONTWAIT | MSG_NOSIGNAL);
    return count > 0 ? static_cast<size_t>(count) : 0;
}

// A code on the way out. As much as the socket takes at once: this client is not waited for any more.
void connection::send_last(reply_code code)
{
    const io_msg header = reply_header(code, 0);
    if (waiting_replies() == 0)
        ::send(bufferevent_getfd(output_.get()), &header, header_size, MSG_DONTWAIT | MSG_NOSIGNAL);
}

void connection::drop(const std::string &reason)
{
    if (!output_) return;
    SERVER_LOG(LOG_WARNING, "client %s dropped: %s", name().c_str(), reason.c_str());
    close();
}

void connection::close()
{
    turn_timer_.stop();
    message_timer_.stop();
    reply_timer_.stop();
    readable_.reset();
    output_.reset();
    release();
    shared_.when_closed(this);
}

size_t connection::received() const
{
    return evbuffer_get_length(input_.get());
}

// What may still be read: a little ahead, or the rest of a large message.
size_t connection::room() const
{
    const size_t most = std::max(limits::read_ahead, reserved_);
    return received() < most ? std::min(limits::read_ahead, most - received()) : 0;
}

size_t connection::waiting_replies() const
{
    return evbuffer_get_length(bufferevent_get_output(output_.get()));
}

std::string connection::name() const
{
    const std::string module = client_.module.empty() ? "" : " '" + client_.module + "'";
    return "(pid " + std::to_string(peer_.pid) + ", uid " + std::to_string(peer_.uid) + ")" + module;
}

}  // namespace apconf_host

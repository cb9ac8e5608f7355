// What the server grants a client. Everything that a client drives has a bound here, so that none of them, silent, slow
// or hostile, can take the server's memory or another client's turn.
#pragma once

#include <chrono>
#include <cstddef>

namespace apconf_host::limits
{

using namespace std::chrono_literals;

// The data of one message. The largest whole-tree message is far below.
inline constexpr size_t message_data = 4u << 20;

// The values in one message, and the list elements in one get: each costs the work of a command, or of a whole package,
// and while one message is carried out all other clients wait. The longest list of a command has 256 elements; larger
// configurations come through the queue.
inline constexpr size_t message_values = 8192;
inline constexpr size_t get_elements = 40;

// A message is complete this long after its first byte, or the client is dropped.
inline constexpr std::chrono::milliseconds message_time = 5s;

// Replies that a client has not taken: more bytes than this, or any for this long, and it is dropped.
inline constexpr size_t pending_replies = 8u << 20;
inline constexpr std::chrono::milliseconds reply_time = 10s;

// With this much waiting for it, a client's next messages wait until it has read everything.
inline constexpr size_t reply_backlog = 256u << 10;

// Read ahead per client. A larger message counts against what all clients together may have unfinished.
inline constexpr size_t read_ahead = 64u << 10;
inline constexpr size_t unfinished_data = 32u << 20;

// Connections, unless told otherwise; accepted per turn of the loop; and the descriptors the server needs besides.
inline constexpr size_t connections = 1024;
inline constexpr int accepts_per_turn = 16;
inline constexpr size_t spare_descriptors = 64;

// No accepting for this long when descriptors have run out.
inline constexpr std::chrono::milliseconds accept_pause = 100ms;

// Above this many values in a set, the log has its summary and refusals, not a line for each command.
inline constexpr size_t logged_values = 1024;

// Refusals of one message that are logged one by one; a count follows. The file in "bad" has them all.
inline constexpr size_t logged_refusals = 20;

// The longest time that a commit may ask to be confirmed in.
inline constexpr std::chrono::seconds confirm_time = 86400s;

// How often a commit that waits to be confirmed looks at the clock, which may have stood still in a sleep.
inline constexpr std::chrono::milliseconds confirm_check = 1s;

// Subscribers, and how much one may leave unread before the next event makes it lose its connection.
inline constexpr size_t watchers = 16;
inline constexpr size_t watch_backlog = 1u << 20;

// How long until what could not be written (disk full) is tried again.
inline constexpr std::chrono::milliseconds write_retry = 1s;

// Files kept in "old" and in "bad", unless told otherwise.
inline constexpr size_t archived_files = 1000;

}  // namespace apconf_host::limits

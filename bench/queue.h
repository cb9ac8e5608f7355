// The directory that the queue's messages are written to.
#pragma once

#include <string>

struct json_object;

namespace apconf_bench
{

// Removes all messages; the next one is number 1.
void empty_queue();

std::string message_path(int index);

// Writes a message as the queue does, without the queue. False: not written.
bool write_message(int index, json_object *message);

}  // namespace apconf_bench

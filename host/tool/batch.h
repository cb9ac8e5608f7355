// Queueing changes, all of a message or nothing. As a batch, the way of every store owner: the library's commit turns
// what differs in the block into the message, so settings can be made and lists be replaced, but a single setting
// cannot be removed. As a message, which is queued as it stands and can say everything.
#pragma once

#include <string>

#include "handlers.h"
#include "json.h"

namespace apconf_host
{

// What the server would refuse or change if it applied the message now. Without a server: on an empty configuration.
outcome check_message(json_object *message);

// Makes {"config": {...}} a set message of this tool.
void add_header(json_object *message);

struct queued {
    int number;
    bool server_told;  // else it applies the message when it starts
};

// Queues {"config": {...}} as this tool's set message and tells the server. Throws failure.
queued queue_message(json_object *message);

// Takes the message into `root`. When anything is refused, nothing of it stays there.
outcome take_batch(json_object *message);

// What queue_batch would queue, without its header. Leaves `root` empty. Throws failure.
json_ptr batch_message(const outcome &taken, const std::string &name);

// Queues what was taken and tells the server. `name` is what the batch is called in complaints. Throws failure.
queued queue_batch(const outcome &taken, const std::string &name);

// Prints the number of the queued message; returns the exit status.
int report(const queued &message);

}  // namespace apconf_host

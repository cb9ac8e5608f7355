// One call of a set or no handler: what a message asked of a command, and where.
#pragma once

#include <string>
#include <vector>

#include "arguments.h"
#include "handlers.h"

namespace apconf_host
{

// The message being applied; the dispatch's `user` word.
struct request {
    outcome &result;
    bool single;  // a single-command message: index keys travel with the command's own
};

struct call {
    const request &message;
    const cpath_ctx &ctx;
    lookup_ctx &lookup;
    const cmd_node &node;
    const apconf_command &command;
    std::string path;

    // What handlers answer.
    static constexpr int refused = -1;
    static constexpr int done = 0;
    static constexpr int no_change = 1;

    bool in_batch() const { return message.result.as == role::batch; }
    apconf_scope scope() const { return static_cast<apconf_scope>(command.scope); }

    // The command's record in `root`; of a package, the chosen instance. Null when there is none.
    char *record() const { return static_cast<char *>(apconf_scope_record(scope(), &root, &lookup)); }

    int refuse(std::string key, std::string value, std::string accepted) const;
    int changed() const;

    // No change; but in a batch what it cannot say to the server must not look as if it had been said.
    int nothing_to_remove() const;

    // Has the batch report the chosen BSS although nothing in it is set: with it come the removals of what reports them
    // when it is unset. False: it does so already, or there is no batch.
    bool report_bss() const;

    // The index keys that a single-command message carries for the packages on the path.
    std::vector<std::string> keys_of_path() const;
};

// The argument object asks for "no" or "noall".
bool is_removal(json_object *args);

int enter_package(const call &call, json_object *args);
int remove_package(const call &call, json_object *args);
int set_command(const call &call, json_object *args);
int remove_command(const call &call, json_object *args);

}  // namespace apconf_host

// The set and no handlers of all packages, derived from the library's descriptions: they write `root` and refuse what
// does not convert, is out of the schema's range or names something unknown. Shared by apconfd and apconf.
#pragma once

#include <string>
#include <vector>

#include <apconf/apconf.h>

namespace apconf_host
{

// One thing that a message asked for and did not get. A command is refused whole: nothing of it is changed.
struct refusal {
    std::string path;      // the command with its instance, such as "config/radio[0]/bss[1]/ssid_cmd"
    std::string key;       // the parameter, or empty
    std::string value;     // what was given, or empty; "***" for a secret
    std::string accepted;  // what would be accepted, such as "a UINT from 1 to 255"
};

// "path: key 'value' refused: accepted is ..." on one line.
std::string to_text(const refusal &refusal);

// What `root` stands for while a message is applied.
enum class role {
    server,  // the running configuration: what is removed becomes unset
    batch    // changes to be committed: what is removed must be reported to the server
};

// What one message did.
struct outcome {
    role as = role::server;
    std::vector<refusal> refusals;  // the first MAX_REFUSALS
    unsigned changes = 0;           // commands that changed something

    static constexpr size_t MAX_REFUSALS = 1000;
    void refuse(refusal refusal);
};

// Installs the handlers into the package tables. Call once, after register_root_cmd. They work within apply_message
// only; elsewhere they answer -1.
void install_handlers();

// Refusals that the dispatch itself would pass over: commands, packages and index keys that the tree does not know.
// apply_message does it first.
void find_unknown(json_object *message, outcome &outcome);

// Runs a set message over the tree into `root`: find_unknown, then the dispatch. What is refused is left out, the rest
// is applied. False when the message is no set message at all (a refusal says why).
bool apply_message(json_object *message, outcome &outcome);

// The running configuration, as `root` holds it against an unset `mirror_root`: {"config": {...}}, or {} when nothing
// is set. Null when memory is short. The caller owns it.
json_object *running_configuration();

// Answers a get message from `root`. Null when the message is none. The caller owns it.
json_object *answer_get(json_object *message);

// Commits the batch in `root`: apply_cmd_tree_data, and the release of the heap members that it leaves to their setter.
int commit_batch();

// Makes `root` and `mirror_root` unset and releases everything they held.
void release_configuration();

}  // namespace apconf_host

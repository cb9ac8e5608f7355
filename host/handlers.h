// The set and no handlers of all packages, derived from the library's descriptions: they write `root` and refuse what
// does not convert, is out of the schema's range or names something unknown. Shared by apconfd and apconf.
#pragma once

#include <string>
#include <vector>

#include <apconf/apconf.h>

namespace apconf_host {

// One thing that a message asked for and did not get. A command is refused whole: nothing of it is changed.
struct refusal {
    std::string path;      // the command with its instance, such as "config/radio[0]/bss[1]/ssid_cmd"
    std::string key;       // the parameter, or empty
    std::string value;     // what was given, or empty
    std::string accepted;  // what would be accepted, such as "a UINT from 1 to 255"
};

// "path: key 'value' refused: accepted is ..." on one line.
std::string to_text(const refusal &refusal);

// What one message did. Handed to the handlers as the dispatch's `user` word.
struct outcome {
    std::vector<refusal> refusals;
    unsigned changes = 0;
};

// Installs the handlers into the package tables. Call once, after register_root_cmd.
void install_handlers();

// Refusals that the dispatch itself would pass over: commands and packages of a message that the tree does not know.
void find_unknown(json_object *message, outcome &outcome);

// Runs a set message over the tree into `root`: find_unknown, then the dispatch. False when the message is no cmessage
// at all (a refusal says why).
bool apply_message(json_object *message, outcome &outcome);

// The running configuration, as `root` holds it against an unset `mirror_root`: {"config": {...}}, or null. The caller
// owns it.
json_object *running_configuration();

// Answers a get message from `root`. Null when the message is none. The caller owns it.
json_object *answer_get(json_object *message);

// Releases the heap members of `root` and `mirror_root` that a commit leaves to their setter.
void release_unreleased();

}  // namespace apconf_host

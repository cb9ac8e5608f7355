// One change of a configuration, in the two forms in which it can be asked for: as a client sends it to a server, and
// as a part of a batch.
#pragma once

#include <apconf/apconf.h>

#include <string>
#include <vector>

#include "host/json.h"

namespace apconf_test
{

// A package or a command on the way from "config" down to what is changed.
struct stop {
    const cmd_node *node;
    std::string index;  // of an iterating package: the instance; empty: none is named
};
using route = std::vector<stop>;

// The packages above a node and the node itself, no instance chosen.
route route_to(const cmd_node &node);

// "config/radio[1]/bss[3]/ssid_cmd"
std::string to_text(const route &way);

enum class deed { set, no, noall };

struct change {
    route way;
    deed what;
    apconf_host::json_ptr arguments;  // the command's own keys, or a list of such; null: none

    std::string action() const { return what == deed::no ? "no" : "set"; }
    std::string path() const;                 // "/config/radio/bss/ssid_cmd"
    apconf_host::json_ptr param() const;      // arguments, index keys and, for noall, the option
    apconf_host::json_ptr in_a_tree() const;  // below "config": {"radio": {"INDEX": {...}, "bss": {...}}}
};
using change_list = std::vector<change>;

std::string to_text(const change &change);

// The batch that asks for the changes in their order.
apconf_host::json_ptr batch_of(const change_list &changes);

// The changes that a whole-tree message asks for; `content` is what it says below the last package of `above`.
change_list changes_of(json_object *content, const route &above);

// What a configuration says at a place; null: nothing. `config` is what it says below "config".
json_object *place_in(json_object *config, const route &way);

// Nothing but options and indexes stands in it.
bool is_unset(json_object *value);

}  // namespace apconf_test

// Random changes of one command: what a test of it asks for, one change after the other.
#pragma once

#include <map>
#include <string>

#include "host/random_message.h"
#include "law/change.h"

namespace apconf_test
{

class scenario
{
public:
    // About one command, or the commands of one package.
    scenario(const cmd_node &node, uint64_t seed);

    // Onto an access point on which nothing is set: sets in several instances, and removals of what was set.
    change_list from_nothing();

    // Onto one that has those: further sets, and such removals as a batch can carry.
    change_list on_top();

    bool chance(unsigned percent) { return random_.chance(percent); }

    // Changes that a batch can only refuse, since nothing tells a server of them. Of each the way holds something.
    change_list that_no_batch_carries();

private:
    const route &way(size_t number) const;
    bool add_way();
    void set(change_list &list, size_t number, json_object *arguments);
    void remove(change_list &list, size_t number, deed what, json_object *arguments = nullptr);
    size_t room(size_t number) const;
    void add_elements(change_list &list, size_t number, uint64_t count, bool at_once);
    apconf_host::json_ptr any_element(const change &change);
    json_object *all_keys();
    json_object *some_keys();
    void vary_list(change_list &list, size_t number);
    void vary_group(change_list &list, size_t number);
    void vary_package(change_list &list, size_t number, unsigned density);

    const cmd_node &node_;
    const apconf_command &command_;
    random_message random_;
    std::vector<route> ways_;        // to three instances, or to as many as there are
    std::map<size_t, size_t> used_;  // elements at most, by the way's number
};

// The command reports a list of elements.
bool is_list(const apconf_command &command);

// The changes without those to lists that may be full and that a batch adds to.
change_list that_surely_fit(change_list changes);

// A batch that sets the list replaces it on the server.
bool is_replaced_whole(const apconf_command &command);

// A report of the BSS, whatever it is about, removes what it does not set of this command.
bool is_reset_with_its_bss(const apconf_command &command);

}  // namespace apconf_test

// The instances of the iterating packages: radios, BSSes, Ethernet ports and FTP services by number, VLANs, DHCP pools
// and IP access lists by the key that their records hold.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <apconf/apconf.h>

namespace apconf_host
{

bool is_iterating(const apconf_command &command);

// The name of a package's index key, such as "radio_id".
const char *index_key(const apconf_command &package);

// Where the lookup context holds the chosen instance of an iterating package.
uint32_t &slot_of(apconf_scope scope, lookup_ctx &lookup);

// The chosen instance as paths show it: "0", "guests".
std::string instance_name(apconf_scope scope, const lookup_ctx &lookup);

// The elements of a variable list in `root`.
int32_t list_count(apconf_scope scope);
char *list_record(apconf_scope scope, int32_t position);

// The position of the element with this key, or -1.
int32_t find_record(apconf_scope scope, const std::string &key);

// Appends an unset element with this key and returns its position. Throws std::bad_alloc with the list as it was.
int32_t append_record(apconf_scope scope, const std::string &key);

// Nothing is set in the element. When it is the only one, it stands in no report.
bool is_bare(const apconf_command &package, int32_t position);

// Removes an element and what it holds.
void remove_record(apconf_scope scope, int32_t position);
void remove_all_records(apconf_scope scope);

// The keys of a list's elements, for a message.
std::string existing_keys(apconf_scope scope);

}  // namespace apconf_host

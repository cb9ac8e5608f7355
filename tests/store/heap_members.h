// The heap members of the data block that a commit releases, in the order in which it does: written down by hand, so
// that the descriptions are held against something.
#pragma once

#include <string>
#include <vector>

#include "apconf/config_data.h"

namespace apconf_test
{

struct heap_member {
    std::string path;  // as the log names it
    char **place;
};
using heap_members = std::vector<heap_member>;

heap_members bss_members(bss_config &bss);
heap_members ethernet_members(ethernet_config &ethernet);
heap_members vlan_members(vlan_config &vlan);
heap_members pool_members(pool_config &pool);
heap_members dns_members(config_data &config);
heap_members location_members(config_data &config);
heap_members ftp_members(ftp_config &ftp);
// Those that come last; the object of ism_cmd, which is no text, stands after password_cmd.
heap_members last_members_before_ism(config_data &config);
heap_members last_members_after_ism(config_data &config);

// Texts that are not released by a commit.
heap_members unreleased_members(bss_config &bss);

// All released texts outside the variable lists.
heap_members all_texts(config_data &config);

}  // namespace apconf_test

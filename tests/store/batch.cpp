#include "batch.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>

#include "apconf/apconf.h"
#include "apconf/description.h"
#include "samples.h"

namespace apconf_test
{
namespace
{

constexpr int list_elements = 8;

char *text_at(const char *place)
{
    char *text;
    memcpy(&text, place, sizeof text);
    return text;
}

// The keys that tell a list's elements apart.
void name_element(vlan_config &vlan, uint32_t number)
{
    vlan.vlan_id = number;
}

void name_element(ip_acl_config &list, uint32_t number)
{
    list.identify = number;
}

void name_element(pool_config &pool, uint32_t number)
{
    pool.pool_name = strdup(("pool " + std::to_string(number)).c_str());
}

}  // namespace

void batch::fill_command(const apconf_command &command, char *record)
{
    const int elements = count_of(std::max<int>(command.array.count, 1));
    for (int i = 0; i < elements; i++) {
        char *const element = record + static_cast<size_t>(i) * command.array.step;
        for (uint32_t f = 0; f < command.field_count; f++) {
            const apconf_field &field = command.fields[f];
            if (!is_alternative(field, true)) continue;
            set_sample(field, element + field.offset);
            if (field.flags & APCONF_FIELD_UNRELEASED) rest_.push_back(text_at(element + field.offset));
        }
        select_alternative(command, element, true);
    }
    if (command.option == APCONF_NO_OPTION) return;
    const bool counted = command.variant == APCONF_COUNTED_ARRAY;
    set_word(record + command.option, counted ? static_cast<uint32_t>(elements) : LIST_REPLACED);
}

void batch::fill_record(int scope, void *record)
{
    for (const apconf_package *package : apconf_packages)
        for (uint32_t c = 0; c < package->command_count; c++) {
            const apconf_command &command = package->commands[c];
            // The rows of iterating nodes hold no values: what names an instance is its place or name_element's.
            const bool iterating = command.variant == APCONF_RECORD_NODE || command.variant == APCONF_LIST_NODE;
            if (command.scope == scope && !iterating) fill_command(command, static_cast<char *>(record));
        }
}

template <typename Record>
void batch::fill_records(int scope, Record *records, int count)
{
    for (int i = 0; i < count_of(count); i++) fill_record(scope, &records[i]);
}

template <typename List>
void batch::fill_list(int scope, List &list)
{
    const int count = count_of(list_elements);
    list.list = static_cast<decltype(list.list)>(calloc(static_cast<size_t>(count), sizeof *list.list));
    list.count = count;
    fill_records(scope, list.list, count);
    for (int i = 0; i < count; i++) name_element(list.list[i], static_cast<uint32_t>(i + 1));
}

void batch::fill()
{
    config_data &config = root.config;
    fill_record(APCONF_SCOPE_GLOBAL, &config);
    fill_records(APCONF_SCOPE_RADIO, config.radio, RADIO_COUNT);
    for (int i = 0; i < count_of(RADIO_COUNT); i++) fill_records(APCONF_SCOPE_BSS, config.radio[i].bss, BSS_COUNT);
    fill_records(APCONF_SCOPE_ETHERNET, config.ethernet, ETHERNET_COUNT);
    fill_records(APCONF_SCOPE_FTP, config.ftp, FTP_COUNT);
    fill_list(APCONF_SCOPE_VLAN, config.vlan);
    fill_list(APCONF_SCOPE_POOL, config.dhcp_server.pool);
    fill_list(APCONF_SCOPE_IP_ACL, config.ip_acl);
}

void batch::release_rest()
{
    for (char *text : rest_) free(text);
    rest_.clear();
}

}  // namespace apconf_test

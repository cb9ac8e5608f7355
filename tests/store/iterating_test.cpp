// The handlers that walk over instances: choosing one by its argument, and listing those that must be visited.
#include <json-c/json.h>

#include <cstdlib>
#include <cstring>

#include "memory.h"
#include "store_fixture.h"

namespace apconf_test
{
namespace
{

using testing::IsEmpty;

class iterating_test : public store_test
{
protected:
    answer report(const std::string &package, const std::string &command, const std::string &args = "")
    {
        return apconf_test::report(package, command, &lookup, args);
    }

    config_data &config = root.config;
    log_capture log;
};

// ---- one instance ----

struct numbered {
    const char *package, *command, *key;
    uint32_t lookup_ctx::*slot;
    uint32_t count;
    const char *entered;  // empty: silent
};
const numbered numbered_packages[4] = {
    {"config", "radio", "radio_id", &lookup_ctx::radio, 2, "enter radio, radio_id: "},
    {"radio", "bss", "wlan_id", &lookup_ctx::wlan, 16, ""},
    {"config", "ethernet", "eth_id", &lookup_ctx::ethernet, 5, "enter ethernet, eth_id: "},
    {"config", "ftp", "ftp_id", &lookup_ctx::ftp, 16, "enter ftpserver, ftp_id: "},
};

std::string argument(const char *key, const std::string &value)
{
    return std::string("{\"") + key + "\":\"" + value + "\"}";
}

TEST_F(iterating_test, a_numbered_instance_is_entered)
{
    for (const numbered &each : numbered_packages) {
        for (uint32_t index : {0u, each.count - 1}) {
            SCOPED_TRACE(testing::Message() << each.command << ' ' << index);
            log.clear();
            EXPECT_EQ(report(each.package, each.command, argument(each.key, std::to_string(index))), nothing());
            EXPECT_EQ(lookup.*each.slot, index);
            if (*each.entered)
                EXPECT_TRUE(log.has(6, std::string("get_") + each.command, each.entered + std::to_string(index)));
            else
                EXPECT_THAT(log.texts(6), IsEmpty());
        }
    }
}

TEST_F(iterating_test, the_log_shows_the_index_as_it_was_given)
{
    EXPECT_EQ(report("config", "radio", R"({"radio_id":"0x1"})"), nothing());
    EXPECT_EQ(lookup.radio, 1u);
    EXPECT_TRUE(log.has(6, "get_radio", "enter radio, radio_id: 0x1"));
}

TEST_F(iterating_test, an_index_outside_is_refused_and_the_slot_kept)
{
    for (const numbered &each : numbered_packages) {
        for (const std::string &index : {std::to_string(each.count), std::string("4294967295"), std::string("-1")}) {
            SCOPED_TRACE(each.command + (' ' + index));
            lookup.*each.slot = 1;
            log.clear();
            EXPECT_EQ(report(each.package, each.command, argument(each.key, index)), failed());
            EXPECT_EQ(lookup.*each.slot, 1u);
            EXPECT_TRUE(
                log.has(3, std::string("get_") + each.command,
                        std::string(each.key) + " '" + index + "' is not from 0 to " + std::to_string(each.count - 1)));
            EXPECT_THAT(log.texts(6), IsEmpty());
        }
        lookup = {};
    }
}

TEST_F(iterating_test, a_missing_or_bad_index_fails_with_the_fetchs_own_line)
{
    make_vlans(1);
    make_pools(1);
    make_ip_acls(1);
    lookup = {1, 1, 1, 0, 0, 0, 1};
    const lookup_ctx before = lookup;
    struct iterating {
        const char *package, *command, *key;
    };
    for (const iterating &each : {iterating{"config", "radio", "radio_id"},
                                  {"radio", "bss", "wlan_id"},
                                  {"config", "ethernet", "eth_id"},
                                  {"config", "ftp", "ftp_id"},
                                  {"config", "vlan", "vlan_id"},
                                  {"dhcp_server", "pool", "pool_name"},
                                  {"config", "ip_acl", "identify"}}) {
        SCOPED_TRACE(each.command);
        for (const std::string &args : {std::string("{}"), std::string(R"({"other":"1"})"), std::string("[]")}) {
            log.clear();
            EXPECT_EQ(report(each.package, each.command, args), failed());
            ASSERT_EQ(log.lines().size(), 1u);
            EXPECT_TRUE(log.has(4, "fetch_arg_value_inner",
                                std::string("[") + each.command + "]no such arg '" + each.key + "'"));
        }
        if (strcmp(each.command, "pool") == 0) continue;
        EXPECT_EQ(report(each.package, each.command, argument(each.key, "one")), failed());
    }
    EXPECT_EQ(memcmp(&before, &lookup, sizeof lookup), 0);
}

TEST_F(iterating_test, an_element_is_found_by_its_key_the_first_match_first)
{
    make_vlans(4);
    make_pools(4);
    make_ip_acls(4);
    const uint32_t ids[] = {9, 7, 7, 4294967295u};
    const char *const names[] = {"a", "b", "b", nullptr};
    for (int i = 0; i < 4; i++) {
        config.vlan.list[i].vlan_id = config.ip_acl.list[i].identify = ids[i];
        if (names[i]) config.dhcp_server.pool.list[i].pool_name = text(names[i]);
    }
    EXPECT_EQ(report("config", "vlan", R"({"vlan_id":"7"})"), nothing());
    EXPECT_EQ(report("config", "ip_acl", R"({"identify":"4294967295"})"), nothing());
    EXPECT_EQ(report("dhcp_server", "pool", R"({"pool_name":"b"})"), nothing());
    EXPECT_EQ(lookup.vlan, 1u);
    EXPECT_EQ(lookup.ip_acl, 3u);
    EXPECT_EQ(lookup.pool, 1u);
    EXPECT_EQ(report("config", "ip_acl", R"({"identify":"9"})"), nothing());
    EXPECT_EQ(lookup.ip_acl, 0u);
}

TEST_F(iterating_test, an_unknown_element_is_an_error_and_the_slot_is_kept)
{
    make_vlans(1);
    make_pools(2);
    make_ip_acls(1);
    config.vlan.list[0].vlan_id = config.ip_acl.list[0].identify = 1;
    config.dhcp_server.pool.list[1].pool_name = text("lan");
    lookup = {0, 0, 0, 5, 6, 7, 0};
    EXPECT_EQ(report("config", "vlan", R"({"vlan_id":"4000000000"})"), failed());
    EXPECT_EQ(report("dhcp_server", "pool", R"({"pool_name":"LAN"})"), failed());
    EXPECT_EQ(report("config", "ip_acl", R"({"identify":"2"})"), failed());
    EXPECT_TRUE(log.has(3, "get_vlan", "not find vlan_id: -294967296"));
    EXPECT_TRUE(log.has(3, "get_pool", "not find pool_name: LAN"));
    EXPECT_TRUE(log.has(3, "get_ip_acl", "not find identify: 2"));
    EXPECT_EQ(lookup.vlan, 5u);
    EXPECT_EQ(lookup.pool, 6u);
    EXPECT_EQ(lookup.ip_acl, 7u);
}

TEST_F(iterating_test, without_elements_vlans_and_pools_are_entered_at_once_and_access_lists_are_not)
{
    for (const std::string &args : {std::string(R"({"vlan_id":"1","pool_name":"a"})"), std::string("{}")}) {
        EXPECT_EQ(report("config", "vlan", args), nothing());
        EXPECT_EQ(report("dhcp_server", "pool", args), nothing());
    }
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_EQ(report("config", "ip_acl", R"({"identify":"1"})"), failed());
    EXPECT_TRUE(log.has(3, "get_ip_acl", "not find identify: 1"));
}

// ---- all instances ----

TEST_F(iterating_test, records_that_differ_in_any_byte_are_listed)
{
    config.radio[1].he_bss_color_cmd.status = 1;
    EXPECT_EQ(report("config", "radio"), reported(R"({"radio_id":"1"})"));
    config.radio[0].reserved = 0;
    EXPECT_EQ(report("config", "radio"), reported(R"([{"radio_id":"0"},{"radio_id":"1"}])"));
    config.ethernet[0].mtu_cmd.mtu = config.ethernet[4].mtu_cmd.mtu = 1500;
    EXPECT_EQ(report("config", "ethernet"), reported(R"([{"eth_id":"0"},{"eth_id":"4"}])"));
    config.ftp[15].all_service_cmd.bits = 1;
    EXPECT_EQ(report("config", "ftp"), reported(R"({"ftp_id":"15"})"));
}

// Changes the first and the last byte of a record in turn; just its own index is listed then.
template <typename Record>
void expect_listed(const numbered &package, Record &record, uint32_t index, lookup_ctx &lookup)
{
    auto *const bytes = reinterpret_cast<char *>(&record);
    for (char *byte : {bytes, bytes + sizeof record - 1}) {
        SCOPED_TRACE(testing::Message() << package.command << ' ' << index << " byte " << byte - bytes);
        *byte = static_cast<char>(~*byte);
        EXPECT_EQ(apconf_test::report(package.package, package.command, &lookup),
                  reported(argument(package.key, std::to_string(index))));
        *byte = static_cast<char>(~*byte);
    }
}

TEST_F(iterating_test, every_record_is_compared_from_its_first_byte_to_its_last)
{
    const auto &[radio, bss, ethernet, ftp] = numbered_packages;
    for (uint32_t i = 0; i < 5; i++) expect_listed(ethernet, config.ethernet[i], i, lookup);
    for (uint32_t i = 0; i < 16; i++) expect_listed(ftp, config.ftp[i], i, lookup);
    for (lookup.radio = 0; lookup.radio < 2; lookup.radio++) {
        auto &current = config.radio[lookup.radio];
        expect_listed(radio, current, lookup.radio, lookup);
        for (uint32_t i = 0; i < 16; i++) {
            // The state word says more than that the record differs; its first byte is not enough for that.
            expect_listed(bss, current.bss[i], i, lookup);
            current.bss[i].ppsk.ppsk_cmd.change = 1;
            EXPECT_EQ(report("config", "radio"), reported(argument("radio_id", std::to_string(lookup.radio))));
            current.bss[i].ppsk.ppsk_cmd.change = 255;
        }
    }
}

TEST_F(iterating_test, bsses_are_those_of_the_current_radio)
{
    config.radio[1].bss[0].max_station_cmd.max_sta = 10;
    config.radio[1].bss[15].multicast_to_unicast.query_interval_cmd.interval = 10;
    EXPECT_EQ(report("radio", "bss"), nothing());
    lookup.radio = 1;
    EXPECT_EQ(report("radio", "bss"), reported(R"([{"wlan_id":"0"},{"wlan_id":"15"}])"));
}

TEST_F(iterating_test, a_bss_to_be_deleted_carries_no)
{
    config.radio[0].bss[3].state = 0xFFFFFFFE;
    EXPECT_EQ(report("radio", "bss"), reported(R"({"wlan_id":"3",".OPT":"no"})"));
}

TEST_F(iterating_test, a_bss_to_be_created_again_is_listed_twice_the_first_time_with_no)
{
    config.radio[0].bss[3].state = 2;
    config.radio[0].bss[4].state = 5;
    EXPECT_EQ(report("radio", "bss"), reported(R"([{"wlan_id":"3",".OPT":"no"},{"wlan_id":"3"},{"wlan_id":"4"}])"));
}

TEST_F(iterating_test, other_states_of_a_bss_mean_nothing)
{
    for (const uint32_t state : {0u, 1u, 3u, 0xFFFFFFFDu}) {
        config.radio[0].bss[3].state = state;
        EXPECT_EQ(report("radio", "bss"), reported(R"({"wlan_id":"3"})")) << state;
    }
}

TEST_F(iterating_test, a_state_that_the_reference_has_too_is_not_listed)
{
    config.radio[0].bss[3].state = mirror_root.config.radio[0].bss[3].state = 2;
    EXPECT_EQ(report("radio", "bss"), nothing());
}

TEST_F(iterating_test, in_a_message_a_deleted_bss_has_no_commands_and_a_new_one_has)
{
    config.radio[0].bss[3].state = 2;
    config.radio[0].bss[3].ssid_cmd.ssid = text("new");
    json_object *const message = walk_tree();
    json_object *at = message;
    for (const char *name : {"config", "radio", "bss"}) at = json_object_object_get(at, name);
    ASSERT_EQ(json_object_array_length(at), 2u);
    EXPECT_EQ(json_text(json_object_array_get_idx(at, 0)), R"({"INDEX":{"wlan_id":"3",".OPT":"no"}})");
    const std::string created = json_text(json_object_array_get_idx(at, 1));
    EXPECT_TRUE(created.starts_with(R"({"INDEX":{"wlan_id":"3"},"ssid_cmd":{"ssid":"new"},)")) << created;
    json_object_put(message);
}

TEST_F(iterating_test, every_vlan_is_listed_and_the_reference_rebuilt_unset)
{
    mirror_root.config.vlan.list = static_cast<vlan_config *>(calloc(1, sizeof(vlan_config)));
    mirror_root.config.vlan.count = 1;
    make_vlans(2);
    config.vlan.list[0].vlan_id = 1;
    config.vlan.list[1].vlan_id = 4094;
    EXPECT_EQ(report("config", "vlan"), reported(R"([{"vlan_id":"1"},{"vlan_id":"4094"}])"));
    ASSERT_EQ(mirror_root.config.vlan.count, 2);
    for (int i = 0; i < 2; i++) {
        const vlan_config &vlan = mirror_root.config.vlan.list[i];
        EXPECT_EQ(vlan.vlan_id, 0xFFFFFFFFu);
        EXPECT_EQ(vlan.dhcp_cmd.pool_name, nullptr);
        EXPECT_EQ(vlan.dhcp_cmd.relay_name, nullptr);
    }
}

TEST_F(iterating_test, every_pool_is_listed_and_the_reference_rebuilt_unset)
{
    make_pools(3);
    config.dhcp_server.pool.list[0].pool_name = text("a");
    config.dhcp_server.pool.list[2].pool_name = text("c");
    EXPECT_EQ(report("dhcp_server", "pool"), reported(R"([{"pool_name":"a"},{},{"pool_name":"c"}])"));
    ASSERT_EQ(mirror_root.config.dhcp_server.pool.count, 3);
    for (int i = 0; i < 3; i++) {
        const pool_config &pool = mirror_root.config.dhcp_server.pool.list[i];
        EXPECT_EQ(pool.pool_name, nullptr);
        EXPECT_EQ(pool.domain_cmd.domain, nullptr);
        EXPECT_EQ(pool.pool_dns_cmd[1023].ip, 0u);
        EXPECT_EQ(pool.lease_cmd.day, 0xFFFFFFFFu);
    }
}

TEST_F(iterating_test, every_access_list_is_listed_and_the_reference_left_alone)
{
    EXPECT_EQ(report("config", "ip_acl"), nothing());
    make_ip_acls(2);
    config.ip_acl.list[0].identify = 100;
    config.ip_acl.list[1].identify = 100;
    EXPECT_EQ(report("config", "ip_acl"), reported(R"([{"identify":"100"},{"identify":"100"}])"));
    EXPECT_EQ(mirror_root.config.ip_acl.list, nullptr);
}

TEST_F(iterating_test, no_elements_leave_an_empty_reference)
{
    mirror_root.config.vlan.list = static_cast<vlan_config *>(calloc(3, sizeof(vlan_config)));
    mirror_root.config.vlan.count = 3;
    EXPECT_EQ(report("config", "vlan"), nothing());
    EXPECT_EQ(report("dhcp_server", "pool"), nothing());
    EXPECT_EQ(mirror_root.config.vlan.list, nullptr);
    EXPECT_EQ(mirror_root.config.vlan.count, 0);
}

TEST_F(iterating_test, a_list_that_is_longer_than_65535_is_reset_to_its_end)
{
    const int count = 65540;
    make_vlans(count);
    for (int i = 0; i < count; i++) config.vlan.list[i].vlan_id = static_cast<uint32_t>(i);
    const answer given = report("config", "vlan");
    EXPECT_TRUE(given.json.ends_with(R"({"vlan_id":"65539"}])"));
    EXPECT_EQ(mirror_root.config.vlan.list[count - 1].vlan_id, 0xFFFFFFFFu);
    EXPECT_EQ(mirror_root.config.vlan.list[count - 1].dhcp_cmd.pool_name, nullptr);
}

TEST_F(iterating_test, a_list_that_both_blocks_share_stays_roots)
{
    make_vlans(1);
    config.vlan.list[0].vlan_id = 5;
    mirror_root.config.vlan.list = config.vlan.list;
    mirror_root.config.vlan.count = 1;
    EXPECT_EQ(report("config", "vlan"), reported(R"({"vlan_id":"5"})"));
    EXPECT_NE(mirror_root.config.vlan.list, config.vlan.list);
    EXPECT_EQ(config.vlan.list[0].vlan_id, 5u);
}

TEST_F(iterating_test, without_memory_the_enumeration_fails_and_the_reference_stays)
{
    make_vlans(3);
    make_pools(2);
    auto *const vlans = mirror_root.config.vlan.list = static_cast<vlan_config *>(calloc(1, sizeof(vlan_config)));
    mirror_root.config.vlan.count = 1;
    {
        const large_allocations_fail vlan_array(3 * sizeof(vlan_config));
        EXPECT_EQ(report("config", "vlan"), failed());
    }
    {
        const large_allocations_fail pool_array(2 * sizeof(pool_config));
        EXPECT_EQ(report("dhcp_server", "pool"), failed());
    }
    EXPECT_TRUE(log.has(3, "get_vlan", "malloc 3 vlan failed"));
    EXPECT_TRUE(log.has(3, "get_pool", "malloc 2 pool failed"));
    EXPECT_EQ(mirror_root.config.vlan.list, vlans);
    EXPECT_EQ(mirror_root.config.vlan.count, 1);
    EXPECT_EQ(mirror_root.config.dhcp_server.pool.list, nullptr);
}

TEST_F(iterating_test, a_count_that_no_memory_can_hold_fails)
{
    make_pools(1);
    config.dhcp_server.pool.count = INT32_MAX;
    const large_allocations_fail beyond(size_t{1} << 30);
    EXPECT_EQ(report("dhcp_server", "pool"), failed());
    EXPECT_TRUE(log.has(3, "get_pool", "malloc 2147483647 pool failed"));
    config.dhcp_server.pool.count = 1;
}

// ---- in a message ----

// What a get of one command answers; the packages on its path choose their instances from the parameters.
std::string get_by_path(const std::string &path, const std::string &param, lookup_ctx &lookup)
{
    register_root_cmd(lib_pkg_root);
    json_object *const message =
        json_tokener_parse((R"({"ACTION":"get","CPATH":{"path":")" + path + R"(","param":)" + param + "}}").c_str());
    cmesage_info info;
    json_object *answer = nullptr;
    EXPECT_EQ(get_cmesage_info(message, &info), 0);
    EXPECT_EQ(cmessage_parser(&info, &answer, 0, &lookup), 0);
    std::string shown = json_text(answer);
    json_object_put(answer);
    json_object_put(message);
    return shown;
}

TEST_F(iterating_test, a_get_by_path_answers_for_the_instances_it_names)
{
    config.radio[1].bss[2].ssid_cmd.ssid = text("office");
    make_vlans(2);
    config.vlan.list[1].vlan_id = 7;
    config.vlan.list[1].ip_address_cmd.ip_type = 0;
    EXPECT_EQ(get_by_path("/config/radio/bss/ssid_cmd", R"({"radio_id":"1","wlan_id":"2"})", lookup),
              R"({"config":{"radio":{"bss":{"ssid_cmd":{"ssid":"office"}}}}})");
    EXPECT_EQ(get_by_path("/config/radio/bss/ssid_cmd", R"({"radio_id":"1","wlan_id":"3"})", lookup),
              R"({"config":{"radio":{"bss":{}}}})");
    EXPECT_EQ(get_by_path("/config/vlan/ip_address_cmd", R"({"vlan_id":"7"})", lookup),
              R"({"config":{"vlan":{"ip_address_cmd":{"ip_type":"dhcp"}}}})");
}

TEST_F(iterating_test, a_get_by_path_ends_at_an_instance_that_is_not_there)
{
    EXPECT_EQ(get_by_path("/config/radio/channel_cmd", R"({"radio_id":"2"})", lookup), R"({"config":{}})");
    EXPECT_EQ(get_by_path("/config/radio/bss/ssid_cmd", R"({"radio_id":"1","wlan_id":"16"})", lookup),
              R"({"config":{"radio":{}}})");
    EXPECT_EQ(get_by_path("/config/ip_acl/ace_cmd", R"({"identify":"1"})", lookup), R"({"config":{}})");
    EXPECT_EQ(get_by_path("/config/vlan/dhcp_cmd", R"({"vlan_id":"1"})", lookup), R"({"config":{"vlan":{}}})");
}

TEST_F(iterating_test, tables_are_entered_once_an_instance)
{
    config.radio[0].channel_cmd.channel = 1;
    config.radio[1].channel_cmd.channel = 36;
    make_vlans(2);
    for (uint32_t i = 0; i < 2; i++) {
        config.vlan.list[i].vlan_id = 10 + i;
        config.vlan.list[i].ip_address_cmd.ip_type = i;
    }
    make_pools(2);
    for (uint32_t i = 0; i < 2; i++) {
        config.dhcp_server.pool.list[i].pool_name = text("pool " + std::to_string(i));
        config.dhcp_server.pool.list[i].lease_cmd.day = i;
    }
    make_ip_acls(2);
    config.ip_acl.list[0].identify = 100;
    config.ip_acl.list[1].identify = 101;
    config.ftp[0].max_log_cmd.size = 1;
    config.ftp[15].max_log_cmd.size = 15;
    EXPECT_EQ(walk_tree_text(), R"({"config":{"radio":[{"INDEX":{"radio_id":"0"},"channel_cmd":{"channel":"1"}},)"
                                R"({"INDEX":{"radio_id":"1"},"channel_cmd":{"channel":"36"}}],)"
                                R"("dhcp_server":{"pool":[{"INDEX":{"pool_name":"pool 0"},"lease_cmd":{"day":"0"}},)"
                                R"({"INDEX":{"pool_name":"pool 1"},"lease_cmd":{"day":"1"}}]},)"
                                R"("vlan":[{"INDEX":{"vlan_id":"10"},"ip_address_cmd":{"ip_type":"dhcp"}},)"
                                R"({"INDEX":{"vlan_id":"11"},"ip_address_cmd":{"ip_type":"ip_addr"}}],)"
                                R"("ip_acl":[{"INDEX":{"identify":"100"}},{"INDEX":{"identify":"101"}}],)"
                                R"("ftp":[{"INDEX":{"ftp_id":"0"},"max_log_cmd":{"size":"1"}},)"
                                R"({"INDEX":{"ftp_id":"15"},"max_log_cmd":{"size":"15"}}]}})");
}

TEST_F(iterating_test, the_table_of_bsses_is_entered_once_a_bss)
{
    config.radio[0].bss[0].max_station_cmd.max_sta = 1;
    config.radio[0].bss[15].max_station_cmd.max_sta = 2;
    config.radio[1].bss[7].max_station_cmd.max_sta = 3;
    json_object *const message = walk_tree();
    json_object *const radios = json_object_object_get(json_object_object_get(message, "config"), "radio");
    std::vector<std::string> entered;
    for (size_t r = 0; r < json_object_array_length(radios); r++) {
        json_object *const radio = json_object_array_get_idx(radios, r);
        int cursor = 0;
        while (json_object *const bss = get_json_obj(json_object_object_get(radio, "bss"), &cursor))
            entered.push_back(json_text(json_object_object_get(radio, "INDEX")) +
                              json_text(json_object_object_get(bss, "INDEX")) +
                              json_text(json_object_object_get(bss, "max_station_cmd")));
    }
    EXPECT_THAT(entered, testing::ElementsAre(R"({"radio_id":"0"}{"wlan_id":"0"}{"max_sta":"1"})",
                                              R"({"radio_id":"0"}{"wlan_id":"15"}{"max_sta":"2"})",
                                              R"({"radio_id":"1"}{"wlan_id":"7"}{"max_sta":"3"})"));
    json_object_put(message);
}

// Every field of every element counts as changed against the rebuilt reference, commit after commit.
TEST_F(iterating_test, a_list_is_carried_in_full_by_every_walk)
{
    make_vlans(1);
    config.vlan.list[0].vlan_id = 5;
    config.vlan.list[0].dhcp_cmd.type = 0;
    const std::string message = walk_tree_text();
    EXPECT_EQ(message, R"({"config":{"vlan":{"INDEX":{"vlan_id":"5"},"dhcp_cmd":{"type":"server"}}}})");
    EXPECT_EQ(walk_tree_text(), message);
}

}  // namespace
}  // namespace apconf_test

// What set and no do to commands of every variant, seen in the running configuration.
#include "host/host_test.h"

namespace
{

using apconf_test::json_ptr;
using testing::ElementsAre;
using testing::IsEmpty;

class set_no : public apconf_test::host_test
{
protected:
    // A command of BSS 1 of radio 0, as the body of a whole-tree message.
    std::vector<std::string> bss(const std::string &body)
    {
        return configure("{'radio':{'INDEX':{'radio_id':'0'},'bss':{'INDEX':{'wlan_id':'1'}," + body + "}}}");
    }
    std::string of_bss(const std::string &place) { return running("radio/bss/" + place); }
};

TEST_F(set_no, program_and_library_have_one_table_and_one_description_of_it)
{
    ASSERT_NE(apconf_find_command(&lib_pkg_root[0]), nullptr);
    EXPECT_STREQ(apconf_find_command(&lib_pkg_root[0])->name, "config");
    EXPECT_NE(lib_pkg_root[0].set, nullptr);
}

TEST_F(set_no, all_records_have_both_handlers)
{
    unsigned records = 0;
    for (const apconf_package *package : apconf_packages)
        for (const cmd_node *node = package->table; node->name; ++node) {
            EXPECT_NE(node->set, nullptr) << node->name;
            EXPECT_NE(node->no, nullptr) << node->name;
            ++records;
        }
    EXPECT_EQ(records, 292U);
}

TEST_F(set_no, group_takes_the_keys_given_and_keeps_the_others)
{
    EXPECT_THAT(configure("{'ethernet':{'INDEX':{'eth_id':'2'},'pppoe_echo_interval_cmd':"
                          "{'interval':'10','echo_times':'3'}}}"),
                IsEmpty());
    EXPECT_THAT(set("/config/ethernet/pppoe_echo_interval_cmd", "{'eth_id':'2','interval':'20'}"), IsEmpty());
    EXPECT_EQ(running("ethernet/pppoe_echo_interval_cmd"), R"({"interval":"20","echo_times":"3"})");
}

TEST_F(set_no, group_set_to_what_it_holds_is_no_change)
{
    EXPECT_THAT(set("/config/hostname_cmd", "{'hostname':'ap'}"), IsEmpty());
    EXPECT_EQ(changes, 1U);
    EXPECT_THAT(set("/config/hostname_cmd", "{'hostname':'ap'}"), IsEmpty());
    EXPECT_EQ(changes, 0U);
}

TEST_F(set_no, group_is_unset_by_no)
{
    set("/config/hostname_cmd", "{'hostname':'ap'}");
    EXPECT_THAT(set("/config/hostname_cmd", "{'.OPT':'no'}"), IsEmpty());
    EXPECT_EQ(running(), "{}");
    EXPECT_THAT(set("/config/hostname_cmd", "{'.OPT':'no'}"), IsEmpty());
    EXPECT_EQ(changes, 0U);
}

TEST_F(set_no, no_with_other_values_than_the_group_holds_is_no_change)
{
    set("/config/hostname_cmd", "{'hostname':'ap'}");
    EXPECT_THAT(set("/config/hostname_cmd", "{'.OPT':'no','hostname':'other'}"), IsEmpty());
    EXPECT_EQ(running("hostname_cmd/hostname"), "\"ap\"");
    EXPECT_THAT(set("/config/hostname_cmd", "{'.OPT':'no','hostname':'ap'}"), IsEmpty());
    EXPECT_EQ(running(), "{}");
}

TEST_F(set_no, one_wrong_key_leaves_the_whole_command_as_it_was)
{
    set("/config/redis/server_cmd", "{'ip':'10.0.0.1','port':'6379'}");
    EXPECT_THAT(set("/config/redis/server_cmd", "{'ip':'10.0.0.2','port':'banana','auth':'x'}"),
                testing::Contains(testing::HasSubstr("port 'banana' refused")));
    EXPECT_EQ(running("redis/server_cmd"), R"({"ip":"10.0.0.1","port":"6379"})");
}

TEST_F(set_no, flag_knows_set_negated_and_nothing)
{
    EXPECT_THAT(set("/config/celluar/shutdown_cmd", "{}"), IsEmpty());
    EXPECT_EQ(running("celluar/shutdown_cmd"), "{}");
    EXPECT_THAT(set("/config/celluar/shutdown_cmd", "{'.OPT':'no'}"), IsEmpty());
    EXPECT_EQ(running("celluar/shutdown_cmd"), R"({".OPT":"no"})");
    EXPECT_THAT(set("/config/celluar/shutdown_cmd", "{'why':'x'}"),
                ElementsAre("config/celluar/shutdown_cmd: why refused: accepted is no key"));
}

TEST_F(set_no, negatable_group_reports_no_until_it_is_set_again)
{
    set("/config/timezone_cmd", "{'zone':'cet','hour':'1','minute':'30'}");
    EXPECT_THAT(set("/config/timezone_cmd", "{'.OPT':'no'}"), IsEmpty());
    EXPECT_EQ(running("timezone_cmd"), R"({".OPT":"no"})");
    EXPECT_THAT(set("/config/timezone_cmd", "{'hour':'2'}"), testing::Contains(testing::HasSubstr("zone refused")));
    EXPECT_THAT(set("/config/timezone_cmd", "{'zone':'eet','hour':'2'}"), IsEmpty());
    EXPECT_EQ(running("timezone_cmd"), R"({"zone":"eet","hour":"2"})");
}

TEST_F(set_no, unset_means_no_needs_its_first_key)
{
    EXPECT_THAT(bss("'passpoint_ie':{'venue_info_cmd':{'type':'3'}}"),
                ElementsAre(testing::HasSubstr("venue_info_cmd: group refused")));
    EXPECT_THAT(bss("'passpoint_ie':{'venue_info_cmd':{'group':'2','type':'3'}}"), IsEmpty());
    EXPECT_EQ(of_bss("passpoint_ie/venue_info_cmd"), R"({"group":"2","type":"3"})");
    EXPECT_THAT(bss("'ssid_cmd':{'ssid':'x'},'passpoint_ie':{'venue_info_cmd':{'.OPT':'no'}}"), IsEmpty());
    EXPECT_EQ(of_bss("passpoint_ie/venue_info_cmd"), R"({".OPT":"no"})");
}

TEST_F(set_no, fixed_array_replaces_by_index_key_appends_and_closes_gaps)
{
    EXPECT_THAT(bss("'auth_open_wep':{'wep_key_cmd':[{'idx':'0','type':'ascii','key':'aaaaa'},"
                    "{'idx':'1','key':'bbbbb'},{'idx':'2','key':'ccccc'}]}"),
                IsEmpty());
    EXPECT_THAT(bss("'auth_open_wep':{'wep_key_cmd':{'idx':'0','key':'AAAAA'}}"), IsEmpty());
    EXPECT_EQ(of_bss("auth_open_wep/wep_key_cmd/0"), R"({"idx":"0","key":"AAAAA"})");
    EXPECT_THAT(bss("'auth_open_wep':{'wep_key_cmd':{'.OPT':'no','idx':'1'}}"), IsEmpty());
    EXPECT_EQ(of_bss("auth_open_wep/wep_key_cmd"), R"([{"idx":"0","key":"AAAAA"},{"idx":"2","key":"ccccc"}])");
    EXPECT_THAT(bss("'auth_open_wep':{'wep_key_cmd':{'key':'ddddd'}}"),
                ElementsAre(testing::HasSubstr("idx refused: accepted is a UINT from 0 to 3, which must be given")));
    EXPECT_THAT(bss("'auth_open_wep':{'wep_key_cmd':{'.OPT':'noall'}}"), IsEmpty());
    EXPECT_EQ(running(), "{}");
}

TEST_F(set_no, array_takes_an_identical_element_as_no_change_and_refuses_one_too_many)
{
    for (int i = 1; i <= 16; ++i)
        EXPECT_THAT(set("/config/capwap/controller_ip_cmd", "{'ip':'10.0.0." + std::to_string(i) + "'}"), IsEmpty());
    EXPECT_THAT(set("/config/capwap/controller_ip_cmd", "{'ip':'10.0.0.3'}"), IsEmpty());
    EXPECT_EQ(changes, 0U);
    EXPECT_THAT(set("/config/capwap/controller_ip_cmd", "{'ip':'10.0.0.99'}"),
                ElementsAre("config/capwap/controller_ip_cmd refused: accepted is at most 16 entries; remove one "
                            "first"));
}

TEST_F(set_no, no_with_keys_removes_every_element_that_matches_all_of_them)
{
    set("/config/log_server_cmd",
        "[{'ip':'10.0.0.1','facility':'all'},{'ip':'10.0.0.2','facility':'all'},{'ip':'10.0.0.3','facility':'wlan'}]");
    const std::string before = running("log_server_cmd");
    EXPECT_THAT(set("/config/log_server_cmd", "{'.OPT':'no','ip':'10.0.0.3','facility':'all'}"), IsEmpty());
    EXPECT_EQ(running("log_server_cmd"), before);
    EXPECT_THAT(set("/config/log_server_cmd", "{'.OPT':'no','facility':'all'}"), IsEmpty());
    EXPECT_THAT(running("log_server_cmd"), testing::Not(testing::HasSubstr("10.0.0.1")));
    EXPECT_THAT(running("log_server_cmd"), testing::Not(testing::HasSubstr("10.0.0.2")));
}

TEST_F(set_no, list_reset_on_change_says_noall_after_it_was_cleared)
{
    EXPECT_THAT(bss("'time_range_cmd':{'type':'daily','start_time':'60','end_time':'120'}"), IsEmpty());
    EXPECT_EQ(of_bss("time_range_cmd"), R"({"type":"daily","start_time":"60","end_time":"120"})");
    EXPECT_THAT(bss("'time_range_cmd':{'.OPT':'noall'}"), IsEmpty());
    EXPECT_EQ(of_bss("time_range_cmd"), R"({".OPT":"noall"})");
}

TEST_F(set_no, domain_list_says_noall_with_elements_and_after_it_was_cleared)
{
    EXPECT_THAT(bss("'access_list':{'domain_acl_cmd':{'domain':'a.example','forward':'1'}}"), IsEmpty());
    EXPECT_EQ(of_bss("access_list/domain_acl_cmd"), R"([{".OPT":"noall"},{"forward":"1","domain":"a.example"}])");
    EXPECT_THAT(bss("'access_list':{'domain_acl_cmd':{'.OPT':'noall'}}"), IsEmpty());
    EXPECT_EQ(of_bss("access_list/domain_acl_cmd"), R"({".OPT":"noall"})");
    EXPECT_EQ(root.config.radio[0].bss[1].access_list.domain_acl_cmd_opt, CONFIG_NEGATED);
    EXPECT_THAT(bss("'access_list':{'domain_acl_cmd':{'domain':'b.example'}}"), IsEmpty());
    EXPECT_NE(root.config.radio[0].bss[1].access_list.domain_acl_cmd_opt, CONFIG_NEGATED);
}

TEST_F(set_no, radius_servers_are_reported_as_a_replaced_list)
{
    EXPECT_THAT(bss("'auth_open_wpa2':{'wpa_radius_auth_server_cmd':{'ip':'10.0.0.1','port':'1812','key':'shared'}}"),
                IsEmpty());
    EXPECT_EQ(of_bss("auth_open_wpa2/wpa_radius_auth_server_cmd"),
              R"([{".OPT":"noall"},{"ip":"10.0.0.1","port":"1812","key":"shared"}])");
    EXPECT_THAT(bss("'auth_open_wpa2':{'wpa_radius_auth_server_cmd':{'.OPT':'no','ip':'10.0.0.1'}}"), IsEmpty());
    EXPECT_EQ(of_bss("auth_open_wpa2/wpa_radius_auth_server_cmd"), R"({".OPT":"noall"})");
}

TEST_F(set_no, mac_list_stays_packed)
{
    EXPECT_THAT(bss("'access_list':{'mac_acl_cmd':[{'mac':'02:00:00:00:00:01'},{'mac':'02:00:00:00:00:02'},"
                    "{'mac':'02:00:00:00:00:03'}]}"),
                IsEmpty());
    EXPECT_THAT(bss("'access_list':{'mac_acl_cmd':{'.OPT':'no','mac':'02:00:00:00:00:01'}}"), IsEmpty());
    EXPECT_EQ(of_bss("access_list/mac_acl_cmd"), R"([{"mac":"02:00:00:00:00:02"},{"mac":"02:00:00:00:00:03"}])");
    EXPECT_THAT(bss("'access_list':{'mac_acl_cmd':{'mac':'00:00:00:00:00:00'}}"),
                ElementsAre(testing::HasSubstr("but this value, which means \"not set\"")));
    EXPECT_THAT(bss("'access_list':{'mac_acl_cmd':{'.OPT':'noall'}}"), IsEmpty());
    EXPECT_EQ(of_bss("access_list/mac_acl_cmd"), R"({".OPT":"noall"})");
}

TEST_F(set_no, always_reset_lists_say_noall_in_any_case)
{
    EXPECT_THAT(bss("'passpoint_anqp':{'domain_name_cmd':[{'value':'a.example'},{'value':'b.example'}]}"), IsEmpty());
    EXPECT_EQ(of_bss("passpoint_anqp/domain_name_cmd"),
              R"([{".OPT":"noall"},{"value":"a.example"},{"value":"b.example"}])");
    EXPECT_THAT(bss("'passpoint_anqp':{'domain_name_cmd':{'.OPT':'no','value':'a.example'}}"), IsEmpty());
    EXPECT_EQ(of_bss("passpoint_anqp/domain_name_cmd"), R"([{".OPT":"noall"},{"value":"b.example"}])");
}

TEST_F(set_no, value_arrays_and_lists_are_replaced_whole)
{
    EXPECT_THAT(bss("'supported_rates_cmd':{'supported_rates':['12','24','48']}"), IsEmpty());
    EXPECT_THAT(bss("'supported_rates_cmd':{'supported_rates':'6'}"), IsEmpty());
    EXPECT_EQ(of_bss("supported_rates_cmd"), R"({"supported_rates":["6"]})");
    EXPECT_THAT(set("/config/ethernet/switchport_cmd", "{'eth_id':'1','vlanid':['5','6','7']}"), IsEmpty());
    EXPECT_THAT(set("/config/ethernet/switchport_cmd", "{'eth_id':'1','vlanid':['8']}"), IsEmpty());
    EXPECT_EQ(running("ethernet/switchport_cmd"), R"({"vlanid":["8"]})");
    EXPECT_THAT(bss("'supported_rates_cmd':{'supported_rates':['6','7']}"),
                ElementsAre(testing::HasSubstr("up to 12 values, each one of 1, 2, 5")));
}

TEST_F(set_no, address_follows_its_type)
{
    EXPECT_THAT(set("/config/dpi/report_server_cmd", "{'type':'ip','ip':'10.0.0.1','port':'80'}"), IsEmpty());
    EXPECT_THAT(set("/config/dpi/report_server_cmd", "{'domain':'a.example'}"),
                ElementsAre("config/dpi/report_server_cmd: domain 'a.example' refused: accepted is this key only with "
                            "type domain"));
    EXPECT_THAT(set("/config/dpi/report_server_cmd", "{'type':'domain','domain':'a.example'}"), IsEmpty());
    EXPECT_EQ(running("dpi/report_server_cmd"), R"({"type":"domain","port":"80","domain":"a.example"})");
    EXPECT_THAT(set("/config/dpi/report_server_cmd", "{'type':'ip'}"), IsEmpty());
    EXPECT_EQ(running("dpi/report_server_cmd"), R"({"type":"ip","port":"80"})") << "the old address is gone";
}

TEST_F(set_no, one_key_carries_an_address_or_a_name_by_its_type)
{
    EXPECT_THAT(set("/config/speed_test_cmd", "{'type':'ip','addr':'10.0.0.1'}"), IsEmpty());
    EXPECT_EQ(running("speed_test_cmd"), R"({"type":"ip","addr":"10.0.0.1"})");
    EXPECT_THAT(set("/config/speed_test_cmd", "{'addr':'a.example'}"),
                ElementsAre(testing::HasSubstr("accepted is an IPv4 address A.B.C.D")));
    EXPECT_THAT(set("/config/speed_test_cmd", "{'type':'domain','addr':'a.example'}"), IsEmpty());
    EXPECT_EQ(running("speed_test_cmd"), R"({"type":"domain","addr":"a.example"})");
    EXPECT_THAT(set("/config/speed_test_cmd", "{'type':'none','addr':'a.example'}"),
                ElementsAre(testing::HasSubstr("this key only with type ip or domain")));
}

TEST_F(set_no, a_text_that_stays_must_fit_the_new_format)
{
    EXPECT_THAT(bss("'dhcp_option82':{'circuit_id_cmd':{'format':'ascii','value':'not-hex'}}"), IsEmpty());
    EXPECT_THAT(bss("'dhcp_option82':{'circuit_id_cmd':{'format':'hex'}}"),
                ElementsAre(testing::HasSubstr("value 'not-hex' refused: accepted is a text of 1 to 255 hexadecimal")));
    EXPECT_THAT(bss("'dhcp_option82':{'circuit_id_cmd':{'format':'hex','value':'c0ffee'}}"), IsEmpty());
    EXPECT_EQ(of_bss("dhcp_option82/circuit_id_cmd"), R"({"format":"hex","value":"c0ffee"})");
}

TEST_F(set_no, a_prefix_is_reported_as_it_was_given)
{
    EXPECT_THAT(set("/config/ip_route_cmd", "{'dest_prefix':'192.168.7.0/24','gateway':'10.0.0.1'}"), IsEmpty());
    EXPECT_EQ(running("ip_route_cmd"), R"({"dest_prefix":"192.168.7.0/24","gateway":"10.0.0.1"})");
}

TEST_F(set_no, json_object_stays_after_it_was_reported)
{
    EXPECT_THAT(set("/config/ism_cmd", "{'ism':{'a':[1,2]}}"), IsEmpty());
    for (int i = 0; i < 3; ++i) EXPECT_EQ(running("ism_cmd"), R"({"ism":{"a":[1,2]}})");
    EXPECT_THAT(set("/config/ism_cmd", "{'.OPT':'no'}"), IsEmpty());
    EXPECT_EQ(running(), "{}");
}

TEST_F(set_no, never_reported_command_takes_nothing_and_refuses_nothing)
{
    EXPECT_THAT(set("/config/lan_igmp_snoop_cmd", "{}"), IsEmpty());
    EXPECT_EQ(changes, 0U);
    EXPECT_EQ(running(), "{}");
}

TEST_F(set_no, access_list_entries_are_whole_appended_and_removed)
{
    const std::string ace =
        "'source_ip_addr':'10.0.0.0/8','first_source_port':'0','last_source_port':'65535',"
        "'dest_ip_addr':'0.0.0.0/0','first_dest_port':'80','last_dest_port':'80',"
        "'protocol':'6','strategy':'0','action':'1'";
    EXPECT_THAT(set("/config/ip_acl/ace_cmd", "{'identify':'100'," + ace + "}"), IsEmpty());
    EXPECT_THAT(set("/config/ip_acl/ace_cmd", "{'identify':'100'," + ace + "}"), IsEmpty());
    EXPECT_EQ(root.config.ip_acl.list[0].ace_count, 1U) << "an identical entry is no change";
    EXPECT_THAT(set("/config/ip_acl/ace_cmd", "{'identify':'100','protocol':'17'}"),
                ElementsAre(testing::HasSubstr("source_ip_addr refused")));
    EXPECT_THAT(set("/config/ip_acl/ace_cmd", "{'.OPT':'no','identify':'100','protocol':'6'}"), IsEmpty());
    EXPECT_EQ(root.config.ip_acl.list[0].ace_count, 0U);
}

TEST_F(set_no, list_packages_make_find_and_remove_their_elements)
{
    EXPECT_THAT(set("/config/dhcp_server/pool/gateway_cmd", "{'pool_name':'guests','gateway':'10.1.0.1'}"), IsEmpty());
    EXPECT_THAT(set("/config/dhcp_server/pool/gateway_cmd", "{'pool_name':'staff','gateway':'10.2.0.1'}"), IsEmpty());
    EXPECT_THAT(set("/config/dhcp_server/pool/domain_cmd", "{'pool_name':'guests','domain':'g.example'}"), IsEmpty());
    EXPECT_EQ(root.config.dhcp_server.pool.count, 2);
    EXPECT_EQ(
        running("dhcp_server/pool/0"),
        R"({"INDEX":{"pool_name":"guests"},"gateway_cmd":{"gateway":"10.1.0.1"},"domain_cmd":{"domain":"g.example"}})");
    EXPECT_THAT(set("/config/dhcp_server/pool", "{'.OPT':'no','pool_name':'guests'}"), IsEmpty());
    EXPECT_EQ(running("dhcp_server/pool/INDEX/pool_name"), "\"staff\"");
    EXPECT_THAT(set("/config/dhcp_server/pool", "{'.OPT':'noall'}"), IsEmpty());
    EXPECT_EQ(running(), "{}");
    EXPECT_EQ(root.config.dhcp_server.pool.list, nullptr);
}

TEST_F(set_no, a_single_element_in_which_nothing_is_set_is_part_of_the_configuration)
{
    set("/config/vlan", "{'vlan_id':'7'}");
    set("/config/dhcp_server/pool", "{'pool_name':'guests'}");
    set("/config/ip_acl", "{'identify':'100'}");
    const std::string whole = R"({"config":{"dhcp_server":{"pool":{"INDEX":{"pool_name":"guests"}}},)"
                              R"("vlan":{"INDEX":{"vlan_id":"7"}},"ip_acl":{"INDEX":{"identify":"100"}}}})";
    EXPECT_EQ(running(), whole);
    const json_ptr report(apconf_host::running_configuration());
    apconf_host::release_configuration();
    apconf_host::outcome again;
    apconf_host::apply_message(report.get(), again);
    EXPECT_THAT(again.refusals, IsEmpty());
    EXPECT_EQ(running(), whole);
    set("/config/vlan/dhcp_cmd", "{'vlan_id':'7','type':'relay'}");
    EXPECT_EQ(running("vlan"), R"({"INDEX":{"vlan_id":"7"},"dhcp_cmd":{"type":"relay"}})");
}

TEST_F(set_no, removing_below_an_element_that_does_not_exist_makes_none)
{
    EXPECT_THAT(set("/config/vlan/dhcp_cmd", "{'.OPT':'no','vlan_id':'5'}"),
                ElementsAre("config/vlan: vlan_id '5' refused: accepted is an existing one: none"));
    EXPECT_EQ(root.config.vlan.count, 0);
}

TEST_F(set_no, packages_and_instances_can_be_removed_whole)
{
    set("/config/ntp/status_cmd", "{'status':'enable'}");
    bss("'ssid_cmd':{'ssid':'x'},'auth_wpa3_sae':{'wpa_type_cmd':{'sae_password':'password1'}}");
    EXPECT_THAT(set("/config/ntp", "{'.OPT':'no'}"), IsEmpty());
    EXPECT_EQ(running("ntp"), "null");
    EXPECT_THAT(set("/config/radio/bss", "{'.OPT':'no','radio_id':'0','wlan_id':'1'}"), IsEmpty());
    EXPECT_EQ(running(), "{}");
    bss("'ssid_cmd':{'ssid':'x'}");
    EXPECT_THAT(set("/config/radio", "{'.OPT':'no','radio_id':'0'}"), IsEmpty());
    EXPECT_EQ(running(), "{}");
    EXPECT_THAT(set("/config", "{'.OPT':'no'}"),
                ElementsAre("config: 'no' refused: accepted is the removal of a package or command below it"));
}

}  // namespace

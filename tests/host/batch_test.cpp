// What a batch holds before it is committed: what it reports, and what it refuses because no report could carry it.
#include "host/host_test.h"

namespace
{

using apconf_host::role;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class batch : public apconf_test::host_test
{
protected:
    std::vector<std::string> configure(const std::string &body) { return host_test::configure(body, role::batch); }

    // Of BSS 1 of radio 0.
    std::vector<std::string> bss(const std::string &body)
    {
        return configure("{'radio':{'INDEX':{'radio_id':'0'},'bss':{'INDEX':{'wlan_id':'1'}," + body + "}}}");
    }
};

TEST_F(batch, reports_a_removed_bss_and_one_that_is_made_again)
{
    EXPECT_THAT(configure("{'radio':{'INDEX':{'radio_id':'0'},'bss':{'INDEX':{'wlan_id':'1','.OPT':'no'}}}}"),
                IsEmpty());
    EXPECT_EQ(running(),
              R"({"config":{"radio":{"INDEX":{"radio_id":"0"},"bss":{"INDEX":{"wlan_id":"1",".OPT":"no"}}}}})");
    EXPECT_THAT(bss("'ssid_cmd':{'ssid':'again'}"), IsEmpty());
    EXPECT_EQ(root.config.radio[0].bss[1].state, BSS_RECREATE);
    EXPECT_EQ(running("radio/bss/0"), R"({"INDEX":{"wlan_id":"1",".OPT":"no"}})");
    EXPECT_EQ(running("radio/bss/1/ssid_cmd/ssid"), "\"again\"");
}

TEST_F(batch, refuses_a_removal_that_it_cannot_carry)
{
    EXPECT_THAT(configure("{'hostname_cmd':{'.OPT':'no'}}"),
                ElementsAre("config/hostname_cmd: 'no' refused: accepted is the removal of something that this batch "
                            "sets; a batch can carry no other removal here"));
    EXPECT_THAT(configure("{'hostname_cmd':[{'hostname':'a'},{'.OPT':'no'}]}"), IsEmpty());
    EXPECT_EQ(running(), "{}");
}

TEST_F(batch, leaves_nothing_behind)
{
    EXPECT_THAT(bss("'auth_wpa3_sae':{'wpa_type_cmd':{'sae_password':'password1'},"
                    "'wpa_radius_auth_server_cmd':{'ip':'10.0.0.1','key':'shared'}}"),
                IsEmpty());
    apconf_host::commit_batch();
    EXPECT_EQ(memcmp(&root, &mirror_root, sizeof root), 0);
}

TEST_F(batch, reports_a_bss_of_which_it_only_removes_passpoint_settings)
{
    for (const std::string removal :
         {"'passpoint_ie':{'interworking_cmd':{'.OPT':'no'}}",
          "'passpoint_ie':{'roaming_consortium_cmd':{'.OPT':'noall'}}",
          "'passpoint_anqp':{'domain_name_cmd':{'.OPT':'no'}}", "'passpoint_anqp':{'oper_class_cmd':{'.OPT':'no'}}",
          "'passpoint_anqp':{'.OPT':'no'}"}) {
        SCOPED_TRACE(removal);
        EXPECT_THAT(bss(removal), IsEmpty());
        EXPECT_EQ(changes, 1U);
        EXPECT_EQ(running("radio/bss/INDEX"), R"({"wlan_id":"1"})");
        EXPECT_EQ(running("radio/bss/passpoint_ie/interworking_cmd"), R"({".OPT":"no"})");
        EXPECT_EQ(running("radio/bss/passpoint_anqp/domain_name_cmd"), R"({".OPT":"noall"})");
        EXPECT_THAT(bss(removal), IsEmpty());
        EXPECT_EQ(changes, 0U) << "once is enough";
        apconf_host::release_configuration();
    }
}

TEST_F(batch, still_reports_the_bss_when_it_has_set_what_it_removes)
{
    for (const std::string body :
         {"'passpoint_ie':{'internet_cmd':[{'value':'1'},{'.OPT':'no'}]}",
          "'passpoint_anqp':{'nai_realm_cmd':[{'nai_realm':'a.example'},{'.OPT':'noall'}]}",
          "'passpoint_anqp':{'nai_realm_cmd':[{'nai_realm':'a.example'},{'.OPT':'no','nai_realm':'a.example'}]}",
          "'passpoint_anqp':[{'nai_realm_cmd':{'nai_realm':'a.example'}},{'.OPT':'no'}]"}) {
        SCOPED_TRACE(body);
        EXPECT_THAT(bss(body), IsEmpty());
        EXPECT_EQ(running("radio/bss/passpoint_anqp/nai_realm_cmd"), R"({".OPT":"noall"})");
        apconf_host::release_configuration();
    }
}

TEST_F(batch, refuses_to_remove_a_passpoint_package_of_which_one_command_would_stay)
{
    EXPECT_THAT(bss("'passpoint_ie':{'.OPT':'no'}"),
                ElementsAre(HasSubstr("config/radio[0]/bss[1]/passpoint_ie: 'no'")));
    EXPECT_EQ(running(), "{}");
}

TEST_F(batch, deletes_a_bss_whatever_else_it_removes_of_it)
{
    EXPECT_THAT(bss("'passpoint_ie':{'asra_cmd':{'.OPT':'no'}}"), IsEmpty());
    EXPECT_THAT(configure("{'radio':{'INDEX':{'radio_id':'0'},'bss':{'INDEX':{'wlan_id':'1','.OPT':'no'}}}}"),
                IsEmpty());
    EXPECT_EQ(running("radio/bss"), R"({"INDEX":{"wlan_id":"1",".OPT":"no"}})");
    EXPECT_THAT(bss("'passpoint_ie':{'asra_cmd':{'.OPT':'no'}}"), IsEmpty());
    EXPECT_EQ(root.config.radio[0].bss[1].state, BSS_RECREATE);
}

TEST_F(batch, clears_a_list_that_it_replaces_with_nothing)
{
    EXPECT_THAT(bss("'access_list':{'domain_acl_cmd':[{'domain':'a.example'},{'.OPT':'no','domain':'a.example'}]}"),
                IsEmpty());
    EXPECT_EQ(running("radio/bss/access_list/domain_acl_cmd"), R"({".OPT":"noall"})");
}

// The dispatch leaves out of a report what is alone and holds nothing but its index.
TEST_F(batch, refuses_a_single_list_element_without_a_command)
{
    const std::string why = " refused: accepted is a command below it; a batch can carry no single ";
    EXPECT_THAT(configure("{'vlan':{'INDEX':{'vlan_id':'7'}}}"), ElementsAre("config/vlan[7]" + why + "vlan without"));
    apconf_host::release_configuration();
    EXPECT_THAT(configure("{'dhcp_server':{'pool':{'INDEX':{'pool_name':'guests'}}}}"),
                ElementsAre("config/dhcp_server/pool[guests]" + why + "pool without"));
    apconf_host::release_configuration();
    EXPECT_THAT(configure("{'ip_acl':{'INDEX':{'identify':'100'}}}"),
                ElementsAre("config/ip_acl[100]" + why + "ip_acl without"));
    apconf_host::release_configuration();
    EXPECT_THAT(configure("{'vlan':[{'INDEX':{'vlan_id':'7'}},{'INDEX':{'vlan_id':'8'}}]}"), IsEmpty());
    EXPECT_EQ(running("vlan"), R"([{"INDEX":{"vlan_id":"7"}},{"INDEX":{"vlan_id":"8"}}])");
}

// The removals that stand in a report of the unset state do so in a BSS, or marking the BSS would not report them.
TEST_F(batch, what_reports_its_removal_stands_in_a_bss)
{
    for (const apconf_package *package : apconf_packages)
        for (uint32_t i = 0; i < package->command_count; ++i) {
            const apconf_command &command = package->commands[i];
            const bool reports = command.variant == APCONF_UNSET_MEANS_NO || command.variant == APCONF_ALWAYS_RESET;
            EXPECT_TRUE(!reports || command.scope == APCONF_SCOPE_BSS) << command.name;
        }
}

// Elsewhere the state of a BSS means nothing and must not show.
TEST_F(batch, on_a_server_a_removal_leaves_no_trace_of_its_bss)
{
    EXPECT_THAT(host_test::configure("{'radio':{'INDEX':{'radio_id':'0'},'bss':{'INDEX':{'wlan_id':'1'},"
                                     "'passpoint_anqp':{'.OPT':'no'},'passpoint_ie':{'asra_cmd':{'.OPT':'no'}}}}}"),
                IsEmpty());
    EXPECT_EQ(changes, 0U);
    EXPECT_EQ(running(), "{}");
}

}  // namespace

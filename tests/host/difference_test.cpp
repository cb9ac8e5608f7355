// The message that leads from one configuration to another, applied to the first, makes the second: over random
// configurations and over those that are hard to reach.
#include "host/difference.h"

#include "host/host_test.h"
#include "host/random_message.h"

namespace
{

using apconf_host::outcome;
using apconf_test::json_ptr;
using apconf_test::parse;
using apconf_test::random_message;
using apconf_test::text_of;
using testing::IsEmpty;

class difference : public apconf_test::host_test
{
protected:
    // Applies the "config" of an object as a set message.
    static outcome apply(json_object *object)
    {
        const json_ptr message = parse("{'ACTION':'set'}");
        json_object_object_add(message.get(), "config", json_object_get(apconf_host::member(object, "config")));
        outcome outcome;
        EXPECT_TRUE(apconf_host::apply_message(message.get(), outcome));
        return outcome;
    }

    static void apply_config(json_object *object)
    {
        for (const auto &refusal : apply(object).refusals) ADD_FAILURE() << to_text(refusal);
    }

    static json_ptr report() { return json_ptr(apconf_host::running_configuration()); }

    // Makes `from` the running configuration.
    static void run(json_object *from)
    {
        apconf_host::release_configuration();
        if (apconf_host::member(from, "config")) apply_config(from);
    }

    // Leads from what is running to `to`; the text of what was said, "{}": nothing.
    static std::string lead_to(json_object *to)
    {
        const json_ptr message = apconf_host::difference(report().get(), to);
        if (json_object_object_length(message.get()) > 0) apply_config(message.get());
        EXPECT_EQ(text_of(report().get()), text_of(to)) << "after " << text_of(message.get());
        return text_of(message.get());
    }

    // The messages between two configurations, given as the text of "config".
    std::string between(const std::string &from, const std::string &to)
    {
        EXPECT_THAT(configure(to), IsEmpty());
        const json_ptr wanted = report();
        apconf_host::release_configuration();
        EXPECT_THAT(configure(from), IsEmpty());
        const std::string text = lead_to(wanted.get());
        apconf_host::release_configuration();
        return text;
    }
};

class random_difference : public difference, public testing::WithParamInterface<unsigned>
{
protected:
    random_message random_{GetParam(), 5 + GetParam() * 37 % 95};

    // Takes out one in five of all members and elements, but for what chooses instances.
    void thin(json_object *value)
    {
        if (json_object_is_type(value, json_type_array)) {
            for (size_t i = json_object_array_length(value); i-- > 0;)
                if (chance_(draw_) == 0)
                    json_object_array_del_idx(value, i, 1);
                else
                    thin(json_object_array_get_idx(value, i));
        } else if (json_object_is_type(value, json_type_object)) {
            json_object_object_foreach(value, key, child)
            {
                const std::string name = key;
                if (name == "INDEX" || name == "config") continue;
                if (chance_(draw_) == 0)
                    json_object_object_del(value, name.c_str());
                else
                    thin(child);
            }
            thin(apconf_host::member(value, "config"));
        }
    }

    std::mt19937 draw_{GetParam()};
    std::uniform_int_distribution<int> chance_{0, 4};

    // Upon what is there: full lists refuse some of it.
    void apply_random() { apply(random_.make().get()); }
};

TEST_P(random_difference, leads_from_any_configuration_to_any_other)
{
    apply_random();
    const json_ptr first = report();
    run(nullptr);
    apply_random();
    const json_ptr second = report();
    lead_to(first.get());
    lead_to(second.get());
    EXPECT_EQ(lead_to(second.get()), "{}");
    lead_to(parse("{}").get());
    lead_to(first.get());
}

// What has been changed again and again holds lists and marks that one message does not make.
TEST_P(random_difference, leads_back_after_changes_upon_changes)
{
    apply_random();
    const json_ptr first = report();
    for (int change = 0; change < 3; ++change) apply_random();
    const json_ptr last = report();
    lead_to(first.get());
    lead_to(last.get());
}

// One message between two configurations that have most in common, both ways.
TEST_P(random_difference, leads_to_a_configuration_that_lacks_some_of_it)
{
    apply_random();
    const json_ptr whole = report();
    const json_ptr thinned(json_tokener_parse(text_of(whole.get()).c_str()));
    thin(thinned.get());
    run(nullptr);
    apply(thinned.get());  // some of it lacks a key that is needed
    const json_ptr less = report();
    lead_to(whole.get());
    lead_to(less.get());
}

TEST_P(random_difference, replacement_leads_from_anything_to_a_configuration)
{
    apply_random();
    const json_ptr wanted = report();
    apply_random();
    const json_ptr message = apconf_host::replacement(wanted.get());
    apply_config(message.get());
    EXPECT_EQ(running(), text_of(wanted.get()));
    apply_config(message.get());
    EXPECT_EQ(running(), text_of(wanted.get()));
}

INSTANTIATE_TEST_SUITE_P(seeds, random_difference, testing::Range(1U, 101U));

TEST_F(difference, of_equal_configurations_says_nothing)
{
    EXPECT_EQ(between("{'hostname_cmd':{'hostname':'a'}}", "{'hostname_cmd':{'hostname':'a'}}"), "{}");
    EXPECT_EQ(between("{}", "{}"), "{}");
}

TEST_F(difference, touches_only_what_differs)
{
    const std::string rest =
        ",'wdt_cmd':{'status':'enable'},'vlan':{'INDEX':{'vlan_id':'7'},'dhcp_cmd':{'type':'relay'}}}";
    EXPECT_EQ(between("{'hostname_cmd':{'hostname':'a'}" + rest, "{'hostname_cmd':{'hostname':'b'}" + rest),
              R"({"config":{"hostname_cmd":{"hostname":"b"}}})");
}

TEST_F(difference, removes_a_command_that_is_no_longer_there)
{
    EXPECT_EQ(between("{'hostname_cmd':{'hostname':'a'}}", "{}"), R"({"config":{"hostname_cmd":{".OPT":"no"}}})");
}

TEST_F(difference, removes_a_command_before_it_sets_it_with_fewer_keys)
{
    EXPECT_EQ(between("{'ppsk_redis_server_cmd':{'ip':'10.0.0.1','port':'1','auth':'x'}}",
                      "{'ppsk_redis_server_cmd':{'ip':'10.0.0.2'}}"),
              R"({"config":{"ppsk_redis_server_cmd":[{".OPT":"no"},{"ip":"10.0.0.2"}]}})");
}

TEST_F(difference, removes_and_adds_single_entries_of_a_list)
{
    const auto servers = [](const std::string &numbers) {
        std::string list;
        for (const char number : numbers)
            list += (list.empty() ? "" : ",") + std::string("{'ip':'10.0.0.") + number + "'}";
        return "{'capwap':{'controller_ip_cmd':[" + list + "]}}";
    };
    EXPECT_EQ(between(servers("123"), servers("134")),
              R"({"config":{"capwap":{"controller_ip_cmd":[{".OPT":"no","ip":"10.0.0.2"},{"ip":"10.0.0.4"}]}}})");
    EXPECT_EQ(between(servers("12"), servers("21")),
              R"({"config":{"capwap":{"controller_ip_cmd":[{".OPT":"noall"},{"ip":"10.0.0.2"},{"ip":"10.0.0.1"}]}}})");
}

TEST_F(difference, does_not_remove_an_entry_that_shares_the_keys_of_another)
{
    EXPECT_THAT(between("{'log_server_cmd':[{'ip':'10.0.0.1'},{'ip':'10.0.0.1','facility':'all'}]}",
                        "{'log_server_cmd':[{'ip':'10.0.0.1','facility':'all'}]}"),
                testing::HasSubstr("noall"));
}

TEST_F(difference, removes_changes_and_adds_instances)
{
    const auto port = [](const std::string &number, const std::string &interval) {
        return "{'INDEX':{'eth_id':'" + number + "'},'pppoe_echo_interval_cmd':{'interval':'" + interval + "'}}";
    };
    EXPECT_EQ(between("{'ethernet':[" + port("0", "10") + "," + port("1", "10") + "," + port("2", "10") + "]}",
                      "{'ethernet':[" + port("1", "10") + "," + port("2", "20") + "," + port("3", "10") + "]}"),
              R"({"config":{"ethernet":[{"INDEX":{"eth_id":"0",".OPT":"no"}},)"
              R"({"INDEX":{"eth_id":"2"},"pppoe_echo_interval_cmd":{"interval":"20"}},)"
              R"({"INDEX":{"eth_id":"3"},"pppoe_echo_interval_cmd":{"interval":"10"}}]}})");
}

TEST_F(difference, keeps_the_order_of_elements)
{
    const auto vlans = [](const std::string &ids) {
        std::string list;
        for (const char id : ids)
            list += (list.empty() ? "" : ",") + std::string("{'INDEX':{'vlan_id':'") + id +
                    "'},'dhcp_cmd':{'type':'relay'}}";
        return "{'vlan':[" + list + "]}";
    };
    EXPECT_EQ(between(vlans("123"), vlans("13")), R"({"config":{"vlan":{"INDEX":{"vlan_id":"2",".OPT":"no"}}}})");
    EXPECT_EQ(between(vlans("123"), vlans("132")),
              R"({"config":{"vlan":[{"INDEX":{"vlan_id":"2",".OPT":"no"}},{"INDEX":{"vlan_id":"3",".OPT":"no"}},)"
              R"({"INDEX":{"vlan_id":"3"},"dhcp_cmd":{"type":"relay"}},)"
              R"({"INDEX":{"vlan_id":"2"},"dhcp_cmd":{"type":"relay"}}]}})");
}

TEST_F(difference, finds_the_only_element_that_an_answer_leaves_out)
{
    EXPECT_THAT(configure("{'vlan':{'INDEX':{'vlan_id':'6'},'dhcp_cmd':{'type':'relay'}}}"), IsEmpty());
    const json_ptr wanted = report();
    run(nullptr);
    EXPECT_THAT(configure("{'vlan':{'INDEX':{'vlan_id':'5'}}}"), IsEmpty());
    ASSERT_EQ(text_of(report().get()), R"({"config":{"vlan":{"INDEX":{"vlan_id":"5"}}}})");
    const json_ptr answered = parse("{'config':{}}");
    apply_config(apconf_host::difference(answered.get(), wanted.get()).get());
    EXPECT_EQ(text_of(report().get()), text_of(wanted.get()));
}

TEST_F(difference, clears_a_list_for_good_only_where_that_is_wanted)
{
    const auto list = [](const std::string &value) {
        return "{'radio':{'INDEX':{'radio_id':'0'},'bss':{'INDEX':{'wlan_id':'0'},'ssid_cmd':{'ssid':'a'},'access_list'"
               ":"
               "{'acl_type_cmd':{'type':'deny'}" +
               (value.empty() ? "" : ",'domain_acl_cmd':" + value) + "}}}}";
    };
    const std::string entry = "{'domain':'example.org','forward':'1'}";
    for (const auto &from : {list(""), list("{'.OPT':'noall'}"), list(entry)})
        for (const auto &to : {list(""), list("{'.OPT':'noall'}"), list(entry)}) between(from, to);
}

TEST_F(difference, replaces_the_package_around_a_flag_that_was_never_set)
{
    EXPECT_EQ(between("{'celluar':{'shutdown_cmd':{}}}", "{}"), R"({"config":{"celluar":{".OPT":"noall"}}})");
    const auto bss = [](const std::string &flag) {
        return "{'radio':{'INDEX':{'radio_id':'1'},'txpower_cmd':{'txpower':'9'},"
               "'bss':{'INDEX':{'wlan_id':'2'}," +
               flag + "'ssid_cmd':{'ssid':'x'}}}}";
    };
    const std::string said = between(bss("'shutdown_cmd':{'.OPT':'no'},"), bss(""));
    EXPECT_THAT(said,
                testing::StartsWith(R"({"config":{"radio":{"INDEX":{"radio_id":"1"},"bss":[{"INDEX":{"wlan_id":"2",)"
                                    R"(".OPT":"no"}},{"INDEX":{"wlan_id":"2"},"ssid_cmd":{"ssid":"x"},)"));
    EXPECT_THAT(said, testing::Not(testing::HasSubstr("txpower")));
}

TEST_F(difference, replaces_everything_for_a_setting_that_remembers_its_removal)
{
    EXPECT_EQ(between("{'timezone_cmd':{'zone':'cet','hour':'1'},'wdt_cmd':{'status':'enable'}}",
                      "{'wdt_cmd':{'status':'disable'}}"),
              R"({"config":[{".OPT":"noall"},{"wdt_cmd":{"status":"disable"}}]})");
}

TEST_F(difference, whole_configuration_is_removed_only_when_another_one_follows)
{
    configure("{'hostname_cmd':{'hostname':'a'}}");
    const auto refused =
        testing::ElementsAre("config: 'no' refused: accepted is the removal of a package or command below it");
    EXPECT_THAT(configure("{'.OPT':'noall'}"), refused);
    EXPECT_THAT(configure("[{'.OPT':'noall'}]"), refused);
    EXPECT_THAT(configure("[{'wdt_cmd':{'status':'enable'}},{'.OPT':'noall'}]"), refused);
    EXPECT_THAT(configure("[{'.OPT':'noall'},{'wdt_cmd':{'status':'enable'}}]", apconf_host::role::batch), refused);
    EXPECT_THAT(running(), testing::HasSubstr("hostname"));
    EXPECT_THAT(configure("[{'.OPT':'noall'},{'wdt_cmd':{'status':'enable'}}]"), IsEmpty());
    EXPECT_EQ(running(), R"({"config":{"wdt_cmd":{"status":"enable"}}})");
}

}  // namespace

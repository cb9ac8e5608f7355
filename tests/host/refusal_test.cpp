// What is refused, how it is said, and that nothing that anyone sends does harm.
#include <random>

#include "host/expectation.h"
#include "host/host_test.h"
#include "host/random_message.h"
#include "host/secrets.h"

namespace
{

using apconf_host::json_ptr;
using apconf_host::outcome;
using apconf_test::parse;
using apconf_test::text_of;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class refusals : public apconf_test::host_test
{
};

TEST_F(refusals, name_path_with_instances_key_value_and_what_would_be_accepted)
{
    EXPECT_THAT(configure("{'radio':{'INDEX':{'radio_id':'1'},'bss':{'INDEX':{'wlan_id':'3'},"
                          "'ssid_cmd':{'ssid':''},'hidden_ssid_cmd':{'status':'perhaps'},"
                          "'bcast':{},'rts_threshold_cmd':{'rtss':'1'},'access_list':"
                          "{'mac_acl_cmd':{'mac':'nonsense'}}}}}"),
                testing::UnorderedElementsAre(
                    "config/radio/bss/bcast refused: accepted is a command of config/radio/bss, such as shutdown_cmd",
                    "config/radio[1]/bss[3]/ssid_cmd: ssid refused: accepted is a text of 1 to 32 characters",
                    "config/radio[1]/bss[3]/hidden_ssid_cmd: status 'perhaps' refused: accepted is one of enable, "
                    "disable",
                    "config/radio[1]/bss[3]/rts_threshold_cmd: rtss refused: accepted is the key rts",
                    "config/radio[1]/bss[3]/access_list/mac_acl_cmd: mac 'nonsense' refused: accepted is a MAC address "
                    "XX:XX:XX:XX:XX:XX"));
    EXPECT_EQ(running(), "{}");
}

TEST_F(refusals, tell_the_range_of_numbers_addresses_and_texts)
{
    EXPECT_THAT(set("/config/radio/txpower_cmd", "{'radio_id':'0','txpower':'37'}"),
                ElementsAre("config/radio[0]/txpower_cmd: txpower '37' refused: accepted is a UINT from 0 to 36"));
    EXPECT_THAT(set("/config/radio/location_rssi_threshold_cmd", "{'radio_id':'0','rssi':'-111'}"),
                ElementsAre(HasSubstr("accepted is a SINT from -110 to -10")));
    EXPECT_THAT(set("/config/local_web_server_cmd", "{'ip':'10.0.0'}"),
                ElementsAre(HasSubstr("accepted is an IPv4 address A.B.C.D")));
    EXPECT_THAT(set("/config/ip_route_cmd", "{'dest_prefix':'10.0.0.0/33'}"),
                ElementsAre(HasSubstr("accepted is an IPv4 prefix A.B.C.D/LENGTH")));
    EXPECT_THAT(set("/config/dhcp_server/pool/lease_cmd", "{'pool_name':'a','time':'25:00:00'}"),
                ElementsAre(HasSubstr("accepted is a time HH:MM:SS")));
    EXPECT_THAT(set("/config/radio/txpower_cmd", "{'radio_id':'0','txpower':''}"),
                ElementsAre(HasSubstr("accepted is a UINT from 0 to 36")))
        << "an empty text is no number";
}

TEST_F(refusals, value_that_means_not_set_cannot_be_set)
{
    EXPECT_THAT(set("/config/timezone_cmd", "{'zone':'gmt','hour':'-1'}"),
                ElementsAre(HasSubstr("but this value, which means \"not set\"")));
    EXPECT_THAT(set("/config/local_web_server_cmd", "{'ip':'255.255.255.255'}"),
                ElementsAre(HasSubstr("but this value, which means \"not set\"")));
    EXPECT_THAT(set("/config/dhcp_server/dns_list_cmd", "{'ip':'0.0.0.0'}"),
                ElementsAre(HasSubstr("but this value, which means \"not set\"")));
    EXPECT_EQ(running(), "{}");
}

TEST_F(refusals, instances_outside_are_refused_with_what_stands_below_them)
{
    EXPECT_THAT(set("/config/radio/txpower_cmd", "{'radio_id':'2','txpower':'1'}"),
                ElementsAre("config/radio: radio_id '2' refused: accepted is a UINT from 0 to 1"));
    EXPECT_THAT(set("/config/radio/txpower_cmd", "{'txpower':'1'}"),
                ElementsAre("config/radio: radio_id refused: accepted is a UINT from 0 to 1, which must be given"));
    EXPECT_THAT(configure("{'radio':{'txpower_cmd':{'txpower':'1'}}}"), ElementsAre(HasSubstr("radio_id refused")));
    EXPECT_THAT(configure("{'radio':{'INDEX':{'radio_id':'0','wlan_id':'1'},'txpower_cmd':{'txpower':'1'}}}"),
                ElementsAre("config/radio: wlan_id refused: accepted is the key radio_id"));
    EXPECT_THAT(set("/config/vlan/dhcp_cmd", "{'vlan_id':'4095','type':'relay'}"),
                ElementsAre("config/vlan: vlan_id '4095' refused: accepted is a UINT from 1 to 4094"));
    EXPECT_EQ(root.config.vlan.count, 0);
}

TEST_F(refusals, lists_of_instances_end_where_the_schema_says)
{
    for (int i = 1; i <= 64; ++i)
        EXPECT_THAT(set("/config/vlan", "{'vlan_id':'" + std::to_string(i) + "'}"), IsEmpty());
    EXPECT_THAT(set("/config/vlan", "{'vlan_id':'65'}"),
                ElementsAre("config/vlan: vlan_id '65' refused: accepted is at most 64 entries"));
    EXPECT_EQ(root.config.vlan.count, 64);
}

TEST_F(refusals, unknown_paths_are_named_with_a_likely_one)
{
    EXPECT_THAT(set("/config/ntp/statuscmd", "{}"),
                ElementsAre("config/ntp/statuscmd refused: accepted is a command of config/ntp, perhaps status_cmd"));
    EXPECT_THAT(set("/confg/ntp", "{}"),
                ElementsAre("confg refused: accepted is the first word of a path, perhaps config"));
    EXPECT_THAT(set("/config/ntp", "{'status':'enable'}"),
                ElementsAre("config/ntp refused: accepted is a command of config/ntp: status_cmd, server_cmd"));
    EXPECT_THAT(apply("{'ACTION':'set','confg':{}}"), ElementsAre(HasSubstr("confg refused")));
}

TEST_F(refusals, messages_that_are_no_set_are_refused_whole)
{
    EXPECT_THAT(apply("[1,2]"), ElementsAre(HasSubstr("message refused")));
    EXPECT_THAT(apply("{'CPATH':{'param':{}}}"), ElementsAre(HasSubstr("message refused")));
    EXPECT_THAT(apply("{'ACTION':'get','config':{}}"), ElementsAre("message: ACTION 'get' refused: accepted is set"));
}

TEST_F(refusals, wrong_json_types_are_refused_where_they_stand)
{
    EXPECT_THAT(configure("{'ntp':'x'}"), ElementsAre("config/ntp: 'x' refused: accepted is an object"));
    EXPECT_THAT(configure("{'ntp':{'status_cmd':'enable'}}"),
                ElementsAre("config/ntp/status_cmd: 'enable' refused: accepted is an object with the key status"));
    EXPECT_THAT(
        configure("{'ntp':{'status_cmd':{'status':['enable']}}}"),
        ElementsAre("config/ntp/status_cmd: status '[\"enable\"]' refused: accepted is one of enable, disable"));
    EXPECT_THAT(configure("{'radio':{'INDEX':'0','txpower_cmd':{'txpower':'1'}}}"),
                testing::Contains(HasSubstr("config/radio")));
    EXPECT_THAT(configure("{'ism_cmd':{'ism':'text'}}"), ElementsAre(HasSubstr("accepted is a JSON object")));
    EXPECT_THAT(configure("{'hostname_cmd':{'.OPT':'maybe','hostname':'x'}}"),
                ElementsAre("config/hostname_cmd: .OPT 'maybe' refused: accepted is no or noall"));
    EXPECT_THAT(configure("{'hostname_cmd':{'hostname':'a\\u0000b'}}"), ElementsAre(HasSubstr("hostname")));
    EXPECT_EQ(running(), "{}");
}

TEST_F(refusals, numbers_and_booleans_count_as_their_text_and_null_as_absent)
{
    EXPECT_THAT(configure("{'radio':{'INDEX':{'radio_id':0},'txpower_cmd':{'txpower':12},'channel_cmd':null}}"),
                IsEmpty());
    EXPECT_EQ(running("radio/txpower_cmd"), R"({"txpower":"12"})");
    EXPECT_THAT(set("/config/uplink_check_cmd", "{'domain':'a.example','ip_addr':null}"), IsEmpty());
    EXPECT_EQ(running("uplink_check_cmd"), R"({"domain":"a.example"})");
}

TEST_F(refusals, never_show_a_secret)
{
    const std::vector<std::string> all[] = {
        configure("{'password_cmd':{'password':'" + std::string(200, 'S') + "'}}"),
        configure("{'password_cmd':'SSSS'}"),
        configure("{'password_cmd':{'passwort':'SSSS'}}"),
        configure("{'password_cmd':{'password':['SSSS']}}"),
        configure("{'radio':{'INDEX':{'radio_id':'0'},'bss':{'INDEX':{'wlan_id':'0'},'auth_open_wpa2':"
                  "{'wpa_type_cmd':{'key':'SSSS'}}}}}"),
    };
    for (const auto &lines : all) {
        ASSERT_THAT(lines, testing::SizeIs(1));
        EXPECT_THAT(lines[0], testing::Not(HasSubstr("SSSS")));
    }
    EXPECT_THAT(all[0][0], HasSubstr("password '***' refused"));
}

TEST_F(refusals, are_one_line_and_not_endless)
{
    const auto lines = configure("{'hostname_cmd':{'hostname':'" + std::string(5000, 'x') + "'},'a\\nb':{}}");
    ASSERT_THAT(lines, testing::SizeIs(2));
    for (const auto &line : lines) {
        EXPECT_THAT(line, testing::Not(HasSubstr("\n")));
        EXPECT_LT(line.size(), 400U);
    }
    std::string many = "{'ACTION':'set','config':{";
    for (int i = 0; i < 5000; ++i) many += "'x" + std::to_string(i) + "':{},";
    many += "'y':{}}}";
    EXPECT_EQ(apply(many).size(), outcome::MAX_REFUSALS);
}

TEST_F(refusals, secrets_are_masked_in_answers_and_messages)
{
    const json_ptr answer = parse(
        "{'config':{'password_cmd':{'password':'x'},'radio':[{'bss':{'auth_open_wep':"
        "{'wep_key_cmd':[{'idx':'0','key':'y'},{'idx':'1','key':'z'}]}}}]}}");
    apconf_host::mask_secrets(answer.get());
    EXPECT_EQ(text_of(answer.get()),
              R"({"config":{"password_cmd":{"password":"***"},"radio":[{"bss":{"auth_open_wep":{"wep_key_cmd":[)"
              R"({"idx":"0","key":"***"},{"idx":"1","key":"***"}]}}}]}})");
    const json_ptr single = parse("{'CPATH':{'path':'/config/password_cmd','param':{'password':'x'}}}");
    apconf_host::mask_secrets(single.get());
    EXPECT_EQ(text_of(single.get()), R"({"CPATH":{"path":"/config/password_cmd","param":{"password":"***"}}})");
}

TEST_F(refusals, every_command_refuses_a_wrong_value_of_every_key)
{
    for (const apconf_package *package : apconf_packages)
        for (uint32_t i = 0; i < package->command_count; ++i) {
            const apconf_command &command = package->commands[i];
            for (unsigned f = 0; f < command.field_count; ++f) {
                const apconf_field &field = command.fields[f];
                if (!field.key) continue;
                const std::string accepted = apconf_host::accepted_value(package->table[i], field);
                EXPECT_THAT(accepted, testing::Not(IsEmpty()));
                EXPECT_THAT(accepted, testing::Not(testing::EndsWith("one of "))) << command.name << " " << field.key;
            }
        }
}

// ---- hostile messages ----

class hostile : public refusals, public testing::WithParamInterface<unsigned>
{
protected:
    uint64_t draw(uint64_t below) { return std::uniform_int_distribution<uint64_t>(0, below - 1)(source_); }

    json_object *anything(int depth)
    {
        static const char *const words[] = {"",    "no",   "noall", "4294967295", "-1",     "0x7fffffff", "%s%n",
                                            "a/b", "true", "\x7f",  "ip",         "domain", "hex"};
        switch (draw(depth > 0 ? 8 : 6)) {
            case 0:
                return json_object_new_int64(static_cast<int64_t>(source_()));
            case 1:
                return json_object_new_boolean(1);
            case 2:
                return json_object_new_double(1e300);
            case 3:
                return nullptr;
            case 4:
                return json_object_new_string_len("a\0b", 3);
            case 5:
                return json_object_new_string(words[draw(std::size(words))]);
            case 6: {
                json_object *array = json_object_new_array();
                for (uint64_t n = draw(4); n > 0; --n) json_object_array_add(array, anything(depth - 1));
                return array;
            }
            default: {
                json_object *object = json_object_new_object();
                static const char *const keys[] = {"INDEX", ".OPT", "radio_id", "status", "key", "x", "pool_name"};
                for (uint64_t n = draw(4); n > 0; --n)
                    json_object_object_add(object, keys[draw(std::size(keys))], anything(depth - 1));
                return object;
            }
        }
    }

    // Puts something else in some places of a valid message.
    void spoil(json_object *value, unsigned percent)
    {
        if (json_object_is_type(value, json_type_array)) {
            for (size_t i = 0; i < json_object_array_length(value); ++i) {
                if (draw(100) < percent)
                    json_object_array_put_idx(value, i, anything(3));
                else
                    spoil(json_object_array_get_idx(value, i), percent);
            }
            return;
        }
        if (!json_object_is_type(value, json_type_object)) return;
        std::vector<std::string> names;
        json_object_object_foreach(value, name, member)
        {
            (void)member;
            names.push_back(name);
        }
        for (const std::string &each : names) {
            if (each == "ACTION" || each == "config") {
                if (each == "config") spoil(apconf_host::member(value, "config"), percent);
            } else if (draw(100) < percent) {
                json_object_object_add(value, each.c_str(), anything(3));
            } else {
                spoil(apconf_host::member(value, each.c_str()), percent);
            }
        }
    }

    std::mt19937_64 source_{GetParam()};
};

TEST_P(hostile, spoilt_messages_end_in_refusals_and_leave_a_configuration_that_reproduces_itself)
{
    for (const auto as : {apconf_host::role::server, apconf_host::role::batch}) {
        apconf_test::random_message random(GetParam(), 60);
        const json_ptr message = random.make();
        spoil(message.get(), 8);
        outcome outcome;
        outcome.as = as;
        apconf_host::apply_message(message.get(), outcome);
        EXPECT_THAT(outcome.refusals, testing::Not(IsEmpty()));
        for (const auto &refusal : outcome.refusals) EXPECT_THAT(to_text(refusal), testing::Not(HasSubstr("\n")));
        if (as == apconf_host::role::batch) {
            apconf_host::commit_batch();
            continue;
        }
        const json_ptr report(apconf_host::running_configuration());
        apconf_host::release_configuration();
        apconf_host::outcome again;
        apconf_host::apply_message(report.get(), again);
        EXPECT_EQ(running(), text_of(report.get()));
        apconf_host::release_configuration();
    }
}

TEST_P(hostile, single_commands_with_any_parameter_do_no_harm)
{
    static const char *const paths[] = {"/config/radio/bss/ssid_cmd",
                                        "/config/vlan/dhcp_cmd",
                                        "/config/ism_cmd",
                                        "/config/dhcp_server/pool",
                                        "/config/ip_acl/ace_cmd",
                                        "/config/log_level_cmd",
                                        "/",
                                        "",
                                        "//config//radio",
                                        "/config/radio/bss",
                                        "/config/ntp/status_cmd/x"};
    for (int i = 0; i < 300; ++i) {
        const json_ptr message(json_object_new_object());
        json_object_object_add(message.get(), "ACTION", draw(5) ? json_object_new_string("set") : anything(1));
        json_object *single = json_object_new_object();
        json_object_object_add(single, "path", json_object_new_string(paths[draw(std::size(paths))]));
        if (draw(6)) json_object_object_add(single, "param", anything(4));
        json_object_object_add(message.get(), "CPATH", single);
        outcome outcome;
        apconf_host::apply_message(message.get(), outcome);
        json_object_object_add(message.get(), "ACTION", json_object_new_string("get"));
        json_object_put(apconf_host::answer_get(message.get()));
    }
}

INSTANTIATE_TEST_SUITE_P(seeds, hostile, testing::Range(1U, 31U));

TEST_F(refusals, a_path_deeper_than_any_tree_is_refused)
{
    std::string path = "/config";
    for (int i = 0; i < 100; ++i) path += "/config";
    EXPECT_THAT(set(path, "{}"), ElementsAre(HasSubstr("config/config refused")));
}

TEST_F(refusals, gets_of_anything_but_a_get_answer_nothing)
{
    EXPECT_EQ(apconf_host::answer_get(nullptr), nullptr);
    EXPECT_EQ(apconf_host::answer_get(parse("[]").get()), nullptr);
    EXPECT_EQ(apconf_host::answer_get(parse("{'ACTION':'set','config':{}}").get()), nullptr);
    set("/config/hostname_cmd", "{'hostname':'ap'}");
    const json_ptr answer(
        apconf_host::answer_get(parse("{'ACTION':'get','CPATH':{'path':'/config/hostname_cmd'}}").get()));
    EXPECT_EQ(text_of(answer.get()), R"({"config":{"hostname_cmd":{"hostname":"ap"}}})");
}

}  // namespace

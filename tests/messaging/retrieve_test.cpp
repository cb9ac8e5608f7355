// Retrieval: building requests from tables, answering them as messages, and pruning what is empty.
#include "apconf/retrieve.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <json-c/json.h>
#include <malloc.h>
#include <syslog.h>

#include <array>
#include <random>
#include <string>
#include <vector>

#include "apconf/config_data.h"
#include "apconf/packages.h"
#include "apconf/store.h"
#include "support/cmd_nodes.h"
#include "support/log_capture.h"
#include "util/owners.h"

namespace
{

using apconf::json_ptr;
using apconf_test::command;
using apconf_test::log_capture;
using apconf_test::package;
using testing::ElementsAre;
using testing::IsEmpty;

using rtv_table = std::vector<struct rtv_record>;

std::string plain(json_object *value)
{
    return value ? json_object_to_json_string_ext(value, JSON_C_TO_STRING_PLAIN) : "null";
}

json_ptr parse(const std::string &text)
{
    return json_ptr(json_tokener_parse(text.c_str()));
}

// The empty object after `table` has filled it.
std::string generated(const rtv_table &table)
{
    const json_ptr object(json_object_new_object());
    rtv_gen_json_table(object.get(), table.data());
    return plain(object.get());
}

std::string pruned(const std::string &text, const rtv_table &table)
{
    const json_ptr object = parse(text);
    rtv_remove_null_obj(object.get(), table.data());
    return plain(object.get());
}

// What a handler saw.
struct seen_context {
    void *instance = nullptr;
    uintptr_t user = 1;
    std::string module;
    int is_get = -1;
};
seen_context seen;
bool answering = true;

int get_host(json_object *, json_object **result, struct cpath_ctx *ctx)
{
    seen = {ctx->instance, ctx->user, ctx->module, ctx->is_get};
    if (!answering) return -1;
    *result = json_tokener_parse(R"({"name":"ap"})");
    return 0;
}

// Two radios; a request selects one by its index.
int get_radio(json_object *args, json_object **result, struct cpath_ctx *)
{
    if (!args) *result = json_tokener_parse(R"([{"radio_id":"0"},{"radio_id":"1"}])");
    return 0;
}

int get_channel(json_object *, json_object **result, struct cpath_ctx *)
{
    *result = json_tokener_parse(R"({"channel":"6"})");
    return 0;
}

struct cmd_node with_get(struct cmd_node node, cmd_get_fn *get)
{
    node.get = get;
    return node;
}

struct cmd_node radio_table[] = {with_get(command("channel_cmd"), get_channel), command("silent_cmd"), {}};
struct cmd_node config_table[] = {
    with_get(package("radio", radio_table), get_radio), with_get(command("host_cmd"), get_host), {}};
struct cmd_node root_table[] = {package("config", config_table), {}};

class Retrieve : public testing::Test
{
protected:
    void SetUp() override
    {
        register_root_cmd(root_table);
        seen = {};
        answering = true;
    }
    void TearDown() override { register_root_cmd(nullptr); }

    static std::string retrieved(json_object *request, const char *module = "m")
    {
        retrieve_config(&request, nullptr, module);
        const json_ptr message(request);
        return plain(message.get());
    }

    log_capture log;
};

TEST(RetrievalTable, EachRecordBecomesAMember)
{
    EXPECT_EQ(generated({{"a", nullptr, nullptr}, {"b", nullptr, R"({"x":"1"})"}, {}}), R"({"a":{},"b":{"x":"1"}})");
    EXPECT_EQ(generated({{}}), "{}");
}

TEST(RetrievalTable, ChildrenFillTheMember)
{
    const rtv_table ssid = {{"ssid_cmd", nullptr, nullptr}, {}};
    const rtv_table radio = {
        {"channel_cmd", nullptr, nullptr}, {"bss", ssid.data(), R"({"INDEX":{"wlan_id":"1"}})"}, {}};
    EXPECT_EQ(generated({{"radio", radio.data(), nullptr}, {}}),
              R"({"radio":{"channel_cmd":{},"bss":{"INDEX":{"wlan_id":"1"},"ssid_cmd":{}}}})");
}

TEST(RetrievalTable, ChildrenFillEachElementOfAnArray)
{
    const rtv_table radio = {{"channel_cmd", nullptr, nullptr}, {}};
    EXPECT_EQ(generated({{"radio", radio.data(), R"([{"INDEX":{"radio_id":"0"}},{"INDEX":{"radio_id":"1"}}])"}, {}}),
              R"({"radio":[{"INDEX":{"radio_id":"0"},"channel_cmd":{}},{"INDEX":{"radio_id":"1"},"channel_cmd":{}}]})");
}

TEST(RetrievalTable, AnArrayWithoutChildrenStaysAsItIs)
{
    EXPECT_EQ(generated({{"radio", nullptr, "[{},{}]"}, {}}), R"({"radio":[{},{}]})");
}

TEST(RetrievalTable, InvalidTextIsLoggedAndTheNextRecordsAreAdded)
{
    log_capture log;
    const rtv_table children = {{"x", nullptr, nullptr}, {}};
    EXPECT_EQ(
        generated(
            {{"a", children.data(), "{bad"}, {"b", nullptr, ""}, {"c", nullptr, "null"}, {"d", nullptr, nullptr}, {}}),
        R"({"d":{}})");
    EXPECT_THAT(log.texts(), ElementsAre("json_tokener_parse {bad of cmd 'a' failed, skip it",
                                         "json_tokener_parse  of cmd 'b' failed, skip it",
                                         "json_tokener_parse null of cmd 'c' failed, skip it"));
    EXPECT_TRUE(log.has(LOG_ERR, "rtv_gen_json_table", log.texts()[0]));
}

TEST(RetrievalTable, ChildrenFillObjectsOnly)
{
    const rtv_table children = {{"x", nullptr, nullptr}, {}};
    EXPECT_EQ(generated({{"a", children.data(), "1"},
                         {"b", children.data(), R"("text")"},
                         {"c", children.data(), R"([1,null,[{}],{}])"},
                         {}}),
              R"({"a":1,"b":"text","c":[1,null,[{}],{"x":{}}]})");
}

TEST(RetrievalTable, NullsAndWhatIsNoObjectAreLeftAlone)
{
    const rtv_table table = {{"a", nullptr, nullptr}, {}};
    rtv_gen_json_table(nullptr, table.data());
    rtv_remove_null_obj(nullptr, table.data());
    const json_ptr object = parse(R"({"a":{}})");
    rtv_gen_json_table(object.get(), nullptr);
    rtv_remove_null_obj(object.get(), nullptr);
    EXPECT_EQ(plain(object.get()), R"({"a":{}})");
    for (const char *text : {"[{}]", "1", R"("a")", "true"}) {
        const json_ptr other = parse(text);
        rtv_gen_json_table(other.get(), table.data());
        rtv_remove_null_obj(other.get(), table.data());
        EXPECT_EQ(plain(other.get()), text);
    }
}

TEST(RetrievalPruning, EmptyObjectsAndArraysLeaveTheirParent)
{
    const rtv_table table = {{"a", nullptr, nullptr}, {"b", nullptr, nullptr}, {"c", nullptr, nullptr}, {}};
    EXPECT_EQ(pruned(R"({"a":{},"b":[],"c":{"x":1},"d":{}})", table), R"({"c":{"x":1},"d":{}})")
        << "only what the table names";
}

TEST(RetrievalPruning, ThePrunedObjectStaysWhole)
{
    const rtv_table table = {{"a", nullptr, nullptr}, {}};
    const json_ptr object = parse(R"({"a":{}})");
    const json_ptr held(json_object_get(json_object_object_get(object.get(), "a")));
    rtv_remove_null_obj(object.get(), table.data());
    EXPECT_EQ(json_object_object_length(object.get()), 0);
    EXPECT_FALSE(json_object_object_get_ex(object.get(), "a", nullptr));
    EXPECT_EQ(plain(held.get()), "{}") << "one reference was released, not the caller's";
    rtv_gen_json_table(object.get(), table.data());
    EXPECT_EQ(plain(object.get()), R"({"a":{}})");
}

TEST(RetrievalPruning, GoesDownAlongTheChildren)
{
    const rtv_table inner = {{"x", nullptr, nullptr}, {"y", nullptr, nullptr}, {}};
    const rtv_table outer = {{"a", inner.data(), nullptr}, {"b", inner.data(), nullptr}, {"c", nullptr, nullptr}, {}};
    EXPECT_EQ(pruned(R"({"a":{"x":{},"y":{"k":1}},"b":[{"x":[]},null,1,{"y":{},"z":{}}],"c":{"x":{}}})", outer),
              R"({"a":{"y":{"k":1}},"b":[{},null,1,{"z":{}}],"c":{"x":{}}})");
}

TEST(RetrievalPruning, WhatBecomesEmptyStays)
{
    const rtv_table inner = {{"x", nullptr, nullptr}, {}};
    EXPECT_EQ(pruned(R"({"a":{"x":{}}})", {{"a", inner.data(), nullptr}, {}}), R"({"a":{}})");
}

TEST(RetrievalPruning, AbsentNullAndScalarMembersArePassedOver)
{
    const rtv_table inner = {{"x", nullptr, nullptr}, {}};
    const rtv_table table = {{"a", inner.data(), nullptr},
                             {"b", inner.data(), nullptr},
                             {"c", inner.data(), nullptr},
                             {"d", nullptr, nullptr},
                             {}};
    EXPECT_EQ(pruned(R"({"b":null,"c":"","d":0})", table), R"({"b":null,"c":"","d":0})");
}

TEST_F(Retrieve, ANullRequestIsTheWholeConfiguration)
{
    constexpr char whole[] =
        R"({"config":{"radio":[{"INDEX":{"radio_id":"0"},"channel_cmd":{"channel":"6"}},)"
        R"({"INDEX":{"radio_id":"1"},"channel_cmd":{"channel":"6"}}],"host_cmd":{"name":"ap"}},"MODULE":"m","ACTION":"set"})";
    EXPECT_EQ(retrieved(nullptr), whole);
    EXPECT_EQ(retrieved(json_object_new_object()), whole);
}

TEST_F(Retrieve, ARequestChoosesWhatIsAnswered)
{
    EXPECT_EQ(
        retrieved(json_tokener_parse(R"({"config":{"radio":{"INDEX":{"radio_id":"1"},"channel_cmd":{}}}})")),
        R"({"config":{"radio":{"INDEX":{"radio_id":"1"},"channel_cmd":{"channel":"6"}}},"MODULE":"m","ACTION":"set"})");
}

TEST_F(Retrieve, ATablesRequestIsAnswered)
{
    const rtv_table radio = {{"channel_cmd", nullptr, nullptr}, {}};
    const rtv_table config = {{"radio", radio.data(), R"([{"INDEX":{"radio_id":"0"}},{"INDEX":{"radio_id":"1"}}])"},
                              {}};
    const rtv_table table = {{"config", config.data(), nullptr}, {}};
    json_object *request = json_object_new_object();
    rtv_gen_json_table(request, table.data());
    EXPECT_EQ(retrieved(request),
              R"({"config":{"radio":[{"INDEX":{"radio_id":"0"},"channel_cmd":{"channel":"6"}},)"
              R"({"INDEX":{"radio_id":"1"},"channel_cmd":{"channel":"6"}}]},"MODULE":"m","ACTION":"set"})");
}

TEST_F(Retrieve, TheHandlersSeeInstanceAndModule)
{
    int instance = 0;
    json_object *message = nullptr;
    retrieve_config(&message, &instance, "wifi_ui");
    json_object_put(message);
    EXPECT_EQ(seen.instance, &instance);
    EXPECT_EQ(seen.module, "wifi_ui");
    EXPECT_EQ(seen.is_get, 1);
    EXPECT_EQ(seen.user, 0u);
}

TEST_F(Retrieve, WithoutAModuleItIsUnknown)
{
    const json_ptr message = parse(retrieved(nullptr, nullptr));
    EXPECT_STREQ(json_object_get_string(json_object_object_get(message.get(), "MODULE")), "UNKNOWN");
    EXPECT_EQ(seen.module, "UNKNOWN");
}

TEST_F(Retrieve, AnAnswerWithoutContentIsAMessageStill)
{
    EXPECT_EQ(retrieved(json_tokener_parse(R"({"nothing":{}})")), R"({"MODULE":"m","ACTION":"set"})");
    answering = false;
    EXPECT_EQ(retrieved(json_tokener_parse(R"({"config":{"host_cmd":{}}})")),
              R"({"config":{},"MODULE":"m","ACTION":"set"})");
}

TEST_F(Retrieve, TheRequestIsReleasedOnceAndOtherHoldersKeepIt)
{
    json_object *request = json_tokener_parse(R"({"config":{"host_cmd":{}}})");
    const json_ptr held(json_object_get(request));
    retrieve_config(&request, nullptr, "m");
    const json_ptr message(request);
    EXPECT_NE(message.get(), held.get());
    EXPECT_EQ(plain(held.get()), R"({"config":{"host_cmd":{}}})");
    EXPECT_EQ(json_object_put(json_object_get(held.get())), 0);
}

TEST_F(Retrieve, WithoutASlotNothingHappens)
{
    retrieve_config(nullptr, nullptr, "m");
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_EQ(seen.is_get, -1);
}

TEST_F(Retrieve, ARequestThatIsNoObjectLeavesNothing)
{
    for (const char *text : {"[{}]", "1", R"("config")", "true"}) {
        log.clear();
        EXPECT_EQ(retrieved(json_tokener_parse(text)), "null") << text;
        EXPECT_THAT(log.texts(LOG_ERR), ElementsAre("cmessage isn't an object")) << text;
    }
}

TEST_F(Retrieve, RandomRequestsAreAnsweredWithMessages)
{
    constexpr std::array names = {"config", "radio", "channel_cmd", "host_cmd", "INDEX", "radio_id", ".OPT", "x"};
    constexpr std::array values = {"null", "1", R"("0")", "{}", "[]", "[{},{}]", "true", R"({"INDEX":5})"};
    std::mt19937 random(7);
    for (int i = 0; i < 3000; i++) {
        std::string text = values[random() % values.size()];
        for (int depth = 0; depth < 4; depth++) {
            text = "\"" + std::string(names[random() % names.size()]) + "\":" + text;
            text = random() % 3 == 0 ? "[{" + text + "},{}]" : "{" + text + "}";
        }
        const json_ptr message = parse(retrieved(json_tokener_parse(("{\"config\":" + text + "}").c_str())));
        EXPECT_STREQ(json_object_get_string(json_object_object_get(message.get(), "ACTION")), "set") << text;
    }
}

TEST_F(Retrieve, RetrievingDoesNotGather)
{
    const auto once = [this] {
        retrieved(json_tokener_parse(R"({"config":{"radio":{}}})"));
        log.clear();
    };
    once();
    const auto before = mallinfo2().uordblks;
    for (int i = 0; i < 200; i++) once();
    EXPECT_LT(mallinfo2().uordblks, before + 20000);
}

// The library's own tables and block.
TEST_F(Retrieve, TheStoresConfigurationIsRetrieved)
{
    register_root_cmd(lib_pkg_root);
    init_cmd_tree_data();
    root.config.led_control_cmd.status = 0;
    struct lookup_ctx lookup = {};
    json_object *message = json_tokener_parse(R"({"config":{"led_control_cmd":{}}})");
    retrieve_config(&message, &lookup, nullptr);
    const json_ptr owner(message);
    EXPECT_EQ(plain(message), R"({"config":{"led_control_cmd":{"status":"off"}},"MODULE":"UNKNOWN","ACTION":"set"})");
    init_cmd_tree_data();
}

}  // namespace

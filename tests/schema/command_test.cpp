// Command arguments: reading typed values from argument objects and building such objects.
#include <gtest/gtest.h>
#include <json-c/json.h>
#include <syslog.h>

#include <cstring>
#include <string>

#include "apconf/command.h"
#include "apconf/ptype.h"
#include "support/cmd_nodes.h"
#include "support/log_capture.h"
#include "util/owners.h"

namespace
{

using apconf::json_ptr;
using apconf_test::log_capture;

json_ptr parse(const char *text)
{
    return json_ptr(json_tokener_parse(text));
}

std::string plain(json_object *value)
{
    return value ? json_object_to_json_string_ext(value, JSON_C_TO_STRING_PLAIN | JSON_C_TO_STRING_NOSLASHESCAPE)
                 : "(null)";
}

class Arguments : public testing::Test
{
protected:
    Arguments()
    {
        ctx.depth = 3;
        ctx.stack[3].node = &node;
    }

    struct cmd_node node = apconf_test::command("speed_cmd");
    struct cpath_ctx ctx = {};
    log_capture log;
};

TEST_F(Arguments, FetchStringReturnsTheTextThatTheObjectOwns)
{
    const json_ptr args = parse(R"({"name":"lobby","list":["first","second"]})");
    EXPECT_EQ(fetch_arg_string(args.get(), "name"), json_object_get_string(json_object_object_get(args.get(), "name")));
    EXPECT_STREQ(fetch_arg_string(args.get(), "list"), "first");
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(Arguments, FetchStringReportsWhatIsAbsent)
{
    const json_ptr args = parse(R"({"null":null})");
    EXPECT_EQ(fetch_arg_string(args.get(), "name"), nullptr);
    EXPECT_TRUE(log.has(LOG_ERR, "fetch_arg_string", "no such arg 'name'"));
    EXPECT_EQ(fetch_arg_string(args.get(), "null"), nullptr);
    EXPECT_TRUE(log.has(LOG_ERR, "fetch_arg_string", "no such arg 'null'"));
    EXPECT_EQ(fetch_arg_string(nullptr, "name"), nullptr);
    EXPECT_EQ(fetch_arg_string(args.get(), nullptr), nullptr);
    EXPECT_EQ(log.lines().size(), 4u);
}

TEST_F(Arguments, FetchStringReportsAnArrayWithoutAFirstText)
{
    const json_ptr args = parse(R"({"empty":[],"null":[null,"second"]})");
    EXPECT_EQ(fetch_arg_string(args.get(), "empty"), nullptr);
    EXPECT_TRUE(log.has(LOG_ERR, "fetch_arg_string", "get value string for arg'empty' failed"));
    EXPECT_EQ(fetch_arg_string(args.get(), "null"), nullptr);
    EXPECT_TRUE(log.has(LOG_ERR, "fetch_arg_string", "get value string for arg'null' failed"));
}

TEST_F(Arguments, FetchValueConvertsAndLogsTheCommand)
{
    const json_ptr args = parse(R"({"limit":"700"})");
    uint32_t value = 0;
    EXPECT_STREQ(fetch_arg_value(args.get(), "limit", PTYPE_UINT, &value, &ctx), "700");
    EXPECT_EQ(value, 700u);
    EXPECT_TRUE(log.has(LOG_DEBUG, "fetch_arg_value_inner", "[speed_cmd]limit: 700"));
    EXPECT_STREQ(fetch_arg_value(args.get(), "limit", PTYPE_UINT, nullptr, &ctx), "700") << "only checked";
}

TEST_F(Arguments, FetchValueOfAnArrayConvertsOnlyItsFirstElement)
{
    const json_ptr args = parse(R"({"limit":["3","not a number"],"bad":["x","4"]})");
    uint32_t value = 0;
    EXPECT_STREQ(fetch_arg_value(args.get(), "limit", PTYPE_UINT, &value, &ctx), "3");
    EXPECT_EQ(value, 3u);
    EXPECT_EQ(fetch_arg_value(args.get(), "bad", PTYPE_UINT, &value, &ctx), nullptr);
    EXPECT_EQ(value, 3u);
}

TEST_F(Arguments, FetchValueReportsEachFailure)
{
    const json_ptr args = parse(R"({"bad":"x","null":null,"empty":[]})");
    uint32_t value = 5;
    EXPECT_EQ(fetch_arg_value(args.get(), "limit", PTYPE_UINT, &value, &ctx), nullptr);
    EXPECT_TRUE(log.has(LOG_WARNING, "fetch_arg_value_inner", "[speed_cmd]no such arg 'limit'"));
    EXPECT_EQ(fetch_arg_value(args.get(), "null", PTYPE_UINT, &value, &ctx), nullptr);
    EXPECT_TRUE(log.has(LOG_WARNING, "fetch_arg_value_inner", "[speed_cmd]no such arg 'null'"));
    EXPECT_EQ(fetch_arg_value(nullptr, "limit", PTYPE_UINT, &value, &ctx), nullptr);
    EXPECT_EQ(fetch_arg_value(args.get(), "empty", PTYPE_UINT, &value, &ctx), nullptr);
    EXPECT_TRUE(log.has(LOG_ERR, "fetch_arg_value_inner", "[speed_cmd]get value string for arg'empty' failed"));
    EXPECT_EQ(fetch_arg_value(args.get(), "bad", PTYPE_UINT, &value, &ctx), nullptr);
    EXPECT_TRUE(log.has(LOG_ERR, "fetch_arg_value_inner", "[speed_cmd]convert value string 'x' for arg'bad' failed"));
    EXPECT_EQ(fetch_arg_value(args.get(), "bad", 83, &value, &ctx), nullptr);
    EXPECT_EQ(value, 5u);
}

TEST_F(Arguments, FetchValueInnerTakesTheCommandsName)
{
    const json_ptr args = parse(R"({"limit":"700"})");
    const char *command = "other_cmd";
    uint32_t value = 0;
    EXPECT_STREQ(fetch_arg_value_inner(args.get(), "limit", PTYPE_UINT, &value, &command), "700");
    EXPECT_TRUE(log.has(LOG_DEBUG, "fetch_arg_value_inner", "[other_cmd]limit: 700"));
}

TEST_F(Arguments, AContextThatNamesNoCommandDoesNoHarm)
{
    const json_ptr args = parse(R"({"limit":"700"})");
    uint32_t value = 0;
    for (const int depth : {-1, 0, 31, 32, 1000000}) {
        ctx.depth = depth;
        EXPECT_STREQ(fetch_arg_value(args.get(), "limit", PTYPE_UINT, &value, &ctx), "700");
    }
    EXPECT_STREQ(fetch_arg_value(args.get(), "limit", PTYPE_UINT, &value, nullptr), "700");
    EXPECT_STREQ(fetch_arg_value_inner(args.get(), "limit", PTYPE_UINT, &value, nullptr), "700");
}

TEST_F(Arguments, OtherJsonTypesAreTakenAsTheirText)
{
    const json_ptr args = parse(R"({"number":12,"yes":true,"object":{"a":1},"array":[[1,2]],"listed":[7]})");
    uint32_t value = 0;
    EXPECT_STREQ(fetch_arg_value(args.get(), "number", PTYPE_UINT, &value, &ctx), "12");
    EXPECT_EQ(value, 12u);
    EXPECT_STREQ(fetch_arg_value(args.get(), "listed", PTYPE_UINT, &value, &ctx), "7");
    EXPECT_EQ(value, 7u);
    EXPECT_STREQ(fetch_arg_string(args.get(), "yes"), "true");
    EXPECT_STREQ(fetch_arg_string(args.get(), "object"), R"({ "a": 1 })");
    EXPECT_STREQ(fetch_arg_string(args.get(), "array"), "[ 1, 2 ]");
}

TEST_F(Arguments, ArgumentsThatAreNoObjectHaveNoMembers)
{
    for (const char *text : {"[]", "[{\"limit\":\"1\"}]", "1", "\"limit\"", "true", "1.5"}) {
        const json_ptr args = parse(text);
        uint32_t value = 5;
        EXPECT_EQ(fetch_arg_string(args.get(), "limit"), nullptr);
        EXPECT_EQ(fetch_arg_value(args.get(), "limit", PTYPE_UINT, &value, &ctx), nullptr);
        EXPECT_EQ(value, 5u);
    }
}

TEST_F(Arguments, ADefaultValueIsNeverThere)
{
    uint32_t value = 5;
    EXPECT_EQ(fetch_arg_default_value("limit", PTYPE_UINT, &value, &ctx), 0);
    EXPECT_EQ(value, 5u);
    EXPECT_TRUE(log.has(LOG_ERR, "fetch_arg_default_value", "[speed_cmd]arg 'limit' no default value"));
    EXPECT_EQ(log.lines().size(), 1u);
}

TEST_F(Arguments, TextBecomesAValue)
{
    uint8_t value = 0;
    EXPECT_EQ(string2ptype_value(PTYPE_UINT8, &value, "200"), 0);
    EXPECT_EQ(value, 200);
    EXPECT_EQ(string2ptype_value(PTYPE_UINT8, &value, "x"), -1);
    EXPECT_TRUE(log.has(LOG_ERR, "string2ptype_value", "convert 'x' to UINT8 value failed"));
    EXPECT_EQ(string2ptype_value(PTYPE_UINT8, &value, nullptr), -1);
    EXPECT_EQ(string2ptype_value(83, &value, "1"), -1);
    EXPECT_EQ(value, 200);
}

TEST_F(Arguments, AValueBecomesAJsonString)
{
    const uint32_t number = 4000000000;
    const json_ptr text(convert_ptype_value_to_obj(PTYPE_UINT, &number));
    EXPECT_EQ(plain(text.get()), R"("4000000000")");
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(Arguments, AValueThatDoesNotConvertIsNull)
{
    const int32_t unknown = 99;
    EXPECT_EQ(convert_ptype_value_to_obj(PTYPE_MONTH, &unknown), nullptr);
    EXPECT_TRUE(log.has(LOG_ERR, "convert_ptype_value_to_obj", "convert 'MONTH' value failed"));
    log.clear();
    EXPECT_EQ(convert_ptype_value_to_obj(PTYPE_MONTH, nullptr), nullptr);
    EXPECT_EQ(convert_ptype_value_to_obj(PTYPE_RAW_JSON, nullptr), nullptr);
    EXPECT_EQ(convert_ptype_value_to_obj(83, nullptr), nullptr);
    EXPECT_TRUE(log.lines().empty());
    EXPECT_EQ(convert_ptype_value_to_obj(83, &unknown), nullptr);
    EXPECT_EQ(log.lines().size(), 1u);
}

TEST_F(Arguments, LongTextsAreConvertedThroughAHeapBuffer)
{
    for (const size_t length : {509, 510, 511, 512, 513, 600, 5000, 10240})
        for (const uint32_t ptype : {PTYPE_STRING, PTYPE_HEX_STR, PTYPE_BINARY}) {
            const std::string text(length, '1');
            const char *value = text.c_str();
            const json_ptr object(convert_ptype_value_to_obj(ptype, &value));
            ASSERT_TRUE(object) << get_ptype_name(ptype) << " of " << length;
            EXPECT_EQ(text, json_object_get_string(object.get()));
        }
}

TEST_F(Arguments, TextIsCheckedBeforeItBecomesAJsonString)
{
    const json_ptr good(convert_ptype_string_to_obj(PTYPE_UINT8, "200"));
    EXPECT_EQ(plain(good.get()), R"("200")");
    EXPECT_EQ(convert_ptype_string_to_obj(PTYPE_UINT8, "x"), nullptr);
    EXPECT_EQ(convert_ptype_string_to_obj(PTYPE_UINT8, nullptr), nullptr);
    EXPECT_EQ(convert_ptype_string_to_obj(PTYPE_RAW_JSON, nullptr), nullptr);
    EXPECT_EQ(convert_ptype_string_to_obj(83, "1"), nullptr);
}

TEST_F(Arguments, OneInstanceIsAnObjectSeveralAreAnArray)
{
    json_object *slot = nullptr;
    json_object *first = create_argv_obj(&slot);
    EXPECT_EQ(slot, first);
    put_arg_string(first, "id", "1");
    json_object *second = create_argv_obj(&slot);
    put_arg_string(second, "id", "2");
    EXPECT_EQ(plain(slot), R"([{"id":"1"},{"id":"2"}])");
    EXPECT_EQ(plain(create_argv_obj(&slot)), "{}");
    EXPECT_EQ(plain(slot), R"([{"id":"1"},{"id":"2"},{}])");
    json_object_put(slot);
}

TEST_F(Arguments, TwoValuesInOneSlotMakeAnArrayAndAThirdIsAppended)
{
    json_object *slot = nullptr;
    const uint32_t numbers[] = {7, 8, 9};
    EXPECT_EQ(add_arg_value(&slot, PTYPE_UINT, &numbers[0]), 0);
    EXPECT_EQ(plain(slot), R"("7")");
    EXPECT_EQ(add_arg_value(&slot, PTYPE_UINT, &numbers[1]), 0);
    EXPECT_EQ(plain(slot), R"(["7","8"])");
    EXPECT_EQ(add_arg_value(&slot, PTYPE_UINT, &numbers[2]), 0);
    EXPECT_EQ(add_arg_string(&slot, PTYPE_UINT, "10"), 0);
    EXPECT_EQ(plain(slot), R"(["7","8","9","10"])");
    json_object_put(slot);
}

TEST_F(Arguments, AFailedAddLeavesTheSlotAsItWas)
{
    const int32_t unknown = 99;
    json_object *slot = nullptr;
    EXPECT_EQ(add_arg_value(&slot, PTYPE_MONTH, &unknown), -1);
    EXPECT_TRUE(log.has(LOG_ERR, "add_arg_value", "add value to object failed"));
    EXPECT_EQ(add_arg_string(&slot, PTYPE_STATUS, "maybe"), -1);
    EXPECT_TRUE(log.has(LOG_ERR, "add_arg_string", "add string value to object failed"));
    EXPECT_EQ(slot, nullptr);
    EXPECT_EQ(add_arg_string(&slot, PTYPE_STATUS, "enable"), 0);
    EXPECT_EQ(add_arg_value(&slot, PTYPE_MONTH, &unknown), -1);
    EXPECT_EQ(plain(slot), R"("enable")");
    json_object_put(slot);
}

TEST_F(Arguments, ReplacingReleasesTheOldValue)
{
    const uint32_t number = 7;
    json_object *old = json_object_new_string("old");
    json_object *slot = json_object_get(old);
    EXPECT_EQ(arg_value2obj(&slot, PTYPE_UINT, &number), 0);
    EXPECT_EQ(plain(slot), R"("7")");
    EXPECT_EQ(json_object_put(old), 1);
    EXPECT_EQ(arg_string2obj(&slot, PTYPE_UINT, "8"), 0);
    EXPECT_EQ(plain(slot), R"("8")");
    json_object_put(slot);
}

TEST_F(Arguments, AFailedReplaceLeavesTheSlotNull)
{
    const int32_t unknown = 99;
    json_object *old = json_object_new_string("old");
    json_object *slot = json_object_get(old);
    EXPECT_EQ(arg_value2obj(&slot, PTYPE_MONTH, &unknown), -1);
    EXPECT_EQ(slot, nullptr);
    EXPECT_TRUE(log.has(LOG_ERR, "arg_value2obj", "convert value to object failed"));
    slot = json_object_get(old);
    EXPECT_EQ(arg_string2obj(&slot, PTYPE_STATUS, "maybe"), -1);
    EXPECT_EQ(slot, nullptr);
    EXPECT_TRUE(log.has(LOG_ERR, "arg_string2obj", "convert string value to object failed"));
    EXPECT_EQ(json_object_put(old), 1);
}

TEST_F(Arguments, ASlotMayBeReplacedByItsOwnText)
{
    json_object *slot = json_object_new_string("12");
    EXPECT_EQ(arg_string2obj(&slot, PTYPE_UINT, json_object_get_string(slot)), 0);
    EXPECT_EQ(plain(slot), R"("12")");
    json_object_put(slot);
}

TEST_F(Arguments, ANullSlotStopsTheProcess)
{
    const uint32_t number = 7;
    EXPECT_DEATH(create_argv_obj(nullptr), "command.*new_argv_obj");
    EXPECT_DEATH(add_arg_value(nullptr, PTYPE_UINT, &number), "command.*value_obj");
    EXPECT_DEATH(add_arg_string(nullptr, PTYPE_UINT, "7"), "command.*value_obj");
    EXPECT_DEATH(arg_value2obj(nullptr, PTYPE_UINT, &number), "command.*value_obj");
    EXPECT_DEATH(arg_string2obj(nullptr, PTYPE_UINT, "7"), "command.*value_obj");
}

TEST_F(Arguments, PutValueSetsTheKeyAndReturnsTheText)
{
    const json_ptr args(json_object_new_object());
    const uint32_t number = 7;
    const char *text = put_arg_value(args.get(), PTYPE_UINT, "limit", &number);
    EXPECT_EQ(text, json_object_get_string(json_object_object_get(args.get(), "limit")));
    EXPECT_EQ(plain(args.get()), R"({"limit":"7"})");
    EXPECT_TRUE(log.has(LOG_DEBUG, "put_arg_value", "put arg 'limit' value '7' success"));
}

TEST_F(Arguments, PutValueReplacesAnExistingKey)
{
    const json_ptr args = parse(R"({"limit":"1","name":"x"})");
    const uint32_t number = 7;
    EXPECT_STREQ(put_arg_value(args.get(), PTYPE_UINT, "limit", &number), "7");
    EXPECT_EQ(plain(args.get()), R"({"limit":"7","name":"x"})");
    const char *own = json_object_get_string(json_object_object_get(args.get(), "name"));
    EXPECT_STREQ(put_arg_value(args.get(), PTYPE_STRING, "name", &own), "x");
}

TEST_F(Arguments, PutValueReportsEachFailure)
{
    const json_ptr args(json_object_new_object());
    const int32_t unknown = 99;
    EXPECT_EQ(put_arg_value(nullptr, PTYPE_MONTH, "limit", &unknown), nullptr);
    EXPECT_TRUE(log.has(LOG_INFO, "put_arg_value", "put arg 'limit' value failed"));
    EXPECT_EQ(put_arg_value(args.get(), PTYPE_MONTH, "limit", &unknown), nullptr);
    EXPECT_TRUE(log.has(LOG_ERR, "put_arg_value", "convert 'MONTH' arg 'limit' value failed"));
    EXPECT_EQ(put_arg_value(args.get(), PTYPE_UINT, "limit", nullptr), nullptr);
    EXPECT_TRUE(log.has(LOG_ERR, "put_arg_value", "convert 'UINT' arg 'limit' value failed"));
    EXPECT_EQ(put_arg_value(args.get(), 83, "limit", &unknown), nullptr);
    EXPECT_EQ(plain(args.get()), "{}");
}

TEST_F(Arguments, PutValueStringChecksTheText)
{
    const json_ptr args(json_object_new_object());
    EXPECT_EQ(put_arg_value_string(args.get(), PTYPE_UINT8, "limit", "200"), 0);
    EXPECT_TRUE(log.has(LOG_DEBUG, "put_arg_value_string", "string value name:limit, value:200"));
    EXPECT_EQ(plain(args.get()), R"({"limit":"200"})");
    log.clear();
    EXPECT_EQ(put_arg_value_string(args.get(), PTYPE_UINT8, "limit", "x"), -1);
    EXPECT_TRUE(log.lines().empty()) << "a rejected text is silent";
    EXPECT_EQ(put_arg_value_string(args.get(), PTYPE_RAW_JSON, "limit", nullptr), -1);
    EXPECT_EQ(put_arg_value_string(nullptr, PTYPE_UINT8, "limit", "1"), -1);
    EXPECT_EQ(plain(args.get()), R"({"limit":"200"})");
}

TEST_F(Arguments, PutStringChecksNothing)
{
    const json_ptr args(json_object_new_object());
    put_arg_string(args.get(), "any", "thing \"at\" all");
    EXPECT_TRUE(log.has(LOG_DEBUG, "put_arg_string", "string value name:any, value:thing \"at\" all"));
    EXPECT_EQ(plain(args.get()), R"({"any":"thing \"at\" all"})");
    put_arg_string(args.get(), "any", "");
    EXPECT_EQ(plain(args.get()), R"({"any":""})");
}

TEST_F(Arguments, NothingIsPutIntoWhatIsNoObject)
{
    const uint32_t number = 7;
    for (const char *text : {"[]", "1", "\"x\""}) {
        const json_ptr args = parse(text);
        EXPECT_EQ(put_arg_value(args.get(), PTYPE_UINT, "limit", &number), nullptr);
        EXPECT_EQ(put_arg_value_string(args.get(), PTYPE_UINT, "limit", "7"), -1);
        put_arg_string(args.get(), "limit", "7");
        EXPECT_EQ(plain(args.get()), text);
    }
    put_arg_string(nullptr, "limit", "7");
}

}  // namespace

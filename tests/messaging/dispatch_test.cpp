// Reading a message's header and dispatching it over the command tree: which handlers are called with what, what a get
// answers, every log line, and any JSON that a hostile peer may send.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <json-c/json.h>
#include <malloc.h>
#include <syslog.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <deque>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "apconf/cmessage.h"
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

std::string plain(json_object *value)
{
    return value ? json_object_to_json_string_ext(value, JSON_C_TO_STRING_PLAIN | JSON_C_TO_STRING_NOSLASHESCAPE)
                 : "null";
}

json_ptr parse(const std::string &text)
{
    return json_ptr(json_tokener_parse(text.c_str()));
}

// What the handlers were called with and what they answer, by command name.
struct script {
    std::vector<std::string> calls;  // "set ssid_cmd@2 {"ssid":"x"}": handler, command, depth, arguments
    std::map<std::string, int> set_results;
    std::map<std::string, int> no_results;
    std::map<std::string, int> get_results;      // for calls that enumerate or answer
    std::map<std::string, int> select_results;   // for calls whose arguments hold an index of this text
    std::map<std::string, std::string> answers;  // JSON text that a get without arguments reports
    std::map<std::string, std::string> replies;  // JSON text that a get with arguments reports
    std::function<void(json_object *, struct cpath_ctx *)> on_call;
};
script now;

std::string current_name(const struct cpath_ctx *ctx)
{
    return ctx->stack[ctx->depth].node->name;
}

void record(const char *kind, json_object *args, struct cpath_ctx *ctx)
{
    now.calls.push_back(std::string(kind) + " " + current_name(ctx) + "@" + std::to_string(ctx->depth) + " " +
                        plain(args));
    if (now.on_call) now.on_call(args, ctx);
}

int result_of(const std::map<std::string, int> &results, const std::string &name)
{
    const auto found = results.find(name);
    return found == results.end() ? 0 : found->second;
}

int on_set(json_object *args, struct cpath_ctx *ctx)
{
    const std::string name = current_name(ctx);
    record("set", args, ctx);
    return result_of(now.set_results, name);
}

int on_no(json_object *args, struct cpath_ctx *ctx)
{
    const std::string name = current_name(ctx);
    record("no", args, ctx);
    return result_of(now.no_results, name);
}

int on_get(json_object *args, json_object **result, struct cpath_ctx *ctx)
{
    EXPECT_NE(result, nullptr);
    EXPECT_EQ(*result, nullptr);
    const std::string name = current_name(ctx);
    const auto &texts = args ? now.replies : now.answers;
    const std::string shown = plain(args);
    record("get", args, ctx);
    if (const auto text = texts.find(name); text != texts.end()) *result = json_tokener_parse(text->second.c_str());
    return args ? result_of(now.select_results, name + shown) | result_of(now.get_results, name)
                : result_of(now.get_results, name);
}

struct cmd_node handled(struct cmd_node node)
{
    node.no = on_no;
    node.set = on_set;
    node.get = on_get;
    return node;
}

char radio_id[] = "radio_id";
char band[] = "band";
char wlan_id[] = "wlan_id";
struct cmd_param radio_params[] = {{radio_id, 4, 0, nullptr, nullptr}, {band, 4, 0, nullptr, nullptr}};
struct cmd_param bss_params[] = {{wlan_id, 4, 0, nullptr, nullptr}, {nullptr, 0, 0, nullptr, nullptr}};

struct cmd_node bss_table[] = {handled(command("ssid_cmd")), handled(command("hide_cmd")), {}};
struct cmd_node radio_table[] = {
    handled(command("channel_cmd")), apconf_test::with_params(handled(package("bss", bss_table)), bss_params, 2), {}};
struct cmd_node plain_table[] = {handled(command("inner_cmd")), command("silent_cmd"), {}};
struct cmd_node notify_table[] = {handled(command("connect_status_cmd")), {}};
struct cmd_node config_table[] = {apconf_test::with_params(handled(package("radio", radio_table)), radio_params, 2),
                                  package("plain", plain_table),  // no handlers
                                  handled(command("host_cmd")),
                                  command("bare_cmd"),  // no handlers
                                  {}};
struct cmd_node root_table[] = {
    handled(package("config", config_table)), handled(package("wtp_notify", notify_table)), {}};

class Dispatch : public testing::Test
{
protected:
    void SetUp() override
    {
        now = {};
        register_root_cmd(root_table);
    }

    // Runs a message; what a get answers is in `answer`.
    int run(const std::string &text)
    {
        message = parse(text);
        now.calls.clear();
        log.clear();
        struct cmesage_info info;
        if (get_cmesage_info(message.get(), &info) != 0) return -2;
        json_object *out = nullptr;
        const int result = cmessage_parser(&info, &out, 77, &instance);
        answer = plain(out);
        json_object_put(out);
        return result;
    }
    // A single-command message. The parameters are JSON text; empty: none.
    int run(const char *action, const std::string &path, const std::string &param = "")
    {
        return run(std::string(R"({"MODULE":"tester","ACTION":")") + action + R"(","CPATH":{"path":")" + path + "\"" +
                   (param.empty() ? "" : ",\"param\":" + param) + "}}");
    }
    int set_tree(const std::string &config)
    {
        return run(R"({"MODULE":"tester","ACTION":"set","config":)" + config + "}");
    }
    int get_tree(const std::string &config)
    {
        return run(R"({"MODULE":"tester","ACTION":"get","config":)" + config + "}");
    }

    // "priority function text" of all lines.
    std::vector<std::string> lines() const
    {
        std::vector<std::string> result;
        for (const auto &line : log.lines())
            result.push_back(std::to_string(line.priority) + " " + line.function + " " + line.text);
        return result;
    }

    log_capture log;
    json_ptr message;
    std::string answer;
    int instance = 0;
};

// --- the header

class Header : public testing::Test
{
protected:
    int read(const std::string &text)
    {
        message = parse(text);
        return get_cmesage_info(message.get(), &info);
    }
    json_ptr message;
    struct cmesage_info info;
};

TEST_F(Header, ASingleCommandMessage)
{
    EXPECT_EQ(read(R"({"MODULE":"wtpd","ACTION":"get","CPATH":{"path":"/config/host_cmd","param":{}}})"), 0);
    EXPECT_EQ(info.is_get, 1);
    EXPECT_EQ(info.is_connect_status, 0);
    EXPECT_EQ(info.is_config, 1);
    EXPECT_EQ(info.has_cpath, 1u);
    EXPECT_STREQ(info.module, "wtpd");
    EXPECT_STREQ(info.path, "/config/host_cmd");
    EXPECT_EQ(info.body, json_object_object_get(message.get(), "CPATH"));
}

TEST_F(Header, AWholeTreeMessage)
{
    EXPECT_EQ(read(R"({"ACTION":"set","config":{}})"), 0);
    EXPECT_EQ(info.is_get, 0);
    EXPECT_EQ(info.is_config, 1);
    EXPECT_EQ(info.has_cpath, 0u);
    EXPECT_EQ(info.module, nullptr);
    EXPECT_EQ(info.path, nullptr);
    EXPECT_EQ(info.body, message.get());
    EXPECT_EQ(read(R"({"ACTION":"set","other":{}})"), 0);
    EXPECT_EQ(info.is_config, 0);
    EXPECT_EQ(read(R"({"config":null})"), 0);
    EXPECT_EQ(info.is_config, 0) << "JSON null counts as absent";
}

TEST_F(Header, AnyActionOtherThanExactlyGetIsASet)
{
    for (const char *action : {"\"Get\"", "\"set\"", "\"get \"", "\"\"", "1", "null", "[\"get\"]", "{\"get\":1}"}) {
        EXPECT_EQ(read(std::string("{\"ACTION\":") + action + "}"), 0);
        EXPECT_EQ(info.is_get, 0) << action;
    }
    EXPECT_EQ(read("{}"), 0);
    EXPECT_EQ(info.is_get, 0);
}

TEST_F(Header, FlagsComeFromAnywhereInThePath)
{
    EXPECT_EQ(read(R"({"CPATH":{"path":"/wtp_notify/connect_status_cmd"}})"), 0);
    EXPECT_EQ(info.is_connect_status, 1);
    EXPECT_EQ(info.is_config, 0);
    EXPECT_EQ(read(R"({"CPATH":{"path":"x/configuration/wtp_notify/connect_status_cmds"}})"), 0);
    EXPECT_EQ(info.is_connect_status, 1);
    EXPECT_EQ(info.is_config, 1);
    EXPECT_EQ(read(R"({"CPATH":{"path":"config/host_cmd"}})"), 0);
    EXPECT_EQ(info.is_config, 0) << "without the slash";
}

TEST_F(Header, NullArgumentsAndMissingPathsAreRefused)
{
    EXPECT_EQ(get_cmesage_info(nullptr, &info), -1);
    const json_ptr object = parse("{}");
    EXPECT_EQ(get_cmesage_info(object.get(), nullptr), -1);
    for (const char *cpath : {"{}", R"({"path":1})", R"({"path":null})", R"({"path":["/config"]})", R"({"path":{}})",
                              "[]", "\"x\"", "1", "true"})
        EXPECT_EQ(read(std::string("{\"CPATH\":") + cpath + "}"), -1) << cpath;
    for (const char *text : {"[]", "1", "\"CPATH\"", "true", "[{\"ACTION\":\"get\"}]"}) {
        const log_capture log;
        EXPECT_EQ(read(text), -1) << text;
        EXPECT_EQ(log.texts(LOG_ERR).size(), 1u);
    }
}

TEST_F(Header, ACpathThatIsJsonNullIsAbsent)
{
    EXPECT_EQ(read(R"({"CPATH":null,"config":{}})"), 0);
    EXPECT_EQ(info.has_cpath, 0u);
    EXPECT_EQ(info.body, message.get());
}

TEST_F(Header, AModuleThatIsNoTextCountsAsAbsent)
{
    const log_capture log;
    EXPECT_EQ(read(R"({"MODULE":["x"]})"), 0);
    EXPECT_EQ(info.module, nullptr);
    EXPECT_EQ(log.texts(LOG_ERR).size(), 1u);
}

// --- the parser itself

TEST_F(Dispatch, NullArgumentsAreRefused)
{
    EXPECT_EQ(cmessage_parser(nullptr, nullptr, 0, nullptr), -1);
    struct cmesage_info info = {};
    EXPECT_EQ(cmessage_parser(&info, nullptr, 0, nullptr), -1) << "no body";
    info.has_cpath = 1;
    json_object *out = nullptr;
    EXPECT_EQ(cmessage_parser(&info, &out, 0, nullptr), -1) << "no path";
    EXPECT_EQ(out, nullptr);
}

TEST_F(Dispatch, ASingleCommandNeedsARoomForItsAnswerEvenForASet)
{
    const json_ptr text = parse(R"({"ACTION":"set","CPATH":{"path":"/config/host_cmd"}})");
    struct cmesage_info info;
    ASSERT_EQ(get_cmesage_info(text.get(), &info), 0);
    EXPECT_EQ(cmessage_parser(&info, nullptr, 0, nullptr), -1);
    EXPECT_THAT(now.calls, IsEmpty());
}

TEST_F(Dispatch, AWholeTreeGetNeedsRoomForItsAnswerASetDoesNot)
{
    const json_ptr text = parse(R"({"config":{"host_cmd":{"x":"1"}}})");
    struct cmesage_info info;
    ASSERT_EQ(get_cmesage_info(text.get(), &info), 0);
    EXPECT_EQ(cmessage_parser(&info, nullptr, 0, nullptr), 0);
    EXPECT_THAT(now.calls, testing::Contains(R"(set host_cmd@2 {"x":"1"})"));
    info.is_get = 1;
    EXPECT_EQ(cmessage_parser(&info, nullptr, 0, nullptr), -1);
}

TEST_F(Dispatch, TheHandlersGetTheCallersWordsAndACleanContext)
{
    now.on_call = [this](json_object *, struct cpath_ctx *ctx) {
        EXPECT_EQ(ctx->user, 77u);
        EXPECT_EQ(ctx->instance, &instance);
        EXPECT_STREQ(ctx->module, "tester");
        EXPECT_EQ(ctx->is_get, 0);
        EXPECT_EQ(ctx->result, nullptr);
        for (int i = ctx->depth + 1; i < CPATH_STACK_DEPTH; i++) EXPECT_EQ(ctx->stack[i].node, nullptr);
    };
    EXPECT_EQ(run("set", "/config/host_cmd", R"({"x":"1"})"), 0);
    EXPECT_EQ(now.calls.size(), 2u);
}

TEST_F(Dispatch, AMessageWithoutModuleComesFromUnknown)
{
    now.on_call = [](json_object *, struct cpath_ctx *ctx) { EXPECT_STREQ(ctx->module, "UNKNOWN"); };
    EXPECT_EQ(run(R"({"CPATH":{"path":"/config/host_cmd"}})"), 0);
    EXPECT_TRUE(log.has(LOG_INFO, "cmessage_parser", "parse set cmessage: UNKNOWN"));
    EXPECT_EQ(run(R"({"ACTION":"get"})"), 0);
    EXPECT_TRUE(log.has(LOG_INFO, "cmessage_parser", "parse get cmessage: UNKNOWN"));
}

// --- a set of a single command

TEST_F(Dispatch, ASetShowsTheParametersToEveryPackageOnThePathAndThenToTheCommand)
{
    EXPECT_EQ(run("set", "/config/radio/bss/ssid_cmd", R"({"radio_id":"0","ssid":"x"})"), 0);
    const std::string args = R"({"radio_id":"0","ssid":"x"})";
    EXPECT_THAT(now.calls, ElementsAre("set config@0 " + args, "set radio@1 " + args, "set bss@2 " + args,
                                       "set ssid_cmd@3 " + args));
    EXPECT_THAT(lines(), ElementsAre("6 cmessage_parser parse set cmessage: tester",
                                     "6 cpath_set set cpath '/config/radio/bss/ssid_cmd'",
                                     "6 cpath_set command 'config' set success",
                                     "6 cpath_set command 'radio' set success", "6 cpath_set command 'bss' set success",
                                     "6 call_set_handler set ssid_cmd                         : success"));
}

TEST_F(Dispatch, LeadingRepeatedAndTrailingSlashesAreIgnored)
{
    for (const char *path : {"config/host_cmd", "///config//host_cmd", "/config/host_cmd///"}) {
        EXPECT_EQ(run("set", path, R"({"x":"1"})"), 0);
        EXPECT_THAT(now.calls, ElementsAre(R"(set config@0 {"x":"1"})", R"(set host_cmd@1 {"x":"1"})")) << path;
    }
}

TEST_F(Dispatch, AFailingPackageStopsASetAndFailsIt)
{
    now.set_results["radio"] = -1;
    EXPECT_EQ(run("set", "/config/radio/channel_cmd", R"({"x":"1"})"), -1);
    EXPECT_EQ(now.calls.size(), 2u);
    EXPECT_EQ(lines().back(), "3 cpath_set command 'radio' set failed");
}

TEST_F(Dispatch, APackageWithoutChangeIsASuccess)
{
    now.set_results["radio"] = 1;
    EXPECT_EQ(run("set", "/config/radio/channel_cmd", R"({"x":"1"})"), 0);
    EXPECT_EQ(now.calls.size(), 3u);
    EXPECT_TRUE(log.has(LOG_INFO, "cpath_set", "command 'radio' set success"));
}

TEST_F(Dispatch, TheFinalCommandsResultIsLoggedNotReturned)
{
    const std::pair<int, const char *> cases[] = {
        {-1, "3 call_set_handler set host_cmd                         : failed"},
        {-9, "3 call_set_handler set host_cmd                         : failed"},
        {0, "6 call_set_handler set host_cmd                         : success"},
        {1, "6 call_set_handler set host_cmd                         : no change"},
        {5, "6 call_set_handler set host_cmd                         : no change"}};
    for (const auto &[result, line] : cases) {
        now.set_results["host_cmd"] = result;
        EXPECT_EQ(run("set", "/config/host_cmd", R"({"x":"1"})"), 0);
        EXPECT_EQ(lines().back(), line);
    }
}

TEST_F(Dispatch, AnUnknownCommandIsNoFailure)
{
    EXPECT_EQ(run("set", "/config/nothing/host_cmd"), 0);
    EXPECT_EQ(lines().back(), "3 get_cpath_cmd not find cmd 'nothing'");
    EXPECT_THAT(now.calls, ElementsAre("set config@0 {}"));
    EXPECT_EQ(run("set", "/nothing"), 0);
    EXPECT_EQ(lines().back(), "3 get_cpath_cmd not find cmd 'nothing'");
    EXPECT_EQ(run("get", "/nothing"), 0);
    EXPECT_EQ(lines().back(), "3 get_cpath_cmd not find cmd 'nothing'");
    EXPECT_EQ(answer, "{}");
}

TEST_F(Dispatch, ACommandOnTheWayIsNoPackage)
{
    EXPECT_EQ(run("set", "/config/host_cmd/more", R"({"x":"1"})"), 0);
    EXPECT_EQ(lines().back(), "3 cpath_set command 'host_cmd' isn't a package command");
    EXPECT_THAT(now.calls, ElementsAre(R"(set config@0 {"x":"1"})"));
    EXPECT_EQ(run("get", "/config/host_cmd/more", R"({"x":"1"})"), 0);
    EXPECT_EQ(lines().back(), "3 cpath_get command 'host_cmd' isn't a package command");
    EXPECT_EQ(answer, R"({"config":{}})");
}

TEST_F(Dispatch, ASetMayEndAtAPackageOrAtTheRoot)
{
    EXPECT_EQ(run("set", "/config", R"({"x":"1"})"), 0);
    EXPECT_THAT(now.calls, ElementsAre(R"(set config@0 {"x":"1"})"));
    EXPECT_TRUE(log.has(LOG_INFO, "call_set_handler", "set config                           : success"));
    EXPECT_EQ(run("set", "/", R"({"x":"1"})"), 0);
    EXPECT_THAT(now.calls, IsEmpty());
    EXPECT_EQ(run("set", "", R"({"x":"1"})"), 0);
    EXPECT_THAT(now.calls, IsEmpty());
}

TEST_F(Dispatch, EmptyParametersReachTheCommandAsNull)
{
    for (const char *param : {"", "{}", "[]", "null"}) {
        EXPECT_EQ(run("set", "/config/host_cmd", param), 0);
        ASSERT_EQ(now.calls.size(), 2u);
        EXPECT_EQ(now.calls[1], "set host_cmd@1 null") << param;
    }
}

TEST_F(Dispatch, AListOfParametersReachesTheCommandWhole)
{
    EXPECT_EQ(run("set", "/config/host_cmd", R"([{"x":"1"},null,{"x":"2"}])"), 0);
    EXPECT_EQ(now.calls[1], R"(set host_cmd@1 [{"x":"1"},null,{"x":"2"}])");
}

TEST_F(Dispatch, RemovalsReachTheNoHandler)
{
    const std::pair<const char *, const char *> cases[] = {
        {R"({".OPT":"no"})", "no host_cmd@1 null"},
        {R"({".OPT":"no","x":1})", R"(no host_cmd@1 {".OPT":"no","x":1})"},
        {R"({"x":1,".OPT":"no"})", R"(no host_cmd@1 {"x":1,".OPT":"no"})"},
        {R"({".OPT":"noall"})", "no host_cmd@1 null"},
        {R"({".OPT":"noall","x":1})", "no host_cmd@1 null"},
        {R"({".OPT":"No","x":1})", R"(set host_cmd@1 {".OPT":"No","x":1})"},
        {R"({".OPT":["no"]})", R"(set host_cmd@1 {".OPT":["no"]})"},
        {R"({".OPT":null})", R"(set host_cmd@1 {".OPT":null})"},
        {R"([{".OPT":"no"}])", R"(set host_cmd@1 [{".OPT":"no"}])"},
    };
    for (const auto &[param, call] : cases) {
        EXPECT_EQ(run("set", "/config/host_cmd", param), 0);
        ASSERT_EQ(now.calls.size(), 2u);
        EXPECT_EQ(now.calls[0], std::string("set config@0 ") + plain(parse(param).get())) << "packages see everything";
        EXPECT_EQ(now.calls[1], call);
    }
}

TEST_F(Dispatch, RemovalsLogTheirOwnLines)
{
    const std::pair<int, const char *> cases[] = {
        {-1, "3 call_set_handler no  host_cmd                         : failed"},
        {0, "6 call_set_handler no  host_cmd                         : success"},
        {2, "6 call_set_handler no  host_cmd                         : no change"}};
    for (const auto &[result, line] : cases) {
        now.no_results["host_cmd"] = result;
        EXPECT_EQ(run("set", "/config/host_cmd", R"({".OPT":"no"})"), 0);
        EXPECT_EQ(lines().back(), line);
    }
}

TEST_F(Dispatch, ACommandWithoutHandlersIsSilent)
{
    EXPECT_EQ(run("set", "/config/bare_cmd", R"({"x":"1"})"), 0);
    EXPECT_EQ(lines().back(), "6 cpath_set command 'config' set success");
    EXPECT_EQ(run("set", "/config/bare_cmd", R"({".OPT":"no"})"), 0);
    EXPECT_EQ(lines().back(), "6 cpath_set command 'config' set success");
    EXPECT_EQ(run("set", "/config/plain/inner_cmd", R"({"x":"1"})"), 0);
    EXPECT_THAT(now.calls, ElementsAre(R"(set config@0 {"x":"1"})", R"(set inner_cmd@2 {"x":"1"})"));
}

TEST_F(Dispatch, ParametersThatAreNoObjectsAreRefused)
{
    for (const char *action : {"set", "get"})
        for (const char *param : {"1", "true", "1.5", "\"x\"", "\"\"", "[1]", "[{},\"x\"]", "[[]]", "[[{}]]"}) {
            EXPECT_EQ(run(action, "/config/host_cmd", param), -1) << param;
            EXPECT_THAT(now.calls, IsEmpty());
            EXPECT_EQ(log.texts(LOG_ERR).size(), 1u);
            EXPECT_EQ(answer, "null");
        }
}

// --- the placeholder of missing parameters

TEST_F(Dispatch, ThePlaceholderIsEmptyAtTheStartOfEveryMessage)
{
    now.on_call = [](json_object *args, struct cpath_ctx *) {
        if (args) json_object_object_add(args, "left behind", json_object_new_string("x"));
    };
    for (int i = 0; i < 3; i++) {
        EXPECT_EQ(run("set", "/config/host_cmd"), 0);
        ASSERT_EQ(now.calls.size(), 2u);
        EXPECT_EQ(now.calls[0], "set config@0 {}") << "message " << i;
        EXPECT_EQ(now.calls[1], R"(set host_cmd@1 {"left behind":"x"})") << "it is one object within a message";
    }
}

TEST_F(Dispatch, ThePlaceholderIsOneForTheProcess)
{
    std::vector<json_object *> seen;
    now.on_call = [&](json_object *args, struct cpath_ctx *) {
        if (args) seen.push_back(args);
    };
    for (int i = 0; i < 3; i++) EXPECT_EQ(run("set", "/config/host_cmd"), 0);
    ASSERT_EQ(seen.size(), 3u);
    EXPECT_EQ(seen[0], seen[1]);
    EXPECT_EQ(seen[0], seen[2]);
}

// --- depth

// A tree of `levels` nested packages "p" below the root, with one command "leaf_cmd" in the last.
struct deep_tree {
    explicit deep_tree(size_t levels)
    {
        struct cmd_node *below = nullptr;
        for (size_t i = 0; i < levels + 1; i++) {
            struct cmd_node *table = tables.emplace_back(std::array<struct cmd_node, 2>{}).data();
            table[0] = handled(below ? package("p", below) : command("leaf_cmd"));
            below = table;
        }
        register_root_cmd(below);
    }
    std::deque<std::array<struct cmd_node, 2>> tables;
};

std::string deep_path(size_t levels)
{
    std::string path;
    for (size_t i = 0; i < levels; i++) path += "/p";
    return path;
}

TEST_F(Dispatch, ThirtyTwoComponentsFitTheThirtyThirdIsAnError)
{
    const deep_tree tree(32);
    EXPECT_EQ(run("set", deep_path(31) + "/p", R"({"x":"1"})"), 0);
    EXPECT_EQ(now.calls.back(), R"(set p@31 {"x":"1"})");
    EXPECT_EQ(log.texts(LOG_ERR).size(), 0u);

    EXPECT_EQ(run("set", deep_path(32) + "/leaf_cmd", R"({"x":"1"})"), -1);
    EXPECT_EQ(now.calls.back(), R"(set p@31 {"x":"1"})");
    EXPECT_EQ(log.texts(LOG_ERR).size(), 1u);

    EXPECT_EQ(run("get", deep_path(31) + "/p", R"({"x":"1"})"), 0);
    EXPECT_EQ(run("get", deep_path(32) + "/leaf_cmd", R"({"x":"1"})"), -1);
    EXPECT_EQ(answer, "null");
    EXPECT_EQ(log.texts(LOG_ERR).size(), 1u);
}

TEST_F(Dispatch, ALeafAsTheThirtySecondComponentIsReached)
{
    const deep_tree tree(31);
    EXPECT_EQ(run("set", deep_path(31) + "/leaf_cmd", R"({"x":"1"})"), 0);
    EXPECT_EQ(now.calls.back(), R"(set leaf_cmd@31 {"x":"1"})");
    now.replies["leaf_cmd"] = R"({"y":"2"})";
    EXPECT_EQ(run("get", deep_path(31) + "/leaf_cmd", R"({"x":"1"})"), 0);
    EXPECT_EQ(now.calls.back(), R"(get leaf_cmd@31 {"x":"1"})");
    EXPECT_THAT(answer, testing::HasSubstr(R"("leaf_cmd":{"y":"2"})"));
}

TEST_F(Dispatch, ATreeTooDeepForTheStackIsCutWithAnErrorLine)
{
    std::string body = "{}";
    for (int i = 0; i < 40; i++) body = R"({"p":)" + body + "}";
    json_tokener *tokener = json_tokener_new_ex(64);
    message.reset(json_tokener_parse_ex(tokener, body.c_str(), -1));
    json_tokener_free(tokener);
    ASSERT_TRUE(message);
    for (const int levels : {30, 31, 40}) {
        const deep_tree tree(static_cast<size_t>(levels));
        for (const bool is_get : {false, true}) {
            struct cmesage_info info = {};
            info.is_get = is_get;
            info.body = message.get();
            log.clear();
            now.calls.clear();
            now.answers["leaf_cmd"] = "{}";
            now.answers["p"] = "{}";
            json_object *out = nullptr;
            EXPECT_EQ(cmessage_parser(&info, &out, 0, nullptr), 0);
            json_object_put(out);
            EXPECT_EQ(log.texts(LOG_ERR).size(), levels == 30 ? 0u : 1u) << levels << (is_get ? " get" : " set");
        }
    }
}

TEST_F(Dispatch, CollectingATreeTooDeepForTheStackIsCutWithAnErrorLine)
{
    const deep_tree tree(40);
    now.answers["p"] = "{}";
    EXPECT_EQ(run("get", "/"), 0);
    EXPECT_EQ(answer, "{}");
    EXPECT_EQ(log.texts(LOG_ERR).size(), 1u);
}

// --- a get of a single command

TEST_F(Dispatch, AGetRepeatsThePathAroundTheAnswer)
{
    now.replies["ssid_cmd"] = R"({"ssid":"lobby"})";
    EXPECT_EQ(run("get", "/config/radio/bss/ssid_cmd", R"({"radio_id":"1","wlan_id":"2"})"), 0);
    EXPECT_EQ(answer, R"({"config":{"radio":{"INDEX":{"radio_id":"1"},"bss":{"INDEX":{"wlan_id":"2"},)"
                      R"("ssid_cmd":{"ssid":"lobby"}}}}})");
    const std::string args = R"({"radio_id":"1","wlan_id":"2"})";
    EXPECT_THAT(now.calls, ElementsAre("get config@0 " + args, "get radio@1 " + args, "get bss@2 " + args,
                                       "get ssid_cmd@3 " + args));
    EXPECT_THAT(lines(),
                ElementsAre("6 cmessage_parser parse get cmessage: tester",
                            "6 cpath_get get cpath '/config/radio/bss/ssid_cmd'",
                            "6 call_get_handler get config                           : success, foreach package",
                            "6 call_get_handler get radio                            : success, foreach package",
                            "6 call_get_handler get bss                              : success, foreach package",
                            "6 call_get_handler get ssid_cmd                         : success"));
}

TEST_F(Dispatch, TheIndexHoldsThePackagesParametersInTheirOrder)
{
    now.replies["channel_cmd"] = R"({"channel":"6"})";
    EXPECT_EQ(run("get", "/config/radio/channel_cmd", R"({"band":"5","x":"1","radio_id":"1"})"), 0);
    EXPECT_EQ(answer, R"({"config":{"radio":{"INDEX":{"radio_id":"1","band":"5"},"channel_cmd":{"channel":"6"}}}})");
    EXPECT_EQ(run("get", "/config/radio/channel_cmd", R"({"radio_id":null,"x":"1"})"), 0);
    EXPECT_EQ(answer, R"({"config":{"radio":{"channel_cmd":{"channel":"6"}}}})");
    EXPECT_EQ(run("get", "/config/radio/channel_cmd", R"([{"radio_id":"1"}])"), 0);
    EXPECT_EQ(answer, R"({"config":{"radio":{"channel_cmd":{"channel":"6"}}}})");
}

TEST_F(Dispatch, ParametersWithoutAnArrayAreNone)
{
    struct cmd_node &radio = config_table[0];
    const auto params = std::exchange(radio.params, nullptr);
    now.replies["channel_cmd"] = R"({"channel":"6"})";
    EXPECT_EQ(run("get", "/config/radio/channel_cmd", R"({"radio_id":"1"})"), 0);
    radio.params = params;
    EXPECT_EQ(answer, R"({"config":{"radio":{"channel_cmd":{"channel":"6"}}}})");
}

TEST_F(Dispatch, EmptyParametersReachTheReadCommandAsNull)
{
    now.answers["host_cmd"] = R"({"host":"a"})";
    for (const char *param : {"", "{}", "[]", "null"}) {
        EXPECT_EQ(run("get", "/config/host_cmd", param), 0);
        EXPECT_EQ(answer, R"({"config":{"host_cmd":{"host":"a"}}})");
        EXPECT_EQ(now.calls.back(), "get host_cmd@1 null");
    }
}

TEST_F(Dispatch, ACommandWithoutValueLeavesThePathOnly)
{
    EXPECT_EQ(run("get", "/config/host_cmd", R"({"x":"1"})"), 0);
    EXPECT_EQ(answer, R"({"config":{}})");
    EXPECT_EQ(lines().back(), "7 call_get_handler get host_cmd                         : no value");
    EXPECT_EQ(run("get", "/config/bare_cmd"), 0);
    EXPECT_EQ(answer, R"({"config":{}})");
}

TEST_F(Dispatch, AFailingGetLeavesThatPartOut)
{
    now.get_results["host_cmd"] = 1;
    now.replies["host_cmd"] = R"({"released":"x"})";
    EXPECT_EQ(run("get", "/config/host_cmd", R"({"x":"1"})"), 0);
    EXPECT_EQ(answer, R"({"config":{}})");
    EXPECT_EQ(lines().back(), "6 call_get_handler get host_cmd                         : failed");

    now.get_results["config"] = -1;
    EXPECT_EQ(run("get", "/config/host_cmd", R"({"x":"1"})"), 0);
    EXPECT_EQ(answer, "{}");
    EXPECT_EQ(now.calls.size(), 1u);
}

TEST_F(Dispatch, WhatASelectingHandlerReportsIsReleased)
{
    now.replies["config"] = R"([{"any":"thing"}])";
    now.replies["host_cmd"] = R"({"host":"a"})";
    EXPECT_EQ(run("get", "/config/host_cmd", R"({"x":"1"})"), 0);
    EXPECT_EQ(answer, R"({"config":{"host_cmd":{"host":"a"}}})");
}

TEST_F(Dispatch, AGetOfTheRootIsTheWholeTree)
{
    now.answers["config"] = "{}";
    now.answers["host_cmd"] = R"({"host":"a"})";
    now.answers["inner_cmd"] = R"([{"i":"1"},{"i":"2"}])";
    for (const char *path : {"/", "", "//"}) {
        EXPECT_EQ(run("get", path), 0);
        EXPECT_EQ(answer, R"({"config":{"plain":{"inner_cmd":[{"i":"1"},{"i":"2"}]},"host_cmd":{"host":"a"}}})");
    }
    EXPECT_EQ(now.calls[0], "get config@1 null");
    EXPECT_EQ(now.calls[1], "get radio@2 null");
}

TEST_F(Dispatch, AGetOfAPackageWithoutInstancesYieldsNoMember)
{
    now.answers["config"] = "{}";
    EXPECT_EQ(run("get", "/config/radio"), 0);
    EXPECT_EQ(answer, R"({"config":{}})");
    EXPECT_EQ(lines().back(), "7 call_get_handler get radio                            : no value");
    EXPECT_EQ(run("get", "/config"), 0);
    EXPECT_EQ(answer, "{}");
}

TEST_F(Dispatch, EveryInstanceThatAPackageListsIsCollected)
{
    now.answers["radio"] = R"([{"radio_id":"0"},{"radio_id":"1"}])";
    now.answers["channel_cmd"] = R"({"channel":"6"})";
    EXPECT_EQ(run("get", "/config/radio"), 0);
    EXPECT_EQ(answer, R"({"config":{"radio":[{"INDEX":{"radio_id":"0"},"channel_cmd":{"channel":"6"}},)"
                      R"({"INDEX":{"radio_id":"1"},"channel_cmd":{"channel":"6"}}]}})");
    EXPECT_THAT(now.calls, ElementsAre("get config@0 {}", "get radio@1 null", R"(get radio@1 {"radio_id":"0"})",
                                       "get channel_cmd@2 null", "get bss@2 null", R"(get radio@1 {"radio_id":"1"})",
                                       "get channel_cmd@2 null", "get bss@2 null"));
}

TEST_F(Dispatch, AListedInstanceThatCannotBeSelectedIsLeftOut)
{
    now.answers["radio"] = R"([{"radio_id":"0"},null,{"radio_id":"1"}])";
    now.answers["channel_cmd"] = R"({"channel":"6"})";
    now.select_results[R"(radio{"radio_id":"0"})"] = -1;
    EXPECT_EQ(run("get", "/config/radio"), 0);
    EXPECT_EQ(answer, R"({"config":{"radio":[{"INDEX":{"radio_id":"1"},"channel_cmd":{"channel":"6"}}]}})");
    now.select_results[R"(radio{"radio_id":"1"})"] = -1;
    EXPECT_EQ(run("get", "/config/radio"), 0);
    EXPECT_EQ(answer, R"({"config":{}})");
}

TEST_F(Dispatch, AListedInstanceStaysEvenWhenItHasNothingButItsIndex)
{
    now.answers["radio"] = R"([{"radio_id":"0"}])";
    EXPECT_EQ(run("get", "/config/radio"), 0);
    EXPECT_EQ(answer, R"({"config":{"radio":[{"INDEX":{"radio_id":"0"}}]}})");
}

TEST_F(Dispatch, ASingleInstanceWithNothingButItsIndexIsDropped)
{
    now.answers["radio"] = R"({"radio_id":"0"})";
    EXPECT_EQ(run("get", "/config/radio"), 0);
    EXPECT_EQ(answer, R"({"config":{}})");
    now.answers["channel_cmd"] = R"({"channel":"6"})";
    EXPECT_EQ(run("get", "/config/radio"), 0);
    EXPECT_EQ(answer, R"({"config":{"radio":{"INDEX":{"radio_id":"0"},"channel_cmd":{"channel":"6"}}}})");
    now.select_results[R"(radio{"radio_id":"0"})"] = 1;
    EXPECT_EQ(run("get", "/config/radio"), 0);
    EXPECT_EQ(answer, R"({"config":{}})");
}

TEST_F(Dispatch, ARemovedInstanceHasNoChildren)
{
    now.answers["channel_cmd"] = R"({"channel":"6"})";
    now.answers["radio"] = R"([{"radio_id":"0",".OPT":"no"},{"radio_id":"0"},{"radio_id":"1",".OPT":"noall"}])";
    EXPECT_EQ(run("get", "/config/radio"), 0);
    EXPECT_EQ(
        answer,
        R"({"config":{"radio":[{"INDEX":{"radio_id":"0",".OPT":"no"}},)"
        R"({"INDEX":{"radio_id":"0"},"channel_cmd":{"channel":"6"}},{"INDEX":{"radio_id":"1",".OPT":"noall"}}]}})");
    now.answers["radio"] = R"({".OPT":"noall"})";
    EXPECT_EQ(run("get", "/config/radio"), 0);
    EXPECT_EQ(answer, R"({"config":{"radio":{"INDEX":{".OPT":"noall"}}}})");
}

TEST_F(Dispatch, AGetOfOneInstanceCollectsItWhole)
{
    now.answers["channel_cmd"] = R"({"channel":"6"})";
    EXPECT_EQ(run("get", "/config/radio", R"({"radio_id":"1","x":"2"})"), 0);
    EXPECT_EQ(answer, R"({"config":{"radio":{"INDEX":{"radio_id":"1"},"channel_cmd":{"channel":"6"}}}})");
    EXPECT_THAT(now.calls, testing::Contains(R"(get radio@1 {"radio_id":"1","x":"2"})"));
    now.answers.clear();
    EXPECT_EQ(run("get", "/config/radio", R"({"radio_id":"1"})"), 0);
    EXPECT_EQ(answer, R"({"config":{"radio":{"INDEX":{"radio_id":"1"}}}})") << "an addressed instance stays";
    now.select_results[R"(radio{"radio_id":"1"})"] = -1;
    EXPECT_EQ(run("get", "/config/radio", R"({"radio_id":"1"})"), 0);
    EXPECT_EQ(answer, R"({"config":{}})");
}

TEST_F(Dispatch, AGetOfAPackageWithForeignParametersCollectsAllOfIt)
{
    now.answers["radio"] = R"([{"radio_id":"0"}])";
    EXPECT_EQ(run("get", "/config/radio", R"({"x":"1"})"), 0);
    EXPECT_EQ(answer, R"({"config":{"radio":[{"INDEX":{"radio_id":"0"}}]}})");
    EXPECT_THAT(now.calls, testing::Contains("get radio@1 null"));
}

TEST_F(Dispatch, APackagesHandlerThatReportsAScalarIsRefused)
{
    for (const char *value : {"1", "\"x\"", "true", "1.5"}) {
        now.answers["radio"] = value;
        EXPECT_EQ(run("get", "/config/radio"), 0);
        EXPECT_EQ(answer, R"({"config":{}})");
        EXPECT_EQ(log.texts(LOG_ERR).size(), 1u);
    }
}

TEST_F(Dispatch, AListOfScalarsFromAHandlerIsTakenStepByStep)
{
    now.answers["radio"] = R"([1,"x",[],{}])";
    EXPECT_EQ(run("get", "/config/radio"), 0);
    EXPECT_EQ(answer, R"({"config":{"radio":[{"INDEX":1},{"INDEX":"x"},{"INDEX":[]},{"INDEX":{}}]}})");
}

// --- whole-tree sets

TEST_F(Dispatch, AWholeTreeSetVisitsTheMembersInTheirOrder)
{
    EXPECT_EQ(set_tree(R"({"host_cmd":{"host":"a"},"unknown":{"x":1},"radio":[{"INDEX":{"radio_id":"0"},)"
                       R"("channel_cmd":{"channel":"6"}},{"INDEX":{"radio_id":"1"},"channel_cmd":[{"channel":"1"},)"
                       R"({"channel":"2"}]}],"plain":{"inner_cmd":{}}})"),
              0);
    EXPECT_THAT(now.calls, ElementsAre(testing::StartsWith("set config@1 {"), R"(set host_cmd@2 {"host":"a"})",
                                       R"(set radio@2 {"radio_id":"0"})", R"(set channel_cmd@3 {"channel":"6"})",
                                       R"(set radio@2 {"radio_id":"1"})", R"(set channel_cmd@3 {"channel":"1"})",
                                       R"(set channel_cmd@3 {"channel":"2"})", "set inner_cmd@3 null"));
    EXPECT_EQ(log.texts(LOG_ERR).size(), 0u);
}

TEST_F(Dispatch, AWholeTreeSetShowsWhereItStands)
{
    bool seen = false;
    now.on_call = [&](json_object *args, struct cpath_ctx *ctx) {
        EXPECT_STREQ(ctx->stack[0].node->name, "root");
        if (current_name(ctx) != "channel_cmd") return;
        seen = true;
        EXPECT_EQ(plain(ctx->stack[3].args), R"([{"channel":"1"}])");
        EXPECT_EQ(plain(args), R"({"channel":"1"})");
        EXPECT_EQ(plain(ctx->stack[2].args), R"({"INDEX":{"radio_id":"1"},"channel_cmd":[{"channel":"1"}]})");
        EXPECT_STREQ(ctx->stack[2].node->name, "radio");
        EXPECT_STREQ(ctx->stack[1].node->name, "config");
    };
    EXPECT_EQ(set_tree(R"({"radio":{"INDEX":{"radio_id":"1"},"channel_cmd":[{"channel":"1"}]}})"), 0);
    EXPECT_TRUE(seen);
}

TEST_F(Dispatch, ARemovedInstanceSkipsItsChildren)
{
    EXPECT_EQ(
        set_tree(R"({"radio":[{".OPT":"noall","channel_cmd":{"channel":"6"}},)"
                 R"({"INDEX":{"radio_id":"0",".OPT":"no"},"channel_cmd":{"channel":"6"}}],"host_cmd":{"x":"1"}})"),
        0);
    EXPECT_THAT(now.calls, ElementsAre(testing::StartsWith("set config@1"), "no radio@2 null",
                                       R"(no radio@2 {"radio_id":"0",".OPT":"no"})", R"(set host_cmd@2 {"x":"1"})"));
}

TEST_F(Dispatch, AnOptionBesideTheIndexIsNotLookedAt)
{
    EXPECT_EQ(set_tree(R"({"radio":{"INDEX":{"radio_id":"0"},".OPT":"no","channel_cmd":{"channel":"6"}}})"), 0);
    EXPECT_THAT(now.calls, ElementsAre(testing::StartsWith("set config@1"), R"(set radio@2 {"radio_id":"0"})",
                                       R"(set channel_cmd@3 {"channel":"6"})"));
}

TEST_F(Dispatch, ARemovalOfAPackageWithoutNoHandlerSkipsItsChildrenSilently)
{
    EXPECT_EQ(set_tree(R"({"plain":{".OPT":"no","inner_cmd":{"x":"1"}}})"), 0);
    EXPECT_THAT(now.calls, ElementsAre(testing::StartsWith("set config@1")));
}

TEST_F(Dispatch, AFailedInstanceSkipsItsChildrenAndTheWalkGoesOn)
{
    now.set_results["radio"] = -1;
    now.set_results["host_cmd"] = -1;
    EXPECT_EQ(
        set_tree(R"({"radio":[{"channel_cmd":{}},{"channel_cmd":{}}],"host_cmd":{"x":"1"},"plain":{"inner_cmd":{}}})"),
        0);
    EXPECT_THAT(now.calls, ElementsAre(testing::StartsWith("set config@1"), R"(set radio@2 {"channel_cmd":{}})",
                                       R"(set radio@2 {"channel_cmd":{}})", R"(set host_cmd@2 {"x":"1"})",
                                       "set inner_cmd@3 null"));
    EXPECT_EQ(log.texts(LOG_ERR), (std::vector<std::string>{"set radio                            : failed",
                                                            "set radio                            : failed",
                                                            "set host_cmd                         : failed"}));
}

TEST_F(Dispatch, ValuesOfTheWrongTypeAreSkippedWithAnErrorLine)
{
    struct {
        const char *config;
        size_t errors;
    } const cases[] = {
        {R"({"host_cmd":1})", 1},
        {R"({"host_cmd":"x"})", 1},
        {R"({"host_cmd":[1,"x",true,null,[],1.5]})", 5},
        {R"({"radio":"x"})", 1},
        {R"({"radio":[1,[{"channel_cmd":{}}]]})", 2},
        {R"({"radio":{"INDEX":"0","channel_cmd":{}}})", 1},
        {R"({"radio":{"INDEX":[{"radio_id":"0"}],"channel_cmd":{}}})", 1},
        {R"({"radio":null,"host_cmd":null,"plain":[null]})", 0},
        {R"({"radio":[],"host_cmd":[]})", 0},
    };
    for (const auto &[config, errors] : cases)
        for (const char *action : {"set", "get"}) {
            if (strcmp(action, "get") == 0 && errors == 0) continue;  // there, null and empty ask for everything
            EXPECT_EQ(run(std::string(R"({"ACTION":")") + action + R"(","config":)" + config + "}"), 0);
            EXPECT_EQ(log.texts(LOG_ERR).size(), errors) << action << " " << config;
            EXPECT_EQ(now.calls.size(), 1u) << action << " " << config;
        }
}

TEST_F(Dispatch, AWholeMessageOfTheWrongTypeIsRefused)
{
    for (const char *body : {"1", "[]", "\"config\"", "[{\"config\":{}}]"})
        for (const bool is_get : {false, true}) {
            const json_ptr value = parse(body);
            struct cmesage_info info = {};
            info.is_get = is_get;
            info.body = value.get();
            json_object *out = nullptr;
            log.clear();
            EXPECT_EQ(cmessage_parser(&info, &out, 0, nullptr), -1);
            EXPECT_EQ(out, nullptr);
            EXPECT_EQ(log.texts(LOG_ERR).size(), 1u);
        }
    for (const char *config : {"1", "\"x\"", "[1,2]", "true"}) {
        EXPECT_EQ(set_tree(config), 0);
        EXPECT_THAT(now.calls, IsEmpty());
        EXPECT_GE(log.texts(LOG_ERR).size(), 1u);
    }
}

TEST_F(Dispatch, HandlersMayChangeWhatTheyAreGiven)
{
    now.on_call = [](json_object *args, struct cpath_ctx *ctx) {
        for (int i = 0; i <= ctx->depth; i++)
            if (json_object_is_type(ctx->stack[i].args, json_type_array))
                json_object_array_del_idx(ctx->stack[i].args, 0, json_object_array_length(ctx->stack[i].args));
        if (!json_object_is_type(args, json_type_object)) return;
        json_object_object_foreach(args, key, value)
        {
            (void)value;
            json_object_object_del(args, key);
        }
        json_object_object_add(args, "host_cmd", json_object_new_array());
    };
    EXPECT_EQ(
        set_tree(
            R"({"radio":[{"INDEX":{"radio_id":"0"},"channel_cmd":[{"c":"1"},{"c":"2"}]},{"bss":{}}],"host_cmd":{"x":"1"}})"),
        0);
    EXPECT_EQ(run(R"({"config":[{"radio":{"channel_cmd":{"c":"1"}},"host_cmd":{"x":"1"}},{"host_cmd":{}}]})"), 0);
    EXPECT_EQ(run("set", "/config/radio/channel_cmd", R"({"x":"1"})"), 0);
    EXPECT_EQ(
        get_tree(
            R"({"radio":[{"INDEX":{"radio_id":"0"},"channel_cmd":[{"c":"1"},{"c":"2"}]},{"bss":{}}],"host_cmd":{"x":"1"}})"),
        0);
    now.answers["radio"] = R"([{"radio_id":"0"},{"radio_id":"1"}])";
    now.answers["config"] = "{}";
    EXPECT_EQ(run("get", "/"), 0);
}

// --- whole-tree gets

TEST_F(Dispatch, AnEmptyWholeTreeGetAnswersEverything)
{
    now.answers["config"] = "{}";
    now.answers["host_cmd"] = R"({"host":"a"})";
    message = parse("{}");
    struct cmesage_info info = {};
    info.is_get = 1;
    info.body = message.get();
    json_object *out = nullptr;
    EXPECT_EQ(cmessage_parser(&info, &out, 0, nullptr), 0);
    const json_ptr owned(out);
    EXPECT_EQ(plain(out), R"({"config":{"host_cmd":{"host":"a"}}})");
    EXPECT_EQ(now.calls[0], "get config@1 null");
}

TEST_F(Dispatch, AWholeTreeGetAnswersTheMembersThatItNames)
{
    now.answers["host_cmd"] = R"({"host":"a"})";
    now.answers["channel_cmd"] = R"({"channel":"6"})";
    now.replies["inner_cmd"] = R"({"i":"1"})";
    EXPECT_EQ(get_tree(R"({"host_cmd":null,"unknown":{},"plain":{"inner_cmd":{"x":"1"}}})"), 0);
    EXPECT_EQ(answer, R"({"config":{"host_cmd":{"host":"a"},"plain":{"inner_cmd":{"i":"1"}}}})");
    EXPECT_THAT(now.calls, ElementsAre("get config@1 {}", "get host_cmd@2 null", R"(get inner_cmd@3 {"x":"1"})"));
}

TEST_F(Dispatch, NullAndEmptyMembersAskForTheWholePackage)
{
    now.answers["radio"] = R"([{"radio_id":"0"}])";
    for (const char *value : {"null", "{}", "[]"}) {
        EXPECT_EQ(get_tree(std::string(R"({"radio":)") + value + "}"), 0);
        EXPECT_EQ(answer, R"({"config":{"radio":[{"INDEX":{"radio_id":"0"}}]}})") << value;
    }
}

TEST_F(Dispatch, InstancesAreSelectedByTheirIndex)
{
    now.answers["channel_cmd"] = R"({"channel":"6"})";
    EXPECT_EQ(
        get_tree(
            R"({"radio":[{"INDEX":{"radio_id":"0"}},{"INDEX":{"radio_id":"1"},"channel_cmd":{}},{"channel_cmd":null}]})"),
        0);
    EXPECT_EQ(answer, R"({"config":{"radio":[{"INDEX":{"radio_id":"0"},"channel_cmd":{"channel":"6"}},)"
                      R"({"INDEX":{"radio_id":"1"},"channel_cmd":{"channel":"6"}},{"channel_cmd":{"channel":"6"}}]}})");
    EXPECT_THAT(now.calls, ElementsAre("get config@1 {}", R"(get radio@2 {"radio_id":"0"})", "get channel_cmd@3 null",
                                       "get bss@3 null", R"(get radio@2 {"radio_id":"1"})", "get channel_cmd@3 null",
                                       "get radio@2 {}", "get channel_cmd@3 null"));
}

TEST_F(Dispatch, OneAnswerStaysAloneSeveralMakeAnArray)
{
    now.replies["host_cmd"] = R"({"host":"a"})";
    EXPECT_EQ(get_tree(R"({"host_cmd":[{"x":"1"}]})"), 0);
    EXPECT_EQ(answer, R"({"config":{"host_cmd":{"host":"a"}}})");
    EXPECT_EQ(get_tree(R"({"host_cmd":[{"x":"1"},{"x":"2"},{"x":"3"}]})"), 0);
    EXPECT_EQ(answer, R"({"config":{"host_cmd":[{"host":"a"},{"host":"a"},{"host":"a"}]}})");
    now.replies.clear();
    EXPECT_EQ(get_tree(R"({"host_cmd":[{"x":"1"},{"x":"2"}]})"), 0);
    EXPECT_EQ(answer, R"({"config":{}})");
}

TEST_F(Dispatch, AFailureAbandonsTheWholeMemberAndTheWalkGoesOn)
{
    now.answers["channel_cmd"] = R"({"channel":"6"})";
    now.answers["inner_cmd"] = R"({"i":"1"})";
    now.replies["host_cmd"] = R"({"host":"a"})";
    now.select_results[R"(radio{"radio_id":"1"})"] = -1;
    now.select_results[R"(host_cmd{"x":"2"})"] = -1;
    EXPECT_EQ(get_tree(R"({"radio":[{"INDEX":{"radio_id":"0"}},{"INDEX":{"radio_id":"1"}},{"INDEX":{"radio_id":"2"}}],)"
                       R"("host_cmd":[{"x":"1"},{"x":"2"}],"plain":{}})"),
              0);
    EXPECT_EQ(answer, R"({"config":{"plain":{"inner_cmd":{"i":"1"}}}})");
    EXPECT_THAT(now.calls, testing::Not(testing::Contains(R"(get radio@2 {"radio_id":"2"})")));
}

TEST_F(Dispatch, AnElementOfTheWrongTypeIsSkippedAlone)
{
    now.replies["host_cmd"] = R"({"host":"a"})";
    EXPECT_EQ(get_tree(R"({"host_cmd":[1,{"x":"1"},"x",{"x":"2"}]})"), 0);
    EXPECT_EQ(answer, R"({"config":{"host_cmd":[{"host":"a"},{"host":"a"}]}})");
    EXPECT_EQ(log.texts(LOG_ERR).size(), 2u);
}

// --- package content

TEST(PackageContent, WhatCountsAsEmpty)
{
    const std::pair<const char *, int> cases[] = {{"null", 1},
                                                  {"{}", 1},
                                                  {"[]", 1},
                                                  {R"({"INDEX":{"a":1}})", 1},
                                                  {R"({"INDEX":null})", 1},
                                                  {R"({"INDEX":{},"a":1})", 0},
                                                  {R"({"a":1})", 0},
                                                  {R"({"a":1,"INDEX":{}})", 0},
                                                  {R"({"INDEX":{},"a":null})", 0},
                                                  {"[{}]", 0},
                                                  {"1", 0},
                                                  {"\"\"", 0},
                                                  {"false", 0}};
    for (const auto &[text, empty] : cases) EXPECT_EQ(is_null_package_obj(parse(text).get()), empty) << text;
}

TEST_F(Dispatch, CollectingBelowANodeAddsTheChildrenInTableOrder)
{
    now.answers["host_cmd"] = R"({"host":"a"})";
    now.answers["inner_cmd"] = R"({"i":"1"})";
    struct cpath_ctx ctx = {};
    const json_ptr collected = parse(R"({"kept":1})");
    package_get_all(&root_table[0], collected.get(), &ctx);
    EXPECT_EQ(plain(collected.get()), R"({"kept":1,"plain":{"inner_cmd":{"i":"1"}},"host_cmd":{"host":"a"}})");
    EXPECT_EQ(ctx.depth, 0);
    EXPECT_STREQ(ctx.stack[1].node->name, "bare_cmd");
}

TEST_F(Dispatch, CollectingWithoutANodeAnObjectOrAContextDoesNothing)
{
    struct cpath_ctx ctx = {};
    const json_ptr object = parse("{}");
    const json_ptr array = parse("[]");
    package_get_all(nullptr, object.get(), &ctx);
    package_get_all(&root_table[0], nullptr, &ctx);
    package_get_all(&root_table[0], array.get(), &ctx);
    package_get_all(&root_table[0], object.get(), nullptr);
    package_get_all(&config_table[2], object.get(), &ctx);
    EXPECT_THAT(now.calls, IsEmpty());
    EXPECT_EQ(plain(object.get()), "{}");
}

// --- anything at all

class random_json
{
public:
    explicit random_json(uint32_t seed) : numbers_(seed) {}

    uint32_t below(uint32_t limit) { return static_cast<uint32_t>(numbers_() % limit); }

    json_object *message()
    {
        json_object *result = json_object_new_object();
        if (below(2)) json_object_object_add(result, "ACTION", below(4) ? json_object_new_string("get") : value(1));
        if (below(4) == 0) json_object_object_add(result, "MODULE", value(1));
        if (below(3) == 0) json_object_object_add(result, "CPATH", below(5) ? cpath() : value(2));
        if (below(3)) json_object_object_add(result, "config", value(5));
        if (below(8) == 0) json_object_object_add(result, "wtp_notify", value(3));
        return result;
    }

    json_object *value(int depth)
    {
        switch (below(depth > 0 ? 12 : 6)) {
            case 0:
                return nullptr;
            case 1:
                return json_object_new_int(static_cast<int>(below(3)));
            case 2:
                return json_object_new_string(below(2) ? "no" : "noall");
            case 3:
                return json_object_new_boolean(1);
            case 4:
                return json_object_new_double(1.5);
            case 5:
                return json_object_new_object();
            case 6:
                return array(depth - 1);
            default:
                return object(depth - 1);
        }
    }

private:
    json_object *array(int depth)
    {
        json_object *result = json_object_new_array();
        for (uint32_t count = below(4); count > 0; count--) json_object_array_add(result, value(depth));
        return result;
    }

    json_object *object(int depth)
    {
        static const char *const keys[] = {"config",      "radio",     "bss",        "plain",    "host_cmd", "ssid_cmd",
                                           "channel_cmd", "inner_cmd", "silent_cmd", "bare_cmd", "INDEX",    ".OPT",
                                           "radio_id",    "wlan_id",   "CPATH",      "param",    "unknown"};
        json_object *result = json_object_new_object();
        for (uint32_t count = below(5); count > 0; count--)
            json_object_object_add(result, keys[below(std::size(keys))], value(depth));
        return result;
    }

    json_object *cpath()
    {
        static const char *const pieces[] = {"/",         "/config",   "/radio",  "/bss",
                                             "/host_cmd", "/ssid_cmd", "//plain", "/x"};
        std::string path;
        for (uint32_t count = below(5); count > 0; count--) path += pieces[below(std::size(pieces))];
        json_object *result = json_object_new_object();
        json_object_object_add(result, "path", below(9) ? json_object_new_string(path.c_str()) : value(2));
        if (below(4)) json_object_object_add(result, "param", value(3));
        return result;
    }

    std::mt19937 numbers_;
};

// The handlers answer, fail and change their arguments at random.
struct random_handlers {
    explicit random_handlers(uint32_t seed) : random(seed) { active = this; }
    ~random_handlers() { active = nullptr; }

    void look(json_object *args, const struct cpath_ctx *ctx, bool list_allowed)
    {
        calls++;
        ASSERT_GE(ctx->depth, 0);
        ASSERT_LT(ctx->depth, CPATH_STACK_DEPTH);
        ASSERT_NE(ctx->stack[ctx->depth].node, nullptr);
        const bool list = list_allowed && json_object_is_type(args, json_type_array);
        ASSERT_TRUE(!args || list || json_object_is_type(args, json_type_object)) << plain(args);
        if (args && !list && random.below(16) == 0) json_object_object_del(args, "INDEX");
        if (args && !list && random.below(16) == 0) json_object_object_add(args, "radio", random.value(2));
    }

    int verdict() { return random.below(6) ? 0 : static_cast<int>(random.below(3)) - 1; }

    random_json random;
    long calls = 0;
    static random_handlers *active;
};
random_handlers *random_handlers::active;

int random_set(json_object *args, struct cpath_ctx *ctx)
{
    random_handlers::active->look(args, ctx, true);
    return random_handlers::active->verdict();
}

int random_get(json_object *args, json_object **result, struct cpath_ctx *ctx)
{
    // A list of anything that another handler reported comes back to it element by element.
    if (!args || json_object_is_type(args, json_type_object) || json_object_is_type(args, json_type_array))
        random_handlers::active->look(args, ctx, true);
    if (random_handlers::active->random.below(3)) *result = random_handlers::active->random.value(3);
    return random_handlers::active->verdict();
}

void install(struct cmd_node *table, cmd_set_fn *set, cmd_get_fn *get, cmd_set_fn *no)
{
    for (; table->name; table++) {
        if (table->set) table->set = set;
        if (table->no) table->no = no;
        if (table->get) table->get = get;
        if (table->children) install(table->children, set, get, no);
    }
}

TEST_F(Dispatch, AnyMessageAndAnyHandlerDoNoHarm)
{
    install(root_table, random_set, random_get, random_set);
    random_handlers handlers(20240607);
    random_json messages(4711);
    for (int i = 0; i < 30000; i++) {
        const json_ptr text(i % 50 ? messages.message() : messages.value(4));
        log.clear();
        struct cmesage_info info;
        if (get_cmesage_info(text.get(), &info) != 0) continue;
        json_object *out = nullptr;
        const int result = cmessage_parser(&info, &out, 0, nullptr);
        EXPECT_TRUE(result == 0 || result == -1);
        if (result == 0 && info.is_get) {
            EXPECT_NE(out, nullptr);
        }
        plain(out);
        json_object_put(out);
        if (HasFatalFailure() || HasFailure()) break;
    }
    install(root_table, on_set, on_get, on_no);
    EXPECT_GT(handlers.calls, 10000) << "the messages must reach the handlers";
}

size_t memory_in_use()
{
    return mallinfo2().uordblks;
}

TEST_F(Dispatch, MemoryDoesNotGrowWithTheNumberOfMessages)
{
    now.answers["radio"] = R"([{"radio_id":"0"},{"radio_id":"1",".OPT":"no"}])";
    now.answers["config"] = "{}";
    now.answers["host_cmd"] = R"({"host":"a"})";
    now.replies["host_cmd"] = R"({"host":"a"})";
    const auto round = [this] {
        for (const char *action : {"set", "get"}) {
            run(action, "/config/host_cmd");
            run(action, "/config/radio", R"({"radio_id":"1"})");
            run(action, "/");
            run(action, "/nothing");
            run(action, "/config/host_cmd", "1");
            run(std::string(R"({"ACTION":")") + action +
                R"(","config":{"radio":[{"INDEX":{"radio_id":"0"},"channel_cmd":{}}],"host_cmd":[{"x":"1"},{"x":"2"}]}})");
        }
        now.calls.clear();
        now.calls.shrink_to_fit();
        message.reset();
        answer = "";
        log.clear();
    };
    for (int i = 0; i < 20; i++) round();
    const size_t before = memory_in_use();
    for (int i = 0; i < 500; i++) round();
    // The allocator's own caches still fill up; one forgotten object a round would be 24000 bytes and more.
    EXPECT_LE(memory_in_use(), before + 16384);
}

}  // namespace

// Watchers: they hear of every message, end clean, and hold up nobody.
#include <apconf/apconf.h>
#include <json-c/json.h>
#include <signal.h>

#include <algorithm>
#include <memory>

#include "daemon/server_process.h"
#include "daemon/tool_in_background.h"
#include "host/json.h"
#include "host/message_types.h"
#include "host/reply_codes.h"
#include "host/tool_process.h"

using namespace apconf_test;
using apconf_host::json_ptr;
using apconf_host::member;
using apconf_host::message_type;
using apconf_host::reply_code;
using testing::HasSubstr;
using testing::Not;

namespace
{

constexpr auto subscribe = static_cast<uint8_t>(message_type::subscribe);

class watching : public testing::Test
{
protected:
    void SetUp() override
    {
        make_fresh_machine();
        server_ = std::make_unique<server_process>();
        ASSERT_TRUE(server_->wait_until_serving());
    }

    // A watcher that has subscribed: it shows a set that is made for it.
    std::unique_ptr<tool_in_background> start_watcher(const std::string &options = "")
    {
        const std::string mark = "watched-by-" + std::to_string(++watchers_);
        auto watcher = std::make_unique<tool_in_background>("watch " + options);
        EXPECT_TRUE(eventually([&] {
            set_hostname(mark + "-" + std::to_string(++marks_));
            return watcher->output().find(mark) != std::string::npos;
        })) << watcher->errors();
        return watcher;
    }

    static void set_hostname(const std::string &hostname)
    {
        raw_client().send_message(IO_MSG_SET, set_hostname_message(hostname));
    }

    static void apply(const std::string &message)
    {
        append(message);
        raw_client().send_message(IO_MSG_APPLIED, "");
    }

    static raw_client subscribed()
    {
        raw_client client;
        const auto reply = client.request(subscribe, "");
        EXPECT_TRUE(reply && reply->code == 0);
        return client;
    }

    std::unique_ptr<server_process> server_;
    int watchers_ = 0;
    int marks_ = 0;
};

TEST_F(watching, two_watchers_see_each_message_with_number_time_and_sender)
{
    const auto one = start_watcher();
    const auto other = start_watcher();
    apply(queued_hostname_message("queued", "somebody"));
    apply(R"({"MODULE":"me","ACTION":"set","config":{"wdt_cmd":{"status":"enable"},"nothing_cmd":{}}})");
    for (const auto *watcher : {one.get(), other.get()}) {
        ASSERT_TRUE(watcher->wait_for_output("watchdog enable"));
        const std::string output = watcher->output();
        const auto lines = lines_of(output.substr(output.find("# message 1")));
        ASSERT_EQ(lines.size(), 5u) << output;
        EXPECT_THAT(lines[0], testing::MatchesRegex("# message 1 from somebody, 2[0-9-]+ [0-9:]+"));
        EXPECT_EQ(lines[1], "hostname queued");
        EXPECT_THAT(lines[2], testing::MatchesRegex("# message 2 from me, 2[0-9-]+ [0-9:]+, 1 refused"));
    }
}

TEST_F(watching, json_is_one_object_a_line)
{
    const auto watcher = start_watcher("--json");
    apply(queued_hostname_message("queued", "somebody"));
    ASSERT_TRUE(watcher->wait_for_output("queued\"}}}}\n"));
    const auto lines = lines_of(watcher->output());
    for (const std::string &line : lines) EXPECT_TRUE(json_ptr(json_tokener_parse(line.c_str()))) << line;
    const json_ptr event(json_tokener_parse(lines.back().c_str()));
    EXPECT_NEAR(static_cast<double>(json_object_get_int64(member(event.get(), "time"))),
                static_cast<double>(time(nullptr)), 60);
    json_object_object_del(event.get(), "time");
    EXPECT_STREQ(json_object_to_json_string_ext(event.get(), JSON_C_TO_STRING_PLAIN),
                 R"({"number":1,"changes":1,"refusals":0,"message":{"MODULE":"somebody","ACTION":"set",)"
                 R"("config":{"hostname_cmd":{"hostname":"queued"}}}})");
    EXPECT_THAT(lines.front(), Not(HasSubstr("number"))) << "a set has none";
}

TEST_F(watching, secrets_are_masked_unless_asked_for)
{
    const auto watcher = start_watcher();
    const auto json = start_watcher("--json");
    const auto open = start_watcher("--secrets");
    apply(R"({"MODULE":"me","ACTION":"set","config":{"password_cmd":{"password":"hush-hush"}}})");
    apply(queued_hostname_message("done"));
    for (const auto *one : {watcher.get(), json.get(), open.get()}) ASSERT_TRUE(one->wait_for_output("done"));
    EXPECT_THAT(watcher->output(), Not(HasSubstr("hush-hush")));
    EXPECT_THAT(json->output(), Not(HasSubstr("hush-hush")));
    EXPECT_THAT(watcher->output(), HasSubstr("***"));
    EXPECT_THAT(open->output(), HasSubstr("hush-hush"));
}

TEST_F(watching, undo_shows_the_configuration_that_came_back)
{
    apply(queued_hostname_message("kept"));
    ASSERT_TRUE(eventually([] { return hostname_of_server() == "kept"; }));
    const tool_in_background watcher("watch");
    ASSERT_TRUE(eventually([&] {
        apconf("set wdt_cmd status=enable");
        apconf("no wdt_cmd");
        return watcher.output().find("no watchdog") != std::string::npos;
    }));
    ASSERT_EQ(apconf("commit --confirm 1 -", R"({"config":{"hostname_cmd":{"hostname":"lost"}}})").output, "2\n");
    ASSERT_TRUE(watcher.wait_for_output("# message 3 from apconfd"));
    ASSERT_TRUE(watcher.wait_for_output("# everything is removed, then\nhostname kept\n")) << watcher.output();
}

TEST_F(watching, ends_clean_with_ctrl_c)
{
    for (const int number : {SIGINT, SIGTERM}) {
        const auto watcher = start_watcher();
        watcher->send(number);
        EXPECT_EQ(watcher->exit_status(), 0);
        EXPECT_EQ(watcher->errors(), "");
    }
    EXPECT_EQ(apconf("get hostname_cmd").status, 0);
}

TEST_F(watching, ends_with_a_message_when_the_server_goes)
{
    const auto killed = start_watcher();
    server_->kill();
    EXPECT_EQ(killed->exit_status(), 1);
    EXPECT_THAT(killed->errors(), HasSubstr("the server has ended the connection"));
    const tool_result without = apconf("watch");
    EXPECT_EQ(without.status, 1);
    EXPECT_THAT(without.errors, HasSubstr("there is no configuration server"));
}

TEST_F(watching, is_not_told_of_what_changed_nothing_or_was_refused)
{
    const raw_client client = subscribed();
    const raw_client setter;
    for (const std::string &message :
         {set_hostname_message("first"), set_hostname_message("first"),
          set_message("/config/log_size_cmd", R"({"size":"99999999"})"), set_hostname_message("second")})
        setter.send_message(IO_MSG_SET, message);
    for (const char *hostname : {"first", "second"}) {
        const auto event = client.receive();
        ASSERT_TRUE(event);
        EXPECT_THAT(event->data, HasSubstr(hostname));
    }
    EXPECT_FALSE(client.receive(200ms));
}

TEST_F(watching, more_watchers_than_allowed_are_told_so)
{
    std::vector<raw_client> clients;
    for (int i = 0; i < 16; ++i) clients.push_back(subscribed());
    const raw_client late;
    const auto reply = late.request(subscribe, "");
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->code, static_cast<int>(reply_code::busy));
    EXPECT_THAT(apconf("watch").errors, HasSubstr("the server has as many watchers as it allows"));
    EXPECT_EQ(clients.front().request(subscribe, "")->code, 0) << "one that subscribes again takes no other place";
    clients.pop_back();
    EXPECT_TRUE(eventually([&] { return late.request(subscribe, "")->code == 0; })) << "a place becomes free";
    // Nobody needs a place to change something.
    EXPECT_EQ(apconf("commit --confirm 60 -", R"({"config":{"hostname_cmd":{"hostname":"x"}}})").status, 0);
}

TEST_F(watching, that_does_not_read_is_dropped_and_holds_up_nobody)
{
    const raw_client deaf = subscribed();
    const auto watcher = start_watcher("--json");
    const std::string large(40000, 'x');
    auto longest = 0us;
    int sent = 0;
    for (; sent < 500 && !server_->wait_for_log("it does not read its events", 0ms); ++sent) {
        raw_client().send_message(
            IO_MSG_SET, set_message("/config/ism_cmd", R"({"ism":{"n":")" + std::to_string(sent) + large + R"("}})"));
        const auto begin = std::chrono::steady_clock::now();
        ASSERT_NE(hostname_of_server(), "");
        longest = std::max(
            longest, std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - begin));
    }
    EXPECT_LT(sent, 500) << "it was not dropped";
    EXPECT_GT(sent, 10) << "it was dropped although it could still have read";
    EXPECT_LT(longest, 1s);
    EXPECT_TRUE(watcher->wait_for_output("\"n\":\"" + std::to_string(sent - 1) + "x")) << "one that reads missed some";
#ifndef __SANITIZE_ADDRESS__  // which keeps released memory
    EXPECT_LT(server_->resident_kilobytes(), 100u << 10);
#endif
}

TEST_F(watching, that_reads_nothing_for_long_is_dropped_by_time_as_well)
{
    const raw_client deaf = subscribed();
    const std::string large(300000, 'x');  // more than the socket takes, less than the backlog
    raw_client().send_message(IO_MSG_SET, set_message("/config/ism_cmd", R"({"ism":{"n":")" + large + R"("}})"));
    EXPECT_TRUE(server_->wait_for_log("dropped: it did not read its replies in time"));
}

}  // namespace

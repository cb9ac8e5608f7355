// Sending commands by path: the exact bytes that reach the server, the answer of a get, and every failure.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <json-c/json.h>
#include <malloc.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <syslog.h>
#include <unistd.h>

#include <atomic>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "apconf/cmclient.h"
#include "apconf/cpath.h"
#include "apconf/ptype.h"
#include "support/log_capture.h"
#include "util/owners.h"

namespace
{

using apconf::json_ptr;
using apconf_test::log_capture;
using testing::ElementsAre;
using testing::IsEmpty;

// Accepts one client on the default path, keeps what it sends and answers its requests.
class server
{
public:
    server()
    {
        unlink(IO_SOCK_PATH);
        listener_.reset(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
        struct sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        strcpy(address.sun_path, IO_SOCK_PATH);
        EXPECT_EQ(bind(listener_.get(), reinterpret_cast<struct sockaddr *>(&address), sizeof address), 0);
        EXPECT_EQ(listen(listener_.get(), 4), 0);
        thread_ = std::thread([this] { serve(); });
    }
    ~server()
    {
        wait();
        unlink(IO_SOCK_PATH);
    }

    // Until the client has closed its connection.
    void wait()
    {
        if (thread_.joinable()) thread_.join();
    }

    struct message {
        int type;
        std::string data;
    };
    std::vector<message> received;   // read it after wait()
    std::atomic<bool> keeps = true;  // false: messages are answered and forgotten
    uint8_t code = 0;                // of the answer to a get
    std::string reply_data;

private:
    static bool read_all(int fd, void *bytes, size_t length)
    {
        auto *next = static_cast<char *>(bytes);
        while (length > 0) {
            const ssize_t count = read(fd, next, length);
            if (count <= 0) return false;
            next += count;
            length -= static_cast<size_t>(count);
        }
        return true;
    }

    void reply(int fd, uint8_t reply_code, const std::string &data)
    {
        struct io_msg header = {};
        header.code = reply_code;
        header.data_len = static_cast<uint32_t>(data.size());
        std::string bytes(reinterpret_cast<const char *>(&header), IO_MSG_HEADER_SIZE);
        bytes += data;
        EXPECT_EQ(send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL), static_cast<ssize_t>(bytes.size()));
    }

    void serve()
    {
        const apconf::unique_fd client(accept(listener_.get(), nullptr, nullptr));
        struct io_msg header;
        while (read_all(client.get(), &header, IO_MSG_HEADER_SIZE)) {
            std::string data(header.data_len, '\0');
            if (!read_all(client.get(), data.data(), data.size())) return;
            if (keeps) received.push_back({header.type, data});
            if (header.type == IO_MSG_REGISTER) reply(client.get(), 0, "");
            if (header.type == IO_MSG_GET) reply(client.get(), code, reply_data);
        }
    }

    apconf::unique_fd listener_;
    std::thread thread_;
};

class Cpath : public testing::Test
{
protected:
    void SetUp() override { ASSERT_GE(init_cmclient(nullptr, "tester"), 0); }
    void TearDown() override { hang_up(); }

    void hang_up()
    {
        if (connected_) deinit_cmclient();
        connected_ = false;
    }

    // What the server got between the registration and the farewell.
    std::vector<server::message> sent()
    {
        hang_up();
        peer.wait();
        auto messages = peer.received;
        EXPECT_GE(messages.size(), 2u);
        EXPECT_EQ(messages.front().type, IO_MSG_REGISTER);
        EXPECT_EQ(messages.back().type, IO_MSG_UNREGISTER);
        return {messages.begin() + 1, messages.end() - 1};
    }
    // The same for one message of this type, whose closing NUL is left out.
    std::string sent_text(int type)
    {
        const auto messages = sent();
        if (messages.size() != 1 || messages[0].type != type || !messages[0].data.ends_with('\0')) {
            ADD_FAILURE() << messages.size() << " messages";
            return "";
        }
        return messages[0].data.substr(0, messages[0].data.size() - 1);
    }

    server peer;
    log_capture log;

private:
    bool connected_ = true;
};

TEST_F(Cpath, ASetIsANotificationOfTheWholeMessage)
{
    const json_ptr param(json_tokener_parse(R"({"ssid":"lobby","list":["a","b"]})"));
    EXPECT_EQ(send_cpath_cmd_obj("set", "/config/radio/bss/ssid_cmd", param.get(), nullptr), 0);
    EXPECT_EQ(sent_text(IO_MSG_SET),
              R"({"MODULE":"tester","ACTION":"set","CPATH":{"path":"\/config\/radio\/bss\/ssid_cmd",)"
              R"("param":{"ssid":"lobby","list":["a","b"]}}})");
}

TEST_F(Cpath, WithoutParametersThereIsNoParam)
{
    EXPECT_EQ(send_cpath_cmd_obj("set", "any path", nullptr, nullptr), 0);
    EXPECT_EQ(sent_text(IO_MSG_SET), R"({"MODULE":"tester","ACTION":"set","CPATH":{"path":"any path"}})");
}

TEST_F(Cpath, ANoWithoutParametersTravelsAsASetWithTheOption)
{
    EXPECT_EQ(send_cpath_cmd_obj("no", "/config/host_cmd", nullptr, nullptr), 0);
    EXPECT_EQ(sent_text(IO_MSG_SET),
              R"({"MODULE":"tester","ACTION":"set","CPATH":{"path":"\/config\/host_cmd","param":{".OPT":"no"}}})");
}

TEST_F(Cpath, ANoAddsTheOptionToTheCallersObject)
{
    const json_ptr param(json_tokener_parse(R"({"id":"1"})"));
    EXPECT_EQ(send_cpath_cmd_obj("no", "/config/host_cmd", param.get(), nullptr), 0);
    EXPECT_STREQ(json_object_to_json_string_ext(param.get(), JSON_C_TO_STRING_PLAIN), R"({"id":"1",".OPT":"no"})");
    EXPECT_EQ(
        sent_text(IO_MSG_SET),
        R"({"MODULE":"tester","ACTION":"set","CPATH":{"path":"\/config\/host_cmd","param":{"id":"1",".OPT":"no"}}})");
}

TEST_F(Cpath, TheCallerKeepsItsReference)
{
    json_object *param = json_tokener_parse(R"({"id":"1"})");
    for (const char *action : {"set", "no"}) EXPECT_EQ(send_cpath_cmd_obj(action, "/x", param, nullptr), 0);
    EXPECT_EQ(json_object_put(param), 1) << "this was not the only reference left";
}

TEST_F(Cpath, AGetIsARequestWhoseReplyIsHandedOver)
{
    peer.reply_data = R"({"config":{}})";
    struct io_msg *reply = nullptr;
    ASSERT_EQ(send_cpath_cmd_obj("get", "/config", nullptr, &reply), 0);
    ASSERT_NE(reply, nullptr);
    EXPECT_STREQ(reply->data, R"({"config":{}})");
    free(reply);
    EXPECT_EQ(sent_text(IO_MSG_GET), R"({"MODULE":"tester","ACTION":"get","CPATH":{"path":"\/config"}})");
}

TEST_F(Cpath, AGetWithoutRoomForTheReplyIsFineToo)
{
    EXPECT_EQ(send_cpath_cmd_obj("get", "/config", nullptr, nullptr), 0);
}

TEST_F(Cpath, AReplyWithAnyCodeIsASuccess)
{
    peer.code = 255;
    EXPECT_EQ(send_cpath_cmd_obj("get", "/config", nullptr, nullptr), 0);
}

TEST_F(Cpath, ASetDoesNotTouchTheReply)
{
    struct io_msg untouched = {};
    struct io_msg *reply = &untouched;
    EXPECT_EQ(send_cpath_cmd_obj("set", "/config", nullptr, &reply), 0);
    EXPECT_EQ(send_cpath_cmd_obj("no", "/config", nullptr, &reply), 0);
    EXPECT_EQ(reply, &untouched);
}

TEST_F(Cpath, NoActionOrPathFailsWithoutALine)
{
    log.clear();
    EXPECT_EQ(send_cpath_cmd_obj(nullptr, "/x", nullptr, nullptr), -1);
    EXPECT_EQ(send_cpath_cmd_obj("set", nullptr, nullptr, nullptr), -1);
    EXPECT_EQ(send_cpath_cmd_obj("del", nullptr, nullptr, nullptr), -1);
    EXPECT_TRUE(log.lines().empty());
    EXPECT_THAT(sent(), IsEmpty());
}

TEST_F(Cpath, AnotherActionIsRefused)
{
    log.clear();
    for (const char *action : {"del", "SET", "", "noall"}) {
        EXPECT_EQ(send_cpath_cmd_obj(action, "/x", nullptr, nullptr), -1);
        EXPECT_TRUE(log.has(LOG_ERR, "send_cpath_cmd_obj", std::string("invalid cpath action '") + action + "'"));
    }
    EXPECT_EQ(log.lines().size(), 4u);
    EXPECT_THAT(sent(), IsEmpty());
}

TEST_F(Cpath, ANoNeedsAnObject)
{
    for (const char *text : {"[\"x\"]", "1", "\"x\""}) {
        log.clear();
        const json_ptr param(json_tokener_parse(text));
        EXPECT_EQ(send_cpath_cmd_obj("no", "/x", param.get(), nullptr), -1);
        EXPECT_EQ(log.texts(LOG_ERR), std::vector<std::string>{std::string("invalid cpath param ") + text});
        EXPECT_EQ(send_cpath_cmd_str("no", "/x", text, nullptr), -1);
        EXPECT_EQ(json_object_put(json_object_get(param.get())), 0);
    }
    EXPECT_THAT(sent(), IsEmpty());
}

TEST_F(Cpath, TextIsParsedAndSent)
{
    EXPECT_EQ(send_cpath_cmd_str("set", "/x", R"( {"a" : "1"} )", nullptr), 0);
    EXPECT_EQ(sent_text(IO_MSG_SET), R"({"MODULE":"tester","ACTION":"set","CPATH":{"path":"\/x","param":{"a":"1"}}})");
}

TEST_F(Cpath, EmptyTextsSendNoParam)
{
    for (const char *text : {static_cast<const char *>(nullptr), "{}", "[]", " { } "})
        EXPECT_EQ(send_cpath_cmd_str("set", "/x", text, nullptr), 0);
    const auto messages = sent();
    EXPECT_EQ(messages.size(), 4u);
    for (const auto &message : messages)
        EXPECT_STREQ(message.data.c_str(), R"({"MODULE":"tester","ACTION":"set","CPATH":{"path":"\/x"}})");
}

TEST_F(Cpath, AnyOtherJsonIsPassedOn)
{
    EXPECT_EQ(send_cpath_cmd_str("set", "/x", R"([{"a":"1"},{"a":"2"}])", nullptr), 0);
    EXPECT_EQ(sent_text(IO_MSG_SET),
              R"({"MODULE":"tester","ACTION":"set","CPATH":{"path":"\/x","param":[{"a":"1"},{"a":"2"}]}})");
}

TEST_F(Cpath, TextThatIsNoJsonOrNullIsRefused)
{
    for (const char *text : {"", "{", "{\"a\":", "null", "nonsense"}) {
        log.clear();
        EXPECT_EQ(send_cpath_cmd_str("set", "/x", text, nullptr), -1);
        EXPECT_TRUE(log.has(LOG_ERR, "send_cpath_cmd_str", std::string("invalid cpath param ") + text));
        EXPECT_EQ(log.lines().size(), 1u);
    }
    EXPECT_THAT(sent(), IsEmpty());
}

TEST_F(Cpath, ANoWithEmptyTextMakesItsOwnObject)
{
    EXPECT_EQ(send_cpath_cmd_str("no", "/x", "{}", nullptr), 0);
    EXPECT_EQ(sent_text(IO_MSG_SET),
              R"({"MODULE":"tester","ACTION":"set","CPATH":{"path":"\/x","param":{".OPT":"no"}}})");
}

TEST_F(Cpath, ATableOfTypedValuesBecomesTheParam)
{
    const uint32_t id = 3;
    const uint8_t levels[] = {1, 20, 255};
    const char *const names[] = {"a", "b"};
    const struct mac_addr macs[] = {{{1, 2, 3, 4, 5, 6}}, {{7, 8, 9, 10, 11, 12}}};
    const struct cpath_arg args[] = {{"id", PTYPE_UINT, &id, 1},         {"skipped", PTYPE_UINT, nullptr, 1},
                                     {"levels", PTYPE_UINT8, levels, 3}, {"names", PTYPE_STRING, names, 2},
                                     {"none", PTYPE_UINT, &id, 0},       {"less", PTYPE_UINT, &id, -5},
                                     {"macs", PTYPE_MAC_ADDR, macs, 2},  {nullptr, 0, nullptr, 0}};
    log.clear();
    EXPECT_EQ(send_cpath_cmd("set", "/x", args, nullptr), 0);
    EXPECT_TRUE(log.has(LOG_DEBUG, "send_cpath_cmd", "'tester' cpath = '/x'"));
    const json_ptr message(json_tokener_parse(sent_text(IO_MSG_SET).c_str()));
    json_object *param = json_object_object_get(json_object_object_get(message.get(), "CPATH"), "param");
    json_object *mac_list = json_object_get(json_object_object_get(param, "macs"));
    json_object_object_del(param, "macs");
    EXPECT_STREQ(json_object_to_json_string_ext(param, JSON_C_TO_STRING_PLAIN),
                 R"({"id":"3","levels":["1","20","255"],"names":["a","b"]})");
    EXPECT_EQ(json_object_array_length(mac_list), 2u);
    json_object_put(mac_list);
}

TEST_F(Cpath, AnArgumentWithoutValuesStillMakesTheParam)
{
    const uint32_t id = 3;
    const struct cpath_arg args[] = {{"none", PTYPE_UINT, &id, 0}, {nullptr, 0, nullptr, 0}};
    EXPECT_EQ(send_cpath_cmd("set", "/x", args, nullptr), 0);
    EXPECT_EQ(sent_text(IO_MSG_SET), R"({"MODULE":"tester","ACTION":"set","CPATH":{"path":"\/x","param":{}}})");
}

TEST_F(Cpath, ATableWithoutKeptRecordsMakesNoParam)
{
    const struct cpath_arg skipped[] = {{"skipped", PTYPE_UINT, nullptr, 1}, {nullptr, 0, nullptr, 0}};
    EXPECT_EQ(send_cpath_cmd("set", "/x", nullptr, nullptr), 0);
    EXPECT_EQ(send_cpath_cmd("set", "/x", skipped, nullptr), 0);
    EXPECT_EQ(send_cpath_cmd("set", "/x", skipped + 1, nullptr), 0);
    const auto messages = sent();
    EXPECT_EQ(messages.size(), 3u);
    for (const auto &message : messages)
        EXPECT_STREQ(message.data.c_str(), R"({"MODULE":"tester","ACTION":"set","CPATH":{"path":"\/x"}})");
}

TEST_F(Cpath, AValueThatDoesNotConvertSendsNothing)
{
    const int32_t months[] = {1, 99};
    const struct cpath_arg args[] = {
        {"fine", PTYPE_UINT, months, 1}, {"months", PTYPE_MONTH, months, 2}, {nullptr, 0, nullptr, 0}};
    const struct cpath_arg unknown[] = {{"type", 83, months, 2}, {nullptr, 0, nullptr, 0}};
    log.clear();
    EXPECT_EQ(send_cpath_cmd("set", "/x", args, nullptr), -1);
    EXPECT_EQ(log.lines().back().function, "send_cpath_cmd");
    EXPECT_EQ(log.lines().back().priority, LOG_ERR);
    EXPECT_EQ(log.lines().back().text, "convert arg 'months' of cpath /x failed");
    EXPECT_EQ(send_cpath_cmd("set", "/x", unknown, nullptr), -1);
    EXPECT_TRUE(log.has(LOG_ERR, "send_cpath_cmd", "convert arg 'type' of cpath /x failed"));
    EXPECT_THAT(sent(), IsEmpty());
}

TEST_F(Cpath, AFailedCommandIsShownWithItsParameters)
{
    const uint32_t id = 3;
    const struct cpath_arg args[] = {{"id", PTYPE_UINT, &id, 1}, {nullptr, 0, nullptr, 0}};
    EXPECT_EQ(send_cpath_cmd("del", "/x", args, nullptr), -1);
    EXPECT_TRUE(log.has(LOG_ERR, "send_cpath_cmd", R"(del /x {"id":"3"} failed)"));
    EXPECT_EQ(send_cpath_cmd("del", "/x", nullptr, nullptr), -1);
    EXPECT_TRUE(log.has(LOG_ERR, "send_cpath_cmd", "del /x  failed"));
    EXPECT_EQ(send_cpath_cmd(nullptr, nullptr, args, nullptr), -1);
    EXPECT_THAT(sent(), IsEmpty());
}

TEST_F(Cpath, ALongTextIsSentWhole)
{
    const std::string text(200000, 'x');
    const char *value = text.c_str();
    const struct cpath_arg args[] = {{"text", PTYPE_STRING, &value, 1}, {nullptr, 0, nullptr, 0}};
    EXPECT_EQ(send_cpath_cmd("set", "/x", args, nullptr), 0);
    EXPECT_EQ(sent_text(IO_MSG_SET),
              R"({"MODULE":"tester","ACTION":"set","CPATH":{"path":"\/x","param":{"text":")" + text + "\"}}}");
}

TEST_F(Cpath, MemoryDoesNotGrowWithTheNumberOfTexts)
{
    const auto round = [this] {
        struct io_msg *reply = nullptr;
        send_cpath_cmd_str("get", "/x", R"({"a":["1","2"]})", &reply);
        free(reply);
        send_cpath_cmd_str("get", "/x", "{}", nullptr);
        send_cpath_cmd_str("no", "/x", "[1,2,3]", nullptr);
        send_cpath_cmd_str("get", "/x", "{", nullptr);
        log.clear();
    };
    peer.keeps = false;
    for (int i = 0; i < 20; i++) round();
    const size_t before = mallinfo2().uordblks;
    for (int i = 0; i < 500; i++) round();
    EXPECT_LE(mallinfo2().uordblks, before + 4096);
}

TEST(CpathWithoutServer, EverySendFails)
{
    unlink(IO_SOCK_PATH);
    const log_capture log;
    EXPECT_EQ(send_cpath_cmd_obj("set", "/x", nullptr, nullptr), -1);
    EXPECT_EQ(send_cpath_cmd_obj("no", "/x", nullptr, nullptr), -1);
    struct io_msg *reply = nullptr;
    EXPECT_EQ(send_cpath_cmd_obj("get", "/x", nullptr, &reply), -1);
    EXPECT_EQ(reply, nullptr);
    const uint32_t id = 3;
    const struct cpath_arg args[] = {{"id", PTYPE_UINT, &id, 1}, {nullptr, 0, nullptr, 0}};
    EXPECT_EQ(send_cpath_cmd("no", "/x", args, nullptr), -1);
    EXPECT_TRUE(log.has(LOG_ERR, "send_cpath_cmd", R"(no /x {"id":"3",".OPT":"no"} failed)"));
}

}  // namespace

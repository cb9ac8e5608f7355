// What a client sees of the server, message type by message type, and what the log says.
#include <apconf/apconf.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "daemon/server_process.h"
#include "host/reply_codes.h"
#include "host/server/log.h"

using namespace apconf_test;
using apconf_host::reply_code;
using testing::HasSubstr;

namespace
{

int code(reply_code value)
{
    return static_cast<int>(value);
}

class serving : public testing::Test
{
protected:
    void SetUp() override { make_fresh_machine(); }

    static int code_of(uint8_t type, const std::string &data)
    {
        const raw_client client;
        const auto reply = client.request(type, data);
        return reply ? reply->code : -1;
    }
};

TEST_F(serving, registration_is_accepted_and_logged)
{
    server_process server;
    ASSERT_TRUE(server.wait_until_serving());
    EXPECT_EQ(code_of(IO_MSG_REGISTER, with_nul("wlan-tool")), 0);
    EXPECT_TRUE(server.wait_for_log("'wlan-tool' registered"));
}

TEST_F(serving, registration_without_a_name_is_a_bad_message)
{
    server_process server;
    ASSERT_TRUE(server.wait_until_serving());
    EXPECT_EQ(code_of(IO_MSG_REGISTER, ""), code(reply_code::bad_message));
    EXPECT_EQ(code_of(IO_MSG_REGISTER, with_nul("")), code(reply_code::bad_message));
}

TEST_F(serving, client_library_registers_sets_and_gets)
{
    server_process server;
    ASSERT_TRUE(server.wait_until_serving());
    ASSERT_GE(init_cmclient(nullptr, "library-client"), 0);
    EXPECT_EQ(send_cpath_cmd_str("set", "/config/hostname_cmd", R"({"hostname":"attic"})", nullptr), 0);
    io_msg *reply = nullptr;
    ASSERT_EQ(send_cpath_cmd_str("get", "/config/hostname_cmd", nullptr, &reply), 0);
    ASSERT_NE(reply, nullptr);
    EXPECT_STREQ(reply->data, R"({"config":{"hostname_cmd":{"hostname":"attic"}}})");
    EXPECT_EQ(reply->data_len, strlen(reply->data) + 1);
    free(reply);
    deinit_cmclient();
}

TEST_F(serving, get_that_is_no_get_or_no_message_is_answered_with_its_code)
{
    server_process server;
    ASSERT_TRUE(server.wait_until_serving());
    EXPECT_EQ(code_of(IO_MSG_GET, set_hostname_message("x")), code(reply_code::not_a_get));
    EXPECT_EQ(code_of(IO_MSG_GET, with_nul("{")), code(reply_code::bad_message));
    EXPECT_EQ(code_of(IO_MSG_GET, with_nul("[]")), code(reply_code::bad_message));
    EXPECT_EQ(code_of(IO_MSG_GET, with_nul(R"({"ACTION":"get","CPATH":{}})")), code(reply_code::bad_message));
    EXPECT_EQ(code_of(IO_MSG_GET, with_nul(R"({"ACTION":"get"} trailing)")), code(reply_code::bad_message));
    EXPECT_EQ(code_of(IO_MSG_GET, ""), code(reply_code::bad_message));
}

TEST_F(serving, unknown_types_are_answered_with_a_code)
{
    server_process server;
    ASSERT_TRUE(server.wait_until_serving());
    for (const uint8_t type : std::initializer_list<uint8_t>{0, 3, 7, 63, 68, 69, 255})
        EXPECT_EQ(code_of(type, ""), code(reply_code::unknown_type));
}

TEST_F(serving, set_message_without_its_nul_is_taken)
{
    server_process server;
    ASSERT_TRUE(server.wait_until_serving());
    std::string message = set_hostname_message("cellar");
    message.pop_back();
    const raw_client client;
    ASSERT_TRUE(client.send_message(IO_MSG_SET, message));
    EXPECT_TRUE(eventually([] { return hostname_of_server() == "cellar"; }));
}

TEST_F(serving, messages_of_a_client_that_has_left_still_count)
{
    server_process server;
    ASSERT_TRUE(server.wait_until_serving());
    {
        const raw_client client;
        std::string bytes;
        for (int i = 0; i <= 50; ++i) {
            const std::string data = set_hostname_message("left-" + std::to_string(i));
            bytes += frame(IO_MSG_SET, static_cast<uint32_t>(data.size()), data);
            bytes += frame(IO_MSG_GET, 0, "");  // a reply that nobody reads
        }
        ASSERT_TRUE(client.send_bytes(bytes));
    }
    EXPECT_TRUE(eventually([] { return hostname_of_server() == "left-50"; }));
}

TEST_F(serving, half_closed_client_gets_all_its_replies)
{
    server_process server;
    ASSERT_TRUE(server.wait_until_serving());
    const raw_client client;
    for (int i = 0; i < 20; ++i) ASSERT_TRUE(client.send_message(IO_MSG_REGISTER, with_nul("half")));
    client.finish_sending();
    for (int i = 0; i < 20; ++i) EXPECT_TRUE(client.receive());
    EXPECT_TRUE(client.is_closed_by_server(2s));
}

TEST_F(serving, message_that_arrives_byte_by_byte_is_put_together)
{
    server_process server;
    ASSERT_TRUE(server.wait_until_serving());
    const raw_client client;
    for (const char byte : frame(IO_MSG_REGISTER, 5, with_nul("slow"))) {
        ASSERT_TRUE(client.send_bytes(std::string(1, byte)));
        pause_for(2ms);
    }
    const auto reply = client.receive();
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->code, 0);
}

TEST_F(serving, largest_message_is_taken_whole)
{
    server_process server;
    ASSERT_TRUE(server.wait_until_serving());
    const raw_client client;
    std::string message = set_hostname_message("large");
    message.pop_back();
    message.resize((4u << 20) - 1, ' ');
    ASSERT_TRUE(client.send_message(IO_MSG_SET, with_nul(message)));
    EXPECT_TRUE(eventually([] { return hostname_of_server() == "large"; }));
}

TEST_F(serving, refused_set_is_logged_with_path_key_value_and_what_is_accepted)
{
    server_process server;
    ASSERT_TRUE(server.wait_until_serving());
    const raw_client client;
    ASSERT_TRUE(client.send_message(IO_MSG_SET, set_message("/config/ip_ssh_cmd", R"({"status":"sometimes"})")));
    ASSERT_TRUE(server.wait_for_log("set from tester: 0 changes, 1 refusals"));
    ASSERT_TRUE(server.wait_for_log("set from tester: config/ip_ssh_cmd"));
    for (const std::string &line : lines_of(server.log())) {
        if (line.find("set from tester: config/ip_ssh_cmd") == std::string::npos) continue;
        EXPECT_THAT(line, HasSubstr("status"));
        EXPECT_THAT(line, HasSubstr("sometimes"));
        EXPECT_THAT(line, HasSubstr("enable"));
        EXPECT_THAT(line, HasSubstr("disable"));
    }
}

TEST_F(serving, set_that_is_a_get_changes_nothing)
{
    server_process server;
    ASSERT_TRUE(server.wait_until_serving());
    const raw_client client;
    ASSERT_TRUE(client.send_message(IO_MSG_SET, get_message("/config/hostname_cmd")));
    EXPECT_TRUE(server.wait_for_log("sent what is no set message"));
}

TEST_F(serving, socket_is_for_the_own_user_or_for_a_group)
{
    struct stat status = {};
    {
        server_process server;
        ASSERT_TRUE(server.wait_until_serving());
        ASSERT_EQ(stat(IO_SOCK_PATH, &status), 0);
        EXPECT_EQ(status.st_mode & 0777, 0600u);
        EXPECT_EQ(server.terminate(SIGTERM), 0);
    }
    server_process server({"--group", "root"});
    ASSERT_TRUE(server.wait_until_serving());
    ASSERT_EQ(stat(IO_SOCK_PATH, &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0660u);
    EXPECT_EQ(status.st_gid, 0u);
}

TEST(one_line, keeps_a_peers_text_on_its_line)
{
    EXPECT_EQ(apconf_host::one_line("a\nb\tc\x7f"), "a?b?c?");
    EXPECT_EQ(apconf_host::one_line("abcdef", 3), "abc...");
}

}  // namespace

// The client against servers in processes of their own: registration, requests, reconnection and its limit.
#include "apconf/cmclient.h"

#include <poll.h>
#include <sys/socket.h>
#include <syslog.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <memory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "messaging/io_support.h"
#include "messaging/system_calls.h"
#include "support/log_capture.h"

namespace
{

using namespace apconf_test;
using std::string;
using namespace std::string_literals;
using testing::ElementsAre;

constexpr const char *default_path = "/tmp/config_cmd_sock";
constexpr const char *custom_path = "/tmp/custom_sock";

class Cmclient : public testing::Test
{
protected:
    system_calls calls;
    log_capture log;
    const int before = open_descriptors();

    void SetUp() override
    {
        io_sockfd = -1;
        io_module[0] = '\0';
    }
    void TearDown() override
    {
        if (io_sockfd >= 0) deinit_io_sock();
        io_sockfd = -1;
        deinit_io_sock();
    }
    size_t reconnections() const
    {
        const auto texts = log.texts(LOG_INFO);
        return static_cast<size_t>(std::count(texts.begin(), texts.end(), "reconnect cm server"));
    }
    // Until the server has hung up on us.
    static void wait_for_hangup()
    {
        pollfd connection = {io_sockfd, 0, 0};
        ASSERT_EQ(poll(&connection, 1, 10'000), 1);
    }
};

// Answers the registration, then hangs up.
void register_and_hang_up(tiny_server &server, int listener)
{
    const int connection = accept(listener, nullptr, nullptr);
    server.report(shown(read_request(connection)));
    send_reply(connection, 0);
}

TEST_F(Cmclient, RegistersWithItsNameAndNul)
{
    tiny_server server(default_path, answer_everything());
    const int fd = init_cmclient(nullptr, "cli");
    EXPECT_GE(fd, 0);
    EXPECT_EQ(io_sockfd, fd);
    EXPECT_EQ(server.next_report(), "1:cli$");
    EXPECT_STREQ(io_module, "cli");
    EXPECT_TRUE(log.has(LOG_INFO, "init_cmclient", "connetct config server success, fd:" + std::to_string(fd)));
    EXPECT_TRUE(log.texts(LOG_ERR).empty());
}

TEST_F(Cmclient, ConnectsToTheGivenPath)
{
    tiny_server server(custom_path, answer_everything());
    EXPECT_GE(init_cmclient(custom_path, "cli"), 0);
    EXPECT_EQ(server.next_report(), "1:cli$");
}

TEST_F(Cmclient, KeepsAtMost63CharactersOfTheName)
{
    for (const size_t length : {size_t{63}, size_t{64}, size_t{500}}) {
        tiny_server server(default_path, answer_everything());
        ASSERT_GE(init_cmclient(nullptr, string(length, 'm').c_str()), 0);
        EXPECT_EQ(server.next_report(), "1:" + string(63, 'm') + "$");
        EXPECT_EQ(io_module, string(63, 'm'));
        deinit_io_sock();
    }
}

TEST_F(Cmclient, NullNameIsTakenFromTheProcessEvenIfOneIsSet)
{
    char name[64];
    ASSERT_EQ(get_process_name(name, sizeof name), 0);
    strcpy(io_module, "old name");
    tiny_server server(default_path, answer_everything());
    ASSERT_GE(init_cmclient(nullptr, nullptr), 0);
    EXPECT_EQ(server.next_report(), "1:"s + name + "$");
}

TEST_F(Cmclient, UnreadableProcessNameBecomesThePid)
{
    const string pid = std::to_string(getpid());
    calls.redirected_files["/proc/" + pid + "/cmdline"] = "";
    tiny_server server(default_path, answer_everything());
    ASSERT_GE(init_cmclient(nullptr, nullptr), 0);
    EXPECT_EQ(server.next_report(), "1:pid" + pid + "$");
}

TEST_F(Cmclient, OwnNameBufferMayBeGivenAsName)
{
    strcpy(io_module, "itself");
    tiny_server server(default_path, answer_everything());
    ASSERT_GE(init_cmclient(nullptr, io_module), 0);
    EXPECT_EQ(server.next_report(), "1:itself$");
}

TEST_F(Cmclient, EmptyNameIsRegisteredAsOneNul)
{
    tiny_server server(default_path, answer_everything());
    ASSERT_GE(init_cmclient(nullptr, ""), 0);
    EXPECT_EQ(server.next_report(), "1:$");
}

TEST_F(Cmclient, RefusalIsLoggedAndClosesTheConnection)
{
    tiny_server server(default_path, answer_everything(7));
    const int with_server = open_descriptors();
    EXPECT_EQ(init_cmclient(nullptr, "cli"), -1);
    EXPECT_EQ(io_sockfd, -1);
    EXPECT_EQ(open_descriptors(), with_server);
    EXPECT_TRUE(log.has(LOG_INFO, "init_cmclient", "connetct config server failed, return code:7"));
}

TEST_F(Cmclient, MissingReplyIsLoggedAndClosesTheConnection)
{
    tiny_server server(default_path, [](tiny_server &, int listener) {
        const int connection = accept(listener, nullptr, nullptr);
        read_request(connection);
    });
    const int with_server = open_descriptors();
    EXPECT_EQ(init_cmclient(nullptr, "cli"), -1);
    EXPECT_EQ(io_sockfd, -1);
    EXPECT_EQ(open_descriptors(), with_server);
    EXPECT_TRUE(log.has(LOG_INFO, "init_cmclient", "connetct config server failed"));
}

TEST_F(Cmclient, ServerNotRunning)
{
    io_sockfd = 12345;
    EXPECT_EQ(init_cmclient(nullptr, "cli"), -1);
    EXPECT_EQ(io_sockfd, -1);
    EXPECT_THAT(log.texts(), ElementsAre("init socket: connect failed, errno:2, No such file or directory"));
    EXPECT_EQ(open_descriptors(), before);
}

TEST_F(Cmclient, RequestReturnsTheCodeAndHandsOverTheReply)
{
    tiny_server server(default_path, [](tiny_server &peer, int listener) {
        const int connection = accept(listener, nullptr, nullptr);
        read_request(connection);
        send_reply(connection, 0);
        for (const int code : {0, 1, 128, 255}) {
            peer.report(shown(read_request(connection)));
            send_reply(connection, code, "answer "s + std::to_string(code));
        }
        pause();
    });
    ASSERT_GE(init_cmclient(nullptr, "cli"), 0);
    for (const int code : {0, 1, 128}) {
        io_msg *reply = nullptr;
        EXPECT_EQ(configure_request(6, "{}", 3, &reply), code);
        ASSERT_NE(reply, nullptr);
        EXPECT_EQ(reply->code, code);
        EXPECT_EQ(reply->data, "answer " + std::to_string(code));
        free(reply);
        EXPECT_EQ(server.next_report(), "6:{}$");
    }
    EXPECT_EQ(configure_request(0x106, "{}", 3, nullptr), 255) << "no failure of the transport";
    EXPECT_EQ(server.next_report(), "6:{}$");
}

TEST_F(Cmclient, RequestLooksForTheReplyWithoutWaitingThenReads)
{
    tiny_server server(default_path, answer_everything());
    ASSERT_GE(init_cmclient(nullptr, "cli"), 0);
    ASSERT_FALSE(calls.polls.empty());
    EXPECT_EQ(calls.polls.back().fd, io_sockfd);
    EXPECT_EQ(calls.polls.back().events, POLLIN);
    EXPECT_EQ(calls.poll_timeouts.back(), 0);
}

TEST_F(Cmclient, TruncatedReplyIsAFailure)
{
    for (const size_t length : {size_t{0}, size_t{1}, size_t{11}, size_t{12}, size_t{15}}) {
        tiny_server server(default_path, [=](tiny_server &, int listener) {
            const int connection = accept(listener, nullptr, nullptr);
            read_request(connection);
            send_reply(connection, 0);
            read_request(connection);
            write_all(connection, frame(0, 0, 0, 4, "data").substr(0, length));
        });
        ASSERT_GE(init_cmclient(nullptr, "cli"), 0);
        io_msg stale = {};
        io_msg *reply = &stale;
        EXPECT_EQ(configure_request(6, "{}", 3, &reply), -1) << length;
        EXPECT_EQ(reply, nullptr);
        deinit_io_sock();
    }
}

TEST_F(Cmclient, NotificationIsSentAndNoReplyIsRead)
{
    tiny_server server(default_path, answer_everything());
    ASSERT_GE(init_cmclient(nullptr, "cli"), 0);
    const size_t reads = calls.receives.size();
    EXPECT_EQ(send_io_notify(5, "{}", 3), 0);
    EXPECT_EQ(send_io_notify(0x104, nullptr, 0), 0);
    EXPECT_EQ(calls.receives.size(), reads);
    server.next_report();
    EXPECT_EQ(server.next_report(), "5:{}$");
    EXPECT_EQ(server.next_report(), "4:");
    EXPECT_EQ(reconnections(), 0u);
}

TEST_F(Cmclient, ReconnectionGoesToTheDefaultPath)
{
    tiny_server first(custom_path, register_and_hang_up);
    ASSERT_GE(init_cmclient(custom_path, "cli"), 0);
    EXPECT_EQ(first.next_report(), "1:cli$");
    wait_for_hangup();

    tiny_server second(default_path, answer_everything());
    EXPECT_EQ(send_io_notify(5, "{}", 3), 0);
    EXPECT_EQ(second.next_report(), "1:cli$");
    EXPECT_EQ(second.next_report(), "5:{}$");
    EXPECT_TRUE(log.has(LOG_INFO, "send_io_notify", "reconnect cm server"));
    EXPECT_EQ(reconnections(), 1u);
}

TEST_F(Cmclient, RequestReconnectsAndGetsItsReply)
{
    tiny_server first(custom_path, register_and_hang_up);
    ASSERT_GE(init_cmclient(custom_path, "cli"), 0);
    wait_for_hangup();
    tiny_server second(default_path, answer_everything(0, "answer"));
    const int with_servers = open_descriptors();
    io_msg *reply = nullptr;
    EXPECT_EQ(configure_request(6, "{}", 3, &reply), 0);
    ASSERT_NE(reply, nullptr);
    EXPECT_STREQ(reply->data, "answer");
    free(reply);
    EXPECT_TRUE(log.has(LOG_INFO, "configure_request", "reconnect cm server"));
    EXPECT_EQ(open_descriptors(), with_servers) << "the lost connection is closed";
}

TEST_F(Cmclient, SecondFailureIsReturnedWithoutFurtherRetries)
{
    EXPECT_EQ(send_io_notify(5, "{}", 3), -1);
    EXPECT_EQ(reconnections(), 1u);
    EXPECT_THAT(log.texts(LOG_ERR),
                ElementsAre("sendmsg return errno:9(Bad file descriptor), fd:-1", "send io request failed",
                            "init socket: connect failed, errno:2, No such file or directory",
                            "sendmsg return errno:9(Bad file descriptor), fd:-1", "send io request failed"));
    EXPECT_EQ(configure_request(6, "{}", 3, nullptr), -1);
    EXPECT_EQ(reconnections(), 2u);
    EXPECT_EQ(io_sockfd, -1);
}

TEST_F(Cmclient, ReconnectionKeepsTheNameOrTakesTheProgramsName)
{
    tiny_server server(default_path, answer_everything());
    char name[64];
    ASSERT_EQ(get_process_name(name, sizeof name), 0);
    EXPECT_EQ(send_io_notify(4, nullptr, 0), 0);
    EXPECT_EQ(server.next_report(), "1:"s + name + "$");
    EXPECT_EQ(server.next_report(), "4:");
    deinit_io_sock();

    strcpy(io_module, "kept");
    EXPECT_EQ(send_io_notify(4, nullptr, 0), 0);
    EXPECT_EQ(server.next_report(), "1:kept$");
}

TEST_F(Cmclient, FailedRegistrationSendReconnectsAndRegistersAgain)
{
    tiny_server server(default_path, answer_everything());
    const int with_server = open_descriptors();
    calls.send_outcomes = {fail(EPIPE), fail(EPIPE), fail(EPIPE)};
    EXPECT_EQ(send_io_notify(5, "{}", 3), 0);
    EXPECT_EQ(reconnections(), 3u);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(server.next_report(), "1:"s + io_module + "$");
    EXPECT_EQ(server.next_report(), "5:{}$");
    EXPECT_EQ(open_descriptors(), with_server + 1);
    EXPECT_TRUE(is_open(io_sockfd));
}

TEST_F(Cmclient, ReconnectionsOfOneSendEndAtFifty)
{
    tiny_server server(default_path, [](tiny_server &, int) { pause(); });
    const int with_server = open_descriptors();
    calls.send_always = {fail(EPIPE)};
    for (int i = 0; i < 2; ++i) {
        log.clear();
        EXPECT_EQ(i == 0 ? send_io_notify(5, "{}", 3) : configure_request(6, "{}", 3, nullptr), -1);
        EXPECT_EQ(reconnections(), 50u) << "anew for every send";
        EXPECT_TRUE(log.has(LOG_ERR, "configure_request", "no connection after 50 reconnections"));
        EXPECT_EQ(io_sockfd, -1);
        EXPECT_EQ(open_descriptors(), with_server);
    }
}

TEST_F(Cmclient, DeinitUnregistersAndClosesButKeepsTheNumber)
{
    tiny_server server(default_path, answer_everything());
    const int fd = init_cmclient(nullptr, "cli");
    ASSERT_GE(fd, 0);
    deinit_cmclient();
    server.next_report();
    EXPECT_EQ(server.next_report(), "2:");
    EXPECT_EQ(io_sockfd, fd);
    EXPECT_FALSE(is_open(fd));
}

TEST_F(Cmclient, DeinitWithoutConnectionStillTriesSleepsAndReturns)
{
    const auto start = std::chrono::steady_clock::now();
    deinit_cmclient();
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::microseconds(100));
    ASSERT_EQ(calls.sends.size(), 1u);
    EXPECT_EQ(calls.sends[0].fd, -1);
    EXPECT_EQ(calls.sends[0].bytes, 12u);
    EXPECT_TRUE(log.has(LOG_ERR, "send_io_request", "send io request failed"));
    EXPECT_EQ(reconnections(), 0u);
}

TEST_F(Cmclient, SendAfterDeinitReconnects)
{
    tiny_server server(default_path, answer_everything());
    const int fd = init_cmclient(nullptr, "cli");
    ASSERT_GE(fd, 0);
    deinit_cmclient();
    log.clear();
    EXPECT_EQ(send_io_notify(4, nullptr, 0), 0);
    EXPECT_EQ(log.texts(LOG_ERR)[0], "sendmsg return errno:9(Bad file descriptor), fd:" + std::to_string(fd));
    EXPECT_EQ(reconnections(), 1u);
    EXPECT_TRUE(is_open(io_sockfd));
    EXPECT_EQ(server.next_report(), "1:cli$");
    EXPECT_EQ(server.next_report(), "2:");
    EXPECT_EQ(server.next_report(), "1:cli$");
    EXPECT_EQ(server.next_report(), "4:");

    // The reconnection is a connection like any other: it can be sent on and closed.
    EXPECT_EQ(send_io_notify(5, "{}", 3), 0);
    EXPECT_EQ(server.next_report(), "5:{}$");
    deinit_cmclient();
    EXPECT_FALSE(is_open(io_sockfd));
}

TEST_F(Cmclient, ReusedNumberIsNeitherWrittenToNorClosed)
{
    tiny_server server(default_path, answer_everything());
    const int fd = init_cmclient(nullptr, "cli");
    ASSERT_GE(fd, 0);
    deinit_cmclient();
    socket_pair other;
    ASSERT_EQ(dup2(other.near, fd), fd);

    deinit_cmclient();
    EXPECT_TRUE(is_open(fd));
    EXPECT_EQ(send_io_notify(4, nullptr, 0), 0);
    EXPECT_EQ(configure_request(6, "{}", 3, nullptr), 0);
    EXPECT_NE(io_sockfd, fd);
    EXPECT_TRUE(is_open(fd));
    EXPECT_EQ(drain(other.far), "");
    if (other.near != fd) close(fd);
}

}  // namespace

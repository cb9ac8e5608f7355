// Clients that are silent, slow or hostile: they are dropped with a reason, nobody else notices, and nothing of them
// stays.
#include <apconf/apconf.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <time.h>

#include <algorithm>
#include <atomic>
#include <thread>

#include "daemon/server_process.h"

using namespace apconf_test;
using testing::HasSubstr;

namespace
{

// Of the server as it ships; one built for the debugger or the sanitizers is several times slower, and the sanitizers
// keep released memory.
#ifdef __SANITIZE_ADDRESS__
constexpr bool sanitized = true;
#else
constexpr bool sanitized = false;
#endif
#ifdef __OPTIMIZE__
constexpr auto allowed_delay = sanitized ? 2000ms : 100ms;
#else
constexpr auto allowed_delay = 500ms;
#endif

// Asks on a connection of its own as fast as a client of the library would, and notes how long each answer took.
class observer
{
public:
    observer() : thread_([this] { observe(); }) {}
    ~observer() { stop(); }

    void stop()
    {
        ending_ = true;
        if (thread_.joinable()) thread_.join();
    }
    bool failed() const { return failed_; }
    std::chrono::microseconds longest() const { return *std::max_element(delays_.begin(), delays_.end()); }
    std::chrono::microseconds median()
    {
        const auto middle = delays_.begin() + static_cast<long>(delays_.size() / 2);
        std::nth_element(delays_.begin(), middle, delays_.end());
        return *middle;
    }
    size_t count() const { return delays_.size(); }

private:
    void observe()
    {
        const raw_client client;
        while (!ending_) {
            const auto begin = std::chrono::steady_clock::now();
            const auto reply = client.request(IO_MSG_GET, get_message("/config/hostname_cmd"));
            if (!reply || reply->code != 0) {
                failed_ = true;
                return;
            }
            delays_.push_back(
                std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - begin));
            pause_for(2ms);
        }
    }

    std::atomic<bool> ending_ = false;
    std::atomic<bool> failed_ = false;
    std::vector<std::chrono::microseconds> delays_;
    std::thread thread_;
};

void expect_prompt(observer &observer, const char *while_what)
{
    observer.stop();
    ASSERT_FALSE(observer.failed()) << while_what;
    ASSERT_GT(observer.count(), 10u) << while_what;
    printf("%-40s %6zu gets, median %6.2f ms, longest %6.2f ms\n", while_what, observer.count(),
           static_cast<double>(observer.median().count()) / 1000,
           static_cast<double>(observer.longest().count()) / 1000);
    EXPECT_LT(observer.median(), allowed_delay) << while_what;
    EXPECT_LT(observer.longest(), allowed_delay) << while_what;
}

// Sends bytes with as many descriptors as the kernel lets through at once. It bounds how many are under way.
bool send_descriptors(int fd, int descriptor, const std::string &bytes)
{
    constexpr size_t most = 253;
    char control[CMSG_SPACE(most * sizeof(int))] = {};
    iovec part = {const_cast<char *>(bytes.data()), bytes.size()};
    msghdr message = {};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = sizeof control;
    cmsghdr *const header = CMSG_FIRSTHDR(&message);
    header->cmsg_level = SOL_SOCKET;
    header->cmsg_type = SCM_RIGHTS;
    header->cmsg_len = CMSG_LEN(most * sizeof(int));
    for (size_t i = 0; i < most; ++i) memcpy(CMSG_DATA(header) + i * sizeof(int), &descriptor, sizeof descriptor);
    ssize_t sent = -1;
    eventually([&] {
        sent = sendmsg(fd, &message, MSG_NOSIGNAL);
        return sent >= 0 || errno != ETOOMANYREFS;
    });
    return sent == static_cast<ssize_t>(bytes.size());
}

class hostile : public testing::Test
{
protected:
    void SetUp() override
    {
        make_fresh_machine();
        rlimit descriptors = {};
        getrlimit(RLIMIT_NOFILE, &descriptors);
        descriptors.rlim_cur = std::min<rlim_t>(descriptors.rlim_max, 4096);
        setrlimit(RLIMIT_NOFILE, &descriptors);
    }

    // What the server has open when no client is left.
    static size_t descriptors_at_rest(const server_process &server)
    {
        size_t count = 0;
        eventually([&] {
            const size_t before = count;
            pause_for(50ms);
            count = server.descriptors();
            return count == before;
        });
        return count;
    }

    static void expect_nothing_left(const server_process &server, size_t descriptors, size_t kilobytes)
    {
        EXPECT_TRUE(eventually([&] { return server.descriptors() == descriptors; }))
            << server.descriptors() << " descriptors, there were " << descriptors;
        if (sanitized) return;
        EXPECT_TRUE(eventually([&] { return server.resident_kilobytes() < kilobytes + 4096; }))
            << server.resident_kilobytes() << " kB, there were " << kilobytes;
    }
};

TEST_F(hostile, silent_and_slow_clients_are_dropped_and_delay_nobody)
{
    install_start_configuration();
    server_process server;
    ASSERT_TRUE(server.wait_until_serving());
    ASSERT_TRUE(server.wait_for_log("applied message 1"));
    ASSERT_EQ(hostname_of_server(), "access-point");
    const size_t descriptors = descriptors_at_rest(server);
    const size_t kilobytes = server.resident_kilobytes();
    {
        observer other;
        const raw_client half_header;
        half_header.send_bytes(std::string(5, '\0'));
        const raw_client no_body;
        no_body.send_bytes(frame(IO_MSG_SET, 100, ""));
        const raw_client slow_body;
        slow_body.send_bytes(frame(IO_MSG_SET, 4u << 20, ""));
        const raw_client deaf;
        std::thread talker([&] {
            while (deaf.send_message(IO_MSG_GET, get_message("/"))) {
            }
        });
        std::thread dripper([&] {
            while (slow_body.send_bytes(std::string(1000, ' '))) pause_for(10ms);
        });

        const raw_client idle;
        pause_for(4s);
        EXPECT_EQ(server.log().find("dropped"), std::string::npos);
        EXPECT_TRUE(half_header.is_closed_by_server(3s));
        EXPECT_TRUE(no_body.is_closed_by_server(3s));
        dripper.join();
        talker.join();
        EXPECT_EQ(idle.request(IO_MSG_REGISTER, with_nul("idle"))->code, 0);
        expect_prompt(other, "silent and slow clients");
    }
    expect_nothing_left(server, descriptors, kilobytes);

    size_t late = 0, deaf = 0;
    for (const std::string &line : lines_of(server.log())) {
        late += line.find("dropped: a message was not complete in time") != std::string::npos;
        deaf += line.find("dropped: it did not read its replies in time") != std::string::npos;
    }
    EXPECT_EQ(late, 3u);
    EXPECT_EQ(deaf, 1u);
}

TEST_F(hostile, huge_announcement_is_refused_at_once)
{
    server_process server;
    ASSERT_TRUE(server.wait_until_serving());
    ASSERT_EQ(hostname_of_server(), "");
    const size_t descriptors = descriptors_at_rest(server);
    const size_t kilobytes = server.resident_kilobytes();
    {
        observer other;
        for (int i = 0; i < 100; ++i) {
            const raw_client client;
            ASSERT_TRUE(client.send_bytes(frame(IO_MSG_GET, 0xffffffff, "")));
            const auto reply = client.receive();
            ASSERT_TRUE(reply);
            EXPECT_EQ(reply->code, 3);
            EXPECT_TRUE(client.is_closed_by_server(2s));
        }
        const raw_client client;
        client.send_bytes(frame(IO_MSG_SET, (4u << 20) + 1, ""));
        EXPECT_TRUE(client.is_closed_by_server(2s));
        expect_prompt(other, "4 GiB announced");
    }
    EXPECT_TRUE(
        server.wait_for_log("dropped: its message has 4294967295 bytes of data, more than the 4194304 allowed"));
    EXPECT_TRUE(server.wait_for_log("dropped: its message has 4194305 bytes of data"));
    expect_nothing_left(server, descriptors, kilobytes);
}

TEST_F(hostile, unfinished_large_messages_have_a_bound_for_all_together)
{
    server_process server;
    ASSERT_TRUE(server.wait_until_serving());
    const size_t kilobytes = server.resident_kilobytes();
    std::vector<raw_client> clients(20);
    for (const raw_client &client : clients) client.send_bytes(frame(IO_MSG_SET, 4u << 20, std::string(2u << 20, ' ')));
    EXPECT_TRUE(server.wait_for_log("dropped: too much unfinished data of all clients"));
    EXPECT_LT(server.resident_kilobytes(), kilobytes + (40u << 10));
    EXPECT_EQ(raw_client().request(IO_MSG_REGISTER, with_nul("small"))->code, 0);
}

TEST_F(hostile, thousand_connections_delay_nobody)
{
    server_process server;
    ASSERT_TRUE(server.wait_until_serving());
    const size_t descriptors = descriptors_at_rest(server);
    const size_t kilobytes = server.resident_kilobytes();
    {
        observer other;
        std::vector<raw_client> crowd(1000);
        for (const raw_client &client : crowd) ASSERT_TRUE(client.connected());
        for (const raw_client &client : crowd) EXPECT_EQ(client.request(IO_MSG_REGISTER, with_nul("crowd"))->code, 0);
        pause_for(300ms);
        expect_prompt(other, "1000 connections");
    }
    expect_nothing_left(server, descriptors, kilobytes);
}

TEST_F(hostile, newest_connection_is_dropped_when_there_are_too_many)
{
    server_process server({"--connections", "8"});
    ASSERT_TRUE(server.wait_until_serving());
    ASSERT_TRUE(eventually([&] { return raw_client().request(IO_MSG_REGISTER, with_nul("first"))->code == 0; }));
    pause_for(100ms);
    {
        std::vector<raw_client> clients(8);
        for (const raw_client &client : clients) EXPECT_EQ(client.request(IO_MSG_REGISTER, with_nul("early"))->code, 0);
        const raw_client late;
        EXPECT_TRUE(late.is_closed_by_server(2s));
        EXPECT_TRUE(server.wait_for_log("dropped: there are 8 clients already"));
        EXPECT_EQ(clients[0].request(IO_MSG_REGISTER, with_nul("still here"))->code, 0);
    }
    EXPECT_TRUE(eventually([] {
        const auto reply = raw_client().request(IO_MSG_REGISTER, with_nul("afterwards"));
        return reply && reply->code == 0;
    }));
}

TEST_F(hostile, descriptors_that_come_along_are_never_received)
{
    server_process server;
    ASSERT_TRUE(server.wait_until_serving());
    const size_t descriptors = descriptors_at_rest(server);
    const size_t kilobytes = server.resident_kilobytes();
    const int null = open("/dev/null", O_RDONLY | O_CLOEXEC);
    ASSERT_GE(null, 0);
    {
        observer other;
        const raw_client client;
        const std::string set = set_hostname_message("flood");
        const std::string message = frame(IO_MSG_SET, static_cast<uint32_t>(set.size()), set);
        size_t most = 0;
        for (int i = 0; i < 500; ++i) {
            ASSERT_TRUE(send_descriptors(client.fd(), null, message));
            most = std::max(most, server.descriptors());
        }
        // In the middle of a header and of a body, too.
        ASSERT_TRUE(send_descriptors(client.fd(), null, message.substr(0, 5)));
        ASSERT_TRUE(send_descriptors(client.fd(), null, message.substr(5, 20)));
        ASSERT_TRUE(send_descriptors(client.fd(), null, message.substr(25)));
        EXPECT_EQ(client.request(IO_MSG_REGISTER, with_nul("flooder"))->code, 0);
        EXPECT_LE(most, descriptors + 8);
        expect_prompt(other, "a flood of descriptors");
    }
    close(null);
    EXPECT_EQ(hostname_of_server(), "flood");
    expect_nothing_left(server, descriptors, kilobytes);
}

TEST_F(hostile, floods_of_messages_delay_nobody)
{
    install_start_configuration();
    server_process server;
    ASSERT_TRUE(server.wait_until_serving());
    ASSERT_TRUE(server.wait_for_log("applied message 1"));
    observer other;
    std::atomic<bool> ending = false;
    std::vector<std::thread> floods;
    floods.emplace_back([&] {
        const raw_client client;
        for (int i = 0; !ending; ++i) client.send_message(IO_MSG_SET, set_hostname_message("n" + std::to_string(i)));
    });
    floods.emplace_back([&] {
        const raw_client client;
        while (!ending) client.request(IO_MSG_GET, get_message("/"));
    });
    floods.emplace_back([&] {
        const raw_client client;
        for (int i = 0; i < 200 && !ending; ++i) append(queued_hostname_message("q" + std::to_string(i)));
        client.send_message(IO_MSG_APPLIED, "");
    });
    pause_for(2s);
    ending = true;
    for (std::thread &flood : floods) flood.join();
    expect_prompt(other, "floods of sets, gets and queued messages");
}

std::string repeated(const std::string &text, size_t count)
{
    std::string result;
    for (size_t i = 0; i < count; ++i) result += (i ? "," : "") + text;
    return result;
}

// The processor time of the server so far: what one message costs, however busy the machine is with other things.
std::chrono::nanoseconds time_spent(const server_process &server)
{
    clockid_t clock;
    timespec time = {};
    if (clock_getcpuclockid(server.pid(), &clock) == 0) clock_gettime(clock, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

// As many values as the server takes in one message, and far more, each as dear as can be: while one message is carried
// out, everybody else waits.
TEST_F(hostile, no_message_is_expensive)
{
    install_start_configuration();
    server_process server;
    ASSERT_TRUE(server.wait_until_serving());
    ASSERT_TRUE(server.wait_for_log("applied message 1"));
    const raw_client client;
    const auto expect_cheap = [&](uint8_t type, const std::string &message, int expected_code) {
        const auto before = time_spent(server);
        ASSERT_TRUE(client.send_message(type, with_nul(message)));
        if (type == IO_MSG_SET) {
            ASSERT_TRUE(client.send_message(IO_MSG_REGISTER, with_nul("dear")));
        }
        const auto reply = client.receive(60s);
        ASSERT_TRUE(reply);
        EXPECT_EQ(reply->code, expected_code);
        EXPECT_LT(time_spent(server) - before, allowed_delay) << message.substr(0, 80);
    };
    for (const size_t values : {3500u, 160000u}) {
        std::string unknown;
        for (size_t i = 0; i < 2 * values; ++i) unknown += (i ? ",\"a" : "\"a") + std::to_string(i) + "\":1";
        for (const std::string &config :
             {"{" + unknown + "}", "{\"hostname_cmd\":[" + repeated(R"({"hostname":"a"})", values) + "]}",
              "[" + repeated("1", 2 * values) + "]", "{\"vlan\":[" + repeated(R"({"vlan_id":"7"})", values) + "]}"})
            expect_cheap(IO_MSG_SET, R"({"ACTION":"set","config":)" + config + "}", 0);
    }
    EXPECT_TRUE(server.wait_for_log("sent a set message of more than 8192 values: refused"));
    for (const size_t elements : {1u, 40u, 41u, 10000u, 1000000u})
        expect_cheap(IO_MSG_GET, R"({"ACTION":"get","config":[)" + repeated("{}", elements) + "]}",
                     elements > 40 ? 3 : 0);
}

}  // namespace

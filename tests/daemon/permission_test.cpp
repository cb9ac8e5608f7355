// Whom the server listens to: the rule, the kernel's word on the peer, and what a client without permission gets.
#include <apconf/apconf.h>
#include <event2/event.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include "daemon/server_process.h"
#include "host/reply_codes.h"
#include "host/server/connection.h"
#include "host/server/credentials.h"
#include "support/log_capture.h"

using namespace apconf_host;

namespace
{

TEST(access_rule, permits_root_the_own_user_and_members_of_the_group)
{
    const access_rule alone = {1000, std::nullopt};
    EXPECT_TRUE(alone.permits({1, 0, {}}));
    EXPECT_TRUE(alone.permits({1, 1000, {}}));
    EXPECT_FALSE(alone.permits({1, 1001, {0, 50}}));
    const access_rule with_group = {1000, 50};
    EXPECT_TRUE(with_group.permits({1, 1001, {7, 50}}));
    EXPECT_FALSE(with_group.permits({1, 1001, {7, 51}}));
    EXPECT_FALSE(with_group.permits({1, 1001, {}}));
}

TEST(peer_of, tells_process_user_and_groups)
{
    int ends[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
    const auto peer = peer_of(ends[0]);
    ASSERT_TRUE(peer);
    EXPECT_EQ(peer->pid, getpid());
    EXPECT_EQ(peer->uid, geteuid());
    EXPECT_THAT(peer->groups, testing::Contains(getegid()));
    std::vector<gid_t> own(256);
    own.resize(static_cast<size_t>(getgroups(256, own.data())));
    for (const gid_t group : own) EXPECT_THAT(peer->groups, testing::Contains(group));
    close(ends[0]);
    close(ends[1]);
}

// A connection in a loop of its own, with a client at the other end.
class connection_without_permission : public testing::Test
{
protected:
    void SetUp() override
    {
        apconf_test::make_fresh_machine();
        ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, ends_), 0);
        base_ = event_base_new();
    }
    void TearDown() override
    {
        close(ends_[1]);
        event_base_free(base_);
    }

    int ends_[2] = {};
    event_base *base_ = nullptr;
};

TEST_F(connection_without_permission, gets_a_refusal_and_is_closed_whatever_it_asks)
{
    const apconf_test::log_capture log;
    running_state state(base_);
    watchers watchers;
    queue_drain queue(base_, state, watchers, 1);
    service requests(state, queue, watchers);
    bool closed = false;
    connection::common shared = {base_, requests, 0, [&](connection *) { closed = true; }};
    connection refused(shared, fd_owner(ends_[0]), {77, 1234, {}}, false);

    const std::string request = apconf_test::frame(IO_MSG_REGISTER, 100, "");
    ASSERT_EQ(write(ends_[1], request.data(), request.size()), static_cast<ssize_t>(request.size()));
    for (int turn = 0; turn < 10 && !closed; ++turn) event_base_loop(base_, EVLOOP_ONCE);
    ASSERT_TRUE(closed);

    io_msg header = {};
    ASSERT_EQ(read(ends_[1], &header, IO_MSG_HEADER_SIZE), IO_MSG_HEADER_SIZE);
    EXPECT_EQ(header.code, static_cast<int>(reply_code::not_permitted));
    EXPECT_EQ(header.data_len, 0u);
    EXPECT_EQ(read(ends_[1], &header, 1), 0);
    EXPECT_THAT(log.texts(), testing::Contains("client (pid 77, uid 1234) dropped: it is not permitted"));
}

}  // namespace

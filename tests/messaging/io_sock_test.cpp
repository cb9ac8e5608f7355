// The transport: the frame byte by byte, the send and receive loops under faults, descriptors, and socket set-up.
#include "apconf/io_sock.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <syslog.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <fstream>
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
using testing::ElementsAre;
using namespace std::string_literals;

// MIPS numbers it differently.
const string connection_reset = std::to_string(ECONNRESET) + "(Connection reset by peer)";

constexpr int control_length = CMSG_LEN(sizeof(int));

struct free_message {
    void operator()(io_msg *message) const { free(message); }
};
using io_msg_ptr = std::unique_ptr<io_msg, free_message>;

// What the process is before anything has been sent: looked at before the first test.
const int sockfd_at_start = io_sockfd;
const string module_at_start = io_module;
const string first_request_of_process = [] {
    socket_pair pair;
    send_io_request(pair.near, 4, nullptr, 0);
    return drain(pair.far);
}();

uint32_t count_in(const string &bytes)
{
    uint32_t count = 0;
    memcpy(&count, bytes.data() + 4, sizeof count);
    return count;
}

class IoSock : public testing::Test
{
protected:
    socket_pair pair;
    system_calls calls;
    log_capture log;

    io_msg_ptr receive(int *received_fd = nullptr, int *closed = nullptr)
    {
        return io_msg_ptr(recv_io_msg(pair.near, received_fd, closed));
    }
    string bytes_of(const io_msg &message) { return string(reinterpret_cast<const char *>(&message), 12); }
};

// The frame

TEST_F(IoSock, ProcessStartsUnconnectedAndUnnamed)
{
    EXPECT_EQ(sockfd_at_start, -1);
    EXPECT_EQ(module_at_start, "");
}

TEST_F(IoSock, FirstRequestOfTheProcessCarriesCountOne)
{
    EXPECT_EQ(first_request_of_process, "\x00\x04\x00\x00\x01\x00\x00\x00\x00\x00\x00\x00"s);
}

TEST_F(IoSock, RequestIsATwelveByteHeaderAndTheData)
{
    ASSERT_EQ(send_io_request(pair.near, 5, "{}", 3), 0);
    string bytes = drain(pair.far);
    const uint32_t count = count_in(bytes);
    memset(bytes.data() + 4, 'C', 4);
    EXPECT_EQ(bytes,
              "\x00\x05\x00\x00"s
              "CCCC"
              "\x03\x00\x00\x00"s
              "{}\0"s);

    ASSERT_EQ(send_io_request(pair.near, 5, "{}", 3), 0);
    EXPECT_EQ(count_in(drain(pair.far)), count + 1);
}

TEST_F(IoSock, FailedRequestCountsToo)
{
    send_io_request(pair.near, 4, nullptr, 0);
    const uint32_t count = count_in(drain(pair.far));
    calls.send_outcomes = {fail(ECONNRESET)};
    EXPECT_EQ(send_io_request(pair.near, 4, nullptr, 0), -1);
    send_io_request(pair.near, 4, nullptr, 0);
    EXPECT_EQ(count_in(drain(pair.far)), count + 2);
}

TEST_F(IoSock, ReplyIsAHeaderWithCodeAndNoCount)
{
    ASSERT_EQ(send_io_reply(pair.near, 200, "yes", 4), 0);
    EXPECT_EQ(drain(pair.far), "\x00\x00\xC8\x00\x00\x00\x00\x00\x04\x00\x00\x00yes\x00"s);
    ASSERT_EQ(send_io_reply(pair.near, 0, nullptr, 0), 0);
    EXPECT_EQ(drain(pair.far), string(12, '\0'));
}

TEST_F(IoSock, TypeAndCodeAreTakenAsTheirLowEightBits)
{
    send_io_request(pair.near, 0x1234, nullptr, 0);
    EXPECT_EQ(drain(pair.far)[1], 0x34);
    send_io_request(pair.near, -1, nullptr, 0);
    EXPECT_EQ(drain(pair.far)[1], '\xFF');
    send_io_reply(pair.near, 0x2FF, nullptr, 0);
    EXPECT_EQ(drain(pair.far)[2], '\xFF');
}

TEST_F(IoSock, NullDataWithALengthIsSentAsNoData)
{
    ASSERT_EQ(send_io_request(pair.near, 4, nullptr, 77), 0);
    const string bytes = drain(pair.far);
    EXPECT_EQ(bytes.size(), 12u);
    EXPECT_EQ(bytes.substr(8), string(4, '\0'));
    ASSERT_EQ(send_io_reply(pair.near, 0, nullptr, 77), 0);
    EXPECT_EQ(drain(pair.far), string(12, '\0'));
    ASSERT_EQ(calls.sends.size(), 2u);
    EXPECT_EQ(calls.sends[0].parts, 1u);
    EXPECT_EQ(calls.sends[1].parts, 1u);
}

TEST_F(IoSock, EmptyDataIsSentInOneCall)
{
    ASSERT_EQ(send_io_request(pair.near, 4, "", 0), 0);
    EXPECT_EQ(drain(pair.far).size(), 12u);
    ASSERT_EQ(calls.sends.size(), 1u);
    EXPECT_EQ(calls.sends[0].parts, 2u);
}

TEST_F(IoSock, HeaderAndDataGoOutInOneGatherWrite)
{
    send_io_request(pair.near, 5, "abc", 4);
    ASSERT_EQ(calls.sends.size(), 1u);
    EXPECT_EQ(calls.sends[0].parts, 2u);
    EXPECT_EQ(calls.sends[0].bytes, 16u);
}

TEST_F(IoSock, RequestLogsModuleAndCount)
{
    strcpy(io_module, "tester");
    send_io_request(pair.near, 4, nullptr, 0);
    const string count = std::to_string(count_in(drain(pair.far)));
    EXPECT_TRUE(log.has(LOG_DEBUG, "send_io_request", "'tester' count = " + count));
    EXPECT_EQ(log.lines().size(), 1u);
}

// Sending

TEST_F(IoSock, RequestCarriesTheSendersOwnDescriptor)
{
    send_io_request(pair.near, 4, nullptr, 0);
    ASSERT_EQ(calls.sends.size(), 1u);
    EXPECT_EQ(calls.sends[0].passed_fd, pair.near);
    EXPECT_EQ(calls.sends[0].control_length, size_t{control_length});

    int received = -1;
    io_msg_ptr message(recv_io_msg(pair.far, &received, nullptr));
    ASSERT_TRUE(message);
    ASSERT_GE(received, 0);
    EXPECT_NE(received, pair.near);
    EXPECT_EQ(inode_of(received), inode_of(pair.near));
    close(received);
}

TEST_F(IoSock, ReplyCarriesNoControlMessage)
{
    send_io_reply(pair.near, 0, "x", 1);
    ASSERT_EQ(calls.sends.size(), 1u);
    EXPECT_EQ(calls.sends[0].control_length, 0u);
    int received = 5;
    io_msg_ptr message(recv_io_msg(pair.far, &received, nullptr));
    ASSERT_TRUE(message);
    EXPECT_EQ(received, -1);
}

TEST_F(IoSock, EverySplitOfASendContinuesAtTheExactByte)
{
    const string data = "0123456789abcdef";
    const string whole = "HEADERHEADER" + data;
    for (size_t first = 1; first <= whole.size(); ++first) {
        for (size_t rest : {size_t{1}, size_t{5}, SIZE_MAX}) {
            string head = "HEADERHEADER", body = data;
            iovec parts[] = {{head.data(), head.size()}, {body.data(), body.size()}};
            calls.send_outcomes = {at_most(first)};
            calls.send_always = {at_most(rest)};
            ASSERT_EQ(writev_data(pair.near, parts, 2, -1), 28);
            ASSERT_EQ(drain(pair.far), whole) << first << " then " << rest;
        }
    }
}

TEST_F(IoSock, GatherListIsAdvancedInPlace)
{
    string head = "0123456789ab", body = "data";
    iovec parts[] = {{head.data(), head.size()}, {body.data(), body.size()}};
    calls.send_outcomes = {at_most(5), fail(EPIPE)};
    EXPECT_EQ(writev_data(pair.near, parts, 2, -1), -1);
    EXPECT_EQ(parts[0].iov_base, head.data() + 5);
    EXPECT_EQ(parts[0].iov_len, 7u);
    EXPECT_EQ(parts[1].iov_len, 4u);
}

TEST_F(IoSock, DescriptorGoesWithTheFirstTwoCallsWhenTheFirstWasPartial)
{
    calls.send_outcomes = {at_most(5), at_most(5), at_most(1)};
    ASSERT_EQ(send_io_request(pair.near, 5, "text", 5), 0);
    std::vector<int> passed;
    for (const auto &call : calls.sends) passed.push_back(call.passed_fd);
    EXPECT_THAT(passed, ElementsAre(pair.near, pair.near, -1, -1));
    EXPECT_EQ(calls.sends[2].control_length, 0u);
}

TEST_F(IoSock, DescriptorStaysAttachedAcrossFailedAttempts)
{
    calls.send_outcomes = {fail(EINTR), at_most(5), fail(EAGAIN), at_most(1)};
    ASSERT_EQ(send_io_request(pair.near, 5, "text", 5), 0);
    std::vector<int> passed;
    for (const auto &call : calls.sends) passed.push_back(call.passed_fd);
    EXPECT_THAT(passed, ElementsAre(pair.near, pair.near, pair.near, pair.near, -1));
}

TEST_F(IoSock, SmallSocketBufferIsFilledAgainAndAgain)
{
    const int size = 4096;
    setsockopt(pair.near, SOL_SOCKET, SO_SNDBUF, &size, sizeof size);
    make_nonblocking(pair.near);
    string data(300'000, '\0');
    for (size_t i = 0; i < data.size(); ++i) data[i] = static_cast<char>(i * 7 + i / 251);
    string seen;
    calls.before_send = [&] {
        // Every other time the buffer is still full.
        if (calls.sends.size() % 2 == 0) seen += drain(pair.far);
    };
    ASSERT_EQ(send_io_reply(pair.near, 0, data.data(), static_cast<uint32_t>(data.size())), 0);
    seen += drain(pair.far);
    EXPECT_GT(calls.sends.size(), 10u);
    EXPECT_TRUE(seen == frame(0, 0, 0, static_cast<uint32_t>(data.size()), data));
}

std::vector<string> storm(const char *name)
{
    std::vector<string> texts;
    for (int i = 1; i <= 50; ++i)
        texts.push_back("sendmsg return errno: "s + name + ", counter = " + std::to_string(i));
    texts.push_back("sendmsg return error out of 51");
    return texts;
}

TEST_F(IoSock, FiftyConsecutiveEagainFailTheSend)
{
    char byte = 'x';
    iovec part = {&byte, 1};
    calls.send_always = {fail(EAGAIN)};
    EXPECT_EQ(writev_data(pair.near, &part, 1, -1), -1);
    EXPECT_EQ(calls.sends.size(), 50u);
    EXPECT_EQ(log.texts(LOG_ERR), storm("EAGAIN"));
    ASSERT_EQ(calls.polls.size(), 50u);
    EXPECT_EQ(calls.polls[0].fd, pair.near);
    EXPECT_EQ(calls.polls[0].events, POLLOUT);
    EXPECT_EQ(calls.poll_timeouts, std::vector<int>(50, 0));
    EXPECT_EQ(log.lines()[0].function, "writev_data");
    EXPECT_EQ(log.lines()[50].function, "writev_data");
}

TEST_F(IoSock, FiftyConsecutiveEintrFailTheSend)
{
    char byte = 'x';
    iovec part = {&byte, 1};
    calls.send_always = {fail(EINTR)};
    EXPECT_EQ(writev_data(pair.near, &part, 1, -1), -1);
    EXPECT_EQ(calls.sends.size(), 50u);
    EXPECT_EQ(log.texts(LOG_ERR), storm("EINTR"));
    EXPECT_TRUE(calls.polls.empty());
}

TEST_F(IoSock, FullBufferThatNobodyReadsFailsTheSend)
{
    make_nonblocking(pair.near);
    const string data(4'000'000, 'x');
    EXPECT_EQ(send_io_reply(pair.near, 0, data.data(), static_cast<uint32_t>(data.size())), -1);
    const auto texts = log.texts(LOG_ERR);
    ASSERT_GE(texts.size(), 2u);
    EXPECT_EQ(texts[texts.size() - 2], "sendmsg return error out of 51");
    EXPECT_EQ(texts.back(), "send io reply failed");
}

TEST_F(IoSock, FortyNineFailedAttemptsAreForgottenByAnyProgress)
{
    for (int i = 0; i < 49; ++i) calls.send_outcomes.push_back(fail(i % 2 ? EAGAIN : EINTR));
    calls.send_outcomes.push_back(at_most(1));
    for (int i = 0; i < 49; ++i) calls.send_outcomes.push_back(fail(EAGAIN));
    string text = "text";
    iovec part = {text.data(), text.size()};
    EXPECT_EQ(writev_data(pair.near, &part, 1, -1), 4);
    EXPECT_EQ(calls.sends.size(), 100u);
    EXPECT_EQ(log.texts()[49], "sendmsg return errno: EAGAIN, counter = 1");
    EXPECT_EQ(drain(pair.far), "text");
}

TEST_F(IoSock, OtherSendErrorsFailAtOnce)
{
    calls.send_outcomes = {fail(ECONNRESET)};
    EXPECT_EQ(send_io_request(pair.near, 5, "x", 1), -1);
    EXPECT_EQ(calls.sends.size(), 1u);
    EXPECT_THAT(log.texts(LOG_ERR),
                ElementsAre("sendmsg return errno:" + connection_reset + ", fd:" + std::to_string(pair.near),
                            "send io request failed"));
    EXPECT_TRUE(log.has(LOG_ERR, "send_io_request", "send io request failed"));
}

TEST_F(IoSock, ClosedPeerFailsTheSendAndNeverKillsTheProcess)
{
    pair.close_far();
    EXPECT_EQ(send_io_reply(pair.near, 0, "x", 1), -1);
    EXPECT_THAT(log.texts(LOG_ERR), ElementsAre("sendmsg return errno:32(Broken pipe), fd:" + std::to_string(pair.near),
                                                "send io reply failed"));
    EXPECT_TRUE(log.has(LOG_ERR, "send_io_reply", "send io reply failed"));
}

TEST_F(IoSock, BadDescriptorFailsTheSend)
{
    EXPECT_EQ(send_io_request(-1, 4, nullptr, 0), -1);
    EXPECT_THAT(log.texts(LOG_ERR),
                ElementsAre("sendmsg return errno:9(Bad file descriptor), fd:-1", "send io request failed"));
}

TEST_F(IoSock, EmptyGatherListSendsNothing)
{
    EXPECT_EQ(writev_data(pair.near, nullptr, 0, -1), 0);
    EXPECT_EQ(drain(pair.far), "");
}

// Receiving

TEST_F(IoSock, MessageArrivesWithHeaderDataAndANul)
{
    write_all(pair.far, frame(5, 9, 0x01020304, 3, "abc"));
    const auto message = receive();
    ASSERT_TRUE(message);
    EXPECT_EQ(message->type, 5);
    EXPECT_EQ(message->code, 9);
    EXPECT_EQ(message->count, 0x01020304u);
    EXPECT_EQ(message->data_len, 3u);
    EXPECT_STREQ(message->data, "abc");
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(IoSock, HeaderWordsArriveAsReceived)
{
    const string header = "\xA0\xA1\xA2\xA3\xA4\xA5\xA6\xA7\x00\x00\x00\x00"s;
    write_all(pair.far, header);
    const auto message = receive();
    ASSERT_TRUE(message);
    EXPECT_EQ(bytes_of(*message), header);
}

TEST_F(IoSock, MessageWithoutDataNeedsNoSecondReadAndHoldsOneNul)
{
    write_all(pair.far, frame(4, 0, 1, 0, ""));
    const auto message = receive();
    ASSERT_TRUE(message);
    EXPECT_EQ(message->data[0], '\0');
    EXPECT_EQ(calls.receives.size(), 1u);
}

TEST_F(IoSock, TextIsTerminatedEvenIfTheSenderOmittedTheNul)
{
    for (uint32_t length = 1; length <= 64; ++length) {
        const string text(length, 't');
        write_all(pair.far, frame(5, 0, 1, length, text));
        const auto message = receive();
        ASSERT_TRUE(message);
        ASSERT_EQ(message->data, text);
    }
}

TEST_F(IoSock, EveryPieceSizeGivesTheSameMessage)
{
    const string bytes = frame(6, 0, 7, 40, string(40, 'p'));
    for (size_t piece = 1; piece <= bytes.size(); ++piece) {
        calls.receive_always = {at_most(piece)};
        write_all(pair.far, bytes);
        const auto message = receive();
        ASSERT_TRUE(message);
        ASSERT_EQ(message->data, string(40, 'p'));
        ASSERT_EQ(drain(pair.near), "");
    }
}

TEST_F(IoSock, MessagesOnOneStreamStayApart)
{
    write_all(pair.far, frame(1, 0, 1, 2, "a\0"s) + frame(5, 0, 2, 0, "") + frame(6, 0, 3, 1, "c"));
    EXPECT_STREQ(receive()->data, "a");
    EXPECT_EQ(receive()->type, 5);
    EXPECT_STREQ(receive()->data, "c");
}

TEST_F(IoSock, RecvDataFillsTheBufferAndAdvancesIt)
{
    write_all(pair.far, "0123456789");
    char buffer[8] = {};
    iovec part = {buffer, 8};
    int closed = 0;
    calls.receive_always = {at_most(3)};
    EXPECT_EQ(recv_data(pair.near, &part, nullptr, &closed), 8);
    EXPECT_EQ(string(buffer, 8), "01234567");
    EXPECT_EQ(part.iov_base, buffer + 8);
    EXPECT_EQ(part.iov_len, 0u);
    EXPECT_EQ(closed, 0);
    EXPECT_EQ(recv_data(pair.near, &part, nullptr, &closed), 0) << "nothing is left to fill";
    EXPECT_EQ(drain(pair.near), "89");
}

TEST_F(IoSock, PeerThatClosesSetsTheClosedFlag)
{
    pair.close_far();
    char byte;
    iovec part = {&byte, 1};
    int closed = 0;
    EXPECT_EQ(recv_data(pair.near, &part, nullptr, &closed), -1);
    EXPECT_EQ(closed, 1);
    EXPECT_TRUE(log.has(LOG_ERR, "recv_data",
                        "client(fd:" + std::to_string(pair.near) + ") has performed an orderly shutdown."));
    EXPECT_EQ(recv_data(pair.near, &part, nullptr, nullptr), -1) << "the flag may be left out";
}

TEST_F(IoSock, InterruptedReadIsRetriedWithoutLimit)
{
    write_all(pair.far, frame(5, 0, 1, 1, "x"));
    for (int i = 0; i < 1000; ++i) calls.receive_outcomes.push_back(fail(EINTR));
    EXPECT_TRUE(receive());
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(IoSock, ReadErrorIsLogged)
{
    calls.receive_outcomes = {fail(ECONNRESET)};
    int closed = 0;
    EXPECT_FALSE(receive(nullptr, &closed));
    EXPECT_EQ(closed, 0);
    EXPECT_THAT(log.texts(LOG_ERR),
                ElementsAre("recieve failed, errno:" + connection_reset + ", fd:" + std::to_string(pair.near),
                            "recv io msg failed or data is incomplete"));
    EXPECT_EQ(log.lines()[0].function, "recv_data");
    EXPECT_EQ(log.lines()[1].function, "recv_io_msg");
}

TEST_F(IoSock, NothingToReadOnANonBlockingSocketIsNoMessage)
{
    make_nonblocking(pair.near);
    char byte;
    iovec part = {&byte, 1};
    int closed = 0;
    EXPECT_EQ(recv_data(pair.near, &part, nullptr, &closed), 0);
    EXPECT_FALSE(receive(nullptr, &closed));
    EXPECT_EQ(closed, 0);
    EXPECT_THAT(log.texts(), ElementsAre("recv io msg failed or data is incomplete"));
}

TEST_F(IoSock, BytesBeforeEagainAreLostToTheCaller)
{
    make_nonblocking(pair.near);
    write_all(pair.far, "abc");
    char buffer[8] = {};
    iovec part = {buffer, 8};
    EXPECT_EQ(recv_data(pair.near, &part, nullptr, nullptr), 0);
    EXPECT_EQ(drain(pair.near), "");
}

TEST_F(IoSock, EagainInsideABodyIsNoData)
{
    make_nonblocking(pair.near);
    write_all(pair.far, frame(5, 0, 1, 10, "half"));
    EXPECT_FALSE(receive());
    EXPECT_THAT(log.texts(LOG_ERR), ElementsAre("no data"));
    EXPECT_EQ(log.lines()[0].function, "recv_io_msg");
}

// A frame that ends after `length` bytes, for every length, with the peer silent or gone.
TEST_F(IoSock, EveryTruncatedFrameIsNoMessage)
{
    const string whole = frame(5, 0, 1, 6, "abcdef");
    for (const bool peer_closes : {false, true}) {
        for (size_t length = 0; length < whole.size(); ++length) {
            const int before = open_descriptors();
            {
                socket_pair cut;
                make_nonblocking(cut.near);
                if (length) write_all(cut.far, whole.substr(0, length));
                if (peer_closes) cut.close_far();
                log.clear();
                int closed = 0, received = 77;
                ASSERT_EQ(recv_io_msg(cut.near, &received, &closed), nullptr) << length;
                EXPECT_EQ(closed, peer_closes);
                EXPECT_EQ(received, -1);
                EXPECT_EQ(log.texts().back(), length < 12 ? "recv io msg failed or data is incomplete" : "no data");
                EXPECT_EQ(log.texts().size(), peer_closes ? 2u : 1u);
            }
            EXPECT_EQ(open_descriptors(), before);
        }
    }
}

TEST_F(IoSock, DataLengthOfOneWithoutTheByteIsNoData)
{
    write_all(pair.far, frame(5, 0, 1, 1, ""));
    pair.close_far();
    int closed = 0;
    EXPECT_FALSE(receive(nullptr, &closed));
    EXPECT_EQ(closed, 1);
    EXPECT_EQ(log.texts().back(), "no data");
}

TEST_F(IoSock, DataLengthWhoseBlockWouldWrapOrPassIntMaxIsRefused)
{
    const uint32_t lengths[] = {INT_MAX - 12u,   INT_MAX - 11u,  1u << 31,  UINT32_MAX - 12,
                                UINT32_MAX - 11, UINT32_MAX - 1, UINT32_MAX};
    for (const uint32_t length : lengths) {
        log.clear();
        write_all(pair.far, frame(5, 0, 1, length, ""));
        EXPECT_FALSE(receive());
        EXPECT_THAT(log.texts(LOG_ERR),
                    ElementsAre("create io message failed, data_len:" + std::to_string(length + 1u)));
        EXPECT_EQ(log.lines()[0].function, "create_io_msg");
    }
}

TEST_F(IoSock, LargeDataLengthAloneCostsNoMemory)
{
    rusage before = {}, after = {};
    getrusage(RUSAGE_SELF, &before);
    make_nonblocking(pair.near);
    for (int i = 0; i < 4; ++i) {
        write_all(pair.far, frame(5, 0, 1, 1u << 29, "only this"));
        EXPECT_FALSE(receive());
    }
    getrusage(RUSAGE_SELF, &after);
    EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 256 * 1024) << "kilobytes, of 512 MiB announced";
}

// Received descriptors

// Whether control messages keep to the room that is offered for them. Emulators of a whole user space offer the kernel
// more than the program does, so what the library asks for cannot be seen there.
bool control_room_is_exact()
{
    const int before = open_descriptors();
    int left_open;
    {
        socket_pair probe;
        send_with_descriptors(probe.far, "x", {probe.far, probe.far, probe.far});
        char byte;
        iovec part = {&byte, 1};
        alignas(cmsghdr) char control[CMSG_SPACE(8 * sizeof(int))] = {};
        msghdr message = {};
        message.msg_iov = &part;
        message.msg_iovlen = 1;
        message.msg_control = control;
        message.msg_controllen = control_length;
        if (recvmsg(probe.near, &message, 0) != 1) return false;
        left_open = open_descriptors() - before - 2;
        int fd;
        memcpy(&fd, CMSG_DATA(reinterpret_cast<cmsghdr *>(control)), sizeof fd);
        close(fd);
    }
    return left_open == 1;
}

TEST_F(IoSock, OnlyTheFirstReadTakesADescriptor)
{
    calls.receive_always = {at_most(4)};
    send_with_descriptors(pair.far, frame(5, 0, 1, 3, "abc"), {pair.far});
    int received = -1;
    ASSERT_TRUE(receive(&received));
    ASSERT_GE(received, 0);
    EXPECT_EQ(inode_of(received), inode_of(pair.far));
    close(received);
    ASSERT_EQ(calls.receives.size(), 4u);
    EXPECT_EQ(calls.receives[0].control_length, size_t{control_length});
    EXPECT_EQ(calls.receives[0].passed_fd, -1) << "the slot is cleared before the call";
    EXPECT_EQ(calls.receives[1].control_length, 0u);
    EXPECT_EQ(calls.receives[3].control_length, 0u);
}

TEST_F(IoSock, SecondDescriptorOfASplitRequestIsDropped)
{
    const int before = open_descriptors();
    calls.send_outcomes = {at_most(5), at_most(4)};
    ASSERT_EQ(send_io_request(pair.far, 5, "text", 5), 0);
    int received = -1;
    ASSERT_TRUE(receive(&received));
    EXPECT_EQ(open_descriptors(), before + 1);
    close(received);
}

TEST_F(IoSock, DescriptorThatNobodyTakesIsNotLeftOpen)
{
    const int before = open_descriptors();
    send_with_descriptors(pair.far, frame(5, 0, 1, 1, "x"), {pair.far, 0, 1});
    ASSERT_TRUE(receive(nullptr));
    EXPECT_EQ(open_descriptors(), before);
    EXPECT_EQ(calls.receives[0].control_length, 0u);
}

TEST_F(IoSock, OfSeveralDescriptorsExactlyOneIsReceived)
{
    if (!control_room_is_exact()) GTEST_SKIP() << "control messages are emulated here";
    calls.receives.clear();
    const int before = open_descriptors();
    send_with_descriptors(pair.far, frame(5, 0, 1, 1, "x"), {pair.far, pair.far, pair.far, pair.far});
    int received = -1;
    ASSERT_TRUE(receive(&received));
    EXPECT_EQ(open_descriptors(), before + 1);
    close(received);
    EXPECT_EQ(open_descriptors(), before);
}

TEST_F(IoSock, DescriptorOfABadMessageBelongsToTheCaller)
{
    make_nonblocking(pair.near);
    const string bad[] = {frame(5, 0, 1, 9, "short"), frame(5, 0, 1, UINT32_MAX, ""), "stub"};
    for (const string &bytes : bad) {
        const int before = open_descriptors();
        send_with_descriptors(pair.far, bytes, {pair.far});
        int received = -1;
        EXPECT_FALSE(receive(&received));
        ASSERT_GE(received, 0);
        close(received);
        EXPECT_EQ(open_descriptors(), before);
    }
}

TEST_F(IoSock, CredentialsAreNotTakenForADescriptor)
{
    if (!control_room_is_exact()) GTEST_SKIP() << "control messages are emulated here";
    calls.receives.clear();
    const int on = 1;
    setsockopt(pair.near, SOL_SOCKET, SO_PASSCRED, &on, sizeof on);
    write_all(pair.far, frame(5, 0, 1, 1, "x"));
    int received = 0;
    ASSERT_TRUE(receive(&received));
    EXPECT_EQ(received, -1);
}

TEST_F(IoSock, FailedReadLeavesNoDescriptor)
{
    calls.receive_outcomes = {fail(ECONNRESET)};
    int received = 4711;
    EXPECT_FALSE(receive(&received));
    EXPECT_EQ(received, -1);
}

// Set-up

class InitIoSock : public testing::Test
{
protected:
    system_calls calls;
    log_capture log;
    const string path = "/tmp/io_sock_test";
    const int before = open_descriptors();

    ~InitIoSock() override
    {
        unlink(path.c_str());
        unlink(IO_SOCK_PATH);
    }
    static string path_of_length(size_t length) { return "/tmp/" + string(length - 5, 'p'); }
};

TEST_F(InitIoSock, ServerListensWithoutBlockingAndClientConnects)
{
    const int server = init_io_sock(1, path.c_str());
    ASSERT_GE(server, 0);
    EXPECT_TRUE(fcntl(server, F_GETFL) & O_NONBLOCK);
    int value = 0;
    socklen_t size = sizeof value;
    getsockopt(server, SOL_SOCKET, SO_REUSEADDR, &value, &size);
    EXPECT_EQ(value, 1);
    EXPECT_EQ(accept(server, nullptr, nullptr), -1);

    const int client = init_io_sock(0, path.c_str());
    ASSERT_GE(client, 0);
    EXPECT_FALSE(fcntl(client, F_GETFL) & O_NONBLOCK);
    EXPECT_TRUE(fcntl(client, F_GETFD) & FD_CLOEXEC);

    const int accepted = accept(server, nullptr, nullptr);
    ASSERT_GE(accepted, 0);
    EXPECT_EQ(send_io_request(client, 5, "x", 1), 0);
    io_msg_ptr message(recv_io_msg(accepted, nullptr, nullptr));
    ASSERT_TRUE(message);
    EXPECT_STREQ(message->data, "x");

    EXPECT_THAT(calls.bind_lengths, ElementsAre(110u));
    EXPECT_THAT(calls.connect_lengths, ElementsAre(110u));
    for (const int fd : {server, client, accepted}) close(fd);
}

TEST_F(InitIoSock, NullPathIsTheDefaultPath)
{
    unlink("/tmp/config_cmd_sock");
    const int server = init_io_sock(1, nullptr);
    ASSERT_GE(server, 0);
    struct stat status = {};
    EXPECT_EQ(stat("/tmp/config_cmd_sock", &status), 0);
    EXPECT_TRUE(S_ISSOCK(status.st_mode));
    const int client = init_io_sock(0, nullptr);
    EXPECT_GE(client, 0);
    close(server);
    close(client);
}

TEST_F(InitIoSock, BacklogIs128)
{
    const int server = init_io_sock(1, path.c_str());
    ASSERT_GE(server, 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    strcpy(address.sun_path, path.c_str());
    std::vector<int> clients;
    int result = 0;
    while (result == 0 && clients.size() < 1000) {
        clients.push_back(socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0));
        result = connect(clients.back(), reinterpret_cast<sockaddr *>(&address), sizeof address);
    }
    EXPECT_EQ(clients.size(), 130u) << "the kernel holds one more than the backlog, the next one would wait";
    for (const int fd : clients) close(fd);
    close(server);
}

TEST_F(InitIoSock, PathOf107CharactersFits)
{
    const string longest = path_of_length(107);
    const int server = init_io_sock(1, longest.c_str());
    ASSERT_GE(server, 0);
    const int client = init_io_sock(0, longest.c_str());
    EXPECT_GE(client, 0);
    close(server);
    close(client);
    EXPECT_EQ(unlink(longest.c_str()), 0);
}

TEST_F(InitIoSock, PathOf108CharactersIsInvalid)
{
    for (const size_t length : {size_t{108}, size_t{109}, size_t{5000}}) {
        for (const int server : {0, 1}) {
            log.clear();
            errno = 0;
            EXPECT_EQ(init_io_sock(server, path_of_length(length).c_str()), -1);
            EXPECT_EQ(errno, EINVAL);
            EXPECT_TRUE(log.has(LOG_ERR, "init_io_sock", "invalid socket path"));
        }
    }
    EXPECT_EQ(open_descriptors(), before);
}

TEST_F(InitIoSock, ExistingFileFailsTheBindAndStays)
{
    std::ofstream(path) << "stale";
    EXPECT_EQ(init_io_sock(1, path.c_str()), -1);
    EXPECT_TRUE(log.has(LOG_ERR, "init_io_sock", "init socket: bind failed"));
    EXPECT_EQ(access(path.c_str(), F_OK), 0);
    EXPECT_EQ(open_descriptors(), before);
}

TEST_F(InitIoSock, FailedListenClosesTheSocket)
{
    calls.listen_error = EADDRINUSE;
    EXPECT_EQ(init_io_sock(1, path.c_str()), -1);
    EXPECT_TRUE(log.has(LOG_ERR, "init_io_sock", "init socket: listen failed"));
    EXPECT_EQ(open_descriptors(), before);
}

TEST_F(InitIoSock, FailedConnectClosesTheSocket)
{
    EXPECT_EQ(init_io_sock(0, "/tmp/nobody_here"), -1);
    EXPECT_TRUE(log.has(LOG_ERR, "init_io_sock", "init socket: connect failed, errno:2, No such file or directory"));
    EXPECT_EQ(open_descriptors(), before);
}

TEST_F(InitIoSock, ConnectInProgressIsASuccess)
{
    calls.connect_error = EINPROGRESS;
    const int fd = init_io_sock(0, path.c_str());
    EXPECT_GE(fd, 0);
    EXPECT_TRUE(log.lines().empty());
    close(fd);
}

TEST_F(InitIoSock, NoDescriptorLeftFailsTheSocket)
{
    rlimit limit = {};
    getrlimit(RLIMIT_NOFILE, &limit);
    const rlimit none = {0, limit.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
    const int result = init_io_sock(0, path.c_str());
    setrlimit(RLIMIT_NOFILE, &limit);
    EXPECT_EQ(result, -1);
    EXPECT_TRUE(log.has(LOG_ERR, "init_io_sock", "create socket failed, errno:24, Too many open files"));
}

TEST_F(InitIoSock, DeinitClosesOnceAndKeepsTheNumber)
{
    io_sockfd = -1;
    deinit_io_sock();  // whatever an earlier test closed is forgotten
    socket_pair pair;
    const int number = io_sockfd = dup(pair.near);
    deinit_io_sock();
    EXPECT_EQ(io_sockfd, number);
    EXPECT_FALSE(is_open(number));

    ASSERT_EQ(dup2(pair.far, number), number);
    deinit_io_sock();
    EXPECT_TRUE(is_open(number)) << "the number belongs to something else by now";

    io_sockfd = -1;
    deinit_io_sock();
    io_sockfd = number;
    deinit_io_sock();
    EXPECT_FALSE(is_open(number)) << "io_sockfd was given another number in between";
    io_sockfd = -1;
}

// The module name

class ModuleName : public testing::Test
{
protected:
    system_calls calls;
    const string cmdline = "/proc/" + std::to_string(getpid()) + "/cmdline";
    const string stand_in = "/tmp/cmdline";

    void SetUp() override { io_module[0] = '\0'; }
    void TearDown() override { unlink(stand_in.c_str()); }
    void set_cmdline(const string &text)
    {
        std::ofstream(stand_in, std::ios::binary | std::ios::trunc) << text;
        calls.redirected_files[cmdline] = stand_in;
    }
    static string own_base_name()
    {
        string path;
        std::getline(std::ifstream("/proc/self/cmdline"), path, '\0');
        path.resize(std::min(path.size(), size_t{63}));
        return path.substr(path.rfind('/') + 1);
    }
    string process_name(size_t length = 64)
    {
        string buffer(length + 1, '#');
        if (get_process_name(buffer.data(), length) != 0) return "(failed)";
        EXPECT_EQ(buffer[length], '#') << "wrote beyond the buffer";
        return buffer.c_str();
    }
};

TEST_F(ModuleName, IsTheBaseNameOfTheProgram)
{
    EXPECT_EQ(process_name(), own_base_name());
    ASSERT_FALSE(calls.opened.empty());
    EXPECT_EQ(calls.opened.front(), std::make_pair(cmdline, "r"s));
    set_cmdline("/usr/sbin/radiod\0-f\0/etc/x/y"s);
    EXPECT_EQ(process_name(), "radiod");
    set_cmdline("plain\0argument"s);
    EXPECT_EQ(process_name(), "plain");
    set_cmdline("/ends/with/"s);
    EXPECT_EQ(process_name(), "");
}

TEST_F(ModuleName, ProgramPathIsReadUpTo63Characters)
{
    set_cmdline("/a/" + string(60, 'n') + "CUT");
    EXPECT_EQ(process_name(), string(60, 'n'));
    set_cmdline(string(63, 'n') + "/base");
    EXPECT_EQ(process_name(), string(63, 'n'));
}

TEST_F(ModuleName, IsCutToTheBuffer)
{
    set_cmdline("/bin/radiod");
    EXPECT_EQ(process_name(7), "radiod");
    EXPECT_EQ(process_name(6), "radio");
    EXPECT_EQ(process_name(1), "");
    char untouched = '#';
    EXPECT_EQ(get_process_name(&untouched, 0), -1);
    EXPECT_EQ(untouched, '#');
}

TEST_F(ModuleName, UnreadableOrEmptyCommandLineFails)
{
    calls.redirected_files[cmdline] = "";
    EXPECT_EQ(process_name(), "(failed)");
    set_cmdline("");
    EXPECT_EQ(process_name(), "(failed)");
}

TEST_F(ModuleName, FallsBackToThePid)
{
    calls.redirected_files[cmdline] = "";
    EXPECT_EQ(get_io_module(), "pid" + std::to_string(getpid()));
    EXPECT_EQ(get_io_module(), io_module);
}

TEST_F(ModuleName, IsKeptOnceItIsSet)
{
    set_cmdline("/bin/first");
    EXPECT_STREQ(get_io_module(), "first");
    set_cmdline("/bin/second");
    EXPECT_STREQ(get_io_module(), "first");
}

}  // namespace

// The message queue on its real files: indexes, appending by several processes at once, fetching, archives, backups.
#include "apconf/cmq.h"

#include <json-c/json.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <syslog.h>
#include <unistd.h>

#include <climits>
#include <filesystem>
#include <fstream>
#include <memory>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "messaging/io_support.h"
#include "messaging/system_calls.h"
#include "support/log_capture.h"

namespace
{

namespace fs = std::filesystem;
using namespace apconf_test;
using std::string;
using namespace std::string_literals;
using testing::ElementsAre;
using testing::IsEmpty;

struct put_object {
    void operator()(json_object *object) const { json_object_put(object); }
};
using object_ptr = std::unique_ptr<json_object, put_object>;

const string max_file = "/tmp/cmessage_queue/new/.max_index";
const string cur_file = "/tmp/cmessage_queue/new/.cur_index";
const string start_config = "/etc/config/start_config.json";

void write_file(const string &path, const string &text)
{
    std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
}

string read_file(const string &path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file) return "(none)";
    return {std::istreambuf_iterator<char>(file), {}};
}

string new_file(int index)
{
    return "/tmp/cmessage_queue/new/" + std::to_string(index) + ".json";
}

object_ptr parse(const string &text)
{
    return object_ptr(json_tokener_parse(text.c_str()));
}

string plain(json_object *object)
{
    return json_object_to_json_string_ext(object, JSON_C_TO_STRING_PLAIN);
}

int refuse(void *, int)
{
    return -1;
}
int accept_any(void *, int)
{
    return 0;
}

class Cmq : public testing::Test
{
protected:
    system_calls calls;
    log_capture log;
    const int before = open_descriptors();

    void SetUp() override
    {
        fs::remove_all("/tmp/cmessage_queue");
        for (const char *name : {"new", "old", "bad"}) fs::create_directories("/tmp/cmessage_queue/"s + name);
        fs::create_directories("/etc/config");
        fs::remove(start_config);
    }
    void TearDown() override
    {
        EXPECT_EQ(open_descriptors(), before) << "a file was left open";
        fs::remove_all("/tmp/cmessage_queue");
        fs::remove(start_config);
    }
    void set_indexes(const string &current, const string &maximum)
    {
        write_file(cur_file, current);
        write_file(max_file, maximum);
    }
    object_ptr fetch(int *index = nullptr) { return object_ptr(cmq_fetch_a_message(index)); }
};

// Index files

TEST_F(Cmq, IndexFileEndsWithABlankAndNoNewline)
{
    EXPECT_EQ(set_message_index(max_file.c_str(), 42), 42);
    EXPECT_EQ(read_file(max_file), "42 ");
    EXPECT_EQ(set_message_index(max_file.c_str(), 7), 7);
    EXPECT_EQ(read_file(max_file), "7 ") << "truncated before it is written";
    EXPECT_EQ(get_message_index(max_file.c_str()), 7);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(Cmq, MissingIndexFileIsNoIndexAndNoLogLine)
{
    EXPECT_EQ(get_message_index(max_file.c_str()), -1);
    EXPECT_EQ(get_message_index("/tmp/cmessage_queue/new"), -1) << "not writable";
    EXPECT_EQ(cmq_get_current_index(), -1);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(Cmq, EmptyIndexFileIsLogged)
{
    write_file(max_file, "");
    EXPECT_EQ(get_message_index(max_file.c_str()), -1);
    EXPECT_TRUE(log.has(LOG_ERR, "get_message_index", "get message index from '" + max_file + "' failed!"));
}

TEST_F(Cmq, ZeroAndGarbageAreInvalidIndexes)
{
    for (const string &text : {"0 "s, "00"s, "abc"s, " "s, "-0 "s, "+"s}) {
        log.clear();
        write_file(max_file, text);
        EXPECT_EQ(get_message_index(max_file.c_str()), -1);
        EXPECT_TRUE(
            log.has(LOG_ERR, "get_message_index", "invalid message index '" + text + "' in file '" + max_file + "'"));
    }
}

TEST_F(Cmq, IndexTextIsReadLikeAtoiWith32Bits)
{
    const std::pair<string, int> texts[] = {{"12 ", 12},
                                            {"  +5x", 5},
                                            {"-5 ", -5},
                                            {"0012 9", 12},
                                            {"2147483646 ", INT_MAX - 1},
                                            {"-99999999999 ", INT_MIN},
                                            {"-2147483648 ", INT_MIN}};
    for (const auto &[text, index] : texts) {
        write_file(max_file, text);
        EXPECT_EQ(get_message_index(max_file.c_str()), index) << text;
    }
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(Cmq, IndexAtIntMaxIsInvalid)
{
    for (const string &text : {"2147483647 "s, "2147483648 "s, "4294967297 "s, "99999999999999 "s}) {
        log.clear();
        set_indexes(text, text);
        EXPECT_EQ(get_message_index(max_file.c_str()), -1);
        EXPECT_EQ(cmq_handle_cmessage(accept_any, nullptr), -1);
        EXPECT_FALSE(fetch());
        EXPECT_EQ(read_file(max_file), text);
        EXPECT_EQ(read_file(cur_file), text);
        const string tail = "invalid message index '" + text + "' in file '";
        EXPECT_TRUE(log.has(LOG_ERR, "get_message_index", tail + max_file + "'"));
        EXPECT_TRUE(log.has(LOG_ERR, "cmq_handle_cmessage", tail + max_file + "'"));
        EXPECT_TRUE(log.has(LOG_ERR, "cmq_fetch_a_message", tail + cur_file + "'"));
    }
}

TEST_F(Cmq, IndexLineIsCutAt15CharactersForReadAndAppend)
{
    const string text = string(14, ' ') + "12 ";
    set_indexes(text, text);
    EXPECT_EQ(get_message_index(max_file.c_str()), 1);
    EXPECT_EQ(cmq_get_current_index(), 1);
    EXPECT_EQ(cmq_handle_cmessage(refuse, nullptr), 1);
}

TEST_F(Cmq, IndexLineIsCutAt63CharactersForFetch)
{
    set_indexes(string(62, ' ') + "12 ", "5 ");
    write_file(new_file(1), "{}");
    int index = 0;
    EXPECT_TRUE(fetch(&index));
    EXPECT_EQ(index, 1);
    set_indexes(string(63, ' ') + "1 ", "5 ");
    EXPECT_FALSE(fetch(&index));
    EXPECT_TRUE(log.has(LOG_ERR, "cmq_fetch_a_message",
                        "invalid message index '" + string(63, ' ') + "' in file '" + cur_file + "'"));
}

TEST_F(Cmq, UnwritableIndexFileIsLoggedWithoutItsClosingQuote)
{
    EXPECT_EQ(set_message_index("/tmp/cmessage_queue/none/.max_index", 3), -1);
    EXPECT_TRUE(log.has(LOG_ERR, "set_message_index", "open '/tmp/cmessage_queue/none/.max_index failed!"));
}

TEST_F(Cmq, IndexThatCannotBeWrittenIsAFailure)
{
    EXPECT_EQ(set_message_index("/dev/full", 3), -1);
    EXPECT_TRUE(log.has(LOG_ERR, "set_message_index", "write '/dev/full' failed!"));
}

TEST_F(Cmq, HighestNumberInNew)
{
    EXPECT_EQ(calc_max_msg_index(), 0);
    for (const char *name : {"3.json", "12.json", "9.json.tmp", "x99.json", "100.txt", ".json", "-4.json"})
        write_file("/tmp/cmessage_queue/new/"s + name, "{}");
    EXPECT_EQ(calc_max_msg_index(), 12);
    write_file("/tmp/cmessage_queue/new/13x.json.old", "");
    EXPECT_EQ(calc_max_msg_index(), 13) << "any name that contains .json counts";
    fs::remove_all("/tmp/cmessage_queue/new");
    log.clear();
    EXPECT_EQ(calc_max_msg_index(), 0);
    EXPECT_TRUE(log.has(LOG_ERR, "calc_max_msg_index", "open config dir '/tmp/cmessage_queue/new' failed"));
}

// Start

TEST_F(Cmq, FreshQueueStartsAtOneAndQueuesTheStartConfiguration)
{
    write_file(start_config, "{\"MODULE\":\"start\"}");
    EXPECT_EQ(cmq_init(), 1);
    EXPECT_EQ(read_file(cur_file), "1 ");
    EXPECT_EQ(read_file(max_file), "2 ");
    EXPECT_EQ(read_file(new_file(1)), "{\"MODULE\":\"start\"}");
    EXPECT_THAT(calls.commands, ElementsAre("cp -f /etc/config/start_config.json /tmp/cmessage_queue/new/1.json"));
    int index = 0;
    EXPECT_EQ(plain(fetch(&index).get()), "{\"MODULE\":\"start\"}");
    EXPECT_EQ(index, 1);
}

TEST_F(Cmq, FreshQueueWithoutStartConfiguration)
{
    EXPECT_EQ(cmq_init(), -1);
    EXPECT_EQ(read_file(cur_file), "1 ");
    EXPECT_EQ(read_file(max_file), "1 ");
    EXPECT_THAT(calls.commands, IsEmpty());
}

TEST_F(Cmq, RestartKeepsPendingMessages)
{
    write_file(start_config, "{}");
    set_indexes("3 ", "5 ");
    EXPECT_EQ(cmq_init(), 0);
    EXPECT_EQ(read_file(cur_file), "3 ");
    EXPECT_EQ(read_file(max_file), "5 ");
    set_indexes("5 ", "5 ");
    EXPECT_EQ(cmq_init(), 0);
    EXPECT_THAT(calls.commands, IsEmpty());
}

TEST_F(Cmq, MaximumIsRaisedToTheCurrentIndex)
{
    for (const char *maximum : {"3 ", "0 ", "garbage", "-9 ", ""}) {
        set_indexes("7 ", maximum);
        EXPECT_EQ(cmq_init(), 7);
        EXPECT_EQ(read_file(max_file), "7 ");
    }
    fs::remove(max_file);
    EXPECT_EQ(cmq_init(), 7);
    EXPECT_EQ(read_file(max_file), "7 ");
}

TEST_F(Cmq, InvalidCurrentIndexRebuildsBoth)
{
    for (const char *current : {"0 ", "-3 ", "garbage", "2147483647 "}) {
        set_indexes(current, "44 ");
        write_file(new_file(8), "{}");
        EXPECT_EQ(cmq_init(), -1);
        EXPECT_EQ(read_file(cur_file), "9 ");
        EXPECT_EQ(read_file(max_file), "9 ");
    }
}

TEST_F(Cmq, StartConfigurationIsSkippedWhenNumberedFilesAreLeft)
{
    write_file(start_config, "{\"a\":\"1\"}");
    write_file(new_file(5), "{}");
    EXPECT_EQ(cmq_init(), 6);
    EXPECT_EQ(read_file(cur_file), "6 ");
    EXPECT_EQ(read_file(max_file), "7 ");
    EXPECT_EQ(read_file(new_file(1)), "{\"a\":\"1\"}");
    EXPECT_FALSE(fetch());
    EXPECT_TRUE(log.has(LOG_ERR, "cmq_fetch_a_message", "load config 6.json failed"));
    EXPECT_EQ(read_file(cur_file), "7 ");
}

TEST_F(Cmq, NumbersThatNothingFollowsStopTheStart)
{
    for (const char *name : {"2147483646.json", "2147483647.json", "99999999999.json"}) {
        const string path = "/tmp/cmessage_queue/new/"s + name;
        write_file(path, "{}");
        EXPECT_EQ(cmq_init(), -1);
        EXPECT_EQ(read_file(cur_file), "(none)");
        fs::remove(path);
    }
    EXPECT_TRUE(log.has(LOG_ERR, "cmq_init", "no message index follows 2147483646"));
    EXPECT_TRUE(log.has(LOG_ERR, "cmq_init", "no message index follows 2147483647"));
}

TEST_F(Cmq, MissingDirectoriesFailTheStart)
{
    fs::remove_all("/tmp/cmessage_queue");
    write_file(start_config, "{}");
    EXPECT_EQ(cmq_init(), -1);
    EXPECT_FALSE(fs::exists("/tmp/cmessage_queue"));
    EXPECT_TRUE(log.has(LOG_ERR, "set_message_index", "open '" + cur_file + " failed!"));
    EXPECT_TRUE(log.has(LOG_ERR, "cmq_handle_cmessage", "open '" + max_file + " failed!"));
}

// Append

TEST_F(Cmq, AppendWritesThePrettyMessageAndTheNextNumber)
{
    set_indexes("1 ", "1 ");
    const auto message = parse("{\"MODULE\":\"cli\",\"list\":[\"a\",\"b\"]}");
    EXPECT_EQ(cmq_handle_cmessage(cmq_put_cmessage, message.get()), 1);
    EXPECT_EQ(read_file(new_file(1)), json_object_to_json_string_ext(message.get(), JSON_C_TO_STRING_PRETTY));
    EXPECT_EQ(read_file(max_file), "2 ");
    EXPECT_EQ(cmq_handle_cmessage(cmq_put_cmessage, message.get()), 2);
    EXPECT_EQ(read_file(max_file), "3 ");
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(Cmq, AppendHandsTheArgumentAndTheNumberToTheWriter)
{
    set_indexes("1 ", "99 ");
    std::vector<int> seen;
    const auto remember = [](void *arg, int index) {
        static_cast<std::vector<int> *>(arg)->push_back(index);
        return index % 2;  // 0 and above are success
    };
    EXPECT_EQ(cmq_handle_cmessage(remember, &seen), 99);
    EXPECT_EQ(cmq_handle_cmessage(remember, &seen), 100);
    EXPECT_THAT(seen, ElementsAre(99, 100));
    EXPECT_EQ(read_file(max_file), "101 ");
}

TEST_F(Cmq, AppendReturnsTheIndexEvenWhenTheWriterFailed)
{
    set_indexes("1 ", "4 ");
    EXPECT_EQ(cmq_handle_cmessage(refuse, nullptr), 4);
    EXPECT_EQ(read_file(max_file), "4 ");
    EXPECT_TRUE(log.has(LOG_ERR, "cmq_handle_cmessage", "set fail"));
    EXPECT_EQ(cmq_handle_cmessage(accept_any, nullptr), 4) << "the number is given again";
}

TEST_F(Cmq, AppendWithoutUsableIndexFails)
{
    EXPECT_EQ(cmq_handle_cmessage(accept_any, nullptr), -1);
    EXPECT_TRUE(log.has(LOG_ERR, "cmq_handle_cmessage", "open '" + max_file + " failed!"));
    write_file(max_file, "");
    EXPECT_EQ(cmq_handle_cmessage(accept_any, nullptr), -1);
    EXPECT_TRUE(log.has(LOG_ERR, "cmq_handle_cmessage", "get message index from '" + max_file + "' failed!"));
    write_file(max_file, "0 ");
    EXPECT_EQ(cmq_handle_cmessage(accept_any, nullptr), -1);
    EXPECT_TRUE(log.has(LOG_ERR, "cmq_handle_cmessage", "invalid message index '0 ' in file '" + max_file + "'"));
    EXPECT_EQ(read_file(max_file), "0 ");
    EXPECT_FALSE(fs::exists(new_file(0)));
}

TEST_F(Cmq, AppendAtANegativeIndexIsLeftToTheWriter)
{
    set_indexes("1 ", "-5 ");
    const auto message = parse("{}");
    EXPECT_EQ(cmq_handle_cmessage(cmq_put_cmessage, message.get()), -5);
    EXPECT_TRUE(log.has(LOG_ERR, "cmq_handle_cmessage", "set fail"));
    EXPECT_EQ(read_file(max_file), "-5 ");
}

TEST_F(Cmq, AppendDoesNotTruncateTheIndexFile)
{
    set_indexes("1 ", "0009 rest");
    EXPECT_EQ(cmq_handle_cmessage(accept_any, nullptr), 9);
    EXPECT_EQ(read_file(max_file), "10 9 rest");
    EXPECT_EQ(get_message_index(max_file.c_str()), 10);
}

TEST_F(Cmq, NewNumberIsInTheFileBeforeTheLockIsReleased)
{
    set_indexes("1 ", "9 ");
    string seen;
    calls.before_flock = [&](int operation) {
        if (operation == LOCK_UN) seen = read_file(max_file);
    };
    EXPECT_EQ(cmq_handle_cmessage(accept_any, nullptr), 9);
    EXPECT_EQ(seen, "10 ");
    EXPECT_THAT(calls.flocks, ElementsAre(LOCK_EX, LOCK_UN));
}

TEST_F(Cmq, InterruptedLockIsTakenAgainAndARefusedOneFailsTheAppend)
{
    set_indexes("1 ", "9 ");
    calls.flock_errors = {EINTR, EINTR};
    EXPECT_EQ(cmq_handle_cmessage(accept_any, nullptr), 9);
    EXPECT_THAT(calls.flocks, ElementsAre(LOCK_EX, LOCK_EX, LOCK_EX, LOCK_UN));
    calls.flock_errors = {ENOLCK};
    EXPECT_EQ(cmq_handle_cmessage(accept_any, nullptr), -1);
    EXPECT_EQ(read_file(max_file), "10 ");
    EXPECT_TRUE(log.has(LOG_ERR, "cmq_handle_cmessage", "lock '" + max_file + "' failed!"));
}

TEST_F(Cmq, EightProcessesAppendEveryNumberOnce)
{
    constexpr int processes = 8, appends = 40;
    set_indexes("1 ", "1 ");
    std::vector<pid_t> children;
    for (int process = 0; process < processes; ++process) {
        children.push_back(fork());
        if (children.back() != 0) continue;
        for (int i = 0; i < appends; ++i) {
            const string name = std::to_string(process) + "." + std::to_string(i);
            json_object *message = json_object_new_object();
            json_object_object_add(message, "from", json_object_new_string(name.c_str()));
            const int index = cmq_handle_cmessage(cmq_put_cmessage, message);
            write_file("/tmp/cmessage_queue/old/" + name, std::to_string(index));
            json_object_put(message);
        }
        _exit(0);
    }
    for (const pid_t child : children) {
        int status = -1;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }
    EXPECT_EQ(read_file(max_file), std::to_string(processes * appends + 1) + " ");
    std::set<string> senders;
    int index = 0;
    for (int expected = 1; expected <= processes * appends; ++expected) {
        const auto message = fetch(&index);
        ASSERT_TRUE(message);
        ASSERT_EQ(index, expected);
        const string name = json_object_get_string(json_object_object_get(message.get(), "from"));
        EXPECT_EQ(read_file("/tmp/cmessage_queue/old/" + name), std::to_string(index));
        senders.insert(name);
    }
    EXPECT_EQ(senders.size(), size_t{processes * appends});
    EXPECT_FALSE(fetch(&index));
}

TEST_F(Cmq, AppendWaitsForTheLock)
{
    set_indexes("1 ", "1 ");
    FILE *holder = fopen(max_file.c_str(), "r+");
    ASSERT_EQ(flock(fileno(holder), LOCK_EX), 0);
    const pid_t child = fork();
    if (child == 0) {
        fclose(holder);  // shares the lock with the parent and does not release it
        _exit(cmq_handle_cmessage(accept_any, nullptr));
    }
    usleep(50'000);
    EXPECT_EQ(waitpid(child, nullptr, WNOHANG), 0) << "still waiting";
    rewind(holder);
    fputs("30 ", holder);
    fflush(holder);
    flock(fileno(holder), LOCK_UN);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(WEXITSTATUS(status), 30) << "the number is read under the lock";
    fclose(holder);
}

// Writers

TEST_F(Cmq, WritersRefuseNumbersBelowOne)
{
    const auto message = parse("{}");
    write_file("/tmp/ready.json", "{}");
    for (const int index : {0, -1, INT_MIN}) {
        EXPECT_EQ(cmq_put_cmessage(message.get(), index), -1);
        EXPECT_EQ(cmq_put_cmessage_file(const_cast<char *>("/tmp/ready.json"), index), -1);
        EXPECT_EQ(cmq_create_bad_file(index), nullptr);
    }
    EXPECT_TRUE(fs::exists("/tmp/ready.json"));
    EXPECT_THAT(calls.commands, IsEmpty());
    fs::remove("/tmp/ready.json");
}

TEST_F(Cmq, MessageWriterReportsFailure)
{
    const auto message = parse("{}");
    EXPECT_EQ(cmq_put_cmessage(message.get(), INT_MAX), 0);
    EXPECT_TRUE(fs::exists(new_file(INT_MAX)));
    EXPECT_EQ(cmq_put_cmessage(nullptr, 1), -1);
    fs::remove_all("/tmp/cmessage_queue/new");
    EXPECT_EQ(cmq_put_cmessage(message.get(), 1), -1);
}

TEST_F(Cmq, FileWriterMovesTheFileIntoPlace)
{
    set_indexes("1 ", "5 ");
    string name = "/tmp/a ready; file $HOME.json";
    write_file(name, "{\"a\":\"b\"}");
    EXPECT_EQ(cmq_handle_cmessage(cmq_put_cmessage_file, name.data()), 5);
    EXPECT_THAT(calls.commands, ElementsAre("mv -f '" + name + "' /tmp/cmessage_queue/new/5.json"));
    EXPECT_EQ(read_file(new_file(5)), "{\"a\":\"b\"}");
    EXPECT_FALSE(fs::exists(name));
    EXPECT_EQ(read_file(max_file), "6 ");
}

TEST_F(Cmq, FileWriterReturnsTheShellsStatus)
{
    set_indexes("1 ", "5 ");
    char missing[] = "/tmp/missing.json";
    testing::internal::CaptureStderr();
    const int status = cmq_put_cmessage_file(missing, 5);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 1);
    EXPECT_EQ(cmq_handle_cmessage(cmq_put_cmessage_file, missing), 5);
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(read_file(max_file), "6 ") << "kept: the append counts as done";
}

TEST_F(Cmq, FileWriterRefusesNamesThatWouldNotBeOneWord)
{
    const string names[] = {"/tmp/it's.json", "'; touch /tmp/owned; '", "-t/etc"};
    for (string name : names) {
        EXPECT_EQ(cmq_put_cmessage_file(name.data(), 1), -1);
        EXPECT_TRUE(log.has(LOG_ERR, "cmq_put_cmessage_file", "refused file name '" + name + "'"));
    }
    EXPECT_EQ(cmq_put_cmessage_file(nullptr, 1), -1);
    EXPECT_THAT(calls.commands, IsEmpty());
    EXPECT_FALSE(fs::exists("/tmp/owned"));
}

TEST_F(Cmq, CommandOf127CharactersRunsAndALongerOneIsRefused)
{
    const size_t overhead = string("mv -f '' /tmp/cmessage_queue/new/5.json").size();
    string fits = "/tmp/" + string(127 - overhead - 5, 'f');
    write_file(fits, "{}");
    EXPECT_EQ(cmq_put_cmessage_file(fits.data(), 5), 0);
    EXPECT_EQ(calls.commands.back().size(), 127u);
    EXPECT_TRUE(fs::exists(new_file(5)));

    write_file(fits, "{}");
    EXPECT_EQ(cmq_put_cmessage_file(fits.data(), 10), -1) << "one digit more";
    string huge = "/tmp/" + string(100'000, 'h');
    EXPECT_EQ(cmq_put_cmessage_file(huge.data(), 5), -1);
    EXPECT_EQ(cmq_put_cmessage_start_config(huge.data(), 1), -1);
    EXPECT_EQ(calls.commands.size(), 1u);
    EXPECT_TRUE(fs::exists(fits));
    const string cut = ("mv -f '" + fits + "' /tmp/cmessage_queue/new/10.json").substr(0, 127);
    EXPECT_TRUE(log.has(LOG_ERR, "cmq_put_cmessage_file", "command too long: '" + cut + "...'"));
    fs::remove(fits);
}

TEST_F(Cmq, StartConfigurationWriterAlwaysWritesMessageOne)
{
    string name = "/tmp/start.json";
    write_file(name, "{\"x\":\"y\"}");
    EXPECT_EQ(cmq_put_cmessage_start_config(name.data(), 77), 0);
    EXPECT_EQ(read_file(new_file(1)), "{\"x\":\"y\"}");
    EXPECT_TRUE(fs::exists(name));
    EXPECT_EQ(cmq_put_cmessage_start_config(name.data(), -3), 0);
    fs::remove(name);
}

TEST_F(Cmq, FailedStartCopyCountsAsAppended)
{
    set_indexes("1 ", "1 ");
    testing::internal::CaptureStderr();
    EXPECT_EQ(cmq_handle_cmessage(cmq_put_cmessage_start_config, const_cast<char *>("/tmp/missing.json")), 1);
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(read_file(max_file), "2 ");
}

TEST_F(Cmq, StartConfigurationWriterRefusesShellMetacharacters)
{
    for (const char c : " \t\n|&;<>()$`\\\"'*?[]#~!{}"s) {
        string name = "/tmp/a"s + c + "b";
        EXPECT_EQ(cmq_put_cmessage_start_config(name.data(), 1), -1) << c;
        EXPECT_TRUE(log.has(LOG_ERR, "cmq_put_cmessage_start_config", "refused file name '" + name + "'"));
    }
    EXPECT_EQ(cmq_put_cmessage_start_config(const_cast<char *>("-t/etc"), 1), -1);
    EXPECT_EQ(cmq_put_cmessage_start_config(nullptr, 1), -1);
    EXPECT_THAT(calls.commands, IsEmpty());
}

// Fetch

TEST_F(Cmq, FetchReturnsMessagesInOrder)
{
    set_indexes("9 ", "11 ");
    write_file(new_file(9), "{\"n\":\"9\"}");
    write_file(new_file(10), "{\"n\":\"10\"}");
    int index = 0;
    EXPECT_EQ(plain(fetch(&index).get()), "{\"n\":\"9\"}");
    EXPECT_EQ(index, 9);
    EXPECT_EQ(read_file(cur_file), "10 ");
    EXPECT_EQ(cmq_get_current_index(), 10);
    EXPECT_EQ(plain(fetch(nullptr).get()), "{\"n\":\"10\"}");
    EXPECT_EQ(read_file(cur_file), "11 ");
    EXPECT_TRUE(fs::exists(new_file(9))) << "the file stays until it is deleted";
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(Cmq, EmptyQueueIsLoggedAsInformation)
{
    for (const auto &[current, maximum] : {std::pair{"4 ", "4 "}, std::pair{"5 ", "4 "}}) {
        set_indexes(current, maximum);
        log.clear();
        int index = 77;
        EXPECT_FALSE(fetch(&index));
        EXPECT_EQ(index, 77);
        EXPECT_TRUE(log.has(LOG_INFO, "cmq_fetch_a_message", "no new message"));
        EXPECT_EQ(read_file(cur_file), current);
    }
    set_indexes("4 ", "0 ");
    EXPECT_FALSE(fetch());
    EXPECT_EQ(log.texts().back(), "no new message");
}

TEST_F(Cmq, FetchSkipsMissingAndCorruptMessagesForGood)
{
    set_indexes("1 ", "6 ");
    write_file(new_file(2), "{broken");
    write_file(new_file(3), "");
    write_file(new_file(4), "null");
    write_file(new_file(5), "{\"n\":\"5\"}");
    int index = 0;
    EXPECT_EQ(plain(fetch(&index).get()), "{\"n\":\"5\"}");
    EXPECT_EQ(index, 5);
    EXPECT_THAT(log.texts(LOG_ERR), ElementsAre("load config 1.json failed", "load config 2.json failed",
                                                "load config 3.json failed", "load config 4.json failed"));
    EXPECT_EQ(read_file(cur_file), "6 ");
    EXPECT_TRUE(fs::exists(new_file(2))) << "no failure removes a file";
}

TEST_F(Cmq, FetchOfNothingButUnreadableMessagesEndsAtTheMaximum)
{
    set_indexes("8 ", "11 ");
    EXPECT_FALSE(fetch());
    EXPECT_EQ(read_file(cur_file), "11 ");
    EXPECT_THAT(log.texts(),
                ElementsAre("load config 8.json failed", "load config 9.json failed", "load config 10.json failed"));
}

TEST_F(Cmq, FetchWithoutUsableIndexFails)
{
    EXPECT_FALSE(fetch());
    EXPECT_TRUE(log.has(LOG_ERR, "cmq_fetch_a_message", "open '" + cur_file + "' failed!"));
    set_indexes("", "5 ");
    EXPECT_FALSE(fetch());
    EXPECT_TRUE(log.has(LOG_ERR, "cmq_fetch_a_message", "get message index from '" + cur_file + "' failed!"));
    for (const string &text : {"0 "s, "-2 "s, "x"s}) {
        set_indexes(text, "5 ");
        EXPECT_FALSE(fetch());
        EXPECT_TRUE(
            log.has(LOG_ERR, "cmq_fetch_a_message", "invalid message index '" + text + "' in file '" + cur_file + "'"));
        EXPECT_EQ(read_file(cur_file), text);
    }
}

TEST_F(Cmq, HighestUsableNumbersDoNotOverflow)
{
    set_indexes("2147483645 ", "2147483646 ");
    write_file(new_file(INT_MAX - 2), "{}");
    int index = 0;
    EXPECT_TRUE(fetch(&index));
    EXPECT_EQ(index, INT_MAX - 2);
    EXPECT_EQ(cmq_handle_cmessage(accept_any, nullptr), INT_MAX - 1);
    EXPECT_EQ(read_file(max_file), "2147483647 ");
    EXPECT_EQ(cmq_handle_cmessage(accept_any, nullptr), -1);
}

// Archives and backups

TEST_F(Cmq, OldConfigurationIsSavedPretty)
{
    const auto config = parse("{\"radio\":{\"a\":\"b\"}}");
    cmq_save_old_config(12, config.get());
    EXPECT_EQ(read_file("/tmp/cmessage_queue/old/12.json"),
              json_object_to_json_string_ext(config.get(), JSON_C_TO_STRING_PRETTY));
    cmq_save_old_config(13, nullptr);
    EXPECT_FALSE(fs::exists("/tmp/cmessage_queue/old/13.json"));
    EXPECT_THAT(log.lines(), IsEmpty());
    fs::remove_all("/tmp/cmessage_queue/old");
    cmq_save_old_config(12, config.get());
    EXPECT_TRUE(log.has(LOG_ERR, "cmq_save_old_config", "save current config failed"));
}

TEST_F(Cmq, BadFileIsOpenedAnewForTheCaller)
{
    for (const char *reason : {"a long reason", "short"}) {
        FILE *bad = cmq_create_bad_file(INT_MAX);
        ASSERT_NE(bad, nullptr);
        fputs(reason, bad);
        fclose(bad);
        EXPECT_EQ(read_file("/tmp/cmessage_queue/bad/2147483647.txt"), reason);
    }
    ASSERT_FALSE(calls.opened.empty());
    EXPECT_EQ(calls.opened.back().second, "w+");
    fs::remove_all("/tmp/cmessage_queue/bad");
    EXPECT_EQ(cmq_create_bad_file(1), nullptr);
}

TEST_F(Cmq, DeleteRemovesTheMessage)
{
    write_file(new_file(3), "{}");
    cmq_delete_new_msg(3, 0);
    EXPECT_FALSE(fs::exists(new_file(3)));
    cmq_delete_new_msg(3, 0);
    cmq_delete_new_msg(0, 0);
    EXPECT_THAT(log.texts(LOG_DEBUG), ElementsAre("msg_index 3, is_backup 0", "remove /tmp/cmessage_queue/new/3.json",
                                                  "msg_index 3, is_backup 0", "remove /tmp/cmessage_queue/new/3.json",
                                                  "msg_index 0, is_backup 0"));
    EXPECT_EQ(log.lines()[0].function, "cmq_delete_new_msg");
    EXPECT_EQ(log.lines().size(), 5u);
}

TEST_F(Cmq, TheLastTwentyBackupsAreKept)
{
    for (int index = 1; index <= 45; ++index) write_file(new_file(index), "{}");
    for (int index = 1; index <= 20; ++index) {
        cmq_delete_new_msg(index, 1);
        EXPECT_EQ(log.texts().back(), "msg_index " + std::to_string(index) + ", is_backup 1");
    }
    for (int index = 1; index <= 45; ++index) EXPECT_TRUE(fs::exists(new_file(index)));
    for (int index = 21; index <= 45; ++index) {
        cmq_delete_new_msg(index, 1);
        EXPECT_FALSE(fs::exists(new_file(index - 20)));
        EXPECT_TRUE(fs::exists(new_file(index - 19)));
        EXPECT_TRUE(fs::exists(new_file(index)));
    }
    for (int i = 0; i < 20; ++i) cmq_delete_new_msg(0, 1);  // empties the ring again
    EXPECT_FALSE(fs::exists(new_file(45)));
}

}  // namespace

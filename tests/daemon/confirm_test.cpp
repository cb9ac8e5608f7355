// Commits that have to be confirmed: kept when they are, and else undone, byte for byte, however the server ends.
#include <apconf/apconf.h>
#include <json-c/json.h>
#include <signal.h>
#include <sys/mount.h>
#include <unistd.h>

#include <filesystem>
#include <random>

#include "daemon/server_process.h"
#include "host/json.h"
#include "host/message_types.h"
#include "host/reply_codes.h"
#include "host/tool_process.h"
#include "support/private_namespace.h"

using namespace apconf_test;
using apconf_host::json_ptr;
using apconf_host::member;
using apconf_host::message_type;
using apconf_host::reply_code;
using testing::HasSubstr;
using testing::Not;

namespace
{

constexpr const char *record_path = CMQ_DIR "/unconfirmed.json";

std::string file_of(const char *directory, int number, const char *suffix)
{
    return std::string(directory) + "/" + std::to_string(number) + suffix;
}
std::string old_file(int number)
{
    return file_of(CMQ_OLD_DIR, number, ".json");
}
std::string new_file(int number)
{
    return file_of(CMQ_NEW_DIR, number, ".json");
}
std::string bad_file(int number)
{
    return file_of(CMQ_BAD_DIR, number, ".txt");
}

// A change that touches a list, a flag and a single value, and that no removal of single commands takes back.
constexpr const char *change =
    R"({"config": {"hostname_cmd": {"hostname": "unconfirmed"}, "timezone_cmd": {".OPT": "no"},
    "radio": {"INDEX": {"radio_id": "1"}, "bss": {"INDEX": {"wlan_id": "5"}, "shutdown_cmd": {}}},
    "vlan": {"INDEX": {"vlan_id": "77"}, "dhcp_cmd": {"type": "relay"}}}})";

std::string change_message(const std::string &module)
{
    return R"({"MODULE": ")" + module + R"(", "ACTION": "set", )" + std::string(change).substr(1);
}

// What a client sends to have the change queued.
std::string commit_request(int seconds)
{
    return with_nul(R"({"seconds": )" + std::to_string(seconds) + R"(, "message": )" + change_message("client") + "}");
}

void save(const json_ptr &object, const std::string &path)
{
    json_object_to_file_ext(path.c_str(), object.get(), JSON_C_TO_STRING_PRETTY);
}

json_ptr load(const std::string &path)
{
    return json_ptr(json_object_from_file(path.c_str()));
}

// The archived configuration, without its header.
std::string configuration_in(const std::string &path)
{
    const json_ptr archived = load(path);
    json_object *config = member(archived.get(), "config");
    return config ? json_object_to_json_string_ext(config, JSON_C_TO_STRING_PLAIN) : "";
}

std::string module_in(const std::string &path)
{
    const json_ptr message = load(path);
    return apconf_host::scalar_text(member(message.get(), "MODULE")).value_or("");
}

int applied_by_server()
{
    const raw_client client;
    const auto reply = client.request(static_cast<uint8_t>(message_type::status), "");
    const json_ptr status(reply ? json_tokener_parse(reply->data.c_str()) : nullptr);
    return json_object_get_int(member(status.get(), "applied"));
}

bool waits_for_confirmation()
{
    const raw_client client;
    const auto reply = client.request(static_cast<uint8_t>(message_type::status), "");
    return reply && reply->data.find("unconfirmed") != std::string::npos;
}

// A server with the start configuration as message 1, as it is before the operator's commit.
class confirmation : public testing::Test
{
protected:
    void SetUp() override
    {
        make_fresh_machine();
        install_start_configuration();
        start();
        ASSERT_TRUE(eventually([] { return applied_by_server() == 1; }));
        before_ = configuration_of_server();
        ASSERT_THAT(before_, HasSubstr("access-point"));
    }

    void start(const std::vector<std::string> &arguments = {})
    {
        server_.reset();
        server_ = std::make_unique<server_process>(arguments);
        ASSERT_TRUE(server_->wait_until_serving());
    }

    // Commits the change as message 2 and sees it applied.
    void commit(int seconds)
    {
        const tool_result result = apconf("commit --confirm " + std::to_string(seconds) + " -", change);
        ASSERT_EQ(result.status, 0) << result.errors;
        ASSERT_EQ(result.output, "2\n");
        ASSERT_EQ(result.errors, "apconf: confirm it within " + std::to_string(seconds) +
                                     " s with 'apconf confirm', or it is undone\n");
        ASSERT_EQ(hostname_of_server(), "unconfirmed");
        ASSERT_NE(configuration_of_server(), before_);
    }

    // Everything is as before message 2, and message `undo` of the server's own says so.
    void expect_undone(int undo)
    {
        EXPECT_TRUE(eventually([&] { return applied_by_server() == undo; })) << server_->log();
        EXPECT_EQ(configuration_of_server(), before_);
        EXPECT_FALSE(waits_for_confirmation());
        EXPECT_FALSE(exists(record_path));
        EXPECT_EQ(module_in(old_file(undo)), "apconfd");
        EXPECT_EQ(configuration_in(old_file(undo)), configuration_in(old_file(1)));
        EXPECT_THAT(read_file(bad_file(2)), testing::StartsWith("undone: it was not confirmed within "));
        EXPECT_EQ(read_file(CMQ_MAX_INDEX), std::to_string(undo + 1) + " ");
    }

    // Changes a member of "undo" in the record of a server that does not run.
    static void rewrite_undo(const char *key, json_object *value)
    {
        const json_ptr record = load(record_path);
        ASSERT_TRUE(member(record.get(), "undo"));
        json_object_object_add(member(record.get(), "undo"), key, value);
        save(record, record_path);
    }

    // Message 2 has been fetched, and nothing of it is on disk.
    static void make_unapplied(const json_ptr &message)
    {
        save(message, new_file(2));
        const json_ptr state = load(CMQ_DIR "/running.json");
        json_object_object_add(state.get(), "applied", json_object_new_int(1));
        json_object_object_add(state.get(), "config", json_object_get(member(load(old_file(1)).get(), "config")));
        save(state, CMQ_DIR "/running.json");
        std::filesystem::remove(old_file(2));
    }

    std::unique_ptr<server_process> server_;
    std::string before_;
};

TEST_F(confirmation, in_time_keeps_the_change)
{
    commit(1);
    EXPECT_TRUE(waits_for_confirmation());
    const tool_result confirmed = apconf("confirm");
    EXPECT_EQ(confirmed.status, 0) << confirmed.errors;
    EXPECT_EQ(confirmed.output, "message 2 is confirmed\n");
    EXPECT_FALSE(exists(record_path));
    pause_for(1500ms);
    EXPECT_EQ(hostname_of_server(), "unconfirmed");
    EXPECT_EQ(applied_by_server(), 2);
    EXPECT_FALSE(exists(bad_file(2)));
    start();
    EXPECT_EQ(hostname_of_server(), "unconfirmed");
}

TEST_F(confirmation, that_does_not_come_undoes_the_change_in_place)
{
    commit(1);
    pause_for(700ms);
    EXPECT_EQ(hostname_of_server(), "unconfirmed") << "it still had time";
    expect_undone(3);
    EXPECT_THAT(server_->log(),
                HasSubstr("message 2 was not confirmed within 1 s: the configuration before it is back"));
    EXPECT_EQ(hostname_in(old_file(2)), "unconfirmed") << "what was undone stays in the archive";
    const tool_result late = apconf("confirm");
    EXPECT_EQ(late.status, 1);
    EXPECT_EQ(late.errors, "apconf: there is nothing to confirm: no commit waits for it\n");
    start();
    EXPECT_EQ(configuration_of_server(), before_);
}

TEST_F(confirmation, without_anything_to_confirm_is_an_error)
{
    const tool_result result = apconf("confirm");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "apconf: there is nothing to confirm: no commit waits for it\n");
    server_->kill();
    EXPECT_EQ(apconf("confirm").status, 1);
    EXPECT_THAT(apconf("confirm").errors, HasSubstr("there is no configuration server"));
}

TEST_F(confirmation, can_be_asked_for_only_where_a_server_hears_it)
{
    server_->kill();
    const tool_result result = apconf("commit --confirm 5 -", change);
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, HasSubstr("there is no configuration server"));
    EXPECT_FALSE(exists(new_file(2)));
    for (const char *seconds : {"0", "-1", "86401", "soon"})
        EXPECT_EQ(apconf(std::string("commit --confirm ") + seconds + " -", change).status, 2) << seconds;
}

TEST_F(confirmation, of_one_commit_comes_before_another_commit)
{
    commit(30);
    const tool_result second = apconf("commit --confirm 5 -", R"({"config": {"wdt_cmd": {"status": "disable"}}})");
    EXPECT_EQ(second.status, 1);
    EXPECT_EQ(second.output, "");
    EXPECT_EQ(second.errors, "apconf: message 2 waits to be confirmed; 'apconf confirm' first\n");
    EXPECT_FALSE(exists(new_file(3)));
    ASSERT_EQ(apconf("confirm").status, 0);
    EXPECT_EQ(apconf("commit --confirm 5 -", R"({"config": {"wdt_cmd": {"status": "disable"}}})").output, "3\n");
}

TEST_F(confirmation, that_does_not_come_undoes_all_that_was_applied_since)
{
    commit(2);
    const tool_result other = apconf("commit -", R"({"config": {"wdt_cmd": {"status": "disable"}}})");
    EXPECT_EQ(other.output, "3\n");
    EXPECT_EQ(other.errors,
              "apconf: message 2 waits to be confirmed; unless it is, message 3 is undone together with it\n");
    EXPECT_EQ(apconf("set led_control_cmd status=off").errors, "");
    EXPECT_TRUE(eventually([] { return applied_by_server() == 3; }));
    EXPECT_THAT(configuration_of_server(), Not(HasSubstr(R"("wdt_cmd":{"status":"enable"})")));
    expect_undone(4);
    EXPECT_EQ(read_file(bad_file(3)), "undone: together with message 2\n");
    EXPECT_FALSE(exists(bad_file(4)));
    append(queued_hostname_message("afterwards"));
    raw_client().send_message(IO_MSG_APPLIED, "");
    EXPECT_TRUE(eventually([] { return hostname_of_server() == "afterwards"; })) << "it stays undone";
}

TEST_F(confirmation, time_goes_on_while_no_server_runs)
{
    commit(4);
    start();
    EXPECT_EQ(hostname_of_server(), "unconfirmed") << "there is time left";
    EXPECT_TRUE(waits_for_confirmation());
    EXPECT_EQ(applied_by_server(), 2);
    server_->kill();
    pause_for(4s);
    start();
    EXPECT_EQ(hostname_of_server(), "access-point") << "nobody may see what is to be undone";
    expect_undone(3);
}

TEST_F(confirmation, is_taken_by_the_next_server)
{
    commit(3);
    EXPECT_EQ(server_->terminate(SIGTERM), 0);
    start();
    EXPECT_EQ(apconf("confirm").output, "message 2 is confirmed\n");
    pause_for(3s);
    EXPECT_EQ(hostname_of_server(), "unconfirmed");
}

TEST_F(confirmation, comes_too_late_after_another_start_of_the_machine)
{
    commit(1000);
    server_->kill();
    rewrite_undo("boot", json_object_new_string("another"));
    start();
    EXPECT_EQ(hostname_of_server(), "access-point");
    expect_undone(3);
}

// A clock that counts from a later start has more to go than the whole time.
TEST_F(confirmation, does_not_trust_a_clock_that_gives_more_than_the_whole_time)
{
    commit(1000);
    server_->kill();
    const json_ptr record = load(record_path);
    const int64_t deadline = json_object_get_int64(member(member(record.get(), "undo"), "deadline"));
    rewrite_undo("deadline", json_object_new_int64(deadline + 2000000));
    start();
    expect_undone(3);
}

TEST_F(confirmation, is_not_expected_of_somebody_elses_message_with_the_same_number)
{
    commit(1000);
    server_->kill();
    // As a server leaves it that ended before it could queue the message: nothing but the record, without "undo".
    const json_ptr record = load(record_path);
    json_object_object_del(record.get(), "undo");
    json_object_object_add(record.get(), "number", json_object_new_int(3));
    save(record, record_path);
    start();
    EXPECT_FALSE(exists(record_path));
    server_->kill();

    save(record, record_path);
    ASSERT_EQ(append(queued_hostname_message("ordinary")), 3);
    start();
    EXPECT_TRUE(eventually([] { return applied_by_server() == 3; }));
    EXPECT_FALSE(waits_for_confirmation());
    EXPECT_FALSE(exists(record_path));
    EXPECT_EQ(hostname_of_server(), "ordinary");
}

// Killed between the record and the application, or between the application and its record.
TEST_F(confirmation, is_expected_of_a_message_that_is_applied_anew)
{
    for (const bool knew_how : {true, false}) {
        if (!knew_how) SetUp();
        commit(1000);
        server_->kill();
        const json_ptr record = load(record_path);
        json_object_object_add(record.get(), "seconds", json_object_new_int(1));
        if (!knew_how) json_object_object_del(record.get(), "undo");
        save(record, record_path);
        make_unapplied(json_ptr(json_object_get(member(record.get(), "message"))));
        start();
        ASSERT_EQ(hostname_of_server(), "unconfirmed");
        ASSERT_TRUE(waits_for_confirmation());
        expect_undone(3);
    }
}

TEST_F(confirmation, undo_is_queued_once_when_the_server_ends_right_after)
{
    commit(1);
    const std::string record = read_file(record_path);
    expect_undone(3);
    server_->kill();
    // The undo stands in the queue and is not fetched; the record is still there.
    const json_ptr undo = load(old_file(3));
    const json_ptr list(json_tokener_parse(R"([{".OPT":"noall"}])"));
    json_object_array_add(list.get(), json_object_get(member(undo.get(), "config")));
    json_object_object_add(undo.get(), "config", json_object_get(list.get()));
    save(undo, new_file(3));
    write_file(CMQ_CUR_INDEX, "3 ");
    const json_ptr state = load(CMQ_DIR "/running.json");
    json_object_object_add(state.get(), "applied", json_object_new_int(2));
    save(state, CMQ_DIR "/running.json");
    write_file(record_path, record);
    start();
    expect_undone(3);
}

TEST_F(confirmation, is_expected_although_the_client_left_at_once)
{
    ASSERT_TRUE(raw_client().send_message(static_cast<uint8_t>(message_type::commit), commit_request(1)));
    EXPECT_TRUE(eventually([] { return hostname_of_server() == "unconfirmed"; }));
    expect_undone(3);
}

TEST_F(confirmation, requests_that_make_no_sense_are_refused)
{
    const raw_client client;
    const std::string message = R"("message": {"ACTION": "set", "config": {}})";
    for (const std::string &request : {std::string("{}"), std::string("[]"), std::string("nothing"),
                                       "{" + message + "}", R"({"seconds": 0, )" + message + "}",
                                       R"({"seconds": 86401, )" + message + "}", R"({"seconds": "5", )" + message + "}",
                                       std::string(R"({"seconds": 5})"), std::string(R"({"seconds": 5, "message": 7})"),
                                       std::string(R"({"seconds": 5, "message": {"ACTION": "get", "config": {}}})")}) {
        const auto reply = client.request(static_cast<uint8_t>(message_type::commit), with_nul(request));
        ASSERT_TRUE(reply) << request;
        EXPECT_EQ(reply->code, static_cast<int>(reply_code::bad_message)) << request;
    }
    EXPECT_EQ(read_file(CMQ_MAX_INDEX), "2 ");
    EXPECT_FALSE(exists(record_path));
}

TEST_F(confirmation, damaged_record_is_reported_and_does_not_keep_the_server_from_starting)
{
    for (const char *damage : {"", "{", "[]", "{\"number\": 2}", R"({"number": 2, "message": {}, "undo": {}})"}) {
        server_->kill();
        write_file(record_path, damage);
        start();
        EXPECT_TRUE(server_->wait_for_log("unconfirmed.json' is damaged")) << damage;
        EXPECT_FALSE(waits_for_confirmation());
        EXPECT_EQ(configuration_of_server(), before_);
    }
}

TEST_F(confirmation, of_command_lines_is_the_same)
{
    const tool_result result = apconf("apply --confirm 1 -", "hostname unconfirmed\n");
    EXPECT_EQ(result.output, "2\n") << result.errors;
    EXPECT_EQ(hostname_of_server(), "unconfirmed");
    expect_undone(3);
}

// A queue on a small disk, which can be filled. Nothing here leaves the private namespace.
class confirmation_on_a_small_disk : public confirmation
{
protected:
    void SetUp() override
    {
        if (!in_private_namespace()) abort();
        make_fresh_machine();
        std::filesystem::create_directory(CMQ_DIR);
        if (mount("tmpfs", CMQ_DIR, "tmpfs", 0, "size=2m,mode=0700") != 0)
            GTEST_SKIP() << "this machine's test user mounts no tmpfs";
        mounted_ = true;
        install_start_configuration();
        start();
        ASSERT_TRUE(eventually([] { return applied_by_server() == 1; }));
        before_ = configuration_of_server();
    }
    void TearDown() override
    {
        server_.reset();
        if (mounted_) umount(CMQ_DIR);
    }

    static void fill()
    {
        const std::string block(4096, 'x');
        FILE *file = fopen(CMQ_DIR "/filling", "w");
        setbuf(file, nullptr);
        while (fwrite(block.data(), 1, block.size(), file) == block.size()) {
        }
        fclose(file);
    }
    static void make_room() { std::filesystem::remove(CMQ_DIR "/filling"); }

private:
    bool mounted_ = false;
};

TEST_F(confirmation_on_a_small_disk, commit_that_cannot_be_recorded_is_refused)
{
    fill();
    const tool_result result = apconf("commit --confirm 5 -", change);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "apconf: the message could not be queued: server failure\n");
    make_room();
    EXPECT_EQ(configuration_of_server(), before_);
    EXPECT_FALSE(exists(record_path));
    commit(1);
    expect_undone(3);
}

TEST_F(confirmation_on_a_small_disk, change_that_could_not_be_undone_is_not_applied)
{
    // The server ended when the message was in the queue. Now the way back does not fit.
    server_->kill();
    ASSERT_EQ(append(change_message("client")), 2);
    const json_ptr record(json_tokener_parse(commit_request(1).c_str()));
    json_object_object_add(record.get(), "number", json_object_new_int(2));
    save(record, record_path);
    fill();
    start();
    EXPECT_TRUE(server_->wait_for_log("cannot write '/tmp/cmessage_queue/unconfirmed.json'"));
    EXPECT_EQ(configuration_of_server(), before_) << "applied without a way back";
    make_room();
    EXPECT_TRUE(eventually([] { return hostname_of_server() == "unconfirmed"; }));
    EXPECT_TRUE(waits_for_confirmation());
    expect_undone(3);
}

TEST_F(confirmation_on_a_small_disk, change_is_undone_in_time_on_a_full_disk)
{
    commit(1);
    fill();
    EXPECT_TRUE(eventually([] { return hostname_of_server() == "access-point"; }));
    EXPECT_EQ(configuration_of_server(), before_);
    EXPECT_TRUE(exists(record_path)) << "forgotten before it is on disk";
    start();
    EXPECT_EQ(configuration_of_server(), before_) << "a restart brought it back";
    make_room();
    expect_undone(3);
}

// Whenever the server is killed, from the commit to after its deadline: in the end the configuration is the old one.
TEST_F(confirmation, survives_kills_at_any_moment)
{
    std::mt19937 random(7);
    for (int round = 0; round < 8; ++round) {
        ASSERT_TRUE(raw_client().send_message(static_cast<uint8_t>(message_type::commit), commit_request(1)));
        for (int kill = 0; kill < 4; ++kill) {
            // The first kills come within the work, the others anywhere.
            usleep(static_cast<useconds_t>(kill < 2 ? random() % 5000 : random() % 600000));
            start();
        }
        ASSERT_TRUE(eventually([] { return !exists(record_path); })) << "round " << round;
        ASSERT_TRUE(eventually([] { return applied_by_server() + 1 == get_message_index(CMQ_MAX_INDEX); }));
        ASSERT_EQ(configuration_of_server(), before_) << "round " << round;
        start();
        ASSERT_EQ(configuration_of_server(), before_) << "round " << round;
    }
    int undone = 0;
    for (int number = 2; number <= applied_by_server(); ++number) {
        const bool undo = module_in(old_file(number)) == "apconfd";
        undone += undo;
        EXPECT_EQ(configuration_in(old_file(number)) == configuration_in(old_file(1)), undo) << number;
    }
    EXPECT_GT(undone, 0);
}

}  // namespace

// docs/wire.md shows bytes; the library sends and writes exactly these.
#include <apconf/apconf.h>
#include <gtest/gtest.h>
#include <json-c/json.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>

#include "docs/document.h"
#include "host/reply_codes.h"
#include "support/log_capture.h"
#include "util/owners.h"

using namespace apconf_test;
namespace fs = std::filesystem;

namespace
{

constexpr const char *ssid_path = "/config/radio/bss/ssid_cmd";
constexpr const char *module_name = "wifi_ui";

const std::string &wire_document()
{
    static const std::string document = source_file("docs/wire.md");
    return document;
}

std::string shown(const std::string &label)
{
    return block(wire_document(), label);
}

std::string frame(const std::string &name)
{
    return bytes(wire_document(), name);
}

// A text as it travels: with its NUL.
std::string with_nul(const std::string &text)
{
    return text + '\0';
}

std::string file_text(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file.is_open()) << path;
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// Runs in a process of its own, whose request counter starts at 0 and whose module is the documentation's.
pid_t start_child(const std::function<void()> &action)
{
    const pid_t child = fork();
    if (child != 0) return child;
    strcpy(io_module, module_name);
    action();
    _exit(0);
}

void wait_for(pid_t child)
{
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

apconf::json_ptr parsed(const std::string &text)
{
    apconf::json_ptr value(json_tokener_parse(text.c_str()));
    EXPECT_TRUE(value) << text;
    return value;
}

void set_deadline(int fd)
{
    const timeval deadline = {20, 0};
    setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &deadline, sizeof deadline);
}

// The server's end of a client process's connection.
class client_process
{
public:
    explicit client_process(const std::function<void()> &action)
    {
        unlink(IO_SOCK_PATH);
        const apconf::unique_fd listener(init_io_sock(1, nullptr));
        child_ = start_child(action);
        pollfd readable = {listener.get(), POLLIN, 0};
        EXPECT_EQ(poll(&readable, 1, 20000), 1);
        fd_.reset(accept(listener.get(), nullptr, nullptr));
        set_deadline(fd_.get());
    }
    ~client_process()
    {
        fd_.reset();
        wait_for(child_);
    }
    client_process(const client_process &) = delete;
    client_process &operator=(const client_process &) = delete;

    std::string read(size_t size)
    {
        std::string data(size, '\0');
        const ssize_t count = recv(fd_.get(), data.data(), size, MSG_WAITALL);
        data.resize(count < 0 ? 0 : static_cast<size_t>(count));
        return data;
    }
    void write(const std::string &data) { EXPECT_EQ(::send(fd_.get(), data.data(), data.size(), 0), std::ssize(data)); }
    int fd() const { return fd_.get(); }

private:
    apconf::unique_fd fd_;
    pid_t child_ = -1;
};

void expect_request(client_process &client, const std::string &header, const std::string &text)
{
    EXPECT_EQ(client.read(IO_MSG_HEADER_SIZE), frame(header)) << header;
    const std::string data = with_nul(shown(text));
    EXPECT_EQ(client.read(data.size()), data) << text;
}

void talk_as_documented()
{
    const char *const instance = R"({"radio_id":"0","wlan_id":"1"})";
    init_cmclient(nullptr, module_name);
    send_cpath_cmd_str("set", ssid_path, R"({"radio_id":"0","wlan_id":"1","ssid":"guests"})", nullptr);
    send_cpath_cmd_str("no", ssid_path, instance, nullptr);
    send_cpath_cmd_str("get", ssid_path, instance, nullptr);
    send_io_notify(IO_MSG_APPLIED, nullptr, 0);
    deinit_cmclient();
}

class wire : public testing::Test
{
protected:
    log_capture log_;  // keeps the library's lines off the system log
};

class queue_files : public wire
{
protected:
    void SetUp() override
    {
        fs::remove_all(CMQ_DIR);
        fs::remove(CMQ_START_CONFIG);
        for (const char *directory : {CMQ_NEW_DIR, CMQ_OLD_DIR, CMQ_BAD_DIR}) fs::create_directories(directory);
    }
    void TearDown() override
    {
        fs::remove_all(CMQ_DIR);
        fs::remove(CMQ_START_CONFIG);
    }

    static void put_start_configuration()
    {
        fs::create_directories("/etc/config");
        std::ofstream(CMQ_START_CONFIG) << source_file("etc/start_config.json");
    }
    static std::string new_file(int index) { return std::string(CMQ_NEW_DIR "/") + std::to_string(index) + ".json"; }
};

}  // namespace

TEST_F(wire, a_conversation_is_byte_for_byte_as_shown)
{
    client_process client(talk_as_documented);
    const std::string registration = frame("register-request");
    EXPECT_EQ(client.read(registration.size()), registration);
    client.write(frame("register-reply"));
    expect_request(client, "set-header", "json set-message");
    expect_request(client, "no-header", "json no-message");
    expect_request(client, "get-header", "json get-message");
    client.write(frame("get-reply-header") + with_nul(shown("json get-answer")));
    EXPECT_EQ(client.read(IO_MSG_HEADER_SIZE), frame("applied-notification"));
    EXPECT_EQ(client.read(IO_MSG_HEADER_SIZE), frame("unregister-notification"));
    EXPECT_EQ(client.read(1), "") << "the connection is closed";
}

TEST_F(wire, replies_are_byte_for_byte_as_shown)
{
    int ends[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
    const apconf::unique_fd server(ends[0]), client(ends[1]);
    const std::string answer = with_nul(shown("json get-answer"));
    ASSERT_EQ(send_io_reply(server.get(), 0, nullptr, 0), 0);
    ASSERT_EQ(send_io_reply(server.get(), 0, answer.data(), static_cast<uint32_t>(answer.size())), 0);
    ASSERT_EQ(send_io_reply(server.get(), 4, nullptr, 0), 0);
    const std::string expected = frame("register-reply") + frame("get-reply-header") + answer + frame("refusing-reply");
    std::string sent(expected.size() + 1, '\0');
    sent.resize(static_cast<size_t>(recv(client.get(), sent.data(), sent.size(), 0)));
    EXPECT_EQ(sent, expected);
}

TEST_F(wire, a_request_brings_a_descriptor_of_its_connection_and_a_reply_none)
{
    client_process client([] {
        init_cmclient(nullptr, module_name);
        deinit_cmclient();
    });
    int brought = -1;
    int closed = 0;
    free(recv_io_msg(client.fd(), &brought, &closed));
    const apconf::unique_fd descriptor(brought);
    ASSERT_TRUE(descriptor) << "the registration brought none";
    // What is written to the client's own end arrives here.
    ASSERT_EQ(send(descriptor.get(), "x", 1, 0), 1);
    EXPECT_EQ(client.read(1), "x");
    client.write(frame("register-reply"));

    int ends[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
    const apconf::unique_fd sender(ends[0]), receiver(ends[1]);
    ASSERT_EQ(send_io_reply(sender.get(), 0, nullptr, 0), 0);
    brought = 0;
    free(recv_io_msg(receiver.get(), &brought, &closed));
    EXPECT_EQ(brought, -1);
}

TEST_F(wire, the_answer_shown_is_what_the_get_message_shown_yields)
{
    fs::copy_file(APCONF_SOURCE_DIR "/etc/config_cmd_tree.xml", "/etc/config_cmd_tree.xml",
                  fs::copy_options::overwrite_existing);
    register_root_cmd(lib_pkg_root);
    ASSERT_EQ(command_tree_parser(), 0);
    init_cmd_tree_data();
    apconf::heap_text ssid(strdup("guests"));
    root.config.radio[0].bss[1].ssid_cmd.ssid = ssid.get();

    const apconf::json_ptr message = parsed(shown("json get-message"));
    cmesage_info info;
    ASSERT_EQ(get_cmesage_info(message.get(), &info), 0);
    apconf::json_ptr answer;
    lookup_ctx lookup = {};
    ASSERT_EQ(cmessage_parser(&info, answer.out(), 0, &lookup), 0);
    EXPECT_EQ(json_object_to_json_string_ext(answer.get(), JSON_C_TO_STRING_PLAIN), shown("json get-answer"));

    root.config.radio[0].bss[1].ssid_cmd.ssid = nullptr;
}

TEST_F(queue_files, index_files_are_byte_for_byte_as_shown)
{
    EXPECT_EQ(cmq_init(), -1);
    EXPECT_EQ(file_text(CMQ_CUR_INDEX), frame("index-1"));
    EXPECT_EQ(file_text(CMQ_MAX_INDEX), frame("index-1"));
    EXPECT_EQ(set_message_index(CMQ_MAX_INDEX, 12), 12);
    EXPECT_EQ(file_text(CMQ_MAX_INDEX), frame("index-12"));
}

TEST_F(queue_files, a_queued_message_is_written_as_shown)
{
    cmq_init();
    const apconf::json_ptr message =
        parsed(R"({"MODULE":"wifi_ui","ACTION":"set","config":{"hostname_cmd":{"hostname":"floor2/ap7"}}})");
    ASSERT_EQ(cmq_handle_cmessage(cmq_put_cmessage, message.get()), 1);
    EXPECT_EQ(file_text(new_file(1)), shown("json queued-message"));
}

TEST_F(queue_files, a_commit_queues_the_message_shown)
{
    cmq_init();
    wait_for(start_child([] {
        init_cmd_tree_data();
        root.config.radio[0].bss[1].ssid_cmd.ssid = strdup("guests");
        apply_cmd_tree_data();
    }));
    EXPECT_EQ(file_text(new_file(1)), shown("json committed-message"));
}

TEST_F(queue_files, a_fresh_queue_gets_the_start_configuration_as_message_1)
{
    put_start_configuration();
    EXPECT_EQ(cmq_init(), 1);
    int index = 0;
    const apconf::json_ptr message(cmq_fetch_a_message(&index));
    EXPECT_TRUE(message);
    EXPECT_EQ(index, 1);
}

TEST_F(queue_files, messages_without_index_files_keep_the_start_configuration_from_being_fetched)
{
    put_start_configuration();
    std::ofstream(new_file(7)) << "{}";
    EXPECT_EQ(cmq_init(), 8);
    EXPECT_EQ(get_message_index(CMQ_CUR_INDEX), 8);
    EXPECT_EQ(get_message_index(CMQ_MAX_INDEX), 9);
    EXPECT_TRUE(fs::exists(new_file(1)));
    int index = 0;
    EXPECT_FALSE(apconf::json_ptr(cmq_fetch_a_message(&index)));
    EXPECT_EQ(get_message_index(CMQ_CUR_INDEX), 9);
}

TEST(reply_codes, are_those_of_the_host)
{
    const std::string header = source_file("host/reply_codes.h");
    const std::string numbers = between(header, "enum class reply_code", "};");
    table expected;
    for (const auto &row : matches(numbers, "([a-z_]+) = ([0-9]+),")) {
        const auto code = static_cast<apconf_host::reply_code>(std::stoi(row[2]));
        expected.push_back({row[2], row[1], apconf_host::describe(code)});
    }
    ASSERT_FALSE(expected.empty());
    table documented;
    for (const auto &row : table_below(wire_document(), "## Reply codes of the reference server"))
        documented.push_back({row.begin(), row.begin() + 3});
    EXPECT_EQ(documented, expected);
}

TEST(message_types, are_those_of_the_host)
{
    const std::string numbers = between(source_file("host/message_types.h"), "enum class message_type", "};");
    table expected;
    for (const auto &row : matches(numbers, "([a-z_]+) = ([0-9]+)")) expected.push_back({row[2], row[1]});
    ASSERT_FALSE(expected.empty());
    EXPECT_EQ(expected.front().front(), std::to_string(IO_MSG_HOST_FIRST));
    table documented;
    for (const auto &row : table_below(wire_document(), "## Messages of the reference server"))
        documented.push_back({row.begin(), row.begin() + 2});
    EXPECT_EQ(documented, expected);
}

namespace
{

// A limit's initialiser as the documentation writes it: "4u << 20" is "4 MiB", "5s" is "5 s".
std::string in_words(const std::string &value)
{
    for (const auto &size : matches(value, "^([0-9]+)u << (10|20)$"))
        return size[1] + (size[2] == "20" ? " MiB" : " KiB");
    for (const auto &time : matches(value, "^([0-9]+)(m?s)$")) return time[1] + " " + time[2];
    return value;
}

}  // namespace

TEST(limits, are_those_of_the_host)
{
    const std::string header = source_file("host/server/limits.h");
    table expected;
    for (const auto &limit : matches(header, "constexpr [^ ]+ ([a-z_]+) = ([^;]+);"))
        expected.push_back({limit[1], in_words(limit[2])});
    ASSERT_FALSE(expected.empty());
    table documented;
    for (const auto &row : table_below(wire_document(), "## Limits of the reference server"))
        documented.push_back({row.begin(), row.begin() + 2});
    EXPECT_EQ(documented, expected);
}

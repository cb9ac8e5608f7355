// The example programs do what their texts promise: the client against the server, the owner against the queue.
#include <apconf/cmq.h>
#include <apconf/io_sock.h>
#include <gtest/gtest.h>
#include <json-c/json.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

namespace fs = std::filesystem;

namespace
{

class examples : public testing::Test
{
protected:
    void SetUp() override
    {
        fs::copy_file(APCONF_SOURCE_DIR "/etc/config_cmd_tree.xml", "/etc/config_cmd_tree.xml",
                      fs::copy_options::overwrite_existing);
        fs::remove(IO_SOCK_PATH);
    }
    void TearDown() override
    {
        if (server_ <= 0) return;
        kill(server_, SIGTERM);
        waitpid(server_, nullptr, 0);
    }

    void start_server()
    {
        server_ = fork();
        if (server_ == 0) {
            execl("/bin/sh", "sh", "-c", "exec " EXAMPLE_SERVER, nullptr);
            _exit(127);
        }
        for (int i = 0; i < 500 && !fs::exists(IO_SOCK_PATH); i++) usleep(20000);
        ASSERT_TRUE(fs::exists(IO_SOCK_PATH));
    }

    struct result {
        int status;
        std::string output;
    };
    // The server may be bound and not listening yet, so the first attempt may be refused.
    static result run_client(const std::string &ssid)
    {
        result last = {};
        for (int i = 0; i < 100; i++) {
            last = run_client_once(ssid);
            if (!last.output.empty()) break;
            usleep(20000);
        }
        return last;
    }

private:
    static result run_client_once(const std::string &ssid)
    {
        result answer = {-1, ""};
        FILE *const pipe = popen((EXAMPLE_CLIENT " '" + ssid + "' 2>/dev/null").c_str(), "r");
        if (!pipe) return answer;
        std::array<char, 256> line;
        while (fgets(line.data(), line.size(), pipe)) answer.output += line.data();
        answer.status = WEXITSTATUS(pclose(pipe));
        return answer;
    }

    pid_t server_ = -1;
};

}  // namespace

TEST_F(examples, the_client_sets_the_ssid_and_reads_it_back)
{
    start_server();
    const result first = run_client("lobby/1");
    EXPECT_EQ(first.output, "ssid: lobby/1\n");
    EXPECT_EQ(first.status, 0);
}

TEST_F(examples, a_text_that_the_schema_refuses_leaves_the_old_one)
{
    start_server();
    run_client("lobby");
    const result second = run_client("a text of more than thirty-two characters");
    EXPECT_EQ(second.output, "ssid: lobby\n");
    EXPECT_EQ(second.status, 1);
}

TEST_F(examples, the_owner_commits_one_message)
{
    fs::remove_all(CMQ_DIR);
    for (const char *directory : {CMQ_NEW_DIR, CMQ_OLD_DIR, CMQ_BAD_DIR}) fs::create_directories(directory);
    cmq_init();
    ASSERT_EQ(system(EXAMPLE_OWNER " >/tmp/output 2>/dev/null"), 0);
    std::string printed;
    std::getline(std::ifstream("/tmp/output"), printed);
    EXPECT_EQ(printed, "message 1");
    json_object *const message = json_object_from_file(CMQ_NEW_DIR "/1.json");
    EXPECT_STREQ(json_object_to_json_string_ext(message, JSON_C_TO_STRING_PLAIN),
                 R"({"config":{"radio":{"INDEX":{"radio_id":"1"},"channel_cmd":{"channel":"44"}},)"
                 R"("hostname_cmd":{"hostname":"lobby"}},"MODULE":"owner","ACTION":"set"})");
    json_object_put(message);
}

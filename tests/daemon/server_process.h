// A real apconfd under test, on the system's own paths, and the raw client that talks to it.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "support/lines.h"

namespace apconf_test
{

using namespace std::chrono_literals;

// Files, as the tests need them. Missing ones read as empty.
std::string read_file(const std::string &path);
void write_file(const std::string &path, const std::string &text);
bool exists(const std::string &path);

// A machine as before the first boot: vocabulary in /etc, nothing in /tmp, no start configuration.
void make_fresh_machine();
void install_start_configuration();

// Starts the process in the foreground with its log in a file. Ends it with SIGKILL when it is destroyed.
class server_process
{
public:
    explicit server_process(const std::vector<std::string> &arguments = {});
    ~server_process();
    server_process(const server_process &) = delete;
    server_process &operator=(const server_process &) = delete;

    pid_t pid() const { return pid_; }
    bool wait_until_serving(std::chrono::milliseconds limit = 20s);
    void kill();                       // SIGKILL
    int terminate(int signal_number);  // the exit status, or -1 when it died of a signal
    std::optional<int> exit_status();  // waits for an end of its own accord
    std::string log() const;           // of this process, and of those before it in this test
    bool wait_for_log(const std::string &text, std::chrono::milliseconds limit = 20s) const;
    size_t descriptors() const;
    size_t resident_kilobytes() const;

private:
    pid_t pid_ = -1;
};

// Runs apconfd to its end. Standard output and error go to `output`.
int run_to_end(const std::vector<std::string> &arguments, std::string *output = nullptr);

struct received_reply {
    int code;
    std::string data;  // with its NUL
};

// A connection without the client library: it can misbehave.
class raw_client
{
public:
    raw_client();  // connects; see connected()
    ~raw_client();
    raw_client(raw_client &&other) noexcept;
    raw_client(const raw_client &) = delete;
    raw_client &operator=(const raw_client &) = delete;

    bool connected() const { return fd_ >= 0; }
    int fd() const { return fd_; }
    bool send_bytes(const std::string &bytes) const;
    bool send_message(uint8_t type, const std::string &data) const;
    std::optional<received_reply> receive(std::chrono::milliseconds limit = 10s) const;
    std::optional<received_reply> request(uint8_t type, const std::string &data) const;
    bool is_closed_by_server(std::chrono::milliseconds limit) const;
    void finish_sending() const;

private:
    int fd_ = -1;
};

// The text with the NUL that goes over the wire, and the frame of a message.
std::string with_nul(const std::string &text);
std::string frame(uint8_t type, uint32_t data_len, const std::string &data);

std::string get_message(const std::string &path);
std::string set_message(const std::string &path, const std::string &param);
std::string set_hostname_message(const std::string &hostname);
std::string queued_hostname_message(const std::string &hostname, const std::string &module = "tester");

// Asks the server; empty when it has no hostname or does not answer.
std::string hostname_of_server();

// The whole configuration as the server answers it.
std::string configuration_of_server();

// The hostname in a file that holds a configuration, empty when there is none.
std::string hostname_in(const std::string &path);

// Appends to the queue as producers do. The index it got.
int append(const std::string &message);

// Waits until a condition holds.
template <typename Condition>
bool eventually(Condition condition, std::chrono::milliseconds limit = 20s);

void pause_for(std::chrono::milliseconds duration);

template <typename Condition>
bool eventually(Condition condition, std::chrono::milliseconds limit)
{
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        pause_for(5ms);
    }
    return true;
}

}  // namespace apconf_test

// The processes at the other end of a connection.
#pragma once

#include <json-c/json.h>
#include <sys/types.h>

namespace apconf_bench
{

// Pins this process, and so all that it starts, to the CPU that it runs on.
void pin_to_one_cpu();

// A process started here; it ends with this object.
class child_process
{
public:
    explicit child_process(pid_t pid) : pid_(pid) {}
    ~child_process();
    child_process(const child_process &) = delete;
    child_process &operator=(const child_process &) = delete;

    bool is_running() const;
    double cpu_seconds() const;

private:
    pid_t pid_;
};

double own_cpu_seconds();

// Starts the program of a command line whose last element is null.
pid_t start_program(char **command_line);

// Starts a server made of the library alone: it listens on `socket_path` and answers gets of what the schema knows,
// with `hostname` as the one value that is set. One client at a time.
pid_t start_library_server(const char *socket_path, const char *hostname);

// Connects this process to a server that is being started.
int connect_when_ready(const child_process &server, const char *socket_path);

// Starts a process that reads JSON texts from `fd` and answers each with `answer`.
pid_t start_echo(int fd, json_object *answer);

// One message of the limit: a header's worth of bytes and the text with its NUL, in one write. False: not sent whole.
bool send_text(int fd, json_object *message);

// Reads one message in one read and parses its text. The caller owns it; null: the other end is gone.
json_object *receive_text(int fd);

}  // namespace apconf_bench

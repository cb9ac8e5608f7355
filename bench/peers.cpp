#include "bench/peers.h"

#include <apconf/apconf.h>
#include <fcntl.h>
#include <sched.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace apconf_bench
{
namespace
{

constexpr int start_attempts = 500;
constexpr useconds_t start_pause = 10'000;

[[noreturn]] void give_up(const char *what)
{
    perror(what);
    _exit(1);
}

void answer_get(int client, const char *text)
{
    json_object *const message = json_tokener_parse(text);
    json_object *answer = nullptr;
    lookup_ctx lookup = {};
    cmesage_info info;
    const bool answered = get_cmesage_info(message, &info) == 0 && cmessage_parser(&info, &answer, 0, &lookup) == 0;
    const char *const reply = json_object_to_json_string_ext(answer, JSON_C_TO_STRING_PLAIN);
    send_io_reply(client, answered ? 0 : 1, reply, static_cast<uint32_t>(strlen(reply) + 1));
    json_object_put(answer);
    json_object_put(message);
}

void serve(int client)
{
    int closed = 0;
    while (!closed) {
        int passed = -1;
        io_msg *const message = recv_io_msg(client, &passed, &closed);
        if (passed >= 0) close(passed);
        if (message && message->type == IO_MSG_REGISTER) send_io_reply(client, 0, nullptr, 0);
        if (message && message->type == IO_MSG_GET) answer_get(client, message->data);
        free(message);
    }
    close(client);
}

pid_t start_child()
{
    const pid_t parent = getpid();
    const pid_t pid = fork();
    if (pid < 0) give_up("fork");
    // It ends with its parent, however that ends.
    if (pid == 0 && (prctl(PR_SET_PDEATHSIG, SIGTERM) < 0 || getppid() != parent)) _exit(1);
    return pid;
}

double seconds_of(clockid_t clock)
{
    timespec time;
    if (clock_gettime(clock, &time) < 0) give_up("clock_gettime");
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

}  // namespace

void pin_to_one_cpu()
{
    cpu_set_t cpus;
    CPU_ZERO(&cpus);
    CPU_SET(static_cast<size_t>(sched_getcpu()), &cpus);
    if (sched_setaffinity(0, sizeof cpus, &cpus) < 0) give_up("sched_setaffinity");
}

double own_cpu_seconds()
{
    return seconds_of(CLOCK_PROCESS_CPUTIME_ID);
}

child_process::~child_process()
{
    if (pid_ <= 0) return;
    kill(pid_, SIGTERM);
    waitpid(pid_, nullptr, 0);
}

bool child_process::is_running() const
{
    return pid_ > 0 && waitpid(pid_, nullptr, WNOHANG) == 0;
}

double child_process::cpu_seconds() const
{
    clockid_t clock;
    if (clock_getcpuclockid(pid_, &clock) != 0) give_up("clock_getcpuclockid");
    return seconds_of(clock);
}

pid_t start_program(char **command_line)
{
    const pid_t pid = start_child();
    if (pid != 0) return pid;
    setenv("LD_PRELOAD", APCONF_BENCH_MASKED_LOG, 1);
    execv(command_line[0], command_line);
    give_up(command_line[0]);
}

pid_t start_library_server(const char *socket_path, const char *hostname)
{
    const pid_t pid = start_child();
    if (pid != 0) return pid;
    register_root_cmd(lib_pkg_root);
    if (command_tree_parser() != 0) give_up("the command tree does not load");
    init_cmd_tree_data();
    root.config.hostname_cmd.hostname = strdup(hostname);
    unlink(socket_path);
    const int listening = init_io_sock(1, socket_path);
    if (listening < 0) give_up(socket_path);
    fcntl(listening, F_SETFL, fcntl(listening, F_GETFL) & ~O_NONBLOCK);
    for (;;) serve(accept(listening, nullptr, nullptr));
}

int connect_when_ready(const child_process &server, const char *socket_path)
{
    for (int attempt = 0; attempt < start_attempts && server.is_running(); ++attempt) {
        const int connection = init_cmclient(socket_path, "bench");
        if (connection >= 0) return connection;
        usleep(start_pause);
    }
    give_up("the server does not answer");
}

pid_t start_echo(int fd, json_object *answer)
{
    const pid_t pid = start_child();
    if (pid != 0) return pid;
    while (json_object *const request = receive_text(fd)) {
        if (!send_text(fd, answer)) break;
        json_object_put(request);
    }
    _exit(0);
}

bool send_text(int fd, json_object *message)
{
    io_msg header = {};
    const char *const text = json_object_to_json_string_ext(message, JSON_C_TO_STRING_PLAIN);
    const iovec parts[] = {{&header, IO_MSG_HEADER_SIZE}, {const_cast<char *>(text), strlen(text) + 1}};
    return writev(fd, parts, 2) == static_cast<ssize_t>(parts[0].iov_len + parts[1].iov_len);
}

json_object *receive_text(int fd)
{
    char message[4096];
    const ssize_t length = read(fd, message, sizeof message - 1);
    if (length <= IO_MSG_HEADER_SIZE) return nullptr;
    message[length] = '\0';
    return json_tokener_parse(message + IO_MSG_HEADER_SIZE);
}

}  // namespace apconf_bench

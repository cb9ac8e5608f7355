// One get of one command over the socket, both processes on one CPU, against the same bytes sent back and forth with a
// JSON parse and a serialisation at both ends. The server is one made of the library alone and, beside it, the program
// that the command line names.
#include <apconf/apconf.h>
#include <json-c/json.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "bench/pair.h"
#include "bench/peers.h"

namespace
{

using namespace apconf_bench;

constexpr double goal = 1.5;
constexpr char own_socket_path[] = "/tmp/bench_round_trip_sock";
constexpr char cpath[] = "config/hostname_cmd";
constexpr char hostname[] = "access-point";
constexpr char set_param[] = R"({"hostname":"access-point"})";
constexpr int trips_per_iteration = 100;
constexpr benchmark::IterationCount iterations = 50;

[[noreturn]] void give_up(const char *what)
{
    fprintf(stderr, "%s\n", what);
    exit(1);
}

// A connected server and its limit: the process that only echoes.
struct peer {
    peer(const std::string &server_name, pid_t pid) : name(server_name), server(pid) {}

    std::string name;
    child_process server;
    int connection = -1;
    int echo_socket = -1;
    std::unique_ptr<child_process> echo;
    json_object *request = nullptr;  // what the client sends, for the limit
};

json_object *get_once()
{
    io_msg *reply = nullptr;
    if (send_cpath_cmd_obj("get", cpath, nullptr, &reply) != 0 || !reply) return nullptr;
    json_object *const answer = json_tokener_parse(reply->data);
    free(reply);
    return answer;
}

// The answer of the first get, once it is the expected one.
json_object *expected_answer()
{
    json_object *const answer = get_once();
    const char *const text = json_object_to_json_string_ext(answer, JSON_C_TO_STRING_PLAIN);
    if (strcmp(text, R"({"config":{"hostname_cmd":{"hostname":"access-point"}}})") == 0) return answer;
    fprintf(stderr, "unexpected answer: %s\n", text);
    exit(1);
}

json_object *new_request()
{
    json_object *const body = json_object_new_object();
    json_object_object_add(body, "path", json_object_new_string(cpath));
    json_object *const request = json_object_new_object();
    json_object_object_add(request, "MODULE", json_object_new_string(get_io_module()));
    json_object_object_add(request, "ACTION", json_object_new_string("get"));
    json_object_object_add(request, "CPATH", body);
    return request;
}

void start_limit(peer &peer, json_object *answer)
{
    int sockets[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets) < 0) give_up("socketpair");
    peer.echo_socket = sockets[0];
    peer.echo = std::make_unique<child_process>(start_echo(sockets[1], answer));
    close(sockets[1]);
    peer.request = new_request();
}

// The time is what both processes used of their one CPU: that is how long the trips took, less what other programs of
// the machine took in between.
template <typename Trip>
void run_trips(benchmark::State &state, const child_process &other_end, Trip trip)
{
    const auto used = [&] { return own_cpu_seconds() + other_end.cpu_seconds(); };
    for (auto _ : state) {
        const double start = used();
        for (int i = 0; i < trips_per_iteration; ++i) {
            json_object *const answer = trip();
            if (!answer) state.SkipWithError("no answer");
            json_object_put(answer);
        }
        state.SetIterationTime((used() - start) / trips_per_iteration);
    }
}

void get(benchmark::State &state, const peer &peer)
{
    io_sockfd = peer.connection;
    run_trips(state, peer.server, get_once);
}

void echo(benchmark::State &state, const peer &peer)
{
    run_trips(state, *peer.echo, [&]() -> json_object * {
        return send_text(peer.echo_socket, peer.request) ? receive_text(peer.echo_socket) : nullptr;
    });
}

void add(peer &peer, const char *socket_path)
{
    peer.connection = connect_when_ready(peer.server, socket_path);
    if (send_cpath_cmd_str("set", cpath, set_param, nullptr) != 0) give_up("the command cannot be set");
    start_limit(peer, expected_answer());
    add_pair(
        "get over the socket, " + peer.name, goal, [&peer](benchmark::State &state) { get(state, peer); },
        [&peer](benchmark::State &state) { echo(state, peer); },
        [](auto *benchmark) { benchmark->UseManualTime()->Iterations(iterations)->Unit(benchmark::kMicrosecond); });
}

}  // namespace

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    argv[argc] = nullptr;  // it takes its own arguments out, but leaves the end where it was
    pin_to_one_cpu();

    peer library("library alone", start_library_server(own_socket_path, hostname));
    add(library, own_socket_path);
    std::unique_ptr<peer> program;
    if (argc > 1) {
        const char *const slash = strrchr(argv[1], '/');
        program = std::make_unique<peer>(slash ? slash + 1 : argv[1], start_program(argv + 1));
        add(*program, IO_SOCK_PATH);
    }
    benchmark::RunSpecifiedBenchmarks();
}

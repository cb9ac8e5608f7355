// Appending a message to the queue against writing the same file into the same directory without the queue. And, since
// a small message costs less than what numbers it, against the file and the system calls on the index file that
// numbering takes.
#include <apconf/cmq.h>
#include <fcntl.h>
#include <json-c/json.h>
#include <sys/file.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "bench/pair.h"
#include "bench/queue.h"

namespace
{

using namespace apconf_bench;

constexpr double goal = 1.3;
constexpr double goal_beside_calls = 1.1;
constexpr int first_index = 1;
// Fixed, so that the files of a run can be removed outside of its time.
constexpr benchmark::IterationCount messages_per_run = 2000;

void start_empty(const benchmark::State &)
{
    empty_queue();
}

void append(benchmark::State &state, json_object *message)
{
    int expected = first_index;
    for (auto _ : state)
        if (cmq_handle_cmessage(cmq_put_cmessage, message) != expected++) state.SkipWithError("not appended");
}

void write_file(benchmark::State &state, json_object *message)
{
    int index = first_index;
    for (auto _ : state) {
        if (!write_message(index++, message)) state.SkipWithError("not written");
    }
}

void write_file_and_number(benchmark::State &state, json_object *message)
{
    for (auto _ : state) {
        const int file = open(CMQ_MAX_INDEX, O_RDWR | O_CLOEXEC);
        flock(file, LOCK_EX);
        char text[16] = {};
        if (pread(file, text, sizeof text - 1, 0) <= 0) state.SkipWithError("no number");
        const int index = atoi(text);
        if (!write_message(index, message)) state.SkipWithError("not written");
        const int length = snprintf(text, sizeof text, "%d ", index + 1);
        if (pwrite(file, text, static_cast<size_t>(length), 0) != length) state.SkipWithError("no next number");
        flock(file, LOCK_UN);
        close(file);
    }
}

json_object *load(const char *path)
{
    json_object *const message = json_object_from_file(path);
    if (message) return message;
    fprintf(stderr, "cannot read %s\n", path);
    exit(1);
}

using writer = void(benchmark::State &, json_object *);

void add(const std::string &name, json_object *message, double wanted, writer *limit)
{
    const auto size = strlen(json_object_to_json_string_ext(message, JSON_C_TO_STRING_PRETTY));
    add_pair(
        "append " + name + ", " + std::to_string(size) + " bytes", wanted,
        [message](benchmark::State &state) { append(state, message); },
        [message, limit](benchmark::State &state) { limit(state, message); },
        [](auto *benchmark) {
            benchmark->Iterations(messages_per_run)->Setup(start_empty)->Teardown(start_empty);
            benchmark->Unit(benchmark::kMicrosecond);
        });
}

}  // namespace

int main(int argc, char **argv)
{
    json_object *const command =
        json_tokener_parse(R"({"MODULE":"apconf","ACTION":"set","config":{"hostname_cmd":{"hostname":"ap"}}})");
    add("a whole configuration", load(CMQ_START_CONFIG), goal, write_file);
    add("a single command", command, goal, write_file);
    add("a single command (limit: with the calls on the index)", command, goal_beside_calls, write_file_and_number);

    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
}

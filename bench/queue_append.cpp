// Appending a message to the queue against writing the same file into the same directory without the queue.
#include <apconf/cmq.h>
#include <json-c/json.h>
#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#include "bench/pair.h"

namespace
{

constexpr double goal = 1.3;
constexpr int first_index = 1;
// Fixed, so that the files of a run can be removed outside of its time.
constexpr benchmark::IterationCount messages_per_run = 2000;

void empty_queue(const benchmark::State &)
{
    std::filesystem::remove_all(CMQ_DIR);
    for (const char *path : {CMQ_DIR, CMQ_NEW_DIR}) mkdir(path, 0700);
    set_message_index(CMQ_CUR_INDEX, first_index);
    set_message_index(CMQ_MAX_INDEX, first_index);
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
        char path[64];
        snprintf(path, sizeof path, CMQ_NEW_DIR "/%d.json", index++);
        if (json_object_to_file_ext(path, message, JSON_C_TO_STRING_PRETTY) != 0) state.SkipWithError("not written");
    }
}

json_object *load(const char *path)
{
    json_object *const message = json_object_from_file(path);
    if (message) return message;
    fprintf(stderr, "cannot read %s\n", path);
    exit(1);
}

void add(const std::string &name, json_object *message)
{
    const auto size = strlen(json_object_to_json_string_ext(message, JSON_C_TO_STRING_PRETTY));
    apconf_bench::add_pair(
        "append " + name + ", " + std::to_string(size) + " bytes", goal,
        [message](benchmark::State &state) { append(state, message); },
        [message](benchmark::State &state) { write_file(state, message); },
        [](auto *benchmark) {
            benchmark->Iterations(messages_per_run)->Setup(empty_queue)->Teardown(empty_queue);
            benchmark->Unit(benchmark::kMicrosecond);
        });
}

}  // namespace

int main(int argc, char **argv)
{
    add("a whole configuration", load(CMQ_START_CONFIG));
    add("a single command",
        json_tokener_parse(R"({"MODULE":"apconf","ACTION":"set","config":{"hostname_cmd":{"hostname":"ap"}}})"));

    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
}

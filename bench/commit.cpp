// Commits against what they consist of. One that changes nothing: a comparison and a copy of the whole block, and a
// message file. One that changes everything: the same message, built, written and released with json-c alone.
#include <apconf/apconf.h>
#include <json-c/json.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "bench/bare_json.h"
#include "bench/pair.h"
#include "bench/peers.h"
#include "bench/queue.h"
#include "tests/store/batch.h"

namespace
{

using namespace apconf_bench;
using apconf_test::batch;

constexpr double unchanged_goal = 2.0;
constexpr double everything_goal = 1.5;
constexpr char socket_path[] = "/tmp/bench_commit_sock";

void commit_batch(benchmark::State &state)
{
    if (apply_cmd_tree_data() != 0 || apconf_committed_index() < 0) state.SkipWithError("not committed");
}

void commit_nothing(benchmark::State &state)
{
    for (auto _ : state) commit_batch(state);
}

void compare_copy_and_write(benchmark::State &state, json_object *message)
{
    int index = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(memcmp(&root, &mirror_root, sizeof root));
        benchmark::ClobberMemory();
        memcpy(&root, &mirror_root, sizeof root);
        benchmark::ClobberMemory();
        if (!write_message(++index, message)) state.SkipWithError("not written");
    }
}

void commit_everything(benchmark::State &state)
{
    batch everything(batch::extent::everything);
    for (auto _ : state) {
        state.PauseTiming();
        everything.fill();
        state.ResumeTiming();
        commit_batch(state);
        state.PauseTiming();
        everything.release_rest();
        state.ResumeTiming();
    }
}

void build_and_write(benchmark::State &state, const bare_message &message)
{
    int index = 0;
    for (auto _ : state) {
        json_object *const built = message.build();
        if (!write_message(++index, built)) state.SkipWithError("not written");
        json_object_put(built);
    }
}

// What a commit of what `root` holds queues. The caller owns it.
json_object *committed_message()
{
    apply_cmd_tree_data();
    json_object *const message = json_object_from_file(message_path(apconf_committed_index()).c_str());
    if (message) return message;
    fprintf(stderr, "a commit queued no message\n");
    exit(1);
}

json_object *message_of_everything()
{
    batch everything(batch::extent::everything);
    everything.fill();
    json_object *const message = committed_message();
    everything.release_rest();
    return message;
}

// Fixed, so that the files of a run can be removed outside of its time.
template <benchmark::IterationCount commits>
void configure(benchmark::internal::Benchmark *benchmark)
{
    benchmark->Iterations(commits)->Unit(benchmark::kMicrosecond);
    benchmark->Setup([](const benchmark::State &) { empty_queue(); });
}

}  // namespace

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    pin_to_one_cpu();
    const child_process server(start_library_server(socket_path, ""));
    connect_when_ready(server, socket_path);
    empty_queue();
    init_cmd_tree_data();

    keep_freed_memory();
    json_object *const nothing = committed_message();
    add_pair(
        "commit with nothing changed", unchanged_goal, commit_nothing,
        [nothing](benchmark::State &state) { compare_copy_and_write(state, nothing); }, configure<500>);
    json_object *const everything = message_of_everything();
    const bare_message bare(everything);
    json_object_put(everything);
    add_pair(
        "commit with everything changed", everything_goal, commit_everything,
        [&bare](benchmark::State &state) { build_and_write(state, bare); }, configure<3>);
    benchmark::RunSpecifiedBenchmarks();
    json_object_put(nothing);
}

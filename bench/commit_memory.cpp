// The memory in use after many commits against that after a few. The allocator's caches count as memory in use and fill
// up over thousands of commits, so run it without: GLIBC_TUNABLES=glibc.malloc.tcache_count=0.
#include <apconf/apconf.h>
#include <malloc.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "bench/pair.h"
#include "bench/peers.h"
#include "bench/queue.h"
#include "tests/store/batch.h"

namespace
{

using namespace apconf_bench;

constexpr int few = 10;
constexpr int many = 10'000;
constexpr double heap_goal = 1.0;
constexpr double resident_goal = 1.01;  // whole pages, also those of code that ran for the first time
constexpr char socket_path[] = "/tmp/bench_commit_sock";

[[noreturn]] void give_up(const char *what)
{
    perror(what);
    exit(1);
}

struct memory {
    size_t heap;      // bytes in use
    size_t resident;  // bytes
};

memory memory_in_use()
{
    FILE *const file = fopen("/proc/self/statm", "r");
    size_t pages = 0;
    if (!file || fscanf(file, "%*u %zu", &pages) != 1) give_up("/proc/self/statm");
    fclose(file);
    const struct mallinfo2 heap = mallinfo2();
    return {heap.uordblks + heap.hblkhd, pages * static_cast<size_t>(sysconf(_SC_PAGESIZE))};
}

// Commits batches that hold something of every kind. The queue stays empty, as its server would leave it.
memory after_commits(int count)
{
    apconf_test::batch one_of_each(apconf_test::batch::extent::one_of_each);
    for (int i = 0; i < count; ++i) {
        one_of_each.fill();
        if (apply_cmd_tree_data() != 0 || apconf_committed_index() < 0) give_up("not committed");
        one_of_each.release_rest();
        unlink(message_path(apconf_committed_index()).c_str());
    }
    return memory_in_use();
}

void add(const char *what, double goal, size_t ours, size_t limit)
{
    const auto shown = [](size_t bytes) {
        return [bytes](benchmark::State &state) {
            while (state.KeepRunning()) state.counters["bytes"] = static_cast<double>(bytes);
        };
    };
    add_pair(what, goal, shown(ours), shown(limit), [](auto *benchmark) { benchmark->Iterations(1); });
}

}  // namespace

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    const child_process server(start_library_server(socket_path, ""));
    connect_when_ready(server, socket_path);
    empty_queue();
    init_cmd_tree_data();
    const memory early = after_commits(few);
    const memory late = after_commits(many - few);
    add("heap in use after 10,000 commits, after 10", heap_goal, late.heap, early.heap);
    add("resident memory after 10,000 commits, after 10", resident_goal, late.resident, early.resident);
    benchmark::RunSpecifiedBenchmarks();
}

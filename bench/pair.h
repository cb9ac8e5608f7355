// A measurement and its limit: the same work done without the library, timed in the same run. The report divides the
// one by the other and holds the ratio against the goal.
#pragma once

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <string>

namespace apconf_bench
{

// For measurements of large trees: whether a release happens to give the heap's end back to the kernel, and the next
// tree has to fetch it anew, would decide about half of the time, on either side.
inline void keep_freed_memory()
{
    mallopt(M_TRIM_THRESHOLD, 1 << 30);
}

// Both are functions of a benchmark's state; `configure` is applied to both registered benchmarks.
template <typename Ours, typename Limit, typename Configure>
void add_pair(const std::string &what, double goal, Ours ours, Limit limit, Configure configure)
{
    const auto add = [&](const char *side, auto measure) {
        configure(benchmark::RegisterBenchmark((what + side).c_str(), [measure, goal](benchmark::State &state) {
            measure(state);
            state.counters["goal"] = goal;
        }));
    };
    add("/ours", ours);
    add("/limit", limit);
}

template <typename Ours, typename Limit>
void add_pair(const std::string &what, double goal, Ours ours, Limit limit)
{
    add_pair(what, goal, ours, limit, [](benchmark::internal::Benchmark *) {});
}

}  // namespace apconf_bench

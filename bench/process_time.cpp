// The CPU time, user and system, that a command takes as a whole process, from its start to its end, against a limit.
// Usage: bench_process_time WHAT LIMIT COMMAND [ARGUMENT ...], the limit in milliseconds. Its output is thrown away; a
// command that fails is not measured.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "bench/pair.h"

namespace
{

constexpr double milliseconds = 1e-3;
constexpr int first_argument = 3;

[[noreturn]] void run(char **command)
{
    const int null = open("/dev/null", O_RDWR);
    if (dup2(null, STDIN_FILENO) >= 0 && dup2(null, STDOUT_FILENO) >= 0) {
        setenv("LD_PRELOAD", APCONF_BENCH_MASKED_LOG, 1);
        execv(command[0], command);
    }
    perror(command[0]);
    _exit(1);
}

double seconds(const timeval &time)
{
    return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
}

void measure(benchmark::State &state, char **command)
{
    for (auto _ : state) {
        const pid_t pid = fork();
        if (pid == 0) run(command);
        int status = -1;
        rusage used = {};
        if (pid < 0 || wait4(pid, &status, 0, &used) != pid) state.SkipWithError("the command did not start");
        if (status != 0) state.SkipWithError(("the command ended with status " + std::to_string(status)).c_str());
        state.SetIterationTime(seconds(used.ru_utime) + seconds(used.ru_stime));
    }
}

}  // namespace

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    argv[argc] = nullptr;  // it takes its own arguments out, but leaves the end where it was
    char *end = nullptr;
    const double limit = argc > first_argument ? strtod(argv[2], &end) * milliseconds : 0;
    if (limit <= 0 || *end != '\0') {
        fprintf(stderr, "usage: bench_process_time WHAT LIMIT COMMAND [ARGUMENT ...]; LIMIT is in milliseconds\n");
        return 2;
    }
    apconf_bench::add_pair(
        argv[1], 1.0, [argv](benchmark::State &state) { measure(state, argv + first_argument); },
        [limit](benchmark::State &state) {
            for (auto _ : state) state.SetIterationTime(limit);
        },
        [](auto *benchmark) { benchmark->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond); });
    benchmark::RunSpecifiedBenchmarks();
}

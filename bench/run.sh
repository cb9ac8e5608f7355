#!/bin/sh
# Runs the benchmarks of a build in a private /etc and /tmp and prints each measurement beside its limit. The results
# stay below the build in bench/results. Goals that are missed are printed as missed; only a benchmark that cannot run
# makes the exit status 1. Usage: run.sh [BUILD_DIRECTORY]
set -eu

source=$(cd "$(dirname "$0")/.." && pwd)
build=$(cd "${1:-$source/build/release}" && pwd)

if [ "${APCONF_PRIVATE_NAMESPACE:-}" != inside ]; then
    exec "$source/tests/support/private_namespace.sh" "$source/bench/run.sh" "$build"
fi

results=$build/bench/results
mkdir -p "$results" /etc/config
rm -f "$results"/*
cp "$source/etc/config_cmd_tree.xml" "$source/etc/cmd_tree_help.txt" /etc
cp "$source/etc/start_config.json" /etc/config

# measure RESULT NAME [ARGUMENT ...] runs bench_NAME. The sides of a pair take turns, so that what else the machine does
# hits both.
measure() {
    result=$results/$1
    name=$2
    shift 2
    "$build/bench/bench_$name" --benchmark_repetitions=15 --benchmark_min_time=0.05 \
        --benchmark_enable_random_interleaving=true --benchmark_report_aggregates_only=true \
        --benchmark_out="$result.json" --benchmark_out_format=json "$@" >"$result.txt" 2>&1 || {
        cat "$result.txt" >&2
        echo "run.sh: bench_$name failed" >&2
        exit 1
    }
}

# run NAME [ARGUMENT ...] on an empty queue.
run() {
    rm -rf /tmp/cmessage_queue
    program=$1
    shift
    measure "$program" "$program" "$@"
}

# time_process WHAT LIMIT COMMAND [ARGUMENT ...]: the CPU time of a whole process, in milliseconds.
processes=0
time_process() {
    processes=$((processes + 1))
    measure "process_$processes" process_time "$@"
}

# Starts the server and waits until it serves; stop_server ends it.
start_server() {
    rm -rf /tmp/cmessage_queue /tmp/config_cmd_sock
    LD_PRELOAD=$build/bench/libbench_masked_log.so "$build/host/apconfd" --foreground &
    server=$!
    until [ -S /tmp/config_cmd_sock ]; do
        kill -0 "$server" || exit 1
        sleep 0.1
    done
}
stop_server() {
    kill "$server"
    wait "$server" || true
}

run conversions
run schema_load
run queue_append
run commit
# The allocator's caches count as memory in use, and they fill up over thousands of commits.
GLIBC_TUNABLES=glibc.malloc.tcache_count=0 run commit_memory
run retrieve
run cli_lines
if [ -x "$build/host/apconfd" ]; then
    run round_trip "$build/host/apconfd" --foreground
    start_server
    time_process 'apconf show, CPU time' 30 "$build/host/apconf" show
    time_process 'apconf shell on a terminal, start and end, CPU time' 50 \
        /bin/sh -c "echo exit | script --quiet --return --command '$build/host/apconf shell' /dev/null"
    stop_server
else
    run round_trip
fi
"$source/bench/report.py" "$results"

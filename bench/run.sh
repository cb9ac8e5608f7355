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

# Runs bench_NAME with the rest of the arguments. The sides of a pair take turns, so that what else the machine does hits both.
run() {
    name=$1
    shift
    "$build/bench/bench_$name" --benchmark_repetitions=15 --benchmark_min_time=0.05 \
        --benchmark_enable_random_interleaving=true --benchmark_report_aggregates_only=true \
        --benchmark_out="$results/$name.json" --benchmark_out_format=json "$@" >"$results/$name.txt" 2>&1 || {
        cat "$results/$name.txt" >&2
        echo "run.sh: bench_$name failed" >&2
        exit 1
    }
}

run conversions
run schema_load
run queue_append
if [ -x "$build/host/apconfd" ]; then
    run round_trip "$build/host/apconfd" --foreground
else
    run round_trip
fi
"$source/bench/report.py" "$results"

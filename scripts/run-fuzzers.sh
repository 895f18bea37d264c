#!/usr/bin/env bash
# Runs every libFuzzer program of a fuzz build for a while, each from a copy of its committed
# corpus (what it finds stays in build/, not in the tree), and prints how many inputs each
# executed and whether it found anything. Arguments: the build folder, seconds per target.
# A finding leaves its crash input in the build folder: add it to tests/fuzz/corpus/TARGET/
# once the bug is fixed, so the replay test keeps it fixed.
set -euo pipefail
build_dir=$1
seconds=$2
source_dir=$(cd "$(dirname "$0")/.." && pwd)
status=0
for corpus in "$source_dir"/tests/fuzz/corpus/*/; do
    target=$(basename "$corpus")
    program="$build_dir/tests/fuzz/fuzz_$target"
    work="$build_dir/fuzz-runs/$target"
    mkdir -p "$work/corpus" "$work/findings"
    cp -n "$corpus"* "$work/corpus/"
    log="$work/log.txt"
    if "$program" -max_total_time="$seconds" -max_len=65536 -rss_limit_mb=4096 \
        -artifact_prefix="$work/findings/" -print_final_stats=1 "$work/corpus" >"$log" 2>&1; then
        result="nothing found"
    else
        result="FOUND a failure: see $log and $work/findings/"
        status=1
    fi
    runs=$(grep -o 'stat::number_of_executed_units: *[0-9]*' "$log" | grep -o '[0-9]*$' || echo "?")
    echo "fuzz_$target: $runs executions in ${seconds} s, $result"
done
exit $status

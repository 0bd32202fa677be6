#!/bin/bash
# Runs the fuzzers of build/fuzz one after the other, from the seeds of tests/fuzz/corpus and what earlier runs found.
# What they find stays in build/fuzz/corpus, an input that ended one in build/fuzz/findings. Prints a table at the end.
#
# usage: tests/fuzz/run.sh SECONDS [TARGET...]
#   SECONDS  for all targets together, shared equally
#   TARGET   without one, all of tests/fuzz/corpus
set -eu
cd "$(dirname "$0")/../.."

seconds=$1
shift
[ $# -gt 0 ] || mapfile -t targets < <(ls tests/fuzz/corpus)
[ $# -eq 0 ] || targets=("$@")
each=$((seconds / ${#targets[@]}))
[ "$each" -gt 0 ] || each=1

# Most of the time would go into noting where each piece of memory comes from.
export ASAN_OPTIONS=malloc_context_size=1:quarantine_size_mb=16

mkdir -p build/fuzz/findings build/fuzz/logs
failed=0
printf '%-14s %12s %10s %9s\n' target executions 'a second' findings
for target in "${targets[@]}"; do
    found=build/fuzz/corpus/$target
    log=build/fuzz/logs/$target.log
    mkdir -p "$found"
    result=0
    # The streams of the part under test are of no interest; its own stay with the fuzzer.
    build/fuzz/fuzz/"$target-fuzz" -max_total_time="$each" -max_len=2048 -timeout=30 -rss_limit_mb=4096 \
        -print_final_stats=1 -artifact_prefix="build/fuzz/findings/$target-" "$found" "tests/fuzz/corpus/$target" \
        >/dev/null 2>"$log" || result=$?
    findings=$(find build/fuzz/findings -name "$target-*" | wc -l)
    printf '%-14s %12s %10s %9s\n' "$target" "$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")" \
        "$(sed -n 's/^stat::average_exec_per_sec: *//p' "$log")" "$findings"
    [ "$result" -eq 0 ] || failed=1
done
exit "$failed"

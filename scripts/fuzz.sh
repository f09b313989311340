#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Searches for faults with the fuzz targets: scripts/fuzz.sh MINUTES [TARGET...]
#
# Runs every target, or the named ones, for MINUTES of processor time each, two at a time (JOBS=1 takes one). The corpora
# grow in build/corpus/TARGET. Prints a table: executions, new units, findings. Findings stay, minimized, in
# build/findings/TARGET. Exits with 1 when there is one.
set -euo pipefail
cd "$(dirname "$0")/.."
[[ ${1:-} =~ ^[0-9]+$ ]] || {
    sed -n '3,7s/^# \?//p' "$0" >&2
    exit 2
}
seconds=$(($1 * 60))
shift
[ $# -gt 0 ] || set -- $(sed -n 's/^torka_fuzz(\([a-z0-9_]*\).*/\1/p' fuzz/CMakeLists.txt)
[ -f build/fuzz/CMakeCache.txt ] || cmake --preset fuzz >/dev/null
nice ninja -C build/fuzz "${@/#/fuzz_}" >&2

search() { # TARGET
    local program=build/fuzz/bin/fuzz_$1 corpus=build/corpus/$1 findings=build/findings/$1 log=build/findings/$1.log
    mkdir -p "$corpus" "$findings" "fuzz/corpus/$1"
    nice "$program" -artifact_prefix="$findings/" -print_final_stats=1 -timeout=60 -rss_limit_mb=4096 -max_len=8192 \
        "$corpus" "fuzz/corpus/$1" >"$log" 2>&1 &
    local found process=$! used
    # Processor time ends the run, so that a busy machine does not shorten it.
    while used=$(ps -o cputimes= -p "$process") && [ "$used" -lt "$seconds" ]; do
        sleep 1
    done
    kill -INT "$process" 2>/dev/null || true
    wait "$process" || true
    for found in "$findings"/crash-*; do
        if [ -f "$found" ] && [ ! -f "$findings/minimized-$(basename "$found")" ]; then
            "$program" -minimize_crash=1 -runs=20000 -max_total_time=60 -exact_artifact_path="$findings/minimized-$(basename "$found")" \
                "$found" >/dev/null 2>&1 || cp -n "$found" "$findings/minimized-$(basename "$found")"
        fi
    done
}
export -f search
export seconds
printf '%s\n' "$@" | xargs -P "${JOBS:-2}" -I{} bash -c 'search "$1"' fuzz {}

printf '%-24s %12s %10s %9s\n' target executions 'new units' findings
status=0
for target; do
    log=build/findings/$target.log
    executions=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
    units=$(grep -Ec '^#[0-9]+[[:space:]]+NEW' "$log" || true)
    # An input that takes more than 60 s is a finding. One above 10 s may have met a busy machine; it stays there as well.
    findings=$(find "build/findings/$target" -type f ! -name 'minimized-*' ! -name 'slow-unit-*' | wc -l)
    printf '%-24s %12s %10s %9s\n' "$target" "${executions:-0}" "$units" "$findings"
    [ "$findings" -eq 0 ] && [ "${executions:-0}" -gt 0 ] || status=1
done
exit $status

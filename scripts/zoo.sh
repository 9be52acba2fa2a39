#!/usr/bin/env bash
# Crashes the sample host every way a crash handler must survive, many times
# each, natively and under Wine, and tells how each way ended.
#
#   scripts/zoo.sh [runs] [way...]   runs per way and platform, 20 by default;
#                                    every way unless some are named
#
# A run passes when the host ends with exit code 3 within 60 s and left one
# report whose crashed thread has a register context; "held-up" runs with a
# budget of 1500 ms and passes with exit code 3 and the budget's line. Uses
# the linux and windows trees of scripts/test.sh (built here if missing).
set -euo pipefail

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root"
# shellcheck source=lib/common.sh
source scripts/lib/common.sh
NORVANE_LOG_TAG=zoo

runs="${1:-20}"
[[ "$runs" =~ ^[1-9][0-9]*$ ]] || norvane_die "the number of runs must be a positive number, got '$runs'"

kinds=(access-violation abort divide-by-zero illegal-instruction breakpoint pure-virtual uncaught-exception
       two-threads twenty-threads sleeping-threads stack-overflow stack-overflow-thread
       stack-overflow-early-thread faulting-callback held-up pass-on-then-fault)
[[ $# -gt 1 ]] && kinds=("${@:2}")

cmake --build build/linux --target crash_host kelmur_feedback >/dev/null
cmake --build build/windows --target crash_host kelmur_feedback >/dev/null
cmake/wine-run.sh --prepare
scratch="$(mktemp -d)"
trap 'rm -rf "$scratch"' EXIT

# One run: prints "pass <ms>" or "fail <ms> <why>".
run_once() {
    local platform="$1" kind="$2" dir="$3"
    local host=(build/linux/bin/crash_host) logdir="$dir/"
    if [[ "$platform" == windows ]]; then
        host=(cmake/wine-run.sh build/windows/bin/crash_host.exe)
        logdir="Z:${dir//\//\\}\\"
    fi
    local budget=30000
    [[ "$kind" == held-up ]] && budget=1500
    local start end code=0
    start=$(date +%s%N)
    NORVANE_LOG_DIR="$logdir" NORVANE_CRASH_BUDGET_MS="$budget" KELMUR_FEEDBACK_EXIT_CODE=0 \
        timeout 60 "${host[@]}" "$kind" >"$dir/output.txt" 2>&1 || code=$?
    end=$(date +%s%N)
    local ms=$(((end - start) / 1000000))
    # Wine, under a load of many starts, now and then fails to start a
    # program at all; that run says nothing of the library, and is retried.
    if ! grep -q "^crash_host: " "$dir/output.txt"; then echo "unstarted $ms"; return; fi
    if [[ "$code" != 3 ]]; then echo "fail $ms exit code $code"; return; fi
    if [[ "$kind" == held-up ]]; then
        grep -q "did not start within 1500 ms" "$dir/output.txt" && echo "pass $ms" || echo "fail $ms no budget line"
        return
    fi
    local report="$dir/crash_info.txt" tid
    [[ -f "$report" ]] || { echo "fail $ms no report"; return; }
    tid=$(sed -n 's/^CrashedTID: *//p' "$report" | tr -d '\r' | head -1)
    [[ -n "$tid" ]] || { echo "fail $ms no crashed thread"; return; }
    grep -qi "^\[Context\.$(printf '0x%08x' "$tid")\]" "$report" && echo "pass $ms" ||
        echo "fail $ms no context of thread $tid"
}

failed=0
for platform in linux windows; do
    for kind in "${kinds[@]}"; do
        passed=0 slowest=0 why=""
        for ((i = 0; i < runs; ++i)); do
            dir="$scratch/$platform-$kind-$i"
            mkdir -p "$dir"
            read -r verdict ms rest < <(run_once "$platform" "$kind" "$dir")
            [[ "$verdict" == unstarted ]] && read -r verdict ms rest < <(run_once "$platform" "$kind" "$dir")
            ((ms > slowest)) && slowest=$ms
            if [[ "$verdict" == pass ]]; then ((++passed)); else why="$verdict $rest"; fi
        done
        printf '%-8s %-28s %3d/%-3d slowest %6d ms %s\n' "$platform" "$kind" "$passed" "$runs" "$slowest" "$why"
        ((passed == runs)) || failed=1
    done
done
exit "$failed"

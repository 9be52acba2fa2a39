#!/usr/bin/env bash
# Builds the benchmarks in Release and runs them.
#
#   scripts/bench.sh            natively: the report, the crash, the module map,
#                               the in-process stack collection, and loading
#                               the library with idle crash handling
#   scripts/bench.sh windows    the crash, module map, stack collection and load
#                               benches of the Windows build, under Wine
set -euo pipefail

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root"
# shellcheck source=lib/common.sh
source scripts/lib/common.sh
NORVANE_LOG_TAG=bench

if [[ "${1:-}" == windows ]]; then
    scripts/setup/install-packages.sh
    scripts/setup/build-mingw-deps.sh
    cmake/wine-run.sh --prepare
    cmake --preset windows -B build/bench-windows -DCMAKE_BUILD_TYPE=Release -DNORVANE_WARNINGS_AS_ERRORS=OFF >/dev/null
    cmake --build build/bench-windows --target crash_bench module_map_bench stack_collection_bench load_bench
    for bench in crash_bench module_map_bench stack_collection_bench load_bench; do
        norvane_log "$bench (Windows, under Wine)"
        cmake/wine-run.sh "build/bench-windows/bin/$bench.exe"
    done
    exit 0
fi

scripts/setup/install-packages.sh native bench source
scripts/setup/build-native-deps.sh
cmake --preset release >/dev/null
cmake --build --preset release --target report_bench crash_bench module_map_bench stack_collection_bench load_bench
for bench in report_bench crash_bench module_map_bench stack_collection_bench load_bench; do
    norvane_log "$bench"
    "build/release/bin/$bench"
done

#!/usr/bin/env bash
# The whole test suite: native (Linux), native with AddressSanitizer and
# UndefinedBehaviorSanitizer, native with ThreadSanitizer (the hand-over
# between threads and the crash tests), then Windows (mingw-w64, run under
# Wine).
#
# Installs what a fresh Debian 12 machine lacks, builds the cross-compiled
# dependencies once into ~/.cache/norvane, checks the C++ files' layout,
# builds all four trees (warnings are errors there) and runs every test in
# one ctest run, so the output ends with one summary line.
#
#   scripts/test.sh             everything
#   scripts/test.sh linux       only the given build trees (linux, sanitize, tsan, windows)
set -euo pipefail

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root"
# shellcheck source=lib/common.sh
source scripts/lib/common.sh
NORVANE_LOG_TAG=test

presets=("$@")
[[ ${#presets[@]} -gt 0 ]] || presets=(linux sanitize tsan windows)

scripts/setup/install-packages.sh
# A file laid out otherwise than .clang-format says fails the run:
# scripts/format.sh lays it out.
norvane_log "checking the layout of the C++ files"
scripts/format.sh --check
for preset in "${presets[@]}"; do
    if [[ "$preset" != windows ]]; then
        scripts/setup/build-native-deps.sh
    else
        scripts/setup/build-mingw-deps.sh
        # Creating the Wine prefix takes longer than test discovery waits.
        cmake/wine-run.sh --prepare
    fi
    norvane_log "configuring and building '$preset'"
    cmake --preset "$preset" >/dev/null
    cmake --build --preset "$preset"
done

# One ctest run over all trees, so that a single summary counts every test:
# the all-tests preset's tree only names the test files of the trees built.
trees="${presets[*]}"
cmake --preset all-tests -DNORVANE_TEST_TREES="${trees// /;}" >/dev/null
norvane_log "running the tests of: ${presets[*]}"
ctest --preset all-tests

#!/usr/bin/env bash
# Fuzzes the report readers for a bounded time (default 60 seconds).
#
#   scripts/fuzz.sh [seconds]
#
# The working corpus grows under build/fuzz-corpus, seeded from fuzz/corpus.
# An input that makes a reader fail lands in build/fuzz-artifacts; copy it to
# fuzz/regressions/ (named after the fault) so the replay tests keep it.
set -euo pipefail

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root"
# shellcheck source=lib/common.sh
source scripts/lib/common.sh
NORVANE_LOG_TAG=fuzz

seconds="${1:-60}"
[[ "$seconds" =~ ^[0-9]+$ ]] || norvane_die "the time must be a number of seconds, got '$seconds'"

scripts/setup/install-packages.sh native fuzz source
scripts/setup/build-native-deps.sh
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz

corpus="build/fuzz-corpus"
artifacts="build/fuzz-artifacts"
mkdir -p "$corpus" "$artifacts"
cp -n fuzz/corpus/* fuzz/regressions/* "$corpus"/
norvane_log "fuzzing for ${seconds}s"
build/fuzz/bin/report_fuzzer -max_total_time="$seconds" -max_len=8192 -timeout=20 \
    -artifact_prefix="$artifacts/" -print_final_stats=1 "$corpus"

#!/usr/bin/env bash
# Builds the benchmarks in Release and runs them.
#
#   scripts/bench.sh [benchmark options]   e.g. --benchmark_filter=FromString
set -euo pipefail

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root"
# shellcheck source=lib/common.sh
source scripts/lib/common.sh
NORVANE_LOG_TAG=bench

scripts/setup/install-packages.sh native bench
cmake --preset release >/dev/null
cmake --build --preset release
build/release/bin/report_bench "$@"

#!/usr/bin/env bash
# The demo: builds the library natively and shows a problem report made by
# the library, written as text and read back.
#
# Installs what a fresh Debian 12 machine lacks for a native build first.
set -euo pipefail

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root"
# shellcheck source=lib/common.sh
source scripts/lib/common.sh
NORVANE_LOG_TAG=demo

scripts/setup/install-packages.sh native
norvane_log "building the library (preset 'linux')"
cmake --preset linux >/dev/null
cmake --build --preset linux --target report_roundtrip

report="build/linux/demo/crash_info.txt"
mkdir -p "$(dirname "$report")"
build/linux/bin/report_roundtrip "$report"
norvane_log "the report text is also in $report"

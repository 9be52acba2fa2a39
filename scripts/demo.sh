#!/usr/bin/env bash
# The demo: builds the library natively, crashes the sample host on purpose
# and shows what came of it: the reference handler's summary of the report
# (printed by the handler itself, which reads the report back with the
# library's reader and completes it) and the report file, with the host's
# app properties, the head of its log, its custom sections and the creation
# log of the crash path.
#
# The crash is handled as configured by default: the reference handler reads
# every thread's stack from outside, the crashed thread's from the fault, so
# the report shows each thread's frames and the modules they pass through.
# Then the handler's view of the report for a person: the exception, and
# each thread's frames with their functions, files and lines.
#
# Then the same host, alive, asks for a report of itself on demand: the
# feedback tool completes it with every thread's stack, read from outside.
#
# Installs what a fresh Debian 12 machine lacks for a native build first.
set -euo pipefail

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root"
# shellcheck source=lib/common.sh
source scripts/lib/common.sh
NORVANE_LOG_TAG=demo

scripts/setup/install-packages.sh native source
scripts/setup/build-native-deps.sh
norvane_log "building the library, the sample host and the reference handler (preset 'linux')"
cmake --preset linux >/dev/null
cmake --build --preset linux --target crash_host kelmur_feedback

logs="$root/build/linux/demo"
rm -rf "$logs"
mkdir -p "$logs"
# The host's own log, whose first lines the report carries as PremortalLog.
printf '%s\n' "$(date '+%F %T') INFO  demo host started" "$(date '+%F %T') INFO  about to crash" >"$logs/host.log"
norvane_log "running: crash_host custom-sections (log directory $logs)"
status=0
# Settings from the caller's shell must not turn handling off or divert it.
readarray -t cleared < <(grep '^[A-Z]' tests/support/cleared_variables.txt)
env "${cleared[@]/#/--unset=}" NORVANE_LOG_DIR="$logs" \
    build/linux/bin/crash_host custom-sections || status=$?
[[ $status -eq 3 ]] || norvane_die "crash_host ended with $status, not with the library's exit code 3"

norvane_log "crash_host ended with exit code 3; the report it left, $logs/crash_info.txt:"
cat "$logs/crash_info.txt"
norvane_log "the report is in $logs/crash_info.txt"
norvane_log "the same report for a person: kelmur-feedback -show-report $logs/crash_info.txt"
build/linux/bin/kelmur-feedback -show-report "$logs/crash_info.txt"

ondemand="$logs/on-demand"
mkdir -p "$ondemand"
norvane_log "running: crash_host on-demand-report (a report of a live process, log directory $ondemand)"
env "${cleared[@]/#/--unset=}" NORVANE_LOG_DIR="$ondemand" build/linux/bin/crash_host on-demand-report \
    || norvane_die "the on-demand report failed"
report="$(ls "$ondemand"/report-*.txt)"
norvane_log "its threads' stacks, from $report:"
awk '/^\[Stack\.clean/{show=1} /^\[/{if (!/^\[Stack\.clean/) show=0} show' "$report"

#!/usr/bin/env bash
# Crashes the Windows sample host under the emulator and reads the crash's
# minidump with an independent reader (lldb's minidump support): it must
# show the crashed thread stopped by the access violation at the report's
# exception address, the other threads, and the modules of the build.
#
#   check_minidump.sh HOST EMULATOR LLDB
set -euo pipefail

host=$1 emulator=$2 lldb=$3

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
log_dir="$work/logs"
mkdir -p "$log_dir"

fail() {
    printf 'FAIL: %s\n--- lldb:\n' "$*" >&2
    cat "$work/lldb.txt" >&2 2>/dev/null || true
    exit 1
}

# Whatever of cleared_variables.txt the caller's shell holds must not reach the host.
readarray -t cleared < <(grep '^[A-Z]' "$(dirname "${BASH_SOURCE[0]}")/../support/cleared_variables.txt")
status=0
env "${cleared[@]/#/--unset=}" NORVANE_LOG_DIR="Z:${log_dir//\//\\}\\" \
    "$emulator" "$host" call-chain >"$work/host.txt" 2>&1 || status=$?
[[ $status -eq 3 ]] || fail "the host ended with $status, not with 3: $(cat "$work/host.txt")"
[[ -s "$log_dir/crash.dmp" ]] || fail "no crash.dmp: $(cat "$work/host.txt")"

# lldb without its Python part complains on stderr; only what it reads counts.
"$lldb" --batch --no-lldbinit -c "$log_dir/crash.dmp" -o "thread list" -o "image list" >"$work/lldb.txt" 2>/dev/null || true

address=$(tr -d '\r' <"$log_dir/crash_info.txt" | sed -n 's/^Address: *0x0*//p' | head -1)
grep -Eiq "^\* thread #1: .*0x0*$address .*stop reason = Exception 0xc0000005" "$work/lldb.txt" ||
    fail "the crashed thread is not stopped by the access violation at 0x$address"
[[ $(grep -c '^  thread #' "$work/lldb.txt") -ge 2 ]] || fail "the dump has no other thread"
for module in crash_host.exe norvane.dll crash_chain.dll ntdll.dll; do
    grep -qi "$module" "$work/lldb.txt" || fail "the dump lists no module $module"
done
echo "the minidump shows the crashed thread at 0x$address, $(grep -c 'thread #' "$work/lldb.txt") threads and the modules"

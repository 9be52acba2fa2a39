#!/usr/bin/env bash
# Crashes the sample host at the end of a known chain of calls and reads the
# report back with kelmur-feedback -show-report: the crashed thread must come
# first, its frames naming the chain's functions in order, each with its
# source file and line. Also a damaged report must be refused with a reason,
# and natively, a file of another build than the one that crashed must name
# nothing.
# For a Windows build both programs run under the emulator.
#
#   check_show_report.sh KIND HOST TOOL [EMULATOR]
#
# KIND is call-chain or library-chain.
set -euo pipefail

kind=$1 host=$2 tool=$3 emulator=${4:-}

case $kind in
    call-chain) expected=(accessViolation crash_host_chain_3 crash_host_chain_2 crash_host_chain_1) ;;
    library-chain) expected=(crash_chain_fault crash_chain_inner crash_chain_entry
                             crash_host_chain_3 crash_host_chain_2 crash_host_chain_1) ;;
    *) echo "unknown kind $kind" >&2; exit 2 ;;
esac

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
log_dir="$work/log dir"
mkdir -p "$log_dir"

# The programs' own form of a path of this machine.
native_path() {
    if [[ -n $emulator ]]; then
        local path="Z:${1//\//\\}"
        printf '%s' "$path"
    else
        printf '%s' "$1"
    fi
}

fail() {
    printf 'FAIL: %s\n--- view:\n' "$*" >&2
    cat "$work/view.txt" >&2 2>/dev/null || true
    exit 1
}

# Whatever of cleared_variables.txt the caller's shell holds must not reach the host.
readarray -t cleared < <(grep '^[A-Z]' "$(dirname "${BASH_SOURCE[0]}")/../support/cleared_variables.txt")
status=0
env "${cleared[@]/#/--unset=}" KELMUR_FEEDBACK_NO_DUMP=1 NORVANE_LOG_DIR="$(native_path "$log_dir/")" \
    $emulator "$host" "$kind" >"$work/host output.txt" 2>&1 || status=$?
[[ $status -eq 3 ]] || fail "the host ended with $status, not with 3: $(cat "$work/host output.txt")"

status=0
$emulator "$tool" -show-report "$(native_path "$log_dir/crash_info.txt")" >"$work/view.txt" 2>"$work/errors.txt" ||
    status=$?
[[ $status -eq 0 ]] || fail "-show-report ended with $status: $(cat "$work/errors.txt")"
tr -d '\r' <"$work/view.txt" >"$work/view LF.txt"

head -1 "$work/view LF.txt" | grep -q '^Exception 0xC0000005' || fail "the view does not begin with the exception"
# The frames of the first thread, which must be the crashed one.
first_thread=$(grep -m1 '^Thread ' "$work/view LF.txt")
[[ $first_thread == *"(crashed)" ]] || fail "the first thread shown is not the crashed one: $first_thread"
mapfile -t frames < <(awk '/^Thread / { n++ } n == 1 && /^  #/' "$work/view LF.txt")

for i in "${!expected[@]}"; do
    frame=${frames[i]:-}
    [[ $frame == *"${expected[i]}"* ]] || fail "frame $i is not in ${expected[i]}: $frame"
    [[ $frame =~ \.cpp:[0-9]+$ ]] || fail "frame $i has no source line: $frame"
done
echo "the view of $kind shows ${expected[*]} in order, with their lines"

# Only the ELF build id is held against the file; a mingw build's DWARF has
# no identity to compare.
if [[ -z $emulator ]]; then
    sed 's/^Guid: .*/Guid: 01234567-89ab-cdef-0123-456789abcdef/' "$log_dir/crash_info.txt" >"$work/other build.txt"
    "$tool" -show-report "$work/other build.txt" >"$work/view.txt" || fail "-show-report failed on another build"
    frame=$(awk '/^Thread / { n++ } n == 1 && /^  #/' "$work/view.txt" | sed -n 2p)
    [[ $frame == *"another build"* && $frame != *"${expected[1]}"* ]] ||
        fail "a file of another build still names frame 1: $frame"
    echo "a file of another build names nothing: $frame"
fi

printf '[Exception]\nCrashedPID: not a number\n' >"$work/damaged.txt"
status=0
$emulator "$tool" -show-report "$(native_path "$work/damaged.txt")" >/dev/null 2>"$work/errors.txt" || status=$?
[[ $status -eq 1 ]] || fail "a damaged report gave exit code $status, not 1"
grep -q 'damaged' "$work/errors.txt" || fail "a damaged report gave no reason: $(cat "$work/errors.txt")"
echo "a damaged report is refused with: $(tr -d '\r' <"$work/errors.txt")"

#!/usr/bin/env bash
# Crashes the sample host at the end of a known chain of calls, collecting
# the stack in-process (or, with CHAIN_COLLECT=outside, letting the handler
# read it from outside), and checks the crashed thread's clean stack against
# the program's own symbols: each frame's address, taken back to its file, is
# named by binutils' addr2line. Read from outside, the report is then shown
# with kelmur-feedback -show-report, whose own symbol lookup must name the
# same chain with source lines; natively, a file of another build than the
# one that crashed must name nothing. A damaged report must be refused with
# a reason. Runs on the build host; for a Windows build the host and the tool
# run under the emulator.
#
#   check_stack_chain.sh KIND elf ADDR2LINE READELF HOST TOOL
#   check_stack_chain.sh KIND pe  ADDR2LINE OBJDUMP HOST TOOL EMULATOR
#
# KIND is call-chain, library-chain or no-unwind-info. The first two must
# show the chain frame by frame from the exception's own frame on; behind a
# frame without unwind information the chain must still come, in order, among
# the frames the scan found.
set -euo pipefail

kind=$1 format=$2 addr2line=$3 dump=$4 host=$5 tool=$6 emulator=${7:-}

case $kind in
    call-chain) expected=(accessViolation crash_host_chain_3 crash_host_chain_2 crash_host_chain_1) strict=1 ;;
    library-chain) expected=(crash_chain_fault crash_chain_inner crash_chain_entry
                             crash_host_chain_3 crash_host_chain_2 crash_host_chain_1) strict=1 ;;
    no-unwind-info) expected=(crash_host_fault_without_unwind_info crash_host_chain_3 crash_host_chain_2
                              crash_host_chain_1) strict=0 ;;
    *) echo "unknown kind $kind" >&2; exit 2 ;;
esac

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
log_dir="$work/log dir"
mkdir -p "$log_dir"

# The programs' own form of a path of this machine.
native_path() {
    if [[ $format == pe ]]; then
        printf 'Z:%s' "${1//\//\\}"
    else
        printf '%s' "$1"
    fi
}

fail() {
    printf 'FAIL: %s\n--- report:\n' "$*" >&2
    cat "$log_dir/crash_info.txt" >&2 2>/dev/null || true
    exit 1
}

collect=(NORVANEMINIDUMP1_INPROCESS_COLLECT=1 KELMUR_FEEDBACK_KEEP_REPORT=1)
[[ ${CHAIN_COLLECT:-} == outside ]] && collect=()
# Whatever of cleared_variables.txt the caller's shell holds must not reach the host.
readarray -t cleared < <(grep '^[A-Z]' "$(dirname "${BASH_SOURCE[0]}")/../support/cleared_variables.txt")
status=0
env "${cleared[@]/#/--unset=}" "${collect[@]}" KELMUR_FEEDBACK_NO_DUMP=1 NORVANE_LOG_DIR="$(native_path "$log_dir/")" \
    $emulator "$host" "$kind" >"$work/host output.txt" 2>&1 || status=$?
[[ $status -eq 3 ]] || fail "the host ended with $status, not with 3: $(cat "$work/host output.txt")"

# "frame<TAB>kind<TAB>address<TAB>module" for the crashed thread's clean
# stack, and "module<TAB>base<TAB>full name" for each module section.
crashed=$(tr -d '\r' <"$log_dir/crash_info.txt" | sed -n 's/^CrashedTID: *//p' | head -1)
tr -d '\r' <"$log_dir/crash_info.txt" | awk -v crashed="$(printf '[Stack.clean.0x%08x]' "$crashed")" '
    /^\[/ { if (full != "") print "module\t" base "\t" full; full = ""; section = $0; next }
    tolower(section) == tolower(crashed) && NF > 0 {
        n = split($0, column, / \| /)
        if (n >= 3) print "frame\t" column[1] "\t" column[3] "\t" (n >= 4 ? column[4] : "")
    }
    section ~ /^\[Module[0-9]+\]$/ && /^Base: / { base = substr($0, 7) }
    section ~ /^\[Module[0-9]+\]$/ && /^FullName: / { full = substr($0, 11) }
    END { if (full != "") print "module\t" base "\t" full }
' >"$work/parsed.txt"
grep -q '^frame' "$work/parsed.txt" || fail "the report has no clean stack"

declare -A base_of file_of
while IFS=$'\t' read -r _ base full; do
    file=$full
    if [[ $format == pe ]]; then
        [[ $file == Z:* ]] || continue  # a module of the system, not of the build
        file=${file#Z:}
        file=${file//\\//}
    fi
    leaf=${file##*/}
    base_of[$leaf]=$base
    file_of[$leaf]=$file
done < <(grep '^module' "$work/parsed.txt")

# The address in the file's own terms: ELF shared objects and position-
# independent programs are linked at 0, PE images at their ImageBase.
file_address() {
    local file=$1 address=$2 base=$3
    if [[ $format == pe ]]; then
        local image_base
        image_base=$("$dump" -p "$file" | awk '/^ImageBase/ { print $2 }')
        printf '0x%x' $((16#$image_base + address - base))
    elif "$dump" -h "$file" | grep -q 'Type:[[:space:]]*DYN'; then
        printf '0x%x' $((address - base))
    else
        printf '0x%x' "$address"
    fi
}

# The symbol at or below the address, for code that has no debug
# information (hand-written code has only its symbol).
nearest_symbol() {
    local file=$1 at=$2
    # nm writes addresses zero-filled to one width: as text they sort as numbers.
    "${addr2line%addr2line}nm" -C --defined-only "$file" | awk -v at="$(printf '%016x' $((at)))" '
        $2 ~ /^[TtWw]$/ && $1 <= at && $1 >= best { best = $1; name = $3 }
        END { print name == "" ? "??" : name }'
}

names=()
while IFS=$'\t' read -r _ frame_kind address module; do
    named="(no module of the build)"
    if [[ -n $module && -n ${file_of[$module]:-} ]]; then
        lookup=$((address))
        [[ $frame_kind == "!" ]] || lookup=$((lookup - 1))  # inside the call, not behind it
        at=$(file_address "${file_of[$module]}" "$lookup" $((base_of[$module])))
        named=$("$addr2line" -f -C -i -e "${file_of[$module]}" "$at" | awk 'NR % 2 == 1' | paste -sd '|')
        [[ $named != "??" ]] || named=$(nearest_symbol "${file_of[$module]}" "$at")
    fi
    names+=("$named")
    printf '%s %s %-20s %s\n' "$frame_kind" "$address" "$module" "$named"
done < <(grep '^frame' "$work/parsed.txt")

[[ ${names[0]} == *"${expected[0]}"* ]] || fail "the exception's frame is not in ${expected[0]}"
next=1
for ((i = 1; i < ${#names[@]} && next < ${#expected[@]}; ++i)); do
    if [[ ${names[i]} == *"${expected[next]}"* ]]; then
        next=$((next + 1))
    elif [[ $strict -eq 1 ]]; then
        fail "frame $i is not in ${expected[next]}"
    fi
done
[[ $next -eq ${#expected[@]} ]] || fail "${expected[next]} is missing from the stack"
echo "the stack of $kind shows ${expected[*]} in order"

[[ ${CHAIN_COLLECT:-} == outside ]] || exit 0

# The frames of the first thread of a view.
first_thread_frames() { tr -d '\r' <"$1" | awk '/^Thread / { n++ } n == 1 && /^  #/'; }

status=0
$emulator "$tool" -show-report "$(native_path "$log_dir/crash_info.txt")" >"$work/view.txt" 2>"$work/errors.txt" ||
    status=$?
[[ $status -eq 0 ]] || fail "-show-report ended with $status: $(cat "$work/errors.txt")"
head -1 "$work/view.txt" | grep -q '^Exception 0xC0000005' || fail "the view does not begin with the exception"
first_thread=$(tr -d '\r' <"$work/view.txt" | grep -m1 '^Thread ')
[[ $first_thread == *"(crashed)" ]] || fail "the first thread shown is not the crashed one: $first_thread"
mapfile -t frames < <(first_thread_frames "$work/view.txt")
for i in "${!expected[@]}"; do
    frame=${frames[i]:-}
    [[ $frame == *"${expected[i]}"* ]] || fail "frame $i of the view is not in ${expected[i]}: $frame"
    [[ $frame =~ \.cpp:[0-9]+$ ]] || fail "frame $i of the view has no source line: $frame"
done

# Only the ELF build id is held against the file; a mingw build's DWARF has
# no identity to compare.
if [[ $format == elf ]]; then
    sed 's/^Guid: .*/Guid: 01234567-89ab-cdef-0123-456789abcdef/' "$log_dir/crash_info.txt" >"$work/other build.txt"
    "$tool" -show-report "$work/other build.txt" >"$work/view.txt" || fail "-show-report failed on another build"
    frame=$(first_thread_frames "$work/view.txt" | sed -n 2p)
    [[ $frame == *"another build"* && $frame != *"${expected[1]}"* ]] ||
        fail "a file of another build still names frame 1: $frame"
fi

printf '[Exception]\nCrashedPID: not a number\n' >"$work/damaged.txt"
status=0
$emulator "$tool" -show-report "$(native_path "$work/damaged.txt")" >/dev/null 2>"$work/errors.txt" || status=$?
[[ $status -eq 1 ]] || fail "a damaged report gave exit code $status, not 1"
grep -q 'damaged' "$work/errors.txt" || fail "a damaged report gave no reason: $(cat "$work/errors.txt")"
echo "-show-report names the chain with its lines, and refuses a damaged report"

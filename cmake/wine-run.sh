#!/usr/bin/env bash
# Runs a Windows executable under Wine. Used as CMAKE_CROSSCOMPILING_EMULATOR
# by the mingw-w64 toolchain, so ctest, try_run and gtest discovery all go
# through here:  wine-run.sh prog.exe [args...]
#
#   wine-run.sh --prepare   creates the prefix and starts the shared server,
#                           then exits. Worth running before a build that
#                           uses gtest_discover_tests: creating the prefix
#                           takes ~10 s, more than discovery's default 5 s
#                           timeout.
#
# Exit status: whatever the Windows process exits with, as Wine hands it to
# the shell. A Unix exit status has only 8 bits, so a Windows exit code
# (a 32-bit DWORD) reaches the shell as (code & 0xFF), except that Wine
# turns a nonzero code whose low byte is zero into 1 so that failure never
# looks like success. Measured with Wine 8.0:
#     0 -> 0, 3 -> 3, 6 -> 6, 255 -> 255, 300 -> 44, 0xFFFFFFFF -> 255,
#     0xC0000005 (access violation) -> 5, 0xC0000409 -> 9,
#     256, 512, 0x80000000, 0xC0000100 -> 1.
# The same holds for return from main, ExitProcess and TerminateProcess.
# Tests that must tell a crash from a deliberate exit should therefore pick
# exit codes below 256 that don't collide with the low byte of the NTSTATUS
# they expect, or report the full code through stdout/a file.
#
# Environment knobs (all optional):
#   NORVANE_WINEPREFIX          prefix to use; default $NORVANE_CACHE_DIR/wineprefix
#   NORVANE_CACHE_DIR           default $HOME/.cache/norvane
#   NORVANE_WINE                wine loader; default /usr/lib/wine/wine64
#   NORVANE_WINESERVER          wineserver matching that loader
#   NORVANE_WINESERVER_PERSIST  seconds a shared wineserver stays up after its
#                               last client; 0 = no shared server (default 120)
#   NORVANE_WINE_DLL_DIRS       colon-separated Unix dirs holding the mingw
#                               runtime DLLs; default: found under /usr
#   NORVANE_WINEDEBUG           WINEDEBUG value; default -all
#   NORVANE_WINE_DEBUGGER=1     let Wine start winedbg on unhandled exceptions
#                               (prints a backtrace, costs ~0.7 s per crash)
#   NORVANE_WINE_KEEP_DISPLAY=1 keep DISPLAY; by default we run headless so no
#                               dialog can block an unattended test run
set -uo pipefail

prepare_only=0
if [[ "${1:-}" == --prepare ]]; then
    prepare_only=1
    shift
fi
if [[ $# -eq 0 && $prepare_only -eq 0 ]]; then
    echo "usage: ${0##*/} program.exe [args...] | ${0##*/} --prepare" >&2
    exit 2
fi

die() {
    echo "wine-run: $*" >&2
    exit 125
}

cache_dir="${NORVANE_CACHE_DIR:-${HOME:-$(cd ~ && pwd)}/.cache/norvane}"
export WINEPREFIX="${NORVANE_WINEPREFIX:-$cache_dir/wineprefix}"
export WINEDEBUG="${NORVANE_WINEDEBUG:--all}"

wine="${NORVANE_WINE:-/usr/lib/wine/wine64}"
if [[ ! -x "$wine" ]]; then
    wine="$(command -v wine64 || command -v wine || true)"
    [[ -n "$wine" ]] || die "no wine64 found (install the wine64 package)"
fi
wineserver="${NORVANE_WINESERVER:-}"
if [[ -z "$wineserver" ]]; then
    for candidate in "$(dirname "$wine")/wineserver64" "$(dirname "$wine")/wineserver"; do
        if [[ -x "$candidate" ]]; then
            wineserver="$candidate"
            break
        fi
    done
    # Last resort: Debian's /usr/bin/wineserver wrapper. It puts -p0 in
    # front of our arguments, which may cost the shared server, but -k and
    # the "already running" check still work through it.
    [[ -n "$wineserver" ]] || wineserver="$(command -v wineserver || true)"
fi
persist="${NORVANE_WINESERVER_PERSIST:-120}"
[[ "$persist" =~ ^[0-9]+$ ]] || die "NORVANE_WINESERVER_PERSIST must be a number of seconds, got '$persist'"

# mono/gecko would otherwise offer an install dialog while the prefix is
# created; winemenubuilder only litters $HOME with desktop entries.
overrides="mscoree,mshtml=;winemenubuilder.exe=d"
if [[ "${NORVANE_WINE_DEBUGGER:-0}" != 1 ]]; then
    # An unhandled exception would otherwise start winedbg, which dumps
    # ~100 lines of registers into the test log and adds most of a second
    # per crash. Without it the process just ends with the exception code,
    # as it would on a Windows box with error reporting off.
    overrides+=";winedbg.exe=d"
fi
export WINEDLLOVERRIDES="$overrides${WINEDLLOVERRIDES:+;$WINEDLLOVERRIDES}"

if [[ "${NORVANE_WINE_KEEP_DISPLAY:-0}" != 1 ]]; then
    unset DISPLAY WAYLAND_DISPLAY
fi

# The build also copies the runtime DLLs next to each executable; this is
# for binaries run straight out of a build tree that doesn't (try_run,
# throwaway test programs).
dll_dirs=()
if [[ -n "${NORVANE_WINE_DLL_DIRS:-}" ]]; then
    IFS=: read -r -a dll_dirs <<<"$NORVANE_WINE_DLL_DIRS"
else
    best_gcc="" best_major=-1
    for d in /usr/lib/gcc/x86_64-w64-mingw32/*-posix; do
        [[ -f "$d/libstdc++-6.dll" ]] || continue
        major="${d##*/}"
        major="${major%%[!0-9]*}"
        if [[ -n "$major" ]] && ((major > best_major)); then
            best_major="$major" best_gcc="$d"
        fi
    done
    [[ -n "$best_gcc" ]] && dll_dirs+=("$best_gcc")
    [[ -d /usr/x86_64-w64-mingw32/lib ]] && dll_dirs+=(/usr/x86_64-w64-mingw32/lib)
fi
winepath=""
for d in "${dll_dirs[@]}"; do
    [[ -n "$d" ]] || continue
    winepath+="${winepath:+;}Z:${d//\//\\}"
done
export WINEPATH="$winepath${WINEPATH:+;$WINEPATH}"

# Everything below that touches the prefix or the shared server is
# serialised: parallel ctest jobs must not both create the prefix, and only
# one of them should start the server. The lock is a sibling of the prefix
# because the prefix itself may not exist yet.
marker="$WINEPREFIX/.norvane-prefix-ready"
lock="$WINEPREFIX.lock"
mkdir -p "$(dirname "$WINEPREFIX")" || die "cannot create $(dirname "$WINEPREFIX")"
exec 9>"$lock" || die "cannot open lock file $lock"
flock 9 || die "cannot lock $lock"

# Children started while we hold the lock must not inherit fd 9: a
# long-lived wineserver holding it would block every later run. They also
# must not inherit our stdout/stderr: Wine's background services keep
# whatever they inherit open for as long as they live, and ctest waits for
# the test's pipes to close, so a run that spawned them would appear to
# hang for the server's whole lifetime.
start_server() {
    [[ "$persist" -gt 0 && -n "$wineserver" ]] || return 1
    # Exit status 0 means we started it; 2 means one is already running
    # for this prefix (cheap: a few ms).
    "$wineserver" "-p$persist" </dev/null >/dev/null 2>&1 9>&-
}

if [[ ! -f "$marker" ]]; then
    log="$(dirname "$WINEPREFIX")/wineprefix-create.log"
    echo "wine-run: creating Wine prefix $WINEPREFIX (one-off, ~10 s)" >&2
    # A prefix left half-made by an interrupted run is finished off by the
    # same command; wineboot is idempotent.
    if ! WINEARCH=win64 "$wine" wineboot --init </dev/null >"$log" 2>&1 9>&-; then
        die "wineboot failed for $WINEPREFIX; see $log"
    fi
    # The registry only reaches the disk when the server shuts down, and
    # the prefix must not be marked usable before that: a crash later would
    # leave a "ready" prefix with no registry. Waiting (-w) for the
    # short-lived server to wind down takes ~5 s; killing it (-k) saves the
    # registry just the same in under one. Nothing else can be using the
    # prefix while we hold the lock and the marker is absent.
    if [[ -n "$wineserver" ]]; then
        "$wineserver" -k </dev/null >/dev/null 2>&1 9>&-
    fi
    [[ -f "$WINEPREFIX/system.reg" ]] || die "prefix $WINEPREFIX has no system.reg after wineboot; see $log"
    touch "$marker"
fi
if start_server; then
    # A fresh server has no services yet. Start them here, detached from
    # our stdio, instead of letting the real program spawn them and pass
    # its pipes on (see above). Costs ~0.9 s once per server lifetime.
    "$wine" cmd.exe /c exit </dev/null >/dev/null 2>&1 9>&-
fi

exec 9>&-
if [[ $prepare_only -eq 1 ]]; then
    exit 0
fi
exec "$wine" "$@"

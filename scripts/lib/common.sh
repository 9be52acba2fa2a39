# shellcheck shell=bash
# Shared helpers for the setup scripts. Source it; it defines functions and
# a few variables only, so it is safe to source more than once.

if [[ -n "${NORVANE_COMMON_SH_LOADED:-}" ]]; then
    return 0
fi
NORVANE_COMMON_SH_LOADED=1

# Prefix every line with the calling script's name so interleaved output
# from CI logs can be attributed.
norvane_log() {
    printf '[%s] %s\n' "${NORVANE_LOG_TAG:-norvane}" "$*" >&2
}

norvane_die() {
    printf '[%s] ERROR: %s\n' "${NORVANE_LOG_TAG:-norvane}" "$*" >&2
    exit 1
}

# All per-user state (prebuilt cross deps, the wine prefix) lives here rather
# than in the work tree, so fresh clones and `git clean` don't throw it away.
norvane_cache_dir() {
    printf '%s\n' "${NORVANE_CACHE_DIR:-${HOME:?HOME is not set}/.cache/norvane}"
}

# Developers' machines may not run us as root; CI does. Fall back to sudo
# only when it exists, otherwise say plainly what is needed.
norvane_as_root() {
    if [[ "$(id -u)" -eq 0 ]]; then
        "$@"
    elif command -v sudo >/dev/null 2>&1; then
        sudo -- "$@"
    else
        norvane_die "need root to run: $*"
    fi
}

# Prints the subset of the given Debian packages that are not fully
# installed. One dpkg-query for the whole list keeps the no-op path fast.
norvane_missing_packages() {
    local -A installed=()
    local name status
    # Unknown packages make dpkg-query exit 1 and complain on stderr; both
    # just mean "missing" here.
    while IFS=$'\t' read -r name status; do
        [[ "$status" == "ii"* ]] && installed["$name"]=1
    done < <(dpkg-query -W -f='${Package}\t${db:Status-Abbrev}\n' "$@" 2>/dev/null || true)
    local pkg
    for pkg in "$@"; do
        # Strip an explicit ":arch" qualifier; dpkg-query reports bare names.
        [[ -n "${installed[${pkg%%:*}]:-}" ]] || printf '%s\n' "$pkg"
    done
}

# Seconds since the epoch with sub-second precision, for timing steps.
norvane_now() {
    date +%s.%N
}

norvane_elapsed() {
    local start="$1"
    awk -v s="$start" -v e="$(date +%s.%N)" 'BEGIN { printf "%.1fs", e - s }'
}

#!/usr/bin/env bash
# Installs the Debian (bookworm) packages needed to build and test norvane
# natively and cross-compiled for Windows (mingw-w64 + Wine).
#
# Usage: scripts/setup/install-packages.sh [GROUP|PACKAGE ...]
#   No arguments installs everything. Arguments may be group names
#   (native, mingw, wine, fuzz, bench, format, source) or literal package names.
#
# Only packages that are not installed yet are passed to apt, and
# `apt-get update` runs only when something is missing, so re-running this
# on a provisioned machine costs one dpkg-query call.
set -euo pipefail

script_dir="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
# shellcheck source-path=SCRIPTDIR source=../lib/common.sh
source "$script_dir/../lib/common.sh"
NORVANE_LOG_TAG=install-packages

declare -A groups=(
    [native]="build-essential cmake ninja-build pkg-config libdw-dev libboost-thread1.81-dev libboost-regex1.81-dev libboost-date-time1.81-dev libboost-system1.81-dev liblog4cplus-dev libunwind-dev libcurl4-openssl-dev nlohmann-json3-dev googletest libgtest-dev libgmock-dev"
    [mingw]="g++-mingw-w64-x86-64-posix binutils-mingw-w64-x86-64"
    # lldb reads the minidumps of the Windows build's crashes.
    [wine]="wine64 wine lldb"
    # libFuzzer ships in the compiler-rt package, not with clang itself.
    [fuzz]="clang libclang-rt-14-dev"
    [bench]="libbenchmark-dev"
    # clang-format-14: the version .clang-format is tuned for.
    [format]="clang-format-14"
    # apt-get source needs dpkg-source (dpkg-dev) to unpack; xz and patch
    # are what it shells out to for the Debian tarballs and quilt series.
    [source]="dpkg-dev xz-utils patch"
)
group_order=(native mingw wine fuzz bench format source)

wanted=()
if [[ $# -eq 0 ]]; then
    set -- "${group_order[@]}"
fi
for arg in "$@"; do
    if [[ -n "${groups[$arg]:-}" ]]; then
        # shellcheck disable=SC2206  # word splitting of the list is intended
        wanted+=(${groups[$arg]})
    elif [[ "$arg" == -* ]]; then
        norvane_die "unknown option '$arg' (expected group names: ${group_order[*]}, or package names)"
    else
        wanted+=("$arg")
    fi
done

command -v dpkg-query >/dev/null 2>&1 || norvane_die "dpkg-query not found: this script targets Debian 12"

mapfile -t missing < <(norvane_missing_packages "${wanted[@]}")
if [[ ${#missing[@]} -eq 0 ]]; then
    norvane_log "all ${#wanted[@]} packages already installed"
    exit 0
fi

start="$(norvane_now)"
norvane_log "installing ${#missing[@]} missing package(s): ${missing[*]}"

export DEBIAN_FRONTEND=noninteractive
apt_opts=(-y -q -o Dpkg::Use-Pty=0 -o Dpkg::Options::=--force-confdef -o Dpkg::Options::=--force-confold)

norvane_log "apt-get update"
norvane_as_root env DEBIAN_FRONTEND=noninteractive apt-get -q update </dev/null \
    || norvane_die "apt-get update failed"

norvane_as_root env DEBIAN_FRONTEND=noninteractive apt-get install "${apt_opts[@]}" "${missing[@]}" </dev/null \
    || norvane_die "apt-get install failed for: ${missing[*]}"

# Belt and braces: a package name that apt resolved to something else
# (virtual or renamed) would otherwise go unnoticed until the build breaks.
mapfile -t still_missing < <(norvane_missing_packages "${missing[@]}")
if [[ ${#still_missing[@]} -ne 0 ]]; then
    norvane_die "still not installed after apt-get: ${still_missing[*]}"
fi

norvane_log "done in $(norvane_elapsed "$start")"

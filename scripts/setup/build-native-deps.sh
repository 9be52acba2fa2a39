#!/usr/bin/env bash
# Builds log4cplus 2.0.8 for the native (Linux) trees from Debian's source
# package, without its thread pool, as a static library of position-
# independent code that links into libnorvane.so.
#
# Debian's liblog4cplus has the pool built in, and starts its four threads
# in a static initialiser: every program that loaded the library had four
# threads more before main(). The Windows build has been without the pool
# all along (build-mingw-deps.sh); this makes the platforms alike.
#
# Usage: scripts/setup/build-native-deps.sh [--force]
#
# Result: ${NORVANE_CACHE_DIR:-$HOME/.cache/norvane}/native-deps, which
# cmake/NorvaneDependencies.cmake searches in every native tree. A stamp file
# there records what was built; when it matches, the script does nothing.
# Environment: NORVANE_CACHE_DIR, NORVANE_JOBS (default 2).
set -euo pipefail

script_dir="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
# shellcheck source-path=SCRIPTDIR source=../lib/common.sh
source "$script_dir/../lib/common.sh"
# shellcheck source-path=SCRIPTDIR source=../lib/debian-source.sh
source "$script_dir/../lib/debian-source.sh"
NORVANE_LOG_TAG=build-native-deps
self="$script_dir/$(basename "${BASH_SOURCE[0]}")"

read_build_arguments "$self" "$@"

log4cplus_version=2.0.8
library=liblog4cplus-2.0.a
jobs="${NORVANE_JOBS:-2}"
cache_dir="$(norvane_cache_dir)"
prefix="$cache_dir/native-deps"
stamp="$prefix/norvane-deps.stamp"
downloads="$cache_dir/downloads"
logs="$cache_dir/logs"

# Cheap to compute, so that the up-to-date path stays instant.
expected_stamp() {
    printf 'log4cplus=%s\n' "$log4cplus_version"
    printf 'g++=%s\n' "$(dpkg-query -W -f='${Version}' g++ 2>/dev/null || echo unknown)"
    printf 'script-sha256=%s\n' "$(cat "$self" "$script_dir/../lib/debian-source.sh" | sha256sum | cut -d' ' -f1)"
}

stamp_is_current() {
    [[ -f "$stamp" && "$(grep -v '^#' "$stamp")" == "$(expected_stamp)" &&
        -f "$prefix/lib/cmake/log4cplus/log4cplusConfig.cmake" && -f "$prefix/lib/$library" ]]
}

if [[ $force -eq 0 ]] && stamp_is_current; then
    norvane_log "up to date: $prefix"
    exit 0
fi

for tool in cmake ninja g++ apt-get dpkg-source flock sha256sum; do
    command -v "$tool" >/dev/null 2>&1 ||
        norvane_die "'$tool' not found; run scripts/setup/install-packages.sh first"
done
mkdir -p "$cache_dir" "$downloads" "$logs"

# The second of two concurrent runs waits, then finds the first one's stamp.
exec 8>"$cache_dir/native-deps.lock"
flock -n 8 || { norvane_log "another build holds $cache_dir/native-deps.lock; waiting"; flock 8; }
if [[ $force -eq 0 ]] && stamp_is_current; then
    norvane_log "up to date (built by a concurrent run): $prefix"
    exit 0
fi

total_start="$(norvane_now)"
rm -rf "$cache_dir"/native-deps-build.*
work="$(mktemp -d "$cache_dir/native-deps-build.XXXXXX")"
trap 'rm -rf "$work"' EXIT
trap 'norvane_die "interrupted"' INT TERM

ensure_deb_src_entry
fetch_and_extract log4cplus "$log4cplus_version" "$work/log4cplus"

# The stamp goes last: an interrupted run leaves none, and the next starts over.
# Narrow text, as Debian's. No libnsl or librt: the C library has what they
# held, and libnsl would otherwise become one more library loaded with ours.
# Explicit initialisation: no static initialiser sets log4cplus up when the
# library is loaded; the library does it at install (log::prepareLoggers),
# through log4cplus::initialize().
rm -rf "$prefix"
step native-log4cplus-configure cmake -S "$work/log4cplus" -B "$work/build" -G Ninja \
    -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$prefix" -DCMAKE_INSTALL_LIBDIR=lib \
    -DBUILD_SHARED_LIBS=OFF -DCMAKE_POSITION_INDEPENDENT_CODE=ON -DUNICODE=OFF -DLIBNSL= -DLIBRT= \
    "${log4cplus_cmake_args[@]}"
step native-log4cplus-build cmake --build "$work/build" --parallel "$jobs"
step native-log4cplus-install cmake --install "$work/build"
# The install leaves a link to a shared library it never built.
find "$prefix/lib" -maxdepth 1 -xtype l -delete

# The point of the build, proven: initialised, it runs no thread of its own.
no_thread_check() {
    cat >"$work/check.cpp" <<'EOF'
#include <log4cplus/initializer.h>
#include <log4cplus/logger.h>
#include <filesystem>
int main() {
    log4cplus::initialize();
    log4cplus::Logger::getInstance(LOG4CPLUS_TEXT("check"));
    auto const tasks = std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
    return tasks == 1 ? 0 : 1;
}
EOF
    g++ -std=c++17 -O1 "$work/check.cpp" -I"$prefix/include" "$prefix/lib/$library" -pthread \
        -o "$work/check" && "$work/check"
}
step native-log4cplus-no-thread no_thread_check

{
    expected_stamp
    printf '# built %s from %s\n' "$(date -u +%Y-%m-%dT%H:%M:%SZ)" "$fetched_dsc"
} >"$stamp.tmp"
mv -f "$stamp.tmp" "$stamp"
norvane_log "installed into $prefix in $(norvane_elapsed "$total_start")"

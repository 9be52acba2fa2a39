#!/usr/bin/env bash
# Builds the third-party libraries norvane links on Windows -- Boost 1.81
# (thread, regex, date_time, system + the header-only lexical_cast and
# algorithm), log4cplus 2.0.8 (UNICODE) and GoogleTest/GoogleMock -- as
# static mingw-w64 x86-64 libraries, from Debian's own sources.
#
# Usage: scripts/setup/build-mingw-deps.sh [--force]
#
# Result: ${NORVANE_CACHE_DIR:-$HOME/.cache/norvane}/mingw-deps, which
# cmake/toolchains/mingw-w64-x86_64.cmake searches by default. A stamp file
# there records what was built; when it matches, the script does nothing.
# Environment: NORVANE_CACHE_DIR, NORVANE_JOBS (default 2).
set -euo pipefail

script_dir="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
# shellcheck source-path=SCRIPTDIR source=../lib/common.sh
source "$script_dir/../lib/common.sh"
# shellcheck source-path=SCRIPTDIR source=../lib/debian-source.sh
source "$script_dir/../lib/debian-source.sh"
NORVANE_LOG_TAG=build-mingw-deps

repo_root="$(cd "$script_dir/../.." && pwd)"
toolchain="$repo_root/cmake/toolchains/mingw-w64-x86_64.cmake"
self="$script_dir/$(basename "${BASH_SOURCE[0]}")"

read_build_arguments "$self" "$@"

boost_src_pkg=boost1.81
boost_version=1.81.0
boost_libs="thread;regex;lexical_cast;algorithm;date_time;system"
log4cplus_src_pkg=log4cplus
log4cplus_version=2.0.8
gtest_src=/usr/src/googletest
jobs="${NORVANE_JOBS:-2}"

cache_dir="$(norvane_cache_dir)"
prefix="$cache_dir/mingw-deps"
stamp="$prefix/norvane-deps.stamp"
downloads="$cache_dir/downloads"
logs="$cache_dir/logs"

[[ -f "$toolchain" ]] || norvane_die "toolchain file not found: $toolchain"

# Everything that should trigger a rebuild when it changes. Kept cheap to
# compute (no apt, no compiler run) so the up-to-date path stays instant.
expected_stamp() {
    local gtest_pkg mingw_pkg
    gtest_pkg="$(dpkg-query -W -f='${Version}' googletest 2>/dev/null || echo unknown)"
    mingw_pkg="$(dpkg-query -W -f='${Version}' g++-mingw-w64-x86-64-posix 2>/dev/null || echo unknown)"
    printf 'boost=%s\n' "$boost_version"
    printf 'boost-libraries=%s\n' "$boost_libs"
    printf 'log4cplus=%s\n' "$log4cplus_version"
    printf 'googletest=%s\n' "$gtest_pkg"
    printf 'g++-mingw-w64-x86-64-posix=%s\n' "$mingw_pkg"
    printf 'toolchain-sha256=%s\n' "$(sha256sum <"$toolchain" | cut -d' ' -f1)"
    printf 'script-sha256=%s\n' "$(cat "$self" "$script_dir/../lib/debian-source.sh" | sha256sum | cut -d' ' -f1)"
}

stamp_is_current() {
    [[ -f "$stamp" ]] || return 1
    # Lines starting with '#' are informational (Debian revisions, date).
    [[ "$(grep -v '^#' "$stamp")" == "$(expected_stamp)" ]] || return 1
    # A stamp without the files it vouches for (someone pruned the prefix)
    # is as good as none.
    [[ -f "$prefix/lib/cmake/Boost-$boost_version/BoostConfig.cmake" &&
        -f "$prefix/lib/cmake/log4cplus/log4cplusConfig.cmake" &&
        -f "$prefix/lib/cmake/GTest/GTestConfig.cmake" ]]
}

if [[ $force -eq 0 ]] && stamp_is_current; then
    norvane_log "up to date: $prefix"
    exit 0
fi

total_start="$(norvane_now)"

for tool in cmake ninja x86_64-w64-mingw32-g++-posix x86_64-w64-mingw32-windres apt-get dpkg-source flock sha256sum; do
    command -v "$tool" >/dev/null 2>&1 ||
        norvane_die "'$tool' not found; run scripts/setup/install-packages.sh first"
done
[[ -f "$gtest_src/CMakeLists.txt" ]] ||
    norvane_die "$gtest_src missing; run scripts/setup/install-packages.sh first (package googletest)"

mkdir -p "$cache_dir" "$downloads" "$logs"

# Two builds into one prefix would trample each other; the second waits and
# then usually finds the first one's stamp.
exec 8>"$cache_dir/mingw-deps.lock"
if ! flock -n 8; then
    norvane_log "another build holds $cache_dir/mingw-deps.lock; waiting"
    flock 8
fi
if [[ $force -eq 0 ]] && stamp_is_current; then
    norvane_log "up to date (built by a concurrent run): $prefix"
    exit 0
fi

# Under the lock nobody else is building, so any build directory left here
# is debris from an interrupted run.
rm -rf "$cache_dir"/mingw-deps-build.*
work="$(mktemp -d "$cache_dir/mingw-deps-build.XXXXXX")"
trash_pid=""
cleanup() {
    if [[ -n "$trash_pid" ]]; then
        kill "$trash_pid" 2>/dev/null || true
        wait "$trash_pid" 2>/dev/null || true
    fi
    rm -rf "$work"
}
trap cleanup EXIT
trap 'norvane_die "interrupted"' INT TERM

# ---------------------------------------------------------------- sources

ensure_deb_src_entry
norvane_log "fetching sources into $downloads"
fetch_and_extract "$boost_src_pkg" "$boost_version" "$work/boost"
boost_dsc="$fetched_dsc"
fetch_and_extract "$log4cplus_src_pkg" "$log4cplus_version" "$work/log4cplus"
log4cplus_dsc="$fetched_dsc"

# ------------------------------------------------------------------ build

# Start from an empty prefix: left-overs from an older or interrupted build
# must not mix with this one. The stamp goes last, so an interrupted run
# leaves no stamp and the next run starts over.
rm -rf "$prefix"
mkdir -p "$prefix"

common_args=(
    -G Ninja
    -DCMAKE_TOOLCHAIN_FILE="$toolchain"
    -DNORVANE_MINGW_DEPS_PREFIX="$prefix"
    -DCMAKE_BUILD_TYPE=Release
    -DCMAKE_INSTALL_PREFIX="$prefix"
    -DBUILD_SHARED_LIBS=OFF
    -DBUILD_TESTING=OFF
)

build_and_install() {
    local name="$1" src="$2"
    shift 2
    local bld="$work/build-$name"
    step "$name-configure" cmake -S "$src" -B "$bld" "${common_args[@]}" "$@"
    step "$name-build" cmake --build "$bld" --parallel "$jobs"
    step "$name-install" cmake --install "$bld"
}

# "system" layout gives plain include/boost and libboost_thread.a instead of
# the versioned Windows layout; there is only ever one Boost in the prefix.
# ICU is off so regex never picks up a stray host/mingw ICU.
build_and_install boost "$work/boost" \
    -DBOOST_INCLUDE_LIBRARIES="$boost_libs" \
    -DBOOST_INSTALL_LAYOUT=system \
    -DCMAKE_DISABLE_FIND_PACKAGE_ICU=ON

# Boost's CMake build installs one config per library but not the umbrella
# BoostConfig.cmake that find_package(Boost CONFIG COMPONENTS ...) loads, nor
# the boost_headers package it starts with. Supply both, using upstream's
# own BoostConfig.cmake so behaviour matches a b2-installed Boost.
install_boost_umbrella() {
    local cmakedir="$prefix/lib/cmake"
    local umbrella="$cmakedir/Boost-$boost_version"
    local headers="$cmakedir/boost_headers-$boost_version"
    [[ -f "$cmakedir/boost_thread-$boost_version/boost_thread-config.cmake" ]] ||
        { echo "boost_thread config missing under $cmakedir" >&2; return 1; }
    mkdir -p "$umbrella" || return 1
    cp "$work/boost/tools/boost_install/BoostConfig.cmake" "$umbrella/BoostConfig.cmake" || return 1
    cat >"$umbrella/BoostConfigVersion.cmake" <<EOF || return 1
# Written by norvane's build-mingw-deps.sh for Boost $boost_version.
set(PACKAGE_VERSION $boost_version)
if(PACKAGE_VERSION VERSION_LESS PACKAGE_FIND_VERSION)
  set(PACKAGE_VERSION_COMPATIBLE FALSE)
else()
  set(PACKAGE_VERSION_COMPATIBLE TRUE)
  if(PACKAGE_FIND_VERSION STREQUAL PACKAGE_VERSION)
    set(PACKAGE_VERSION_EXACT TRUE)
  endif()
endif()
if(NOT CMAKE_SIZEOF_VOID_P STREQUAL "8")
  set(PACKAGE_VERSION "\${PACKAGE_VERSION} (64 bit)")
  set(PACKAGE_VERSION_UNSUITABLE TRUE)
endif()
EOF
    if [[ ! -f "$headers/boost_headers-config.cmake" ]]; then
        mkdir -p "$headers" || return 1
        cat >"$headers/boost_headers-config.cmake" <<'EOF' || return 1
# Written by norvane's build-mingw-deps.sh: all Boost headers live in one
# include directory, so Boost::headers is just that directory.
if(TARGET Boost::headers)
  return()
endif()
get_filename_component(_boost_headers_incdir "${CMAKE_CURRENT_LIST_DIR}/../../../include" ABSOLUTE)
add_library(Boost::headers INTERFACE IMPORTED)
set_target_properties(Boost::headers PROPERTIES
  INTERFACE_INCLUDE_DIRECTORIES "${_boost_headers_incdir}")
unset(_boost_headers_incdir)
EOF
        cp "$umbrella/BoostConfigVersion.cmake" "$headers/boost_headers-config-version.cmake" || return 1
    fi
}
step boost-umbrella-config install_boost_umbrella

# The Boost tree is ~50k files; deleting it takes a while on slow disks, so
# do it while the compiler keeps the CPUs busy with log4cplus.
mv "$work/boost" "$work/trash-boost"
rm -rf "$work/trash-boost" &
trash_pid=$!

# Wide text, as the Windows build logs wide strings.
build_and_install log4cplus "$work/log4cplus" -DUNICODE=ON "${log4cplus_cmake_args[@]}"

build_and_install googletest "$gtest_src" \
    -DBUILD_GMOCK=ON \
    -DINSTALL_GTEST=ON

# ----------------------------------------------------------------- verify

check_installed() {
    local f missing=0
    for f in \
        include/boost/thread.hpp \
        include/boost/regex.hpp \
        include/boost/date_time/posix_time/posix_time.hpp \
        include/boost/system/error_code.hpp \
        include/boost/lexical_cast.hpp \
        include/boost/algorithm/string.hpp \
        include/log4cplus/logger.h \
        include/gtest/gtest.h \
        include/gmock/gmock.h \
        lib/libboost_thread.a \
        lib/libboost_chrono.a \
        lib/libboost_date_time.a \
        lib/liblog4cplus.a \
        lib/libgtest.a \
        lib/libgtest_main.a \
        lib/libgmock.a \
        lib/libgmock_main.a \
        "lib/cmake/Boost-$boost_version/BoostConfig.cmake" \
        lib/cmake/log4cplus/log4cplusConfig.cmake \
        lib/cmake/GTest/GTestConfig.cmake; do
        if [[ ! -e "$prefix/$f" ]]; then
            echo "missing: $prefix/$f"
            missing=1
        fi
    done
    # Consumers must see UNICODE from the target itself; compiling against
    # the narrow headers while linking the wide library fails at link time
    # at best.
    local defs
    defs="$(sed -n 's/^ *INTERFACE_COMPILE_DEFINITIONS "\(.*\)"$/\1/p' \
        "$prefix/lib/cmake/log4cplus/log4cplusTargets.cmake")"
    if [[ ";$defs;" != *";UNICODE;"* || ";$defs;" != *";_UNICODE;"* ]]; then
        echo "log4cplus::log4cplus exports definitions '$defs', expected UNICODE and _UNICODE"
        missing=1
    fi
    return $missing
}
step check-files check_installed

# End-to-end proof that a consumer gets what it needs from find_package()
# alone: exactly the calls the project makes, with no extra definitions.
# Compile and link only, so this needs no Wine.
consumer_check() {
    local src="$work/consumer" bld="$work/build-consumer"
    mkdir -p "$src"
    cat >"$src/CMakeLists.txt" <<'EOF'
cmake_minimum_required(VERSION 3.16)
project(norvane_deps_check CXX)
set(CMAKE_CXX_STANDARD 17)
find_package(Boost 1.81 CONFIG REQUIRED COMPONENTS thread system date_time regex)
find_package(log4cplus CONFIG REQUIRED)
find_package(GTest CONFIG REQUIRED)
foreach(dir IN ITEMS "${Boost_DIR}" "${log4cplus_DIR}" "${GTest_DIR}")
  file(RELATIVE_PATH rel "${NORVANE_MINGW_DEPS_PREFIX}" "${dir}")
  if(rel MATCHES "^\\.\\.")
    message(FATAL_ERROR "found ${dir} outside ${NORVANE_MINGW_DEPS_PREFIX}")
  endif()
endforeach()
add_executable(check check.cpp)
target_link_libraries(check PRIVATE
  Boost::thread Boost::regex Boost::date_time Boost::system
  log4cplus::log4cplus GTest::gtest GTest::gmock)
EOF
    cat >"$src/check.cpp" <<'EOF'
#include <boost/algorithm/string.hpp>
#include <boost/date_time/posix_time/posix_time.hpp>
#include <boost/lexical_cast.hpp>
#include <boost/regex.hpp>
#include <boost/thread.hpp>
#include <gtest/gtest.h>
#include <log4cplus/logger.h>
#include <log4cplus/loggingmacros.h>
#include <string>
#include <type_traits>

static_assert(std::is_same<log4cplus::tstring, std::wstring>::value,
              "log4cplus target must bring UNICODE with it");

int main(int argc, char** argv) {
    std::string s = boost::algorithm::to_upper_copy(std::string("x"));
    int n = boost::lexical_cast<int>("42");
    boost::regex re("a+");
    boost::thread t([] {});
    t.join();
    auto now = boost::posix_time::microsec_clock::universal_time();
    (void)now;
    log4cplus::Logger l = log4cplus::Logger::getInstance(LOG4CPLUS_TEXT("check"));
    LOG4CPLUS_INFO(l, LOG4CPLUS_TEXT("wide ") << n);
    ::testing::InitGoogleTest(&argc, argv);
    return boost::regex_match(s, re) ? 1 : 0;
}
EOF
    cmake -S "$src" -B "$bld" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$toolchain" \
        -DNORVANE_MINGW_DEPS_PREFIX="$prefix" -DCMAKE_BUILD_TYPE=Release &&
        cmake --build "$bld" --parallel "$jobs"
}
step consumer-check consumer_check

{
    expected_stamp
    printf '# built %s\n' "$(date -u +%Y-%m-%dT%H:%M:%SZ)"
    printf '# boost source: %s\n' "$boost_dsc"
    printf '# log4cplus source: %s\n' "$log4cplus_dsc"
    printf '# googletest source: %s\n' "$gtest_src"
} >"$stamp.tmp"
mv -f "$stamp.tmp" "$stamp"

wait "$trash_pid" || true
trash_pid=""
step remove-build-dir rm -rf "$work"

norvane_log "installed into $prefix in $(norvane_elapsed "$total_start")"

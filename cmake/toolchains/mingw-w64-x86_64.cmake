# Cross-compiles for 64-bit Windows with Debian's mingw-w64 (posix thread
# model) and runs the results under Wine.
#
#   cmake -S . -B build-mingw -G Ninja \
#         -DCMAKE_TOOLCHAIN_FILE=cmake/toolchains/mingw-w64-x86_64.cmake
#
# Third-party libraries come from the prefix that
# scripts/setup/build-mingw-deps.sh fills; override its location with
# -DNORVANE_MINGW_DEPS_PREFIX=... or the NORVANE_CACHE_DIR environment
# variable (same default as the script).

set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(NORVANE_MINGW_TRIPLE x86_64-w64-mingw32)

# The -posix variants use winpthreads and so have std::thread/std::mutex;
# the -win32 ones don't on gcc 12.
set(CMAKE_C_COMPILER ${NORVANE_MINGW_TRIPLE}-gcc-posix)
set(CMAKE_CXX_COMPILER ${NORVANE_MINGW_TRIPLE}-g++-posix)
set(CMAKE_RC_COMPILER ${NORVANE_MINGW_TRIPLE}-windres)

set(NORVANE_MINGW_SYSROOT /usr/${NORVANE_MINGW_TRIPLE})

if(DEFINED ENV{NORVANE_CACHE_DIR} AND NOT "$ENV{NORVANE_CACHE_DIR}" STREQUAL "")
  set(_norvane_cache_dir "$ENV{NORVANE_CACHE_DIR}")
else()
  set(_norvane_cache_dir "$ENV{HOME}/.cache/norvane")
endif()
set(NORVANE_MINGW_DEPS_PREFIX "${_norvane_cache_dir}/mingw-deps"
    CACHE PATH "Install prefix of the mingw-w64 builds of Boost, log4cplus and GoogleTest")
unset(_norvane_cache_dir)

# try_compile() projects re-read this file without the parent's cache;
# forward the prefix so checks see the same libraries as the real build.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES NORVANE_MINGW_DEPS_PREFIX)

# The deps prefix is a root, not just a prefix, so that find_package() finds
# it even with PACKAGE mode ONLY and so that configs which locate their own
# dependencies by plain find_dependency() (Boost's per-library ones do)
# resolve inside it as well.
list(APPEND CMAKE_FIND_ROOT_PATH "${NORVANE_MINGW_SYSROOT}" "${NORVANE_MINGW_DEPS_PREFIX}")
# With PACKAGE mode ONLY, a CMAKE_PREFIX_PATH entry would otherwise be
# re-rooted under each root (and so never found); in a cross build any
# prefix someone passes is meant to hold target libraries, so make it a
# root too.
set(_norvane_env_prefix_path "$ENV{CMAKE_PREFIX_PATH}")
if(_norvane_env_prefix_path)
  string(REPLACE ":" ";" _norvane_env_prefix_path "${_norvane_env_prefix_path}")
endif()
foreach(_norvane_p IN LISTS CMAKE_PREFIX_PATH _norvane_env_prefix_path)
  if(IS_ABSOLUTE "${_norvane_p}")
    list(APPEND CMAKE_FIND_ROOT_PATH "${_norvane_p}")
  endif()
endforeach()
unset(_norvane_p)
unset(_norvane_env_prefix_path)
list(REMOVE_DUPLICATES CMAKE_FIND_ROOT_PATH)

# Build tools come from the host; everything linked into the target must
# come from the roots above, never from the host's /usr (whose Boost, GTest
# and log4cplus are ELF builds with matching CMake configs).
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

get_filename_component(_norvane_wine_run "${CMAKE_CURRENT_LIST_DIR}/../wine-run.sh" ABSOLUTE)
set(CMAKE_CROSSCOMPILING_EMULATOR "${_norvane_wine_run}")
unset(_norvane_wine_run)

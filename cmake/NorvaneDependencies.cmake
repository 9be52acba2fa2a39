# The libraries the project builds on. Natively they come from Debian's
# packages, but for log4cplus (below); for Windows from the cross-built cache
# that scripts/setup/build-mingw-deps.sh fills (see the mingw toolchain file).
find_package(Boost 1.81 CONFIG REQUIRED COMPONENTS thread system date_time regex)
# Natively, log4cplus is not Debian's: that one starts a pool of four threads
# in a static initialiser, in every process that loads the library. The
# native trees link the build without the pool that
# scripts/setup/build-native-deps.sh puts into the cache.
if(CMAKE_CROSSCOMPILING)
    find_package(log4cplus CONFIG REQUIRED)
else()
    if(DEFINED ENV{NORVANE_CACHE_DIR} AND NOT "$ENV{NORVANE_CACHE_DIR}" STREQUAL "")
        set(norvane_cache_dir "$ENV{NORVANE_CACHE_DIR}")
    else()
        set(norvane_cache_dir "$ENV{HOME}/.cache/norvane")
    endif()
    set(NORVANE_NATIVE_DEPS_PREFIX "${norvane_cache_dir}/native-deps"
        CACHE PATH "Install prefix of the native log4cplus built without its thread pool")
    # A tree configured before found Debian's and keeps it in its cache.
    string(FIND "${log4cplus_DIR}" "${NORVANE_NATIVE_DEPS_PREFIX}/" norvane_in_prefix)
    if(NOT norvane_in_prefix EQUAL 0)
        unset(log4cplus_DIR CACHE)
    endif()
    find_package(log4cplus CONFIG QUIET PATHS "${NORVANE_NATIVE_DEPS_PREFIX}" NO_DEFAULT_PATH)
    if(NOT log4cplus_FOUND)
        message(FATAL_ERROR "log4cplus without its thread pool is not in ${NORVANE_NATIVE_DEPS_PREFIX}: "
            "run scripts/setup/build-native-deps.sh")
    endif()
endif()
find_package(Threads REQUIRED)

if(NORVANE_BUILD_TESTS)
    find_package(GTest CONFIG REQUIRED)
endif()

if(NORVANE_BUILD_BENCHMARKS)
    find_package(benchmark CONFIG QUIET)
endif()

# nlohmann-json, header-only, for the feedback tool's JSON. The Windows build
# uses Debian's headers as well, copied into a directory of their own: the
# host's /usr/include must never be on the cross compiler's include path. One
# target name on both.
if(CMAKE_CROSSCOMPILING)
    find_path(NORVANE_HOST_NLOHMANN_JSON_DIR nlohmann/json.hpp
        PATHS /usr/include NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)
    set(norvane_nlohmann_json_include "${CMAKE_BINARY_DIR}/third_party/nlohmann_json/include")
    file(COPY "${NORVANE_HOST_NLOHMANN_JSON_DIR}/nlohmann" DESTINATION "${norvane_nlohmann_json_include}")
    add_library(nlohmann_json::nlohmann_json INTERFACE IMPORTED)
    set_target_properties(nlohmann_json::nlohmann_json PROPERTIES
        INTERFACE_INCLUDE_DIRECTORIES "${norvane_nlohmann_json_include}")
else()
    find_package(nlohmann_json 3 CONFIG REQUIRED)
endif()

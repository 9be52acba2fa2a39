# The libraries the project builds on. Natively they come from Debian's
# packages; for Windows from the cross-built cache that
# scripts/setup/build-mingw-deps.sh fills (see the mingw toolchain file).
find_package(Boost 1.81 CONFIG REQUIRED COMPONENTS thread system date_time regex)
find_package(log4cplus CONFIG REQUIRED)
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

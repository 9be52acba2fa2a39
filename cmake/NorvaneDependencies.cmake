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

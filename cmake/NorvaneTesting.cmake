# Unit tests: GoogleTest programs linked with the library's objects.
include(GoogleTest)

# Test names carry the tree (linux, linux-asan, linux-tsan, windows), so that
# one run over several trees tells their tests apart.
if(NORVANE_PLATFORM STREQUAL "windows")
    set(NORVANE_TEST_PLATFORM windows)
else()
    set(NORVANE_TEST_PLATFORM linux)
endif()
if(NORVANE_SANITIZE STREQUAL "address")
    string(APPEND NORVANE_TEST_PLATFORM -asan)
elseif(NORVANE_SANITIZE STREQUAL "thread")
    string(APPEND NORVANE_TEST_PLATFORM -tsan)
endif()

# On Windows the task service's pipe has one name for the whole machine (the
# Wine prefix): tests whose processes run a service take turns.
set(NORVANE_TASK_PIPE_LOCK "")
if(NORVANE_PLATFORM STREQUAL "windows")
    set(NORVANE_TASK_PIPE_LOCK RESOURCE_LOCK minidump_task_pipe)
endif()

# Under the thread sanitizer the crash signals are the library's to handle,
# not the sanitizer's, and its first warning ends the program (exit code 66),
# so that no warning goes unseen in the output of a child that crashed on
# purpose. One kind of warning is off: calls that aren't async-signal-safe
# inside a signal handler. The crashed thread allocates, logs and locks
# before the hand-over on purpose, each step listed in the essay of
# crashed_thread.cpp with why it is accepted, and the crash's time budget
# bounds what it could cost. Nor are threads left unjoined reported: a crash
# ends the process while its worker and service threads are finished but
# unjoined, on purpose, as nothing may be waited for at that point.
set(NORVANE_SANITIZER_VARIABLES "")
set(NORVANE_SANITIZER_ENVIRONMENT "")
if(NORVANE_SANITIZE STREQUAL "thread")
    set(NORVANE_SANITIZER_VARIABLES
        "TSAN_OPTIONS=halt_on_error=1 report_signal_unsafe=0 report_thread_leaks=0 handle_segv=0 handle_sigbus=0 handle_sigill=0 handle_sigfpe=0 handle_abort=0")
    set(NORVANE_SANITIZER_ENVIRONMENT ENVIRONMENT "${NORVANE_SANITIZER_VARIABLES}")
endif()

# norvane_add_unit_test(<name> <source>... [PROPERTIES <property> <value>...])
#
# The test links the library's objects directly and is compiled as part of
# the library, so it can reach internal headers under core/src and the
# protected members through test subclasses. PROPERTIES go to every test
# of the program.
function(norvane_add_unit_test name)
    cmake_parse_arguments(PARSE_ARGV 1 test "" "" "PROPERTIES")
    add_executable(${name} ${test_UNPARSED_ARGUMENTS})
    target_link_libraries(${name} PRIVATE norvane_objects GTest::gtest GTest::gmock GTest::gtest_main)
    target_compile_definitions(${name} PRIVATE NORVANE_BUILDING_LIBRARY)
    target_include_directories(${name} PRIVATE
        ${PROJECT_SOURCE_DIR}/core/src
        ${PROJECT_SOURCE_DIR}/tests/support)
    norvane_apply_warnings(${name})
    # Discovery runs when the tests run, not at build time: under Wine it
    # would otherwise start every test program once per build.
    gtest_discover_tests(${name}
        TEST_PREFIX "${NORVANE_TEST_PLATFORM}."
        DISCOVERY_MODE PRE_TEST
        DISCOVERY_TIMEOUT 120
        PROPERTIES LABELS unit ${NORVANE_SANITIZER_ENVIRONMENT} ${test_PROPERTIES})
endfunction()

# Unit tests: GoogleTest programs linked with the library's objects.
include(GoogleTest)

# Test names carry the platform, so that a run over both builds tells them apart.
if(WIN32)
    set(default_platform windows)
else()
    set(default_platform linux)
endif()
set(NORVANE_TEST_PLATFORM ${default_platform} CACHE STRING "Prefix of the test names")

# On Windows the task service's pipe has one name for the whole machine (the
# Wine prefix): tests whose processes run a service take turns.
set(NORVANE_TASK_PIPE_LOCK "")
if(WIN32)
    set(NORVANE_TASK_PIPE_LOCK RESOURCE_LOCK minidump_task_pipe)
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
        PROPERTIES LABELS unit ${test_PROPERTIES})
endfunction()

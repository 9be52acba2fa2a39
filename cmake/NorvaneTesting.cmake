# Unit tests: GoogleTest programs linked with the library's objects.
include(GoogleTest)

# Test names carry the platform, so that a run over both builds tells them apart.
if(WIN32)
    set(default_platform windows)
else()
    set(default_platform linux)
endif()
set(NORVANE_TEST_PLATFORM ${default_platform} CACHE STRING "Prefix of the test names")

# norvane_add_unit_test(<name> <source>...)
#
# The test links the library's objects directly and is compiled as part of
# the library, so it can reach internal headers under core/src and the
# protected members through test subclasses.
function(norvane_add_unit_test name)
    add_executable(${name} ${ARGN})
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
        PROPERTIES LABELS unit)
endfunction()

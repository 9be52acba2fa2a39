# The "all-tests" tree: its test file names the other trees' test files, so
# that ctest --preset all-tests runs them all and ends with one summary line.
# The trees are those of the presets, under build/<preset name>.
enable_testing()
set(norvane_tree_dirs "")
foreach(tree IN LISTS NORVANE_TEST_TREES)
    set(tree_dir "${PROJECT_SOURCE_DIR}/build/${tree}")
    if(NOT EXISTS "${tree_dir}/CTestTestfile.cmake")
        message(FATAL_ERROR "${tree_dir} has no tests: configure and build preset '${tree}' first")
    endif()
    string(APPEND norvane_tree_dirs "subdirs(\"${tree_dir}\")\n")
endforeach()
file(WRITE "${PROJECT_BINARY_DIR}/test_trees.cmake" "${norvane_tree_dirs}")
set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES "${PROJECT_BINARY_DIR}/test_trees.cmake")

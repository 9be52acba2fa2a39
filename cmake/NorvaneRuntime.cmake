# Windows programs built with mingw-w64 need the compiler's run-time DLLs at
# run time. Copying them beside the programs keeps every way of starting them
# working (ctest, a crashing child, a spawned handler) without a search path.
#
# The copies lose the debug information Debian's build leaves in them and get
# page-aligned sections (see the link options in the top CMakeLists): every
# program loads libstdc++, and under Wine the 23 MB file as shipped was read
# whole at every start, 12-15 ms and 21 MiB of each test process and handler.
if(NOT NORVANE_PLATFORM STREQUAL "windows")
    return()
endif()

set(NORVANE_RUNTIME_DLLS "")
foreach(dll libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
    execute_process(
        COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${dll}
        OUTPUT_VARIABLE found OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(NOT IS_ABSOLUTE "${found}" OR NOT EXISTS "${found}")
        # libwinpthread lives with the target's libraries, not the compiler's.
        find_file(found_${dll} ${dll} PATHS /usr/x86_64-w64-mingw32/lib NO_DEFAULT_PATH
            NO_CMAKE_FIND_ROOT_PATH)
        set(found "${found_${dll}}")
    endif()
    if(NOT EXISTS "${found}")
        message(FATAL_ERROR "Cannot find the run-time DLL ${dll} of ${CMAKE_CXX_COMPILER}")
    endif()
    list(APPEND NORVANE_RUNTIME_DLLS "${found}")
endforeach()
file(MAKE_DIRECTORY "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}")
foreach(found IN LISTS NORVANE_RUNTIME_DLLS)
    get_filename_component(dll "${found}" NAME)
    set(copy "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${dll}")
    if(EXISTS "${copy}" AND NOT "${found}" IS_NEWER_THAN "${copy}")
        continue()
    endif()
    execute_process(
        COMMAND ${CMAKE_OBJCOPY} --strip-debug --file-alignment 4096 "${found}" "${copy}"
        RESULT_VARIABLE stripped)
    if(NOT stripped EQUAL 0)
        message(FATAL_ERROR "Cannot copy the run-time DLL ${found} with ${CMAKE_OBJCOPY}")
    endif()
endforeach()

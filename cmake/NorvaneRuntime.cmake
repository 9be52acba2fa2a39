# Windows programs built with mingw-w64 need the compiler's run-time DLLs at
# run time. Copying them beside the programs keeps every way of starting them
# working (ctest, a crashing child, a spawned handler) without a search path.
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
file(COPY ${NORVANE_RUNTIME_DLLS} DESTINATION "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}")

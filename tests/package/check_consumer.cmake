# Installs the build into a scratch prefix, then configures, builds and runs
# the consumer project against it. Run by ctest with:
#   -DBUILD_DIR=<project build> -DSOURCE_DIR=<consumer source> -DWORK_DIR=<scratch>
#   [-DTOOLCHAIN=<toolchain file>] [-DEMULATOR=<program runner>]
cmake_minimum_required(VERSION 3.25)

function(run_step what)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE out)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "${what} failed (${result}):\n${out}")
    endif()
    message(STATUS "${what}: ok")
    set(step_output "${out}" PARENT_SCOPE)
endfunction()

set(prefix "${WORK_DIR}/prefix")
set(build "${WORK_DIR}/build")
file(REMOVE_RECURSE "${WORK_DIR}")

run_step("install" ${CMAKE_COMMAND} --install "${BUILD_DIR}" --prefix "${prefix}")

# The feedback tool comes along, and runs from where it was installed: with
# no arguments it says how to call it and ends with 2.
file(GLOB tool "${prefix}/bin/kelmur-feedback" "${prefix}/bin/kelmur-feedback.exe")
if(NOT tool)
    message(FATAL_ERROR "the feedback tool was not installed into ${prefix}/bin")
endif()
execute_process(COMMAND ${EMULATOR} ${tool} RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE out)
if(NOT result EQUAL 2 OR NOT out MATCHES "usage: kelmur-feedback")
    message(FATAL_ERROR "the installed feedback tool did not run (${result}):\n${out}")
endif()
message(STATUS "installed feedback tool runs: ok")

set(configure ${CMAKE_COMMAND} -S "${SOURCE_DIR}" -B "${build}" -G Ninja
    "-DCMAKE_PREFIX_PATH=${prefix}" -DCMAKE_BUILD_TYPE=Release)
if(TOOLCHAIN)
    list(APPEND configure "-DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN}" "-DCMAKE_FIND_ROOT_PATH=${prefix}")
endif()
run_step("configure consumer" ${configure})
run_step("build consumer" ${CMAKE_COMMAND} --build "${build}")

if(EXISTS "${prefix}/bin")
    # A Windows program finds its DLLs beside itself.
    file(GLOB dlls "${prefix}/bin/*.dll")
    file(COPY ${dlls} DESTINATION "${build}")
endif()
file(GLOB program "${build}/consumer" "${build}/consumer.exe")
run_step("run consumer" ${EMULATOR} ${program})
message(STATUS "${step_output}")

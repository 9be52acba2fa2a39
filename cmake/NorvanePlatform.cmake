# The platform the tree is built for, decided here and nowhere else:
# NORVANE_PLATFORM is "windows" or "posix", and every platform file is named
# <stem>_windows.cpp or <stem>_posix.cpp, so that CMakeLists pick them by
# suffix and a portable file can't be compiled for one platform by mistake.
if(CMAKE_SYSTEM_NAME STREQUAL "Windows")
    set(NORVANE_PLATFORM windows)
else()
    set(NORVANE_PLATFORM posix)
endif()

# norvane_platform_sources(<list> [<stem>...] [WINDOWS <stem>...] [POSIX <stem>...])
#
# Appends <stem>_${NORVANE_PLATFORM}.cpp to <list> for each stem that both
# platforms implement, and the stems after WINDOWS or POSIX only on that
# platform. Stems may carry a folder: src/files becomes src/files_posix.cpp.
function(norvane_platform_sources list)
    cmake_parse_arguments(PARSE_ARGV 1 only "" "" "WINDOWS;POSIX")
    string(TOUPPER ${NORVANE_PLATFORM} platform)
    set(sources ${${list}})
    foreach(stem IN LISTS only_UNPARSED_ARGUMENTS only_${platform})
        list(APPEND sources ${stem}_${NORVANE_PLATFORM}.cpp)
    endforeach()
    set(${list} ${sources} PARENT_SCOPE)
endfunction()

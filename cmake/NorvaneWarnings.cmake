# Compiler warnings shared by every target of the project.
#
# The CI trees turn warnings into errors, so that none piles up unseen in a
# build log. Third-party headers come in as SYSTEM includes and stay quiet.
option(NORVANE_WARNINGS_AS_ERRORS "Treat compiler warnings as errors" OFF)
set(CMAKE_COMPILE_WARNING_AS_ERROR ${NORVANE_WARNINGS_AS_ERRORS})

function(norvane_apply_warnings target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow
        -Wnon-virtual-dtor -Wcast-align -Woverloaded-virtual)
endfunction()

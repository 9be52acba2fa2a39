# Compiler warnings shared by every target of the project.
function(norvane_apply_warnings target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow
        -Wnon-virtual-dtor -Wcast-align -Woverloaded-virtual)
endfunction()

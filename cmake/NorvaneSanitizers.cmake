# The sanitizer builds. NORVANE_SANITIZE names the set, and every part of the
# build that must differ under a sanitizer reads it, never the compiler flags:
#   OFF      no sanitizer
#   address  AddressSanitizer with LeakSanitizer, and UndefinedBehaviorSanitizer;
#            any undefined behaviour ends the program
#   thread   ThreadSanitizer
set(NORVANE_SANITIZE OFF CACHE STRING "Sanitizers to build with: OFF, address (with UBSan) or thread")
set_property(CACHE NORVANE_SANITIZE PROPERTY STRINGS OFF address thread)

if(NORVANE_SANITIZE STREQUAL "address")
    set(norvane_sanitizers address,undefined)
    add_compile_options(-fno-sanitize-recover=undefined)
elseif(NORVANE_SANITIZE STREQUAL "thread")
    set(norvane_sanitizers thread)
elseif(NOT NORVANE_SANITIZE STREQUAL "OFF")
    message(FATAL_ERROR "NORVANE_SANITIZE is OFF, address or thread, not '${NORVANE_SANITIZE}'")
endif()

# Before any target: every object and every link of the tree is instrumented
# alike. Frame pointers keep the sanitizers' own stacks whole.
if(DEFINED norvane_sanitizers)
    add_compile_options(-fsanitize=${norvane_sanitizers} -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${norvane_sanitizers})
endif()

# The fuzz target's objects carry libFuzzer's coverage hooks; its own link
# adds the fuzzer's main (fuzz/CMakeLists.txt).
if(NORVANE_BUILD_FUZZERS)
    if(NOT NORVANE_SANITIZE STREQUAL "address")
        message(FATAL_ERROR "The fuzz targets need NORVANE_SANITIZE=address")
    endif()
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()

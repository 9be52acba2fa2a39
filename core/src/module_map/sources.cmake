# Sources of the module map, module enumeration and debug identity, relative
# to core/. Included by core/CMakeLists.txt.
set(NORVANE_MODULE_MAP_SOURCES
    src/module_map/elf_image.cpp
    src/module_map/load_module_map.cpp
    src/module_map/map_heap.cpp
    src/module_map/maps_region_source.cpp
    src/module_map/module_map.cpp
    src/module_map/module_scan.cpp
    src/module_map/pe_image.cpp
    src/module_map/stack_capture.cpp
    src/module_map/stack_scan.cpp
    src/module_map/wow64_path.cpp)
norvane_platform_sources(NORVANE_MODULE_MAP_SOURCES
    src/module_map/dbghelp
    src/module_map/region_source
    WINDOWS
    src/module_map/process_bitness
    src/module_map/wow64_file
    POSIX
    src/module_map/elf_debug_identity)

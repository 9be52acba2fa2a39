# Sources of the module map, module enumeration and debug identity, relative
# to core/. Included by core/CMakeLists.txt.
set(NORVANE_MODULE_MAP_SOURCES)

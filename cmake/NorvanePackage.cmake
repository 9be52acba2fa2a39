# Installation and the CMake package: find_package(norvane CONFIG) gives the
# imported target norvane::norvane with the public headers.
include(CMakePackageConfigHelpers)

set(NORVANE_CMAKE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/norvane")

install(TARGETS norvane EXPORT norvaneTargets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY core/include/norvane_1 DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY ${NORVANE_PLATFORM_INCLUDE_DIR}/norvane_1 DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT norvaneTargets NAMESPACE norvane:: DESTINATION ${NORVANE_CMAKE_DIR})

configure_package_config_file(cmake/norvaneConfig.cmake.in
    "${PROJECT_BINARY_DIR}/norvaneConfig.cmake"
    INSTALL_DESTINATION ${NORVANE_CMAKE_DIR})
write_basic_package_version_file("${PROJECT_BINARY_DIR}/norvaneConfigVersion.cmake"
    COMPATIBILITY SameMajorVersion)
install(FILES
    "${PROJECT_BINARY_DIR}/norvaneConfig.cmake"
    "${PROJECT_BINARY_DIR}/norvaneConfigVersion.cmake"
    DESTINATION ${NORVANE_CMAKE_DIR})

if(NORVANE_PLATFORM STREQUAL "windows")
    # The DLL needs the compiler's run-time DLLs beside it; its program
    # database goes there too, where a debugger looks for it by the name in
    # the DLL's CodeView record.
    install(FILES ${NORVANE_RUNTIME_DLLS} DESTINATION ${CMAKE_INSTALL_BINDIR})
    install(FILES "$<TARGET_FILE_DIR:norvane>/$<TARGET_FILE_BASE_NAME:norvane>.pdb"
        DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

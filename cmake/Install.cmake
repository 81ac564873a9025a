include(CMakePackageConfigHelpers)

install(FILES include/kesu.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/kesu DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES ${CMAKE_BINARY_DIR}/generated/kesu/Version.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/kesu)
install(TARGETS kesu_shared kesu_static EXPORT kesu-targets
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(EXPORT kesu-targets NAMESPACE kesu:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/kesu)

configure_package_config_file(cmake/kesu-config.cmake.in ${CMAKE_BINARY_DIR}/kesu-config.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/kesu)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/kesu-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/kesu-config.cmake ${CMAKE_BINARY_DIR}/kesu-config-version.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/kesu)

# Found from where the file lies, so that an installation may be moved.
file(RELATIVE_PATH KESU_PREFIX_FROM_PC /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(cmake/kesu.pc.in ${CMAKE_BINARY_DIR}/kesu.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/kesu.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

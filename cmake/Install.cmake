include(CMakePackageConfigHelpers)

install(FILES include/kesu.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/kesu DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES ${CMAKE_BINARY_DIR}/generated/kesu/Version.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/kesu)
# Apart, since a user of the shared library needs none of the packages that the static one is linked with.
install(TARGETS kesu_shared EXPORT kesu-targets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(TARGETS kesu_static EXPORT kesu-static-targets ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
foreach(targets kesu-targets kesu-static-targets)
  install(EXPORT ${targets} NAMESPACE kesu:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/kesu)
endforeach()
if(KESU_DRAWING)
  install(TARGETS kesu_drawing_library LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} NAMELINK_SKIP)
endif()

configure_package_config_file(cmake/kesu-config.cmake.in ${CMAKE_BINARY_DIR}/kesu-config.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/kesu)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/kesu-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/kesu-config.cmake ${CMAKE_BINARY_DIR}/kesu-config-version.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/kesu)

# Found from where the file lies, so that an installation may be moved.
file(RELATIVE_PATH KESU_PREFIX_FROM_PC /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
set(KESU_DRAWING_PC)
if(KESU_DRAWING)
  set(KESU_DRAWING_PC "pangocairo pangoft2 fontconfig libturbojpeg libwebp libpng")
  set(KESU_DRAWING_LIBS "-lgif")
endif()
configure_file(cmake/kesu.pc.in ${CMAKE_BINARY_DIR}/kesu.pc @ONLY)
configure_file(cmake/kesu-static.pc.in ${CMAKE_BINARY_DIR}/kesu-static.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/kesu.pc ${CMAKE_BINARY_DIR}/kesu-static.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# Installation: headers, the shared library, a CMake package that gives
# Ostrel::ostrel to find_package(Ostrel), and a pkg-config file.
include(CMakePackageConfigHelpers)

install(TARGETS ostrel EXPORT OstrelTargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/Includes/
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/ostrel
  FILES_MATCHING PATTERN "*.h")

set(OSTREL_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/Ostrel)
install(EXPORT OstrelTargets NAMESPACE Ostrel:: DESTINATION ${OSTREL_CMAKE_DIR})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/OstrelConfig.cmake.in
  ${PROJECT_BINARY_DIR}/OstrelConfig.cmake
  INSTALL_DESTINATION ${OSTREL_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/OstrelConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/OstrelConfig.cmake
  ${PROJECT_BINARY_DIR}/OstrelConfigVersion.cmake
  DESTINATION ${OSTREL_CMAKE_DIR})

# pkg-config file; its paths hang off the install prefix.
set(OSTREL_PC_LIBDIR "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
set(OSTREL_PC_INCLUDEDIR "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}/ostrel")
configure_file(${PROJECT_SOURCE_DIR}/cmake/ostrel.pc.in
  ${PROJECT_BINARY_DIR}/ostrel.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/ostrel.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

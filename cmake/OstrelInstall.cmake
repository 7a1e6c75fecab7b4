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

# pkg-config file; its paths hang off the install prefix, which it finds from
# its own place in the tree, so it stays right for a tree installed with
# `cmake --install --prefix` or moved after installation.
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}" OR IS_ABSOLUTE "${CMAKE_INSTALL_INCLUDEDIR}")
  set(OSTREL_PC_PREFIX "${CMAKE_INSTALL_PREFIX}")
  set(OSTREL_PC_LIBDIR "${CMAKE_INSTALL_FULL_LIBDIR}")
  set(OSTREL_PC_INCLUDEDIR "${CMAKE_INSTALL_FULL_INCLUDEDIR}/ostrel")
else()
  file(RELATIVE_PATH OSTREL_PC_UP "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
  string(REGEX REPLACE "/$" "" OSTREL_PC_UP "${OSTREL_PC_UP}")
  set(OSTREL_PC_PREFIX "\${pcfiledir}/${OSTREL_PC_UP}")
  set(OSTREL_PC_LIBDIR "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
  set(OSTREL_PC_INCLUDEDIR "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}/ostrel")
endif()
configure_file(${PROJECT_SOURCE_DIR}/cmake/ostrel.pc.in
  ${PROJECT_BINARY_DIR}/ostrel.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/ostrel.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

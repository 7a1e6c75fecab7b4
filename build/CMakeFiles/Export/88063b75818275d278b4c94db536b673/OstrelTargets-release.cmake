#----------------------------------------------------------------
# Generated CMake target import file for configuration "Release".
#----------------------------------------------------------------

# Commands may need to know the format version.
set(CMAKE_IMPORT_FILE_VERSION 1)

# Import target "Ostrel::ostrel" for configuration "Release"
set_property(TARGET Ostrel::ostrel APPEND PROPERTY IMPORTED_CONFIGURATIONS RELEASE)
set_target_properties(Ostrel::ostrel PROPERTIES
  IMPORTED_LOCATION_RELEASE "${_IMPORT_PREFIX}/lib/libostrel.so.1.0.0"
  IMPORTED_SONAME_RELEASE "libostrel.so.1"
  )

list(APPEND _cmake_import_check_targets Ostrel::ostrel )
list(APPEND _cmake_import_check_files_for_Ostrel::ostrel "${_IMPORT_PREFIX}/lib/libostrel.so.1.0.0" )

# Commands beyond this point should not need to know the version.
set(CMAKE_IMPORT_FILE_VERSION)


# Consider dependencies only in project.
set(CMAKE_DEPENDS_IN_PROJECT_ONLY OFF)

# The set of languages for which implicit dependencies are needed:
set(CMAKE_DEPENDS_LANGUAGES
  )

# The set of dependency files which are needed:
set(CMAKE_DEPENDS_DEPENDENCY_FILES
  "/work/main/tests/arithmetic_test.cpp" "tests/CMakeFiles/ostrel_unit_tests.dir/arithmetic_test.cpp.o" "gcc" "tests/CMakeFiles/ostrel_unit_tests.dir/arithmetic_test.cpp.o.d"
  "/work/main/tests/fills_test.cpp" "tests/CMakeFiles/ostrel_unit_tests.dir/fills_test.cpp.o" "gcc" "tests/CMakeFiles/ostrel_unit_tests.dir/fills_test.cpp.o.d"
  "/work/main/tests/frame_test.cpp" "tests/CMakeFiles/ostrel_unit_tests.dir/frame_test.cpp.o" "gcc" "tests/CMakeFiles/ostrel_unit_tests.dir/frame_test.cpp.o.d"
  )

# Targets to which this target links.
set(CMAKE_TARGET_LINKED_INFO_FILES
  )

# Fortran module output directory.
set(CMAKE_Fortran_TARGET_MODULE_DIR "")

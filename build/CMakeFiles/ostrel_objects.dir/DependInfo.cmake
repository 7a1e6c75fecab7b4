
# Consider dependencies only in project.
set(CMAKE_DEPENDS_IN_PROJECT_ONLY OFF)

# The set of languages for which implicit dependencies are needed:
set(CMAKE_DEPENDS_LANGUAGES
  )

# The set of dependency files which are needed:
set(CMAKE_DEPENDS_DEPENDENCY_FILES
  "/work/main/src/compositing/fills.cpp" "CMakeFiles/ostrel_objects.dir/src/compositing/fills.cpp.o" "gcc" "CMakeFiles/ostrel_objects.dir/src/compositing/fills.cpp.o.d"
  "/work/main/src/compositing/fills_avx2.cpp" "CMakeFiles/ostrel_objects.dir/src/compositing/fills_avx2.cpp.o" "gcc" "CMakeFiles/ostrel_objects.dir/src/compositing/fills_avx2.cpp.o.d"
  "/work/main/src/compositing/fills_scalar.cpp" "CMakeFiles/ostrel_objects.dir/src/compositing/fills_scalar.cpp.o" "gcc" "CMakeFiles/ostrel_objects.dir/src/compositing/fills_scalar.cpp.o.d"
  "/work/main/src/compositing/fills_sse2.cpp" "CMakeFiles/ostrel_objects.dir/src/compositing/fills_sse2.cpp.o" "gcc" "CMakeFiles/ostrel_objects.dir/src/compositing/fills_sse2.cpp.o.d"
  "/work/main/src/frame/checked.cpp" "CMakeFiles/ostrel_objects.dir/src/frame/checked.cpp.o" "gcc" "CMakeFiles/ostrel_objects.dir/src/frame/checked.cpp.o.d"
  "/work/main/src/frame/cpu_features.cpp" "CMakeFiles/ostrel_objects.dir/src/frame/cpu_features.cpp.o" "gcc" "CMakeFiles/ostrel_objects.dir/src/frame/cpu_features.cpp.o.d"
  "/work/main/src/frame/dispatch.cpp" "CMakeFiles/ostrel_objects.dir/src/frame/dispatch.cpp.o" "gcc" "CMakeFiles/ostrel_objects.dir/src/frame/dispatch.cpp.o.d"
  "/work/main/src/frame/mfc_utilities.cpp" "CMakeFiles/ostrel_objects.dir/src/frame/mfc_utilities.cpp.o" "gcc" "CMakeFiles/ostrel_objects.dir/src/frame/mfc_utilities.cpp.o.d"
  "/work/main/src/frame/module.cpp" "CMakeFiles/ostrel_objects.dir/src/frame/module.cpp.o" "gcc" "CMakeFiles/ostrel_objects.dir/src/frame/module.cpp.o.d"
  "/work/main/src/frame/platform_posix.cpp" "CMakeFiles/ostrel_objects.dir/src/frame/platform_posix.cpp.o" "gcc" "CMakeFiles/ostrel_objects.dir/src/frame/platform_posix.cpp.o.d"
  "/work/main/suite/text_manager.cpp" "CMakeFiles/ostrel_objects.dir/suite/text_manager.cpp.o" "gcc" "CMakeFiles/ostrel_objects.dir/suite/text_manager.cpp.o.d"
  "/work/main/suite/vornel_exception.cpp" "CMakeFiles/ostrel_objects.dir/suite/vornel_exception.cpp.o" "gcc" "CMakeFiles/ostrel_objects.dir/suite/vornel_exception.cpp.o.d"
  )

# Targets to which this target links.
set(CMAKE_TARGET_LINKED_INFO_FILES
  )

# Fortran module output directory.
set(CMAKE_Fortran_TARGET_MODULE_DIR "")

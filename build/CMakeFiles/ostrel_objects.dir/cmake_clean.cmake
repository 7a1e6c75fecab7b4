file(REMOVE_RECURSE
  "CMakeFiles/ostrel_objects.dir/src/compositing/fills.cpp.o"
  "CMakeFiles/ostrel_objects.dir/src/compositing/fills.cpp.o.d"
  "CMakeFiles/ostrel_objects.dir/src/compositing/fills_avx2.cpp.o"
  "CMakeFiles/ostrel_objects.dir/src/compositing/fills_avx2.cpp.o.d"
  "CMakeFiles/ostrel_objects.dir/src/compositing/fills_scalar.cpp.o"
  "CMakeFiles/ostrel_objects.dir/src/compositing/fills_scalar.cpp.o.d"
  "CMakeFiles/ostrel_objects.dir/src/compositing/fills_sse2.cpp.o"
  "CMakeFiles/ostrel_objects.dir/src/compositing/fills_sse2.cpp.o.d"
  "CMakeFiles/ostrel_objects.dir/src/frame/checked.cpp.o"
  "CMakeFiles/ostrel_objects.dir/src/frame/checked.cpp.o.d"
  "CMakeFiles/ostrel_objects.dir/src/frame/cpu_features.cpp.o"
  "CMakeFiles/ostrel_objects.dir/src/frame/cpu_features.cpp.o.d"
  "CMakeFiles/ostrel_objects.dir/src/frame/dispatch.cpp.o"
  "CMakeFiles/ostrel_objects.dir/src/frame/dispatch.cpp.o.d"
  "CMakeFiles/ostrel_objects.dir/src/frame/mfc_utilities.cpp.o"
  "CMakeFiles/ostrel_objects.dir/src/frame/mfc_utilities.cpp.o.d"
  "CMakeFiles/ostrel_objects.dir/src/frame/module.cpp.o"
  "CMakeFiles/ostrel_objects.dir/src/frame/module.cpp.o.d"
  "CMakeFiles/ostrel_objects.dir/src/frame/platform_posix.cpp.o"
  "CMakeFiles/ostrel_objects.dir/src/frame/platform_posix.cpp.o.d"
  "CMakeFiles/ostrel_objects.dir/suite/text_manager.cpp.o"
  "CMakeFiles/ostrel_objects.dir/suite/text_manager.cpp.o.d"
  "CMakeFiles/ostrel_objects.dir/suite/vornel_exception.cpp.o"
  "CMakeFiles/ostrel_objects.dir/suite/vornel_exception.cpp.o.d"
)

# Per-language clean rules from dependency scanning.
foreach(lang CXX)
  include(CMakeFiles/ostrel_objects.dir/cmake_clean_${lang}.cmake OPTIONAL)
endforeach()

file(REMOVE_RECURSE
  "CMakeFiles/ostrel_unit_tests.dir/arithmetic_test.cpp.o"
  "CMakeFiles/ostrel_unit_tests.dir/arithmetic_test.cpp.o.d"
  "CMakeFiles/ostrel_unit_tests.dir/fills_test.cpp.o"
  "CMakeFiles/ostrel_unit_tests.dir/fills_test.cpp.o.d"
  "CMakeFiles/ostrel_unit_tests.dir/frame_test.cpp.o"
  "CMakeFiles/ostrel_unit_tests.dir/frame_test.cpp.o.d"
  "ostrel_unit_tests"
  "ostrel_unit_tests.pdb"
  "ostrel_unit_tests[1]_tests.cmake"
)

# Per-language clean rules from dependency scanning.
foreach(lang CXX)
  include(CMakeFiles/ostrel_unit_tests.dir/cmake_clean_${lang}.cmake OPTIONAL)
endforeach()

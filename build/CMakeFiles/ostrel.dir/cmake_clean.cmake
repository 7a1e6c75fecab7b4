file(REMOVE_RECURSE
  "libostrel.pdb"
  "libostrel.so"
  "libostrel.so.1"
  "libostrel.so.1.0.0"
)

# Per-language clean rules from dependency scanning.
foreach(lang CXX)
  include(CMakeFiles/ostrel.dir/cmake_clean_${lang}.cmake OPTIONAL)
endforeach()

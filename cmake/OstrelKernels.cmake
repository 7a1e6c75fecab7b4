# Which kernel sources the build compiles, decided here and nowhere else.
#
# The instruction sets come from the one list in src/frame/isa_list.h (lines
# "X(arg, Suffix, NAME, processor, feature)"). A set's kernel files
# (src/*/*_<suffix>.cpp) are compiled when OSTREL_SIMD is on and the target
# processor belongs to the set's family; otherwise they are left out. The
# code learns the outcome through the definitions of the interface library
# ostrel_kernel_config:
#   OSTREL_PROCESSOR_<FAMILY>   1 for the target's family, 0 for the others
#   OSTREL_KERNELS_<NAME>       1 for every set compiled, 0 for the others
#
# ostrel_select_kernel_sources(<list variable>) filters a source list.

if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|amd64|i[3-6]86|x86)$")
  set(OSTREL_PROCESSOR x86)
elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "^(aarch64|arm64|ARM64)$")
  set(OSTREL_PROCESSOR aarch64)
else()
  set(OSTREL_PROCESSOR other)
endif()

file(READ ${PROJECT_SOURCE_DIR}/src/frame/isa_list.h _ostrel_isa_text)
string(REGEX MATCHALL "X\\(arg, *[A-Za-z0-9]+, *[A-Z0-9]+, *[a-z0-9_]+, *[a-z0-9_]+\\)"
  _ostrel_isa_lines "${_ostrel_isa_text}")
if(NOT _ostrel_isa_lines)
  message(FATAL_ERROR "no instruction set found in src/frame/isa_list.h")
endif()

set(OSTREL_KERNEL_SETS "")      # the NAMEs compiled
set(OSTREL_SKIPPED_SUFFIXES "")  # the file suffixes left out
set(_ostrel_families "")
set(_ostrel_definitions "")
foreach(_line IN LISTS _ostrel_isa_lines)
  if(NOT _line MATCHES "X\\(arg, *([A-Za-z0-9]+), *([A-Z0-9]+), *([a-z0-9_]+), *[a-z0-9_]+\\)")
    message(FATAL_ERROR "src/frame/isa_list.h: cannot read \"${_line}\"")
  endif()
  set(_suffix ${CMAKE_MATCH_1})
  set(_name ${CMAKE_MATCH_2})
  set(_family ${CMAKE_MATCH_3})
  list(APPEND _ostrel_families ${_family})
  if(OSTREL_SIMD AND _family STREQUAL OSTREL_PROCESSOR)
    list(APPEND OSTREL_KERNEL_SETS ${_name})
    list(APPEND _ostrel_definitions OSTREL_KERNELS_${_name}=1)
  else()
    string(TOLOWER ${_suffix} _lower)
    list(APPEND OSTREL_SKIPPED_SUFFIXES ${_lower})
    list(APPEND _ostrel_definitions OSTREL_KERNELS_${_name}=0)
  endif()
endforeach()
list(REMOVE_DUPLICATES _ostrel_families)
foreach(_family IN LISTS _ostrel_families)
  string(TOUPPER ${_family} _upper)
  if(_family STREQUAL OSTREL_PROCESSOR)
    list(APPEND _ostrel_definitions OSTREL_PROCESSOR_${_upper}=1)
  else()
    list(APPEND _ostrel_definitions OSTREL_PROCESSOR_${_upper}=0)
  endif()
endforeach()

if(OSTREL_KERNEL_SETS)
  string(REPLACE ";" ", " _sets "${OSTREL_KERNEL_SETS}")
  message(STATUS "Ostrel kernels (${OSTREL_PROCESSOR}): scalar, ${_sets}")
else()
  message(STATUS "Ostrel kernels (${OSTREL_PROCESSOR}): scalar only")
endif()

add_library(ostrel_kernel_config INTERFACE)
target_compile_definitions(ostrel_kernel_config INTERFACE ${_ostrel_definitions})

function(ostrel_select_kernel_sources list_var)
  set(_sources ${${list_var}})
  foreach(_lower IN LISTS OSTREL_SKIPPED_SUFFIXES)
    list(FILTER _sources EXCLUDE REGEX "_${_lower}\\.cpp$")
  endforeach()
  set(${list_var} ${_sources} PARENT_SCOPE)
endfunction()

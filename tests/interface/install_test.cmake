# Installs the built library into a scratch prefix, checks the installed
# tree, then builds and runs the consumer program against it twice: through
# find_package(Ostrel) and through pkg-config. The scratch directory is
# removed whatever the outcome, and the build tree's install manifest (which
# `cmake --install` rewrites) is put back as it was.
#
#   cmake -DBUILD_DIR=... -DWORK_DIR=... -DCONSUMER_DIR=... -DHEADERS_DIR=...
#         -DCONFIG=... -DGENERATOR=... -DCXX=... -DCXX_FLAGS=...
#         -DLIBDIR=... -DINCLUDEDIR=...
#         -DSOVERSION=... -DVERSION=... -DOBJDUMP=... -DPKG_CONFIG=...
#         -P install_test.cmake
cmake_minimum_required(VERSION 3.20)

set(prefix "${WORK_DIR}/prefix")
set(libdir "${prefix}/${LIBDIR}")
set(manifest "${BUILD_DIR}/install_manifest.txt")

function(cleanup)
  if(EXISTS "${WORK_DIR}/install_manifest.txt")
    file(COPY_FILE "${WORK_DIR}/install_manifest.txt" "${manifest}")
  else()
    file(REMOVE "${manifest}")
  endif()
  file(REMOVE_RECURSE "${WORK_DIR}")
endfunction()

function(fail message)
  cleanup()
  message(FATAL_ERROR "${message}")
endfunction()

# Runs a command; fails with its output unless it succeeds. The output is
# left in run_output.
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE out)
  if(NOT rc EQUAL 0)
    string(REPLACE ";" " " command "${ARGN}")
    fail("${command}\nfailed (${rc}):\n${out}")
  endif()
  set(run_output "${out}" PARENT_SCOPE)
endfunction()

function(expect_file path)
  if(NOT EXISTS "${path}")
    fail("not installed: ${path}")
  endif()
endfunction()

file(REMOVE_RECURSE "${WORK_DIR}")
file(MAKE_DIRECTORY "${WORK_DIR}")
if(EXISTS "${manifest}")
  file(COPY_FILE "${manifest}" "${WORK_DIR}/install_manifest.txt")
endif()
run(${CMAKE_COMMAND} --install "${BUILD_DIR}" --prefix "${prefix}" --config "${CONFIG}")

# The installed tree.
file(GLOB headers RELATIVE "${HEADERS_DIR}" "${HEADERS_DIR}/*.h")
foreach(header IN LISTS headers)
  expect_file("${prefix}/${INCLUDEDIR}/ostrel/${header}")
endforeach()
foreach(file libostrel.so libostrel.so.${SOVERSION} cmake/Ostrel/OstrelConfig.cmake
             cmake/Ostrel/OstrelConfigVersion.cmake cmake/Ostrel/OstrelTargets.cmake
             pkgconfig/ostrel.pc)
  expect_file("${libdir}/${file}")
endforeach()
run(${OBJDUMP} -p "${libdir}/libostrel.so.${SOVERSION}")
if(NOT run_output MATCHES "SONAME +libostrel\\.so\\.${SOVERSION}\n")
  fail("libostrel.so.${SOVERSION} does not carry the SONAME libostrel.so.${SOVERSION}")
endif()

# A host built with CMake, finding the package under the scratch prefix only.
set(cmake_host "${WORK_DIR}/cmake-host")
run(${CMAKE_COMMAND} -S "${CONSUMER_DIR}" -B "${cmake_host}" -G "${GENERATOR}"
    "-DCMAKE_CXX_COMPILER=${CXX}" "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}" "-DCMAKE_BUILD_TYPE=${CONFIG}"
    "-DCMAKE_PREFIX_PATH=${prefix}" -DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF
    -DCMAKE_FIND_USE_SYSTEM_PACKAGE_REGISTRY=OFF)
file(STRINGS "${cmake_host}/CMakeCache.txt" found REGEX "^Ostrel_DIR:")
if(NOT found STREQUAL "Ostrel_DIR:PATH=${libdir}/cmake/Ostrel")
  fail("find_package(Ostrel) found another package: ${found}")
endif()
run(${CMAKE_COMMAND} --build "${cmake_host}" --config "${CONFIG}")
run("${cmake_host}/ostrel_consumer")

# A host built with the flags pkg-config gives, from the installed .pc only.
set(pc_env ${CMAKE_COMMAND} -E env "PKG_CONFIG_LIBDIR=${libdir}/pkgconfig" PKG_CONFIG_PATH=)
run(${pc_env} ${PKG_CONFIG} --modversion ostrel)
string(STRIP "${run_output}" pc_version)
if(NOT pc_version STREQUAL VERSION)
  fail("ostrel.pc has version '${pc_version}', the library ${VERSION}")
endif()
run(${pc_env} ${PKG_CONFIG} --cflags --libs ostrel)
separate_arguments(pc_flags UNIX_COMMAND "${run_output}")
# The README's command for a prefix outside the loader's folders: the
# library's folder as the program's run path, from the .pc file's libdir.
run(${pc_env} ${PKG_CONFIG} --variable=libdir ostrel)
string(STRIP "${run_output}" pc_libdir)
separate_arguments(cxx_flags UNIX_COMMAND "${CXX_FLAGS}")
run(${CXX} ${cxx_flags} -std=c++17 -Wall -Wextra -Werror "${CONSUMER_DIR}/main.cpp" ${pc_flags}
    "-Wl,-rpath,${pc_libdir}" -o "${WORK_DIR}/pc-host")
run(${CMAKE_COMMAND} -E env --unset=LD_LIBRARY_PATH "${WORK_DIR}/pc-host")

cleanup()

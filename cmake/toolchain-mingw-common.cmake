# The part of the MinGW-w64 cross toolchains that does not depend on the
# target processor; toolchain-mingw-i686.cmake and toolchain-mingw-x86_64.cmake
# set CMAKE_SYSTEM_PROCESSOR and OSTREL_MINGW_PREFIX, then include it.
#
# The -posix compiler is used: its standard library has std::mutex and
# std::thread, which the win32-threads variant lacks. Its thread support
# (winpthread) is linked statically into Ostrel.dll, as are libgcc and
# libstdc++ (see the top-level CMakeLists.txt), and into the test programs
# (tests/CMakeLists.txt).
if(NOT OSTREL_MINGW_PREFIX)
  message(FATAL_ERROR "Use toolchain-mingw-i686.cmake or toolchain-mingw-x86_64.cmake")
endif()
set(CMAKE_SYSTEM_NAME Windows)

find_program(CMAKE_CXX_COMPILER NAMES ${OSTREL_MINGW_PREFIX}-g++-posix REQUIRED)
find_program(CMAKE_C_COMPILER NAMES ${OSTREL_MINGW_PREFIX}-gcc-posix)
find_program(CMAKE_RC_COMPILER NAMES ${OSTREL_MINGW_PREFIX}-windres)
find_program(CMAKE_AR NAMES ${OSTREL_MINGW_PREFIX}-gcc-ar-posix ${OSTREL_MINGW_PREFIX}-ar)
find_program(CMAKE_RANLIB NAMES ${OSTREL_MINGW_PREFIX}-gcc-ranlib-posix ${OSTREL_MINGW_PREFIX}-ranlib)

# Look for libraries and headers in the target's tree only; programs come
# from the build machine.
set(CMAKE_FIND_ROOT_PATH /usr/${OSTREL_MINGW_PREFIX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

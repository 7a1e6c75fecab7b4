# Cross-compiles for 64-bit ARM Linux with Debian's aarch64-linux-gnu
# toolchain (package g++-aarch64-linux-gnu):
#   cmake -S . -B build-arm -DCMAKE_TOOLCHAIN_FILE=cmake/toolchain-aarch64-linux.cmake
#
# Test programs run under user-mode qemu (package qemu-user-static), with the
# toolchain's tree as the target's root for its dynamic loader and libraries;
# CTest and GoogleTest's test discovery go through it.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)

set(OSTREL_CROSS_PREFIX aarch64-linux-gnu)
find_program(CMAKE_CXX_COMPILER NAMES ${OSTREL_CROSS_PREFIX}-g++ REQUIRED)
find_program(CMAKE_C_COMPILER NAMES ${OSTREL_CROSS_PREFIX}-gcc)

set(CMAKE_FIND_ROOT_PATH /usr/${OSTREL_CROSS_PREFIX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

find_program(OSTREL_QEMU_AARCH64 NAMES qemu-aarch64-static qemu-aarch64)
if(OSTREL_QEMU_AARCH64)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${OSTREL_QEMU_AARCH64} -L /usr/${OSTREL_CROSS_PREFIX})
endif()

# Cross-compiles for 32-bit Windows with the i686-w64-mingw32 toolchain:
#   cmake -S . -B build-mingw -DCMAKE_TOOLCHAIN_FILE=cmake/toolchain-mingw-i686.cmake
set(CMAKE_SYSTEM_PROCESSOR i686)
set(OSTREL_MINGW_PREFIX i686-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/toolchain-mingw-common.cmake)

# Cross-compiles for 64-bit Windows with the x86_64-w64-mingw32 toolchain:
#   cmake -S . -B build-mingw64 -DCMAKE_TOOLCHAIN_FILE=cmake/toolchain-mingw-x86_64.cmake
# scripts/test wine builds the unit tests so and runs them under wine64.
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(OSTREL_MINGW_PREFIX x86_64-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/toolchain-mingw-common.cmake)

# Compiler settings shared by the library, its tests, benchmarks and examples
# (OSTREL_PROCESSOR comes from OstrelKernels.cmake).

function(ostrel_apply_compile_options target)
  if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
    target_compile_options(${target} PRIVATE -Wall -Wextra
      # Doubles must come out bit for bit the same on every build, so no
      # multiply-add contraction ...
      -ffp-contract=off)
    if(OSTREL_PROCESSOR STREQUAL "x86" AND CMAKE_SIZEOF_VOID_P EQUAL 4)
      # ... and no x87 extended precision on 32-bit x86: SSE2 arithmetic
      # rounds every double the way the 64-bit build does.
      target_compile_options(${target} PRIVATE -msse2 -mfpmath=sse)
    endif()
    if(MINGW)
      # The Windows ABI only guarantees 4- (32-bit) or 16-byte stack alignment,
      # which 32-byte AVX spills assume; let the assembler use unaligned moves.
      target_compile_options(${target} PRIVATE -Wa,-muse-unaligned-vector-move)
    endif()
  elseif(MSVC)
    target_compile_options(${target} PRIVATE /W4 /fp:precise)
  endif()
endfunction()

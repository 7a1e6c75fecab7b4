// The vector instruction sets the kernels are written for, lowest first
// within each processor family, one X(...) line per set:
//
//   X(arg, Suffix, NAME, processor, feature)
//
//   Suffix     names a family's table for the set (<Family><Suffix>) and, in
//              lower case, the kernel files that define it (*_<suffix>.cpp)
//   NAME       what tests and benchmarks print; the build defines
//              OSTREL_KERNELS_<NAME> to 1 when it compiles the set's kernel
//              files and to 0 when it does not
//   processor  the processor family whose builds compile the set (x86,
//              aarch64); the build defines OSTREL_PROCESSOR_<PROCESSOR>
//   feature    the CpuFeatures member that says the processor runs the set
//
// arg is passed through to X unchanged. The build reads this list too
// (cmake/OstrelKernels.cmake), so adding an instruction set means adding its
// line here and writing its kernel files.
#ifndef OSTREL_FRAME_ISA_LIST_H
#define OSTREL_FRAME_ISA_LIST_H

// clang-format off
#define OSTREL_FOR_EACH_VECTOR_ISA(X, arg) \
  X(arg, Sse2, SSE2, x86, sse2)            \
  X(arg, Avx2, AVX2, x86, avx2)            \
  X(arg, Neon, NEON, aarch64, neon)
// clang-format on

#endif  // OSTREL_FRAME_ISA_LIST_H

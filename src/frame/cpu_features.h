// What the processor offers: read with cpuid on x86; on aarch64 the
// Advanced SIMD (NEON) instructions every such processor has.
#ifndef OSTREL_FRAME_CPU_FEATURES_H
#define OSTREL_FRAME_CPU_FEATURES_H

namespace ostrel {
namespace frame {

struct CpuFeatures {
  bool mmx;
  bool sse2;
  bool sse3;
  bool avx2;  // AVX2 instructions and an operating system that saves YMM state
  bool neon;  // Advanced SIMD on aarch64
};

// All false on other processors.
CpuFeatures ReadCpuFeatures();

}  // namespace frame
}  // namespace ostrel

#endif  // OSTREL_FRAME_CPU_FEATURES_H

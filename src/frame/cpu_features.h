// What the processor offers, read once with cpuid (x86 only).
#ifndef OSTREL_FRAME_CPU_FEATURES_H
#define OSTREL_FRAME_CPU_FEATURES_H

namespace ostrel {
namespace frame {

struct CpuFeatures {
  bool mmx;
  bool sse2;
  bool sse3;
  bool avx2;  // AVX2 instructions and an operating system that saves YMM state
};

// All false on processors other than x86.
CpuFeatures ReadCpuFeatures();

}  // namespace frame
}  // namespace ostrel

#endif  // OSTREL_FRAME_CPU_FEATURES_H

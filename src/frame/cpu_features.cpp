#include "frame/cpu_features.h"

#include "frame/dispatch.h"

#if OSTREL_PROCESSOR_X86
#if defined(_MSC_VER)
#include <intrin.h>
#else
#include <cpuid.h>
#endif
#endif

namespace ostrel {
namespace frame {

#if OSTREL_PROCESSOR_X86
namespace {

struct CpuidRegs {
  unsigned int eax, ebx, ecx, edx;
};

CpuidRegs Cpuid(unsigned int leaf, unsigned int subleaf) {
  CpuidRegs r{0, 0, 0, 0};
#if defined(_MSC_VER)
  int regs[4];
  __cpuidex(regs, static_cast<int>(leaf), static_cast<int>(subleaf));
  r = {static_cast<unsigned>(regs[0]), static_cast<unsigned>(regs[1]),
       static_cast<unsigned>(regs[2]), static_cast<unsigned>(regs[3])};
#else
  const unsigned int maxLeaf =
      static_cast<unsigned int>(__get_cpuid_max(leaf & 0x80000000u, nullptr));
  if (leaf > maxLeaf) return r;
  __cpuid_count(leaf, subleaf, r.eax, r.ebx, r.ecx, r.edx);
#endif
  return r;
}

// The register state the operating system saves on a context switch.
unsigned long long ReadXcr0() {
#if defined(_MSC_VER)
  return _xgetbv(0);
#else
  unsigned int lo, hi;
  __asm__ volatile("xgetbv" : "=a"(lo), "=d"(hi) : "c"(0));
  return (static_cast<unsigned long long>(hi) << 32) | lo;
#endif
}

}  // namespace

CpuFeatures ReadCpuFeatures() {
  CpuFeatures f{false, false, false, false, false};
  const CpuidRegs leaf1 = Cpuid(1, 0);
  f.mmx = (leaf1.edx >> 23) & 1u;
  f.sse2 = (leaf1.edx >> 26) & 1u;
  f.sse3 = leaf1.ecx & 1u;
  const bool osxsave = (leaf1.ecx >> 27) & 1u;
  const bool avx = (leaf1.ecx >> 28) & 1u;
  if (osxsave && avx && (ReadXcr0() & 0x6u) == 0x6u) {
    const CpuidRegs leaf7 = Cpuid(7, 0);
    f.avx2 = (leaf7.ebx >> 5) & 1u;
  }
  return f;
}

#else

CpuFeatures ReadCpuFeatures() {
  CpuFeatures f{false, false, false, false, false};
  f.neon = OSTREL_PROCESSOR_AARCH64 != 0;
  return f;
}

#endif

}  // namespace frame
}  // namespace ostrel

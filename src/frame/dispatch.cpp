#include "frame/dispatch.h"

#include "frame/cpu_features.h"

namespace ostrel {
namespace frame {
namespace simd {

namespace {

Isa DetectIsa() {
  if (!OSTREL_KERNELS_X86) return Isa::kScalar;
  const frame::CpuFeatures f = frame::ReadCpuFeatures();
  if (f.avx2 && f.sse2) return Isa::kAvx2;
  if (f.sse2) return Isa::kSse2;
  return Isa::kScalar;
}

const Isa g_supportedIsa = DetectIsa();

}  // namespace

std::atomic<int> g_activeIsa{static_cast<int>(DetectIsa())};

Isa SupportedIsa() { return g_supportedIsa; }

void LimitIsaForTesting(Isa limit) {
  const int best = static_cast<int>(g_supportedIsa);
  const int wanted = static_cast<int>(limit);
  g_activeIsa.store(wanted < best ? wanted : best, std::memory_order_relaxed);
}

}  // namespace simd
}  // namespace frame
}  // namespace ostrel

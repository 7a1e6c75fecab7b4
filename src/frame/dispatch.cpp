#include "frame/dispatch.h"

#include "frame/cpu_features.h"

namespace ostrel {
namespace frame {
namespace simd {

namespace {

// Which levels run here: scalar always; a vector set when the build has its
// kernels and the processor reports its feature.
struct Runnable {
  Runnable() {
    const CpuFeatures f = ReadCpuFeatures();
    level[0] = true;
#define OSTREL_ISA_RUNS(features, Suffix, NAME, processor, feature) \
  level[static_cast<int>(Isa::k##Suffix)] = OSTREL_KERNELS_##NAME != 0 && features.feature;
    OSTREL_FOR_EACH_VECTOR_ISA(OSTREL_ISA_RUNS, f)
#undef OSTREL_ISA_RUNS
    for (int i = 0; i < kIsaCount; ++i) {
      if (level[i]) best = static_cast<Isa>(i);
    }
  }
  bool level[kIsaCount] = {};
  Isa best = Isa::kScalar;
};

const Runnable &Detected() {
  static const Runnable runnable;
  return runnable;
}

}  // namespace

std::atomic<int> g_activeIsa{static_cast<int>(Detected().best)};

Isa SupportedIsa() { return Detected().best; }

bool Runs(Isa isa) {
  const int i = static_cast<int>(isa);
  return i >= 0 && i < kIsaCount && Detected().level[i];
}

void LimitIsaForTesting(Isa limit) {
  int chosen = 0;
  for (int i = 0; i < kIsaCount && i <= static_cast<int>(limit); ++i) {
    if (Detected().level[i]) chosen = i;
  }
  g_activeIsa.store(chosen, std::memory_order_relaxed);
}

}  // namespace simd
}  // namespace frame
}  // namespace ostrel

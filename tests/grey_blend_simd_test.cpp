// Grey row kernels: every entry of the SSE2 and AVX2 tables against the
// scalar definition, on random rows of 0..100 bytes at unaligned addresses
// inside guarded buffers, for opacities that take each weight path.
#include <gtest/gtest.h>

#include <vector>

#include "compositing/grey_blend_kernels.h"
#include "frame/dispatch.h"
#include "grey_test_util.h"

namespace {

using namespace grey_test;
using ostrel::compositing::GreyBlendKernels;
using ostrel::compositing::GreyRowKernel;
using ostrel::frame::simd::Isa;

struct Entry {
  const char *name;
  GreyRowKernel (*of)(const GreyBlendKernels &);
};
#define ENTRY(field)                                          \
  {                                                           \
#field, [](const GreyBlendKernels &t) { return t.field; } \
  }
const Entry kEntries[] = {
    ENTRY(densityByAlpha[0]),   ENTRY(densityByAlpha[1]),    ENTRY(densityByInverse[0]),
    ENTRY(densityByInverse[1]), ENTRY(applyAlpha[0]),        ENTRY(applyAlpha[1]),
    ENTRY(greysByAlpha),        ENTRY(greysByAlphaTwoLevel), ENTRY(lookup)};
#undef ENTRY

TEST(GreyBlendKernels, EveryIsaMatchesScalar) {
#if OSTREL_KERNELS_X86
  std::vector<const GreyBlendKernels *> tables = {&ostrel::compositing::GreyBlendKernelsSse2};
  if (ostrel::frame::simd::SupportedIsa() == Isa::kAvx2) {
    tables.push_back(&ostrel::compositing::GreyBlendKernelsAvx2);
  }
  std::mt19937 rng(23);
  std::vector<u8> table(256);
  for (auto &t : table) t = u8(rng());
  const u32 opacities[] = {255, 0, 1, 128, 254};
  for (const Entry &entry : kEntries) {
    for (int round = 0; round < 300; ++round) {
      const std::size_t n = round < 101 ? round : rng() % 101;
      const std::size_t off = rng() % 32;
      const auto src = TurnBytes(n + 64, rng), alpha = TurnBytes(n + 64, rng),
                 start = TurnBytes(n + 64, rng);
      ostrel::compositing::GreyBlend b;
      b.opacity = opacities[round % 5];
      b.density = TurnByte(rng);
      b.table = table.data();
      auto want = start;
      ostrel::compositing::GreyRow row{want.data() + off, n};
      row.src = src.data() + off + 1;
      row.alpha = alpha.data() + off + 2;
      entry.of(ostrel::compositing::GreyBlendKernelsScalar)(row, b);
      for (std::size_t t = 0; t < tables.size(); ++t) {
        auto got = start;
        row.dst = got.data() + off;
        entry.of (*tables[t])(row, b);
        ASSERT_EQ(got, want) << (t == 0 ? "SSE2 " : "AVX2 ") << entry.name << ", " << n
                             << " bytes at offset " << off << ", opacity " << b.opacity;
      }
    }
  }
#else
  GTEST_SKIP() << "no vector kernels on this processor";
#endif
}

}  // namespace

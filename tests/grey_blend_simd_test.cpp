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
using ostrel::GreyBlendKernels;
using ostrel::GreyRowKernel;
using ostrel::simd::Isa;

struct Entry {
  const char *name;
  GreyRowKernel (*of)(const GreyBlendKernels &);
};
const Entry kEntries[] = {
    {"densityByAlpha exact", [](const GreyBlendKernels &t) { return t.densityByAlpha[0]; }},
    {"densityByAlpha fast", [](const GreyBlendKernels &t) { return t.densityByAlpha[1]; }},
    {"densityByInverse exact", [](const GreyBlendKernels &t) { return t.densityByInverse[0]; }},
    {"densityByInverse fast", [](const GreyBlendKernels &t) { return t.densityByInverse[1]; }},
    {"applyAlpha exact", [](const GreyBlendKernels &t) { return t.applyAlpha[0]; }},
    {"applyAlpha fast", [](const GreyBlendKernels &t) { return t.applyAlpha[1]; }},
    {"greysByAlpha", [](const GreyBlendKernels &t) { return t.greysByAlpha; }},
    {"greysByAlphaTwoLevel", [](const GreyBlendKernels &t) { return t.greysByAlphaTwoLevel; }},
    {"lookup", [](const GreyBlendKernels &t) { return t.lookup; }},
};

TEST(GreyBlendKernels, EveryIsaMatchesScalar) {
#if OSTREL_X86
  std::vector<const GreyBlendKernels *> tables = {&ostrel::GreyBlendKernelsSse2};
  if (ostrel::simd::SupportedIsa() == Isa::kAvx2) tables.push_back(&ostrel::GreyBlendKernelsAvx2);
  std::mt19937 rng(23);
  std::vector<u8> table(256);
  for (auto &t : table) t = u8(rng());
  const u32 opacities[] = {255, 0, 1, 128, 254};
  for (const Entry &entry : kEntries) {
    for (int round = 0; round < 300; ++round) {
      const std::size_t n = round < 101 ? round : rng() % 101;
      const std::size_t off = rng() % 32;
      const auto src = Random<u8>(n + 64, [&] { return TurnByte(rng); });
      const auto alpha = Random<u8>(n + 64, [&] { return TurnByte(rng); });
      const auto start = Random<u8>(n + 64, [&] { return TurnByte(rng); });
      ostrel::GreyBlend b;
      b.opacity = opacities[round % 5];
      b.density = TurnByte(rng);
      b.table = table.data();
      auto want = start;
      ostrel::GreyRow row{want.data() + off, n};
      row.src = src.data() + off + 1;
      row.alpha = alpha.data() + off + 2;
      entry.of(ostrel::GreyBlendKernelsScalar)(row, b);
      for (std::size_t t = 0; t < tables.size(); ++t) {
        auto got = start;
        row.dst = got.data() + off;
        entry.of(*tables[t])(row, b);
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

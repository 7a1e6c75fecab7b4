// Blends into 32-bit colour: the SSE2 and AVX2 kernels against the scalar definitions, every member
// on the random scenes of trc_blend_test.cpp, and the division by 255 the vector kernels use.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "frame/blend.h"
#include "frame/dispatch.h"

namespace ostrel_trc_test {  // trc_blend_test.cpp: all buffers of a member's call on the random
                             // scene of seed
std::vector<std::uint32_t> TrcBlendRandomRun(int member, bool exact, unsigned seed,
                                             std::string *what);
int TrcBlendMemberCount();
}  // namespace ostrel_trc_test

namespace {

using ostrel::frame::simd::Isa;

TEST(TrcBlendKernels, EveryIsaMatchesScalar) {
  if (ostrel::frame::simd::SupportedIsa() == Isa::kScalar) {
    GTEST_SKIP() << "no vector kernels on this processor";
  }
  long bad = 0;
  std::string first;
  for (int m = 0; m < ostrel_trc_test::TrcBlendMemberCount(); ++m) {
    for (unsigned seed = 1; seed <= 400;
         ++seed) {  // odd seeds in the exact form, even ones in the fast form
      std::string what;
      ostrel::frame::simd::LimitIsaForTesting(Isa::kScalar);
      const auto scalar = ostrel_trc_test::TrcBlendRandomRun(m, seed % 2, seed, &what);
      for (int isa = 1; isa <= static_cast<int>(ostrel::frame::simd::SupportedIsa()); ++isa) {
        ostrel::frame::simd::LimitIsaForTesting(static_cast<Isa>(isa));
        const auto got = ostrel_trc_test::TrcBlendRandomRun(m, seed % 2, seed, nullptr);
        if (got == scalar || bad++ != 0) continue;
        const auto at = std::mismatch(got.begin(), got.end(), scalar.begin()).first - got.begin();
        first = (isa == 1 ? "SSE2, " : "AVX2, ") + what + ": buffer element " + std::to_string(at) +
                " is " + std::to_string(got[at]) + ", scalar gives " + std::to_string(scalar[at]);
      }
    }
  }
  ostrel::frame::simd::LimitIsaForTesting(Isa::kAvx2);
  EXPECT_EQ(bad, 0) << "vector kernels differ from scalar; first: " << first;
}

// The division the vector kernels use, for every 16-bit product.
TEST(TrcBlendKernels, Div255ByMultiplyIsDivisionForEverySixteenBitValue) {
  std::uint32_t bad = 0, first = 0;
  for (std::uint32_t x = 0; x <= 65535; ++x) {
    if (ostrel::frame::blend::Div255ByMultiply(x) != x / 255 && bad++ == 0) first = x;
  }
  EXPECT_EQ(bad, 0u) << "first x: " << first << " gives "
                     << ostrel::frame::blend::Div255ByMultiply(first);
}

}  // namespace

// Blends into 32-bit colour: the division by 255 the vector kernels use. (The
// kernels are held to the per-pixel models under every instruction set in
// trc_blend_test.cpp, and the tone entries to the scalar ones in
// tone_colour_simd_test.cpp.)
#include <gtest/gtest.h>

#include <cstdint>

#include "frame/blend.h"

namespace {

// For every 16-bit product.
TEST(TrcBlendKernels, Div255ByMultiplyIsDivisionForEverySixteenBitValue) {
  std::uint32_t bad = 0, first = 0;
  for (std::uint32_t x = 0; x <= 65535; ++x) {
    if (ostrel::frame::blend::Div255ByMultiply(x) != x / 255 && bad++ == 0) first = x;
  }
  EXPECT_EQ(bad, 0u) << "first x: " << first << " gives "
                     << ostrel::frame::blend::Div255ByMultiply(first);
}

}  // namespace

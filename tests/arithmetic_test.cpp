// Blend arithmetic: both forms checked over every input against formulas
// written here on doubles, independently of frame/blend.h.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <random>
#include <sstream>

#include "frame/blend.h"

namespace {

using namespace ostrel::frame::blend;

int RefExact(int d, int s, int w) { return d + static_cast<int>(std::trunc((s - d) * w / 255.0)); }
int RefFast(int d, int s, int w) { return d + static_cast<int>(std::floor((s - d) * w / 256.0)); }

TEST(Blend, WeightsForEveryCoverageAndOpacity) {
  long bad = 0;
  std::ostringstream first;
  for (int c = 0; c < 256; ++c) {
    for (int o = 0; o < 256; ++o) {
      const auto exact = static_cast<std::uint32_t>(std::floor(c * o / 255.0));
      const auto fast = static_cast<std::uint32_t>(std::floor(c * o / 256.0));
      if (ExactWeight(c, o) != exact || FastWeight(c, o) != fast ||
          Weight<Form::kExact>(c, o) != exact || Weight<Form::kFast>(c, o) != fast) {
        if (bad++ == 0)
          first << "c=" << c << " o=" << o << ": exact " << ExactWeight(c, o) << " (want " << exact
                << "), fast " << FastWeight(c, o) << " (want " << fast << ")";
      }
    }
  }
  EXPECT_EQ(bad, 0) << first.str();
  EXPECT_EQ(ExactWeight(255, 255), 255u);
  EXPECT_EQ(FastWeight(255, 255), 254u);
}

TEST(Blend, ChannelsForEveryValueAndWeight) {
  long bad = 0;
  std::ostringstream first;
  for (int w = 0; w < 256; ++w) {
    for (int d = 0; d < 256; ++d) {
      for (int s = 0; s < 256; ++s) {
        const int exact = ExactChannel(d, s, w), fast = FastChannel(d, s, w);
        if (exact != RefExact(d, s, w) || fast != RefFast(d, s, w)) {
          if (bad++ == 0)
            first << "d=" << d << " s=" << s << " w=" << w << ": exact " << exact << " (want "
                  << RefExact(d, s, w) << "), fast " << fast << " (want " << RefFast(d, s, w)
                  << ")";
        }
      }
    }
  }
  EXPECT_EQ(bad, 0) << first.str();
}

TEST(Blend, PinnedChannelResults) {
  struct Case {
    Form form;
    int d, s, weight, want;
  } cases[] = {
      {Form::kExact, 0, 255, 255, 255},  {Form::kExact, 255, 0, 255, 0},
      {Form::kExact, 37, 201, 255, 201}, {Form::kFast, 0, 255, 254, 253},
      {Form::kExact, 200, 0, 128, 100},  {Form::kFast, 200, 0, 128, 100},
      {Form::kFast, 200, 0, 127, 100},   {Form::kExact, 200, 0, 127, 101},
      {Form::kFast, 0, 255, 0, 0},
  };
  for (const Case &c : cases) {
    const int got =
        c.form == Form::kExact ? ExactChannel(c.d, c.s, c.weight) : FastChannel(c.d, c.s, c.weight);
    EXPECT_EQ(got, c.want) << (c.form == Form::kExact ? "exact" : "fast") << " d=" << c.d
                           << " s=" << c.s << " weight=" << c.weight;
  }
}

// Each of blue, green and red moves on its own; the destination alpha stays.
TEST(Blend, PixelsMoveEachColourChannelAndKeepDestinationAlpha) {
  std::mt19937 rng(7);
  long bad = 0;
  std::ostringstream first;
  for (int n = 0; n < (1 << 20); ++n) {
    const std::uint32_t dst = rng(), src = rng(), w = rng() & 0xFF;
    std::uint32_t wantExact = dst & 0xFF000000u, wantFast = wantExact;
    for (int shift = 0; shift < 24; shift += 8) {
      const int d = (dst >> shift) & 0xFF, s = (src >> shift) & 0xFF;
      wantExact |= static_cast<std::uint32_t>(RefExact(d, s, w)) << shift;
      wantFast |= static_cast<std::uint32_t>(RefFast(d, s, w)) << shift;
    }
    if (ExactPixel(dst, src, w) != wantExact || FastPixel(dst, src, w) != wantFast) {
      if (bad++ == 0)
        first << std::hex << "dst=" << dst << " src=" << src << " w=" << w << ": exact "
              << ExactPixel(dst, src, w) << " (want " << wantExact << "), fast "
              << FastPixel(dst, src, w) << " (want " << wantFast << ")";
    }
  }
  EXPECT_EQ(bad, 0) << first.str();
}

}  // namespace

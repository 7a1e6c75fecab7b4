// BGR blending: both pixel sizes against a nearest-neighbour model over
// padded rows (the padding and fourth bytes must stay as they were), on scales
// that shrink, keep, enlarge and run past the coverage picture.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "Ostrel.h"
#include "grey_test_util.h"

namespace {

using namespace grey_test;

TEST(BgrBlend, MatchesNearestNeighbourModel) {
  std::mt19937 rng(17);
  const double scales[] = {0.5, 1.0, 1.7, 3.0, 0.25};
  for (int round = 0; round < 100; ++round) {
    const u32 px = round % 2 ? 4 : 3;
    const u32 aw = 1 + rng() % 6, ah = 1 + rng() % 4, dw = 1 + rng() % 7, dh = 1 + rng() % 5;
    const double sx = scales[rng() % 5], sy = scales[rng() % 5];
    const u32 colour = rng(), aRow = (aw * px + 3) / 4 * 4, dRow = (dw * px + 3) / 4 * 4;
    const auto alpha = TurnBytes(aRow * ah, rng);
    auto dst = Random<u8>(dRow * dh, [&] { return rng(); });
    auto want = dst;
    for (u32 y = 0; y < dh; ++y) {
      for (u32 x = 0; x < dw; ++x) {
        const u32 ax = std::min(u32(x * sx), aw - 1), ay = std::min(u32(y * sy), ah - 1);
        const int a = alpha[ay * aRow + ax * px];
        u8 *d = &want[y * dRow + x * px];
        for (u32 c = 0; c < 3; ++c) d[c] = u8(ExactMix(d[c], colour >> (8 * c) & 0xFF, a));
      }
    }
    (px == 3 ? AlphaBlendBGR24AlphaToBGR24 : AlphaBlendBGR32AlphaToBGR32)(
        const_cast<u8 *>(alpha.data()), aw, ah, colour, dst.data(), dw, dh, sx, sy);
    ASSERT_EQ(dst, want) << "round " << round << ", " << px * 8 << " bits, coverage " << aw << "x"
                         << ah << ", destination " << dw << "x" << dh << ", scale " << sx << ","
                         << sy;
  }
  // An empty coverage picture has nothing to sample: the picture stays.
  std::vector<u8> empty, dst(16 * 3, 7);
  for (auto blend : {AlphaBlendBGR24AlphaToBGR24, AlphaBlendBGR32AlphaToBGR32}) {
    blend(empty.data(), 0, 3, 0xFFFFFF, dst.data(), 4, 3, 1.0, 1.0);
    blend(empty.data(), 3, 0, 0xFFFFFF, dst.data(), 4, 3, 1.0, 1.0);
  }
  EXPECT_EQ(dst, std::vector<u8>(16 * 3, 7));
}

}  // namespace

// Density blending: hand-computed pixels of every member, and the L08
// members against a per-pixel model on random clipped scenes in both forms.
#include <gtest/gtest.h>

#include <vector>

#include "Ostrel.h"
#include "grey_test_util.h"

namespace {

using namespace grey_test;

enum Member { kL08, kL08Inv, kL12, kL12Inv, kL08Flat, kL08FlatInv, kL12Flat };

// Runs a member on the centre pixel of a 3x3 destination filled with d, with
// a 3x3 alpha buffer filled with a; returns the destination.
std::vector<u16> RunCentre(Member m, u16 density, u8 a, u8 opacity, u16 d, bool exact) {
  std::vector<u8> alpha(9, a), d8(9, static_cast<u8>(d));
  std::vector<u16> d16(9, d);
  const auto run = [&](auto f, auto *dst, auto... tail) {
    f(density, alpha.data(), 3, 3, 1, 1, dst, 3, 3, 1, 1, tail...);
  };
  // clang-format off
  switch (m) {
    case kL08: run(AlphaBlendDensityToL08, d8.data(), opacity, 1, 1, exact); break;
    case kL08Inv: run(AlphaBlendDensityToL08Inverted, d8.data(), opacity, 1, 1, exact); break;
    case kL12: run(AlphaBlendDensityToL12, d16.data(), opacity, 1, 1, exact); break;
    case kL12Inv: run(AlphaBlendDensityToL12Inverted, d16.data(), opacity, 1, 1, exact); break;
    case kL08Flat: run(AlphaBlendDensityToL08Flat, d8.data(), 1, 1); break;
    case kL08FlatInv: run(AlphaBlendDensityToL08FlatInverted, d8.data(), 1, 1); break;
    case kL12Flat: run(AlphaBlendDensityToL12Flat, d16.data(), 1, 1); break;
  }
  // clang-format on
  if (m == kL12 || m == kL12Inv || m == kL12Flat) return d16;
  return std::vector<u16>(d8.begin(), d8.end());
}

// The members the model below leaves out (the L08 ones are in it).
TEST(DensityBlend, HandComputedPixels) {
  // clang-format off
  struct Case { Member m; u16 density; u8 alpha, opacity; u16 d; bool exact; u16 want; };
  const Case cases[] = {
      {kL12, 3000, 255, 255, 100, true, 100},  // this member inverts
      {kL12, 3000, 0, 255, 100, false, 3000},  // exact form only
      {kL12Inv, 3000, 255, 255, 100, true, 3000},
      {kL12Inv, 60000, 255, 255, 100, true, 60000},  // not clamped
      {kL12Inv, 4000, 128, 200, 0, false, 4000 * 100 / 255},
      {kL08Flat, 77, 1, 0, 9, true, 77},
      {kL08Flat, 77, 0, 0, 9, true, 9},
      {kL08FlatInv, 77, 0, 0, 9, true, 77},
      {kL08FlatInv, 77, 1, 0, 9, true, 9},
      {kL12Flat, 65535, 3, 0, 9, true, 65535},
      {kL12Flat, 65535, 0, 0, 9, true, 9},
  };
  // clang-format on
  FastFlag fast(1);
  for (const Case &c : cases) {
    std::vector<u16> want(9, c.d);
    want[4] = c.want;
    EXPECT_EQ(RunCentre(c.m, c.density, c.alpha, c.opacity, c.d, c.exact), want)
        << "member " << c.m << ", density " << c.density << ", alpha " << int(c.alpha);
  }
}

// L08 members on random scenes: alpha 13 wide, destination 11 wide (so the
// region is cut by either), odd widths, every column count 0..12.
TEST(DensityBlend, L08MembersMatchModelOnClippedScenes) {
  ForEachIsa([] {
    std::mt19937 rng(5);
    for (int round = 0; round < 400; ++round) {
      const bool inverted = round % 2, fastAsked = round % 4 >= 2, flag = round % 8 < 6;
      const u32 aw = 13, ah = 6, al = rng() % 4, at = rng() % 3, dw = 11, dh = 7, dl = rng() % 5,
                dt = rng() % 4;
      const u32 rw = rng() % 13, rh = rng() % 6;
      const u8 density = u8(TurnByte(rng)), opacity = u8(TurnByte(rng));
      auto alpha = TurnBytes(aw * ah, rng), dst = TurnBytes(dw * dh, rng);
      auto want = dst;
      const bool fast = fastAsked && flag;
      const u32 cols = Clipped(rw, al, aw, dl, dw), rows = Clipped(rh, at, ah, dt, dh);
      for (u32 j = 0; j < rows; ++j) {
        for (u32 i = 0; i < cols; ++i) {
          int c = alpha[(at + j) * aw + al + i];
          if (inverted) c = 255 - c;
          u8 &d = want[(dt + j) * dw + dl + i];
          d = u8(fast ? FastMix(d, density, c * opacity / 256)
                      : ExactMix(d, density, c * opacity / 255));
        }
      }
      FastFlag f(flag);
      (inverted ? AlphaBlendDensityToL08Inverted : AlphaBlendDensityToL08)(
          density, alpha.data(), aw, ah, al, at, dst.data(), dw, dh, dl, dt, opacity, rw, rh,
          !fastAsked);
      ASSERT_EQ(dst, want) << "round " << round;
    }
  });
}

TEST(DensityBlend, BlueOfTrcModes) {
  // clang-format off
  struct Case { u32 blue; u8 opacity; bool flat, scale; u8 d, want; };
  const Case cases[] = {
      {128, 255, false, true, 17, 100},  // (128 * 200) / 255
      {0, 255, false, true, 17, 17},
      {128, 254, false, true, 17, 108},  // scaleDensity ignored below 255
      {128, 255, false, false, 17, 17 + 183 * 128 / 255},
      {0, 255, false, false, 17, 17},
      {1, 3, true, false, 17, 200},  // flat: any nonzero blue
      {0, 255, true, true, 17, 17},
  };
  // clang-format on
  for (const Case &c : cases) {
    // Colour bytes above blue must not count.
    std::vector<u32> trc(6, 0xFFFFFF00u | c.blue);
    std::vector<u8> dst(6, c.d);
    AlphaBlendDensityWithAlphaBlueOfTrcToL08(trc.data(), 3, 2, 1, 1, 200, dst.data(), c.opacity, 2,
                                             3, 0, 2, 1, 9, c.flat, c.scale);
    std::vector<u8> want(6, c.d);
    want[4] = c.want;
    EXPECT_EQ(dst, want) << "blue " << c.blue << ", opacity " << int(c.opacity) << ", flat "
                         << c.flat;
  }
}

TEST(DensityBlend, L08WithAlphaBufferBlendsEverySourceValue) {
  // 2x2 source and alpha at (1, 0) of 3x2; destination 2x2.
  std::vector<u8> src = {9, 0, 50, 9, 255, 10}, alpha = {9, 255, 128, 9, 0, 255},
                  dst = {200, 200, 40, 40};
  AlphaBlendL08WithAlphaBufferToL08(src.data(), alpha.data(), 3, 2, 1, 0, dst.data(), 2, 2, 0, 0,
                                    255, 5, 5, true);
  EXPECT_EQ(dst, (std::vector<u8>{0, 200 + (50 - 200) * 128 / 255, 40, 10}));
}

}  // namespace

// Tone operations: hand-computed pixels of every member in both forms, then
// clipping, the protected ink move and the recolouring's tolerance edges.
#include <gtest/gtest.h>

#include <numeric>
#include <vector>

#include "Ostrel.h"
#include "grey_test_util.h"

namespace {

using namespace grey_test;

enum Member {
  kTone,
  kMove,
  kRamp,
  kLuma,
  kDarkL08,
  kLightL08,
  kDarkL12,
  kLightL12,
  kDarkTrc,
  kLightTrc,
  kRecolour
};

// Tables the cases refer to: an inverting tone curve, and a ramp whose entry
// i has alpha i, red 0x40, green 255 - i, blue i.
std::vector<u8> Invert() {
  std::vector<u8> t(256);
  for (int i = 0; i < 256; ++i) t[i] = static_cast<u8>(255 - i);
  return t;
}
std::vector<u32> Ramp() {
  std::vector<u32> p(256);
  for (u32 i = 0; i < 256; ++i) p[i] = i << 24 | 0x400000u | (255 - i) << 8 | i;
  return p;
}
const u32 kFrom = 0x808080, kTo = 0x20F002;  // the recolouring's colours

// One case: the member runs on the centre of 3x3 buffers filled with s, d and
// aux (alpha, or the ink move's protection byte). aux null: null alpha,
// protection or tone. For the recolouring s is the tolerance.
struct Case {
  Member m;
  bool exact, auxNull;
  u8 aux, opacity;
  u32 s, d, wantD, wantS;  // wantS: the ink move's source after
};

void RunCase(const Case &c, std::vector<u32> &s, std::vector<u32> &d) {
  std::vector<u8> s8(s.begin(), s.end()), d8(d.begin(), d.end()), a(9, c.aux), tone = Invert();
  std::vector<u16> s16(s.begin(), s.end()), d16(d.begin(), d.end());
  const std::vector<u32> palette = Ramp();
  u8 *aux = c.auxNull ? nullptr : a.data();
  const u8 *t = c.auxNull ? nullptr : tone.data();
  const u8 o = c.opacity;
  const bool x = c.exact;
  // clang-format off
  switch (c.m) {
    case kTone: TransferToneL08ToL08(s8.data(), 3, 3, 1, 1, d8.data(), 3, 3, 1, 1, t, o, 1, 1, x); break;
    case kMove: MoveToneL08ToL08Prot(s8.data(), 3, 3, 1, 1, aux, 3, 3, 1, 1, d8.data(), 3, 3, 1, 1, o, 1, 1); break;
    case kRamp: TransferToneL08ToTRC(s8.data(), 3, 3, 1, 1, d.data(), 3, 3, 1, 1, palette.data(), o, 1, 1, x); break;
    case kLuma: TransferToneTRCToL08(s.data(), 3, 3, 1, 1, d8.data(), 3, 3, 1, 1, t, o, 1, 1, x); break;
    case kDarkL08: DarkerL08ToL08WithAlpha(s8.data(), aux, 3, 3, 1, 1, d8.data(), 3, 3, 1, 1, o, 1, 1, x); break;
    case kLightL08: LighterL08ToL08WithAlpha(s8.data(), aux, 3, 3, 1, 1, d8.data(), 3, 3, 1, 1, o, 1, 1, x); break;
    case kDarkL12: DarkerL12ToL12WithAlpha(s16.data(), aux, 3, 3, 1, 1, d16.data(), 3, 3, 1, 1, o, 1, 1, x); break;
    case kLightL12: LighterL12ToL12WithAlpha(s16.data(), aux, 3, 3, 1, 1, d16.data(), 3, 3, 1, 1, o, 1, 1, x); break;
    case kDarkTrc: DarkerTRCToTRCWithAlpha(s.data(), aux, 3, 3, 1, 1, d.data(), 3, 3, 1, 1, o, 1, 1, x); break;
    case kLightTrc: LighterTRCToTRCWithAlpha(s.data(), aux, 3, 3, 1, 1, d.data(), 3, 3, 1, 1, o, 1, 1, x); break;
    case kRecolour: ChangeColorOfTRCWithAlpha(d.data(), aux, 3, 3, 1, 1, kFrom, kTo, static_cast<u8>(c.s), o, 1, 1, x); break;
  }
  // clang-format on
  const bool l08 = c.m == kTone || c.m == kMove || c.m == kDarkL08 || c.m == kLightL08;
  if (l08 || c.m == kRamp) s.assign(s8.begin(), s8.end());
  if (l08 || c.m == kLuma) d.assign(d8.begin(), d8.end());
  if (c.m == kDarkL12 || c.m == kLightL12) {
    s.assign(s16.begin(), s16.end()), d.assign(d16.begin(), d16.end());
  }
}

TEST(ToneOperations, HandComputedPixels) {
  const bool E = true, F = false, N = true, A = false;
  // clang-format off
  const Case cases[] = {
      // Tone curve: coverage 255, so W = opacity (fast w = 254 at 255, 127 at 128).
      {kTone, E, A, 0, 255, 200, 100, 55, 200},   // exactly tone[s]
      {kTone, E, N, 0, 255, 200, 100, 200, 200},  // tone null: t = s
      {kTone, F, N, 0, 255, 255, 0, 253, 255},    // fast never reaches s
      {kTone, F, N, 0, 255, 0, 255, 1, 0},        // floor below: -253.0078 -> -254
      {kTone, E, N, 0, 128, 255, 0, 128, 255},
      {kTone, F, N, 0, 128, 255, 0, 126, 255},
      // Ink move: m = min(s * o / 255, 255 - d); s + d kept.
      {kMove, E, N, 0, 255, 200, 100, 255, 45},
      {kMove, E, N, 0, 128, 200, 100, 200, 100},  // 200 * 128 / 255 = 100
      {kMove, E, A, 0, 128, 200, 100, 200, 100},  // protection 0: moved
      {kMove, E, A, 1, 255, 200, 100, 100, 200},  // protected
      {kMove, E, N, 0, 0, 200, 100, 100, 200},
      {kMove, E, N, 0, 255, 0, 100, 100, 0},
      // Ramp: coverage from the palette entry's alpha; d = 0x12102030.
      {kRamp, E, N, 0, 255, 255, 0x12102030, 0x124000FF, 255},
      {kRamp, F, N, 0, 255, 255, 0x12102030, 0x123F00FD, 255},
      {kRamp, E, N, 0, 255, 254, 0x12102030, 0x123F02FD, 254},
      {kRamp, E, N, 0, 255, 1, 0x12102030, 0x12102030, 1},
      {kRamp, E, N, 0, 255, 0, 0x12102030, 0x12102030, 0},
      {kRamp, E, N, 0, 0, 255, 0x12102030, 0x12102030, 255},
      // Luminance: y(red 100, green 50, blue 205) = 21273 >> 8 = 83 (rounded up).
      {kLuma, E, N, 0, 255, 0xFF6432CD, 10, 83, 0},
      {kLuma, F, N, 0, 255, 0xFF6432CD, 10, 82, 0},
      {kLuma, E, N, 0, 255, 0xFFFFFFFF, 0, 255, 0},    // white
      {kLuma, E, A, 0, 255, 0xFFFFFFFF, 200, 0, 0},    // tone[255]
      {kLuma, E, N, 0, 255, 0x00FFFFFF, 9, 9, 0},      // source alpha 0
      {kLuma, E, N, 0, 255, 0x80FFFFFF, 0, 128, 0},
      {kLuma, F, N, 0, 255, 0x80FFFFFF, 0, 126, 0},
      // Darker and lighter, grey.
      {kDarkL08, E, N, 0, 255, 50, 200, 50, 50},
      {kDarkL08, F, N, 0, 255, 50, 200, 51, 50},
      {kDarkL08, E, A, 255, 255, 200, 50, 50, 200},
      {kLightL08, E, N, 0, 255, 50, 200, 200, 50},
      {kLightL08, E, A, 255, 255, 200, 50, 200, 200},
      {kLightL08, F, A, 255, 255, 200, 50, 198, 200},
      {kLightL08, E, A, 254, 255, 200, 50, 199, 200},
      {kLightL08, E, A, 0, 255, 200, 50, 50, 200},
      {kLightL08, E, A, 255, 0, 200, 50, 50, 200},
      {kDarkL12, F, N, 0, 255, 100, 4000, 100, 100},        // exact form only
      {kLightL12, F, N, 0, 255, 60000, 100, 60000, 60000},  // not clamped
      {kLightL12, E, A, 128, 255, 60000, 100, 30167, 60000},
      // Darker and lighter, TRC: the source's alpha byte 0 plays no part.
      {kDarkTrc, E, N, 0, 255, 0x001080F0, 0x77404040, 0x77104040, 0x001080F0},
      {kDarkTrc, F, A, 255, 128, 0x001080F0, 0x77404040, 0x77284040, 0x001080F0},
      {kLightTrc, E, N, 0, 255, 0x001080F0, 0x77404040, 0x774080F0, 0x001080F0},
      {kLightTrc, F, N, 0, 255, 0x001080F0, 0x77404040, 0x77407FEE, 0x001080F0},
      {kLightTrc, E, A, 255, 128, 0x001080F0, 0x77404040, 0x77406098, 0x001080F0},
      {kLightTrc, F, A, 255, 128, 0x001080F0, 0x77404040, 0x77405F97, 0x001080F0},
      // Recolouring: s is the tolerance; e = (+5, -5, -5), blue clamps at 0.
      {kRecolour, E, N, 0, 255, 5, 0x33857B7B, 0x3325EB00, 5},
      {kRecolour, F, N, 0, 255, 5, 0x33857B7B, 0x3325EA00, 5},
      {kRecolour, E, A, 0, 255, 5, 0x33857B7B, 0x33857B7B, 5},  // alpha 0
      {kRecolour, E, N, 0, 255, 5, 0x33867B7B, 0x33867B7B, 5},  // one past
      {kRecolour, E, N, 0, 255, 6, 0x33867B7B, 0x3326EB00, 6},  // exactly at
      {kRecolour, E, N, 0, 255, 5, 0x3385857B, 0x3325F500, 5},
      {kRecolour, E, N, 0, 255, 4, 0x3385857B, 0x3385857B, 4},
  };
  // clang-format on
  FastFlag fast(1);
  for (const Case &c : cases) {
    SCOPED_TRACE(::testing::Message() << "member " << c.m << " case s " << c.s << " d " << c.d);
    std::vector<u32> s(9, c.s), d(9, c.d), wantS(9, c.s), wantD(9, c.d);
    wantD[4] = c.wantD;
    wantS[4] = c.m == kMove ? c.wantS : c.s;
    RunCase(c, s, d);
    EXPECT_EQ(d, wantD);
    EXPECT_EQ(s, wantS);
    if (c.m == kMove) { EXPECT_EQ(s[4] + d[4], c.s + c.d); }
  }
}

// A region that overhangs the source on the right and the destination at the
// bottom: the tone curve at opacity 255 copies tone[s] into exactly the
// clipped 2x2 block, and the ink move reads its protection from its own
// corner and stride.
TEST(ToneOperations, ClippingAndProtection) {
  std::vector<u8> src(4 * 4), dst(5 * 3, 9);
  std::iota(src.begin(), src.end(), 100);
  const std::vector<u8> tone = Invert();
  // Source 4x4 from (2, 1): 2 columns; destination 5x3 from (0, 1): 2 rows.
  TransferToneL08ToL08(src.data(), 4, 4, 2, 1, dst.data(), 5, 3, 0, 1, tone.data(), 255, 9, 9,
                       true);
  const std::vector<u8> want = {9, 9, 9,         9,         9, 255 - 106, 255 - 107, 9,
                                9, 9, 255 - 110, 255 - 111, 9, 9,         9};
  EXPECT_EQ(dst, want);

  // Destination 3 wide from column 1: 2 columns. The protection buffer is
  // read from (1, 0) with stride 3 (its height, 0, is not read) and protects
  // the first pixel of row 1; elsewhere m = min(100, 255 - 200) = 55 moves.
  std::vector<u8> s(3 * 2, 100), d(3 * 2, 200), protect = {0, 0, 0, 0, 7, 0};
  MoveToneL08ToL08Prot(s.data(), 3, 2, 0, 0, protect.data(), 3, 0, 1, 0, d.data(), 3, 2, 1, 0, 255,
                       9, 9);
  EXPECT_EQ(d, (std::vector<u8>{200, 255, 255, 200, 200, 255}));
  EXPECT_EQ(s, (std::vector<u8>{45, 45, 100, 100, 45, 100}));

  // The recolouring clips against its one buffer: 2x1 from (1, 1) of a 3x2.
  std::vector<u32> b(6, kFrom);
  ChangeColorOfTRCWithAlpha(b.data(), nullptr, 3, 2, 1, 1, kFrom, kTo, 0, 255, 9, 9, true);
  EXPECT_EQ(b, (std::vector<u32>{kFrom, kFrom, kFrom, kFrom, kTo, kTo}));

  // Alpha with the source's geometry (recolouring: the buffer's), row by row:
  // 2x2 from (1, 1) of 3x3, covered only on the diagonal.
  std::vector<u8> diagonal = {0, 0, 0, 0, 255, 0, 0, 0, 255};
  std::vector<u8> lit(2 * 2, 50);
  std::vector<u8> light(9, 200);
  LighterL08ToL08WithAlpha(light.data(), diagonal.data(), 3, 3, 1, 1, lit.data(), 2, 2, 0, 0, 255,
                           9, 9, true);
  EXPECT_EQ(lit, (std::vector<u8>{200, 50, 50, 200}));
  std::vector<u32> c(9, kFrom);
  ChangeColorOfTRCWithAlpha(c.data(), diagonal.data(), 3, 3, 1, 1, kFrom, kTo, 0, 255, 9, 9, true);
  EXPECT_EQ(c, (std::vector<u32>{kFrom, kFrom, kFrom, kFrom, kTo, kFrom, kFrom, kFrom, kTo}));
}

}  // namespace

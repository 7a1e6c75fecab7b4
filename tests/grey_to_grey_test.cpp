// Grey-to-grey blending: every member in every mode against a per-pixel model
// on random clipped scenes, and hand-computed pixels pinning the model's quirks.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "Ostrel.h"
#include "grey_test_util.h"

namespace {

using namespace grey_test;

enum Member { kL08, kL08Own, kL08Flat, kL12, kL12Own, kL12Flat, kMembers };
bool Is12(int m) { return m >= kL12; }
bool OwnAlpha(int m) { return m == kL08Own || m == kL12Own; }
bool Flat(int m) { return m == kL08Flat || m == kL12Flat; }
bool Quirky(int m) { return m == kL12 || m == kL12Flat; }  // scaled source, next-pixel test

struct Scene {
  int m;
  u32 sw = 9, sh = 5, sl, st, dw = 8, dh = 6, dl, dt, rw, rh;
  u32 aw = 12, al, at;  // own alpha
  u8 opacity, blendZero;
  bool twoLevel, withAlpha;
  std::vector<u16> src, dst;  // dst has one guard word past its last row, never written
  std::vector<u8> alpha;
};

void RunMember(Scene &s) {
  u8 *a = s.withAlpha ? s.alpha.data() : nullptr;
  std::vector<u8> s8(s.src.begin(), s.src.end()), d8(s.dst.begin(), s.dst.end());
  const u8 o = s.opacity, z = s.blendZero;
  const bool t = s.twoLevel;
#define SG s.sw, s.sh, s.sl, s.st
#define DG s.dw, s.dh, s.dl, s.dt
#define AG s.aw, 1, s.al, s.at
#define TAIL o, z, t, s.rw, s.rh
  // clang-format off
  switch (s.m) {
    case kL08: AlphaBlendL08ToL08(s8.data(), a, SG, d8.data(), DG, TAIL, true); break;
    case kL08Own: AlphaBlendL08ToL08(s8.data(), SG, a, AG, d8.data(), DG, TAIL, false); break;
    case kL08Flat: AlphaBlendL08ToL08FlatAlpha(s8.data(), a, SG, d8.data(), DG, TAIL, true); break;
    case kL12: AlphaBlendL12ToL12(s.src.data(), a, SG, s.dst.data(), DG, TAIL, true); break;
    case kL12Own: AlphaBlendL12ToL12(s.src.data(), SG, a, AG, s.dst.data(), DG, TAIL, true); break;
    default: AlphaBlendL12ToL12FlatAlpha(s.src.data(), a, SG, s.dst.data(), DG, TAIL, true);
  }
    // clang-format on
#undef SG
#undef DG
#undef AG
#undef TAIL
  if (!Is12(s.m)) s.dst.assign(d8.begin(), d8.end());
}

void Model(Scene &s) {
  const u32 cols = Clipped(s.rw, s.sl, s.sw, s.dl, s.dw),
            rows = Clipped(s.rh, s.st, s.sh, s.dt, s.dh);
  const int full = Is12(s.m) ? 4095 : 255;
  const bool z = s.blendZero != 0;
  const bool force = s.twoLevel && (s.m == kL08 || s.withAlpha) && !Quirky(s.m);
  const bool scaled = Quirky(s.m) && (z || !s.withAlpha);
  const bool nextForced = Quirky(s.m) && s.twoLevel && z;
  for (u32 j = 0; j < rows; ++j) {
    for (u32 i = 0; i < cols; ++i) {
      const int v = s.src[(s.st + j) * s.sw + s.sl + i];
      u16 *d = &s.dst[(s.dt + j) * s.dw + s.dl + i];
      if (!z && v == 0) continue;
      int w = s.opacity;
      if (s.withAlpha) {
        int c = OwnAlpha(s.m) ? s.alpha[(s.at + j) * s.aw + s.al + i]
                              : s.alpha[(s.st + j) * s.sw + s.sl + i];
        if (Flat(s.m) && c) c = 255;
        w = c * s.opacity / 255;
      }
      int r = ExactMix(*d, scaled ? v / 255 : v, w) & (Is12(s.m) ? 0xFFFF : 0xFF);
      *d = u16(force && r ? full : r);
      // Never past the buffer's last pixel: the guard word stays.
      if (nextForced && d + 1 != &s.dst[s.dw * s.dh] && d[1] != 0) d[1] = 4095;
    }
  }
}

TEST(GreyToGreyBlend, EveryMemberAndModeMatchesModel) {
  ForEachIsa([] {
    std::mt19937 rng(11);
    auto word = [&] {
      static const u16 kTurns[] = {0, 0, 1, 254, 255, 256, 4095, 4096, 65535};
      return rng() % 2 ? kTurns[rng() % 9] : rng() & 0xFFF;
    };
    for (int round = 0; round < 1600; ++round) {
      Scene s;
      s.m = round % kMembers;
      s.withAlpha = round / kMembers % 2,
      s.blendZero = u8(round / (2 * kMembers) % 2 * (1 + rng() % 255));
      s.twoLevel = round / (4 * kMembers) % 2;
      s.sl = rng() % 5, s.st = rng() % 3, s.dl = rng() % 5, s.dt = rng() % 4, s.al = rng() % 3,
      s.at = rng() % 3;
      s.rw = rng() % 10, s.rh = rng() % 6, s.opacity = u8(TurnByte(rng));
      s.src = Random<u16>(s.sw * s.sh,
                          [&] { return Is12(s.m) ? word() : TurnByte(rng) * (rng() % 3 != 0); });
      s.dst = Random<u16>(s.dw * s.dh + 1, [&] { return Is12(s.m) ? word() : TurnByte(rng); });
      s.alpha = TurnBytes(OwnAlpha(s.m) ? s.aw * 9 : s.sw * s.sh, rng);
      Scene want = s;
      Model(want);
      RunMember(s);
      ASSERT_EQ(s.dst, want.dst) << "member " << s.m << ", alpha " << s.withAlpha << ", blendZero "
                                 << int(s.blendZero) << ", twoLevel " << s.twoLevel << ", round "
                                 << round;
    }
  });
}

TEST(GreyToGreyBlend, HandComputedPixels) {
  // clang-format off
  struct Case { Member m; bool withAlpha; u8 a, opacity, blendZero; bool twoLevel;
                u16 s, d, want; };
  const Case cases[] = {
      {kL08, false, 0, 0, 1, true, 5, 3, 255},          // opacity 0: the kept 3 is forced
      {kL08Own, false, 0, 0, 1, true, 5, 3, 3},         // no alpha: twoLevel ignored (flat too)
      {kL12, false, 0, 255, 1, false, 4095, 1000, 16},  // 1000 + (4095 / 255 - 1000)
      {kL12, true, 255, 255, 0, false, 4095, 1000, 4095},
      {kL12Own, true, 128, 255, 1, true, 4095, 0, 4095},  // 2055, forced
      {kL12Flat, true, 9, 255, 1, false, 4095, 1000, 16},
  };
  for (const Case &c : cases) {
    Scene s{c.m, 1, 1, 0, 0, 1, 1, 0, 0, 1, 1, 1, 0, 0, c.opacity, c.blendZero, c.twoLevel,
            c.withAlpha, {c.s}, {c.d, 0}, {c.a}};
    // clang-format on
    RunMember(s);
    EXPECT_EQ(s.dst[0], c.want) << "member " << c.m << ", s " << c.s << ", d " << c.d;
  }
}

// With twoLevel the shared 12-bit members force the word after each stored
// one, so the first pixel is not forced, the others blend from 4095, and the
// word right of the region is written.
TEST(GreyToGreyBlend, TwelveBitSharedForcesTheNextWord) {
  for (int m : {kL12, kL12Flat}) {
    // clang-format off
    Scene s{m, 4, 1, 0, 0, 6, 1, 1, 0, 3, 1, 1, 0, 0, 0, 1, true, false,
            {0, 0, 0, 0}, {5, 5, 5, 5, 5, 5}, {}};
    // clang-format on
    RunMember(s);
    EXPECT_EQ(s.dst, (std::vector<u16>{5, 5, 4095, 4095, 4095, 5})) << "member " << m;
  }
}

}  // namespace

// Motion copy: a region moved inside one buffer by every small offset, in the
// order a caller would choose, equals the blend of the untouched buffer; and
// the orders and early returns on hand-made buffers.
#include <gtest/gtest.h>

#include <vector>

#include "Ostrel.h"
#include "grey_test_util.h"

namespace {

using namespace grey_test;

template <class P>
P Blend(P d, P s, int a, int opacity, bool twoLevel) {
  const int w = a * opacity / 255;
  if constexpr (sizeof(P) == 4) {
    P out = d & 0xFF000000u;
    for (int sh = 0; sh < 24; sh += 8) out |= P(ExactMix(d >> sh & 0xFF, s >> sh & 0xFF, w)) << sh;
    return out;
  } else {
    const P r = P(ExactMix(d, s, w));
    return twoLevel && r ? P(sizeof(P) == 1 ? 255 : 4095) : r;
  }
}

template <class P>
void MovesMatchCopyThroughTemporary(unsigned seed) {
  std::mt19937 rng(seed);
  const u32 w = 37, h = 9, aw = 40;
  for (int dy = -2; dy <= 2; ++dy) {
    for (int dx = -2; dx <= 2; ++dx) {
      for (int round = 0; round < 6; ++round) {
        const u32 sl = 2 + rng() % 3, st = 2 + rng() % 3, dl = u32(int(sl) + dx),
                  dt = u32(int(st) + dy);
        const u32 rw = rng() % 36, rh = rng() % 8, al = rng() % 3, at = rng() % 2;
        const u8 opacity = round % 2 ? 255 : u8(TurnByte(rng));
        const bool twoLevel = round % 3 == 0;
        auto alpha = Random<u8>(aw * 10, [&] { return round < 2 ? 255u : TurnByte(rng); });
        const auto before =
            Random<P>(w * h, [&] { return sizeof(P) == 2 ? rng() & 0x1FFF : rng(); });
        auto want = before;
        const u32 cols = Clipped(rw, sl, w, dl, w), rows = Clipped(rh, st, h, dt, h);
        for (u32 j = 0; j < rows; ++j)
          for (u32 i = 0; i < cols; ++i)
            want[(dt + j) * w + dl + i] =
                Blend<P>(before[(dt + j) * w + dl + i], before[(st + j) * w + sl + i],
                         alpha[(at + j) * aw + al + i], opacity, twoLevel);
        auto got = before;
        const auto m = static_cast<_EMotionCopyMode>((dy > 0 ? 1 : 0) | (dx > 0 ? 2 : 0));
        P *g = got.data();
        u8 *a = alpha.data();
        if constexpr (sizeof(P) == 1)
          MotionCopyL08ToL08(g, w, h, sl, st, a, aw, 0, al, at, g, w, h, dl, dt, opacity, twoLevel,
                             rw, rh, m, true);
        else if constexpr (sizeof(P) == 2)
          MotionCopyL12ToL12(g, w, h, sl, st, a, aw, 0, al, at, g, w, h, dl, dt, opacity, twoLevel,
                             rw, rh, m, false);
        else
          MotionCopyTRCWithAlphaBufferToTRC(g, w, h, sl, st, a, aw, 0, al, at, g, w, h, dl, dt,
                                            opacity, rw, rh, m, true);
        ASSERT_EQ(got, want) << sizeof(P) * 8 << "-bit pixels, offset " << dx << "," << dy
                             << ", region " << rw << "x" << rh << ", opacity " << int(opacity)
                             << ", twoLevel " << twoLevel;
      }
    }
  }
}

// Under every instruction set: the 8-bit rows that do not alias run through
// the vector kernels.
TEST(MotionCopy, MovesInsideOneBufferMatchCopyThroughTemporary) {
  ForEachIsa([] {
    MovesMatchCopyThroughTemporary<u8>(1);
    MovesMatchCopyThroughTemporary<u16>(2);
    MovesMatchCopyThroughTemporary<u32>(3);
  });
}

// The wrong order smears; mode 4 and corners on the far edge return early.
TEST(MotionCopy, OrdersAndEarlyReturns) {
  std::vector<u8> full(8, 255);
  // clang-format off
  struct Case { const char *what; u32 w, h, sl, st, dl, dt, rw, rh; int mode; u8 opacity;
                bool twoLevel; std::vector<u8> start, want; };
  // what, w, h, sl, st, dl, dt, rw, rh, mode, opacity, twoLevel, start, want
  const Case cases[] = {
      {"down one row, top to bottom smears", 1, 4, 0, 0, 0, 1, 1, 3, 0, 255, false,
       {1, 2, 3, 4}, {1, 1, 1, 1}},
      {"right one column, left to right smears", 4, 1, 0, 0, 1, 0, 3, 1, 1, 255, false,
       {1, 2, 3, 4}, {1, 1, 1, 1}},
      {"mode 4", 4, 1, 0, 0, 1, 0, 3, 1, 4, 255, false, {1, 2, 3, 4}, {1, 2, 3, 4}},
      {"source corner on the right edge", 4, 1, 4, 0, 0, 0, 3, 1, 0, 255, false,
       {1, 2, 3, 4}, {1, 2, 3, 4}},
      {"destination corner on the bottom edge", 1, 4, 0, 0, 0, 4, 1, 3, 0, 255, false,
       {1, 2, 3, 4}, {1, 2, 3, 4}},
  };
  // clang-format on
  for (const Case &c : cases) {
    auto buf = c.start;
    MotionCopyL08ToL08(buf.data(), c.w, c.h, c.sl, c.st, full.data(), 1, 1, 0, 0, buf.data(), c.w,
                       c.h, c.dl, c.dt, c.opacity, c.twoLevel, c.rw, c.rh,
                       static_cast<_EMotionCopyMode>(c.mode), true);
    EXPECT_EQ(buf, c.want) << c.what;
  }
}

}  // namespace

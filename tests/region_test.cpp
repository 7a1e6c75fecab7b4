// Clipping at the extremes of the unsigned range: a region size whose sum
// with the corner passes 2^32 reaches the buffer's edge (and no further), and
// a corner beyond its buffer changes nothing. Buffers are allocated at their
// exact size, so the sanitizer builds see any access outside them.
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <random>
#include <vector>

#include "Ostrel.h"

namespace {

using u32 = std::uint32_t;
constexpr u32 kW = 6, kH = 4, kHuge = 0xFFFFFFFFu;

// Every buffer a call may touch, 6x4 each, filled with random values.
struct Buffers {
  std::vector<u32> trcA, trcB;
  std::vector<unsigned char> greyA, greyB, alpha, lookup;
  std::vector<unsigned short> wordA, wordB;

  explicit Buffers(unsigned seed) : lookup(256) {
    std::mt19937 rng(seed);
    auto fill = [&](auto &v) {
      v.resize(kW * kH);
      for (auto &x : v) x = static_cast<std::decay_t<decltype(x)>>(rng());
    };
    fill(trcA), fill(trcB), fill(greyA), fill(greyB), fill(alpha), fill(wordA), fill(wordB);
    for (auto &x : wordA) x &= 0xFFF;
    for (unsigned i = 0; i < 256; ++i) lookup[i] = static_cast<unsigned char>(255 - i);
  }
  bool operator==(const Buffers &o) const {
    return trcA == o.trcA && trcB == o.trcB && greyA == o.greyA && greyB == o.greyB &&
           wordA == o.wordA && wordB == o.wordB;
  }
};

// One call per clipping path: two-buffer colour, grey and 12-bit blends, an
// own-geometry alpha, one-buffer tables, the contour drawing with its border.
// The corner (x, y) is used for the source (or only) buffer; the destination
// corner is (1, 0).
struct Case {
  const char *name;
  std::function<void(Buffers &, u32 x, u32 y, u32 w, u32 h)> call;
};

const Case kCases[] = {
    {"AlphaBlendTRCToTRC",
     [](Buffers &b, u32 x, u32 y, u32 w, u32 h) {
       AlphaBlendTRCToTRC(b.trcA.data(), kW, kH, x, y, b.trcB.data(), kW, kH, 1, 0, 200, w, h,
                          true);
     }},
    {"AlphaBlendL08ToTRC",
     [](Buffers &b, u32 x, u32 y, u32 w, u32 h) {
       AlphaBlendL08ToTRC(b.greyA.data(), kW, kH, x, y, 0x123456, b.trcB.data(), kW, kH, 1, 0, 255,
                          w, h, false, b.lookup.data());
     }},
    {"AlphaBlendL12ToTRC",
     [](Buffers &b, u32 x, u32 y, u32 w, u32 h) {
       AlphaBlendL12ToTRC(b.wordA.data(), kW, kH, x, y, 0x654321, b.trcB.data(), kW, kH, 1, 0, 255,
                          w, h, true);
     }},
    {"AlphaBlendL12ToL12 (shared alpha, two-level)",
     [](Buffers &b, u32 x, u32 y, u32 w, u32 h) {
       AlphaBlendL12ToL12(b.wordA.data(), b.alpha.data(), kW, kH, x, y, b.wordB.data(), kW, kH, 1,
                          0, 255, 1, true, w, h, true);
     }},
    {"AlphaBlendColorToTRC",
     [](Buffers &b, u32 x, u32 y, u32 w, u32 h) {
       AlphaBlendColorToTRC(0xFF00FF, b.alpha.data(), kW, kH, 0, 0, b.trcB.data(), kW, kH, x, y,
                            255, w, h, true);
     }},
    {"MotionCopyL08ToL08",
     [](Buffers &b, u32 x, u32 y, u32 w, u32 h) {
       MotionCopyL08ToL08(b.greyA.data(), kW, kH, x, y, b.alpha.data(), kW, kH, 0, 0,
                          b.greyB.data(), kW, kH, 1, 0, 255, false, w, h, eMotionCopyDownRight,
                          true);
     }},
    {"ApplyAlphaToL08",
     [](Buffers &b, u32 x, u32 y, u32 w, u32 h) {
       ApplyAlphaToL08(b.greyA.data(), b.alpha.data(), kW, kH, x, y, 128, false, w, h, true);
     }},
    {"ApplyLUTToL08",
     [](Buffers &b, u32 x, u32 y, u32 w, u32 h) {
       ApplyLUTToL08(b.greyA.data(), kW, kH, x, y, w, h, b.lookup.data());
     }},
    {"DrawContourOfL08toTRC",
     [](Buffers &b, u32 x, u32 y, u32 w, u32 h) {
       DrawContourOfL08toTRC(b.greyA.data(), kW, kH, x, y, b.trcB.data(), kW, kH, 1, 0, w, h, 7);
     }},
};

TEST(Region, SizesPastTwoTo32ReachTheEdgeAndCornersBeyondChangeNothing) {
  // A one-row call whose width sum wraps to 0 once read far past both buffers.
  std::vector<u32> src{1, 0xFF102030, 0x80405060, 0xFFFFFFFF}, dst(4, 0x11223344), edge = dst;
  AlphaBlendTRCToTRC(src.data(), 4, 1, 1, 0, dst.data(), 4, 1, 1, 0, 255, kHuge, 1, true);
  AlphaBlendTRCToTRC(src.data(), 4, 1, 1, 0, edge.data(), 4, 1, 1, 0, 255, 3, 1, true);
  EXPECT_EQ(dst, edge);
  EXPECT_NE(dst, std::vector<u32>(4, 0x11223344));

  for (const Case &c : kCases) {
    SCOPED_TRACE(c.name);
    for (u32 x : {0u, 1u, kW}) {
      for (u32 y : {0u, 2u}) {
        // The region that ends exactly at the source's edge, then sizes whose
        // sums with the corner wrap past 2^32.
        Buffers edge(x * 7 + y);
        c.call(edge, x, y, kW - x, kH - y);
        // 0u - x makes the sum exactly 2^32.
        std::vector<u32> wide{kHuge, kHuge - 2}, tall{kHuge};
        if (x != 0) wide.push_back(0u - x);
        if (y != 0) tall.push_back(0u - y);
        for (u32 w : wide) {
          Buffers huge(x * 7 + y);
          c.call(huge, x, y, w, kH - y);
          c.call(huge, x, y, 0, kHuge);  // no columns: nothing changes
          EXPECT_TRUE(huge == edge) << "x " << x << ", y " << y << ", width " << w;
        }
        for (u32 h : tall) {
          Buffers b(x * 7 + y);
          c.call(b, x, y, kW - x, h);
          EXPECT_TRUE(b == edge) << "x " << x << ", y " << y << ", height " << h;
        }
      }
    }
    // Corners beyond the buffer, with sizes that wrap and sizes that do not.
    const Buffers before(99);
    for (u32 size : {1u, 5u, kHuge}) {
      Buffers b(99);
      c.call(b, kW + 1, 0, size, 2);
      c.call(b, 0, kH + 1, 2, size);
      c.call(b, kHuge, kHuge, size, size);
      EXPECT_TRUE(b == before) << "size " << size;
    }
  }
}

}  // namespace

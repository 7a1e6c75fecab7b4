// Every library call the band helper splits, run in row bands on the pool
// and one band after another last band first, against the same call run
// whole: the buffers must come out identical. The 12-bit two-level blends
// whose rows spill into the next row must run whole.
#include "band_split.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <string>
#include <vector>

using namespace ostrel_examples;

namespace {

constexpr unsigned int kBands = 5;  // every geometry below has more rows than this

struct Geometry {
  const char *name;
  unsigned int sw, sh, sl, st, dw, dh, dl, dt, rw, rh;
  bool reachesRight;  // the clipped region ends at the destination's right edge
};

const Geometry kGeometries[] = {
    {"inside both buffers", 37, 29, 3, 2, 41, 31, 5, 1, 30, 25, false},
    {"clipped at the destination's right edge", 53, 29, 2, 0, 41, 26, 7, 3, 100, 100, true},
    {"whole rows from column 0", 40, 33, 0, 0, 40, 33, 0, 0, 40, 33, true},
    {"clipped by the source's right edge", 20, 30, 0, 4, 40, 30, 10, 0, 50, 22, false},
    {"sizes to the edges", 30, 27, 4, 3, 28, 29, 2, 5, 0xFFFFFFFFu, 0xFFFFFFFFu, true},
};

// Random pixels, a quarter of them 0 (blendZero and the two-level step test
// for 0).
struct Buffers {
  std::vector<unsigned int> trcSrc, trcDst;
  std::vector<unsigned char> l08Src, l08Dst, alpha, ownAlpha, lookup;
  std::vector<unsigned short> l12Src, l12Dst;
  unsigned int ownAlphaWidth;

  explicit Buffers(const Geometry &g) : ownAlphaWidth(g.sw + 3) {
    std::mt19937 random(g.sw * 1000u + g.dw);
    const auto value = [&](unsigned int range) {
      return random() % 4 == 0 ? 0u : static_cast<unsigned int>(random() % range);
    };
    const std::size_t s = static_cast<std::size_t>(g.sw) * g.sh,
                      d = static_cast<std::size_t>(g.dw) * g.dh;
    for (std::size_t i = 0; i < s; ++i) {
      trcSrc.push_back(value(0xFFFFFFFFu));
      l08Src.push_back(static_cast<unsigned char>(value(256)));
      alpha.push_back(static_cast<unsigned char>(value(256)));
      l12Src.push_back(static_cast<unsigned short>(value(4096)));
    }
    for (std::size_t i = 0; i < d; ++i) {
      trcDst.push_back(value(0xFFFFFFFFu));
      l08Dst.push_back(static_cast<unsigned char>(value(256)));
      l12Dst.push_back(static_cast<unsigned short>(value(4096)));
    }
    for (std::size_t i = 0; i < static_cast<std::size_t>(ownAlphaWidth) * (g.sh + 4); ++i)
      ownAlpha.push_back(static_cast<unsigned char>(value(256)));
    for (unsigned int i = 0; i < 256; ++i) lookup.push_back(static_cast<unsigned char>(255 - i));
  }
  bool operator==(const Buffers &o) const {
    return trcDst == o.trcDst && l08Dst == o.l08Dst && l12Dst == o.l12Dst;
  }
};

// One call: whole through the library, or through the helper with kBands
// bands in the given order. Variant bits: 1 twoLevel (exact for the colour
// calls), 2 blendZero (a lookup table for AlphaBlendL08ToTRC), 4 no alpha.
// Returns the number of bands it ran in.
using Caller = std::function<unsigned int(Buffers &, const Geometry &, int, bool, BandOrder)>;
#define CALL(fn, ...) (whole ? (::fn(__VA_ARGS__), 1u) : banded::fn(__VA_ARGS__, kBands, order))
#define GREY_SHARED(fn, src, dst)                                                                  \
  [](Buffers &b, const Geometry &g, int v, bool whole, BandOrder order) {                          \
    return CALL(fn, b.src.data(), v & 4 ? nullptr : b.alpha.data(), g.sw, g.sh, g.sl, g.st,        \
                b.dst.data(), g.dw, g.dh, g.dl, g.dt, 200, (v & 2) != 0, (v & 1) != 0, g.rw, g.rh, \
                true);                                                                             \
  }
#define GREY_OWN(fn, src, dst)                                                                 \
  [](Buffers &b, const Geometry &g, int v, bool whole, BandOrder order) {                      \
    return CALL(fn, b.src.data(), g.sw, g.sh, g.sl, g.st, v & 4 ? nullptr : b.ownAlpha.data(), \
                b.ownAlphaWidth, g.sh + 4, 1, 2, b.dst.data(), g.dw, g.dh, g.dl, g.dt, 200,    \
                (v & 2) != 0, (v & 1) != 0, g.rw, g.rh, true);                                 \
  }

struct Case {
  const char *name;
  bool spillsRight;  // the two-level step writes past each row's region
  Caller call;
};

const Case kCases[] = {
    {"FillTRCBuffer", false,
     [](Buffers &b, const Geometry &g, int, bool whole, BandOrder order) {
       return CALL(FillTRCBuffer, b.trcDst.data(), g.dw, g.dh, g.dl, g.dt,
                   std::min(g.rw, g.dw - g.dl), g.rh, 0xFF123456u);
     }},
    {"ChessboardFillTRCBuffer", false,
     [](Buffers &b, const Geometry &g, int, bool whole, BandOrder order) {
       return CALL(ChessboardFillTRCBuffer, b.trcDst.data(), g.dw, g.dh, g.dl, g.dt,
                   std::min(g.rw, g.dw - g.dl), g.rh, -7, -3, 0xFF0000FFu, 0xFF00FF00u, 4);
     }},
    {"AlphaBlendTRCToTRC", false,
     [](Buffers &b, const Geometry &g, int v, bool whole, BandOrder order) {
       return CALL(AlphaBlendTRCToTRC, b.trcSrc.data(), g.sw, g.sh, g.sl, g.st, b.trcDst.data(),
                   g.dw, g.dh, g.dl, g.dt, 180, g.rw, g.rh, (v & 1) != 0);
     }},
    {"AlphaBlendL08ToTRC", false,
     [](Buffers &b, const Geometry &g, int v, bool whole, BandOrder order) {
       return CALL(AlphaBlendL08ToTRC, b.l08Src.data(), g.sw, g.sh, g.sl, g.st, 0xFF3366CCu,
                   b.trcDst.data(), g.dw, g.dh, g.dl, g.dt, 180, g.rw, g.rh, (v & 1) != 0,
                   v & 2 ? b.lookup.data() : nullptr);
     }},
    {"AlphaBlendL08ToL08", false, GREY_SHARED(AlphaBlendL08ToL08, l08Src, l08Dst)},
    {"AlphaBlendL08ToL08 (own alpha)", false, GREY_OWN(AlphaBlendL08ToL08, l08Src, l08Dst)},
    {"AlphaBlendL08ToL08FlatAlpha", false,
     GREY_SHARED(AlphaBlendL08ToL08FlatAlpha, l08Src, l08Dst)},
    {"AlphaBlendL12ToL12", true, GREY_SHARED(AlphaBlendL12ToL12, l12Src, l12Dst)},
    {"AlphaBlendL12ToL12 (own alpha)", false, GREY_OWN(AlphaBlendL12ToL12, l12Src, l12Dst)},
    {"AlphaBlendL12ToL12FlatAlpha", true, GREY_SHARED(AlphaBlendL12ToL12FlatAlpha, l12Src, l12Dst)},
};

TEST(BandSplit, BandedCallsMatchTheWholeCall) {
  for (const Geometry &g : kGeometries) {
    const Buffers start(g);
    for (const Case &c : kCases)
      for (int variant = 0; variant < 8; ++variant) {
        const std::string where =
            std::string(c.name) + ", " + g.name + ", variant " + std::to_string(variant);
        Buffers whole = start;
        c.call(whole, g, variant, true, BandOrder::kPool);
        // The spilling blends must run whole where the spill leaves the row.
        const bool runsWhole = c.spillsRight && (variant & 3) == 3 && g.reachesRight;
        for (const BandOrder order : {BandOrder::kPool, BandOrder::kSerialLastFirst}) {
          Buffers banded = start;
          EXPECT_EQ(c.call(banded, g, variant, false, order), runsWhole ? 1u : kBands) << where;
          EXPECT_TRUE(banded == whole) << where << (order == BandOrder::kPool ? ", pool" : "");
        }
        EXPECT_FALSE(whole == start) << where << ": the call changed nothing";
      }
  }
}

}  // namespace

// The colour and 12-bit tone members (the colour ramp, darken and lighten of
// TRC and 12-bit grey, the recolouring) under every instruction set against
// the scalar kernels: random geometries with regions that overhang their
// buffers, null alpha, both forms, and buffers that share memory. The
// buffers are carved from three arenas (pixels, words, bytes) that are
// compared whole, so a write outside a region shows too.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <vector>

#include "Ostrel.h"
#include "grey_test_util.h"

namespace {

using namespace grey_test;

enum Member { kRamp, kDarkTrc, kLightTrc, kRecolour, kDarkL12, kLightL12, kMembers };
const char *const kNames[kMembers] = {"TransferToneL08ToTRC",     "DarkerTRCToTRCWithAlpha",
                                      "LighterTRCToTRCWithAlpha", "ChangeColorOfTRCWithAlpha",
                                      "DarkerL12ToL12WithAlpha",  "LighterL12ToL12WithAlpha"};

struct Arenas {
  std::vector<u32> pixels;
  std::vector<u16> words;
  std::vector<u8> bytes;
};

// One call: its source, destination, byte buffer (alpha, or the ramp's
// greys) and palette as offsets into the arenas; the byte buffer lies in the
// destination's own memory with bytesInDst. Recolouring uses the destination
// alone.
struct Call {
  int m = 0;
  bool exact = true, nullAlpha = false, bytesInDst = false;
  u32 sw = 1, sh = 1, sl = 0, st = 0, dw = 1, dh = 1, dl = 0, dt = 0, rw = 0, rh = 0;
  std::size_t src = 0, dst = 0, palette = 0;
  std::ptrdiff_t bytes = 0;  // from the start of the bytes arena, or of dst with bytesInDst
  u32 from = 0, to = 0;
  u8 opacity = 255, tolerance = 0;

  std::string Describe() const {
    std::ostringstream o;
    o << kNames[m] << (exact ? " exact" : " fast") << (nullAlpha ? ", null alpha" : "")
      << (bytesInDst ? ", bytes in dst" : "") << ", src " << sw << "x" << sh << "+" << sl << "+"
      << st << " @" << src << ", dst " << dw << "x" << dh << "+" << dl << "+" << dt << " @" << dst
      << ", region " << rw << "x" << rh << ", bytes @" << bytes << ", palette @" << palette
      << ", opacity " << int(opacity) << ", tolerance " << int(tolerance);
    return o.str();
  }

  void Run(Arenas &a) const {
    const bool words = m == kDarkL12 || m == kLightL12;
    u8 *dstBytes = words ? reinterpret_cast<u8 *>(a.words.data() + dst)
                         : reinterpret_cast<u8 *>(a.pixels.data() + dst);
    u8 *b = bytesInDst ? dstBytes + bytes : a.bytes.data() + bytes;
    u8 *alpha = nullAlpha ? nullptr : b;
    u32 *s = a.pixels.data() + src, *d = a.pixels.data() + dst;
    u16 *s16 = a.words.data() + src, *d16 = a.words.data() + dst;
    // clang-format off
    switch (m) {
      case kRamp: TransferToneL08ToTRC(b, sw, sh, sl, st, d, dw, dh, dl, dt, a.pixels.data() + palette, opacity, rw, rh, exact); break;
      case kDarkTrc: DarkerTRCToTRCWithAlpha(s, alpha, sw, sh, sl, st, d, dw, dh, dl, dt, opacity, rw, rh, exact); break;
      case kLightTrc: LighterTRCToTRCWithAlpha(s, alpha, sw, sh, sl, st, d, dw, dh, dl, dt, opacity, rw, rh, exact); break;
      case kRecolour: ChangeColorOfTRCWithAlpha(d, alpha, dw, dh, dl, dt, from, to, tolerance, opacity, rw, rh, exact); break;
      case kDarkL12: DarkerL12ToL12WithAlpha(s16, alpha, sw, sh, sl, st, d16, dw, dh, dl, dt, opacity, rw, rh, exact); break;
      case kLightL12: LighterL12ToL12WithAlpha(s16, alpha, sw, sh, sl, st, d16, dw, dh, dl, dt, opacity, rw, rh, exact); break;
    }
    // clang-format on
  }
};

// A random call; with overlap its buffers share memory: the destination a
// few elements from the source, or the bytes or the palette inside it.
Call RandomCall(int m, bool overlap, std::mt19937 &r, Arenas &a) {
  Call c;
  c.m = m;
  c.exact = r() % 2 != 0;
  c.nullAlpha = m != kRamp && r() % 3 == 0;
  c.sw = 1 + r() % 67, c.sh = 1 + r() % 4, c.sl = r() % c.sw, c.st = r() % c.sh;
  c.dw = 1 + r() % 67, c.dh = 1 + r() % 4, c.dl = r() % c.dw, c.dt = r() % c.dh;
  c.rw = 1 + r() % 70, c.rh = 1 + r() % 5;                 // often past a buffer's edge
  if (r() % 8 == 0) c.sw = c.dw = c.rw = 500 + r() % 600;  // past the ramp's scratch row
  const int kind = overlap ? int(r() % 3) : -1;
  if (kind == 0 || kind == 1 || m == kRecolour) c.dw = c.sw, c.dh = c.sh;
  const std::size_t area = std::size_t(c.sw) * c.sh, dstArea = std::size_t(c.dw) * c.dh;
  c.src = 8 + r() % 8;
  c.dst = kind == 0 ? c.src - 2 + r() % 5 : c.src + area + r() % 8;
  // Sharing memory, the first row of the bytes (or the palette entries from
  // 64 on) starts a few bytes into the destination's first row, so that
  // pixels written early in a row are read later in it.
  const std::size_t first = std::size_t(c.dt) * c.dw + c.dl;
  const std::size_t unit = m == kDarkL12 || m == kLightL12 ? 2 : 4;
  c.bytesInDst = kind == 1 && (m != kRecolour || !c.nullAlpha);
  c.bytes = c.bytesInDst ? std::ptrdiff_t(unit * first) - std::ptrdiff_t(c.st * c.sw + c.sl) +
                               std::ptrdiff_t(r() % 8)
                         : std::ptrdiff_t(r() % 32);
  c.palette = kind == 2 ? c.dst + first - std::min<std::size_t>(64, c.dst + first)
                        : c.dst + dstArea + r() % 8;
  c.opacity = u8(r() % 2 ? 255 : TurnByte(r));
  c.tolerance = u8(r() % 8 ? r() % 8 : TurnByte(r));
  c.from = u32(r()), c.to = u32(r());
  // Room after the destination for bytes that start inside it.
  a.pixels.resize(std::max(c.palette + 256, c.dst + dstArea + area) + 8);
  a.words.resize(c.dst + dstArea + area + 8);
  a.bytes.resize(64 + area);
  // Recoloured channels lie within 7 of from's, often at the tolerance.
  for (auto &p : a.pixels) p = m == kRecolour ? c.from ^ u32(r() & 0xFF070707u) : u32(r());
  for (auto &w : a.words) w = u16(r() % 2 ? r() : r() % 4096);
  for (auto &b : a.bytes) b = u8(TurnByte(r));
  return c;
}

TEST(ToneColourSimd, EveryMemberUnderEveryIsaMatchesScalar) {
  const FastFlag fast(1);
  std::mt19937 rng(41);
  for (int m = 0; m < kMembers; ++m) {
    for (int round = 0; round < 300; ++round) {
      Arenas start;
      const Call c = RandomCall(m, round % 4 == 3, rng, start);
      Arenas want;
      ForEachIsa([&] {
        Arenas got = start;
        c.Run(got);
        if (ostrel::frame::simd::ActiveIsa() == ostrel::frame::simd::Isa::kScalar) want = got;
        EXPECT_TRUE(got.pixels == want.pixels && got.words == want.words && got.bytes == want.bytes)
            << c.Describe();
      });
      if (HasFailure()) return;
    }
  }
}

}  // namespace

// Blends into 32-bit colour (TRC) pictures: colour to colour, grey to
// colour, solid colour, the TRC motion copy and the marks. The fuzzer picks
// the member, the geometry of every buffer (region sizes that wrap past 2^32
// included), the pixels, opacity, colour and form. Each call runs under
// every instruction set and must leave the same bytes as the scalar kernels;
// sources are never written, and the destination only inside the clipped
// region (empty for a corner beyond its buffer, which is fuzzed too).
#include <cstdint>

#include "Ostrel.h"
#include "fuzz_util.h"

namespace {

using namespace fuzz;

enum Src { kNoSrc, kTrc, kL08, kL12 };
// The coverage buffer: none, the source's geometry, its own corner and
// stride (sized to the clipped region), or MarkBG's set of masks.
enum Aux { kNoAux, kShared, kOwn, kMasks };
// How the region is clipped: against both buffers, against the destination
// only, DrawContourOfL08toTRC's bordered rule, or the motion copy's (nothing
// when a corner lies outside its buffer).
enum Clip { kPair, kDstOnly, kContour, kMotion };

struct Member {
  const char *name;
  Src src;
  Aux aux;
  Clip clip;
};
// clang-format off
const Member kMembers[] = {
    {"AlphaBlendTRCToTRC", kTrc, kNoAux, kPair},
    {"AlphaBlendTRCToTRCNoAlpha", kTrc, kNoAux, kPair},
    {"AlphaBlendTRCNoAlphaToTRC", kTrc, kNoAux, kPair},
    {"AlphaBlendTRCWithAlphaBufferToTRC", kTrc, kShared, kPair},
    {"AlphaBlendTRCWithAlphaBufferToTRC (own alpha)", kTrc, kOwn, kPair},
    {"AlphaBlendColorWithAlphaBlueOfTrcToTrc", kTrc, kNoAux, kPair},
    {"MotionCopyTRCWithAlphaBufferToTRC", kTrc, kOwn, kMotion},
    {"AlphaBlendL08ToTRC", kL08, kNoAux, kPair},
    {"AlphaBlendL08ToTRCInverted", kL08, kNoAux, kPair},
    {"AlphaBlendL08ToTRCAndEraseA", kL08, kNoAux, kPair},
    {"ApplyQuickMaskToTRC", kL08, kNoAux, kPair},
    {"AlphaBlendL08WithAlphaBufferToTRC", kL08, kShared, kPair},
    {"AlphaBlendL12ToTRC", kL12, kNoAux, kPair},
    {"MarkL08ToTRC", kL08, kNoAux, kPair},
    {"MarkL08LimitsToTRCHighBit", kL08, kNoAux, kPair},
    {"MarkBG", kNoSrc, kMasks, kPair},
    {"DrawContourOfL08toTRC", kL08, kNoAux, kContour},
    {"AlphaBlendAlphaToTRC", kL08, kNoAux, kPair},
    {"AlphaBlendColorToTRC", kNoSrc, kOwn, kDstOnly},
    {"AlphaBlendColorToTRCInverted", kNoSrc, kOwn, kDstOnly},
    {"AlphaBlendColorToTRCFlat", kNoSrc, kOwn, kDstOnly},
    {"AlphaBlendColorOnBGToTRC", kNoSrc, kOwn, kDstOnly},
    {"AlphaBlendColorWithConstAlphaToTRC", kNoSrc, kNoAux, kDstOnly},
};
// clang-format on
constexpr int kMemberCount = sizeof kMembers / sizeof kMembers[0];

// The source plane (also the geometry MarkBG's masks share), the
// destination plane, the region and the coverage buffer's own corner.
struct Geometry {
  u32 sw, sh, sl, st, dw, dh, dl, dt, rw, rh, aw, al, at;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  Input in(data, size);
  const int m = in.In(0, kMemberCount - 1);
  const Member &member = kMembers[m];
  Geometry g{};
  g.sw = in.In<u32>(0, 70), g.sh = in.In<u32>(0, 9);
  g.sl = in.Corner(g.sw), g.st = in.Corner(g.sh);
  const bool inPlace = member.clip == kMotion && in.Bool();  // a region moved inside one buffer
  g.dw = inPlace ? g.sw : in.In<u32>(0, 70), g.dh = inPlace ? g.sh : in.In<u32>(0, 9);
  g.dl = in.Corner(g.dw), g.dt = in.Corner(g.dh);
  const bool dstOnly = member.clip == kDstOnly;
  g.rw = in.Size(dstOnly ? g.dw - g.dl : g.sw - g.sl);
  g.rh = in.Size(dstOnly ? g.dh - g.dt : g.sh - g.st);

  // The region the call may write: columns [x0, x1) and rows [y0, y1) of the
  // destination.
  u32 cols = Span(g.dw, g.dl, dstOnly ? g.rw : Span(g.sw, g.sl, g.rw));
  u32 rows = Span(g.dh, g.dt, dstOnly ? g.rh : Span(g.sh, g.st, g.rh));
  u32 x0 = g.dl, x1 = g.dl + cols, y0 = g.dt, y1 = g.dt + rows;
  if (member.clip == kMotion && (g.dl >= g.dw || g.dt >= g.dh || g.sl >= g.sw || g.st >= g.sh)) {
    cols = rows = 0, x1 = x0, y1 = y0;
  }
  if (member.clip == kContour) {
    // Columns and rows count the source's border of one pixel; a count
    // below 2 or a corner beyond its buffer is the caller's error.
    if (g.sl > g.sw || g.st > g.sh || g.dl > g.dw || g.dt > g.dh) return 0;
    const std::uint64_t srcRight = std::min<std::uint64_t>(g.sw, std::uint64_t{g.sl} + g.rw);
    const std::uint64_t srcBottom = std::min<std::uint64_t>(g.sh, std::uint64_t{g.st} + g.rh);
    const std::uint64_t c = std::min<std::uint64_t>(g.dw + 2, srcRight - g.sl + g.dl) - g.dl;
    const std::uint64_t r = std::min<std::uint64_t>(g.dh + 2, srcBottom - g.st + g.dt) - g.dt;
    if (r < 2 || (r > 2 && c < 2)) return 0;
    // The right edge of a run that starts the row lands one column left.
    x0 = g.dl - (g.dl > 0), x1 = g.dl + static_cast<u32>(c) - 2,
    y1 = g.dt + static_cast<u32>(r) - 2;
  }
  // An own-geometry coverage buffer holds exactly the clipped region.
  g.al = in.In<u32>(0, 6), g.at = in.In<u32>(0, 3), g.aw = g.al + cols + in.In<u32>(0, 2);
  const std::size_t ownSize = rows == 0 ? 0 : std::size_t{g.at + rows - 1} * g.aw + g.al + cols;

  const bool exact = in.Bool(), flag1 = in.Bool(), flag2 = in.Bool();
  const u8 opacity = in.Bool() ? in.Pick({0, 1, 127, 128, 254, 255}) : in.Byte();
  const u32 colour = in.U32(), other = in.U32();
  const int motionMode = in.In(0, 4);
  Describe(
      "%s: src %ux%u at (%u, %u), dst %ux%u at (%u, %u), region %ux%u, alpha %u at (%u, %u), "
      "opacity %u, exact %d, flags %d %d, colour %08x/%08x, mode %d, in place %d",
      member.name, g.sw, g.sh, g.sl, g.st, g.dw, g.dh, g.dl, g.dt, g.rw, g.rh, g.aw, g.al, g.at,
      opacity, exact, flag1, flag2, colour, other, motionMode, inPlace);

  const std::size_t srcPixels = std::size_t{g.sw} * g.sh;
  Buffer<u32> trc(member.src == kTrc ? srcPixels : 0);
  Buffer<u8> grey(member.src == kL08 ? srcPixels : 0);
  Buffer<u16> words(member.src == kL12 ? srcPixels : 0);
  Buffer<u8> alpha(member.aux == kShared ? srcPixels : member.aux == kOwn ? ownSize : 0);
  Buffer<u32> own(inPlace ? 0 : std::size_t{g.dw} * g.dh);
  Buffer<u32> &dst = inPlace ? trc : own;
  Buffer<u8> lookup(256),
      masks[3] = {Buffer<u8>(srcPixels), Buffer<u8>(srcPixels), Buffer<u8>(srcPixels)};
  Buffer<bool> selected(256);
  const int maskCount = in.In(0, 3);
  int maskIndices[3] = {in.In(0, 2), in.In(0, 2), in.In(0, 2)};
  unsigned char *maskPointers[3] = {masks[0].Data(), masks[1].Data(), masks[2].Data()};
  in.Fill(lookup.Data(), 256);
  in.Fill(selected.Data(), 256, 1);
  in.Fill(trc.Data(), trc.Size());
  in.Fill(grey.Data(), grey.Size());
  in.Fill(words.Data(), words.Size());
  in.Fill(alpha.Data(), alpha.Size());
  for (Buffer<u8> &mask : masks) in.Fill(mask.Data(), mask.Size(), in.Bool() ? 1 : 0xFF);
  in.Fill(own.Data(), own.Size());
  unsigned char *table = flag1 ? lookup.Data() : nullptr;

  const auto dstBefore = dst.Copy();
  const auto trcBefore = trc.Copy();
  const auto greyBefore = grey.Copy(), alphaBefore = alpha.Copy();
  const auto wordsBefore = words.Copy();
  const auto mode = static_cast<_EMotionCopyMode>(motionMode);
  u32 *s = trc.Data(), *d = dst.Data();
  u8 *a = alpha.Data(), *gs = grey.Data();
  SameUnderEveryIsa({trc, grey, words, alpha, own, masks[0], masks[1], masks[2]}, [&] {
    // clang-format off
    switch (m) {
      case 0: AlphaBlendTRCToTRC(s, g.sw, g.sh, g.sl, g.st, d, g.dw, g.dh, g.dl, g.dt, opacity, g.rw, g.rh, exact); break;
      case 1: AlphaBlendTRCToTRCNoAlpha(s, g.sw, g.sh, g.sl, g.st, d, g.dw, g.dh, g.dl, g.dt, opacity, g.rw, g.rh, exact); break;
      case 2: AlphaBlendTRCNoAlphaToTRC(s, g.sw, g.sh, g.sl, g.st, d, g.dw, g.dh, g.dl, g.dt, opacity, g.rw, g.rh, exact); break;
      case 3: AlphaBlendTRCWithAlphaBufferToTRC(s, a, g.sw, g.sh, g.sl, g.st, d, g.dw, g.dh, g.dl, g.dt, opacity, g.rw, g.rh, exact); break;
      case 4: AlphaBlendTRCWithAlphaBufferToTRC(s, g.sw, g.sh, g.sl, g.st, a, g.aw, g.at + rows, g.al, g.at, d, g.dw, g.dh, g.dl, g.dt, opacity, g.rw, g.rh, exact); break;
      case 5: AlphaBlendColorWithAlphaBlueOfTrcToTrc(s, g.sw, g.sh, g.sl, g.st, colour, d, opacity, g.dw, g.dh, g.dl, g.dt, g.rw, g.rh, flag1, flag2); break;
      case 6: MotionCopyTRCWithAlphaBufferToTRC(s, g.sw, g.sh, g.sl, g.st, a, g.aw, g.at + rows, g.al, g.at, d, g.dw, g.dh, g.dl, g.dt, opacity, g.rw, g.rh, mode, exact); break;
      case 7: AlphaBlendL08ToTRC(gs, g.sw, g.sh, g.sl, g.st, colour, d, g.dw, g.dh, g.dl, g.dt, opacity, g.rw, g.rh, exact, table); break;
      case 8: AlphaBlendL08ToTRCInverted(gs, g.sw, g.sh, g.sl, g.st, colour, d, g.dw, g.dh, g.dl, g.dt, opacity, g.rw, g.rh, exact); break;
      case 9: AlphaBlendL08ToTRCAndEraseA(gs, g.sw, g.sh, g.sl, g.st, colour, d, g.dw, g.dh, g.dl, g.dt, opacity, g.rw, g.rh, table); break;
      case 10: ApplyQuickMaskToTRC(gs, g.sw, g.sh, g.sl, g.st, colour, d, g.dw, g.dh, g.dl, g.dt, opacity, g.rw, g.rh); break;
      case 11: AlphaBlendL08WithAlphaBufferToTRC(gs, a, g.sw, g.sh, g.sl, g.st, d, g.dw, g.dh, g.dl, g.dt, opacity, g.rw, g.rh, exact); break;
      case 12: AlphaBlendL12ToTRC(words.Data(), g.sw, g.sh, g.sl, g.st, colour, d, g.dw, g.dh, g.dl, g.dt, opacity, g.rw, g.rh, exact); break;
      case 13: MarkL08ToTRC(gs, g.sw, g.sh, g.sl, g.st, selected.Data(), colour, opacity, d, g.dw, g.dh, g.dl, g.dt, g.rw, g.rh); break;
      case 14: MarkL08LimitsToTRCHighBit(gs, g.sw, g.sh, g.sl, g.st, static_cast<u8>(colour), static_cast<u8>(other), d, g.dw, g.dh, g.dl, g.dt, g.rw, g.rh); break;
      case 15: MarkBG(maskPointers, maskIndices, maskCount, g.sw, g.sh, g.sl, g.st, colour, opacity, d, g.dw, g.dh, g.dl, g.dt, g.rw, g.rh); break;
      case 16: DrawContourOfL08toTRC(gs, g.sw, g.sh, g.sl, g.st, d, g.dw, g.dh, g.dl, g.dt, g.rw, g.rh, colour); break;
      case 17: AlphaBlendAlphaToTRC(static_cast<u8>(colour), gs, g.sw, g.sh, g.sl, g.st, d, g.dw, g.dh, g.dl, g.dt, opacity, g.rw, g.rh, exact); break;
      case 18: AlphaBlendColorToTRC(colour, a, g.aw, g.at + rows, g.al, g.at, d, g.dw, g.dh, g.dl, g.dt, opacity, g.rw, g.rh, exact); break;
      case 19: AlphaBlendColorToTRCInverted(colour, a, g.aw, g.at + rows, g.al, g.at, d, g.dw, g.dh, g.dl, g.dt, opacity, g.rw, g.rh, exact); break;
      case 20: AlphaBlendColorToTRCFlat(colour, a, g.aw, g.at + rows, g.al, g.at, d, g.dw, g.dh, g.dl, g.dt, opacity, g.rw, g.rh, exact); break;
      case 21: AlphaBlendColorOnBGToTRC(colour, other, a, g.aw, g.at + rows, g.al, g.at, d, g.dw, g.dh, g.dl, g.dt, opacity, g.rw, g.rh, exact); break;
      case 22: AlphaBlendColorWithConstAlphaToTRC(colour, d, g.dw, g.dh, g.dl, g.dt, g.rw, g.rh, exact); break;
    }
    // clang-format on
  });

  // Sources are read only; the destination changes inside the region alone.
  if (!inPlace) FUZZ_CHECK(trc.Copy() == trcBefore, "the colour source was written");
  FUZZ_CHECK(grey.Copy() == greyBefore && words.Copy() == wordsBefore,
             "the grey source was written");
  FUZZ_CHECK(alpha.Copy() == alphaBefore, "the coverage buffer was written");
  for (u32 y = 0; y < g.dh; ++y) {
    for (u32 x = 0; x < g.dw; ++x) {
      const std::size_t i = std::size_t{y} * g.dw + x;
      const bool inside = x >= x0 && x < x1 && y >= y0 && y < y1;
      FUZZ_CHECK(inside || dst[i] == dstBefore[i],
                 "destination pixel (%u, %u) outside the region [%u, %u) x [%u, %u) changed", x, y,
                 x0, x1, y0, y1);
    }
  }
  return 0;
}

// The tone operations: tone curves between grey layers, the ink move, colour
// ramps and luminance between grey and colour, darken and lighten, and the
// recolouring. The fuzzer picks the member, the geometry of every buffer
// (region sizes that wrap past 2^32 and corners beyond their buffer
// included), the pixels, tables, opacity, colours, tolerance, form and the
// module's fast-form flag, and leaves out the tables, alpha and protection
// buffers the header lets a caller leave out (and source or destination
// where the clipped region is empty). Each call runs under every instruction
// set and must leave the same bytes as the scalar kernels; each pixel must
// be what the header's per-pixel rules give (a model below, in either form),
// sources stay unwritten (the ink move keeps s + d and protected pixels),
// and nothing outside the clipped region changes.
#include <cstdint>

#include "Ostrel.h"
#include "frame/module.h"
#include "fuzz_util.h"

namespace {

using namespace fuzz;

enum MemberId {
  kToneL08,
  kMove,
  kRamp,
  kLuma,
  kDarkerL08,
  kLighterL08,
  kDarkerL12,
  kLighterL12,
  kDarkerTrc,
  kLighterTrc,
  kRecolour,
  kMemberCount
};
enum Pix { kNone, kL08, kL12, kTrc };

struct Member {
  const char *name;
  Pix src, dst;
  bool lighter;  // darken and lighten: the target is max(s, d), else min(s, d)
};
// clang-format off
const Member kMembers[kMemberCount] = {
    {"TransferToneL08ToL08", kL08, kL08, false},
    {"MoveToneL08ToL08Prot", kL08, kL08, false},
    {"TransferToneL08ToTRC", kL08, kTrc, false},
    {"TransferToneTRCToL08", kTrc, kL08, false},
    {"DarkerL08ToL08WithAlpha", kL08, kL08, false},
    {"LighterL08ToL08WithAlpha", kL08, kL08, true},
    {"DarkerL12ToL12WithAlpha", kL12, kL12, false},
    {"LighterL12ToL12WithAlpha", kL12, kL12, true},
    {"DarkerTRCToTRCWithAlpha", kTrc, kTrc, false},
    {"LighterTRCToTRCWithAlpha", kTrc, kTrc, true},
    {"ChangeColorOfTRCWithAlpha", kNone, kTrc, false},
};
// clang-format on

// ---- The header's per-pixel rules, written out -------------------------------

// The weight of coverage c at opacity o: (c * o) / 255 exact, (c * o) >> 8 fast.
i32 Weight(bool fast, i32 c, i32 o) { return fast ? c * o / 256 : c * o / 255; }

// d moved toward t by weight w: d + (t - d) * w / 255 truncated toward 0
// (exact), or d + floor((t - d) * w / 256) (fast).
i32 Toward(bool fast, i32 d, i32 t, i32 w) {
  const i32 p = (t - d) * w;
  if (!fast) return d + p / 255;
  return d + (p >= 0 ? p / 256 : -((-p + 255) / 256));
}

i32 Channel(u32 pixel, int c) { return static_cast<i32>((pixel >> (8 * c)) & 0xFF); }

// Blue, green and red of d toward those of t; d's alpha byte stays.
u32 TowardPixel(bool fast, u32 d, u32 t, i32 w) {
  u32 out = d & 0xFF000000u;
  for (int c = 0; c < 3; ++c) {
    out |= static_cast<u32>(Toward(fast, Channel(d, c), Channel(t, c), w)) << (8 * c);
  }
  return out;
}

u32 Extreme(bool lighter, u32 s, u32 d) { return lighter ? std::max(s, d) : std::min(s, d); }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  Input in(data, size);
  const int m = in.In(0, kMemberCount - 1);
  const Member &member = kMembers[m];
  const bool one = m == kRecolour;  // one buffer: the destination's geometry
  u32 sw = in.In<u32>(0, 70), sh = in.In<u32>(0, 9);
  u32 sl = in.Corner(sw), st = in.Corner(sh);
  const u32 dw = in.In<u32>(0, 70), dh = in.In<u32>(0, 9);
  const u32 dl = in.Corner(dw), dt = in.Corner(dh);
  if (one) sw = sh = sl = st = 0;
  const u32 rw = in.Size(one ? dw - dl : sw - sl), rh = in.Size(one ? dh - dt : sh - st);
  u32 cols = Span(dw, dl, one ? rw : Span(sw, sl, rw));
  u32 rows = Span(dh, dt, one ? rh : Span(sh, st, rh));
  if (cols == 0 || rows == 0) cols = rows = 0;
  // The protection buffer's corner and stride; it holds the clipped region
  // and its height is never read.
  const u32 pl = in.In<u32>(0, 6), pt = in.In<u32>(0, 3), pw = pl + cols + in.In<u32>(0, 2);
  const u32 ph = in.Bool() ? pt + rows : in.U32();
  const std::size_t protectSize = rows == 0 ? 0 : std::size_t{pt + rows - 1} * pw + pl + cols;

  const bool exact = in.Bool(), fastFlag = in.Bool(), withAux = in.Bool(), nearFrom = in.Bool();
  const bool dropSrc = cols == 0 && in.Bool(), dropDst = cols == 0 && in.Bool();
  const u8 opacity = in.Bool() ? in.Pick({0, 1, 127, 128, 254, 255}) : in.Byte();
  const u8 tolerance = in.Bool() ? in.Pick({0, 1, 2, 254, 255}) : in.Byte();
  const u32 from = in.U32(), to = in.U32();
  // The 12-bit members are exact whatever `exact` says.
  const bool fast = !exact && fastFlag && m != kDarkerL12 && m != kLighterL12;
  Describe(
      "%s: src %ux%u at (%u, %u), dst %ux%u at (%u, %u), region %ux%u (clipped %ux%u), "
      "protect %ux%u at (%u, %u), opacity %u, exact %d, fast flag %d, tables/alpha %d, "
      "from %08x to %08x, tolerance %u, near %d, null src %d dst %d",
      member.name, sw, sh, sl, st, dw, dh, dl, dt, rw, rh, cols, rows, pw, ph, pl, pt, opacity,
      exact, fastFlag, withAux, from, to, tolerance, nearFrom, dropSrc, dropDst);

  const std::size_t srcPixels = std::size_t{sw} * sh, dstPixels = std::size_t{dw} * dh;
  Buffer<u8> s8(member.src == kL08 ? srcPixels : 0), d8(member.dst == kL08 ? dstPixels : 0);
  Buffer<u16> s16(member.src == kL12 ? srcPixels : 0), d16(member.dst == kL12 ? dstPixels : 0);
  Buffer<u32> s32(member.src == kTrc ? srcPixels : 0), d32(member.dst == kTrc ? dstPixels : 0);
  const bool hasAlpha = m >= kDarkerL08;
  Buffer<u8> alpha(!hasAlpha ? 0 : one ? dstPixels : srcPixels);
  Buffer<u8> protect(m == kMove ? protectSize : 0), tone(256);
  Buffer<u32> palette(256);
  in.Fill(tone.Data(), tone.Size());
  in.Fill(palette.Data(), palette.Size());
  in.Fill(alpha.Data(), alpha.Size());
  in.Fill(protect.Data(), protect.Size(), in.Bool() ? 1 : 0xFF);
  in.Fill(s8.Data(), s8.Size());
  in.Fill(s16.Data(), s16.Size(), in.Bool() ? 0xFFF : 0xFFFF);
  in.Fill(s32.Data(), s32.Size());
  in.Fill(d8.Data(), d8.Size());
  in.Fill(d16.Data(), d16.Size(), in.Bool() ? 0xFFF : 0xFFFF);
  in.Fill(d32.Data(), d32.Size());
  if (one && nearFrom) {
    // Pixels a few steps from the from colour, so that the tolerance decides.
    for (std::size_t i = 0; i < d32.Size(); ++i) {
      u32 p = d32[i] & 0xFF000000u;
      for (int c = 0; c < 3; ++c) {
        const i32 v = Channel(from, c) + static_cast<i32>((d32[i] >> (8 * c)) & 7) - 3;
        p |= static_cast<u32>(std::clamp(v, 0, 255)) << (8 * c);
      }
      d32[i] = p;
    }
  }

  const auto s8Before = s8.Copy(), d8Before = d8.Copy(), alphaBefore = alpha.Copy();
  const auto s16Before = s16.Copy(), d16Before = d16.Copy();
  const auto s32Before = s32.Copy(), d32Before = d32.Copy();
  const auto protectBefore = protect.Copy(), toneBefore = tone.Copy();
  const auto paletteBefore = palette.Copy();
  // Left out where the header allows it.
  u8 *a = withAux ? alpha.Data() : nullptr, *p = withAux ? protect.Data() : nullptr;
  const u8 *t = withAux ? tone.Data() : nullptr;
  const u32 *pal = withAux || cols != 0 ? palette.Data() : nullptr;
  auto given = [](auto &buffer, bool drop) { return drop ? nullptr : buffer.Data(); };
  u8 *ps8 = given(s8, dropSrc), *pd8 = given(d8, dropDst);
  u16 *ps16 = given(s16, dropSrc), *pd16 = given(d16, dropDst);
  u32 *ps32 = given(s32, dropSrc), *pd32 = given(d32, dropDst);

  ostrel::frame::SetFastFormFlagForTesting(fastFlag);
  SameUnderEveryIsa({s8, d8, s16, d16, s32, d32, alpha, protect, tone, palette}, [&] {
    // clang-format off
    switch (m) {
      case kToneL08: TransferToneL08ToL08(ps8, sw, sh, sl, st, pd8, dw, dh, dl, dt, t, opacity, rw, rh, exact); break;
      case kMove: MoveToneL08ToL08Prot(ps8, sw, sh, sl, st, p, pw, ph, pl, pt, pd8, dw, dh, dl, dt, opacity, rw, rh); break;
      case kRamp: TransferToneL08ToTRC(ps8, sw, sh, sl, st, pd32, dw, dh, dl, dt, pal, opacity, rw, rh, exact); break;
      case kLuma: TransferToneTRCToL08(ps32, sw, sh, sl, st, pd8, dw, dh, dl, dt, t, opacity, rw, rh, exact); break;
      case kDarkerL08: DarkerL08ToL08WithAlpha(ps8, a, sw, sh, sl, st, pd8, dw, dh, dl, dt, opacity, rw, rh, exact); break;
      case kLighterL08: LighterL08ToL08WithAlpha(ps8, a, sw, sh, sl, st, pd8, dw, dh, dl, dt, opacity, rw, rh, exact); break;
      case kDarkerL12: DarkerL12ToL12WithAlpha(ps16, a, sw, sh, sl, st, pd16, dw, dh, dl, dt, opacity, rw, rh, exact); break;
      case kLighterL12: LighterL12ToL12WithAlpha(ps16, a, sw, sh, sl, st, pd16, dw, dh, dl, dt, opacity, rw, rh, exact); break;
      case kDarkerTrc: DarkerTRCToTRCWithAlpha(ps32, a, sw, sh, sl, st, pd32, dw, dh, dl, dt, opacity, rw, rh, exact); break;
      case kLighterTrc: LighterTRCToTRCWithAlpha(ps32, a, sw, sh, sl, st, pd32, dw, dh, dl, dt, opacity, rw, rh, exact); break;
      case kRecolour: ChangeColorOfTRCWithAlpha(pd32, a, dw, dh, dl, dt, from, to, tolerance, opacity, rw, rh, exact); break;
    }
    // clang-format on
  });

  FUZZ_CHECK(alpha.Copy() == alphaBefore && protect.Copy() == protectBefore &&
                 tone.Copy() == toneBefore && palette.Copy() == paletteBefore,
             "an alpha, protection or table buffer was written");
  FUZZ_CHECK(s16.Copy() == s16Before && s32.Copy() == s32Before, "the source was written");
  if (m != kMove) FUZZ_CHECK(s8.Copy() == s8Before, "the source was written");

  // Every destination pixel (and for the ink move every source pixel) as the
  // rules give it: unchanged outside the clipped region.
  std::vector<u32> want(dstPixels), wantSrc(s8Before.begin(), s8Before.end());
  for (std::size_t i = 0; i < dstPixels; ++i) {
    want[i] = member.dst == kL08 ? d8Before[i] : member.dst == kL12 ? d16Before[i] : d32Before[i];
  }
  const i32 o = opacity;
  for (u32 j = 0; j < rows; ++j) {
    for (u32 i = 0; i < cols; ++i) {
      const std::size_t si = std::size_t{st + j} * sw + sl + i;
      const std::size_t di = std::size_t{dt + j} * dw + dl + i;
      const u32 s = member.src == kL08   ? s8Before[si]
                    : member.src == kL12 ? s16Before[si]
                    : member.src == kTrc ? s32Before[si]
                                         : 0;
      const u32 d = want[di];
      const i32 c = !hasAlpha || a == nullptr ? 255 : alphaBefore[one ? di : si];
      u32 &out = want[di];
      switch (m) {
        case kToneL08: out = Toward(fast, d, t ? t[s] : s, Weight(fast, 255, o)); break;
        case kMove: {
          if (p != nullptr && protectBefore[std::size_t{pt + j} * pw + pl + i] != 0) break;
          const u32 moved = std::min<u32>(s * opacity / 255, 255 - d);
          out = d + moved, wantSrc[si] = s - moved;
          break;
        }
        case kRamp: {
          const u32 k = paletteBefore[s];
          out = TowardPixel(fast, d, k, Weight(fast, k >> 24, o));
          break;
        }
        case kLuma: {
          const u32 y = (77 * Channel(s, 2) + 150 * Channel(s, 1) + 29 * Channel(s, 0) + 128) >> 8;
          out = Toward(fast, d, t ? t[y] : y, Weight(fast, s >> 24, o));
          break;
        }
        case kDarkerL08:
        case kLighterL08:
        case kDarkerL12:
        case kLighterL12:
          out = Toward(fast, d, Extreme(member.lighter, s, d), Weight(fast, c, o));
          break;
        case kDarkerTrc:
        case kLighterTrc: {
          u32 target = 0;
          for (int k = 0; k < 3; ++k) {
            target |= Extreme(member.lighter, Channel(s, k), Channel(d, k)) << (8 * k);
          }
          out = TowardPixel(fast, d, target, Weight(fast, c, o));
          break;
        }
        case kRecolour: {
          u32 target = 0;
          bool inRange = true;
          for (int k = 0; k < 3; ++k) {
            const i32 e = Channel(d, k) - Channel(from, k);
            inRange = inRange && std::abs(e) <= tolerance;
            target |= static_cast<u32>(std::clamp(Channel(to, k) + e, 0, 255)) << (8 * k);
          }
          if (inRange) out = TowardPixel(fast, d, target, Weight(fast, c, o));
          break;
        }
      }
    }
  }
  for (std::size_t i = 0; i < dstPixels; ++i) {
    const u32 got = member.dst == kL08 ? d8[i] : member.dst == kL12 ? d16[i] : d32[i];
    FUZZ_CHECK(got == want[i], "destination pixel (%zu, %zu) is %x, the rules give %x (was %x)",
               i % dw, i / dw, got, want[i],
               member.dst == kL08   ? d8Before[i]
               : member.dst == kL12 ? d16Before[i]
                                    : d32Before[i]);
  }
  if (m == kMove) {
    for (std::size_t i = 0; i < srcPixels; ++i) {
      FUZZ_CHECK(s8[i] == wantSrc[i], "source pixel (%zu, %zu) is %u, the rules give %u", i % sw,
                 i / sw, s8[i], wantSrc[i]);
    }
    // Ink is only moved: s + d is kept, and protected pixels keep both.
    for (u32 j = 0; j < rows; ++j) {
      for (u32 i = 0; i < cols; ++i) {
        const std::size_t si = std::size_t{st + j} * sw + sl + i;
        const std::size_t di = std::size_t{dt + j} * dw + dl + i;
        FUZZ_CHECK(s8[si] + d8[di] == s8Before[si] + d8Before[di],
                   "ink at region pixel (%u, %u) not conserved: %u + %u, was %u + %u", i, j, s8[si],
                   d8[di], s8Before[si], d8Before[di]);
        const bool kept = s8[si] == s8Before[si] && d8[di] == d8Before[di];
        FUZZ_CHECK(p == nullptr || protectBefore[std::size_t{pt + j} * pw + pl + i] == 0 || kept,
                   "protected region pixel (%u, %u) changed", i, j);
      }
    }
  }
  return 0;
}

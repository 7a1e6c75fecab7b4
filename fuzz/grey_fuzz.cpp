// Compositing into 8- and 12-bit grey (L08, L12) buffers: grey-to-grey and
// density blends, alpha masks and lookup tables, the grey motion copies and
// the level conversions. The fuzzer picks the member, the geometry (region
// sizes that wrap past 2^32 included), the pixels, opacity, density and the
// mode flags. Each call runs under every instruction set and must leave the
// same bytes as the scalar kernels; sources are never written, and the
// destination only inside the clipped region (for the 12-bit two-level
// blends, also the word right of each row, as documented). Corners beyond
// their buffer and region sizes past 2^32 are fuzzed too.
#include <cstdint>

#include "Ostrel.h"
#include "fuzz_util.h"

namespace {

using namespace fuzz;

enum Src { kNoSrc, kL08, kL12, kTrc };
// Coverage: none, the source's geometry, its own corner and stride (sized to
// the clipped region), or the destination's geometry (one-buffer members).
enum Aux { kNoAux, kShared, kOwn, kDstShared };
// Clipping: both buffers, the destination only, the motion copy's (nothing
// when a corner lies outside its buffer), or a flat run of elements.
enum Clip { kPair, kDstOnly, kMotion, kRun };

struct Member {
  const char *name;
  Src src;
  Aux aux;
  bool words;  // a 12-bit destination
  Clip clip;
};
// clang-format off
const Member kMembers[] = {
    {"AlphaBlendL08ToL08", kL08, kShared, false, kPair},
    {"AlphaBlendL08ToL08 (own alpha)", kL08, kOwn, false, kPair},
    {"AlphaBlendL08ToL08FlatAlpha", kL08, kShared, false, kPair},
    {"AlphaBlendL12ToL12", kL12, kShared, true, kPair},
    {"AlphaBlendL12ToL12 (own alpha)", kL12, kOwn, true, kPair},
    {"AlphaBlendL12ToL12FlatAlpha", kL12, kShared, true, kPair},
    {"AlphaBlendDensityToL08", kL08, kNoAux, false, kPair},
    {"AlphaBlendDensityToL08Inverted", kL08, kNoAux, false, kPair},
    {"AlphaBlendDensityToL12", kL08, kNoAux, true, kPair},
    {"AlphaBlendDensityToL12Inverted", kL08, kNoAux, true, kPair},
    {"AlphaBlendDensityToL08Flat", kL08, kNoAux, false, kPair},
    {"AlphaBlendDensityToL08FlatInverted", kL08, kNoAux, false, kPair},
    {"AlphaBlendDensityToL12Flat", kL08, kNoAux, true, kPair},
    {"AlphaBlendDensityWithAlphaBlueOfTrcToL08", kTrc, kNoAux, false, kPair},
    {"AlphaBlendL08WithAlphaBufferToL08", kL08, kShared, false, kPair},
    {"ApplyAlphaToL08", kNoSrc, kDstShared, false, kDstOnly},
    {"ApplyAlphaToL12", kNoSrc, kDstShared, true, kDstOnly},
    {"InvertAlphaL08", kNoSrc, kDstShared, false, kDstOnly},
    {"ApplyLUTToL08", kNoSrc, kNoAux, false, kDstOnly},
    {"ApplyLUTToL12", kNoSrc, kNoAux, true, kDstOnly},
    {"PostApplyAlpha (L08)", kNoSrc, kDstShared, false, kRun},
    {"PostApplyAlpha (L12)", kNoSrc, kDstShared, true, kRun},
    {"MotionCopyL08ToL08", kL08, kOwn, false, kMotion},
    {"MotionCopyL12ToL12", kL12, kOwn, true, kMotion},
    {"ConvertL08To2LevelL08 (in place)", kNoSrc, kNoAux, false, kDstOnly},
    {"ConvertL08To2LevelL08", kL08, kNoAux, false, kPair},
    {"ConvertL12To2LevelL12 (in place)", kNoSrc, kNoAux, true, kDstOnly},
    {"ConvertL12To2LevelL12", kL12, kNoAux, true, kPair},
    {"ConvertL12To2LevelL08", kL12, kNoAux, false, kPair},
    {"ConvertL012ToL08", kL12, kNoAux, false, kPair},
};
// clang-format on
constexpr int kMemberCount = sizeof kMembers / sizeof kMembers[0];

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  Input in(data, size);
  const int m = in.In(0, kMemberCount - 1);
  const Member &member = kMembers[m];
  const bool inPlace = member.clip == kMotion && in.Bool();  // a region moved inside one buffer
  u32 sw = in.In<u32>(0, 70), sh = in.In<u32>(0, 9);
  u32 sl = in.Corner(sw), st = in.Corner(sh);
  u32 dw = inPlace ? sw : in.In<u32>(0, 70), dh = inPlace ? sh : in.In<u32>(0, 9);
  u32 dl = in.Corner(dw), dt = in.Corner(dh);
  const bool dstOnly = member.clip == kDstOnly || member.clip == kRun;
  const u32 rw = in.Size(dstOnly ? dw - dl : sw - sl), rh = in.Size(dstOnly ? dh - dt : sh - st);
  const u32 count = in.In<u32>(0, 300);  // PostApplyAlpha's run

  u32 cols = Span(dw, dl, dstOnly ? rw : Span(sw, sl, rw));
  u32 rows = Span(dh, dt, dstOnly ? rh : Span(sh, st, rh));
  if (member.clip == kMotion && (dl >= dw || dt >= dh || sl >= sw || st >= sh)) cols = rows = 0;
  if (cols == 0 || rows == 0) cols = rows = 0;  // no columns, no rows (nor words right of them)
  const u32 al = in.In<u32>(0, 6), at = in.In<u32>(0, 3), aw = al + cols + in.In<u32>(0, 2);
  const std::size_t ownSize = rows == 0 ? 0 : std::size_t{at + rows - 1} * aw + al + cols;

  const u8 opacity = in.Bool() ? in.Pick({0, 1, 127, 128, 254, 255}) : in.Byte();
  const u8 blendZero = in.Bool() ? 0 : in.Byte();
  const bool twoLevel = in.Bool(), withAlpha = in.Bool(), exact = in.Bool(), flag = in.Bool();
  const u16 density = static_cast<u16>(in.U32());
  const auto mode = static_cast<_EMotionCopyMode>(in.In(0, 4));
  Describe(
      "%s: src %ux%u at (%u, %u), dst %ux%u at (%u, %u), region %ux%u, alpha %u at (%u, "
      "%u), count %u, opacity %u, blendZero %u, twoLevel %d, alpha %d, exact %d, flag %d, "
      "density %u, mode %d, in place %d",
      member.name, sw, sh, sl, st, dw, dh, dl, dt, rw, rh, aw, al, at, count, opacity, blendZero,
      twoLevel, withAlpha, exact, flag, density, mode, inPlace);

  // The shared-geometry 12-bit blends with twoLevel and blendZero also write
  // the word right of each row's region (but never past the buffer).
  const bool nextWord = (m == 3 || m == 5) && twoLevel && blendZero != 0;
  const std::size_t srcPixels = std::size_t{sw} * sh;
  const std::size_t dstSize = member.clip == kRun ? count : std::size_t{dw} * dh;
  Buffer<u8> grey(member.src == kL08 ? srcPixels : 0), bytes(member.words ? 0 : dstSize);
  Buffer<u16> words(member.src == kL12 ? srcPixels : 0), wordDst(member.words ? dstSize : 0);
  Buffer<u32> trc(member.src == kTrc ? srcPixels : 0);
  const std::size_t alphaSize = member.aux == kShared      ? srcPixels
                                : member.aux == kOwn       ? ownSize
                                : member.aux == kDstShared ? dstSize
                                                           : 0;
  Buffer<u8> alpha(alphaSize), table8(256);
  Buffer<u16> table16(m == 19 ? 65536 : 0);
  in.Fill(grey.Data(), grey.Size());
  in.Fill(words.Data(), words.Size(), in.Bool() ? 0xFFF : 0xFFFF);
  in.Fill(trc.Data(), trc.Size());
  in.Fill(alpha.Data(), alpha.Size());
  in.Fill(table8.Data(), 256);
  in.Fill(table16.Data(), table16.Size());
  in.Fill(bytes.Data(), bytes.Size());
  in.Fill(wordDst.Data(), wordDst.Size(), in.Bool() ? 0xFFF : 0xFFFF);

  // In place, the motion copies move a region inside the source buffer.
  u8 *s8 = grey.Data(), *d8 = inPlace ? s8 : bytes.Data(), *a = withAlpha ? alpha.Data() : nullptr;
  u16 *s16 = words.Data(), *d16 = inPlace ? s16 : wordDst.Data();
  const auto greyBefore = grey.Copy(), alphaBefore = alpha.Copy();
  const auto wordsBefore = words.Copy();
  const auto trcBefore = trc.Copy();
  const auto dstBefore = member.words ? std::vector<u8>() : bytes.Copy();
  const auto wordDstBefore = wordDst.Copy();
  SameUnderEveryIsa({grey, words, trc, alpha, bytes, wordDst}, [&] {
    // clang-format off
    switch (m) {
      case 0: AlphaBlendL08ToL08(s8, a, sw, sh, sl, st, d8, dw, dh, dl, dt, opacity, blendZero, twoLevel, rw, rh, exact); break;
      case 1: AlphaBlendL08ToL08(s8, sw, sh, sl, st, a, aw, at + rows, al, at, d8, dw, dh, dl, dt, opacity, blendZero, twoLevel, rw, rh, exact); break;
      case 2: AlphaBlendL08ToL08FlatAlpha(s8, a, sw, sh, sl, st, d8, dw, dh, dl, dt, opacity, blendZero, twoLevel, rw, rh, exact); break;
      case 3: AlphaBlendL12ToL12(s16, a, sw, sh, sl, st, d16, dw, dh, dl, dt, opacity, blendZero, twoLevel, rw, rh, exact); break;
      case 4: AlphaBlendL12ToL12(s16, sw, sh, sl, st, a, aw, at + rows, al, at, d16, dw, dh, dl, dt, opacity, blendZero, twoLevel, rw, rh, exact); break;
      case 5: AlphaBlendL12ToL12FlatAlpha(s16, a, sw, sh, sl, st, d16, dw, dh, dl, dt, opacity, blendZero, twoLevel, rw, rh, exact); break;
      case 6: AlphaBlendDensityToL08(static_cast<u8>(density), s8, sw, sh, sl, st, d8, dw, dh, dl, dt, opacity, rw, rh, exact); break;
      case 7: AlphaBlendDensityToL08Inverted(static_cast<u8>(density), s8, sw, sh, sl, st, d8, dw, dh, dl, dt, opacity, rw, rh, exact); break;
      case 8: AlphaBlendDensityToL12(density, s8, sw, sh, sl, st, d16, dw, dh, dl, dt, opacity, rw, rh, exact); break;
      case 9: AlphaBlendDensityToL12Inverted(density, s8, sw, sh, sl, st, d16, dw, dh, dl, dt, opacity, rw, rh, exact); break;
      case 10: AlphaBlendDensityToL08Flat(static_cast<u8>(density), s8, sw, sh, sl, st, d8, dw, dh, dl, dt, rw, rh); break;
      case 11: AlphaBlendDensityToL08FlatInverted(static_cast<u8>(density), s8, sw, sh, sl, st, d8, dw, dh, dl, dt, rw, rh); break;
      case 12: AlphaBlendDensityToL12Flat(density, s8, sw, sh, sl, st, d16, dw, dh, dl, dt, rw, rh); break;
      case 13: AlphaBlendDensityWithAlphaBlueOfTrcToL08(trc.Data(), sw, sh, sl, st, static_cast<u8>(density), d8, opacity, dw, dh, dl, dt, rw, rh, flag, twoLevel); break;
      case 14: AlphaBlendL08WithAlphaBufferToL08(s8, alpha.Data(), sw, sh, sl, st, d8, dw, dh, dl, dt, opacity, rw, rh, exact); break;
      case 15: ApplyAlphaToL08(d8, alpha.Data(), dw, dh, dl, dt, opacity, flag, rw, rh, exact); break;
      case 16: ApplyAlphaToL12(d16, alpha.Data(), dw, dh, dl, dt, opacity, rw, rh, exact); break;
      case 17: InvertAlphaL08(d8, alpha.Data(), dw, dh, dl, dt, flag, rw, rh); break;
      case 18: ApplyLUTToL08(d8, dw, dh, dl, dt, rw, rh, table8.Data()); break;
      case 19: ApplyLUTToL12(d16, dw, dh, dl, dt, rw, rh, table16.Data()); break;
      case 20: PostApplyAlpha(a, d8, count); break;
      case 21: PostApplyAlpha(a, d16, count); break;
      case 22: MotionCopyL08ToL08(s8, sw, sh, sl, st, alpha.Data(), aw, at + rows, al, at, d8, dw, dh, dl, dt, opacity, twoLevel, rw, rh, mode, exact); break;
      case 23: MotionCopyL12ToL12(s16, sw, sh, sl, st, alpha.Data(), aw, at + rows, al, at, d16, dw, dh, dl, dt, opacity, twoLevel, rw, rh, mode, exact); break;
      case 24: ConvertL08To2LevelL08(d8, dw, dh, dl, dt, rw, rh); break;
      case 25: ConvertL08To2LevelL08(s8, sw, sh, sl, st, d8, dw, dh, dl, dt, rw, rh); break;
      case 26: ConvertL12To2LevelL12(d16, dw, dh, dl, dt, rw, rh); break;
      case 27: ConvertL12To2LevelL12(s16, sw, sh, sl, st, d16, dw, dh, dl, dt, rw, rh); break;
      case 28: ConvertL12To2LevelL08(s16, sw, sh, sl, st, d8, dw, dh, dl, dt, rw, rh); break;
      case 29: ConvertL012ToL08(s16, sw, sh, sl, st, d8, dw, dh, dl, dt, rw, rh); break;
    }
    // clang-format on
  });

  // Sources are read only (in place, the source is the destination).
  FUZZ_CHECK(alpha.Copy() == alphaBefore && trc.Copy() == trcBefore, "a source was written");
  if (!inPlace) {
    FUZZ_CHECK(grey.Copy() == greyBefore && words.Copy() == wordsBefore, "a source was written");
  }
  if (member.clip == kRun) return 0;
  // The elements the call may write: each row's clipped columns, and for
  // nextWord the element after them (the next row's first at the right
  // edge; none after the buffer's last).
  std::vector<bool> writable(dstSize + 1, false);
  for (u32 y = dt; y < dt + rows; ++y) {
    for (u32 x = dl; x < dl + cols + (nextWord ? 1 : 0); ++x) {
      writable[std::size_t{y} * dw + x] = true;
    }
  }
  const std::size_t n = inPlace ? srcPixels : dstSize;
  for (std::size_t i = 0; i < n; ++i) {
    const u32 before = member.words ? (inPlace ? wordsBefore[i] : wordDstBefore[i])
                                    : (inPlace ? greyBefore[i] : dstBefore[i]);
    const u32 after = member.words ? d16[i] : d8[i];
    FUZZ_CHECK(writable[i] || after == before,
               "destination element %zu (%zu, %zu) outside the region changed: %u -> %u", i,
               dw ? i % dw : 0, dw ? i / dw : 0, before, after);
  }
  return 0;
}

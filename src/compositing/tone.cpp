// Tone operations: tone curves between grey layers, the ink move between two
// separations, colour ramps and luminance between grey and colour, darken and
// lighten, and the recolouring of a TRC buffer.
//
// Each member clips its region, checks its pointers in the checked build and
// hands every row, in the form the call runs (the fast form only where the
// member has one), to a row kernel of the active instruction set: the grey
// blend kernels for grey destinations, the TRC blend kernels for colour ones,
// the word blend kernels for 12-bit ones. The per-pixel rules are the small
// row functions here (and, for the colour darken, lighten and recolouring,
// the TRC family's scalar entries); rows the kernels cannot take (narrow
// ones, and ones whose destination partly overlaps an input or a table) run
// them directly, so every call keeps the pixel-order result.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "Ostrel.h"
#include "compositing/grey_blend_kernels.h"
#include "compositing/trc_blend.h"
#include "compositing/word_blend_kernels.h"
#include "frame/blend.h"
#include "frame/checked.h"
#include "frame/region.h"

namespace ostrel {
namespace compositing {
namespace {

using frame::Disjoint;
using frame::ReadableAhead;
using frame::blend::Form;

template <Form form>
using FormTag = std::integral_constant<Form, form>;

// Calls run(FormTag) with the form the call runs: the fast form when exact is
// false and the module's fast-form flag is set, else the exact form.
template <class Run>
void InForm(bool exact, Run &&run) {
  if (FormIndex(exact) == static_cast<int>(Form::kFast)) {
    run(FormTag<Form::kFast>{});
  } else {
    run(FormTag<Form::kExact>{});
  }
}

// The weight of coverage c at the call's opacity; a null alpha row means
// full coverage.
template <Form form>
std::uint32_t CoverWeight(const unsigned char *alpha, std::uint32_t i, std::uint32_t opacity) {
  return frame::blend::Weight<form>(alpha != nullptr ? alpha[i] : 255u, opacity);
}

// The checked build's report of a required pointer that is null while the
// clipped region is not empty.
template <class P>
void ExpectPointer(const char *function, const char *argument, const P *pointer, frame::Extent e) {
  OSTREL_EXPECT(function, argument, static_cast<const void *>(pointer),
                e.Empty() || pointer != nullptr, "not null");
}

// ---- Row functions -----------------------------------------------------------

// d toward t = tone[s] (tone null: t = s) by the weight of full coverage.
template <Form form>
void ToneRow(const unsigned char *s, unsigned char *d, std::uint32_t n, const unsigned char *tone,
             std::uint32_t opacity) {
  const std::uint32_t w = frame::blend::Weight<form>(255u, opacity);
  for (std::uint32_t i = 0; i < n; ++i) {
    const std::int32_t t = tone != nullptr ? tone[s[i]] : s[i];
    d[i] = static_cast<unsigned char>(frame::blend::Channel<form>(d[i], t, w));
  }
}

// The ink move: m = min((s * opacity) / 255, 255 - d) goes from s to d,
// except where the protection byte is not 0 (protect null: nowhere).
void MoveRow(unsigned char *s, const unsigned char *protect, unsigned char *d, std::uint32_t n,
             std::uint32_t opacity) {
  for (std::uint32_t i = 0; i < n; ++i) {
    if (protect != nullptr && protect[i] != 0) continue;
    const std::uint32_t room = 255u - d[i];
    const std::uint32_t wanted = s[i] * opacity / 255u;
    const std::uint32_t m = wanted < room ? wanted : room;
    d[i] = static_cast<unsigned char>(d[i] + m);
    s[i] = static_cast<unsigned char>(s[i] - m);
  }
}

// d toward k = palette[s], weighted by k's alpha byte.
template <Form form>
void RampRow(const unsigned char *s, unsigned int *d, std::uint32_t n, const unsigned int *palette,
             std::uint32_t opacity) {
  for (std::uint32_t i = 0; i < n; ++i) {
    const std::uint32_t k = palette[s[i]];
    d[i] = frame::blend::Pixel<form>(d[i], k, frame::blend::Weight<form>(k >> 24, opacity));
  }
}

// RampRow through the vector kernels: the palette entries of a stretch of
// the row are looked up into a scratch row on the stack, which pixelsByAlpha
// blends toward. The scalar table gains nothing from the scratch row, and a
// row whose destination shares memory with its source bytes or the palette
// needs the pixel order: both run RampRow itself.
template <Form form>
void RampRowByKernel(const unsigned char *s, unsigned int *d, std::uint32_t n,
                     const unsigned int *palette, const TrcBlendKernels &kernels,
                     const TrcBlend &blend) {
  if (&kernels == &TrcBlendKernelsScalar || !Disjoint(d, n, s, n) ||
      !Disjoint(d, n, palette, 256)) {
    RampRow<form>(s, d, n, palette, blend.opacity);
    return;
  }
  constexpr std::uint32_t kStretch = 512;
  std::uint32_t looked[kStretch];
  for (std::uint32_t i = 0; i < n; i += kStretch) {
    TrcRow part{d + i, n - i < kStretch ? n - i : kStretch};
    for (std::size_t k = 0; k < part.n; ++k) looked[k] = palette[s[i + k]];
    part.pixels = looked;
    kernels.pixelsByAlpha[static_cast<int>(form)](part, blend);
  }
}

// The luminance of a TRC pixel: (77 red + 150 green + 29 blue + 128) >> 8.
// The weights sum to 256, so white gives 255 and black 0.
std::uint32_t Luminance(std::uint32_t p) {
  const std::uint32_t blue = p & 0xFFu, green = (p >> 8) & 0xFFu, red = (p >> 16) & 0xFFu;
  return (77u * red + 150u * green + 29u * blue + 128u) >> 8;
}

// d toward t = tone[y] (tone null: t = y), weighted by the source's alpha
// byte.
template <Form form>
void LumaRow(const unsigned int *s, unsigned char *d, std::uint32_t n, const unsigned char *tone,
             std::uint32_t opacity) {
  for (std::uint32_t i = 0; i < n; ++i) {
    const std::uint32_t y = Luminance(s[i]);
    const std::int32_t t = tone != nullptr ? tone[y] : static_cast<std::int32_t>(y);
    const std::uint32_t w = frame::blend::Weight<form>(s[i] >> 24, opacity);
    d[i] = static_cast<unsigned char>(frame::blend::Channel<form>(d[i], t, w));
  }
}

// The target of darken (min) and lighten (max) for one channel value.
template <bool lighter, class V>
V Extreme(V s, V d) {
  return lighter ? (s > d ? s : d) : (s < d ? s : d);
}

// Grey pixels (bytes or whole 16-bit words): d toward the extreme of s and d.
template <Form form, bool lighter, class P>
void ExtremeGreyRow(const P *s, const unsigned char *alpha, P *d, std::uint32_t n,
                    std::uint32_t opacity) {
  for (std::uint32_t i = 0; i < n; ++i) {
    const std::int32_t t = Extreme<lighter>(s[i], d[i]);
    d[i] =
        static_cast<P>(frame::blend::Channel<form>(d[i], t, CoverWeight<form>(alpha, i, opacity)));
  }
}

// ---- The grey members' rows through the grey kernels -------------------------
// A kernel reads its inputs a step (or a stretch) ahead of its stores, so a
// row runs one only where that gives the row function's pixel-order results:
// each per-pixel input is the destination row itself or shares no memory with
// it, and the tables share none. Rows narrower than kKernelFrom run the row
// functions: below it a kernel's per-row cost outweighs what it saves.
constexpr std::uint32_t kKernelFrom = 16;
constexpr std::uint32_t kStretch = 1024;  // pixels of a scratch row on the stack

GreyBlend OpacityBlend(std::uint32_t opacity, const unsigned char *table = nullptr) {
  GreyBlend blend;
  blend.opacity = opacity;
  blend.table = table;
  return blend;
}

// ToneRow on a row the kernels take: the source looked up a stretch at a time
// into a scratch row (tone null: the source itself), then d moved toward it
// by greysByAlpha at full coverage.
template <Form form>
void ToneStretches(const GreyBlendKernels &k, const unsigned char *s, unsigned char *d,
                   std::uint32_t n, const unsigned char *tone, std::uint32_t opacity) {
  const GreyBlend blend = OpacityBlend(opacity, tone);
  const GreyRowKernel toward = k.greysByAlpha[static_cast<int>(form)];
  std::uint8_t mapped[kStretch];
  for (std::uint32_t i = 0; i < n; i += kStretch) {
    GreyRow row{d + i, n - i < kStretch ? n - i : kStretch};
    row.src = s + i;
    if (tone != nullptr) {
      std::memcpy(mapped, s + i, row.n);
      k.lookup(GreyRow{mapped, row.n}, blend);
      row.src = mapped;
    }
    toward(row, blend);
  }
}

// The fast form through a tone table is cheap enough in the row function that
// the scratch lookup pays only from about 48 pixels (measured).
constexpr std::uint32_t kFastToneKernelFrom = 48;

template <Form form>
void ToneKernelRow(const GreyBlendKernels &k, const unsigned char *s, unsigned char *d,
                   std::uint32_t n, const unsigned char *tone, std::uint32_t opacity) {
  const std::uint32_t from =
      form == Form::kFast && tone != nullptr ? kFastToneKernelFrom : kKernelFrom;
  if (n < from || !ReadableAhead(d, n, s) || !Disjoint(d, n, tone, 256)) {
    ToneRow<form>(s, d, n, tone, opacity);
  } else {
    ToneStretches<form>(k, s, d, n, tone, opacity);
  }
}

// LumaRow on a row the kernels take: luminance and alpha bytes split a
// stretch at a time into scratch rows, the luminance looked up (tone null:
// kept), then d moved toward it by greysByAlpha.
template <Form form>
void LumaStretches(const GreyBlendKernels &k, const unsigned int *s, unsigned char *d,
                   std::uint32_t n, const unsigned char *tone, std::uint32_t opacity) {
  const GreyBlend blend = OpacityBlend(opacity, tone);
  const GreyRowKernel toward = k.greysByAlpha[static_cast<int>(form)];
  std::uint8_t luma[kStretch], alpha[kStretch];
  for (std::uint32_t i = 0; i < n; i += kStretch) {
    GreyRow split{luma, n - i < kStretch ? n - i : kStretch};
    split.pixels = s + i;
    split.second = alpha;
    k.splitLuminance(split, blend);
    if (tone != nullptr) k.lookup(GreyRow{luma, split.n}, blend);
    GreyRow row{d + i, split.n};
    row.src = luma;
    row.alpha = alpha;
    toward(row, blend);
  }
}

template <Form form>
void LumaKernelRow(const GreyBlendKernels &k, const unsigned int *s, unsigned char *d,
                   std::uint32_t n, const unsigned char *tone, std::uint32_t opacity) {
  if (n < kKernelFrom || !Disjoint(d, n, s, n) || !Disjoint(d, n, tone, 256)) {
    LumaRow<form>(s, d, n, tone, opacity);
  } else {
    LumaStretches<form>(k, s, d, n, tone, opacity);
  }
}

template <Form form, bool lighter>
void ExtremeKernelRow(const GreyBlendKernels &k, const unsigned char *s, const unsigned char *a,
                      unsigned char *d, std::uint32_t n, std::uint32_t opacity) {
  if (n < kKernelFrom || !ReadableAhead(d, n, s) || !ReadableAhead(d, n, a)) {
    ExtremeGreyRow<form, lighter>(s, a, d, n, opacity);
    return;
  }
  GreyRow row{d, n};
  row.src = s;
  row.alpha = a;
  (lighter ? k.lighter : k.darker)[static_cast<int>(form)](row, OpacityBlend(opacity));
}

// MoveRow on a row the kernels take; it writes two rows, so the three rows
// must lie apart.
void MoveKernelRow(const GreyBlendKernels &k, unsigned char *s, const unsigned char *protect,
                   unsigned char *d, std::uint32_t n, std::uint32_t opacity) {
  if (n < kKernelFrom || !Disjoint(d, n, s, n) || !Disjoint(d, n, protect, n) ||
      !Disjoint(s, n, protect, n)) {
    MoveRow(s, protect, d, n, opacity);
    return;
  }
  GreyRow row{d, n};
  row.alpha = protect;
  row.second = s;
  k.moveInk(row, OpacityBlend(opacity));
}

// The blend of a darken, lighten or recolouring call: a null alpha row is
// full coverage, the weight the ...ByWeight kernels take.
template <Form form>
TrcBlend CoverBlend(std::uint32_t opacity) {
  TrcBlend blend = PaintBlend(0, opacity);
  blend.weight = frame::blend::Weight<form>(255u, opacity);
  return blend;
}

// TRC pixels: blue, green and red of d toward their extremes with s; d keeps
// its alpha byte and the source's plays no part (TrcBlendKernels::extreme...).
template <Form form, bool lighter>
void ExtremeTrcRow(const unsigned int *s, const unsigned char *alpha, unsigned int *d,
                   std::uint32_t n, const TrcBlend &blend) {
  TrcRow row{d, n};
  row.pixels = s;
  row.bytes = alpha;
  const TrcBlendKernels &k = TrcKernelsForRow(row);
  const int f = static_cast<int>(form);
  (alpha != nullptr ? k.extremeByBytes[lighter][f] : k.extremeByWeight[lighter][f])(row, blend);
}

// What the recolouring moves pixels from and to (TrcBlendKernels::recolour...).
template <Form form>
TrcBlend Recolour(std::uint32_t from, std::uint32_t to, std::uint32_t tolerance,
                  std::uint32_t opacity) {
  TrcBlend blend = CoverBlend<form>(opacity);
  blend.colour = from;
  blend.to = to;
  blend.tolerance = tolerance;
  return blend;
}

template <Form form>
void RecolourRow(unsigned int *b, const unsigned char *alpha, std::uint32_t n,
                 const TrcBlend &blend) {
  TrcRow row{b, n};
  row.bytes = alpha;
  const TrcBlendKernels &k = TrcKernelsForRow(row);
  const int f = static_cast<int>(form);
  (alpha != nullptr ? k.recolourByBytes[f] : k.recolourByWeight[f])(row, blend);
}

// ---- Regions -------------------------------------------------------------------

// A table the member cannot do without (tableName null: none).
struct RequiredTable {
  const void *table;
  const char *tableName;
};

// Clips a two-buffer region, reports null source or destination pointers (and
// a null required table) in the checked build, and calls row(srcRow, dstRow,
// columns) for each row.
template <class Src, class Dst, class RowFn>
void TwoBufferRows(Src *src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcLeft,
                   unsigned int srcTop, Dst *dst, unsigned int dstWidth, unsigned int dstHeight,
                   unsigned int dstLeft, unsigned int dstTop, unsigned int regionWidth,
                   unsigned int regionHeight, const char *function, RowFn &&row,
                   RequiredTable required = {nullptr, nullptr}) {
  const auto s = frame::MakePlane(src, srcWidth, srcHeight, srcLeft, srcTop, "src");
  const auto d = frame::MakePlane(dst, dstWidth, dstHeight, dstLeft, dstTop, "dst");
  const frame::Extent e = frame::ClipPair(s, d, regionWidth, regionHeight, function);
  ExpectPointer(function, "src", src, e);
  ExpectPointer(function, "dst", dst, e);
  if (required.tableName != nullptr) ExpectPointer(function, required.tableName, required.table, e);
  frame::ForEachRowPair(s, d, e, row);
}

// The darken and lighten members: the alpha buffer (may be null) shares the
// source's geometry; row(srcRow, alphaRow or null, dstRow, columns).
template <class P, class RowFn>
void WithAlphaRows(P *src, unsigned char *alpha, unsigned int srcWidth, unsigned int srcHeight,
                   unsigned int srcLeft, unsigned int srcTop, P *dst, unsigned int dstWidth,
                   unsigned int dstHeight, unsigned int dstLeft, unsigned int dstTop,
                   unsigned int regionWidth, unsigned int regionHeight, const char *function,
                   RowFn &&row) {
  const auto a = frame::MakePlane(alpha, srcWidth, srcHeight, srcLeft, srcTop, "src");
  std::uint32_t j = 0;
  TwoBufferRows(src, srcWidth, srcHeight, srcLeft, srcTop, dst, dstWidth, dstHeight, dstLeft,
                dstTop, regionWidth, regionHeight, function,
                [&](const P *s, P *d, std::uint32_t n) {
                  row(s, alpha != nullptr ? a.Row(j) : nullptr, d, n);
                  ++j;
                });
}

// One row of a darken or lighten, in form F, for each pixel type: bytes and
// TRC pixels through their families' extreme entries, 12-bit words (exact
// form only) through WordBlendKernels::towardExtreme. A null alpha row is
// full coverage; for words its exact weight (255 * o) / 255 is the opacity.
template <Form form, bool lighter>
void ExtremeRow(const unsigned char *s, const unsigned char *a, unsigned char *d, std::uint32_t n,
                std::uint32_t opacity) {
  ExtremeKernelRow<form, lighter>(ActiveGreyBlendKernels(), s, a, d, n, opacity);
}

template <Form form, bool lighter>
void ExtremeRow(const unsigned int *s, const unsigned char *a, unsigned int *d, std::uint32_t n,
                std::uint32_t opacity) {
  ExtremeTrcRow<form, lighter>(s, a, d, n, CoverBlend<form>(opacity));
}

template <Form, bool lighter>
void ExtremeRow(const unsigned short *s, const unsigned char *a, unsigned short *d, std::uint32_t n,
                std::uint32_t opacity) {
  WordBlend blend;
  blend.opacity = opacity;
  WordRow row{d, n};
  row.src = s;
  row.alpha = a;
  WordKernelsForRow(row).towardExtreme[a != nullptr ? kWordByAlpha : kWordByOpacity][lighter](
      row, blend);
}

// The darken and lighten members: d toward the extreme of s and d, per
// channel, through the alpha buffer that shares the source's geometry.
template <bool lighter, class P>
void Extreme(P *src, unsigned char *alpha, unsigned int srcWidth, unsigned int srcHeight,
             unsigned int srcLeft, unsigned int srcTop, P *dst, unsigned int dstWidth,
             unsigned int dstHeight, unsigned int dstLeft, unsigned int dstTop,
             unsigned char opacity, unsigned int regionWidth, unsigned int regionHeight, bool exact,
             const char *function) {
  InForm(exact, [&](auto form) {
    WithAlphaRows(src, alpha, srcWidth, srcHeight, srcLeft, srcTop, dst, dstWidth, dstHeight,
                  dstLeft, dstTop, regionWidth, regionHeight, function,
                  [&](const P *s, const unsigned char *a, P *d, std::uint32_t n) {
                    ExtremeRow<decltype(form)::value, lighter>(s, a, d, n, opacity);
                  });
  });
}

#if OSTREL_CHECKED
// True when some row of region a shares a byte with some row of region b
// (both clipped to e). Row j of a covers [x, x + columns) counted from b's
// first region byte; b's row k covers [k * width, k * width + columns), so
// the only candidate k is the first with k * width > x - columns.
bool RegionsShareMemory(const frame::Plane<unsigned char> &a, const frame::Plane<unsigned char> &b,
                        frame::Extent e) {
  if (e.Empty()) return false;
  const auto base = reinterpret_cast<std::uintptr_t>(b.Row(0));
  const std::int64_t cols = e.columns, width = b.width;
  for (std::uint32_t j = 0; j < e.rows; ++j) {
    const auto x = static_cast<std::int64_t>(reinterpret_cast<std::uintptr_t>(a.Row(j)) - base);
    const std::int64_t low = x - cols;  // k * width must exceed this
    const std::int64_t k = low >= 0 ? low / width + 1 : 0;
    if (k < e.rows && k * width < x + cols) return true;
  }
  return false;
}
#endif

}  // namespace

// The scalar entries of the grey kernels that the tone members run: their
// row functions and the luminance above.
template <Form form, bool lighter>
void ExtremeBytesRow(const GreyRow &row, const GreyBlend &blend) {
  ExtremeGreyRow<form, lighter>(row.src, row.alpha, row.dst, static_cast<std::uint32_t>(row.n),
                                blend.opacity);
}
template void ExtremeBytesRow<Form::kExact, false>(const GreyRow &, const GreyBlend &);
template void ExtremeBytesRow<Form::kFast, false>(const GreyRow &, const GreyBlend &);
template void ExtremeBytesRow<Form::kExact, true>(const GreyRow &, const GreyBlend &);
template void ExtremeBytesRow<Form::kFast, true>(const GreyRow &, const GreyBlend &);

void MoveInkRow(const GreyRow &row, const GreyBlend &blend) {
  MoveRow(row.second, row.alpha, row.dst, static_cast<std::uint32_t>(row.n), blend.opacity);
}

void SplitLuminanceRow(const GreyRow &row, const GreyBlend &) {
  for (std::size_t i = 0; i < row.n; ++i) {
    row.dst[i] = static_cast<std::uint8_t>(Luminance(row.pixels[i]));
    row.second[i] = static_cast<std::uint8_t>(row.pixels[i] >> 24);
  }
}

}  // namespace compositing
}  // namespace ostrel

namespace frame = ostrel::frame;
namespace compositing = ostrel::compositing;

void TransferToneL08ToL08(unsigned char *src, unsigned int srcWidth, unsigned int srcHeight,
                          unsigned int srcLeft, unsigned int srcTop, unsigned char *dst,
                          unsigned int dstWidth, unsigned int dstHeight, unsigned int dstLeft,
                          unsigned int dstTop, const unsigned char *tone, unsigned char opacity,
                          unsigned int regionWidth, unsigned int regionHeight, bool exact) {
  const char *const function = __func__;  // the lambda's own is operator()
  const compositing::GreyBlendKernels &k = compositing::ActiveGreyBlendKernels();
  compositing::InForm(exact, [&](auto form) {
    compositing::TwoBufferRows(src, srcWidth, srcHeight, srcLeft, srcTop, dst, dstWidth, dstHeight,
                               dstLeft, dstTop, regionWidth, regionHeight, function,
                               [&](const unsigned char *s, unsigned char *d, std::uint32_t n) {
                                 compositing::ToneKernelRow<decltype(form)::value>(k, s, d, n, tone,
                                                                                   opacity);
                               });
  });
}

void MoveToneL08ToL08Prot(unsigned char *src, unsigned int srcWidth, unsigned int srcHeight,
                          unsigned int srcLeft, unsigned int srcTop, unsigned char *protect,
                          unsigned int protectWidth, unsigned int protectHeight,
                          unsigned int protectLeft, unsigned int protectTop, unsigned char *dst,
                          unsigned int dstWidth, unsigned int dstHeight, unsigned int dstLeft,
                          unsigned int dstTop, unsigned char opacity, unsigned int regionWidth,
                          unsigned int regionHeight) {
  const auto s = frame::MakePlane(src, srcWidth, srcHeight, srcLeft, srcTop, "src");
  const auto p =
      frame::MakePlane(protect, protectWidth, protectHeight, protectLeft, protectTop, "protect");
  const auto d = frame::MakePlane(dst, dstWidth, dstHeight, dstLeft, dstTop, "dst");
  const frame::Extent e = frame::ClipPair(s, d, regionWidth, regionHeight, __func__);
  compositing::ExpectPointer(__func__, "src", src, e);
  compositing::ExpectPointer(__func__, "dst", dst, e);
#if OSTREL_CHECKED
  // protectHeight is not read: only the width is held to the region.
  OSTREL_EXPECT(
      __func__, "protectLeft", protectLeft,
      protect == nullptr || e.Empty() || std::uint64_t{protectLeft} + e.columns <= protectWidth,
      "at most protectWidth - the region's clipped width");
  OSTREL_EXPECT(__func__, "dst", static_cast<const void *>(dst),
                !compositing::RegionsShareMemory(s, d, e),
                "a region that shares no memory with src's");
#endif
  const compositing::GreyBlendKernels &k = compositing::ActiveGreyBlendKernels();
  for (std::uint32_t j = 0; j < e.rows; ++j) {
    compositing::MoveKernelRow(k, s.Row(j), protect != nullptr ? p.Row(j) : nullptr, d.Row(j),
                               e.columns, opacity);
  }
}

void TransferToneL08ToTRC(unsigned char *src, unsigned int srcWidth, unsigned int srcHeight,
                          unsigned int srcLeft, unsigned int srcTop, unsigned int *dst,
                          unsigned int dstWidth, unsigned int dstHeight, unsigned int dstLeft,
                          unsigned int dstTop, const unsigned int *palette, unsigned char opacity,
                          unsigned int regionWidth, unsigned int regionHeight, bool exact) {
  const char *const function = __func__;  // the lambda's own is operator()
  const auto &kernels = compositing::ActiveTrcBlendKernels();
  const compositing::TrcBlend blend = compositing::PaintBlend(0, opacity);
  compositing::InForm(exact, [&](auto form) {
    compositing::TwoBufferRows(
        src, srcWidth, srcHeight, srcLeft, srcTop, dst, dstWidth, dstHeight, dstLeft, dstTop,
        regionWidth, regionHeight, function,
        [&](const unsigned char *s, unsigned int *d, std::uint32_t n) {
          compositing::RampRowByKernel<decltype(form)::value>(s, d, n, palette, kernels, blend);
        },
        compositing::RequiredTable{palette, "palette"});
  });
}

void TransferToneTRCToL08(unsigned int *src, unsigned int srcWidth, unsigned int srcHeight,
                          unsigned int srcLeft, unsigned int srcTop, unsigned char *dst,
                          unsigned int dstWidth, unsigned int dstHeight, unsigned int dstLeft,
                          unsigned int dstTop, const unsigned char *tone, unsigned char opacity,
                          unsigned int regionWidth, unsigned int regionHeight, bool exact) {
  const char *const function = __func__;  // the lambda's own is operator()
  const compositing::GreyBlendKernels &k = compositing::ActiveGreyBlendKernels();
  compositing::InForm(exact, [&](auto form) {
    compositing::TwoBufferRows(src, srcWidth, srcHeight, srcLeft, srcTop, dst, dstWidth, dstHeight,
                               dstLeft, dstTop, regionWidth, regionHeight, function,
                               [&](const unsigned int *s, unsigned char *d, std::uint32_t n) {
                                 compositing::LumaKernelRow<decltype(form)::value>(k, s, d, n, tone,
                                                                                   opacity);
                               });
  });
}

void DarkerL08ToL08WithAlpha(unsigned char *src, unsigned char *alpha, unsigned int srcWidth,
                             unsigned int srcHeight, unsigned int srcLeft, unsigned int srcTop,
                             unsigned char *dst, unsigned int dstWidth, unsigned int dstHeight,
                             unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
                             unsigned int regionWidth, unsigned int regionHeight, bool exact) {
  compositing::Extreme<false>(src, alpha, srcWidth, srcHeight, srcLeft, srcTop, dst, dstWidth,
                              dstHeight, dstLeft, dstTop, opacity, regionWidth, regionHeight, exact,
                              __func__);
}

void LighterL08ToL08WithAlpha(unsigned char *src, unsigned char *alpha, unsigned int srcWidth,
                              unsigned int srcHeight, unsigned int srcLeft, unsigned int srcTop,
                              unsigned char *dst, unsigned int dstWidth, unsigned int dstHeight,
                              unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
                              unsigned int regionWidth, unsigned int regionHeight, bool exact) {
  compositing::Extreme<true>(src, alpha, srcWidth, srcHeight, srcLeft, srcTop, dst, dstWidth,
                             dstHeight, dstLeft, dstTop, opacity, regionWidth, regionHeight, exact,
                             __func__);
}

// The 12-bit members run the exact form whatever `exact` says.
void DarkerL12ToL12WithAlpha(unsigned short *src, unsigned char *alpha, unsigned int srcWidth,
                             unsigned int srcHeight, unsigned int srcLeft, unsigned int srcTop,
                             unsigned short *dst, unsigned int dstWidth, unsigned int dstHeight,
                             unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
                             unsigned int regionWidth, unsigned int regionHeight, bool /*exact*/) {
  compositing::Extreme<false>(src, alpha, srcWidth, srcHeight, srcLeft, srcTop, dst, dstWidth,
                              dstHeight, dstLeft, dstTop, opacity, regionWidth, regionHeight, true,
                              __func__);
}

void LighterL12ToL12WithAlpha(unsigned short *src, unsigned char *alpha, unsigned int srcWidth,
                              unsigned int srcHeight, unsigned int srcLeft, unsigned int srcTop,
                              unsigned short *dst, unsigned int dstWidth, unsigned int dstHeight,
                              unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
                              unsigned int regionWidth, unsigned int regionHeight, bool /*exact*/) {
  compositing::Extreme<true>(src, alpha, srcWidth, srcHeight, srcLeft, srcTop, dst, dstWidth,
                             dstHeight, dstLeft, dstTop, opacity, regionWidth, regionHeight, true,
                             __func__);
}

void DarkerTRCToTRCWithAlpha(unsigned int *src, unsigned char *alpha, unsigned int srcWidth,
                             unsigned int srcHeight, unsigned int srcLeft, unsigned int srcTop,
                             unsigned int *dst, unsigned int dstWidth, unsigned int dstHeight,
                             unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
                             unsigned int regionWidth, unsigned int regionHeight, bool exact) {
  compositing::Extreme<false>(src, alpha, srcWidth, srcHeight, srcLeft, srcTop, dst, dstWidth,
                              dstHeight, dstLeft, dstTop, opacity, regionWidth, regionHeight, exact,
                              __func__);
}

void LighterTRCToTRCWithAlpha(unsigned int *src, unsigned char *alpha, unsigned int srcWidth,
                              unsigned int srcHeight, unsigned int srcLeft, unsigned int srcTop,
                              unsigned int *dst, unsigned int dstWidth, unsigned int dstHeight,
                              unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
                              unsigned int regionWidth, unsigned int regionHeight, bool exact) {
  compositing::Extreme<true>(src, alpha, srcWidth, srcHeight, srcLeft, srcTop, dst, dstWidth,
                             dstHeight, dstLeft, dstTop, opacity, regionWidth, regionHeight, exact,
                             __func__);
}

void ChangeColorOfTRCWithAlpha(unsigned int *buffer, unsigned char *alpha, unsigned int width,
                               unsigned int height, unsigned int left, unsigned int top,
                               unsigned int fromColour, unsigned int toColour,
                               unsigned char tolerance, unsigned char opacity,
                               unsigned int regionWidth, unsigned int regionHeight, bool exact) {
  const auto b = frame::MakePlane(buffer, width, height, left, top, "");
  const auto a = frame::MakePlane(alpha, width, height, left, top, "");
  const frame::Extent e = frame::ClipSingle(b, regionWidth, regionHeight, __func__);
  compositing::ExpectPointer(__func__, "buffer", buffer, e);
  compositing::InForm(exact, [&](auto form) {
    const auto r =
        compositing::Recolour<decltype(form)::value>(fromColour, toColour, tolerance, opacity);
    for (std::uint32_t j = 0; j < e.rows; ++j) {
      compositing::RecolourRow<decltype(form)::value>(
          b.Row(j), alpha != nullptr ? a.Row(j) : nullptr, e.columns, r);
    }
  });
}

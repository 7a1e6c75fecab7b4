// Alpha masks and lookup tables: one grey buffer changed in place.
#include <array>

#include "Ostrel.h"
#include "compositing/grey_blend.h"
#include "compositing/trc_blend.h"
#include "compositing/word_map_kernels.h"
#include "frame/numeric.h"

namespace ostrel {
namespace compositing {
namespace {

// Calls pixel(value, alpha byte) for each pixel of the clipped region; the
// alpha buffer shares the buffer's geometry.
template <class P, class PixelFn>
void ForEachMaskedPixel(P *buffer, unsigned char *alpha, unsigned int width, unsigned int height,
                        unsigned int left, unsigned int top, unsigned int regionWidth,
                        unsigned int regionHeight, const char *function, PixelFn &&pixel) {
  const auto b = frame::MakePlane(buffer, width, height, left, top, "");
  const auto a = frame::MakePlane(alpha, width, height, left, top, "");
  const frame::Extent e = frame::ClipSingle(b, regionWidth, regionHeight, function);
  for (std::uint32_t j = 0; j < e.rows; ++j) {
    P *row = b.Row(j);
    const unsigned char *mask = a.Row(j);
    for (std::uint32_t i = 0; i < e.columns; ++i) pixel(row[i], mask[i]);
  }
}

template <class P>
void PostApply(const unsigned char *alpha, P *buffer, unsigned int count) {
  if (alpha == nullptr) return;
  for (unsigned int i = 0; i < count; ++i) {
    const std::int32_t factor = frame::TruncToInt32(alpha[i] / 255.0);
    buffer[i] = static_cast<P>(buffer[i] * factor);
  }
}

// The rule that undoes an applied alpha a (not 0 or 255) on a value d, in
// double precision: q = d * (255 / a), at least one step up (so a pixel the
// alpha darkened to 0, or by less than a step, does not stay where it is),
// clamped and truncated.
unsigned char Unapplied(unsigned int d, unsigned int a) {
  double q = d * (255.0 / a);
  if (q - d < 1.0) q += 1.0;
  q = q < 0.0 ? 0.0 : q > 255.0 ? 255.0 : q;
  return static_cast<unsigned char>(frame::TruncToInt32(q));
}

// The rule depends on (a, d) only: all 65,536 results, built at first use
// (a function-local static, so building is thread-safe), indexed a * 256 + d.
// Alphas 0 and 255 keep d.
const unsigned char *UnappliedTable() {
  static const std::array<unsigned char, 256 * 256> table = [] {
    std::array<unsigned char, 256 * 256> t{};
    for (unsigned int a = 0; a < 256; ++a) {
      for (unsigned int d = 0; d < 256; ++d) {
        t[a * 256 + d] = a == 0 || a == 255 ? static_cast<unsigned char>(d) : Unapplied(d, a);
      }
    }
    return t;
  }();
  return table.data();
}

}  // namespace
}  // namespace compositing
}  // namespace ostrel

namespace frame = ostrel::frame;
namespace compositing = ostrel::compositing;

void ApplyAlphaToL08(unsigned char *buffer, unsigned char *alpha, unsigned int width,
                     unsigned int height, unsigned int left, unsigned int top,
                     unsigned char opacity, bool flat, unsigned int regionWidth,
                     unsigned int regionHeight, bool exact) {
  if (flat) {
    compositing::ForEachMaskedPixel(buffer, alpha, width, height, left, top, regionWidth,
                                    regionHeight, __func__, [&](unsigned char &d, unsigned char a) {
                                      const std::uint32_t w = a != 0 ? opacity : 0u;
                                      d = static_cast<unsigned char>(d * w / 255u);
                                    });
    return;
  }
  const auto b = frame::MakePlane(buffer, width, height, left, top, "");
  const auto m = frame::MakePlane(alpha, width, height, left, top, "");
  const frame::Extent e = frame::ClipSingle(b, regionWidth, regionHeight, __func__);
  compositing::GreyBlend blend;
  blend.opacity = opacity;
  const compositing::GreyRowKernel kernel =
      compositing::ActiveGreyBlendKernels().applyAlpha[compositing::FormIndex(exact)];
  for (std::uint32_t j = 0; j < e.rows; ++j) {
    compositing::GreyRow row{b.Row(j), e.columns};
    row.alpha = m.Row(j);
    kernel(row, blend);
  }
}

void ApplyAlphaToL12(unsigned short *buffer, unsigned char *alpha, unsigned int width,
                     unsigned int height, unsigned int left, unsigned int top,
                     unsigned char opacity, unsigned int regionWidth, unsigned int regionHeight,
                     bool /*exact*/) {
  const auto b = frame::MakePlane(buffer, width, height, left, top, "");
  const auto m = frame::MakePlane(alpha, width, height, left, top, "");
  const frame::Extent e = frame::ClipSingle(b, regionWidth, regionHeight, __func__);
  compositing::WordMap map;
  map.opacity = opacity;
  compositing::MapWordsInPlace(b, &m, e, &compositing::WordMapKernels::applyAlpha, map);
}

void InvertAlphaL08(unsigned char *buffer, unsigned char *alpha, unsigned int width,
                    unsigned int height, unsigned int left, unsigned int top, bool flat,
                    unsigned int regionWidth, unsigned int regionHeight) {
  if (flat) {
    compositing::ForEachMaskedPixel(buffer, alpha, width, height, left, top, regionWidth,
                                    regionHeight, __func__, [](unsigned char &d, unsigned char a) {
                                      if (a == 0) d = 255;
                                    });
    return;
  }
  const unsigned char *table = compositing::UnappliedTable();
  compositing::ForEachMaskedPixel(
      buffer, alpha, width, height, left, top, regionWidth, regionHeight, __func__,
      [table](unsigned char &d, unsigned char a) { d = table[a * 256u + d]; });
}

void ApplyLUTToL08(unsigned char *buffer, unsigned int width, unsigned int height,
                   unsigned int left, unsigned int top, unsigned int regionWidth,
                   unsigned int regionHeight, unsigned char *table) {
  const auto b = frame::MakePlane(buffer, width, height, left, top, "");
  const frame::Extent e = frame::ClipSingle(b, regionWidth, regionHeight, __func__);
  compositing::GreyBlend blend;
  blend.table = table;
  // Short rows skip the table's check of the row length.
  const compositing::GreyRowKernel kernel = e.columns < compositing::kLookupVectorFrom
                                                ? compositing::LookupRow
                                                : compositing::ActiveGreyBlendKernels().lookup;
  for (std::uint32_t j = 0; j < e.rows; ++j)
    kernel(compositing::GreyRow{b.Row(j), e.columns}, blend);
}

void ApplyLUTToL12(unsigned short *buffer, unsigned int width, unsigned int height,
                   unsigned int left, unsigned int top, unsigned int regionWidth,
                   unsigned int regionHeight, unsigned short *table) {
  const auto b = frame::MakePlane(buffer, width, height, left, top, "");
  const frame::Extent e = frame::ClipSingle(b, regionWidth, regionHeight, __func__);
  compositing::WordMap map;
  map.table = table;
  compositing::MapWordsInPlace(b, nullptr, e, &compositing::WordMapKernels::lookup, map);
}

void PostApplyAlpha(unsigned char *alpha, unsigned char *buffer, unsigned int count) {
  compositing::PostApply(alpha, buffer, count);
}

void PostApplyAlpha(unsigned char *alpha, unsigned short *buffer, unsigned int count) {
  compositing::PostApply(alpha, buffer, count);
}

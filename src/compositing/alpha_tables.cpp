// Alpha masks and lookup tables: one grey buffer changed in place.
#include "Ostrel.h"
#include "compositing/grey_blend.h"
#include "compositing/trc_blend.h"
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
  const auto b = frame::MakePlane(buffer, width, height, left, top);
  const auto a = frame::MakePlane(alpha, width, height, left, top);
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

// ApplyAlphaToL08.
void ScaleBytesByAlpha(unsigned char *buffer, unsigned char *alpha, unsigned int width,
                       unsigned int height, unsigned int left, unsigned int top,
                       unsigned char opacity, bool flat, unsigned int regionWidth,
                       unsigned int regionHeight, bool exact, const char *function) {
  if (flat) {
    ForEachMaskedPixel(buffer, alpha, width, height, left, top, regionWidth, regionHeight, function,
                       [&](unsigned char &d, unsigned char a) {
                         const std::uint32_t w = a != 0 ? opacity : 0u;
                         d = static_cast<unsigned char>(d * w / 255u);
                       });
    return;
  }
  const auto b = frame::MakePlane(buffer, width, height, left, top);
  const auto m = frame::MakePlane(alpha, width, height, left, top);
  const frame::Extent e = frame::ClipSingle(b, regionWidth, regionHeight, function);
  GreyBlend blend;
  blend.opacity = opacity;
  const GreyRowKernel kernel = ActiveGreyBlendKernels().applyAlpha[FormIndex(exact)];
  for (std::uint32_t j = 0; j < e.rows; ++j) {
    GreyRow row{b.Row(j), e.columns};
    row.alpha = m.Row(j);
    kernel(row, blend);
  }
}

// ApplyLUTToL08.
void LookUpBytes(unsigned char *buffer, unsigned int width, unsigned int height, unsigned int left,
                 unsigned int top, unsigned int regionWidth, unsigned int regionHeight,
                 const unsigned char *table, const char *function) {
  const auto b = frame::MakePlane(buffer, width, height, left, top);
  const frame::Extent e = frame::ClipSingle(b, regionWidth, regionHeight, function);
  GreyBlend blend;
  blend.table = table;
  const GreyRowKernel kernel = ActiveGreyBlendKernels().lookup;
  for (std::uint32_t j = 0; j < e.rows; ++j) kernel(GreyRow{b.Row(j), e.columns}, blend);
}

// ApplyLUTToL12.
void LookUpWords(unsigned short *buffer, unsigned int width, unsigned int height, unsigned int left,
                 unsigned int top, unsigned int regionWidth, unsigned int regionHeight,
                 const unsigned short *table, const char *function) {
  const auto b = frame::MakePlane(buffer, width, height, left, top);
  const frame::Extent e = frame::ClipSingle(b, regionWidth, regionHeight, function);
  frame::ForEachRow(b, e, [&](unsigned short *row, std::uint32_t n) {
    for (std::uint32_t i = 0; i < n; ++i) row[i] = table[row[i]];
  });
}

}  // namespace
}  // namespace compositing
}  // namespace ostrel

void ApplyAlphaToL08(unsigned char *buffer, unsigned char *alpha, unsigned int width,
                     unsigned int height, unsigned int left, unsigned int top,
                     unsigned char opacity, bool flat, unsigned int regionWidth,
                     unsigned int regionHeight, bool exact) {
  ostrel::compositing::ScaleBytesByAlpha(buffer, alpha, width, height, left, top, opacity, flat,
                                         regionWidth, regionHeight, exact, __func__);
}

void ApplyAlphaToL12(unsigned short *buffer, unsigned char *alpha, unsigned int width,
                     unsigned int height, unsigned int left, unsigned int top,
                     unsigned char opacity, unsigned int regionWidth, unsigned int regionHeight,
                     bool /*exact*/) {
  ostrel::compositing::ForEachMaskedPixel(
      buffer, alpha, width, height, left, top, regionWidth, regionHeight, __func__,
      [&](unsigned short &d, unsigned char a) {
        d = static_cast<unsigned short>(d * ostrel::frame::blend::ExactWeight(a, opacity) / 255u);
      });
}

void InvertAlphaL08(unsigned char *buffer, unsigned char *alpha, unsigned int width,
                    unsigned int height, unsigned int left, unsigned int top, bool flat,
                    unsigned int regionWidth, unsigned int regionHeight) {
  ostrel::compositing::ForEachMaskedPixel(
      buffer, alpha, width, height, left, top, regionWidth, regionHeight, __func__,
      [&](unsigned char &d, unsigned char a) {
        if (flat) {
          if (a == 0) d = 255;
          return;
        }
        if (a == 0 || a == 255) return;
        double q = d * (255.0 / a);
        // At least one step up, so a pixel that the alpha darkened to 0 or
        // by less than a step does not stay where it is.
        if (q - d < 1.0) q += 1.0;
        q = q < 0.0 ? 0.0 : q > 255.0 ? 255.0 : q;
        d = static_cast<unsigned char>(ostrel::frame::TruncToInt32(q));
      });
}

void ApplyLUTToL08(unsigned char *buffer, unsigned int width, unsigned int height,
                   unsigned int left, unsigned int top, unsigned int regionWidth,
                   unsigned int regionHeight, unsigned char *table) {
  ostrel::compositing::LookUpBytes(buffer, width, height, left, top, regionWidth, regionHeight,
                                   table, __func__);
}

void ApplyLUTToL12(unsigned short *buffer, unsigned int width, unsigned int height,
                   unsigned int left, unsigned int top, unsigned int regionWidth,
                   unsigned int regionHeight, unsigned short *table) {
  ostrel::compositing::LookUpWords(buffer, width, height, left, top, regionWidth, regionHeight,
                                   table, __func__);
}

void PostApplyAlpha(unsigned char *alpha, unsigned char *buffer, unsigned int count) {
  ostrel::compositing::PostApply(alpha, buffer, count);
}

void PostApplyAlpha(unsigned char *alpha, unsigned short *buffer, unsigned int count) {
  ostrel::compositing::PostApply(alpha, buffer, count);
}

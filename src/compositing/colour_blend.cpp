// Colour-to-colour blending: a TRC layer over a TRC picture.
#include "Ostrel.h"
#include "compositing/trc_blend.h"

namespace ostrel {
namespace {

// The members without an alpha buffer differ only in the kernel and the
// weight they hand it.
void BlendSourceRows(unsigned int *src, unsigned int srcWidth, unsigned int srcHeight,
                     unsigned int srcLeft, unsigned int srcTop, unsigned int *dst,
                 unsigned int dstWidth, unsigned int dstHeight, unsigned int dstLeft,
                 unsigned int dstTop, unsigned int regionWidth, unsigned int regionHeight,
                 TrcRowKernel kernel, const TrcBlend &blend, const char *caller) {
  const auto s = MakePlane(static_cast<const unsigned int *>(src), srcWidth, srcHeight, srcLeft, srcTop);
  const auto d = MakePlane(dst, dstWidth, dstHeight, dstLeft, dstTop);
  const Extent e = ClipPair(s, d, regionWidth, regionHeight, caller);
  if (e.rows == 0) return;
  BlendRows(e, kernel, blend, [&](std::uint32_t j) {
    TrcRow row{d.Row(j), e.columns};
    row.pixels = s.Row(j);
    return row;
  });
}

// The alpha-buffer members: coverage from an alpha plane paired with the
// source; the region is clipped against source and destination only.
void BlendThroughAlphaPlane(unsigned int *src, unsigned int srcWidth, unsigned int srcHeight,
                            unsigned int srcLeft, unsigned int srcTop, const Plane<const unsigned char> &a,
                            unsigned int *dst, unsigned int dstWidth, unsigned int dstHeight,
                            unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
                            unsigned int regionWidth, unsigned int regionHeight, int form,
                            const char *caller) {
  const auto s = MakePlane(static_cast<const unsigned int *>(src), srcWidth, srcHeight, srcLeft, srcTop);
  const auto d = MakePlane(dst, dstWidth, dstHeight, dstLeft, dstTop);
  const Extent e = ClipPair(s, d, regionWidth, regionHeight, caller);
  if (e.rows == 0) return;
  TrcBlend blend;
  blend.opacity = opacity;
  BlendRows(e, ActiveTrcBlendKernels().pixelsByBytes[form], blend, [&](std::uint32_t j) {
    TrcRow row{d.Row(j), e.columns};
    row.pixels = s.Row(j);
    row.bytes = a.Row(j);
    return row;
  });
}

}  // namespace
}  // namespace ostrel

using ostrel::ActiveTrcBlendKernels;
using ostrel::FormIndex;
using ostrel::TrcBlend;

void AlphaBlendTRCToTRC(unsigned int *src, unsigned int srcWidth, unsigned int srcHeight,
                        unsigned int srcLeft, unsigned int srcTop, unsigned int *dst,
                        unsigned int dstWidth, unsigned int dstHeight, unsigned int dstLeft,
                        unsigned int dstTop, unsigned char opacity, unsigned int regionWidth,
                        unsigned int regionHeight, bool exact) {
  TrcBlend blend;
  blend.opacity = opacity;
  ostrel::BlendSourceRows(src, srcWidth, srcHeight, srcLeft, srcTop, dst, dstWidth, dstHeight, dstLeft,
                      dstTop, regionWidth, regionHeight,
                      ActiveTrcBlendKernels().pixelsByAlpha[FormIndex(exact)], blend, __func__);
}

void AlphaBlendTRCToTRCNoAlpha(unsigned int *src, unsigned int srcWidth, unsigned int srcHeight,
                               unsigned int srcLeft, unsigned int srcTop, unsigned int *dst,
                               unsigned int dstWidth, unsigned int dstHeight,
                               unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
                               unsigned int regionWidth, unsigned int regionHeight, bool exact) {
  // Every source pixel counts as fully covering: the usual weights of
  // coverage 255, which are opacity (exact) and (255 * opacity) >> 8 (fast).
  const int form = FormIndex(exact);
  TrcBlend blend;
  blend.weight = form == static_cast<int>(ostrel::blend::Form::kFast)
                     ? ostrel::blend::FastWeight(255, opacity)
                     : ostrel::blend::ExactWeight(255, opacity);
  ostrel::BlendSourceRows(src, srcWidth, srcHeight, srcLeft, srcTop, dst, dstWidth, dstHeight, dstLeft,
                      dstTop, regionWidth, regionHeight,
                      ActiveTrcBlendKernels().pixelsByWeight[form], blend, __func__);
}

void AlphaBlendTRCNoAlphaToTRC(unsigned int *src, unsigned int srcWidth, unsigned int srcHeight,
                               unsigned int srcLeft, unsigned int srcTop, unsigned int *dst,
                               unsigned int dstWidth, unsigned int dstHeight,
                               unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
                               unsigned int regionWidth, unsigned int regionHeight, bool exact) {
  // The opacity itself is the weight in both forms.
  TrcBlend blend;
  blend.weight = opacity;
  ostrel::BlendSourceRows(src, srcWidth, srcHeight, srcLeft, srcTop, dst, dstWidth, dstHeight, dstLeft,
                      dstTop, regionWidth, regionHeight,
                      ActiveTrcBlendKernels().pixelsByWeight[FormIndex(exact)], blend, __func__);
}

void AlphaBlendTRCWithAlphaBufferToTRC(unsigned int *src, unsigned char *alpha,
                                       unsigned int srcWidth, unsigned int srcHeight,
                                       unsigned int srcLeft, unsigned int srcTop,
                                       unsigned int *dst, unsigned int dstWidth,
                                       unsigned int dstHeight, unsigned int dstLeft,
                                       unsigned int dstTop, unsigned char opacity,
                                       unsigned int regionWidth, unsigned int regionHeight,
                                       bool exact) {
  // The alpha buffer shares the source's geometry.
  ostrel::BlendThroughAlphaPlane(
      src, srcWidth, srcHeight, srcLeft, srcTop,
      ostrel::MakePlane(static_cast<const unsigned char *>(alpha), srcWidth, srcHeight, srcLeft, srcTop),
      dst, dstWidth, dstHeight, dstLeft, dstTop, opacity, regionWidth, regionHeight,
      FormIndex(exact), __func__);
}

void AlphaBlendTRCWithAlphaBufferToTRC(unsigned int *src, unsigned int srcWidth,
                                       unsigned int srcHeight, unsigned int srcLeft,
                                       unsigned int srcTop, unsigned char *alpha,
                                       unsigned int alphaWidth, unsigned int alphaHeight,
                                       unsigned int alphaLeft, unsigned int alphaTop,
                                       unsigned int *dst, unsigned int dstWidth,
                                       unsigned int dstHeight, unsigned int dstLeft,
                                       unsigned int dstTop, unsigned char opacity,
                                       unsigned int regionWidth, unsigned int regionHeight,
                                       bool /*exact: this overload has the exact form only*/) {
  ostrel::BlendThroughAlphaPlane(
      src, srcWidth, srcHeight, srcLeft, srcTop,
      ostrel::MakePlane(static_cast<const unsigned char *>(alpha), alphaWidth, alphaHeight, alphaLeft, alphaTop),
      dst, dstWidth, dstHeight, dstLeft, dstTop, opacity, regionWidth, regionHeight,
      static_cast<int>(ostrel::blend::Form::kExact), __func__);
}

// Colour-to-colour blending: a TRC layer over a TRC picture.
#include "Ostrel.h"
#include "compositing/trc_blend.h"

namespace ostrel {
namespace compositing {
namespace {

// The members without an alpha buffer differ only in the kernel and the
// weight they hand it.
void BlendSourceRows(unsigned int *src, unsigned int srcWidth, unsigned int srcHeight,
                     unsigned int srcLeft, unsigned int srcTop, unsigned int *dst,
                     unsigned int dstWidth, unsigned int dstHeight, unsigned int dstLeft,
                     unsigned int dstTop, unsigned int regionWidth, unsigned int regionHeight,
                     TrcRowKernel kernel, const TrcBlend &blend, const char *function) {
  const auto s = frame::MakePlane(static_cast<const unsigned int *>(src), srcWidth, srcHeight,
                                  srcLeft, srcTop, "src");
  const auto d = frame::MakePlane(dst, dstWidth, dstHeight, dstLeft, dstTop, "dst");
  const frame::Extent e = frame::ClipPair(s, d, regionWidth, regionHeight, function);
  if (e.rows == 0) return;
  RunRows<TrcRow>(e, kernel, blend, d, In(&TrcRow::pixels, s));
}

// The weight of a fully covering source pixel in the call's form: the usual
// weights of coverage 255, which are opacity (exact) and
// (255 * opacity) >> 8 (fast).
std::uint32_t FullCoverageWeight(int form, unsigned int opacity) {
  if (form == static_cast<int>(frame::blend::Form::kFast)) {
    return frame::blend::FastWeight(255, opacity);
  }
  return frame::blend::ExactWeight(255, opacity);
}

// The alpha-buffer members: coverage from an alpha plane paired with the
// source; the region is clipped against source and destination only.
void BlendThroughAlphaPlane(unsigned int *src, unsigned int srcWidth, unsigned int srcHeight,
                            unsigned int srcLeft, unsigned int srcTop, unsigned char *alpha,
                            unsigned int alphaWidth, unsigned int alphaHeight,
                            unsigned int alphaLeft, unsigned int alphaTop, unsigned int *dst,
                            unsigned int dstWidth, unsigned int dstHeight, unsigned int dstLeft,
                            unsigned int dstTop, unsigned char opacity, unsigned int regionWidth,
                            unsigned int regionHeight, int form, const char *function) {
  const auto s = frame::MakePlane(static_cast<const unsigned int *>(src), srcWidth, srcHeight,
                                  srcLeft, srcTop, "src");
  const auto a = frame::MakePlane(static_cast<const unsigned char *>(alpha), alphaWidth,
                                  alphaHeight, alphaLeft, alphaTop, "alpha");
  const auto d = frame::MakePlane(dst, dstWidth, dstHeight, dstLeft, dstTop, "dst");
  const frame::Extent e = frame::ClipPair(s, d, regionWidth, regionHeight, function);
  frame::ExpectHolds(a, e, function);
  if (e.rows == 0) return;
  RunRows<TrcRow>(e, ActiveTrcBlendKernels().pixelsByBytes[form], PaintBlend(0, opacity), d,
                  In(&TrcRow::pixels, s), In(&TrcRow::bytes, a));
}

}  // namespace
}  // namespace compositing
}  // namespace ostrel

namespace frame = ostrel::frame;
namespace compositing = ostrel::compositing;

void AlphaBlendTRCToTRC(unsigned int *src, unsigned int srcWidth, unsigned int srcHeight,
                        unsigned int srcLeft, unsigned int srcTop, unsigned int *dst,
                        unsigned int dstWidth, unsigned int dstHeight, unsigned int dstLeft,
                        unsigned int dstTop, unsigned char opacity, unsigned int regionWidth,
                        unsigned int regionHeight, bool exact) {
  const int form = compositing::FormIndex(exact);
  compositing::BlendSourceRows(src, srcWidth, srcHeight, srcLeft, srcTop, dst, dstWidth, dstHeight,
                               dstLeft, dstTop, regionWidth, regionHeight,
                               compositing::ActiveTrcBlendKernels().pixelsByAlpha[form],
                               compositing::PaintBlend(0, opacity), __func__);
}

void AlphaBlendTRCToTRCNoAlpha(unsigned int *src, unsigned int srcWidth, unsigned int srcHeight,
                               unsigned int srcLeft, unsigned int srcTop, unsigned int *dst,
                               unsigned int dstWidth, unsigned int dstHeight, unsigned int dstLeft,
                               unsigned int dstTop, unsigned char opacity, unsigned int regionWidth,
                               unsigned int regionHeight, bool exact) {
  // Every source pixel counts as fully covering.
  const int form = compositing::FormIndex(exact);
  compositing::TrcBlend blend;
  blend.weight = compositing::FullCoverageWeight(form, opacity);
  compositing::BlendSourceRows(src, srcWidth, srcHeight, srcLeft, srcTop, dst, dstWidth, dstHeight,
                               dstLeft, dstTop, regionWidth, regionHeight,
                               compositing::ActiveTrcBlendKernels().pixelsByWeight[form], blend,
                               __func__);
}

void AlphaBlendTRCNoAlphaToTRC(unsigned int *src, unsigned int srcWidth, unsigned int srcHeight,
                               unsigned int srcLeft, unsigned int srcTop, unsigned int *dst,
                               unsigned int dstWidth, unsigned int dstHeight, unsigned int dstLeft,
                               unsigned int dstTop, unsigned char opacity, unsigned int regionWidth,
                               unsigned int regionHeight, bool exact) {
  // The opacity itself is the weight in both forms.
  const int form = compositing::FormIndex(exact);
  compositing::TrcBlend blend;
  blend.weight = opacity;
  compositing::BlendSourceRows(src, srcWidth, srcHeight, srcLeft, srcTop, dst, dstWidth, dstHeight,
                               dstLeft, dstTop, regionWidth, regionHeight,
                               compositing::ActiveTrcBlendKernels().pixelsByWeight[form], blend,
                               __func__);
}

void AlphaBlendTRCWithAlphaBufferToTRC(unsigned int *src, unsigned char *alpha,
                                       unsigned int srcWidth, unsigned int srcHeight,
                                       unsigned int srcLeft, unsigned int srcTop, unsigned int *dst,
                                       unsigned int dstWidth, unsigned int dstHeight,
                                       unsigned int dstLeft, unsigned int dstTop,
                                       unsigned char opacity, unsigned int regionWidth,
                                       unsigned int regionHeight, bool exact) {
  // The alpha buffer shares the source's geometry.
  compositing::BlendThroughAlphaPlane(src, srcWidth, srcHeight, srcLeft, srcTop, alpha, srcWidth,
                                      srcHeight, srcLeft, srcTop, dst, dstWidth, dstHeight, dstLeft,
                                      dstTop, opacity, regionWidth, regionHeight,
                                      compositing::FormIndex(exact), __func__);
}

void AlphaBlendTRCWithAlphaBufferToTRC(
    unsigned int *src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcLeft,
    unsigned int srcTop, unsigned char *alpha, unsigned int alphaWidth, unsigned int alphaHeight,
    unsigned int alphaLeft, unsigned int alphaTop, unsigned int *dst, unsigned int dstWidth,
    unsigned int dstHeight, unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
    unsigned int regionWidth, unsigned int regionHeight,
    bool /*exact: this overload has the exact form only*/) {
  compositing::BlendThroughAlphaPlane(src, srcWidth, srcHeight, srcLeft, srcTop, alpha, alphaWidth,
                                      alphaHeight, alphaLeft, alphaTop, dst, dstWidth, dstHeight,
                                      dstLeft, dstTop, opacity, regionWidth, regionHeight,
                                      static_cast<int>(frame::blend::Form::kExact), __func__);
}

// Grey-to-colour blending: paint into a TRC picture through a grey buffer.
#include "Ostrel.h"
#include "compositing/trc_blend.h"

namespace ostrel {
namespace compositing {
namespace {

// Runs kernel over a grey source and a TRC destination, the grey values as
// the coverage bytes of each row. With a lookup table the values are mapped
// first, a stretch at a time, into a scratch row on the stack; the source is
// never written.
void BlendThroughGrey(const unsigned char *src, unsigned int srcWidth, unsigned int srcHeight,
                      unsigned int srcLeft, unsigned int srcTop, unsigned int *dst,
                      unsigned int dstWidth, unsigned int dstHeight, unsigned int dstLeft,
                      unsigned int dstTop, unsigned int regionWidth, unsigned int regionHeight,
                      TrcRowKernel kernel, const TrcBlend &blend, const unsigned char *lookup,
                      const char *function) {
  const auto s = frame::MakePlane(src, srcWidth, srcHeight, srcLeft, srcTop, "src");
  const auto d = frame::MakePlane(dst, dstWidth, dstHeight, dstLeft, dstTop, "dst");
  const frame::Extent e = frame::ClipPair(s, d, regionWidth, regionHeight, function);
  if (e.rows == 0) return;
  if (lookup == nullptr) {
    RunRows<TrcRow>(e, kernel, blend, d, In(&TrcRow::bytes, s));
    return;
  }
  constexpr std::size_t kStretch = 1024;
  alignas(16) std::uint8_t mapped[kStretch];
  for (std::uint32_t j = 0; j < e.rows; ++j) {
    const unsigned char *grey = s.Row(j);
    for (std::size_t i = 0; i < e.columns; i += kStretch) {
      TrcRow part{d.Row(j) + i, e.columns - i < kStretch ? e.columns - i : kStretch};
      for (std::size_t k = 0; k < part.n; ++k) mapped[k] = lookup[grey[i + k]];
      part.bytes = mapped;
      kernel(part, blend);
    }
  }
}

}  // namespace
}  // namespace compositing
}  // namespace ostrel

namespace frame = ostrel::frame;
namespace compositing = ostrel::compositing;

void AlphaBlendL08ToTRC(unsigned char *src, unsigned int srcWidth, unsigned int srcHeight,
                        unsigned int srcLeft, unsigned int srcTop, unsigned int colour,
                        unsigned int *dst, unsigned int dstWidth, unsigned int dstHeight,
                        unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
                        unsigned int regionWidth, unsigned int regionHeight, bool exact,
                        unsigned char *lookup) {
  const int form = compositing::FormIndex(exact);
  compositing::BlendThroughGrey(src, srcWidth, srcHeight, srcLeft, srcTop, dst, dstWidth, dstHeight,
                                dstLeft, dstTop, regionWidth, regionHeight,
                                compositing::ActiveTrcBlendKernels().colourByBytes[form],
                                compositing::PaintBlend(colour, opacity), lookup, __func__);
}

void AlphaBlendL08ToTRCInverted(unsigned char *src, unsigned int srcWidth, unsigned int srcHeight,
                                unsigned int srcLeft, unsigned int srcTop, unsigned int colour,
                                unsigned int *dst, unsigned int dstWidth, unsigned int dstHeight,
                                unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
                                unsigned int regionWidth, unsigned int regionHeight, bool exact) {
  const int form = compositing::FormIndex(exact);
  compositing::BlendThroughGrey(src, srcWidth, srcHeight, srcLeft, srcTop, dst, dstWidth, dstHeight,
                                dstLeft, dstTop, regionWidth, regionHeight,
                                compositing::ActiveTrcBlendKernels().colourByInverse[form],
                                compositing::PaintBlend(colour, opacity), nullptr, __func__);
}

void AlphaBlendL08ToTRCAndEraseA(unsigned char *src, unsigned int srcWidth, unsigned int srcHeight,
                                 unsigned int srcLeft, unsigned int srcTop, unsigned int colour,
                                 unsigned int *dst, unsigned int dstWidth, unsigned int dstHeight,
                                 unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
                                 unsigned int regionWidth, unsigned int regionHeight,
                                 unsigned char *lookup) {
  compositing::BlendThroughGrey(src, srcWidth, srcHeight, srcLeft, srcTop, dst, dstWidth, dstHeight,
                                dstLeft, dstTop, regionWidth, regionHeight,
                                compositing::ActiveTrcBlendKernels().colourErasingAlpha,
                                compositing::PaintBlend(colour, opacity), lookup, __func__);
}

void ApplyQuickMaskToTRC(unsigned char *src, unsigned int srcWidth, unsigned int srcHeight,
                         unsigned int srcLeft, unsigned int srcTop, unsigned int colour,
                         unsigned int *dst, unsigned int dstWidth, unsigned int dstHeight,
                         unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
                         unsigned int regionWidth, unsigned int regionHeight) {
  compositing::BlendThroughGrey(src, srcWidth, srcHeight, srcLeft, srcTop, dst, dstWidth, dstHeight,
                                dstLeft, dstTop, regionWidth, regionHeight,
                                compositing::ActiveTrcBlendKernels().quickMask,
                                compositing::PaintBlend(colour, opacity), nullptr, __func__);
}

// Toward the grey of each source pixel, through the alpha buffer that shares
// the source's geometry.
void AlphaBlendL08WithAlphaBufferToTRC(unsigned char *src, unsigned char *alpha,
                                       unsigned int srcWidth, unsigned int srcHeight,
                                       unsigned int srcLeft, unsigned int srcTop, unsigned int *dst,
                                       unsigned int dstWidth, unsigned int dstHeight,
                                       unsigned int dstLeft, unsigned int dstTop,
                                       unsigned char opacity, unsigned int regionWidth,
                                       unsigned int regionHeight, bool /*exact: exact form only*/) {
  const auto s = frame::MakePlane(src, srcWidth, srcHeight, srcLeft, srcTop, "src");
  const auto a = frame::MakePlane(alpha, srcWidth, srcHeight, srcLeft, srcTop, "src");
  const auto d = frame::MakePlane(dst, dstWidth, dstHeight, dstLeft, dstTop, "dst");
  const frame::Extent e = frame::ClipPair(s, d, regionWidth, regionHeight, __func__);
  if (e.rows == 0) return;
  compositing::RunRows<compositing::TrcRow>(e, compositing::ActiveTrcBlendKernels().greysByBytes,
                                            compositing::PaintBlend(0, opacity), d,
                                            compositing::In(&compositing::TrcRow::greys, s),
                                            compositing::In(&compositing::TrcRow::bytes, a));
}

// 12-bit grey words as the coverage.
void AlphaBlendL12ToTRC(unsigned short *src, unsigned int srcWidth, unsigned int srcHeight,
                        unsigned int srcLeft, unsigned int srcTop, unsigned int colour,
                        unsigned int *dst, unsigned int dstWidth, unsigned int dstHeight,
                        unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
                        unsigned int regionWidth, unsigned int regionHeight, bool exact) {
  const auto s = frame::MakePlane(src, srcWidth, srcHeight, srcLeft, srcTop, "src");
  const auto d = frame::MakePlane(dst, dstWidth, dstHeight, dstLeft, dstTop, "dst");
  const frame::Extent e = frame::ClipPair(s, d, regionWidth, regionHeight, __func__);
  if (e.rows == 0) return;
  compositing::RunRows<compositing::TrcRow>(
      e, compositing::ActiveTrcBlendKernels().colourByWords[compositing::FormIndex(exact)],
      compositing::PaintBlend(colour, opacity), d, compositing::In(&compositing::TrcRow::words, s));
}

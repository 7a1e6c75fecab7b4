// Grey-to-colour blending: paint into a TRC picture through a grey buffer.
#include "Ostrel.h"
#include "compositing/trc_blend.h"

namespace ostrel {
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
                      const char *caller) {
  const auto s = MakePlane(src, srcWidth, srcHeight, srcLeft, srcTop);
  const auto d = MakePlane(dst, dstWidth, dstHeight, dstLeft, dstTop);
  const Extent e = ClipPair(s, d, regionWidth, regionHeight, caller);
  if (e.rows == 0) return;
  if (lookup == nullptr) {
    BlendRows(e, kernel, blend, [&](std::uint32_t j) {
      TrcRow row{d.Row(j), e.columns};
      row.bytes = s.Row(j);
      return row;
    });
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
}  // namespace ostrel

using ostrel::ActiveTrcBlendKernels;
using ostrel::FormIndex;
using ostrel::PaintBlend;

void AlphaBlendL08ToTRC(unsigned char *src, unsigned int srcWidth, unsigned int srcHeight,
                        unsigned int srcLeft, unsigned int srcTop, unsigned int colour,
                        unsigned int *dst, unsigned int dstWidth, unsigned int dstHeight,
                        unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
                        unsigned int regionWidth, unsigned int regionHeight, bool exact,
                        unsigned char *lookup) {
  ostrel::BlendThroughGrey(src, srcWidth, srcHeight, srcLeft, srcTop, dst, dstWidth, dstHeight,
                           dstLeft, dstTop, regionWidth, regionHeight,
                           ActiveTrcBlendKernels().colourByBytes[FormIndex(exact)],
                           PaintBlend(colour, opacity), lookup, __func__);
}

void AlphaBlendL08ToTRCInverted(unsigned char *src, unsigned int srcWidth, unsigned int srcHeight,
                                unsigned int srcLeft, unsigned int srcTop, unsigned int colour,
                                unsigned int *dst, unsigned int dstWidth, unsigned int dstHeight,
                                unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
                                unsigned int regionWidth, unsigned int regionHeight, bool exact) {
  ostrel::BlendThroughGrey(src, srcWidth, srcHeight, srcLeft, srcTop, dst, dstWidth, dstHeight,
                           dstLeft, dstTop, regionWidth, regionHeight,
                           ActiveTrcBlendKernels().colourByInverse[FormIndex(exact)],
                           PaintBlend(colour, opacity), nullptr, __func__);
}

void AlphaBlendL08ToTRCAndEraseA(unsigned char *src, unsigned int srcWidth,
                                 unsigned int srcHeight, unsigned int srcLeft,
                                 unsigned int srcTop, unsigned int colour, unsigned int *dst,
                                 unsigned int dstWidth, unsigned int dstHeight,
                                 unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
                                 unsigned int regionWidth, unsigned int regionHeight,
                                 unsigned char *lookup) {
  ostrel::BlendThroughGrey(src, srcWidth, srcHeight, srcLeft, srcTop, dst, dstWidth, dstHeight,
                           dstLeft, dstTop, regionWidth, regionHeight,
                           ActiveTrcBlendKernels().colourErasingAlpha, PaintBlend(colour, opacity),
                           lookup, __func__);
}

void ApplyQuickMaskToTRC(unsigned char *src, unsigned int srcWidth, unsigned int srcHeight,
                         unsigned int srcLeft, unsigned int srcTop, unsigned int colour,
                         unsigned int *dst, unsigned int dstWidth, unsigned int dstHeight,
                         unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
                         unsigned int regionWidth, unsigned int regionHeight) {
  ostrel::BlendThroughGrey(src, srcWidth, srcHeight, srcLeft, srcTop, dst, dstWidth, dstHeight,
                           dstLeft, dstTop, regionWidth, regionHeight,
                           ActiveTrcBlendKernels().quickMask, PaintBlend(colour, opacity), nullptr,
                           __func__);
}

void AlphaBlendL08WithAlphaBufferToTRC(unsigned char *src, unsigned char *alpha,
                                       unsigned int srcWidth, unsigned int srcHeight,
                                       unsigned int srcLeft, unsigned int srcTop,
                                       unsigned int *dst, unsigned int dstWidth,
                                       unsigned int dstHeight, unsigned int dstLeft,
                                       unsigned int dstTop, unsigned char opacity,
                                       unsigned int regionWidth, unsigned int regionHeight,
                                       bool /*exact: exact form only*/) {
  using namespace ostrel;
  const auto s = MakePlane(static_cast<const unsigned char *>(src), srcWidth, srcHeight, srcLeft, srcTop);
  const auto a = MakePlane(static_cast<const unsigned char *>(alpha), srcWidth, srcHeight, srcLeft, srcTop);
  const auto d = MakePlane(dst, dstWidth, dstHeight, dstLeft, dstTop);
  const Extent e = ClipPair(s, d, regionWidth, regionHeight);
  if (e.rows == 0) return;
  BlendRows(e, ActiveTrcBlendKernels().greysByBytes, PaintBlend(0, opacity), [&](std::uint32_t j) {
    TrcRow row{d.Row(j), e.columns};
    row.greys = s.Row(j);
    row.bytes = a.Row(j);
    return row;
  });
}

void AlphaBlendL12ToTRC(unsigned short *src, unsigned int srcWidth, unsigned int srcHeight,
                        unsigned int srcLeft, unsigned int srcTop, unsigned int colour,
                        unsigned int *dst, unsigned int dstWidth, unsigned int dstHeight,
                        unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
                        unsigned int regionWidth, unsigned int regionHeight, bool exact) {
  using namespace ostrel;
  const auto s = MakePlane(static_cast<const unsigned short *>(src), srcWidth, srcHeight, srcLeft, srcTop);
  const auto d = MakePlane(dst, dstWidth, dstHeight, dstLeft, dstTop);
  const Extent e = ClipPair(s, d, regionWidth, regionHeight);
  if (e.rows == 0) return;
  BlendRows(e, ActiveTrcBlendKernels().colourByWords[FormIndex(exact)], PaintBlend(colour, opacity),
            [&](std::uint32_t j) {
              TrcRow row{d.Row(j), e.columns};
              row.words = s.Row(j);
              return row;
            });
}

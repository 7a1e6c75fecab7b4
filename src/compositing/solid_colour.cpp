// Solid-colour blending: one colour, passed by value, into a TRC picture.
#include "Ostrel.h"
#include "compositing/trc_blend.h"

namespace ostrel {
namespace {

// The mask members clip against the destination only and read the mask from
// its own corner with its own stride.
template <class RowKernelFor>
void BlendThroughMask(const unsigned char *mask, unsigned int maskWidth, unsigned int maskHeight,
                      unsigned int maskLeft, unsigned int maskTop, unsigned int *dst,
                      unsigned int dstWidth, unsigned int dstHeight, unsigned int dstLeft,
                      unsigned int dstTop, unsigned int regionWidth, unsigned int regionHeight,
                      const TrcBlend &blend, const char *caller, RowKernelFor &&run) {
  const auto m = MakePlane(mask, maskWidth, maskHeight, maskLeft, maskTop);
  const auto d = MakePlane(dst, dstWidth, dstHeight, dstLeft, dstTop);
  const Extent e = ClipSingle(d, regionWidth, regionHeight, caller);
  if (e.rows == 0) return;
  for (std::uint32_t j = 0; j < e.rows; ++j) {
    TrcRow row{d.Row(j), e.columns};
    row.bytes = m.Row(j);
    run(row, blend);
  }
}

}  // namespace
}  // namespace ostrel

using ostrel::ActiveTrcBlendKernels;
using ostrel::FormIndex;
using ostrel::PaintBlend;
using ostrel::TrcBlend;
using ostrel::TrcRow;

void AlphaBlendColorWithConstAlphaToTRC(unsigned int colour, unsigned int *buffer,
                                        unsigned int width, unsigned int height,
                                        unsigned int left, unsigned int top,
                                        unsigned int regionWidth, unsigned int regionHeight,
                                        bool exact) {
  using namespace ostrel;
  const auto b = MakePlane(buffer, width, height, left, top);
  const Extent e = ClipSingle(b, regionWidth, regionHeight);
  if (e.rows == 0) return;
  TrcBlend blend = PaintBlend(colour, 0);
  blend.weight = colour >> 24;  // the colour's own alpha, used as the weight directly
  BlendRows(e, ActiveTrcBlendKernels().colourByWeight[FormIndex(exact)], blend,
            [&](std::uint32_t j) { return TrcRow{b.Row(j), e.columns}; });
}

void AlphaBlendColorToTRC(unsigned int colour, unsigned char *mask, unsigned int maskWidth,
                          unsigned int maskHeight, unsigned int maskLeft, unsigned int maskTop,
                          unsigned int *dst, unsigned int dstWidth, unsigned int dstHeight,
                          unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
                          unsigned int regionWidth, unsigned int regionHeight, bool exact) {
  ostrel::BlendThroughMask(mask, maskWidth, maskHeight, maskLeft, maskTop, dst, dstWidth,
                           dstHeight, dstLeft, dstTop, regionWidth, regionHeight,
                           PaintBlend(colour, opacity), __func__,
                           ActiveTrcBlendKernels().colourByBytes[FormIndex(exact)]);
}

void AlphaBlendColorToTRCInverted(unsigned int colour, unsigned char *mask,
                                  unsigned int maskWidth, unsigned int maskHeight,
                                  unsigned int maskLeft, unsigned int maskTop, unsigned int *dst,
                                  unsigned int dstWidth, unsigned int dstHeight,
                                  unsigned int dstLeft, unsigned int dstTop,
                                  unsigned char opacity, unsigned int regionWidth,
                                  unsigned int regionHeight, bool exact) {
  const ostrel::TrcBlendKernels &k = ActiveTrcBlendKernels();
  const int form = FormIndex(exact);
  const bool fast = form == static_cast<int>(ostrel::blend::Form::kFast);
  ostrel::BlendThroughMask(
      mask, maskWidth, maskHeight, maskLeft, maskTop, dst, dstWidth, dstHeight, dstLeft, dstTop,
      regionWidth, regionHeight, PaintBlend(colour, opacity), __func__,
      [&](const TrcRow &row, const TrcBlend &blend) {
        if (!fast) {
          // The exact form does not invert.
          k.colourByBytes[form](row, blend);
          return;
        }
        // The fast form inverts the coverage of the pixels it takes in pairs;
        // the single pixel that ends a row of odd length keeps its own.
        TrcRow pairs = row;
        pairs.n = row.n & ~std::size_t{1};
        k.colourByInverse[form](pairs, blend);
        if (row.n != pairs.n) k.colourByBytes[form](row.From(pairs.n), blend);
      });
}

void AlphaBlendColorToTRCFlat(unsigned int colour, unsigned char *mask, unsigned int maskWidth,
                              unsigned int maskHeight, unsigned int maskLeft,
                              unsigned int maskTop, unsigned int *dst, unsigned int dstWidth,
                              unsigned int dstHeight, unsigned int dstLeft, unsigned int dstTop,
                              unsigned char opacity, unsigned int regionWidth,
                              unsigned int regionHeight, bool /*exact: exact form only*/) {
  ostrel::BlendThroughMask(mask, maskWidth, maskHeight, maskLeft, maskTop, dst, dstWidth,
                           dstHeight, dstLeft, dstTop, regionWidth, regionHeight,
                           PaintBlend(colour, opacity), __func__,
                           ActiveTrcBlendKernels().colourByFlag);
}

void AlphaBlendColorOnBGToTRC(unsigned int colour, unsigned int background, unsigned char *mask,
                              unsigned int maskWidth, unsigned int maskHeight,
                              unsigned int maskLeft, unsigned int maskTop, unsigned int *dst,
                              unsigned int dstWidth, unsigned int dstHeight, unsigned int dstLeft,
                              unsigned int dstTop, unsigned char opacity,
                              unsigned int regionWidth, unsigned int regionHeight,
                              bool /*exact: exact form only*/) {
  TrcBlend blend = PaintBlend(colour, opacity);
  blend.background = background;
  ostrel::BlendThroughMask(mask, maskWidth, maskHeight, maskLeft, maskTop, dst, dstWidth,
                           dstHeight, dstLeft, dstTop, regionWidth, regionHeight, blend, __func__,
                           ActiveTrcBlendKernels().colourOnBackground);
}

void AlphaBlendAlphaToTRC(unsigned char value, unsigned char *mask, unsigned int maskWidth,
                          unsigned int maskHeight, unsigned int maskLeft, unsigned int maskTop,
                          unsigned int *dst, unsigned int dstWidth, unsigned int dstHeight,
                          unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
                          unsigned int regionWidth, unsigned int regionHeight,
                          bool /*exact: exact form only*/) {
  using namespace ostrel;
  // Unlike the other mask members, clipped against mask and destination.
  const auto m = MakePlane(static_cast<const unsigned char *>(mask), maskWidth, maskHeight, maskLeft, maskTop);
  const auto d = MakePlane(dst, dstWidth, dstHeight, dstLeft, dstTop);
  const Extent e = ClipPair(m, d, regionWidth, regionHeight);
  if (e.rows == 0) return;
  const TrcBlend blend = PaintBlend(static_cast<unsigned int>(value) << 24, opacity);
  BlendRows(e, ActiveTrcBlendKernels().alphaByBytes, blend, [&](std::uint32_t j) {
    TrcRow row{d.Row(j), e.columns};
    row.bytes = m.Row(j);
    return row;
  });
}

void AlphaBlendColorWithAlphaBlueOfTrcToTrc(unsigned int *src, unsigned int srcWidth,
                                            unsigned int srcHeight, unsigned int srcLeft,
                                            unsigned int srcTop, unsigned int colour,
                                            unsigned int *dst, unsigned char opacity,
                                            unsigned int dstWidth, unsigned int dstHeight,
                                            unsigned int dstLeft, unsigned int dstTop,
                                            unsigned int regionWidth, unsigned int regionHeight,
                                            bool flat, bool scaleColour) {
  using namespace ostrel;
  const auto s = MakePlane(static_cast<const unsigned int *>(src), srcWidth, srcHeight, srcLeft, srcTop);
  const auto d = MakePlane(dst, dstWidth, dstHeight, dstLeft, dstTop);
  const Extent e = ClipPair(s, d, regionWidth, regionHeight);
  if (e.rows == 0) return;
  const TrcBlendKernels &k = ActiveTrcBlendKernels();
  // One path for the whole call. Flat is the blend with full coverage where
  // the blue byte is set, at full opacity.
  TrcBlend blend = PaintBlend(colour, flat ? 255u : opacity);
  TrcRowKernel kernel = k.colourByBlue;
  if (flat) {
    kernel = k.colourByBlueFlag;
  } else if (opacity == 255 && scaleColour) {
    kernel = k.colourScaledByBlue;
  }
  BlendRows(e, kernel, blend, [&](std::uint32_t j) {
    TrcRow row{d.Row(j), e.columns};
    row.pixels = s.Row(j);
    return row;
  });
}

// Solid-colour blending: one colour, passed by value, into a TRC picture.
#include "Ostrel.h"
#include "compositing/trc_blend.h"

namespace ostrel {
namespace compositing {
namespace {

// The mask members clip against the destination only and read the mask from
// its own corner with its own stride.
template <class RowKernelFor>
void BlendThroughMask(const unsigned char *mask, unsigned int maskWidth, unsigned int maskHeight,
                      unsigned int maskLeft, unsigned int maskTop, unsigned int *dst,
                      unsigned int dstWidth, unsigned int dstHeight, unsigned int dstLeft,
                      unsigned int dstTop, unsigned int regionWidth, unsigned int regionHeight,
                      const TrcBlend &blend, const char *function, RowKernelFor &&run) {
  const auto m = frame::MakePlane(mask, maskWidth, maskHeight, maskLeft, maskTop);
  const auto d = frame::MakePlane(dst, dstWidth, dstHeight, dstLeft, dstTop);
  const frame::Extent e = frame::ClipSingle(d, regionWidth, regionHeight, function);
  if (e.rows == 0) return;
  for (std::uint32_t j = 0; j < e.rows; ++j) {
    TrcRow row{d.Row(j), e.columns};
    row.bytes = m.Row(j);
    run(row, blend);
  }
}

// AlphaBlendColorWithConstAlphaToTRC: the colour's own alpha is the weight.
void BlendByOwnAlpha(unsigned int colour, unsigned int *buffer, unsigned int width,
                     unsigned int height, unsigned int left, unsigned int top,
                     unsigned int regionWidth, unsigned int regionHeight, bool exact,
                     const char *function) {
  const auto b = frame::MakePlane(buffer, width, height, left, top);
  const frame::Extent e = frame::ClipSingle(b, regionWidth, regionHeight, function);
  if (e.rows == 0) return;
  TrcBlend blend = PaintBlend(colour, 0);
  blend.weight = colour >> 24;  // the colour's own alpha, used as the weight directly
  BlendRows(e, ActiveTrcBlendKernels().colourByWeight[FormIndex(exact)], blend,
            [&](std::uint32_t j) {
              return TrcRow{b.Row(j), e.columns};
            });
}

// AlphaBlendColorToTRCInverted.
void BlendThroughInvertedMask(unsigned int colour, const unsigned char *mask,
                              unsigned int maskWidth, unsigned int maskHeight,
                              unsigned int maskLeft, unsigned int maskTop, unsigned int *dst,
                              unsigned int dstWidth, unsigned int dstHeight, unsigned int dstLeft,
                              unsigned int dstTop, unsigned char opacity, unsigned int regionWidth,
                              unsigned int regionHeight, bool exact, const char *function) {
  const TrcBlendKernels &k = ActiveTrcBlendKernels();
  const int form = FormIndex(exact);
  const bool fast = form == static_cast<int>(frame::blend::Form::kFast);
  BlendThroughMask(mask, maskWidth, maskHeight, maskLeft, maskTop, dst, dstWidth, dstHeight,
                   dstLeft, dstTop, regionWidth, regionHeight, PaintBlend(colour, opacity),
                   function, [&](const TrcRow &row, const TrcBlend &blend) {
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

// AlphaBlendAlphaToTRC: unlike the other mask members, clipped against mask
// and destination.
void BlendAlphaByte(unsigned char value, const unsigned char *mask, unsigned int maskWidth,
                    unsigned int maskHeight, unsigned int maskLeft, unsigned int maskTop,
                    unsigned int *dst, unsigned int dstWidth, unsigned int dstHeight,
                    unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
                    unsigned int regionWidth, unsigned int regionHeight, const char *function) {
  const auto m = frame::MakePlane(mask, maskWidth, maskHeight, maskLeft, maskTop);
  const auto d = frame::MakePlane(dst, dstWidth, dstHeight, dstLeft, dstTop);
  const frame::Extent e = frame::ClipPair(m, d, regionWidth, regionHeight, function);
  if (e.rows == 0) return;
  const TrcBlend blend = PaintBlend(static_cast<unsigned int>(value) << 24, opacity);
  BlendRows(e, ActiveTrcBlendKernels().alphaByBytes, blend, [&](std::uint32_t j) {
    TrcRow row{d.Row(j), e.columns};
    row.bytes = m.Row(j);
    return row;
  });
}

// AlphaBlendColorWithAlphaBlueOfTrcToTrc.
void BlendByBlueOfPixels(const unsigned int *src, unsigned int srcWidth, unsigned int srcHeight,
                         unsigned int srcLeft, unsigned int srcTop, unsigned int colour,
                         unsigned int *dst, unsigned char opacity, unsigned int dstWidth,
                         unsigned int dstHeight, unsigned int dstLeft, unsigned int dstTop,
                         unsigned int regionWidth, unsigned int regionHeight, bool flat,
                         bool scaleColour, const char *function) {
  const auto s = frame::MakePlane(src, srcWidth, srcHeight, srcLeft, srcTop);
  const auto d = frame::MakePlane(dst, dstWidth, dstHeight, dstLeft, dstTop);
  const frame::Extent e = frame::ClipPair(s, d, regionWidth, regionHeight, function);
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

}  // namespace
}  // namespace compositing
}  // namespace ostrel

void AlphaBlendColorWithConstAlphaToTRC(unsigned int colour, unsigned int *buffer,
                                        unsigned int width, unsigned int height, unsigned int left,
                                        unsigned int top, unsigned int regionWidth,
                                        unsigned int regionHeight, bool exact) {
  ostrel::compositing::BlendByOwnAlpha(colour, buffer, width, height, left, top, regionWidth,
                                       regionHeight, exact, __func__);
}

void AlphaBlendColorToTRC(unsigned int colour, unsigned char *mask, unsigned int maskWidth,
                          unsigned int maskHeight, unsigned int maskLeft, unsigned int maskTop,
                          unsigned int *dst, unsigned int dstWidth, unsigned int dstHeight,
                          unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
                          unsigned int regionWidth, unsigned int regionHeight, bool exact) {
  const int form = ostrel::compositing::FormIndex(exact);
  ostrel::compositing::BlendThroughMask(
      mask, maskWidth, maskHeight, maskLeft, maskTop, dst, dstWidth, dstHeight, dstLeft, dstTop,
      regionWidth, regionHeight, ostrel::compositing::PaintBlend(colour, opacity), __func__,
      ostrel::compositing::ActiveTrcBlendKernels().colourByBytes[form]);
}

void AlphaBlendColorToTRCInverted(unsigned int colour, unsigned char *mask, unsigned int maskWidth,
                                  unsigned int maskHeight, unsigned int maskLeft,
                                  unsigned int maskTop, unsigned int *dst, unsigned int dstWidth,
                                  unsigned int dstHeight, unsigned int dstLeft, unsigned int dstTop,
                                  unsigned char opacity, unsigned int regionWidth,
                                  unsigned int regionHeight, bool exact) {
  ostrel::compositing::BlendThroughInvertedMask(
      colour, mask, maskWidth, maskHeight, maskLeft, maskTop, dst, dstWidth, dstHeight, dstLeft,
      dstTop, opacity, regionWidth, regionHeight, exact, __func__);
}

void AlphaBlendColorToTRCFlat(unsigned int colour, unsigned char *mask, unsigned int maskWidth,
                              unsigned int maskHeight, unsigned int maskLeft, unsigned int maskTop,
                              unsigned int *dst, unsigned int dstWidth, unsigned int dstHeight,
                              unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
                              unsigned int regionWidth, unsigned int regionHeight,
                              bool /*exact: exact form only*/) {
  ostrel::compositing::BlendThroughMask(
      mask, maskWidth, maskHeight, maskLeft, maskTop, dst, dstWidth, dstHeight, dstLeft, dstTop,
      regionWidth, regionHeight, ostrel::compositing::PaintBlend(colour, opacity), __func__,
      ostrel::compositing::ActiveTrcBlendKernels().colourByFlag);
}

void AlphaBlendColorOnBGToTRC(unsigned int colour, unsigned int background, unsigned char *mask,
                              unsigned int maskWidth, unsigned int maskHeight,
                              unsigned int maskLeft, unsigned int maskTop, unsigned int *dst,
                              unsigned int dstWidth, unsigned int dstHeight, unsigned int dstLeft,
                              unsigned int dstTop, unsigned char opacity, unsigned int regionWidth,
                              unsigned int regionHeight, bool /*exact: exact form only*/) {
  ostrel::compositing::TrcBlend blend = ostrel::compositing::PaintBlend(colour, opacity);
  blend.background = background;
  ostrel::compositing::BlendThroughMask(
      mask, maskWidth, maskHeight, maskLeft, maskTop, dst, dstWidth, dstHeight, dstLeft, dstTop,
      regionWidth, regionHeight, blend, __func__,
      ostrel::compositing::ActiveTrcBlendKernels().colourOnBackground);
}

void AlphaBlendAlphaToTRC(unsigned char value, unsigned char *mask, unsigned int maskWidth,
                          unsigned int maskHeight, unsigned int maskLeft, unsigned int maskTop,
                          unsigned int *dst, unsigned int dstWidth, unsigned int dstHeight,
                          unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
                          unsigned int regionWidth, unsigned int regionHeight,
                          bool /*exact: exact form only*/) {
  ostrel::compositing::BlendAlphaByte(value, mask, maskWidth, maskHeight, maskLeft, maskTop, dst,
                                      dstWidth, dstHeight, dstLeft, dstTop, opacity, regionWidth,
                                      regionHeight, __func__);
}

void AlphaBlendColorWithAlphaBlueOfTrcToTrc(
    unsigned int *src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcLeft,
    unsigned int srcTop, unsigned int colour, unsigned int *dst, unsigned char opacity,
    unsigned int dstWidth, unsigned int dstHeight, unsigned int dstLeft, unsigned int dstTop,
    unsigned int regionWidth, unsigned int regionHeight, bool flat, bool scaleColour) {
  ostrel::compositing::BlendByBlueOfPixels(src, srcWidth, srcHeight, srcLeft, srcTop, colour, dst,
                                           opacity, dstWidth, dstHeight, dstLeft, dstTop,
                                           regionWidth, regionHeight, flat, scaleColour, __func__);
}

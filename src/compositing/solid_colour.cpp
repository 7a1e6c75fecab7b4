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
  const auto m = frame::MakePlane(mask, maskWidth, maskHeight, maskLeft, maskTop, "mask");
  const auto d = frame::MakePlane(dst, dstWidth, dstHeight, dstLeft, dstTop, "dst");
  const frame::Extent e = frame::ClipSingle(d, regionWidth, regionHeight, function);
  frame::ExpectHolds(m, e, function);
  RunRows<TrcRow>(e, run, blend, d, In(&TrcRow::bytes, m));
}

}  // namespace
}  // namespace compositing
}  // namespace ostrel

namespace frame = ostrel::frame;
namespace compositing = ostrel::compositing;

// The colour's own alpha is the weight.
void AlphaBlendColorWithConstAlphaToTRC(unsigned int colour, unsigned int *buffer,
                                        unsigned int width, unsigned int height, unsigned int left,
                                        unsigned int top, unsigned int regionWidth,
                                        unsigned int regionHeight, bool exact) {
  const auto b = frame::MakePlane(buffer, width, height, left, top, "");
  const frame::Extent e = frame::ClipSingle(b, regionWidth, regionHeight, __func__);
  if (e.rows == 0) return;
  compositing::TrcBlend blend = compositing::PaintBlend(colour, 0);
  blend.weight = colour >> 24;  // the colour's own alpha, used as the weight directly
  compositing::RunRows<compositing::TrcRow>(
      e, compositing::ActiveTrcBlendKernels().colourByWeight[compositing::FormIndex(exact)], blend,
      b);
}

void AlphaBlendColorToTRC(unsigned int colour, unsigned char *mask, unsigned int maskWidth,
                          unsigned int maskHeight, unsigned int maskLeft, unsigned int maskTop,
                          unsigned int *dst, unsigned int dstWidth, unsigned int dstHeight,
                          unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
                          unsigned int regionWidth, unsigned int regionHeight, bool exact) {
  const int form = compositing::FormIndex(exact);
  compositing::BlendThroughMask(mask, maskWidth, maskHeight, maskLeft, maskTop, dst, dstWidth,
                                dstHeight, dstLeft, dstTop, regionWidth, regionHeight,
                                compositing::PaintBlend(colour, opacity), __func__,
                                compositing::ActiveTrcBlendKernels().colourByBytes[form]);
}

void AlphaBlendColorToTRCInverted(unsigned int colour, unsigned char *mask, unsigned int maskWidth,
                                  unsigned int maskHeight, unsigned int maskLeft,
                                  unsigned int maskTop, unsigned int *dst, unsigned int dstWidth,
                                  unsigned int dstHeight, unsigned int dstLeft, unsigned int dstTop,
                                  unsigned char opacity, unsigned int regionWidth,
                                  unsigned int regionHeight, bool exact) {
  const compositing::TrcBlendKernels &k = compositing::ActiveTrcBlendKernels();
  const int form = compositing::FormIndex(exact);
  const bool fast = form == static_cast<int>(frame::blend::Form::kFast);
  compositing::BlendThroughMask(
      mask, maskWidth, maskHeight, maskLeft, maskTop, dst, dstWidth, dstHeight, dstLeft, dstTop,
      regionWidth, regionHeight, compositing::PaintBlend(colour, opacity), __func__,
      [&](const compositing::TrcRow &row, const compositing::TrcBlend &blend) {
        if (!fast) {
          // The exact form does not invert.
          k.colourByBytes[form](row, blend);
          return;
        }
        // The fast form inverts the coverage of the pixels it takes in pairs;
        // the single pixel that ends a row of odd length keeps its own.
        compositing::TrcRow pairs = row;
        pairs.n = row.n & ~std::size_t{1};
        k.colourByInverse[form](pairs, blend);
        if (row.n != pairs.n) k.colourByBytes[form](compositing::RowFrom(row, pairs.n), blend);
      });
}

void AlphaBlendColorToTRCFlat(unsigned int colour, unsigned char *mask, unsigned int maskWidth,
                              unsigned int maskHeight, unsigned int maskLeft, unsigned int maskTop,
                              unsigned int *dst, unsigned int dstWidth, unsigned int dstHeight,
                              unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
                              unsigned int regionWidth, unsigned int regionHeight,
                              bool /*exact: exact form only*/) {
  compositing::BlendThroughMask(mask, maskWidth, maskHeight, maskLeft, maskTop, dst, dstWidth,
                                dstHeight, dstLeft, dstTop, regionWidth, regionHeight,
                                compositing::PaintBlend(colour, opacity), __func__,
                                compositing::ActiveTrcBlendKernels().colourByFlag);
}

void AlphaBlendColorOnBGToTRC(unsigned int colour, unsigned int background, unsigned char *mask,
                              unsigned int maskWidth, unsigned int maskHeight,
                              unsigned int maskLeft, unsigned int maskTop, unsigned int *dst,
                              unsigned int dstWidth, unsigned int dstHeight, unsigned int dstLeft,
                              unsigned int dstTop, unsigned char opacity, unsigned int regionWidth,
                              unsigned int regionHeight, bool /*exact: exact form only*/) {
  compositing::TrcBlend blend = compositing::PaintBlend(colour, opacity);
  blend.background = background;
  compositing::BlendThroughMask(mask, maskWidth, maskHeight, maskLeft, maskTop, dst, dstWidth,
                                dstHeight, dstLeft, dstTop, regionWidth, regionHeight, blend,
                                __func__, compositing::ActiveTrcBlendKernels().colourOnBackground);
}

// Unlike the other mask members, clipped against mask and destination.
void AlphaBlendAlphaToTRC(unsigned char value, unsigned char *mask, unsigned int maskWidth,
                          unsigned int maskHeight, unsigned int maskLeft, unsigned int maskTop,
                          unsigned int *dst, unsigned int dstWidth, unsigned int dstHeight,
                          unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
                          unsigned int regionWidth, unsigned int regionHeight,
                          bool /*exact: exact form only*/) {
  const auto m = frame::MakePlane(mask, maskWidth, maskHeight, maskLeft, maskTop, "mask");
  const auto d = frame::MakePlane(dst, dstWidth, dstHeight, dstLeft, dstTop, "dst");
  const frame::Extent e = frame::ClipPair(m, d, regionWidth, regionHeight, __func__);
  if (e.rows == 0) return;
  const compositing::TrcBlend blend =
      compositing::PaintBlend(static_cast<unsigned int>(value) << 24, opacity);
  compositing::RunRows<compositing::TrcRow>(e, compositing::ActiveTrcBlendKernels().alphaByBytes,
                                            blend, d,
                                            compositing::In(&compositing::TrcRow::bytes, m));
}

void AlphaBlendColorWithAlphaBlueOfTrcToTrc(
    unsigned int *src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcLeft,
    unsigned int srcTop, unsigned int colour, unsigned int *dst, unsigned char opacity,
    unsigned int dstWidth, unsigned int dstHeight, unsigned int dstLeft, unsigned int dstTop,
    unsigned int regionWidth, unsigned int regionHeight, bool flat, bool scaleColour) {
  const auto s = frame::MakePlane(src, srcWidth, srcHeight, srcLeft, srcTop, "src");
  const auto d = frame::MakePlane(dst, dstWidth, dstHeight, dstLeft, dstTop, "dst");
  const frame::Extent e = frame::ClipPair(s, d, regionWidth, regionHeight, __func__);
  if (e.rows == 0) return;
  const compositing::TrcBlendKernels &k = compositing::ActiveTrcBlendKernels();
  // One path for the whole call. Flat is the blend with full coverage where
  // the blue byte is set, at full opacity.
  compositing::TrcBlend blend = compositing::PaintBlend(colour, flat ? 255u : opacity);
  compositing::TrcRowKernel kernel = k.colourByBlue;
  if (flat) {
    kernel = k.colourByBlueFlag;
  } else if (opacity == 255 && scaleColour) {
    kernel = k.colourScaledByBlue;
  }
  compositing::RunRows<compositing::TrcRow>(e, kernel, blend, d,
                                            compositing::In(&compositing::TrcRow::pixels, s));
}

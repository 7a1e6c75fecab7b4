// Density blending: one constant grey value laid into a grey buffer through
// a coverage buffer.
#include "Ostrel.h"
#include "compositing/grey_blend.h"
#include "compositing/trc_blend.h"
#include "compositing/word_blend_kernels.h"

namespace ostrel {
namespace compositing {
namespace {

// Runs kernel over the clipped region, coverage as the source group.
void DensityRows(unsigned char density, unsigned char *alpha, unsigned int alphaWidth,
                 unsigned int alphaHeight, unsigned int alphaLeft, unsigned int alphaTop,
                 unsigned char *dst, unsigned int dstWidth, unsigned int dstHeight,
                 unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
                 unsigned int regionWidth, unsigned int regionHeight, GreyRowKernel kernel,
                 const char *function) {
  const auto a = frame::MakePlane(alpha, alphaWidth, alphaHeight, alphaLeft, alphaTop, "alpha");
  const auto d = frame::MakePlane(dst, dstWidth, dstHeight, dstLeft, dstTop, "dst");
  const frame::Extent e = frame::ClipPair(a, d, regionWidth, regionHeight, function);
  GreyBlend blend;
  blend.density = density;
  blend.opacity = opacity;
  RunRows<GreyRow>(e, kernel, blend, d, In(&GreyRow::alpha, a));
}

// The 12-bit density members through a word row kernel: exact form,
// coverage c = a or 255 - a (see WordBlendKernels::towardDensity), or the
// flat one.
void DensityWords(unsigned short density, unsigned char *alpha, unsigned int alphaWidth,
                  unsigned int alphaHeight, unsigned int alphaLeft, unsigned int alphaTop,
                  unsigned short *dst, unsigned int dstWidth, unsigned int dstHeight,
                  unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
                  unsigned int regionWidth, unsigned int regionHeight,
                  WordRowKernel (*kernel)(const WordBlendKernels &), const char *function) {
  const auto a = frame::MakePlane(alpha, alphaWidth, alphaHeight, alphaLeft, alphaTop, "alpha");
  const auto d = frame::MakePlane(dst, dstWidth, dstHeight, dstLeft, dstTop, "dst");
  const frame::Extent e = frame::ClipPair(a, d, regionWidth, regionHeight, function);
  WordBlend blend;
  blend.density = density;
  blend.opacity = opacity;
  RunRows<WordRow>(
      e, [&](const WordRow &row, const WordBlend &b) { kernel(WordKernelsForRow(row))(row, b); },
      blend, d, In(&WordRow::alpha, a));
}

}  // namespace
}  // namespace compositing
}  // namespace ostrel

namespace frame = ostrel::frame;
namespace compositing = ostrel::compositing;

void AlphaBlendDensityToL08(unsigned char density, unsigned char *alpha, unsigned int alphaWidth,
                            unsigned int alphaHeight, unsigned int alphaLeft, unsigned int alphaTop,
                            unsigned char *dst, unsigned int dstWidth, unsigned int dstHeight,
                            unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
                            unsigned int regionWidth, unsigned int regionHeight, bool exact) {
  const int form = compositing::FormIndex(exact);
  compositing::DensityRows(density, alpha, alphaWidth, alphaHeight, alphaLeft, alphaTop, dst,
                           dstWidth, dstHeight, dstLeft, dstTop, opacity, regionWidth, regionHeight,
                           compositing::ActiveGreyBlendKernels().densityByAlpha[form], __func__);
}

void AlphaBlendDensityToL08Inverted(
    unsigned char density, unsigned char *alpha, unsigned int alphaWidth, unsigned int alphaHeight,
    unsigned int alphaLeft, unsigned int alphaTop, unsigned char *dst, unsigned int dstWidth,
    unsigned int dstHeight, unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
    unsigned int regionWidth, unsigned int regionHeight, bool exact) {
  const int form = compositing::FormIndex(exact);
  compositing::DensityRows(density, alpha, alphaWidth, alphaHeight, alphaLeft, alphaTop, dst,
                           dstWidth, dstHeight, dstLeft, dstTop, opacity, regionWidth, regionHeight,
                           compositing::ActiveGreyBlendKernels().densityByInverse[form], __func__);
}

// The inversion sits in this member, not in the one named Inverted.
void AlphaBlendDensityToL12(unsigned short density, unsigned char *alpha, unsigned int alphaWidth,
                            unsigned int alphaHeight, unsigned int alphaLeft, unsigned int alphaTop,
                            unsigned short *dst, unsigned int dstWidth, unsigned int dstHeight,
                            unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
                            unsigned int regionWidth, unsigned int regionHeight, bool /*exact*/) {
  compositing::DensityWords(
      density, alpha, alphaWidth, alphaHeight, alphaLeft, alphaTop, dst, dstWidth, dstHeight,
      dstLeft, dstTop, opacity, regionWidth, regionHeight,
      [](const compositing::WordBlendKernels &k) { return k.towardDensity[1]; }, __func__);
}

void AlphaBlendDensityToL12Inverted(
    unsigned short density, unsigned char *alpha, unsigned int alphaWidth, unsigned int alphaHeight,
    unsigned int alphaLeft, unsigned int alphaTop, unsigned short *dst, unsigned int dstWidth,
    unsigned int dstHeight, unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
    unsigned int regionWidth, unsigned int regionHeight, bool /*exact*/) {
  compositing::DensityWords(
      density, alpha, alphaWidth, alphaHeight, alphaLeft, alphaTop, dst, dstWidth, dstHeight,
      dstLeft, dstTop, opacity, regionWidth, regionHeight,
      [](const compositing::WordBlendKernels &k) { return k.towardDensity[0]; }, __func__);
}

void AlphaBlendDensityToL08Flat(unsigned char density, unsigned char *alpha,
                                unsigned int alphaWidth, unsigned int alphaHeight,
                                unsigned int alphaLeft, unsigned int alphaTop, unsigned char *dst,
                                unsigned int dstWidth, unsigned int dstHeight, unsigned int dstLeft,
                                unsigned int dstTop, unsigned int regionWidth,
                                unsigned int regionHeight) {
  compositing::ForEachPixelPair(alpha, alphaWidth, alphaHeight, alphaLeft, alphaTop, "alpha", dst,
                                dstWidth, dstHeight, dstLeft, dstTop, regionWidth, regionHeight,
                                __func__, [&](unsigned char a, unsigned char &d) {
                                  if (a != 0) d = density;
                                });
}

void AlphaBlendDensityToL08FlatInverted(unsigned char density, unsigned char *alpha,
                                        unsigned int alphaWidth, unsigned int alphaHeight,
                                        unsigned int alphaLeft, unsigned int alphaTop,
                                        unsigned char *dst, unsigned int dstWidth,
                                        unsigned int dstHeight, unsigned int dstLeft,
                                        unsigned int dstTop, unsigned int regionWidth,
                                        unsigned int regionHeight) {
  compositing::ForEachPixelPair(alpha, alphaWidth, alphaHeight, alphaLeft, alphaTop, "alpha", dst,
                                dstWidth, dstHeight, dstLeft, dstTop, regionWidth, regionHeight,
                                __func__, [&](unsigned char a, unsigned char &d) {
                                  if (a == 0) d = density;
                                });
}

void AlphaBlendDensityToL12Flat(unsigned short density, unsigned char *alpha,
                                unsigned int alphaWidth, unsigned int alphaHeight,
                                unsigned int alphaLeft, unsigned int alphaTop, unsigned short *dst,
                                unsigned int dstWidth, unsigned int dstHeight, unsigned int dstLeft,
                                unsigned int dstTop, unsigned int regionWidth,
                                unsigned int regionHeight) {
  compositing::DensityWords(
      density, alpha, alphaWidth, alphaHeight, alphaLeft, alphaTop, dst, dstWidth, dstHeight,
      dstLeft, dstTop, 0, regionWidth, regionHeight,
      [](const compositing::WordBlendKernels &k) { return k.densityFlat; }, __func__);
}

// The blue byte of each TRC pixel is the coverage.
void AlphaBlendDensityWithAlphaBlueOfTrcToL08(
    unsigned int *trc, unsigned int trcWidth, unsigned int trcHeight, unsigned int trcLeft,
    unsigned int trcTop, unsigned char density, unsigned char *dst, unsigned char opacity,
    unsigned int dstWidth, unsigned int dstHeight, unsigned int dstLeft, unsigned int dstTop,
    unsigned int regionWidth, unsigned int regionHeight, bool flat, bool scaleDensity) {
  // Taken here: inside the lambda __func__ would name its call operator.
  const char *const function = __func__;
  const auto run = [&](auto &&pixel) {
    compositing::ForEachPixelPair(trc, trcWidth, trcHeight, trcLeft, trcTop, "trc", dst, dstWidth,
                                  dstHeight, dstLeft, dstTop, regionWidth, regionHeight, function,
                                  [&](unsigned int t, unsigned char &d) { pixel(t & 0xFFu, d); });
  };
  if (flat) {
    run([&](unsigned int b, unsigned char &d) {
      if (b != 0) d = density;
    });
  } else if (opacity < 255) {
    run([&](unsigned int b, unsigned char &d) {
      d = static_cast<unsigned char>(
          frame::blend::ExactChannel(d, density, frame::blend::ExactWeight(b, opacity)));
    });
  } else if (scaleDensity) {
    run([&](unsigned int b, unsigned char &d) {
      if (b != 0) d = static_cast<unsigned char>(b * density / 255u);
    });
  } else {
    run([&](unsigned int b, unsigned char &d) {
      d = static_cast<unsigned char>(frame::blend::ExactChannel(d, density, b));
    });
  }
}

void AlphaBlendL08WithAlphaBufferToL08(
    unsigned char *src, unsigned char *alpha, unsigned int srcWidth, unsigned int srcHeight,
    unsigned int srcLeft, unsigned int srcTop, unsigned char *dst, unsigned int dstWidth,
    unsigned int dstHeight, unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
    unsigned int regionWidth, unsigned int regionHeight, bool /*exact*/) {
  compositing::BlendGreysThroughAlpha(
      frame::MakePlane(src, srcWidth, srcHeight, srcLeft, srcTop, "src"),
      frame::MakePlane(alpha, srcWidth, srcHeight, srcLeft, srcTop, "src"),
      frame::MakePlane(dst, dstWidth, dstHeight, dstLeft, dstTop, "dst"), regionWidth, regionHeight,
      opacity, false, __func__);
}

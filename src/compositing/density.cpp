// Density blending: one constant grey value laid into a grey buffer through
// a coverage buffer.
#include "Ostrel.h"
#include "compositing/grey_blend.h"
#include "compositing/trc_blend.h"

namespace ostrel {
namespace {

// Runs kernel over the clipped region, coverage as the source group.
void DensityRows(unsigned char density, unsigned char *alpha, unsigned int alphaWidth,
                 unsigned int alphaHeight, unsigned int alphaLeft, unsigned int alphaTop,
                 unsigned char *dst, unsigned int dstWidth, unsigned int dstHeight,
                 unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
                 unsigned int regionWidth, unsigned int regionHeight, GreyRowKernel kernel,
                 const char *caller) {
  const auto a = MakePlane(alpha, alphaWidth, alphaHeight, alphaLeft, alphaTop);
  const auto d = MakePlane(dst, dstWidth, dstHeight, dstLeft, dstTop);
  const Extent e = ClipPair(a, d, regionWidth, regionHeight, caller);
  GreyBlend blend;
  blend.density = density;
  blend.opacity = opacity;
  ForEachRowPair(a, d, e, [&](const std::uint8_t *coverage, std::uint8_t *out, std::uint32_t n) {
    GreyRow row{out, n};
    row.alpha = coverage;
    kernel(row, blend);
  });
}

std::uint16_t ExactWord(std::uint16_t d, std::uint32_t target, std::uint32_t weight) {
  return static_cast<std::uint16_t>(
      blend::ExactChannel(d, static_cast<std::int32_t>(target), weight));
}

}  // namespace

}  // namespace ostrel

using ostrel::ActiveGreyBlendKernels;
using ostrel::FormIndex;

void AlphaBlendDensityToL08(unsigned char density, unsigned char *alpha, unsigned int alphaWidth,
                            unsigned int alphaHeight, unsigned int alphaLeft,
                            unsigned int alphaTop, unsigned char *dst, unsigned int dstWidth,
                            unsigned int dstHeight, unsigned int dstLeft, unsigned int dstTop,
                            unsigned char opacity, unsigned int regionWidth,
                            unsigned int regionHeight, bool exact) {
  ostrel::DensityRows(density, alpha, alphaWidth, alphaHeight, alphaLeft, alphaTop, dst,
                      dstWidth, dstHeight, dstLeft, dstTop, opacity, regionWidth, regionHeight,
                      ActiveGreyBlendKernels().densityByAlpha[FormIndex(exact)], __func__);
}

void AlphaBlendDensityToL08Inverted(unsigned char density, unsigned char *alpha,
                                    unsigned int alphaWidth, unsigned int alphaHeight,
                                    unsigned int alphaLeft, unsigned int alphaTop,
                                    unsigned char *dst, unsigned int dstWidth,
                                    unsigned int dstHeight, unsigned int dstLeft,
                                    unsigned int dstTop, unsigned char opacity,
                                    unsigned int regionWidth, unsigned int regionHeight,
                                    bool exact) {
  ostrel::DensityRows(density, alpha, alphaWidth, alphaHeight, alphaLeft, alphaTop, dst,
                      dstWidth, dstHeight, dstLeft, dstTop, opacity, regionWidth, regionHeight,
                      ActiveGreyBlendKernels().densityByInverse[FormIndex(exact)], __func__);
}

// The inversion sits in this member, not in the one named Inverted.
void AlphaBlendDensityToL12(unsigned short density, unsigned char *alpha, unsigned int alphaWidth,
                            unsigned int alphaHeight, unsigned int alphaLeft,
                            unsigned int alphaTop, unsigned short *dst, unsigned int dstWidth,
                            unsigned int dstHeight, unsigned int dstLeft, unsigned int dstTop,
                            unsigned char opacity, unsigned int regionWidth,
                            unsigned int regionHeight, bool /*exact*/) {
  ostrel::ForEachPixelPair(alpha, alphaWidth, alphaHeight, alphaLeft, alphaTop, dst, dstWidth,
                           dstHeight, dstLeft, dstTop, regionWidth, regionHeight, __func__,
                           [&](unsigned char a, unsigned short &d) {
                             d = ostrel::ExactWord(d, density, ostrel::blend::ExactWeight(255u - a, opacity));
                           });
}

void AlphaBlendDensityToL12Inverted(unsigned short density, unsigned char *alpha,
                                    unsigned int alphaWidth, unsigned int alphaHeight,
                                    unsigned int alphaLeft, unsigned int alphaTop,
                                    unsigned short *dst, unsigned int dstWidth,
                                    unsigned int dstHeight, unsigned int dstLeft,
                                    unsigned int dstTop, unsigned char opacity,
                                    unsigned int regionWidth, unsigned int regionHeight,
                                    bool /*exact*/) {
  ostrel::ForEachPixelPair(alpha, alphaWidth, alphaHeight, alphaLeft, alphaTop, dst, dstWidth,
                           dstHeight, dstLeft, dstTop, regionWidth, regionHeight, __func__,
                           [&](unsigned char a, unsigned short &d) {
                             d = ostrel::ExactWord(d, density, ostrel::blend::ExactWeight(a, opacity));
                           });
}

void AlphaBlendDensityToL08Flat(unsigned char density, unsigned char *alpha,
                                unsigned int alphaWidth, unsigned int alphaHeight,
                                unsigned int alphaLeft, unsigned int alphaTop, unsigned char *dst,
                                unsigned int dstWidth, unsigned int dstHeight,
                                unsigned int dstLeft, unsigned int dstTop,
                                unsigned int regionWidth, unsigned int regionHeight) {
  ostrel::ForEachPixelPair(alpha, alphaWidth, alphaHeight, alphaLeft, alphaTop, dst, dstWidth,
                           dstHeight, dstLeft, dstTop, regionWidth, regionHeight, __func__,
                           [&](unsigned char a, unsigned char &d) {
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
  ostrel::ForEachPixelPair(alpha, alphaWidth, alphaHeight, alphaLeft, alphaTop, dst, dstWidth,
                           dstHeight, dstLeft, dstTop, regionWidth, regionHeight, __func__,
                           [&](unsigned char a, unsigned char &d) {
                             if (a == 0) d = density;
                           });
}

void AlphaBlendDensityToL12Flat(unsigned short density, unsigned char *alpha,
                                unsigned int alphaWidth, unsigned int alphaHeight,
                                unsigned int alphaLeft, unsigned int alphaTop, unsigned short *dst,
                                unsigned int dstWidth, unsigned int dstHeight,
                                unsigned int dstLeft, unsigned int dstTop,
                                unsigned int regionWidth, unsigned int regionHeight) {
  ostrel::ForEachPixelPair(alpha, alphaWidth, alphaHeight, alphaLeft, alphaTop, dst, dstWidth,
                           dstHeight, dstLeft, dstTop, regionWidth, regionHeight, __func__,
                           [&](unsigned char a, unsigned short &d) {
                             if (a != 0) d = density;
                           });
}

void AlphaBlendDensityWithAlphaBlueOfTrcToL08(unsigned int *trc, unsigned int trcWidth,
                                              unsigned int trcHeight, unsigned int trcLeft,
                                              unsigned int trcTop, unsigned char density,
                                              unsigned char *dst, unsigned char opacity,
                                              unsigned int dstWidth, unsigned int dstHeight,
                                              unsigned int dstLeft, unsigned int dstTop,
                                              unsigned int regionWidth, unsigned int regionHeight,
                                              bool flat, bool scaleDensity) {
  using ostrel::blend::ExactChannel;
  using ostrel::blend::ExactWeight;
  const auto run = [&](auto &&pixel) {
    ostrel::ForEachPixelPair(trc, trcWidth, trcHeight, trcLeft, trcTop, dst, dstWidth, dstHeight,
                             dstLeft, dstTop, regionWidth, regionHeight,
                             "AlphaBlendDensityWithAlphaBlueOfTrcToL08",
                             [&](unsigned int t, unsigned char &d) { pixel(t & 0xFFu, d); });
  };
  if (flat) {
    run([&](unsigned int b, unsigned char &d) {
      if (b != 0) d = density;
    });
  } else if (opacity < 255) {
    run([&](unsigned int b, unsigned char &d) {
      d = static_cast<unsigned char>(ExactChannel(d, density, ExactWeight(b, opacity)));
    });
  } else if (scaleDensity) {
    run([&](unsigned int b, unsigned char &d) {
      if (b != 0) d = static_cast<unsigned char>(b * density / 255u);
    });
  } else {
    run([&](unsigned int b, unsigned char &d) {
      d = static_cast<unsigned char>(ExactChannel(d, density, b));
    });
  }
}

void AlphaBlendL08WithAlphaBufferToL08(unsigned char *src, unsigned char *alpha,
                                       unsigned int srcWidth, unsigned int srcHeight,
                                       unsigned int srcLeft, unsigned int srcTop,
                                       unsigned char *dst, unsigned int dstWidth,
                                       unsigned int dstHeight, unsigned int dstLeft,
                                       unsigned int dstTop, unsigned char opacity,
                                       unsigned int regionWidth, unsigned int regionHeight,
                                       bool /*exact*/) {
  using ostrel::MakePlane;
  ostrel::BlendGreysThroughAlpha(MakePlane(src, srcWidth, srcHeight, srcLeft, srcTop),
                                 MakePlane(alpha, srcWidth, srcHeight, srcLeft, srcTop),
                                 MakePlane(dst, dstWidth, dstHeight, dstLeft, dstTop), regionWidth,
                                 regionHeight, opacity, false, __func__);
}

// Grey-to-grey blending: L08 into L08 and L12 into L12 through an optional
// alpha buffer, exact form only.
#include "Ostrel.h"
#include "compositing/grey_blend.h"
#include "compositing/word_blend_kernels.h"
#include "frame/blend.h"
#include "frame/region.h"

namespace ostrel {
namespace compositing {
namespace {

using frame::blend::ExactChannel;
using frame::blend::ExactWeight;

// How the pixels of one call are blended.
struct GreyMode {
  std::uint32_t opacity;
  bool blendZero;      // blend source values of 0 too
  bool flatAlpha;      // coverage 255 where the alpha byte is not 0
  std::uint32_t full;  // twoLevel: a nonzero result becomes this; 0: no forcing
};

// Calls row(src, alpha or null, dst, columns) for each row of the region,
// clipped against source and destination only.
template <class P, class RowFn>
void GreyRows(const frame::Plane<P> &s, const frame::Plane<unsigned char> &a,
              const frame::Plane<P> &d, unsigned int regionWidth, unsigned int regionHeight,
              const char *function, RowFn &&row) {
  const frame::Extent e = frame::ClipPair(s, d, regionWidth, regionHeight, function);
  if (a.pixels != nullptr) frame::ExpectHolds(a, e, function);
  for (std::uint32_t j = 0; j < e.rows; ++j) {
    row(s.Row(j), a.pixels != nullptr ? a.Row(j) : nullptr, d.Row(j), e.columns);
  }
}

std::uint32_t Coverage(const unsigned char *alpha, std::uint32_t i, const GreyMode &m) {
  if (alpha == nullptr) return m.opacity;
  const std::uint32_t c = m.flatAlpha ? (alpha[i] != 0 ? 255u : 0u) : alpha[i];
  return ExactWeight(c, m.opacity);
}

template <class P>
void BlendRow(const P *s, const unsigned char *alpha, P *d, std::uint32_t n, const GreyMode &m) {
  for (std::uint32_t i = 0; i < n; ++i) {
    if (!m.blendZero && s[i] == 0) continue;
    const P r = static_cast<P>(ExactChannel(d[i], s[i], Coverage(alpha, i, m)));
    d[i] = m.full != 0 && r != 0 ? static_cast<P>(m.full) : r;
  }
}

// The 12-bit members run the word row kernels; each row takes the kernel of
// its coverage and flags (see WordBlendKernels).
WordRowKernel SourceKernel(const WordBlendKernels &k, const unsigned char *alpha, const GreyMode &m,
                           bool scaled, int result) {
  const int coverage = alpha == nullptr ? kWordByOpacity
                       : m.flatAlpha    ? kWordByFlatAlpha
                                        : kWordByAlpha;
  return k.towardSource[coverage][scaled][!m.blendZero][result];
}

void BlendWordRow(const std::uint16_t *s, const unsigned char *alpha, std::uint16_t *d,
                  std::uint32_t n, const GreyMode &m, bool scaled, int result, bool nextWord) {
  WordRow row{d, n};
  row.src = s;
  row.alpha = alpha;
  row.nextWord = nextWord;
  WordBlend blend;
  blend.opacity = m.opacity;
  SourceKernel(WordKernelsForRow(row), alpha, m, scaled, result)(row, blend);
}

template <class P>
void BlendShared(P *src, unsigned char *alpha, unsigned int srcWidth, unsigned int srcHeight,
                 unsigned int srcLeft, unsigned int srcTop, P *dst, unsigned int dstWidth,
                 unsigned int dstHeight, unsigned int dstLeft, unsigned int dstTop,
                 unsigned int regionWidth, unsigned int regionHeight, const GreyMode &m,
                 const char *function) {
  GreyRows(frame::MakePlane(src, srcWidth, srcHeight, srcLeft, srcTop, "src"),
           frame::MakePlane(alpha, srcWidth, srcHeight, srcLeft, srcTop, "src"),
           frame::MakePlane(dst, dstWidth, dstHeight, dstLeft, dstTop, "dst"), regionWidth,
           regionHeight, function, [&](const P *s, const unsigned char *a, P *d, std::uint32_t n) {
             BlendRow(s, a, d, n, m);
           });
}

template <class P>
void BlendOwn(P *src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcLeft,
              unsigned int srcTop, unsigned char *alpha, unsigned int alphaWidth,
              unsigned int alphaHeight, unsigned int alphaLeft, unsigned int alphaTop, P *dst,
              unsigned int dstWidth, unsigned int dstHeight, unsigned int dstLeft,
              unsigned int dstTop, unsigned int regionWidth, unsigned int regionHeight,
              const GreyMode &m, const char *function) {
  GreyRows(frame::MakePlane(src, srcWidth, srcHeight, srcLeft, srcTop, "src"),
           frame::MakePlane(alpha, alphaWidth, alphaHeight, alphaLeft, alphaTop, "alpha"),
           frame::MakePlane(dst, dstWidth, dstHeight, dstLeft, dstTop, "dst"), regionWidth,
           regionHeight, function, [&](const P *s, const unsigned char *a, P *d, std::uint32_t n) {
             BlendRow(s, a, d, n, m);
           });
}

// The shared-geometry 12-bit members: the source divided by 255 except with
// alpha and blendZero 0, and twoLevel (with blendZero only) applied to the
// word after each one stored, which reaches one word past the row's region.
// That word is left alone where it would lie past the buffer's last pixel
// (the region's row ends the buffer).
void BlendL12Shared(unsigned short *src, unsigned char *alpha, unsigned int srcWidth,
                    unsigned int srcHeight, unsigned int srcLeft, unsigned int srcTop,
                    unsigned short *dst, unsigned int dstWidth, unsigned int dstHeight,
                    unsigned int dstLeft, unsigned int dstTop, unsigned int regionWidth,
                    unsigned int regionHeight, const GreyMode &m, bool twoLevel,
                    const char *function) {
  const std::uint16_t *const end = dst + static_cast<std::size_t>(dstWidth) * dstHeight;
  const bool scaled = m.blendZero || alpha == nullptr;
  const bool forceNext = twoLevel && m.blendZero;
  GreyRows(frame::MakePlane(src, srcWidth, srcHeight, srcLeft, srcTop, "src"),
           frame::MakePlane(alpha, srcWidth, srcHeight, srcLeft, srcTop, "src"),
           frame::MakePlane(dst, dstWidth, dstHeight, dstLeft, dstTop, "dst"), regionWidth,
           regionHeight, function,
           [&](const std::uint16_t *s, const unsigned char *a, std::uint16_t *d, std::uint32_t n) {
             BlendWordRow(s, a, d, n, m, scaled, forceNext ? kWordForceNext : kWordPlain,
                          forceNext && d + n != end);
           });
}

// The own-geometry 12-bit member: the source as it is; with twoLevel and an
// alpha buffer a result that is not 0 becomes 4095.
void BlendL12Own(unsigned short *src, unsigned int srcWidth, unsigned int srcHeight,
                 unsigned int srcLeft, unsigned int srcTop, unsigned char *alpha,
                 unsigned int alphaWidth, unsigned int alphaHeight, unsigned int alphaLeft,
                 unsigned int alphaTop, unsigned short *dst, unsigned int dstWidth,
                 unsigned int dstHeight, unsigned int dstLeft, unsigned int dstTop,
                 unsigned int regionWidth, unsigned int regionHeight, const GreyMode &m,
                 bool twoLevel, const char *function) {
  const int result = twoLevel && alpha != nullptr ? kWordTwoLevel : kWordPlain;
  GreyRows(frame::MakePlane(src, srcWidth, srcHeight, srcLeft, srcTop, "src"),
           frame::MakePlane(alpha, alphaWidth, alphaHeight, alphaLeft, alphaTop, "alpha"),
           frame::MakePlane(dst, dstWidth, dstHeight, dstLeft, dstTop, "dst"), regionWidth,
           regionHeight, function,
           [&](const std::uint16_t *s, const unsigned char *a, std::uint16_t *d, std::uint32_t n) {
             BlendWordRow(s, a, d, n, m, false, result, false);
           });
}

}  // namespace

void BlendGreysThroughAlpha(const frame::Plane<unsigned char> &src,
                            const frame::Plane<unsigned char> &alpha,
                            const frame::Plane<unsigned char> &dst, unsigned int regionWidth,
                            unsigned int regionHeight, unsigned char opacity, bool twoLevel,
                            const char *function) {
  GreyBlend blend;
  blend.opacity = opacity;
  const GreyBlendKernels &kernels = ActiveGreyBlendKernels();
  const GreyRowKernel kernel =
      twoLevel ? kernels.greysByAlphaTwoLevel
               : kernels.greysByAlpha[static_cast<int>(frame::blend::Form::kExact)];
  GreyRows(src, alpha, dst, regionWidth, regionHeight, function,
           [&](const unsigned char *s, const unsigned char *a, unsigned char *d, std::uint32_t n) {
             GreyRow row{d, n};
             row.src = s;
             row.alpha = a;
             kernel(row, blend);
           });
}

}  // namespace compositing
}  // namespace ostrel

namespace frame = ostrel::frame;
namespace compositing = ostrel::compositing;

// The alpha buffer sharing the source's geometry.
void AlphaBlendL08ToL08(unsigned char *src, unsigned char *alpha, unsigned int srcWidth,
                        unsigned int srcHeight, unsigned int srcLeft, unsigned int srcTop,
                        unsigned char *dst, unsigned int dstWidth, unsigned int dstHeight,
                        unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
                        unsigned char blendZero, bool twoLevel, unsigned int regionWidth,
                        unsigned int regionHeight, bool /*exact*/) {
  if (alpha != nullptr && blendZero != 0) {
    // Every pixel blended through the alpha buffer: the row kernels.
    compositing::BlendGreysThroughAlpha(
        frame::MakePlane(src, srcWidth, srcHeight, srcLeft, srcTop, "src"),
        frame::MakePlane(alpha, srcWidth, srcHeight, srcLeft, srcTop, "src"),
        frame::MakePlane(dst, dstWidth, dstHeight, dstLeft, dstTop, "dst"), regionWidth,
        regionHeight, opacity, twoLevel, __func__);
    return;
  }
  const compositing::GreyMode m{opacity, blendZero != 0, false, twoLevel ? 255u : 0u};
  compositing::BlendShared(src, alpha, srcWidth, srcHeight, srcLeft, srcTop, dst, dstWidth,
                           dstHeight, dstLeft, dstTop, regionWidth, regionHeight, m, __func__);
}

// The alpha buffer with its own geometry.
void AlphaBlendL08ToL08(unsigned char *src, unsigned int srcWidth, unsigned int srcHeight,
                        unsigned int srcLeft, unsigned int srcTop, unsigned char *alpha,
                        unsigned int alphaWidth, unsigned int alphaHeight, unsigned int alphaLeft,
                        unsigned int alphaTop, unsigned char *dst, unsigned int dstWidth,
                        unsigned int dstHeight, unsigned int dstLeft, unsigned int dstTop,
                        unsigned char opacity, unsigned char blendZero, bool twoLevel,
                        unsigned int regionWidth, unsigned int regionHeight, bool /*exact*/) {
  if (alpha != nullptr && blendZero != 0) {
    compositing::BlendGreysThroughAlpha(
        frame::MakePlane(src, srcWidth, srcHeight, srcLeft, srcTop, "src"),
        frame::MakePlane(alpha, alphaWidth, alphaHeight, alphaLeft, alphaTop, "alpha"),
        frame::MakePlane(dst, dstWidth, dstHeight, dstLeft, dstTop, "dst"), regionWidth,
        regionHeight, opacity, twoLevel, __func__);
    return;
  }
  const compositing::GreyMode m{opacity, blendZero != 0, false,
                                twoLevel && alpha != nullptr ? 255u : 0u};
  compositing::BlendOwn(src, srcWidth, srcHeight, srcLeft, srcTop, alpha, alphaWidth, alphaHeight,
                        alphaLeft, alphaTop, dst, dstWidth, dstHeight, dstLeft, dstTop, regionWidth,
                        regionHeight, m, __func__);
}

void AlphaBlendL08ToL08FlatAlpha(unsigned char *src, unsigned char *alpha, unsigned int srcWidth,
                                 unsigned int srcHeight, unsigned int srcLeft, unsigned int srcTop,
                                 unsigned char *dst, unsigned int dstWidth, unsigned int dstHeight,
                                 unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
                                 unsigned char blendZero, bool twoLevel, unsigned int regionWidth,
                                 unsigned int regionHeight, bool /*exact*/) {
  const compositing::GreyMode m{opacity, blendZero != 0, true,
                                twoLevel && alpha != nullptr ? 255u : 0u};
  compositing::BlendShared(src, alpha, srcWidth, srcHeight, srcLeft, srcTop, dst, dstWidth,
                           dstHeight, dstLeft, dstTop, regionWidth, regionHeight, m, __func__);
}

void AlphaBlendL12ToL12(unsigned short *src, unsigned char *alpha, unsigned int srcWidth,
                        unsigned int srcHeight, unsigned int srcLeft, unsigned int srcTop,
                        unsigned short *dst, unsigned int dstWidth, unsigned int dstHeight,
                        unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
                        unsigned char blendZero, bool twoLevel, unsigned int regionWidth,
                        unsigned int regionHeight, bool /*exact*/) {
  const compositing::GreyMode m{opacity, blendZero != 0, false, 0};
  compositing::BlendL12Shared(src, alpha, srcWidth, srcHeight, srcLeft, srcTop, dst, dstWidth,
                              dstHeight, dstLeft, dstTop, regionWidth, regionHeight, m, twoLevel,
                              __func__);
}

void AlphaBlendL12ToL12(unsigned short *src, unsigned int srcWidth, unsigned int srcHeight,
                        unsigned int srcLeft, unsigned int srcTop, unsigned char *alpha,
                        unsigned int alphaWidth, unsigned int alphaHeight, unsigned int alphaLeft,
                        unsigned int alphaTop, unsigned short *dst, unsigned int dstWidth,
                        unsigned int dstHeight, unsigned int dstLeft, unsigned int dstTop,
                        unsigned char opacity, unsigned char blendZero, bool twoLevel,
                        unsigned int regionWidth, unsigned int regionHeight, bool /*exact*/) {
  const compositing::GreyMode m{opacity, blendZero != 0, false, 0};
  compositing::BlendL12Own(src, srcWidth, srcHeight, srcLeft, srcTop, alpha, alphaWidth,
                           alphaHeight, alphaLeft, alphaTop, dst, dstWidth, dstHeight, dstLeft,
                           dstTop, regionWidth, regionHeight, m, twoLevel, __func__);
}

void AlphaBlendL12ToL12FlatAlpha(unsigned short *src, unsigned char *alpha, unsigned int srcWidth,
                                 unsigned int srcHeight, unsigned int srcLeft, unsigned int srcTop,
                                 unsigned short *dst, unsigned int dstWidth, unsigned int dstHeight,
                                 unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
                                 unsigned char blendZero, bool twoLevel, unsigned int regionWidth,
                                 unsigned int regionHeight, bool /*exact*/) {
  const compositing::GreyMode m{opacity, blendZero != 0, true, 0};
  compositing::BlendL12Shared(src, alpha, srcWidth, srcHeight, srcLeft, srcTop, dst, dstWidth,
                              dstHeight, dstLeft, dstTop, regionWidth, regionHeight, m, twoLevel,
                              __func__);
}

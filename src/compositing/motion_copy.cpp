// Motion copy: a blend through an alpha buffer in a caller-chosen traversal
// order, so that a region can be moved inside one buffer.
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "Ostrel.h"
#include "compositing/grey_blend_kernels.h"
#include "compositing/trc_blend.h"
#include "compositing/word_blend_kernels.h"
#include "frame/blend.h"
#include "frame/region.h"

namespace ostrel {
namespace compositing {
namespace {

using frame::blend::ExactChannel;
using frame::blend::ExactPixel;
using frame::blend::ExactWeight;

// Visits the clipped region in the order of mode and sets each destination
// pixel to pixel(d, s, alpha byte). rowKernel, when given, may take a whole
// row instead: it runs only where the destination row shares no memory with
// the source and alpha rows (or is the source row itself, which a blend of
// each pixel with itself leaves order-free), so the order inside the row
// cannot change the result.
template <class P, class PixelFn, class RowFn = std::nullptr_t>
void MotionCopy(P *src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcLeft,
                unsigned int srcTop, unsigned char *alpha, unsigned int alphaWidth,
                unsigned int alphaHeight, unsigned int alphaLeft, unsigned int alphaTop, P *dst,
                unsigned int dstWidth, unsigned int dstHeight, unsigned int dstLeft,
                unsigned int dstTop, unsigned int regionWidth, unsigned int regionHeight,
                _EMotionCopyMode mode, const char *function, PixelFn &&pixel,
                RowFn &&rowKernel = nullptr) {
  // Unlike the other blends, a corner outside its buffer ends the call.
  if (dstLeft >= dstWidth || dstTop >= dstHeight || srcLeft >= srcWidth || srcTop >= srcHeight) {
    return;
  }
  const auto s = frame::MakePlane(src, srcWidth, srcHeight, srcLeft, srcTop, "src");
  const auto a = frame::MakePlane(alpha, alphaWidth, alphaHeight, alphaLeft, alphaTop, "alpha");
  const auto d = frame::MakePlane(dst, dstWidth, dstHeight, dstLeft, dstTop, "dst");
  const frame::Extent e = frame::ClipPair(s, d, regionWidth, regionHeight, function);
  const auto order = static_cast<std::uint32_t>(mode);
  if (order > 3 || e.rows == 0) return;
  OSTREL_EXPECT(function, "alpha", static_cast<const void *>(alpha), alpha != nullptr, "not null");
  frame::ExpectHolds(a, e, function);
  const bool upward = (order & 1u) != 0, leftward = (order & 2u) != 0;
  for (std::uint32_t k = 0; k < e.rows; ++k) {
    const std::uint32_t j = upward ? e.rows - 1 - k : k;
    const P *in = s.Row(j);
    const unsigned char *cover = a.Row(j);
    P *out = d.Row(j);
    if constexpr (!std::is_same<std::decay_t<RowFn>, std::nullptr_t>::value) {
      if (frame::ReadableAhead(out, e.columns, in) &&
          frame::Disjoint(out, e.columns, cover, e.columns)) {
        rowKernel(out, in, cover, e.columns);
        continue;
      }
    }
    for (std::uint32_t m = 0; m < e.columns; ++m) {
      const std::uint32_t i = leftward ? e.columns - 1 - m : m;
      out[i] = pixel(out[i], in[i], cover[i]);
    }
  }
}

// Grey pixels: the exact blend, then with twoLevel a nonzero result goes to
// full scale.
template <class P>
struct GreyPixel {
  std::uint32_t opacity;
  std::uint32_t full;  // 0: no two-level forcing
  P operator()(P d, P s, unsigned char a) const {
    const P r = static_cast<P>(ExactChannel(d, s, ExactWeight(a, opacity)));
    return full != 0 && r != 0 ? static_cast<P>(full) : r;
  }
};

}  // namespace
}  // namespace compositing
}  // namespace ostrel

namespace compositing = ostrel::compositing;

// Rows that do not alias run the grey row kernels.
void MotionCopyL08ToL08(unsigned char *src, unsigned int srcWidth, unsigned int srcHeight,
                        unsigned int srcLeft, unsigned int srcTop, unsigned char *alpha,
                        unsigned int alphaWidth, unsigned int alphaHeight, unsigned int alphaLeft,
                        unsigned int alphaTop, unsigned char *dst, unsigned int dstWidth,
                        unsigned int dstHeight, unsigned int dstLeft, unsigned int dstTop,
                        unsigned char opacity, bool twoLevel, unsigned int regionWidth,
                        unsigned int regionHeight, _EMotionCopyMode mode, bool /*exact*/) {
  const compositing::GreyBlendKernels &kernels = compositing::ActiveGreyBlendKernels();
  const compositing::GreyRowKernel kernel =
      twoLevel ? kernels.greysByAlphaTwoLevel
               : kernels.greysByAlpha[static_cast<int>(ostrel::frame::blend::Form::kExact)];
  compositing::GreyBlend blend;
  blend.opacity = opacity;
  compositing::MotionCopy(src, srcWidth, srcHeight, srcLeft, srcTop, alpha, alphaWidth, alphaHeight,
                          alphaLeft, alphaTop, dst, dstWidth, dstHeight, dstLeft, dstTop,
                          regionWidth, regionHeight, mode, __func__,
                          compositing::GreyPixel<unsigned char>{opacity, twoLevel ? 255u : 0u},
                          [&](unsigned char *out, const unsigned char *in,
                              const unsigned char *cover, std::uint32_t n) {
                            compositing::GreyRow row{out, n};
                            row.src = in;
                            row.alpha = cover;
                            kernel(row, blend);
                          });
}

// Rows that do not alias run the word row kernels.
void MotionCopyL12ToL12(unsigned short *src, unsigned int srcWidth, unsigned int srcHeight,
                        unsigned int srcLeft, unsigned int srcTop, unsigned char *alpha,
                        unsigned int alphaWidth, unsigned int alphaHeight, unsigned int alphaLeft,
                        unsigned int alphaTop, unsigned short *dst, unsigned int dstWidth,
                        unsigned int dstHeight, unsigned int dstLeft, unsigned int dstTop,
                        unsigned char opacity, bool twoLevel, unsigned int regionWidth,
                        unsigned int regionHeight, _EMotionCopyMode mode, bool /*exact*/) {
  const compositing::WordRowKernel kernel =
      compositing::ActiveWordBlendKernels()
          .towardSource[compositing::kWordByAlpha][false][false]
                       [twoLevel ? compositing::kWordTwoLevel : compositing::kWordPlain];
  compositing::WordBlend blend;
  blend.opacity = opacity;
  compositing::MotionCopy(src, srcWidth, srcHeight, srcLeft, srcTop, alpha, alphaWidth, alphaHeight,
                          alphaLeft, alphaTop, dst, dstWidth, dstHeight, dstLeft, dstTop,
                          regionWidth, regionHeight, mode, __func__,
                          compositing::GreyPixel<unsigned short>{opacity, twoLevel ? 4095u : 0u},
                          [&](unsigned short *out, const unsigned short *in,
                              const unsigned char *cover, std::uint32_t n) {
                            compositing::WordRow row{out, n};
                            row.src = in;
                            row.alpha = cover;
                            kernel(row, blend);
                          });
}

// Rows that do not alias run the colour blend's kernel
// for source pixels weighted by alpha bytes, exact form.
void MotionCopyTRCWithAlphaBufferToTRC(
    unsigned int *src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcLeft,
    unsigned int srcTop, unsigned char *alpha, unsigned int alphaWidth, unsigned int alphaHeight,
    unsigned int alphaLeft, unsigned int alphaTop, unsigned int *dst, unsigned int dstWidth,
    unsigned int dstHeight, unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
    unsigned int regionWidth, unsigned int regionHeight, _EMotionCopyMode mode, bool /*exact*/) {
  compositing::MotionCopy(
      src, srcWidth, srcHeight, srcLeft, srcTop, alpha, alphaWidth, alphaHeight, alphaLeft,
      alphaTop, dst, dstWidth, dstHeight, dstLeft, dstTop, regionWidth, regionHeight, mode,
      __func__,
      [opacity](unsigned int d, unsigned int s, unsigned char a) {
        return compositing::ExactPixel(d, s, compositing::ExactWeight(a, opacity));
      },
      [kernel = compositing::ActiveTrcBlendKernels().pixelsByBytes[compositing::FormIndex(true)],
       opacity](unsigned int *out, const unsigned int *in, const unsigned char *cover,
                std::uint32_t n) {
        compositing::TrcRow row{out, n};
        row.pixels = in;
        row.bytes = cover;
        kernel(row, compositing::PaintBlend(0, opacity));
      });
}

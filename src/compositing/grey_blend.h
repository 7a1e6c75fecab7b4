// What the grey compositing files share beyond the row kernels.
#ifndef OSTREL_COMPOSITING_GREY_BLEND_H
#define OSTREL_COMPOSITING_GREY_BLEND_H

#include "compositing/grey_blend_kernels.h"
#include "frame/region.h"

namespace ostrel {
namespace compositing {

// Every pixel of the region (clipped against source and destination) moves
// toward its source byte by W = (alpha * opacity) / 255, exact form; with
// twoLevel a result that is not 0 becomes 255. The alpha plane, never null,
// takes no part in clipping. function names the exported function for the
// checked build's reports.
void BlendGreysThroughAlpha(const frame::Plane<unsigned char> &src,
                            const frame::Plane<unsigned char> &alpha,
                            const frame::Plane<unsigned char> &dst, unsigned int regionWidth,
                            unsigned int regionHeight, unsigned char opacity, bool twoLevel,
                            const char *function);

// Calls pixel(source value, destination pixel reference) for each pixel of
// the clipped two-buffer region, rows top to bottom, pixels left to right.
// covPrefix names the coverage buffer's arguments ("alpha", "src", ...).
template <class Cov, class Dst, class PixelFn>
inline void ForEachPixelPair(Cov *coverage, unsigned int covWidth, unsigned int covHeight,
                             unsigned int covLeft, unsigned int covTop, const char *covPrefix,
                             Dst *dst, unsigned int dstWidth, unsigned int dstHeight,
                             unsigned int dstLeft, unsigned int dstTop, unsigned int regionWidth,
                             unsigned int regionHeight, const char *function, PixelFn &&pixel) {
  const auto c = frame::MakePlane(coverage, covWidth, covHeight, covLeft, covTop, covPrefix);
  const auto d = frame::MakePlane(dst, dstWidth, dstHeight, dstLeft, dstTop, "dst");
  const frame::Extent e = frame::ClipPair(c, d, regionWidth, regionHeight, function);
  frame::ForEachRowPair(c, d, e, [&](Cov *cov, Dst *out, std::uint32_t n) {
    for (std::uint32_t i = 0; i < n; ++i) pixel(cov[i], out[i]);
  });
}

}  // namespace compositing
}  // namespace ostrel

#endif  // OSTREL_COMPOSITING_GREY_BLEND_H

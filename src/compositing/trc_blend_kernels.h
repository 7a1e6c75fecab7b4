// Row kernels of the blends into 32-bit colour (TRC) pixels.
//
// The colour-to-colour, grey-to-colour and solid-colour families all move the
// blue, green and red bytes of destination pixels toward a target colour by a
// per-pixel weight (frame/blend.h). They differ in where the target colour
// and the coverage of a pixel come from, and in what happens to the alpha
// byte. Each such combination is one kernel here, with a scalar definition
// (trc_blend_scalar.cpp) that the vector versions match bit for bit.
#ifndef OSTREL_COMPOSITING_TRC_BLEND_KERNELS_H
#define OSTREL_COMPOSITING_TRC_BLEND_KERNELS_H

#include <cstddef>
#include <cstdint>
#include <tuple>

#include "compositing/row_streams.h"
#include "frame/dispatch.h"

namespace ostrel {
namespace compositing {

// One row of a blend: n destination pixels and, depending on the kernel,
// the source row it reads (pixel i of each pairs with dst[i]).
struct TrcRow {
  std::uint32_t *dst;
  std::size_t n;
  const std::uint32_t *pixels = nullptr;  // source colour pixels
  const std::uint8_t *bytes = nullptr;    // coverage bytes: mask, grey or alpha buffer
  const std::uint8_t *greys = nullptr;    // grey target colours (g, g, g)
  const std::uint16_t *words = nullptr;   // 16-bit coverage words

  // Its buffers, the written one first (compositing/row_streams.h).
  static constexpr auto Streams() {
    return std::make_tuple(&TrcRow::dst, &TrcRow::pixels, &TrcRow::bytes, &TrcRow::greys,
                           &TrcRow::words);
  }
  static constexpr std::size_t kWrittenStreams = 1;
};

// What stays the same for every row of a call.
struct TrcBlend {
  std::uint32_t colour = 0;      // target colour (its top byte: see the kernel)
  std::uint32_t background = 0;  // colourOnBackground only
  std::uint32_t opacity = 0;     // 0..255
  std::uint32_t weight = 0;      // the ...ByWeight kernels: the weight itself
  std::uint32_t to = 0;          // the recolouring: colour is what it moves from, to where to
  std::uint32_t tolerance = 0;   // the recolouring: the largest |offset| of a channel it moves
};

using TrcRowKernel = void (*)(const TrcRow &row, const TrcBlend &blend);

// Kernels with both forms are indexed by frame::blend::Form (0 exact, 1 fast).
// "c" is a pixel's coverage, o the opacity, W the exact and w the fast weight;
// unless a kernel says otherwise, the destination's alpha byte is kept.
struct TrcBlendKernels {
  TrcRowKernel pixelsByAlpha[2];    // toward pixels[i]; c = its alpha byte
  TrcRowKernel pixelsByWeight[2];   // toward pixels[i]; the weight is blend.weight
  TrcRowKernel pixelsByBytes[2];    // toward pixels[i]; c = bytes[i]
  TrcRowKernel colourByBytes[2];    // toward colour; c = bytes[i]
  TrcRowKernel colourByInverse[2];  // toward colour; c = 255 - bytes[i]
  TrcRowKernel colourByWords[2];    // toward colour; c = words[i] / 255 (exact), >> 8 (fast)
  TrcRowKernel colourByWeight[2];   // toward colour; the weight is blend.weight
  TrcRowKernel colourByFlag;        // toward colour; c = 255 where bytes[i] != 0, else 0
  TrcRowKernel colourByBlue;        // toward colour; c = blue byte of pixels[i]
  TrcRowKernel colourByBlueFlag;    // toward colour; c = 255 where that blue byte != 0
  TrcRowKernel colourScaledByBlue;  // b = blue byte of pixels[i]; where b != 0 each channel
                                    // becomes (b * k) / 255
  TrcRowKernel colourErasingAlpha;  // as colourByBytes (exact); alpha byte 0 where bytes[i] != 0
  TrcRowKernel quickMask;           // bytes[i] == 0: the pixel becomes colour, all 32 bits;
                                    // else toward colour with c = 255 - bytes[i]
  TrcRowKernel greysByBytes;        // toward (g, g, g) with g = greys[i]; c = bytes[i]
  TrcRowKernel colourOnBackground;  // m = bytes[i]: m == 0 leaves the pixel; else toward
                                    // t = background moved toward colour by weight m, by
                                    // weight o
  TrcRowKernel alphaByBytes;        // the alpha byte only, toward colour >> 24; c = bytes[i]
  // Darken ([0]) and lighten ([1]): toward t, each of blue, green and red of t
  // the minimum or maximum of that channel of pixels[i] and dst[i]; the
  // source's alpha byte plays no part. c = bytes[i], or the weight is
  // blend.weight. [lighter][form].
  TrcRowKernel extremeByBytes[2][2];
  TrcRowKernel extremeByWeight[2][2];
  // The recolouring: with e each channel's offset from blend.colour (blue,
  // green, red), a pixel whose every |e| is at most blend.tolerance moves
  // toward t, each channel of t clamp(that channel of blend.to + e, 0, 255);
  // other pixels are left. c = bytes[i], or the weight is blend.weight.
  TrcRowKernel recolourByBytes[2];
  TrcRowKernel recolourByWeight[2];
};

OSTREL_KERNEL_FAMILY(TrcBlendKernels)

// The scalar table where a row's destination shares memory with its source
// pixels (other than being them), coverage bytes, greys or words, so that the
// pixel-by-pixel order of the rule decides the result (the vector kernels
// read a whole step before storing it), and for rows of a few pixels; the
// active table otherwise.
const TrcBlendKernels &TrcKernelsForRow(const TrcRow &row);

}  // namespace compositing
}  // namespace ostrel

#endif  // OSTREL_COMPOSITING_TRC_BLEND_KERNELS_H

// Row kernels of the grey compositing functions (8-bit destinations).
//
// The density blends, the grey-to-grey blend through an alpha buffer, the
// alpha multiplication, the lookup table and the grey tone operations (tone
// curves, luminance, darken and lighten, the ink move) each run their inner
// loops through these kernels. The scalar definitions (grey_blend_scalar.cpp) read
// like the rule; the vector versions match them bit for bit.
#ifndef OSTREL_COMPOSITING_GREY_BLEND_KERNELS_H
#define OSTREL_COMPOSITING_GREY_BLEND_KERNELS_H

#include <cstddef>
#include <cstdint>
#include <tuple>

#include "compositing/row_streams.h"
#include "frame/blend.h"
#include "frame/dispatch.h"

namespace ostrel {
namespace compositing {

// One row: n destination bytes and, depending on the kernel, the source
// bytes and the coverage bytes that pair with them.
struct GreyRow {
  std::uint8_t *dst;
  std::size_t n;
  const std::uint8_t *src = nullptr;      // source grey values
  const std::uint8_t *alpha = nullptr;    // coverage bytes
  const std::uint32_t *pixels = nullptr;  // source TRC pixels (the luminance split)
  std::uint8_t *second = nullptr;         // a second row written: the ink move's source,
                                          // the luminance split's alpha bytes

  // Its buffers, the two written ones first (compositing/row_streams.h).
  static constexpr auto Streams() {
    return std::make_tuple(&GreyRow::dst, &GreyRow::second, &GreyRow::src, &GreyRow::alpha,
                           &GreyRow::pixels);
  }
  static constexpr std::size_t kWrittenStreams = 2;
};

// What stays the same for every row of a call.
struct GreyBlend {
  std::uint32_t density = 0;            // target grey of the density kernels
  std::uint32_t opacity = 0;            // 0..255
  const std::uint8_t *table = nullptr;  // 256 entries, for the lookup kernel
};

using GreyRowKernel = void (*)(const GreyRow &row, const GreyBlend &blend);

// Kernels with both forms are indexed by frame::blend::Form (0 exact, 1 fast). c is
// a pixel's coverage, o the opacity; "alpha null: 255" marks the kernels that
// take a null alpha row as full coverage.
struct GreyBlendKernels {
  GreyRowKernel densityByAlpha[2];     // toward density; c = alpha[i]
  GreyRowKernel densityByInverse[2];   // toward density; c = 255 - alpha[i]
  GreyRowKernel greysByAlpha[2];       // toward src[i]; c = alpha[i], alpha null: 255
  GreyRowKernel greysByAlphaTwoLevel;  // greysByAlpha exact, then a result not 0 becomes 255
  GreyRowKernel darker[2];             // toward min(src[i], dst[i]); c as greysByAlpha
  GreyRowKernel lighter[2];            // toward max(src[i], dst[i]); c as greysByAlpha
  // d scaled by the coverage: exact d * ((c * o) / 255) / 255, where c is
  // alpha[i]; fast (d * w) >> 8 with w = c at opacity 255, else (c * o) >> 8.
  GreyRowKernel applyAlpha[2];
  GreyRowKernel lookup;  // d = table[d]
  // The ink move from second[i] to dst[i]: m = min((second[i] * o) / 255,
  // 255 - dst[i]) is added to dst[i] and taken from second[i], except where
  // alpha[i] (the protection byte; null: none) is not 0.
  GreyRowKernel moveInk;
  // TRC pixels[i] split into the luminance (77 red + 150 green + 29 blue +
  // 128) >> 8, stored in dst[i], and the alpha byte, stored in second[i].
  GreyRowKernel splitLuminance;
};

OSTREL_KERNEL_FAMILY(GreyBlendKernels)

// The lookup kernel of the scalar and SSE2 tables: bytes are looked up one at
// a time (SSE2 has no byte-wide table lookup to do better). The AVX2 and NEON
// tables look rows up 32 or 16 bytes at a time from kLookupVectorFrom bytes on
// and pass shorter rows to LookupRow (measured on x86: below it the vector
// form costs more than it saves), so a caller whose rows are all shorter may
// call LookupRow itself.
void LookupRow(const GreyRow &row, const GreyBlend &blend);
constexpr std::size_t kLookupVectorFrom = 40;

// The scalar entries of the tone operations' kernels are their row functions,
// defined with them (tone.cpp): darken (lighter false) and lighten, the ink
// move and the luminance split.
template <frame::blend::Form form, bool lighter>
void ExtremeBytesRow(const GreyRow &row, const GreyBlend &blend);
void MoveInkRow(const GreyRow &row, const GreyBlend &blend);
void SplitLuminanceRow(const GreyRow &row, const GreyBlend &blend);

}  // namespace compositing
}  // namespace ostrel

#endif  // OSTREL_COMPOSITING_GREY_BLEND_KERNELS_H

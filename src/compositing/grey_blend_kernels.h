// Row kernels of the grey compositing functions (8-bit destinations).
//
// The density blends, the grey-to-grey blend through an alpha buffer, the
// alpha multiplication and the lookup table each run their inner loop through
// one of these kernels. The scalar definitions (grey_blend_scalar.cpp) read
// like the rule; the SSE2 and AVX2 versions match them bit for bit.
#ifndef OSTREL_COMPOSITING_GREY_BLEND_KERNELS_H
#define OSTREL_COMPOSITING_GREY_BLEND_KERNELS_H

#include <cstddef>
#include <cstdint>

#include "frame/dispatch.h"

namespace ostrel {
namespace compositing {

// One row: n destination bytes and, depending on the kernel, the source
// bytes and the coverage bytes that pair with them.
struct GreyRow {
  std::uint8_t *dst;
  std::size_t n;
  const std::uint8_t *src = nullptr;    // source grey values
  const std::uint8_t *alpha = nullptr;  // coverage bytes

  GreyRow From(std::size_t i) const {
    GreyRow r = *this;
    r.dst += i;
    r.n -= i;
    if (src) r.src += i;
    if (alpha) r.alpha += i;
    return r;
  }
};

// What stays the same for every row of a call.
struct GreyBlend {
  std::uint32_t density = 0;            // target grey of the density kernels
  std::uint32_t opacity = 0;            // 0..255
  const std::uint8_t *table = nullptr;  // 256 entries, for the lookup kernel
};

using GreyRowKernel = void (*)(const GreyRow &row, const GreyBlend &blend);

// Kernels with both forms are indexed by frame::blend::Form (0 exact, 1 fast). c is
// a pixel's coverage, o the opacity.
struct GreyBlendKernels {
  GreyRowKernel densityByAlpha[2];     // toward density; c = alpha[i]
  GreyRowKernel densityByInverse[2];   // toward density; c = 255 - alpha[i]
  GreyRowKernel greysByAlpha;          // toward src[i]; c = alpha[i]; exact form
  GreyRowKernel greysByAlphaTwoLevel;  // as greysByAlpha, then a result not 0 becomes 255
  // d scaled by the coverage: exact d * ((c * o) / 255) / 255, where c is
  // alpha[i]; fast (d * w) >> 8 with w = c at opacity 255, else (c * o) >> 8.
  GreyRowKernel applyAlpha[2];
  GreyRowKernel lookup;  // d = table[d]
};

OSTREL_KERNEL_FAMILY(GreyBlendKernels)

// The lookup kernel of the scalar and SSE2 tables: bytes are looked up one at
// a time (SSE2 has no byte-wide table lookup to do better). The AVX2 table
// looks rows up 32 bytes at a time from kLookupVectorFrom bytes on and passes
// shorter rows to LookupRow (measured: below it the vector form costs more than
// it saves), so a caller whose rows are all shorter may call LookupRow itself.
void LookupRow(const GreyRow &row, const GreyBlend &blend);
constexpr std::size_t kLookupVectorFrom = 40;

}  // namespace compositing
}  // namespace ostrel

#endif  // OSTREL_COMPOSITING_GREY_BLEND_KERNELS_H

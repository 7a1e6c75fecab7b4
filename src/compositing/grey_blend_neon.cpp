// Grey compositing into 8-bit destinations with NEON.
#include <cstdint>

#include "compositing/grey_blend_kernels.h"
#include "compositing/grey_blend_simd.inl"
#include "compositing/simd_neon.h"
#include "frame/blend.h"

namespace ostrel {
namespace compositing {
namespace {

// The 256-entry table as four registers of 64 entries each.
struct LookupTable {
  uint8x16x4_t quarter[4];
};

// table[x] for 16 bytes x: the first quarter looks up the bytes below 64
// (the others give 0), and each further quarter replaces the bytes 64 above
// its start that it holds (an index past 63 leaves the byte as it is).
inline uint8x16_t LookupBytes(const LookupTable &t, uint8x16_t x) {
  const uint8x16_t step = vdupq_n_u8(64);
  uint8x16_t out = vqtbl4q_u8(t.quarter[0], x);
  x = vsubq_u8(x, step);
  out = vqtbx4q_u8(out, t.quarter[1], x);
  x = vsubq_u8(x, step);
  out = vqtbx4q_u8(out, t.quarter[2], x);
  x = vsubq_u8(x, step);
  return vqtbx4q_u8(out, t.quarter[3], x);
}

// A row of at least 16 bytes, apart from the table (LookupRowBy sends it rows
// from kLookupVectorFrom bytes on, a length measured on x86 and kept here).
void LookupLongRow(std::uint8_t *dst, std::size_t n, const std::uint8_t *table) {
  LookupTable t;
  for (int q = 0; q < 4; ++q) t.quarter[q] = vld1q_u8_x4(table + 64 * q);
  RunSteps<16>(
      n, [&](std::size_t i) { return vld1q_u8(dst + i); },
      [&](std::size_t i, uint8x16_t x) { vst1q_u8(dst + i, LookupBytes(t, x)); });
}

}  // namespace

constexpr GreyBlendKernels GreyBlendKernelsNeon =
    MakeGreyBlendKernels<Neon, void>(LookupRowBy<LookupLongRow>);

}  // namespace compositing
}  // namespace ostrel

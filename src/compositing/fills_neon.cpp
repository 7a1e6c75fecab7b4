// Fills and copies with NEON.
#include <arm_neon.h>

#include "compositing/fills_kernels.h"

namespace ostrel {
namespace compositing {
namespace {

void Fill(std::uint32_t *row, std::size_t n, std::uint32_t colour) {
  const uint32x4_t v = vdupq_n_u32(colour);
  const uint32x4x4_t four = {{v, v, v, v}};
  std::size_t i = 0;
  for (; i + 16 <= n; i += 16) vst1q_u32_x4(row + i, four);
  for (; i + 4 <= n; i += 4) vst1q_u32(row + i, v);
  for (; i < n; ++i) row[i] = colour;
}

void CopyIfNotKey(const std::uint32_t *src, std::uint32_t *dst, std::size_t n, std::uint32_t key) {
  const uint32x4_t k = vdupq_n_u32(key);
  std::size_t i = 0;
  for (; i + 4 <= n; i += 4) {
    const uint32x4_t s = vld1q_u32(src + i);
    vst1q_u32(dst + i, vbslq_u32(vceqq_u32(s, k), vld1q_u32(dst + i), s));
  }
  FillKernelsScalar.copyIfNotKey(src + i, dst + i, n - i, key);
}

// Sixteen pixels at a time: the load parts the four bytes of each pixel
// into four registers, and the store interleaves the first three again.
void Pack24(const std::uint32_t *src, std::uint8_t *dst, std::size_t n) {
  std::size_t i = 0;
  for (; i + 16 <= n; i += 16, dst += 48) {
    const uint8x16x4_t bytes = vld4q_u8(reinterpret_cast<const std::uint8_t *>(src + i));
    const uint8x16x3_t three = {{bytes.val[0], bytes.val[1], bytes.val[2]}};
    vst3q_u8(dst, three);
  }
  FillKernelsScalar.pack24(src + i, dst, n - i);
}

}  // namespace

const FillKernels FillKernelsNeon = {Fill, CopyIfNotKey, Pack24};

}  // namespace compositing
}  // namespace ostrel

// Fills and copies: the portable definitions.
#include "compositing/fills_kernels.h"

namespace ostrel {
namespace compositing {
namespace {

void Fill(std::uint32_t *row, std::size_t n, std::uint32_t colour) {
  for (std::size_t i = 0; i < n; ++i) row[i] = colour;
}

void CopyIfNotKey(const std::uint32_t *src, std::uint32_t *dst, std::size_t n, std::uint32_t key) {
  for (std::size_t i = 0; i < n; ++i) {
    if (src[i] != key) dst[i] = src[i];
  }
}

void Pack24(const std::uint32_t *src, std::uint8_t *dst, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) {
    dst[3 * i + 0] = static_cast<std::uint8_t>(src[i]);
    dst[3 * i + 1] = static_cast<std::uint8_t>(src[i] >> 8);
    dst[3 * i + 2] = static_cast<std::uint8_t>(src[i] >> 16);
  }
}

}  // namespace

const FillKernels FillKernelsScalar = {Fill, CopyIfNotKey, Pack24};

}  // namespace compositing
}  // namespace ostrel

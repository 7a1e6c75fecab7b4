// Row kernels of the colour fills and copies.
#ifndef OSTREL_COMPOSITING_FILLS_KERNELS_H
#define OSTREL_COMPOSITING_FILLS_KERNELS_H

#include <cstddef>
#include <cstdint>

#include "frame/dispatch.h"

namespace ostrel {
namespace compositing {

struct FillKernels {
  // Stores colour into row[0 .. n).
  void (*fill)(std::uint32_t *row, std::size_t n, std::uint32_t colour);
  // For i in [0, n): dst[i] = src[i] unless src[i] == key (all 32 bits).
  void (*copyIfNotKey)(const std::uint32_t *src, std::uint32_t *dst, std::size_t n,
                       std::uint32_t key);
  // Writes bytes 0, 1, 2 of each of src[0 .. n) as 3n consecutive bytes.
  void (*pack24)(const std::uint32_t *src, std::uint8_t *dst, std::size_t n);
};

OSTREL_KERNEL_FAMILY(FillKernels)

}  // namespace compositing
}  // namespace ostrel

#endif  // OSTREL_COMPOSITING_FILLS_KERNELS_H

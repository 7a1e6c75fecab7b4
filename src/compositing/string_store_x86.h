// The processor's string store, for long fills on x86.
//
// Once a fill outgrows the caches, "rep stos" (which the processor runs as a
// fast-string operation) writes memory faster than a loop of vector stores;
// in cache the vector loop is as fast. The fill kernels switch at
// kStringStoreMinPixels.
#ifndef OSTREL_COMPOSITING_STRING_STORE_X86_H
#define OSTREL_COMPOSITING_STRING_STORE_X86_H

#include <cstddef>
#include <cstdint>

#if defined(_MSC_VER)
#include <intrin.h>
#endif

namespace ostrel {
namespace compositing {

const std::size_t kStringStoreMinPixels = 512;  // 2 KiB

// Stores colour into row[0 .. n).
inline void StringStore32(std::uint32_t *row, std::size_t n, std::uint32_t colour) {
#if defined(_MSC_VER)
  __stosd(reinterpret_cast<unsigned long *>(row), colour, n);
#else
  __asm__ volatile("rep stosl" : "+D"(row), "+c"(n) : "a"(colour) : "memory");
#endif
}

}  // namespace compositing
}  // namespace ostrel

#endif  // OSTREL_COMPOSITING_STRING_STORE_X86_H

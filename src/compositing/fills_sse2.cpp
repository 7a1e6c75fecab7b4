// Fills and copies with SSE2.
#include <emmintrin.h>

#include <cstring>

#include "compositing/fills_kernels.h"
#include "compositing/string_store_x86.h"

namespace ostrel {
namespace compositing {
namespace {

void Fill(std::uint32_t *row, std::size_t n, std::uint32_t colour) {
  if (n >= kStringStoreMinPixels) {
    StringStore32(row, n, colour);
    return;
  }
  std::size_t i = 0;
  // Single pixels up to a 16-byte boundary, then whole vectors.
  while (i < n && (reinterpret_cast<std::uintptr_t>(row + i) & 15u) != 0) row[i++] = colour;
  const __m128i v = _mm_set1_epi32(static_cast<int>(colour));
  for (; i + 16 <= n; i += 16) {
    _mm_storeu_si128(reinterpret_cast<__m128i *>(row + i), v);
    _mm_storeu_si128(reinterpret_cast<__m128i *>(row + i + 4), v);
    _mm_storeu_si128(reinterpret_cast<__m128i *>(row + i + 8), v);
    _mm_storeu_si128(reinterpret_cast<__m128i *>(row + i + 12), v);
  }
  for (; i + 4 <= n; i += 4) _mm_storeu_si128(reinterpret_cast<__m128i *>(row + i), v);
  for (; i < n; ++i) row[i] = colour;
}

void CopyIfNotKey(const std::uint32_t *src, std::uint32_t *dst, std::size_t n, std::uint32_t key) {
  const __m128i k = _mm_set1_epi32(static_cast<int>(key));
  std::size_t i = 0;
  for (; i + 4 <= n; i += 4) {
    const __m128i s = _mm_loadu_si128(reinterpret_cast<const __m128i *>(src + i));
    const __m128i d = _mm_loadu_si128(reinterpret_cast<const __m128i *>(dst + i));
    const __m128i isKey = _mm_cmpeq_epi32(s, k);
    const __m128i out = _mm_or_si128(_mm_and_si128(isKey, d), _mm_andnot_si128(isKey, s));
    _mm_storeu_si128(reinterpret_cast<__m128i *>(dst + i), out);
  }
  FillKernelsScalar.copyIfNotKey(src + i, dst + i, n - i, key);
}

// Four pixels become three little-endian words: no byte-by-byte stores.
void Pack24(const std::uint32_t *src, std::uint8_t *dst, std::size_t n) {
  std::size_t i = 0;
  for (; i + 4 <= n; i += 4, dst += 12) {
    const std::uint32_t p0 = src[i], p1 = src[i + 1], p2 = src[i + 2], p3 = src[i + 3];
    const std::uint32_t words[3] = {(p0 & 0x00FFFFFFu) | (p1 << 24),
                                    ((p1 >> 8) & 0x0000FFFFu) | (p2 << 16),
                                    ((p2 >> 16) & 0x000000FFu) | (p3 << 8)};
    std::memcpy(dst, words, sizeof words);
  }
  FillKernelsScalar.pack24(src + i, dst, n - i);
}

}  // namespace

const FillKernels FillKernelsSse2 = {Fill, CopyIfNotKey, Pack24};

}  // namespace compositing
}  // namespace ostrel

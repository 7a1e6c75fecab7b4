// Fills and copies with AVX2.
#include <immintrin.h>

#include "compositing/fills_kernels.h"
#include "compositing/string_store_x86.h"

namespace ostrel {
namespace compositing {
namespace {

OSTREL_TARGET_AVX2 void Fill(std::uint32_t *row, std::size_t n, std::uint32_t colour) {
  if (n >= kStringStoreMinPixels) {
    StringStore32(row, n, colour);
    return;
  }
  std::size_t i = 0;
  while (i < n && (reinterpret_cast<std::uintptr_t>(row + i) & 31u) != 0) row[i++] = colour;
  const __m256i v = _mm256_set1_epi32(static_cast<int>(colour));
  for (; i + 32 <= n; i += 32) {
    _mm256_storeu_si256(reinterpret_cast<__m256i *>(row + i), v);
    _mm256_storeu_si256(reinterpret_cast<__m256i *>(row + i + 8), v);
    _mm256_storeu_si256(reinterpret_cast<__m256i *>(row + i + 16), v);
    _mm256_storeu_si256(reinterpret_cast<__m256i *>(row + i + 24), v);
  }
  for (; i + 8 <= n; i += 8) _mm256_storeu_si256(reinterpret_cast<__m256i *>(row + i), v);
  for (; i < n; ++i) row[i] = colour;
}

OSTREL_TARGET_AVX2 void CopyIfNotKey(const std::uint32_t *src, std::uint32_t *dst, std::size_t n,
                                     std::uint32_t key) {
  const __m256i k = _mm256_set1_epi32(static_cast<int>(key));
  std::size_t i = 0;
  for (; i + 8 <= n; i += 8) {
    const __m256i s = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(src + i));
    const __m256i d = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(dst + i));
    const __m256i isKey = _mm256_cmpeq_epi32(s, k);
    _mm256_storeu_si256(reinterpret_cast<__m256i *>(dst + i), _mm256_blendv_epi8(s, d, isKey));
  }
  FillKernelsScalar.copyIfNotKey(src + i, dst + i, n - i, key);
}

// Eight pixels per step: drop the alpha byte within each 128-bit lane, then
// close the gap between the lanes, and store the 24 bytes.
OSTREL_TARGET_AVX2 void Pack24(const std::uint32_t *src, std::uint8_t *dst, std::size_t n) {
  const __m256i dropAlpha =
      _mm256_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1, 0, 1, 2, 4, 5, 6, 8,
                       9, 10, 12, 13, 14, -1, -1, -1, -1);
  const __m256i joinLanes = _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 7);
  std::size_t i = 0;
  for (; i + 8 <= n; i += 8, dst += 24) {
    const __m256i p = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(src + i));
    const __m256i packed =
        _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(p, dropAlpha), joinLanes);
    _mm_storeu_si128(reinterpret_cast<__m128i *>(dst), _mm256_castsi256_si128(packed));
    _mm_storel_epi64(reinterpret_cast<__m128i *>(dst + 16), _mm256_extracti128_si256(packed, 1));
  }
  FillKernelsScalar.pack24(src + i, dst, n - i);
}

}  // namespace

const FillKernels FillKernelsAvx2 = {Fill, CopyIfNotKey, Pack24};

}  // namespace compositing
}  // namespace ostrel

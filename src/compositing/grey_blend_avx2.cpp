// Grey compositing into 8-bit destinations with AVX2.
#include <cstdint>
#include <cstring>

#include "compositing/grey_blend_kernels.h"
#include "frame/blend.h"

OSTREL_BEGIN_AVX2
#include "compositing/grey_blend_simd.inl"
#include "compositing/simd_avx2.h"
#include "compositing/simd_sse2.h"

namespace ostrel {
namespace compositing {
namespace {

// table[x] for 32 bytes x, the table given as sixteen rows of sixteen
// entries, each row in both 128-bit halves of a register (the byte shuffle
// looks up inside each half). The shuffle looks up the low nibble in a row
// and gives 0 where the index byte has bit 7 set, so with bit 7 kept in the
// index (and flipped for rows 8..15) row h and row h + 8 combine by an or;
// bits 4, 5 and 6 then choose among the eight pairs, each moved to bit 7
// where the byte blend reads it.
inline __attribute__((always_inline)) __m256i LookupBytes(const __m256i *rows, __m256i x) {
  const __m256i low = _mm256_and_si256(x, _mm256_set1_epi8(static_cast<char>(0x8F)));
  const __m256i high = _mm256_xor_si256(low, _mm256_set1_epi8(static_cast<char>(0x80)));
  __m256i pair[8];
  for (int h = 0; h < 8; ++h) {
    pair[h] =
        _mm256_or_si256(_mm256_shuffle_epi8(rows[h], low), _mm256_shuffle_epi8(rows[h + 8], high));
  }
  const __m256i bit4 = _mm256_slli_epi16(x, 3);
  for (int h = 0; h < 4; ++h) pair[h] = _mm256_blendv_epi8(pair[2 * h], pair[2 * h + 1], bit4);
  const __m256i bit5 = _mm256_slli_epi16(x, 2);
  for (int h = 0; h < 2; ++h) pair[h] = _mm256_blendv_epi8(pair[2 * h], pair[2 * h + 1], bit5);
  return _mm256_blendv_epi8(pair[0], pair[1], _mm256_slli_epi16(x, 1));
}

// A row of at least 32 bytes, apart from the table.
__attribute__((noinline)) void LookupLongRow(std::uint8_t *dst, std::size_t n,
                                             const std::uint8_t *table) {
  __m256i rows[16];
  for (int h = 0; h < 16; ++h) {
    rows[h] = _mm256_broadcastsi128_si256(
        _mm_loadu_si128(reinterpret_cast<const __m128i *>(table + 16 * h)));
  }
  // The last 32 bytes are read before any store: looked up at the end, they
  // rewrite the bytes the loop has already looked up with the same results.
  __m256i *const last = reinterpret_cast<__m256i *>(dst + n - 32);
  const __m256i lastBytes = _mm256_loadu_si256(last);
  for (std::size_t i = 0; i + 32 <= n; i += 32) {
    __m256i *const p = reinterpret_cast<__m256i *>(dst + i);
    _mm256_storeu_si256(p, LookupBytes(rows, _mm256_loadu_si256(p)));
  }
  if (n % 32 != 0) _mm256_storeu_si256(last, LookupBytes(rows, lastBytes));
}

}  // namespace

// Rows shorter than 32 bytes run the same kernels 16 bytes at a time.
constexpr GreyBlendKernels GreyBlendKernelsAvx2 =
    MakeGreyBlendKernels<Avx2, Sse2>(LookupRowBy<LookupLongRow>);

}  // namespace compositing
}  // namespace ostrel
OSTREL_END_AVX2

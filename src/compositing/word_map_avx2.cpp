// Per-pixel maps of 12-bit grey buffers with AVX2, the lookup by gathers.
#include <cstring>

#include "compositing/word_map_kernels.h"
#include "frame/blend.h"

OSTREL_BEGIN_AVX2
#include "compositing/simd_avx2.h"
#include "compositing/word_map_simd.inl"

namespace ostrel {
namespace compositing {
namespace {

constexpr std::size_t kTableWords = 65536;

// table[index] for eight 32-bit lanes of indices in 0..65535. A gather reads
// 32 bits, two table entries from the index on; at the last index that would
// read past the table, so that lane gathers from the entry before and takes
// the upper half.
__m256i LookupLanes(const std::uint16_t *table, __m256i index) {
  const __m256i from = _mm256_min_epu32(index, _mm256_set1_epi32(kTableWords - 2));
  const __m256i pair = _mm256_i32gather_epi32(reinterpret_cast<const int *>(table), from, 2);
  const __m256i shift = _mm256_slli_epi32(_mm256_sub_epi32(index, from), 4);
  return _mm256_and_si256(_mm256_srlv_epi32(pair, shift), _mm256_set1_epi32(0xFFFF));
}

void LookupWords(const WordRow &row, const WordMap &map) {
  const WordRow r = row;
  const std::uint16_t *const table = map.table;
  // The table must not be among the words written, and the steps must read
  // what the scalar loop reads.
  std::size_t i = 0;
  if (StepsReadAsScalar(r.words, 2, r.src, 2, r.n) &&
      (Address(r.words) + 2 * r.n <= Address(table) ||
       Address(table) + 2 * kTableWords <= Address(r.words))) {
    for (; i + 16 <= r.n; i += 16) {
      const __m256i v = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(r.src + i));
      const __m256i lo = LookupLanes(table, _mm256_cvtepu16_epi32(_mm256_castsi256_si128(v)));
      const __m256i hi = LookupLanes(table, _mm256_cvtepu16_epi32(_mm256_extracti128_si256(v, 1)));
      _mm256_storeu_si256(reinterpret_cast<__m256i *>(r.words + i),
                          _mm256_permute4x64_epi64(_mm256_packus_epi32(lo, hi), 0xD8));
    }
  }
  LookupWordsRow(r.From(i), map);
}

}  // namespace

constexpr WordMapKernels WordMapKernelsAvx2 = MakeWordMapKernels<Avx2>(LookupWords);

}  // namespace compositing
}  // namespace ostrel
OSTREL_END_AVX2

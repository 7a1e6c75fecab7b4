// Vector operations on eight 32-bit pixels with AVX2, under the names the
// kernel templates use (simd_sse2.h has the same names for four pixels).
// Include it only in an AVX2 kernel file, after OSTREL_BEGIN_AVX2.
#ifndef OSTREL_COMPOSITING_SIMD_AVX2_H
#define OSTREL_COMPOSITING_SIMD_AVX2_H

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

namespace ostrel {
namespace compositing {
namespace {

struct Avx2 {
  using Reg = __m256i;
  static constexpr std::size_t kPixels = 8;

  static Reg Load(const std::uint32_t *p) {
    return _mm256_loadu_si256(reinterpret_cast<const Reg *>(p));
  }
  static void Store(std::uint32_t *p, Reg v) { _mm256_storeu_si256(reinterpret_cast<Reg *>(p), v); }
  // kPixels bytes or 16-bit words, each widened to a 32-bit lane.
  static Reg BytesToLanes(const std::uint8_t *p) {
    return _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i *>(p)));
  }
  static Reg WordsToLanes(const std::uint16_t *p) {
    return _mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i *>(p)));
  }

  // Asks for the cache line holding p; never faults.
  static void Prefetch(const void *p) { _mm_prefetch(static_cast<const char *>(p), _MM_HINT_T0); }

  // Word maps.
  // Bytes widened to 16-bit lanes in order: the first and the second half of
  // a register of bytes.
  static Reg WidenBytesLo(Reg a) { return _mm256_cvtepu8_epi16(_mm256_castsi256_si128(a)); }
  static Reg WidenBytesHi(Reg a) { return _mm256_cvtepu8_epi16(_mm256_extracti128_si256(a, 1)); }
  // a + b, unsigned 16-bit lanes, saturating at 65535.
  static Reg AddSatU16(Reg a, Reg b) { return _mm256_adds_epu16(a, b); }
  // Two registers of 16-bit lanes, each in 0..255, narrowed to bytes in order
  // (the pack works inside 128-bit halves; the permute puts them in order).
  static Reg NarrowWords(Reg lo, Reg hi) {
    return _mm256_permute4x64_epi64(_mm256_packus_epi16(lo, hi), 0xD8);
  }

  static Reg Zero() { return _mm256_setzero_si256(); }
  static Reg Set32(std::uint32_t v) { return _mm256_set1_epi32(static_cast<int>(v)); }
  static Reg Set16(std::uint16_t v) { return _mm256_set1_epi16(static_cast<short>(v)); }

  static Reg And(Reg a, Reg b) { return _mm256_and_si256(a, b); }
  static Reg AndNot(Reg a, Reg b) { return _mm256_andnot_si256(a, b); }  // ~a & b
  static Reg Or(Reg a, Reg b) { return _mm256_or_si256(a, b); }
  static Reg Xor(Reg a, Reg b) { return _mm256_xor_si256(a, b); }
  static Reg CmpEq32(Reg a, Reg b) { return _mm256_cmpeq_epi32(a, b); }

  static Reg Add16(Reg a, Reg b) { return _mm256_add_epi16(a, b); }
  static Reg Sub16(Reg a, Reg b) { return _mm256_sub_epi16(a, b); }
  static Reg SubSatU16(Reg a, Reg b) { return _mm256_subs_epu16(a, b); }
  static Reg MulLo16(Reg a, Reg b) { return _mm256_mullo_epi16(a, b); }
  static Reg MulHiU16(Reg a, Reg b) { return _mm256_mulhi_epu16(a, b); }
  static Reg MulHiS16(Reg a, Reg b) { return _mm256_mulhi_epi16(a, b); }
  template <int n>
  static Reg ShiftLeft16(Reg a) {
    return _mm256_slli_epi16(a, n);
  }
  // |a|, and b negated where a < 0 (0 where a is 0), 16-bit lanes.
  static Reg Abs16(Reg a) { return _mm256_abs_epi16(a); }
  static Reg Sign16(Reg b, Reg a) { return _mm256_sign_epi16(b, a); }
  template <int n>
  static Reg ShiftRight16(Reg a) {
    return _mm256_srli_epi16(a, n);
  }
  template <int n>
  static Reg ShiftLeft32(Reg a) {
    return _mm256_slli_epi32(a, n);
  }
  template <int n>
  static Reg ShiftRight32(Reg a) {
    return _mm256_srli_epi32(a, n);
  }

  // Whole registers of bytes (kBytes of them), for the grey kernels; bytes
  // widen to 16-bit lanes by unpacking with zero and narrow back by packing
  // with unsigned saturation (both work inside 128-bit halves, so the
  // unpacked halves pack back in order).
  static constexpr std::size_t kBytes = 32;
  static Reg LoadBytes(const void *p) { return _mm256_loadu_si256(static_cast<const Reg *>(p)); }
  static void StoreBytes(void *p, Reg v) { _mm256_storeu_si256(static_cast<Reg *>(p), v); }
  static Reg UnpackLo8(Reg a, Reg b) { return _mm256_unpacklo_epi8(a, b); }
  static Reg UnpackHi8(Reg a, Reg b) { return _mm256_unpackhi_epi8(a, b); }
  static Reg PackUs16(Reg a, Reg b) { return _mm256_packus_epi16(a, b); }
  static Reg CmpEq16(Reg a, Reg b) { return _mm256_cmpeq_epi16(a, b); }

  // Darken and lighten: unsigned minimum and maximum of bytes and of 16-bit
  // words.
  static Reg MinU8(Reg a, Reg b) { return _mm256_min_epu8(a, b); }
  static Reg MaxU8(Reg a, Reg b) { return _mm256_max_epu8(a, b); }
  static Reg MinU16(Reg a, Reg b) { return _mm256_min_epu16(a, b); }
  static Reg MaxU16(Reg a, Reg b) { return _mm256_max_epu16(a, b); }

  // Words (12-bit grey kernels).
  // Whole registers of 16-bit words (kWords of them), and kWords coverage
  // bytes widened to 16-bit lanes.
  static constexpr std::size_t kWords = 16;
  static Reg LoadWords(const std::uint16_t *p) {
    return _mm256_loadu_si256(reinterpret_cast<const Reg *>(p));
  }
  static void StoreWords(std::uint16_t *p, Reg v) {
    _mm256_storeu_si256(reinterpret_cast<Reg *>(p), v);
  }
  static Reg BytesToWords(const std::uint8_t *p) {
    return _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i *>(p)));
  }
};

}  // namespace
}  // namespace compositing
}  // namespace ostrel

#endif  // OSTREL_COMPOSITING_SIMD_AVX2_H

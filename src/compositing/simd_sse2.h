// Vector operations on four 32-bit pixels with SSE2, under the names the
// kernel templates use (simd_avx2.h has the same names for eight pixels).
// Include it only in an SSE2 kernel file.
#ifndef OSTREL_COMPOSITING_SIMD_SSE2_H
#define OSTREL_COMPOSITING_SIMD_SSE2_H

#include <emmintrin.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace ostrel {
namespace compositing {
namespace {

struct Sse2 {
  using Reg = __m128i;
  static constexpr std::size_t kPixels = 4;

  static Reg Load(const std::uint32_t *p) {
    return _mm_loadu_si128(reinterpret_cast<const Reg *>(p));
  }
  static void Store(std::uint32_t *p, Reg v) { _mm_storeu_si128(reinterpret_cast<Reg *>(p), v); }
  // kPixels bytes or 16-bit words, each widened to a 32-bit lane.
  static Reg BytesToLanes(const std::uint8_t *p) {
    std::int32_t four;
    std::memcpy(&four, p, sizeof four);
    const Reg zero = _mm_setzero_si128();
    return _mm_unpacklo_epi16(_mm_unpacklo_epi8(_mm_cvtsi32_si128(four), zero), zero);
  }
  static Reg WordsToLanes(const std::uint16_t *p) {
    return _mm_unpacklo_epi16(_mm_loadl_epi64(reinterpret_cast<const Reg *>(p)),
                              _mm_setzero_si128());
  }

  // Asks for the cache line holding p; never faults.
  static void Prefetch(const void *p) { _mm_prefetch(static_cast<const char *>(p), _MM_HINT_T0); }

  // Word maps.
  // Bytes widened to 16-bit lanes in order: the first and the second half of
  // a register of bytes.
  static Reg WidenBytesLo(Reg a) { return _mm_unpacklo_epi8(a, _mm_setzero_si128()); }
  static Reg WidenBytesHi(Reg a) { return _mm_unpackhi_epi8(a, _mm_setzero_si128()); }
  // a + b, unsigned 16-bit lanes, saturating at 65535.
  static Reg AddSatU16(Reg a, Reg b) { return _mm_adds_epu16(a, b); }
  // Two registers of 16-bit lanes, each in 0..255, narrowed to bytes in order.
  static Reg NarrowWords(Reg lo, Reg hi) { return _mm_packus_epi16(lo, hi); }

  static Reg Zero() { return _mm_setzero_si128(); }
  static Reg Set32(std::uint32_t v) { return _mm_set1_epi32(static_cast<int>(v)); }
  static Reg Set16(std::uint16_t v) { return _mm_set1_epi16(static_cast<short>(v)); }

  static Reg And(Reg a, Reg b) { return _mm_and_si128(a, b); }
  static Reg AndNot(Reg a, Reg b) { return _mm_andnot_si128(a, b); }  // ~a & b
  static Reg Or(Reg a, Reg b) { return _mm_or_si128(a, b); }
  static Reg Xor(Reg a, Reg b) { return _mm_xor_si128(a, b); }
  static Reg CmpEq32(Reg a, Reg b) { return _mm_cmpeq_epi32(a, b); }

  static Reg Add16(Reg a, Reg b) { return _mm_add_epi16(a, b); }
  static Reg Sub16(Reg a, Reg b) { return _mm_sub_epi16(a, b); }
  static Reg SubSatU16(Reg a, Reg b) { return _mm_subs_epu16(a, b); }
  static Reg MulLo16(Reg a, Reg b) { return _mm_mullo_epi16(a, b); }
  static Reg MulHiU16(Reg a, Reg b) { return _mm_mulhi_epu16(a, b); }
  static Reg MulHiS16(Reg a, Reg b) { return _mm_mulhi_epi16(a, b); }
  template <int n>
  static Reg ShiftLeft16(Reg a) {
    return _mm_slli_epi16(a, n);
  }
  // |a| and b negated where a < 0, 16-bit lanes (no SSSE3: by the sign mask).
  static Reg Abs16(Reg a) {
    const Reg sign = _mm_srai_epi16(a, 15);
    return _mm_sub_epi16(_mm_xor_si128(a, sign), sign);
  }
  static Reg Sign16(Reg b, Reg a) {
    const Reg sign = _mm_srai_epi16(a, 15);
    return _mm_sub_epi16(_mm_xor_si128(b, sign), sign);
  }
  template <int n>
  static Reg ShiftRight16(Reg a) {
    return _mm_srli_epi16(a, n);
  }
  template <int n>
  static Reg ShiftLeft32(Reg a) {
    return _mm_slli_epi32(a, n);
  }
  template <int n>
  static Reg ShiftRight32(Reg a) {
    return _mm_srli_epi32(a, n);
  }

  // Whole registers of bytes (kBytes of them), for the grey kernels; bytes
  // widen to 16-bit lanes by unpacking with zero and narrow back by packing
  // with unsigned saturation (the unpacked halves pack back in order).
  static constexpr std::size_t kBytes = 16;
  static Reg LoadBytes(const void *p) { return _mm_loadu_si128(static_cast<const Reg *>(p)); }
  static void StoreBytes(void *p, Reg v) { _mm_storeu_si128(static_cast<Reg *>(p), v); }
  static Reg UnpackLo8(Reg a, Reg b) { return _mm_unpacklo_epi8(a, b); }
  static Reg UnpackHi8(Reg a, Reg b) { return _mm_unpackhi_epi8(a, b); }
  static Reg PackUs16(Reg a, Reg b) { return _mm_packus_epi16(a, b); }
  static Reg CmpEq16(Reg a, Reg b) { return _mm_cmpeq_epi16(a, b); }

  // Darken and lighten: unsigned minimum and maximum of bytes and of 16-bit
  // words (SSE2 has the byte forms only; a - sat(a - b) and b + sat(a - b)
  // give the word forms).
  static Reg MinU8(Reg a, Reg b) { return _mm_min_epu8(a, b); }
  static Reg MaxU8(Reg a, Reg b) { return _mm_max_epu8(a, b); }
  static Reg MinU16(Reg a, Reg b) { return _mm_sub_epi16(a, _mm_subs_epu16(a, b)); }
  static Reg MaxU16(Reg a, Reg b) { return _mm_add_epi16(b, _mm_subs_epu16(a, b)); }

  // Words (12-bit grey kernels).
  // Whole registers of 16-bit words (kWords of them), and kWords coverage
  // bytes widened to 16-bit lanes.
  static constexpr std::size_t kWords = 8;
  static Reg LoadWords(const std::uint16_t *p) {
    return _mm_loadu_si128(reinterpret_cast<const Reg *>(p));
  }
  static void StoreWords(std::uint16_t *p, Reg v) {
    _mm_storeu_si128(reinterpret_cast<Reg *>(p), v);
  }
  static Reg BytesToWords(const std::uint8_t *p) {
    return _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const Reg *>(p)),
                             _mm_setzero_si128());
  }
};

}  // namespace
}  // namespace compositing
}  // namespace ostrel

#endif  // OSTREL_COMPOSITING_SIMD_SSE2_H

// Row kernels of the 12-bit grey compositing functions (16-bit destination
// words).
//
// The 12-bit grey-to-grey blends, the 12-bit density blends and the 12-bit
// motion copy run their inner loop through one of these kernels. The scalar
// definitions (word_blend_scalar.cpp) read like the rule; the vector
// versions match them bit for bit. Words are not clamped to 12 bits: every
// word 0..65535 is blended as it is, and each result is stored as its low
// 16 bits.
#ifndef OSTREL_COMPOSITING_WORD_BLEND_KERNELS_H
#define OSTREL_COMPOSITING_WORD_BLEND_KERNELS_H

#include <cstddef>
#include <cstdint>
#include <tuple>
#include <utility>

#include "compositing/row_streams.h"
#include "frame/dispatch.h"

namespace ostrel {
namespace compositing {

// One row: n destination words and, depending on the kernel, the source
// words and the coverage bytes that pair with them.
struct WordRow {
  std::uint16_t *dst;
  std::size_t n;
  const std::uint16_t *src = nullptr;   // source grey words
  const std::uint8_t *alpha = nullptr;  // coverage bytes
  // The forcing kernels only: the word after the row (dst[n]) lies inside
  // the caller's buffer and is forced too.
  bool nextWord = false;

  // Its buffers, the written one first (compositing/row_streams.h).
  static constexpr auto Streams() {
    return std::make_tuple(&WordRow::dst, &WordRow::src, &WordRow::alpha);
  }
  static constexpr std::size_t kWrittenStreams = 1;
};

// What stays the same for every row of a call.
struct WordBlend {
  std::uint32_t opacity = 0;  // 0..255
  std::uint16_t density = 0;  // target word of the density kernels
};

using WordRowKernel = void (*)(const WordRow &row, const WordBlend &blend);

// The weight W of pixel i, with o the opacity: o itself (no coverage bytes),
// (alpha[i] * o) / 255, or o where alpha[i] is not 0 and 0 where it is.
enum WordCoverage : int { kWordByOpacity, kWordByAlpha, kWordByFlatAlpha, kWordCoverages };

// What becomes of a result: stored as it is; a result that is not 0 becomes
// 4095 (two-level); or, after each pixel i is stored, dst[i + 1] becomes
// 4095 if it is not 0, for every pixel but the row's last, whose next word
// is forced only with WordRow::nextWord. Forcing the next word makes the
// word each pixel after the first starts from 4095 or 0 (its own word before
// the row, tested for 0), which is how the vector kernels run it.
enum WordResult : int { kWordPlain, kWordTwoLevel, kWordForceNext, kWordResults };

// The exact blend d + ((s - d) * W) / 255 of every kernel, with d the
// destination word and s the source word (divided by 255 when scaled) or
// the density.
struct WordBlendKernels {
  // Toward src[i]; [coverage][scaled][skipZero][result]. skipZero leaves the
  // pixels whose source word is 0 untouched. The entries with both skipZero
  // and kWordForceNext are null: no member forces next words while skipping.
  WordRowKernel towardSource[kWordCoverages][2][2][kWordResults];
  // Toward the density, by W = (c * o) / 255 with c = alpha[i]
  // ([0]) or c = 255 - alpha[i] ([1]).
  WordRowKernel towardDensity[2];
  WordRowKernel densityFlat;  // dst[i] = density where alpha[i] is not 0
  // Darken ([0]) and lighten ([1]): toward min(src[i], dst[i]) or
  // max(src[i], dst[i]); [coverage][lighter] with coverage kWordByOpacity or
  // kWordByAlpha.
  WordRowKernel towardExtreme[2][2];
};

OSTREL_KERNEL_FAMILY(WordBlendKernels)

// Sets towardSource[coverage][scaled][skipZero][result] of a table to
// Kernel<coverage, scaled, skipZero, result>::Run, or to null for the
// combinations no member uses; each table file calls it once.
template <template <int, bool, bool, int> class Kernel, int coverage, bool scaled, bool skipZero,
          int result>
constexpr WordRowKernel SourceEntry() {
  if constexpr (skipZero && result == kWordForceNext) {
    return nullptr;
  } else {
    return Kernel<coverage, scaled, skipZero, result>::Run;
  }
}

template <template <int, bool, bool, int> class Kernel, std::size_t... k>
constexpr void SetTowardSource(WordBlendKernels &t, std::index_sequence<k...>) {
  // k = ((coverage * 2 + scaled) * 2 + skipZero) * kWordResults + result.
  ((t.towardSource[k / (4 * kWordResults)][k / (2 * kWordResults) % 2][k / kWordResults % 2]
                  [k % kWordResults] =
        SourceEntry<Kernel, int(k / (4 * kWordResults)), k / (2 * kWordResults) % 2 != 0,
                    k / kWordResults % 2 != 0, int(k % kWordResults)>()),
   ...);
}

template <template <int, bool, bool, int> class Kernel>
constexpr void SetTowardSource(WordBlendKernels &t) {
  SetTowardSource<Kernel>(t, std::make_index_sequence<kWordCoverages * 4 * kWordResults>());
}

// The scalar table where a row's destination words (with the next word when
// it is forced) share memory with its source words or coverage bytes, so
// that the pixel-by-pixel order of the rule decides the result; the active
// table otherwise. The vector kernels read a whole step before storing it.
const WordBlendKernels &WordKernelsForRow(const WordRow &row);

// (a * w) / 255 for every a in 0..65535 and w in 0..255 (the products
// |s - d| * W), as the vector kernels form it in 16-bit lanes: since
// 255 * 257 = 65535, it is p / 65535 with p = a * (257 * w) < 2^32; with p as
// hi * 65536 + lo, p = 65535 * hi + (hi + lo), and hi + lo is less than
// 2 * 65535 (hi is at most 65534), so the quotient is hi, plus 1 where
// hi + lo reaches 65535. The tests check it against the quotient for every
// such a and w.
constexpr std::uint32_t WordMulDiv255(std::uint32_t a, std::uint32_t w) {
  const std::uint32_t p = a * (257 * w);
  const std::uint32_t hi = p >> 16, lo = p & 0xFFFFu;
  return hi + (hi + lo >= 65535 ? 1 : 0);
}

}  // namespace compositing
}  // namespace ostrel

#endif  // OSTREL_COMPOSITING_WORD_BLEND_KERNELS_H

// Row kernels of the per-pixel maps of 12-bit grey buffers (16-bit words).
//
// The alpha multiplication, the two-level and 8-bit level conversions and
// the word lookup table each run their inner loop through one of these
// kernels. The scalar definitions (word_map_scalar.cpp) read like the rule;
// the vector versions (word_map_simd.inl) match them bit for bit.
#ifndef OSTREL_COMPOSITING_WORD_MAP_KERNELS_H
#define OSTREL_COMPOSITING_WORD_MAP_KERNELS_H

#include <cstddef>
#include <cstdint>

#include "compositing/row_streams.h"
#include "frame/dispatch.h"
#include "frame/region.h"

namespace ostrel {
namespace compositing {

// One row of n pixels: the words read and, depending on the kernel, the
// word or byte results and the coverage bytes that pair with them. A kernel
// that works in place is given the same words as src and words.
struct WordMapRow {
  std::size_t n = 0;
  const std::uint16_t *src = nullptr;   // the words read
  std::uint16_t *words = nullptr;       // word results
  std::uint8_t *bytes = nullptr;        // byte results
  const std::uint8_t *alpha = nullptr;  // coverage bytes
};

// What stays the same for every row of a call.
struct WordMap {
  std::uint32_t opacity = 0;             // 0..255
  std::uint16_t level = 0;               // the value of a nonzero two-level word
  const std::uint16_t *table = nullptr;  // 65,536 entries, for the lookup kernel
};

using WordMapKernel = void (*)(const WordMapRow &row, const WordMap &map);

// v is src[i], c the coverage alpha[i], o the opacity.
struct WordMapKernels {
  WordMapKernel applyAlpha;     // words[i] = v * ((c * o) / 255) / 255
  WordMapKernel twoLevelWords;  // words[i] = v != 0 ? level : 0
  WordMapKernel twoLevelBytes;  // bytes[i] = v != 0 ? 255 : 0
  WordMapKernel levelBytes;     // bytes[i] = the low byte of v >> 4
  WordMapKernel lookup;         // words[i] = table[v]
};

OSTREL_KERNEL_FAMILY(WordMapKernels)

// The lookup kernel of the scalar table: words looked up one at a time.
void LookupWordsRow(const WordMapRow &row, const WordMap &map);

// Every table maps rows shorter than this with the scalar kernels (measured:
// below it the vector forms cost more than they save), so a caller whose rows
// are all shorter may take the scalar table itself.
constexpr std::size_t kWordMapVectorFrom = 16;

// The table to map rows of n pixels with.
inline const WordMapKernels &WordMapKernelsFor(std::size_t n) {
  return n < kWordMapVectorFrom ? WordMapKernelsScalar : ActiveWordMapKernels();
}

// Runs one entry of the tables over each row of a clipped one-buffer region,
// in place; alpha, when not null, pairs its rows with the buffer's (the
// same geometry).
inline void MapWordsInPlace(const frame::Plane<unsigned short> &buffer,
                            const frame::Plane<unsigned char> *alpha, frame::Extent e,
                            WordMapKernel WordMapKernels::*entry, const WordMap &map) {
  const WordMapKernel kernel = WordMapKernelsFor(e.columns).*entry;
  for (std::uint32_t j = 0; j < e.rows; ++j) {
    WordMapRow row;
    row.n = e.columns;
    row.src = row.words = buffer.Row(j);
    if (alpha != nullptr) row.alpha = alpha->Row(j);
    kernel(row, map);
  }
}

}  // namespace compositing
}  // namespace ostrel

#endif  // OSTREL_COMPOSITING_WORD_MAP_KERNELS_H

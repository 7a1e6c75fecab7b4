// Per-pixel maps of 12-bit grey buffers: the scalar definitions, one loop per
// kernel, written as the rule each one implements.
#include "compositing/word_map_kernels.h"
#include "frame/blend.h"

namespace ostrel {
namespace compositing {
namespace {

// The loops read the row and the map through locals: a store of a byte (or
// of a word, for the level) could otherwise change them for all the compiler
// knows, and it would reload them for every pixel.
void ApplyAlpha(const WordMapRow &r, const WordMap &m) {
  const std::uint16_t *const src = r.src;
  const std::uint8_t *const alpha = r.alpha;
  std::uint16_t *const dst = r.words;
  const std::uint32_t opacity = m.opacity;
  for (std::size_t i = 0, n = r.n; i < n; ++i) {
    dst[i] =
        static_cast<std::uint16_t>(src[i] * frame::blend::ExactWeight(alpha[i], opacity) / 255u);
  }
}

void TwoLevelWords(const WordMapRow &r, const WordMap &m) {
  const std::uint16_t *const src = r.src;
  std::uint16_t *const dst = r.words;
  const std::uint16_t level = m.level;
  for (std::size_t i = 0, n = r.n; i < n; ++i) dst[i] = src[i] != 0 ? level : 0;
}

void TwoLevelBytes(const WordMapRow &r, const WordMap &) {
  const std::uint16_t *const src = r.src;
  std::uint8_t *const dst = r.bytes;
  for (std::size_t i = 0, n = r.n; i < n; ++i) dst[i] = src[i] != 0 ? 255 : 0;
}

void LevelBytes(const WordMapRow &r, const WordMap &) {
  const std::uint16_t *const src = r.src;
  std::uint8_t *const dst = r.bytes;
  for (std::size_t i = 0, n = r.n; i < n; ++i) dst[i] = static_cast<std::uint8_t>(src[i] >> 4);
}

}  // namespace

void LookupWordsRow(const WordMapRow &r, const WordMap &m) {
  for (std::size_t i = 0; i < r.n; ++i) r.words[i] = m.table[r.src[i]];
}

const WordMapKernels WordMapKernelsScalar = {ApplyAlpha, TwoLevelWords, TwoLevelBytes, LevelBytes,
                                             LookupWordsRow};

}  // namespace compositing
}  // namespace ostrel

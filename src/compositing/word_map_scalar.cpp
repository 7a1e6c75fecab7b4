// Per-pixel maps of 12-bit grey buffers: the scalar definitions, one loop per
// kernel, written as the rule each one implements.
#include "compositing/word_map_kernels.h"
#include "frame/blend.h"

namespace ostrel {
namespace compositing {
namespace {

void ApplyAlpha(const WordRow &r, const WordMap &m) {
  for (std::size_t i = 0; i < r.n; ++i) {
    r.words[i] = static_cast<std::uint16_t>(
        r.src[i] * frame::blend::ExactWeight(r.alpha[i], m.opacity) / 255u);
  }
}

void TwoLevelWords(const WordRow &r, const WordMap &m) {
  for (std::size_t i = 0; i < r.n; ++i) r.words[i] = r.src[i] != 0 ? m.level : 0;
}

void TwoLevelBytes(const WordRow &r, const WordMap &) {
  for (std::size_t i = 0; i < r.n; ++i) r.bytes[i] = r.src[i] != 0 ? 255 : 0;
}

void LevelBytes(const WordRow &r, const WordMap &) {
  for (std::size_t i = 0; i < r.n; ++i) r.bytes[i] = static_cast<std::uint8_t>(r.src[i] >> 4);
}

}  // namespace

void LookupWordsRow(const WordRow &r, const WordMap &m) {
  for (std::size_t i = 0; i < r.n; ++i) r.words[i] = m.table[r.src[i]];
}

const WordMapKernels WordMapKernelsScalar = {ApplyAlpha, TwoLevelWords, TwoLevelBytes, LevelBytes,
                                             LookupWordsRow};

}  // namespace compositing
}  // namespace ostrel

// Per-pixel maps of 12-bit grey buffers: the vector kernels, written once for
// any vector operation set V (simd_sse2.h, simd_avx2.h, simd_neon.h) and
// included by the vector kernel files. Every kernel gives exactly the results
// of its scalar definition in word_map_scalar.cpp.
//
// A step takes V::kBytes pixels: two registers of source words (and the
// coverage bytes, widened to 16-bit lanes), maps each lane, and stores two
// registers of words or one of bytes. A row that is not a whole number of
// steps ends with a step that overlaps the one before, so no vector access
// reaches past the row.
#include <cstring>

#include "compositing/simd_lanes.h"

namespace ostrel {
namespace compositing {
namespace {

template <class V>
using Reg = typename V::Reg;

// ---- Kernels: 16-bit lanes in, 16-bit lanes out ----------------------------

// v * W / 255 with W = (c * o) / 255. The product P reaches 65535 * 255, so
// it is taken as its high and low 16-bit halves: P = 65536 * hi + lo, and as
// 65536 = 255 * 257 + 1, P / 255 = 257 * hi + (hi + lo) / 255 exactly. hi is
// at most 254, so hi + lo may pass 65535, but only up to 65789, where the
// quotient is 257: the saturating sum (65535 there) gives that quotient too,
// and Div255 covers every 16-bit sum. 257 * hi + 257 is at most 65535.
template <class V>
struct ApplyAlpha {
  static constexpr bool kAlpha = true, kBytes = false;
  static Reg<V> Lanes(Reg<V> v, Reg<V> c, const WordMap &m) {
    // Below opacity 255, W = (c * M) >> 16 with M = o * 65536 / 255 rounded
    // up: c * M / 65536 exceeds c * o / 255 by less than 255 / 65536, less than
    // the 1 / 255 that c * o / 255 lies below the next whole number when it is
    // not whole itself, so both truncate alike.
    const Reg<V> w = m.opacity == 255 ? c
                                      : V::MulHiU16(c, V::Set16(static_cast<std::uint16_t>(
                                                           (m.opacity * 65536u + 254u) / 255u)));
    const Reg<V> hi = V::MulHiU16(v, w), lo = V::MulLo16(v, w);
    const Reg<V> hi257 = V::Add16(V::template ShiftLeft16<8>(hi), hi);
    return V::Add16(hi257, Div255<V>(V::AddSatU16(lo, hi)));
  }
};

template <class V>
struct TwoLevelWords {
  static constexpr bool kAlpha = false, kBytes = false;
  static Reg<V> Lanes(Reg<V> v, Reg<V>, const WordMap &m) {
    return V::AndNot(V::CmpEq16(v, V::Zero()), V::Set16(m.level));
  }
};

template <class V>
struct TwoLevelBytes {
  static constexpr bool kAlpha = false, kBytes = true;
  static Reg<V> Lanes(Reg<V> v, Reg<V>, const WordMap &) {
    return V::AndNot(V::CmpEq16(v, V::Zero()), V::Set16(255));
  }
};

template <class V>
struct LevelBytes {
  static constexpr bool kAlpha = false, kBytes = true;
  static Reg<V> Lanes(Reg<V> v, Reg<V>, const WordMap &) {
    return V::And(V::template ShiftRight16<4>(v), V::Set16(0xFF));
  }
};

// ---- The row loop ----------------------------------------------------------

inline std::uintptr_t Address(const void *p) { return reinterpret_cast<std::uintptr_t>(p); }

// Whether results stored a step at a time read the same inputs as the scalar
// loop, which stores pixel i before it reads pixel i + 1: true when the
// output bytes [out, out + n * outSize) and the input bytes [in, in + n *
// inSize) do not overlap, or when the output starts at or before the input and
// advances no faster (then no store reaches an input not yet read).
inline bool StepsReadAsScalar(const void *out, std::size_t outSize, const void *in,
                              std::size_t inSize, std::size_t n) {
  const std::uintptr_t o = Address(out), i = Address(in);
  if (o + n * outSize <= i || i + n * inSize <= o) return true;
  return o <= i && outSize <= inSize;
}

template <class Kernel>
bool RowReadsAsScalar(const WordMapRow &r) {
  const void *out = Kernel::kBytes ? static_cast<const void *>(r.bytes) : r.words;
  const std::size_t outSize = Kernel::kBytes ? 1 : 2;
  return StepsReadAsScalar(out, outSize, r.src, 2, r.n) &&
         (!Kernel::kAlpha || StepsReadAsScalar(out, outSize, r.alpha, 1, r.n));
}

// A step's inputs: two registers of source words and, for the alpha kernel,
// their coverage bytes widened to 16-bit lanes.
template <class V>
struct StepInputs {
  Reg<V> v0, v1, c0, c1;
};

template <class V, class Kernel>
StepInputs<V> LoadStep(const std::uint16_t *src, const std::uint8_t *alpha) {
  constexpr std::size_t kWords = V::kBytes / 2;
  StepInputs<V> in{V::LoadBytes(src), V::LoadBytes(src + kWords), V::Zero(), V::Zero()};
  if (Kernel::kAlpha) {
    const Reg<V> c = V::LoadBytes(alpha);
    in.c0 = V::WidenBytesLo(c);
    in.c1 = V::WidenBytesHi(c);
  }
  return in;
}

template <class V, class Kernel>
void StoreStep(std::uint16_t *words, std::uint8_t *bytes, const StepInputs<V> &in,
               const WordMap &m) {
  constexpr std::size_t kWords = V::kBytes / 2;
  const Reg<V> x0 = Kernel::Lanes(in.v0, in.c0, m), x1 = Kernel::Lanes(in.v1, in.c1, m);
  if (Kernel::kBytes) {
    V::StoreBytes(bytes, V::NarrowWords(x0, x1));
  } else {
    V::StoreBytes(words, x0);
    V::StoreBytes(words + kWords, x1);
  }
}

// entry names the kernel in the tables: rows shorter than a step go to the
// narrower table's (the scalar one below kWordMapVectorFrom pixels), and rows
// whose outputs overlap their inputs in a way the steps would read differently
// to the scalar definition.
template <class V, class Kernel, WordMapKernel WordMapKernels::*entry,
          const WordMapKernels *narrower>
void RunWordRow(const WordMapRow &row, const WordMap &map) {
  // Locals, field by field: stores to the destination cannot change them.
  const std::size_t n = row.n;
  const std::uint16_t *const src = row.src;
  const std::uint8_t *const alpha = row.alpha;
  std::uint16_t *const words = row.words;
  std::uint8_t *const bytes = row.bytes;
  WordMap m;
  m.opacity = map.opacity;
  m.level = map.level;
  if (n < V::kBytes) {
    return (n < kWordMapVectorFrom ? WordMapKernelsScalar.*entry : narrower->*entry)(row, map);
  }
  if (!RowReadsAsScalar<Kernel>(row)) return (WordMapKernelsScalar.*entry)(row, map);
  const auto at = [&](std::size_t i) {
    return LoadStep<V, Kernel>(src + i, Kernel::kAlpha ? alpha + i : nullptr);
  };
  const auto store = [&](std::size_t i, const StepInputs<V> &in) {
    StoreStep<V, Kernel>(Kernel::kBytes ? nullptr : words + i, Kernel::kBytes ? bytes + i : nullptr,
                         in, m);
  };
  RunSteps<V::kBytes>(n, at, store);
}

// The word lookup of the vector tables. Gathers measured slower here than
// loads of one word at a time, and what pays is storing the results eight at
// a time: eight words are looked up into a block, then stored together. That
// reads what the scalar loop reads while the table lies apart from the words
// written; shorter rows and other rows go word by word.
inline void LookupWordsByEight(const WordMapRow &row, const WordMap &map) {
  const std::uint16_t *const src = row.src;
  std::uint16_t *const dst = row.words;
  const std::uint16_t *const table = map.table;
  const std::size_t n = row.n;
  constexpr std::size_t kTableBytes = 65536 * 2;
  if (n < kWordMapVectorFrom || !StepsReadAsScalar(dst, 2, src, 2, n) ||
      !(Address(dst) + 2 * n <= Address(table) || Address(table) + kTableBytes <= Address(dst)))
    return LookupWordsRow(row, map);
  // The last eight words, looked up before any store, end the row as the
  // vector steps do.
  std::uint16_t lastBlock[8];
  if (n % 8 != 0) {
    for (std::size_t k = 0; k < 8; ++k) lastBlock[k] = table[src[n - 8 + k]];
  }
  std::size_t i = 0;
  for (; i + 8 <= n; i += 8) {
    std::uint16_t block[8];
    for (std::size_t k = 0; k < 8; ++k) block[k] = table[src[i + k]];
    std::memcpy(dst + i, block, sizeof block);
  }
  if (i != n) std::memcpy(dst + n - 8, lastBlock, sizeof lastBlock);
}

// narrower: the table that takes rows shorter than a step of V.
template <class V, const WordMapKernels *narrower>
constexpr WordMapKernels MakeWordMapKernels() {
  return WordMapKernels{
      RunWordRow<V, ApplyAlpha<V>, &WordMapKernels::applyAlpha, narrower>,
      RunWordRow<V, TwoLevelWords<V>, &WordMapKernels::twoLevelWords, narrower>,
      RunWordRow<V, TwoLevelBytes<V>, &WordMapKernels::twoLevelBytes, narrower>,
      RunWordRow<V, LevelBytes<V>, &WordMapKernels::levelBytes, narrower>,
      LookupWordsByEight,
  };
}

}  // namespace
}  // namespace compositing
}  // namespace ostrel

// Per-pixel maps of 12-bit grey buffers: the vector kernels, written once for
// any vector width V (simd_sse2.h, simd_avx2.h) and included by the SSE2 and
// AVX2 kernel files. Every kernel gives exactly the results of its scalar
// definition in word_map_scalar.cpp.
//
// A step takes V::kBytes pixels: two registers of source words (and the
// coverage bytes, widened to 16-bit lanes), maps each lane, and stores two
// registers of words or one of bytes. The last pixels of a row go through a
// short copy, so no vector access reaches past the row.
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
bool RowReadsAsScalar(const WordRow &r) {
  const void *out = Kernel::kBytes ? static_cast<const void *>(r.bytes) : r.words;
  const std::size_t outSize = Kernel::kBytes ? 1 : 2;
  return StepsReadAsScalar(out, outSize, r.src, 2, r.n) &&
         (!Kernel::kAlpha || StepsReadAsScalar(out, outSize, r.alpha, 1, r.n));
}

template <class V, class Kernel>
void Step(const WordRow &r, const WordMap &m, std::size_t i) {
  constexpr std::size_t kWords = V::kBytes / 2;
  const Reg<V> v0 = V::LoadBytes(r.src + i), v1 = V::LoadBytes(r.src + i + kWords);
  Reg<V> c0 = V::Zero(), c1 = V::Zero();
  if (Kernel::kAlpha) {
    const Reg<V> c = V::LoadBytes(r.alpha + i);
    c0 = V::WidenBytesLo(c);
    c1 = V::WidenBytesHi(c);
  }
  const Reg<V> x0 = Kernel::Lanes(v0, c0, m), x1 = Kernel::Lanes(v1, c1, m);
  if (Kernel::kBytes) {
    V::StoreBytes(r.bytes + i, V::NarrowWords(x0, x1));
  } else {
    V::StoreBytes(r.words + i, x0);
    V::StoreBytes(r.words + i + kWords, x1);
  }
}

// entry names the kernel's scalar definition, which takes rows whose outputs
// overlap their inputs in a way the steps would read differently.
template <class V, class Kernel, WordRowKernel WordMapKernels::*entry>
void RunWordRow(const WordRow &row, const WordMap &map) {
  // Local copies: stores to the destination cannot change them (as long as
  // their addresses stay in this function: the scalar call takes the
  // arguments).
  const WordRow r = row;
  const WordMap m = map;
  if (!RowReadsAsScalar<Kernel>(r)) return (WordMapKernelsScalar.*entry)(row, map);
  std::size_t i = 0;
  for (; i + V::kBytes <= r.n; i += V::kBytes) Step<V, Kernel>(r, m, i);
  if (i == r.n) return;

  const WordRow rest = r.From(i);
  std::uint16_t src[V::kBytes] = {}, words[V::kBytes] = {};
  std::uint8_t bytes[V::kBytes] = {}, alpha[V::kBytes] = {};
  WordRow copy;
  copy.n = V::kBytes;
  copy.src = static_cast<std::uint16_t *>(std::memcpy(src, rest.src, rest.n * 2));
  copy.words = words;
  copy.bytes = bytes;
  if (Kernel::kAlpha)
    copy.alpha = static_cast<std::uint8_t *>(std::memcpy(alpha, rest.alpha, rest.n));
  Step<V, Kernel>(copy, m, 0);
  if (Kernel::kBytes) {
    std::memcpy(rest.bytes, bytes, rest.n);
  } else {
    std::memcpy(rest.words, words, rest.n * 2);
  }
}

// The word lookup of the vector tables. Gathers measured slower here than
// loads of one word at a time, and what pays is storing the results eight at
// a time: eight words are looked up into a block, then stored together. That
// reads what the scalar loop reads while the table lies apart from the words
// written; other rows go word by word.
inline void LookupWordsByEight(const WordRow &row, const WordMap &map) {
  const WordRow r = row;
  const std::uint16_t *const table = map.table;
  constexpr std::size_t kTableBytes = 65536 * 2;
  std::size_t i = 0;
  if (StepsReadAsScalar(r.words, 2, r.src, 2, r.n) &&
      (Address(r.words) + 2 * r.n <= Address(table) ||
       Address(table) + kTableBytes <= Address(r.words))) {
    for (; i + 8 <= r.n; i += 8) {
      std::uint16_t block[8];
      for (std::size_t k = 0; k < 8; ++k) block[k] = table[r.src[i + k]];
      std::memcpy(r.words + i, block, sizeof block);
    }
  }
  LookupWordsRow(r.From(i), map);
}

template <class V>
constexpr WordMapKernels MakeWordMapKernels() {
  return WordMapKernels{
      RunWordRow<V, ApplyAlpha<V>, &WordMapKernels::applyAlpha>,
      RunWordRow<V, TwoLevelWords<V>, &WordMapKernels::twoLevelWords>,
      RunWordRow<V, TwoLevelBytes<V>, &WordMapKernels::twoLevelBytes>,
      RunWordRow<V, LevelBytes<V>, &WordMapKernels::levelBytes>,
      LookupWordsByEight,
  };
}

}  // namespace
}  // namespace compositing
}  // namespace ostrel

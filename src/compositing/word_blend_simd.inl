// Grey compositing into 16-bit destination words: the vector kernels, written
// once for any vector operation set V (simd_sse2.h, simd_avx2.h, simd_neon.h)
// and included by the vector kernel files. Every kernel gives exactly the
// results of its scalar definition in word_blend_scalar.cpp.
//
// A step blends V::kWords destination words in 16-bit lanes, with the source
// words and the coverage bytes (widened to 16-bit lanes) that pair with them.
// The product |s - d| * W reaches 65535 * 255, past 16 bits: it is divided
// by 255 as WordMulDiv255 does, from the high and low halves of
// |s - d| * (257 * W), all in 16-bit lanes. The quotient moves d toward s,
// so the result lies between them and the lanes' 16-bit sums give it
// exactly. The last words of a row go through a short copy, so no vector
// access reaches past the row.
#include <cstring>

#include "compositing/simd_lanes.h"

namespace ostrel {
namespace compositing {
namespace {

template <class V>
using Reg = typename V::Reg;

// (a * w) / 255 for 16-bit lanes a and weights w of at most 255, given
// w257 = 257 * w, as WordMulDiv255: the high half of a * w257, plus 1 where
// the high and low halves add up to 65535 or more (the saturating sum is then
// 65535).
template <class V>
Reg<V> MulDiv255(Reg<V> a, Reg<V> w257) {
  const Reg<V> hi = V::MulHiU16(a, w257), lo = V::MulLo16(a, w257);
  const Reg<V> carry = V::CmpEq16(V::AddSatU16(hi, lo), V::Set16(0xFFFF));  // -1 there
  return V::Sub16(hi, carry);
}

// d + ((s - d) * w) / 255 for 16-bit lanes, the product truncated toward 0;
// w257 = 257 * w.
template <class V>
Reg<V> WordBlendLanes(Reg<V> d, Reg<V> s, Reg<V> w257) {
  const Reg<V> up = V::SubSatU16(s, d), down = V::SubSatU16(d, s);
  const Reg<V> q = MulDiv255<V>(V::Or(up, down), w257);
  // -1 where s <= d: the quotient is subtracted (it is 0 where s == d).
  const Reg<V> negative = V::CmpEq16(up, V::Zero());
  return V::Add16(d, V::Sub16(V::Xor(q, negative), negative));
}

// 257 times the weight of each lane, from its coverage lane c (the weight
// as WordWeight gives it).
template <class V, int coverage>
Reg<V> WordWeightLanes(Reg<V> c, std::uint32_t opacity) {
  const Reg<V> o257 = V::Set16(static_cast<std::uint16_t>(257 * opacity));
  if (coverage == kWordByOpacity) return o257;
  if (coverage == kWordByFlatAlpha) return V::AndNot(V::CmpEq16(c, V::Zero()), o257);
  // c * o is at most 65025.
  const Reg<V> w =
      opacity == 255 ? c : Div255<V>(V::MulLo16(c, V::Set16(static_cast<std::uint16_t>(opacity))));
  return V::Or(V::template ShiftLeft16<8>(w), w);
}

// 4095 where r is not 0, 0 where it is.
template <class V>
Reg<V> TwoLevel(Reg<V> r) {
  return V::AndNot(V::CmpEq16(r, V::Zero()), V::Set16(4095));
}

// ---- Kernels: 16-bit lanes in, 16-bit lanes out ----------------------------
// first is all ones in the lane of the row's first pixel, 0 elsewhere.

template <class V, int coverage, bool scaled, bool skipZero, int result>
struct TowardSource {
  static constexpr bool kSource = true, kAlpha = coverage != kWordByOpacity;
  static constexpr bool kForceNext = result == kWordForceNext;
  static Reg<V> Lanes(Reg<V> d, Reg<V> s, Reg<V> a, const WordBlend &b, Reg<V> first) {
    // Forcing the next word makes every pixel but the row's first start
    // from 4095 or 0.
    const Reg<V> from = kForceNext ? V::Or(V::And(first, d), V::AndNot(first, TwoLevel<V>(d))) : d;
    Reg<V> r = WordBlendLanes<V>(from, scaled ? Div255<V>(s) : s,
                                 WordWeightLanes<V, coverage>(a, b.opacity));
    if (result == kWordTwoLevel) r = TwoLevel<V>(r);
    if (skipZero) {
      const Reg<V> keep = V::CmpEq16(s, V::Zero());
      r = V::Or(V::And(keep, d), V::AndNot(keep, r));
    }
    return r;
  }
};

template <class V, bool inverse>
struct TowardDensity {
  static constexpr bool kSource = false, kAlpha = true, kForceNext = false;
  static Reg<V> Lanes(Reg<V> d, Reg<V>, Reg<V> a, const WordBlend &b, Reg<V>) {
    const Reg<V> c = inverse ? V::Xor(a, V::Set16(255)) : a;
    return WordBlendLanes<V>(d, V::Set16(b.density),
                             WordWeightLanes<V, kWordByAlpha>(c, b.opacity));
  }
};

template <class V>
struct DensityFlat {
  static constexpr bool kSource = false, kAlpha = true, kForceNext = false;
  static Reg<V> Lanes(Reg<V> d, Reg<V>, Reg<V> a, const WordBlend &b, Reg<V>) {
    const Reg<V> keep = V::CmpEq16(a, V::Zero());
    return V::Or(V::And(keep, d), V::AndNot(keep, V::Set16(b.density)));
  }
};

template <class V, int coverage, bool lighter>
struct TowardExtreme {
  static constexpr bool kSource = true, kAlpha = coverage != kWordByOpacity, kForceNext = false;
  static Reg<V> Lanes(Reg<V> d, Reg<V> s, Reg<V> a, const WordBlend &b, Reg<V>) {
    const Reg<V> t = lighter ? V::MaxU16(s, d) : V::MinU16(s, d);
    return WordBlendLanes<V>(d, t, WordWeightLanes<V, coverage>(a, b.opacity));
  }
};

// ---- The row loop ----------------------------------------------------------

// A step is inlined into its row loop, which then keeps the weights and
// constants in registers (left to itself, the compiler calls many steps).
template <class V, class Kernel>
OSTREL_ALWAYS_INLINE void Step(const WordRow &r, const WordBlend &b, std::size_t i, Reg<V> first) {
  const Reg<V> d = V::LoadWords(r.dst + i);
  const Reg<V> s = Kernel::kSource ? V::LoadWords(r.src + i) : V::Zero();
  const Reg<V> a = Kernel::kAlpha ? V::BytesToWords(r.alpha + i) : V::Zero();
  V::StoreWords(r.dst + i, Kernel::Lanes(d, s, a, b, first));
}

template <class V, class Kernel>
void RunWordRow(const WordRow &row, const WordBlend &blend) {
  // Local copies: stores to the destination cannot change them.
  const WordRow r = row;
  const WordBlend b = blend;
  if (r.n == 0) return;
  std::uint16_t firstLane[V::kWords] = {0xFFFF};
  const Reg<V> first = Kernel::kForceNext ? V::LoadWords(firstLane) : V::Zero();
  std::size_t i = 0;
  if (r.n >= V::kWords) {
    Step<V, Kernel>(r, b, 0, first);
    for (i = V::kWords; i + V::kWords <= r.n; i += V::kWords) Step<V, Kernel>(r, b, i, V::Zero());
  }
  if (i < r.n) {
    RunTail<V::kWords>(row, i, [&](const WordRow &local) {
      Step<V, Kernel>(local, b, 0, i == 0 ? first : V::Zero());
    });
  }
  // The word after the row, forced by the row's last pixel.
  if (Kernel::kForceNext && r.nextWord && r.dst[r.n] != 0) r.dst[r.n] = 4095;
}

template <class V>
struct SourceRows {
  template <int coverage, bool scaled, bool skipZero, int result>
  struct Kernel {
    static void Run(const WordRow &r, const WordBlend &b) {
      RunWordRow<V, TowardSource<V, coverage, scaled, skipZero, result>>(r, b);
    }
  };
};

template <class V>
constexpr WordBlendKernels MakeWordBlendKernels() {
  WordBlendKernels t{};
  SetTowardSource<SourceRows<V>::template Kernel>(t);
  t.towardDensity[0] = RunWordRow<V, TowardDensity<V, false>>;
  t.towardDensity[1] = RunWordRow<V, TowardDensity<V, true>>;
  t.densityFlat = RunWordRow<V, DensityFlat<V>>;
  t.towardExtreme[kWordByOpacity][0] = RunWordRow<V, TowardExtreme<V, kWordByOpacity, false>>;
  t.towardExtreme[kWordByOpacity][1] = RunWordRow<V, TowardExtreme<V, kWordByOpacity, true>>;
  t.towardExtreme[kWordByAlpha][0] = RunWordRow<V, TowardExtreme<V, kWordByAlpha, false>>;
  t.towardExtreme[kWordByAlpha][1] = RunWordRow<V, TowardExtreme<V, kWordByAlpha, true>>;
  return t;
}

}  // namespace
}  // namespace compositing
}  // namespace ostrel

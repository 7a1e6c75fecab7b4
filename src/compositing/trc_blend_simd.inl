// Blends into 32-bit colour pixels: the vector kernels, written once for any
// vector operation set V (simd_sse2.h, simd_avx2.h, simd_neon.h) and included
// by the vector kernel files. Every kernel gives exactly the results of its
// scalar definition in trc_blend_scalar.cpp.
//
// How the arithmetic is done on vectors. Each pixel is split, without
// shuffles, into its even bytes (blue, red: pixel & 0x00FF00FF) and its odd
// bytes (green, alpha: pixel >> 8 in 16-bit lanes), each channel in a 16-bit
// lane. The pixel's weight goes into its blue, green and red lanes and 0 into
// its alpha lane, so the alpha byte comes through unchanged.
//   exact  d + ((s - d) * W) / 255, truncated toward zero, as
//          d + sign(s - d) * Div255(|s - d| * W): the product lies in
//          0..65535 for W up to 257.
//   fast   d + floor(((s - d) * w) / 256), as
//          d + MulHiS16((s - d) << 7, 2 * w): both factors fit in signed
//          16 bits (w <= 255), and the high half of a signed product is the
//          product divided by 65536, rounded down.
//   Div255(x) = (x * 0x8081) >> 23, which equals x / 255 for every x in
//          0..65535 (frame::blend::Div255ByMultiply).
// Rows are walked a cache line at a time, with the lines some way ahead
// prefetched. The last few pixels of a row go through a short copy, so no
// vector access reaches past the row.
#include <cstring>

#include "compositing/simd_lanes.h"

namespace ostrel {
namespace compositing {
namespace {

using frame::blend::Form;

// The weights of a call, from coverages c (0..257) in 32-bit lanes. At
// opacity 255 (the usual case, and the same for every step of a call, so the
// branch costs nothing) the exact weight is c itself and the fast weight
// (255 * c) >> 8 is c - 1, or 0 for c = 0.
template <class V, Form form>
typename V::Reg WeightOf(typename V::Reg c, std::uint32_t opacity) {
  if (opacity == 255) return form == Form::kExact ? c : V::SubSatU16(c, V::Set16(1));
  const typename V::Reg product = V::MulLo16(c, V::Set32(opacity));  // at most 65535
  return form == Form::kExact ? Div255<V>(product) : V::template ShiftRight16<8>(product);
}

// 255 where c != 0, else 0.
template <class V>
typename V::Reg Flag(typename V::Reg c) {
  return V::AndNot(V::CmpEq32(c, V::Zero()), V::Set32(255));
}

// mask ? a : b, lane by lane.
template <class V>
typename V::Reg Select(typename V::Reg mask, typename V::Reg a, typename V::Reg b) {
  return V::Or(V::And(mask, a), V::AndNot(mask, b));
}

// Moves the pixels d toward s by the per-pixel weights w (32-bit lanes):
// blue, green and red, or with alphaOnly the alpha byte alone. The channels
// are split without shuffles into the even bytes (blue, red) and the odd
// bytes (green, alpha) of each pixel, each in a 16-bit lane. A channel stays
// in 0..255 for weights up to 255; wide allows exact weights up to 257 (from
// 16-bit coverage words), whose channels keep their low byte.
template <class V, Form form, bool alphaOnly = false, bool wide = false>
typename V::Reg BlendPixels(typename V::Reg d, typename V::Reg s, typename V::Reg w) {
  const typename V::Reg evenBytes = V::Set32(0x00FF00FFu);
  // The fast form's doubled weight (see BlendLanes).
  const typename V::Reg lane = form == Form::kExact ? w : V::Add16(w, w);
  const typename V::Reg both = V::Or(lane, V::template ShiftLeft32<16>(lane));
  const typename V::Reg wOdd = alphaOnly ? V::template ShiftLeft32<16>(lane) : lane;
  const typename V::Reg odd =
      BlendLanes<V, form>(V::template ShiftRight16<8>(d), V::template ShiftRight16<8>(s), wOdd);
  const typename V::Reg evenD = V::And(d, evenBytes);
  if (alphaOnly) return V::Or(evenD, V::template ShiftLeft16<8>(odd));
  const typename V::Reg even = BlendLanes<V, form>(evenD, V::And(s, evenBytes), both);
  return V::Or(wide ? V::And(even, evenBytes) : even, V::template ShiftLeft16<8>(odd));
}

// ---- Kernels: one step of V::kPixels pixels from pixel i ------------------

template <class V, Form form>
struct PixelsByAlpha {
  static void Step(const TrcRow &r, const TrcBlend &b, std::size_t i) {
    const typename V::Reg s = V::Load(r.pixels + i);
    const typename V::Reg w = WeightOf<V, form>(V::template ShiftRight32<24>(s), b.opacity);
    V::Store(r.dst + i, BlendPixels<V, form>(V::Load(r.dst + i), s, w));
  }
};

template <class V, Form form>
struct PixelsByWeight {
  static void Step(const TrcRow &r, const TrcBlend &b, std::size_t i) {
    V::Store(r.dst + i,
             BlendPixels<V, form>(V::Load(r.dst + i), V::Load(r.pixels + i), V::Set32(b.weight)));
  }
};

template <class V, Form form>
struct PixelsByBytes {
  static void Step(const TrcRow &r, const TrcBlend &b, std::size_t i) {
    const typename V::Reg w = WeightOf<V, form>(V::BytesToLanes(r.bytes + i), b.opacity);
    V::Store(r.dst + i, BlendPixels<V, form>(V::Load(r.dst + i), V::Load(r.pixels + i), w));
  }
};

template <class V, Form form>
struct ColourByBytes {
  static void Step(const TrcRow &r, const TrcBlend &b, std::size_t i) {
    const typename V::Reg w = WeightOf<V, form>(V::BytesToLanes(r.bytes + i), b.opacity);
    V::Store(r.dst + i, BlendPixels<V, form>(V::Load(r.dst + i), V::Set32(b.colour), w));
  }
};

template <class V, Form form>
struct ColourByInverse {
  static void Step(const TrcRow &r, const TrcBlend &b, std::size_t i) {
    const typename V::Reg c = V::Xor(V::BytesToLanes(r.bytes + i), V::Set32(255));
    const typename V::Reg w = WeightOf<V, form>(c, b.opacity);
    V::Store(r.dst + i, BlendPixels<V, form>(V::Load(r.dst + i), V::Set32(b.colour), w));
  }
};

template <class V, Form form>
struct ColourByWords {
  static void Step(const TrcRow &r, const TrcBlend &b, std::size_t i) {
    const typename V::Reg word = V::WordsToLanes(r.words + i);
    const typename V::Reg c =
        form == Form::kExact ? Div255<V>(word) : V::template ShiftRight32<8>(word);
    const typename V::Reg w = WeightOf<V, form>(c, b.opacity);
    V::Store(r.dst + i,
             BlendPixels<V, form, false, true>(V::Load(r.dst + i), V::Set32(b.colour), w));
  }
};

template <class V, Form form>
struct ColourByWeight {
  static void Step(const TrcRow &r, const TrcBlend &b, std::size_t i) {
    V::Store(r.dst + i,
             BlendPixels<V, form>(V::Load(r.dst + i), V::Set32(b.colour), V::Set32(b.weight)));
  }
};

template <class V>
struct ColourByFlag {
  static void Step(const TrcRow &r, const TrcBlend &b, std::size_t i) {
    const typename V::Reg c = Flag<V>(V::BytesToLanes(r.bytes + i));
    const typename V::Reg w = WeightOf<V, Form::kExact>(c, b.opacity);
    V::Store(r.dst + i, BlendPixels<V, Form::kExact>(V::Load(r.dst + i), V::Set32(b.colour), w));
  }
};

template <class V, bool flag>
struct ColourByBlue {
  static void Step(const TrcRow &r, const TrcBlend &b, std::size_t i) {
    const typename V::Reg blue = V::And(V::Load(r.pixels + i), V::Set32(0xFF));
    const typename V::Reg w = WeightOf<V, Form::kExact>(flag ? Flag<V>(blue) : blue, b.opacity);
    V::Store(r.dst + i, BlendPixels<V, Form::kExact>(V::Load(r.dst + i), V::Set32(b.colour), w));
  }
};

template <class V>
struct ColourScaledByBlue {
  static void Step(const TrcRow &r, const TrcBlend &b, std::size_t i) {
    const typename V::Reg d = V::Load(r.dst + i);
    const typename V::Reg blue = V::And(V::Load(r.pixels + i), V::Set32(0xFF));
    const typename V::Reg alphaOnly = V::And(d, V::Set32(0xFF000000u));
    const typename V::Reg scaled =
        BlendPixels<V, Form::kExact>(alphaOnly, V::Set32(b.colour), blue);
    V::Store(r.dst + i, Select<V>(V::CmpEq32(blue, V::Zero()), d, scaled));
  }
};

template <class V>
struct ColourErasingAlpha {
  static void Step(const TrcRow &r, const TrcBlend &b, std::size_t i) {
    const typename V::Reg c = V::BytesToLanes(r.bytes + i);
    const typename V::Reg w = WeightOf<V, Form::kExact>(c, b.opacity);
    const typename V::Reg out =
        BlendPixels<V, Form::kExact>(V::Load(r.dst + i), V::Set32(b.colour), w);
    const typename V::Reg keep = V::Or(V::CmpEq32(c, V::Zero()), V::Set32(0x00FFFFFFu));
    V::Store(r.dst + i, V::And(out, keep));
  }
};

template <class V>
struct QuickMask {
  static void Step(const TrcRow &r, const TrcBlend &b, std::size_t i) {
    const typename V::Reg m = V::BytesToLanes(r.bytes + i);
    const typename V::Reg colour = V::Set32(b.colour);
    const typename V::Reg w = WeightOf<V, Form::kExact>(V::Xor(m, V::Set32(255)), b.opacity);
    const typename V::Reg out = BlendPixels<V, Form::kExact>(V::Load(r.dst + i), colour, w);
    V::Store(r.dst + i, Select<V>(V::CmpEq32(m, V::Zero()), colour, out));
  }
};

template <class V>
struct GreysByBytes {
  static void Step(const TrcRow &r, const TrcBlend &b, std::size_t i) {
    const typename V::Reg g = V::BytesToLanes(r.greys + i);
    const typename V::Reg grey =
        V::Or(g, V::Or(V::template ShiftLeft32<8>(g), V::template ShiftLeft32<16>(g)));
    const typename V::Reg w = WeightOf<V, Form::kExact>(V::BytesToLanes(r.bytes + i), b.opacity);
    V::Store(r.dst + i, BlendPixels<V, Form::kExact>(V::Load(r.dst + i), grey, w));
  }
};

template <class V>
struct ColourOnBackground {
  static void Step(const TrcRow &r, const TrcBlend &b, std::size_t i) {
    const typename V::Reg d = V::Load(r.dst + i);
    const typename V::Reg m = V::BytesToLanes(r.bytes + i);
    const typename V::Reg laid =
        BlendPixels<V, Form::kExact>(V::Set32(b.background), V::Set32(b.colour), m);
    const typename V::Reg out = BlendPixels<V, Form::kExact>(d, laid, V::Set32(b.opacity));
    V::Store(r.dst + i, Select<V>(V::CmpEq32(m, V::Zero()), d, out));
  }
};

template <class V>
struct AlphaByBytes {
  static void Step(const TrcRow &r, const TrcBlend &b, std::size_t i) {
    const typename V::Reg w = WeightOf<V, Form::kExact>(V::BytesToLanes(r.bytes + i), b.opacity);
    V::Store(r.dst + i,
             BlendPixels<V, Form::kExact, true>(V::Load(r.dst + i), V::Set32(b.colour), w));
  }
};

// The weights of a step: from the coverage bytes, or the call's one weight.
template <class V, Form form, bool byBytes>
typename V::Reg CoverWeights(const TrcRow &r, const TrcBlend &b, std::size_t i) {
  if constexpr (byBytes) {
    return WeightOf<V, form>(V::BytesToLanes(r.bytes + i), b.opacity);
  } else {
    return V::Set32(b.weight);
  }
}

template <class V, Form form, bool lighter, bool byBytes>
struct TowardExtreme {
  static void Step(const TrcRow &r, const TrcBlend &b, std::size_t i) {
    const typename V::Reg d = V::Load(r.dst + i), s = V::Load(r.pixels + i);
    // All four bytes: the alpha byte of the target is blended by weight 0.
    const typename V::Reg t = lighter ? V::MaxU8(s, d) : V::MinU8(s, d);
    V::Store(r.dst + i, BlendPixels<V, form>(d, t, CoverWeights<V, form, byBytes>(r, b, i)));
  }
};

template <class V, Form form, bool byBytes>
struct Recolour {
  // Per 16-bit lane p of the pixels' even bytes (blue, red) or odd bytes
  // (green, alpha): the lanes where |p - from| exceeds tolerance are not 0,
  // and target = clamp(p + to - from, 0, 255), taken as
  // min(max(p + (to - from + 255) - 255, 0), 255) in unsigned lanes.
  static void Lanes(typename V::Reg p, typename V::Reg from, typename V::Reg to,
                    typename V::Reg tolerance, typename V::Reg *over, typename V::Reg *target) {
    const typename V::Reg byte = V::Set16(255);
    *over = V::SubSatU16(V::Abs16(V::Sub16(p, from)), tolerance);
    const typename V::Reg shifted = V::Add16(p, V::Add16(V::Sub16(to, from), byte));
    *target = V::MinU16(V::SubSatU16(shifted, byte), byte);
  }

  static void Step(const TrcRow &r, const TrcBlend &b, std::size_t i) {
    const typename V::Reg evenBytes = V::Set32(0x00FF00FFu);
    const typename V::Reg d = V::Load(r.dst + i);
    const typename V::Reg from = V::Set32(b.colour), to = V::Set32(b.to);
    const typename V::Reg tolerance = V::Set16(static_cast<std::uint16_t>(b.tolerance));
    typename V::Reg overEven, overOdd, even, odd;
    Lanes(V::And(d, evenBytes), V::And(from, evenBytes), V::And(to, evenBytes), tolerance,
          &overEven, &even);
    // The alpha lane's tolerance, 65535, is never exceeded.
    Lanes(V::template ShiftRight16<8>(d), V::template ShiftRight16<8>(from),
          V::template ShiftRight16<8>(to), V::Or(tolerance, V::Set32(0xFFFF0000u)), &overOdd, &odd);
    const typename V::Reg inside = V::CmpEq32(V::Or(overEven, overOdd), V::Zero());
    // Weight 0 leaves a pixel outside the tolerance as it is.
    const typename V::Reg w = V::And(CoverWeights<V, form, byBytes>(r, b, i), inside);
    const typename V::Reg t = V::Or(even, V::template ShiftLeft16<8>(odd));
    V::Store(r.dst + i, BlendPixels<V, form>(d, t, w));
  }
};

// ---- The row loop ----------------------------------------------------------

template <class V, class Kernel>
void RunRow(const TrcRow &row, const TrcBlend &blend) {
  // Local copies: stores to the destination cannot change them, so the
  // compiler keeps them (and what is derived from them) in registers.
  const TrcRow r = row;
  const TrcBlend b = blend;
  std::size_t i = 0;
  // A cache line of pixels at a time, asking for the destination and source
  // lines kAhead pixels further on: left to the processor's own prefetching,
  // a row larger than the caches keeps the kernel waiting on memory. (A
  // prefetch past the end of a buffer is harmless; the address is formed as
  // an integer.)
  constexpr std::size_t kLine = 64 / sizeof(std::uint32_t);
  constexpr std::size_t kAhead = 512;
  static_assert(kLine % V::kPixels == 0, "steps fill a cache line");
  const auto ahead = [](const std::uint32_t *p) {
    return reinterpret_cast<const void *>(reinterpret_cast<std::uintptr_t>(p) + kAhead * sizeof *p);
  };
  for (; i + kLine <= r.n; i += kLine) {
    V::Prefetch(ahead(r.dst + i));
    if (r.pixels != nullptr) V::Prefetch(ahead(r.pixels + i));
    for (std::size_t k = 0; k < kLine; k += V::kPixels) Kernel::Step(r, b, i + k);
  }
  for (; i + V::kPixels <= r.n; i += V::kPixels) Kernel::Step(r, b, i);
  if (i == r.n) return;

  RunTail<V::kPixels>(row, i, [&](const TrcRow &local) { Kernel::Step(local, b, 0); });
}

template <class V>
constexpr TrcBlendKernels MakeTrcBlendKernels() {
  return TrcBlendKernels{
      {RunRow<V, PixelsByAlpha<V, Form::kExact>>, RunRow<V, PixelsByAlpha<V, Form::kFast>>},
      {RunRow<V, PixelsByWeight<V, Form::kExact>>, RunRow<V, PixelsByWeight<V, Form::kFast>>},
      {RunRow<V, PixelsByBytes<V, Form::kExact>>, RunRow<V, PixelsByBytes<V, Form::kFast>>},
      {RunRow<V, ColourByBytes<V, Form::kExact>>, RunRow<V, ColourByBytes<V, Form::kFast>>},
      {RunRow<V, ColourByInverse<V, Form::kExact>>, RunRow<V, ColourByInverse<V, Form::kFast>>},
      {RunRow<V, ColourByWords<V, Form::kExact>>, RunRow<V, ColourByWords<V, Form::kFast>>},
      {RunRow<V, ColourByWeight<V, Form::kExact>>, RunRow<V, ColourByWeight<V, Form::kFast>>},
      RunRow<V, ColourByFlag<V>>,
      RunRow<V, ColourByBlue<V, false>>,
      RunRow<V, ColourByBlue<V, true>>,
      RunRow<V, ColourScaledByBlue<V>>,
      RunRow<V, ColourErasingAlpha<V>>,
      RunRow<V, QuickMask<V>>,
      RunRow<V, GreysByBytes<V>>,
      RunRow<V, ColourOnBackground<V>>,
      RunRow<V, AlphaByBytes<V>>,
      {{RunRow<V, TowardExtreme<V, Form::kExact, false, true>>,
        RunRow<V, TowardExtreme<V, Form::kFast, false, true>>},
       {RunRow<V, TowardExtreme<V, Form::kExact, true, true>>,
        RunRow<V, TowardExtreme<V, Form::kFast, true, true>>}},
      {{RunRow<V, TowardExtreme<V, Form::kExact, false, false>>,
        RunRow<V, TowardExtreme<V, Form::kFast, false, false>>},
       {RunRow<V, TowardExtreme<V, Form::kExact, true, false>>,
        RunRow<V, TowardExtreme<V, Form::kFast, true, false>>}},
      {RunRow<V, Recolour<V, Form::kExact, true>>, RunRow<V, Recolour<V, Form::kFast, true>>},
      {RunRow<V, Recolour<V, Form::kExact, false>>, RunRow<V, Recolour<V, Form::kFast, false>>},
  };
}

}  // namespace
}  // namespace compositing
}  // namespace ostrel

// Grey compositing into 8-bit destinations: the vector kernels, written once
// for any vector width V (simd_sse2.h, simd_avx2.h) and included by the SSE2
// and AVX2 kernel files. Every kernel gives exactly the results of its
// scalar definition in grey_blend_scalar.cpp.
//
// A step takes V::kBytes destination bytes (with the source and coverage
// bytes that pair with them), widens them to two registers of 16-bit lanes,
// blends each lane as simd_lanes.h does, and packs the results back. Every
// result lies in 0..255, so the saturating pack stores it unchanged. Weights
// and products stay within 16 bits: c * o and d * W are at most 65025.
// The last bytes of a row go through a short copy, so no vector access
// reaches past the row.
#include <cstring>

#include "compositing/simd_lanes.h"

namespace ostrel {
namespace compositing {
namespace {

using frame::blend::Form;

template <class V>
using Reg = typename V::Reg;

// The weight of each coverage lane: exact (c * o) / 255, fast (c * o) >> 8.
template <class V, Form form>
Reg<V> GreyWeight(Reg<V> c, std::uint32_t opacity) {
  if (form == Form::kExact && opacity == 255) return c;
  const Reg<V> product = V::MulLo16(c, V::Set16(static_cast<std::uint16_t>(opacity)));
  return form == Form::kExact ? Div255<V>(product) : V::template ShiftRight16<8>(product);
}

// d moved toward s by the weights w, in the call's form.
template <class V, Form form>
Reg<V> GreyBlendLanes(Reg<V> d, Reg<V> s, Reg<V> w) {
  return BlendLanes<V, form>(d, s, form == Form::kExact ? w : V::Add16(w, w));
}

// ---- Kernels: 16-bit lanes in, 16-bit lanes out ----------------------------

template <class V, Form form, bool inverse>
struct DensityByAlpha {
  static Reg<V> Lanes(Reg<V> d, Reg<V>, Reg<V> a, const GreyBlend &b) {
    const Reg<V> c = inverse ? V::Xor(a, V::Set16(255)) : a;
    return GreyBlendLanes<V, form>(d, V::Set16(static_cast<std::uint16_t>(b.density)),
                                   GreyWeight<V, form>(c, b.opacity));
  }
};

template <class V, bool twoLevel>
struct GreysByAlpha {
  static Reg<V> Lanes(Reg<V> d, Reg<V> s, Reg<V> a, const GreyBlend &b) {
    const Reg<V> r =
        GreyBlendLanes<V, Form::kExact>(d, s, GreyWeight<V, Form::kExact>(a, b.opacity));
    return twoLevel ? V::AndNot(V::CmpEq16(r, V::Zero()), V::Set16(255)) : r;
  }
};

template <class V, Form form>
struct ApplyAlpha {
  static Reg<V> Lanes(Reg<V> d, Reg<V>, Reg<V> a, const GreyBlend &b) {
    if (form == Form::kExact)
      return Div255<V>(V::MulLo16(d, GreyWeight<V, Form::kExact>(a, b.opacity)));
    const Reg<V> w = b.opacity == 255 ? a : GreyWeight<V, Form::kFast>(a, b.opacity);
    return V::template ShiftRight16<8>(V::MulLo16(d, w));
  }
};

// ---- The row loop ----------------------------------------------------------

template <class V, class Kernel>
void Step(const GreyRow &r, const GreyBlend &b, std::size_t i) {
  const Reg<V> zero = V::Zero();
  const Reg<V> d = V::LoadBytes(r.dst + i);
  const Reg<V> s = r.src != nullptr ? V::LoadBytes(r.src + i) : zero;
  const Reg<V> a = r.alpha != nullptr ? V::LoadBytes(r.alpha + i) : zero;
  const Reg<V> lo =
      Kernel::Lanes(V::UnpackLo8(d, zero), V::UnpackLo8(s, zero), V::UnpackLo8(a, zero), b);
  const Reg<V> hi =
      Kernel::Lanes(V::UnpackHi8(d, zero), V::UnpackHi8(s, zero), V::UnpackHi8(a, zero), b);
  V::StoreBytes(r.dst + i, V::PackUs16(lo, hi));
}

template <class V, class Kernel>
void RunGreyRow(const GreyRow &row, const GreyBlend &blend) {
  // Local copies: stores to the destination cannot change them.
  const GreyRow r = row;
  const GreyBlend b = blend;
  std::size_t i = 0;
  for (; i + V::kBytes <= r.n; i += V::kBytes) Step<V, Kernel>(r, b, i);
  if (i == r.n) return;

  const GreyRow rest = r.From(i);
  std::uint8_t dst[V::kBytes] = {}, src[V::kBytes] = {}, alpha[V::kBytes] = {};
  GreyRow copy{dst, V::kBytes};
  std::memcpy(dst, rest.dst, rest.n);
  if (rest.src) copy.src = static_cast<std::uint8_t *>(std::memcpy(src, rest.src, rest.n));
  if (rest.alpha) copy.alpha = static_cast<std::uint8_t *>(std::memcpy(alpha, rest.alpha, rest.n));
  Step<V, Kernel>(copy, b, 0);
  std::memcpy(rest.dst, dst, rest.n);
}

// The lookup differs per table.
template <class V>
constexpr GreyBlendKernels MakeGreyBlendKernels(GreyRowKernel lookup) {
  return GreyBlendKernels{
      {RunGreyRow<V, DensityByAlpha<V, Form::kExact, false>>,
       RunGreyRow<V, DensityByAlpha<V, Form::kFast, false>>},
      {RunGreyRow<V, DensityByAlpha<V, Form::kExact, true>>,
       RunGreyRow<V, DensityByAlpha<V, Form::kFast, true>>},
      RunGreyRow<V, GreysByAlpha<V, false>>,
      RunGreyRow<V, GreysByAlpha<V, true>>,
      {RunGreyRow<V, ApplyAlpha<V, Form::kExact>>, RunGreyRow<V, ApplyAlpha<V, Form::kFast>>},
      lookup,
  };
}

}  // namespace
}  // namespace compositing
}  // namespace ostrel

// Grey compositing into 8-bit destinations: the vector kernels, written once
// for any vector operation set V (simd_sse2.h, simd_avx2.h, simd_neon.h) and
// included by the vector kernel files. Every kernel gives exactly the results
// of its scalar definition (grey_blend_scalar.cpp, or for the tone
// operations' own kernels their row functions in tone.cpp).
//
// A step takes V::kBytes destination bytes (with the source and coverage
// bytes that pair with them), widens them to two registers of 16-bit lanes,
// blends each lane as simd_lanes.h does, and packs the results back. Every
// result lies in 0..255, so the saturating pack stores it unchanged. Weights
// and products stay within 16 bits: c * o and d * W are at most 65025.
// A row that is not a whole number of steps ends with a step that overlaps
// the one before, its inputs read before any store; a row shorter than a step
// goes through a short copy. No vector access reaches past the row.
#include <cstring>
#include <type_traits>

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
// A kernel's step is Load, which reads the V::kBytes bytes (or pixels) of
// each row the kernel reads from i on, and Store, which computes from them
// and stores; On<W> is the same kernel for vector width W. A lanes kernel
// derives from ByLanes, whose Load reads a null alpha row as 255 and whose
// Store widens the bytes, runs Lanes on each half and stores the packed
// results to dst.

template <class V, class Kernel>
struct ByLanes {
  struct In {
    Reg<V> d, s, a;
  };
  static In Load(const GreyRow &r, std::size_t i) {
    return {V::LoadBytes(r.dst + i), r.src != nullptr ? V::LoadBytes(r.src + i) : V::Zero(),
            r.alpha != nullptr ? V::LoadBytes(r.alpha + i) : V::Set16(0xFFFF)};
  }
  static void Store(const GreyRow &r, const GreyBlend &b, std::size_t i, const In &in) {
    const Reg<V> zero = V::Zero();
    const Reg<V> lo = Kernel::Lanes(V::UnpackLo8(in.d, zero), V::UnpackLo8(in.s, zero),
                                    V::UnpackLo8(in.a, zero), b);
    const Reg<V> hi = Kernel::Lanes(V::UnpackHi8(in.d, zero), V::UnpackHi8(in.s, zero),
                                    V::UnpackHi8(in.a, zero), b);
    V::StoreBytes(r.dst + i, V::PackUs16(lo, hi));
  }
};

template <class V, Form form, bool inverse>
struct DensityByAlpha : ByLanes<V, DensityByAlpha<V, form, inverse>> {
  template <class W>
  using On = DensityByAlpha<W, form, inverse>;
  static Reg<V> Lanes(Reg<V> d, Reg<V>, Reg<V> a, const GreyBlend &b) {
    const Reg<V> c = inverse ? V::Xor(a, V::Set16(255)) : a;
    return GreyBlendLanes<V, form>(d, V::Set16(static_cast<std::uint16_t>(b.density)),
                                   GreyWeight<V, form>(c, b.opacity));
  }
};

template <class V, Form form, bool twoLevel>
struct GreysByAlpha : ByLanes<V, GreysByAlpha<V, form, twoLevel>> {
  template <class W>
  using On = GreysByAlpha<W, form, twoLevel>;
  static Reg<V> Lanes(Reg<V> d, Reg<V> s, Reg<V> a, const GreyBlend &b) {
    const Reg<V> r = GreyBlendLanes<V, form>(d, s, GreyWeight<V, form>(a, b.opacity));
    return twoLevel ? V::AndNot(V::CmpEq16(r, V::Zero()), V::Set16(255)) : r;
  }
};

template <class V, Form form, bool lighter>
struct ExtremeBytes : ByLanes<V, ExtremeBytes<V, form, lighter>> {
  template <class W>
  using On = ExtremeBytes<W, form, lighter>;
  static Reg<V> Lanes(Reg<V> d, Reg<V> s, Reg<V> a, const GreyBlend &b) {
    const Reg<V> t = lighter ? V::MaxU16(s, d) : V::MinU16(s, d);
    return GreyBlendLanes<V, form>(d, t, GreyWeight<V, form>(a, b.opacity));
  }
};

template <class V, Form form>
struct ApplyAlpha : ByLanes<V, ApplyAlpha<V, form>> {
  template <class W>
  using On = ApplyAlpha<W, form>;
  static Reg<V> Lanes(Reg<V> d, Reg<V>, Reg<V> a, const GreyBlend &b) {
    if (form == Form::kExact)
      return Div255<V>(V::MulLo16(d, GreyWeight<V, Form::kExact>(a, b.opacity)));
    const Reg<V> w = b.opacity == 255 ? a : GreyWeight<V, Form::kFast>(a, b.opacity);
    return V::template ShiftRight16<8>(V::MulLo16(d, w));
  }
};

// ---- Kernels that write two rows -------------------------------------------

// The ink move, exact form: wanted = (s * o) / 255 in 16-bit lanes, room
// 255 - d, the smaller moved where the protection byte is 0.
template <class V>
struct MoveInk {
  template <class W>
  using On = MoveInk<W>;
  static void Lanes(Reg<V> &d, Reg<V> &s, Reg<V> p, const GreyBlend &b) {
    const Reg<V> wanted = Div255<V>(V::MulLo16(s, V::Set16(static_cast<std::uint16_t>(b.opacity))));
    const Reg<V> room = V::Xor(d, V::Set16(255));
    const Reg<V> m = V::And(V::MinU16(wanted, room), V::CmpEq16(p, V::Zero()));
    d = V::Add16(d, m);
    s = V::Sub16(s, m);
  }
  struct In {
    Reg<V> d, s, p;
  };
  static In Load(const GreyRow &r, std::size_t i) {
    return {V::LoadBytes(r.dst + i), V::LoadBytes(r.second + i),
            r.alpha != nullptr ? V::LoadBytes(r.alpha + i) : V::Zero()};
  }
  static void Store(const GreyRow &r, const GreyBlend &b, std::size_t i, const In &in) {
    const Reg<V> zero = V::Zero();
    Reg<V> dLo = V::UnpackLo8(in.d, zero), sLo = V::UnpackLo8(in.s, zero);
    Reg<V> dHi = V::UnpackHi8(in.d, zero), sHi = V::UnpackHi8(in.s, zero);
    Lanes(dLo, sLo, V::UnpackLo8(in.p, zero), b);
    Lanes(dHi, sHi, V::UnpackHi8(in.p, zero), b);
    V::StoreBytes(r.dst + i, V::PackUs16(dLo, dHi));
    V::StoreBytes(r.second + i, V::PackUs16(sLo, sHi));
  }
};

// The luminance split: V::kBytes pixels, four registers of V::kPixels, each
// turned into 32-bit lanes of luminance | alpha << 16 and narrowed in two
// rounds (the second parts luminance bytes from alpha bytes).
template <class V>
struct SplitLuminance {
  template <class W>
  using On = SplitLuminance<W>;
  // As 16-bit lanes a pixel is [green << 8 | blue, alpha << 8 | red]. The
  // weighted sum 29 blue + 150 green + 77 red + 128 is at most 65408, so it
  // is formed in the low lane without leaving 16 bits.
  static Reg<V> LumaAlpha(Reg<V> p) {
    const Reg<V> blueRed = V::And(p, V::Set16(0x00FF));
    const Reg<V> greenAlpha = V::template ShiftRight16<8>(p);
    const Reg<V> t = V::Add16(V::MulLo16(blueRed, V::Set32(77u << 16 | 29u)),
                              V::MulLo16(greenAlpha, V::Set32(150u)));  // [29b + 150g, 77r]
    const Reg<V> sum = V::Add16(V::Add16(t, V::template ShiftRight32<16>(t)), V::Set32(128u));
    return V::Or(V::And(V::template ShiftRight16<8>(sum), V::Set32(0xFFu)),
                 V::And(greenAlpha, V::Set32(0xFFFF0000u)));
  }
  struct In {
    Reg<V> p[4];
  };
  static In Load(const GreyRow &r, std::size_t i) {
    const std::uint32_t *p = r.pixels + i;
    return {{V::Load(p), V::Load(p + V::kPixels), V::Load(p + 2 * V::kPixels),
             V::Load(p + 3 * V::kPixels)}};
  }
  static void Store(const GreyRow &r, const GreyBlend &, std::size_t i, const In &in) {
    const Reg<V> first = V::NarrowWords(LumaAlpha(in.p[0]), LumaAlpha(in.p[1]));
    const Reg<V> last = V::NarrowWords(LumaAlpha(in.p[2]), LumaAlpha(in.p[3]));
    const Reg<V> low = V::Set16(0x00FF);
    V::StoreBytes(r.dst + i, V::NarrowWords(V::And(first, low), V::And(last, low)));
    V::StoreBytes(r.second + i, V::NarrowWords(V::template ShiftRight16<8>(first),
                                               V::template ShiftRight16<8>(last)));
  }
};

// ---- The row loop ----------------------------------------------------------

// A row shorter than a step runs one step on local rows; the rows written
// are copied back.
template <class V, class Kernel>
void RunShortRow(const GreyRow &r, const GreyBlend &b) {
  RunTail<V::kBytes>(
      r, 0, [&](const GreyRow &local) { Kernel::Store(local, b, 0, Kernel::Load(local, 0)); });
}

// Narrower (void: none) is a vector width that takes the rows shorter than a
// step of V.
template <class V, class Kernel, class Narrower>
void RunGreyRow(const GreyRow &row, const GreyBlend &blend) {
  static_assert(4 * V::kPixels == V::kBytes, "a step takes four registers of pixels");
  // Local copies: stores to the destination cannot change them.
  const GreyRow r = row;
  const GreyBlend b = blend;
  if (r.n < V::kBytes) {
    if constexpr (std::is_void<Narrower>::value) {
      return RunShortRow<V, Kernel>(row, b);  // the caller's record (see RunTail)
    } else {
      return RunGreyRow<Narrower, typename Kernel::template On<Narrower>, void>(row, b);
    }
  }
  RunSteps<V::kBytes>(
      r.n, [&](std::size_t i) { return Kernel::Load(r, i); },
      [&](std::size_t i, const typename Kernel::In &in) { Kernel::Store(r, b, i, in); });
}

// The lookup entry of a table whose vector form LongRow(dst, n, table) takes
// rows of at least kLookupVectorFrom bytes that lie apart from the table.
// Shorter rows, and rows the table lies in (whose entries the scalar loop
// would read after changing them), go byte by byte.
template <void (*LongRow)(std::uint8_t *, std::size_t, const std::uint8_t *)>
void LookupRowBy(const GreyRow &row, const GreyBlend &blend) {
  std::uint8_t *const dst = row.dst;
  const std::size_t n = row.n;
  const std::uint8_t *const table = blend.table;
  if (n < kLookupVectorFrom || !frame::Disjoint(dst, n, table, 256)) {
    LookupRow(row, blend);
  } else {
    LongRow(dst, n, table);
  }
}

// The lookup differs per table; Narrower as RunGreyRow.
template <class V, class Narrower>
constexpr GreyBlendKernels MakeGreyBlendKernels(GreyRowKernel lookup) {
  return GreyBlendKernels{
      {RunGreyRow<V, DensityByAlpha<V, Form::kExact, false>, Narrower>,
       RunGreyRow<V, DensityByAlpha<V, Form::kFast, false>, Narrower>},
      {RunGreyRow<V, DensityByAlpha<V, Form::kExact, true>, Narrower>,
       RunGreyRow<V, DensityByAlpha<V, Form::kFast, true>, Narrower>},
      {RunGreyRow<V, GreysByAlpha<V, Form::kExact, false>, Narrower>,
       RunGreyRow<V, GreysByAlpha<V, Form::kFast, false>, Narrower>},
      RunGreyRow<V, GreysByAlpha<V, Form::kExact, true>, Narrower>,
      {RunGreyRow<V, ExtremeBytes<V, Form::kExact, false>, Narrower>,
       RunGreyRow<V, ExtremeBytes<V, Form::kFast, false>, Narrower>},
      {RunGreyRow<V, ExtremeBytes<V, Form::kExact, true>, Narrower>,
       RunGreyRow<V, ExtremeBytes<V, Form::kFast, true>, Narrower>},
      {RunGreyRow<V, ApplyAlpha<V, Form::kExact>, Narrower>,
       RunGreyRow<V, ApplyAlpha<V, Form::kFast>, Narrower>},
      lookup,
      RunGreyRow<V, MoveInk<V>, Narrower>,
      RunGreyRow<V, SplitLuminance<V>, Narrower>,
  };
}

}  // namespace
}  // namespace compositing
}  // namespace ostrel

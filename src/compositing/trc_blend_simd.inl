// Blends into 32-bit colour pixels: the vector kernels, written once for any
// vector width V (simd_sse2.h, simd_avx2.h) and included by the SSE2 and
// AVX2 kernel files. Every kernel gives exactly the results of its scalar
// definition in trc_blend_scalar.cpp.
//
// How the arithmetic is done on vectors. Channels are widened to 16-bit
// lanes, with the pixel's weight in its blue, green and red lanes and 0 in
// its alpha lane (so the alpha byte comes through unchanged).
//   exact  d + ((s - d) * W) / 255, truncated toward zero, as
//          d + Div255(max(s - d, 0) * W) - Div255(max(d - s, 0) * W):
//          both products lie in 0..65535.
//   fast   d + floor(((s - d) * w) / 256) = (s * w + d * (256 - w)) >> 8:
//          the sum lies in 0..65280, so no signed arithmetic is needed.
//   Div255(x) = (x * 0x8081) >> 23, which equals x / 255 for every x in
//          0..65535 (blend::Div255ByMultiply).
// The last few pixels of a row go through a short copy, so no vector access
// reaches past the row.
#include <cstring>

namespace ostrel {
namespace {

using blend::Form;

// x / 255 for 16-bit lanes, as blend::Div255ByMultiply: the high half of the
// product is the product shifted by 16.
template <class V>
typename V::Reg Div255(typename V::Reg x) {
  const typename V::Reg high = V::MulHiU16(x, V::Set16(blend::kDiv255Multiplier));
  return V::template ShiftRight16<blend::kDiv255Shift - 16>(high);
}

// The weights of a call, from coverages c (0..257) in 32-bit lanes and the
// opacity in every lane.
template <class V, Form form>
typename V::Reg WeightOf(typename V::Reg c, typename V::Reg opacity) {
  const typename V::Reg product = V::MulLo16(c, opacity);  // at most 65535
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

// One half (2 or 4 pixels) of 16-bit channel lanes.
template <class V, Form form>
typename V::Reg BlendLanes(typename V::Reg d, typename V::Reg s, typename V::Reg w) {
  if (form == Form::kExact) {
    const typename V::Reg up = Div255<V>(V::MulLo16(V::SubSatU16(s, d), w));
    const typename V::Reg down = Div255<V>(V::MulLo16(V::SubSatU16(d, s), w));
    return V::And(V::Add16(d, V::Sub16(up, down)), V::Set16(0xFF));
  }
  const typename V::Reg keep = V::Sub16(V::Set16(256), w);
  return V::template ShiftRight16<8>(V::Add16(V::MulLo16(s, w), V::MulLo16(d, keep)));
}

// Moves the pixels d toward s by the per-pixel weights w (32-bit lanes):
// blue, green and red, or with alphaOnly the alpha byte alone.
template <class V, Form form, bool alphaOnly = false>
typename V::Reg BlendPixels(typename V::Reg d, typename V::Reg s, typename V::Reg w) {
  const typename V::Reg doubled = V::Or(w, V::template ShiftLeft32<16>(w));
  const typename V::Reg lanes = alphaOnly ? V::Set64(0xFFFF0000u, 0) : V::Set64(0x0000FFFFu, 0xFFFFFFFFu);
  const typename V::Reg wLo = V::And(V::InterleaveLo32(doubled, doubled), lanes);
  const typename V::Reg wHi = V::And(V::InterleaveHi32(doubled, doubled), lanes);
  return V::NarrowSat16(BlendLanes<V, form>(V::WidenLo8(d), V::WidenLo8(s), wLo),
                        BlendLanes<V, form>(V::WidenHi8(d), V::WidenHi8(s), wHi));
}

// ---- Kernels: one step of V::kPixels pixels from pixel i ------------------

template <class V, Form form>
struct PixelsByAlpha {
  static void Step(const TrcRow &r, const TrcBlend &b, std::size_t i) {
    const typename V::Reg s = V::Load(r.pixels + i);
    const typename V::Reg w = WeightOf<V, form>(V::template ShiftRight32<24>(s), V::Set32(b.opacity));
    V::Store(r.dst + i, BlendPixels<V, form>(V::Load(r.dst + i), s, w));
  }
};

template <class V, Form form>
struct PixelsByWeight {
  static void Step(const TrcRow &r, const TrcBlend &b, std::size_t i) {
    V::Store(r.dst + i, BlendPixels<V, form>(V::Load(r.dst + i), V::Load(r.pixels + i), V::Set32(b.weight)));
  }
};

template <class V, Form form>
struct PixelsByBytes {
  static void Step(const TrcRow &r, const TrcBlend &b, std::size_t i) {
    const typename V::Reg w = WeightOf<V, form>(V::BytesToLanes(r.bytes + i), V::Set32(b.opacity));
    V::Store(r.dst + i, BlendPixels<V, form>(V::Load(r.dst + i), V::Load(r.pixels + i), w));
  }
};

template <class V, Form form>
struct ColourByBytes {
  static void Step(const TrcRow &r, const TrcBlend &b, std::size_t i) {
    const typename V::Reg w = WeightOf<V, form>(V::BytesToLanes(r.bytes + i), V::Set32(b.opacity));
    V::Store(r.dst + i, BlendPixels<V, form>(V::Load(r.dst + i), V::Set32(b.colour), w));
  }
};

template <class V, Form form>
struct ColourByInverse {
  static void Step(const TrcRow &r, const TrcBlend &b, std::size_t i) {
    const typename V::Reg c = V::Xor(V::BytesToLanes(r.bytes + i), V::Set32(255));
    const typename V::Reg w = WeightOf<V, form>(c, V::Set32(b.opacity));
    V::Store(r.dst + i, BlendPixels<V, form>(V::Load(r.dst + i), V::Set32(b.colour), w));
  }
};

template <class V, Form form>
struct ColourByWords {
  static void Step(const TrcRow &r, const TrcBlend &b, std::size_t i) {
    const typename V::Reg word = V::WordsToLanes(r.words + i);
    const typename V::Reg c = form == Form::kExact ? Div255<V>(word) : V::template ShiftRight32<8>(word);
    const typename V::Reg w = WeightOf<V, form>(c, V::Set32(b.opacity));
    V::Store(r.dst + i, BlendPixels<V, form>(V::Load(r.dst + i), V::Set32(b.colour), w));
  }
};

template <class V, Form form>
struct ColourByWeight {
  static void Step(const TrcRow &r, const TrcBlend &b, std::size_t i) {
    V::Store(r.dst + i, BlendPixels<V, form>(V::Load(r.dst + i), V::Set32(b.colour), V::Set32(b.weight)));
  }
};

template <class V>
struct ColourByFlag {
  static void Step(const TrcRow &r, const TrcBlend &b, std::size_t i) {
    const typename V::Reg c = Flag<V>(V::BytesToLanes(r.bytes + i));
    const typename V::Reg w = WeightOf<V, Form::kExact>(c, V::Set32(b.opacity));
    V::Store(r.dst + i, BlendPixels<V, Form::kExact>(V::Load(r.dst + i), V::Set32(b.colour), w));
  }
};

template <class V, bool flag>
struct ColourByBlue {
  static void Step(const TrcRow &r, const TrcBlend &b, std::size_t i) {
    const typename V::Reg blue = V::And(V::Load(r.pixels + i), V::Set32(0xFF));
    const typename V::Reg w = WeightOf<V, Form::kExact>(flag ? Flag<V>(blue) : blue, V::Set32(b.opacity));
    V::Store(r.dst + i, BlendPixels<V, Form::kExact>(V::Load(r.dst + i), V::Set32(b.colour), w));
  }
};

template <class V>
struct ColourScaledByBlue {
  static void Step(const TrcRow &r, const TrcBlend &b, std::size_t i) {
    const typename V::Reg d = V::Load(r.dst + i);
    const typename V::Reg blue = V::And(V::Load(r.pixels + i), V::Set32(0xFF));
    const typename V::Reg alphaOnly = V::And(d, V::Set32(0xFF000000u));
    const typename V::Reg scaled = BlendPixels<V, Form::kExact>(alphaOnly, V::Set32(b.colour), blue);
    V::Store(r.dst + i, Select<V>(V::CmpEq32(blue, V::Zero()), d, scaled));
  }
};

template <class V>
struct ColourErasingAlpha {
  static void Step(const TrcRow &r, const TrcBlend &b, std::size_t i) {
    const typename V::Reg c = V::BytesToLanes(r.bytes + i);
    const typename V::Reg w = WeightOf<V, Form::kExact>(c, V::Set32(b.opacity));
    const typename V::Reg out = BlendPixels<V, Form::kExact>(V::Load(r.dst + i), V::Set32(b.colour), w);
    const typename V::Reg keep = V::Or(V::CmpEq32(c, V::Zero()), V::Set32(0x00FFFFFFu));
    V::Store(r.dst + i, V::And(out, keep));
  }
};

template <class V>
struct QuickMask {
  static void Step(const TrcRow &r, const TrcBlend &b, std::size_t i) {
    const typename V::Reg m = V::BytesToLanes(r.bytes + i);
    const typename V::Reg colour = V::Set32(b.colour);
    const typename V::Reg w = WeightOf<V, Form::kExact>(V::Xor(m, V::Set32(255)), V::Set32(b.opacity));
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
    const typename V::Reg w = WeightOf<V, Form::kExact>(V::BytesToLanes(r.bytes + i), V::Set32(b.opacity));
    V::Store(r.dst + i, BlendPixels<V, Form::kExact>(V::Load(r.dst + i), grey, w));
  }
};

template <class V>
struct ColourOnBackground {
  static void Step(const TrcRow &r, const TrcBlend &b, std::size_t i) {
    const typename V::Reg d = V::Load(r.dst + i);
    const typename V::Reg m = V::BytesToLanes(r.bytes + i);
    const typename V::Reg laid = BlendPixels<V, Form::kExact>(V::Set32(b.background), V::Set32(b.colour), m);
    const typename V::Reg out = BlendPixels<V, Form::kExact>(d, laid, V::Set32(b.opacity));
    V::Store(r.dst + i, Select<V>(V::CmpEq32(m, V::Zero()), d, out));
  }
};

template <class V>
struct AlphaByBytes {
  static void Step(const TrcRow &r, const TrcBlend &b, std::size_t i) {
    const typename V::Reg w = WeightOf<V, Form::kExact>(V::BytesToLanes(r.bytes + i), V::Set32(b.opacity));
    V::Store(r.dst + i, BlendPixels<V, Form::kExact, true>(V::Load(r.dst + i), V::Set32(b.colour), w));
  }
};

// ---- The row loop ----------------------------------------------------------

template <class V, class Kernel>
void RunRow(const TrcRow &r, const TrcBlend &b) {
  std::size_t i = 0;
  for (; i + V::kPixels <= r.n; i += V::kPixels) Kernel::Step(r, b, i);
  if (i == r.n) return;

  const TrcRow rest = r.From(i);
  std::uint32_t dst[V::kPixels] = {}, pixels[V::kPixels] = {};
  std::uint8_t bytes[V::kPixels] = {}, greys[V::kPixels] = {};
  std::uint16_t words[V::kPixels] = {};
  TrcRow copy{dst, V::kPixels};
  std::memcpy(dst, rest.dst, rest.n * sizeof *dst);
  if (rest.pixels) copy.pixels = static_cast<std::uint32_t *>(std::memcpy(pixels, rest.pixels, rest.n * sizeof *pixels));
  if (rest.bytes) copy.bytes = static_cast<std::uint8_t *>(std::memcpy(bytes, rest.bytes, rest.n));
  if (rest.greys) copy.greys = static_cast<std::uint8_t *>(std::memcpy(greys, rest.greys, rest.n));
  if (rest.words) copy.words = static_cast<std::uint16_t *>(std::memcpy(words, rest.words, rest.n * sizeof *words));
  Kernel::Step(copy, b, 0);
  std::memcpy(rest.dst, dst, rest.n * sizeof *dst);
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
  };
}

}  // namespace
}  // namespace ostrel

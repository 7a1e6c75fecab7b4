// Blends into 32-bit colour pixels: the scalar definitions, one loop per
// kernel, written as the rule each one implements.
#include "compositing/trc_blend_kernels.h"
#include "frame/blend.h"
#include "frame/region.h"

namespace ostrel {
namespace compositing {
namespace {

using frame::blend::ExactPixel;
using frame::blend::ExactWeight;
using frame::blend::Form;
using frame::blend::Pixel;
using frame::blend::Weight;

constexpr std::uint32_t kAlphaByte = 0xFF000000u;

// The grey g as a colour: (g, g, g).
constexpr std::uint32_t GreyColour(std::uint32_t g) { return g * 0x010101u; }

template <Form form>
void PixelsByAlpha(const TrcRow &r, const TrcBlend &b) {
  for (std::size_t i = 0; i < r.n; ++i) {
    const std::uint32_t c = r.pixels[i] >> 24;
    r.dst[i] = Pixel<form>(r.dst[i], r.pixels[i], Weight<form>(c, b.opacity));
  }
}

template <Form form>
void PixelsByWeight(const TrcRow &r, const TrcBlend &b) {
  for (std::size_t i = 0; i < r.n; ++i) r.dst[i] = Pixel<form>(r.dst[i], r.pixels[i], b.weight);
}

template <Form form>
void PixelsByBytes(const TrcRow &r, const TrcBlend &b) {
  for (std::size_t i = 0; i < r.n; ++i) {
    r.dst[i] = Pixel<form>(r.dst[i], r.pixels[i], Weight<form>(r.bytes[i], b.opacity));
  }
}

template <Form form>
void ColourByBytes(const TrcRow &r, const TrcBlend &b) {
  for (std::size_t i = 0; i < r.n; ++i) {
    r.dst[i] = Pixel<form>(r.dst[i], b.colour, Weight<form>(r.bytes[i], b.opacity));
  }
}

template <Form form>
void ColourByInverse(const TrcRow &r, const TrcBlend &b) {
  for (std::size_t i = 0; i < r.n; ++i) {
    r.dst[i] = Pixel<form>(r.dst[i], b.colour, Weight<form>(255u - r.bytes[i], b.opacity));
  }
}

template <Form form>
void ColourByWords(const TrcRow &r, const TrcBlend &b) {
  for (std::size_t i = 0; i < r.n; ++i) {
    const std::uint32_t c = form == Form::kExact ? r.words[i] / 255u : r.words[i] >> 8u;
    r.dst[i] = Pixel<form>(r.dst[i], b.colour, Weight<form>(c, b.opacity));
  }
}

template <Form form>
void ColourByWeight(const TrcRow &r, const TrcBlend &b) {
  for (std::size_t i = 0; i < r.n; ++i) r.dst[i] = Pixel<form>(r.dst[i], b.colour, b.weight);
}

void ColourByFlag(const TrcRow &r, const TrcBlend &b) {
  for (std::size_t i = 0; i < r.n; ++i) {
    const std::uint32_t c = r.bytes[i] != 0 ? 255u : 0u;
    r.dst[i] = ExactPixel(r.dst[i], b.colour, ExactWeight(c, b.opacity));
  }
}

void ColourByBlue(const TrcRow &r, const TrcBlend &b) {
  for (std::size_t i = 0; i < r.n; ++i) {
    const std::uint32_t c = r.pixels[i] & 0xFFu;
    r.dst[i] = ExactPixel(r.dst[i], b.colour, ExactWeight(c, b.opacity));
  }
}

void ColourByBlueFlag(const TrcRow &r, const TrcBlend &b) {
  for (std::size_t i = 0; i < r.n; ++i) {
    const std::uint32_t c = (r.pixels[i] & 0xFFu) != 0 ? 255u : 0u;
    r.dst[i] = ExactPixel(r.dst[i], b.colour, ExactWeight(c, b.opacity));
  }
}

// (b * k) / 255 is k laid over black with weight b.
void ColourScaledByBlue(const TrcRow &r, const TrcBlend &b) {
  for (std::size_t i = 0; i < r.n; ++i) {
    const std::uint32_t blue = r.pixels[i] & 0xFFu;
    if (blue != 0) r.dst[i] = ExactPixel(r.dst[i] & kAlphaByte, b.colour, blue);
  }
}

void ColourErasingAlpha(const TrcRow &r, const TrcBlend &b) {
  for (std::size_t i = 0; i < r.n; ++i) {
    const std::uint32_t c = r.bytes[i];
    if (c == 0) continue;
    r.dst[i] = ExactPixel(r.dst[i], b.colour, ExactWeight(c, b.opacity)) & ~kAlphaByte;
  }
}

void QuickMask(const TrcRow &r, const TrcBlend &b) {
  for (std::size_t i = 0; i < r.n; ++i) {
    const std::uint32_t m = r.bytes[i];
    r.dst[i] = m == 0 ? b.colour : ExactPixel(r.dst[i], b.colour, ExactWeight(255u - m, b.opacity));
  }
}

void GreysByBytes(const TrcRow &r, const TrcBlend &b) {
  for (std::size_t i = 0; i < r.n; ++i) {
    r.dst[i] = ExactPixel(r.dst[i], GreyColour(r.greys[i]), ExactWeight(r.bytes[i], b.opacity));
  }
}

void ColourOnBackground(const TrcRow &r, const TrcBlend &b) {
  for (std::size_t i = 0; i < r.n; ++i) {
    const std::uint32_t m = r.bytes[i];
    if (m == 0) continue;
    const std::uint32_t laid = ExactPixel(b.background, b.colour, m);
    r.dst[i] = ExactPixel(r.dst[i], laid, b.opacity);
  }
}

void AlphaByBytes(const TrcRow &r, const TrcBlend &b) {
  const std::int32_t value = static_cast<std::int32_t>(b.colour >> 24);
  for (std::size_t i = 0; i < r.n; ++i) {
    const std::int32_t a = static_cast<std::int32_t>(r.dst[i] >> 24);
    const std::uint32_t alpha = static_cast<std::uint32_t>(
        frame::blend::ExactChannel(a, value, ExactWeight(r.bytes[i], b.opacity)));
    r.dst[i] = (r.dst[i] & ~kAlphaByte) | ((alpha & 0xFFu) << 24);
  }
}

// The darken (min) or lighten (max) of blue, green and red of two pixels;
// alpha byte 0.
template <bool lighter>
std::uint32_t ExtremePixel(std::uint32_t s, std::uint32_t d) {
  std::uint32_t t = 0;
  for (int shift = 0; shift <= 16; shift += 8) {
    const std::uint32_t a = (s >> shift) & 0xFFu, b = (d >> shift) & 0xFFu;
    t |= (lighter ? (a > b ? a : b) : (a < b ? a : b)) << shift;
  }
  return t;
}

template <Form form, bool lighter, bool byBytes>
void TowardExtreme(const TrcRow &r, const TrcBlend &b) {
  for (std::size_t i = 0; i < r.n; ++i) {
    const std::uint32_t w = byBytes ? Weight<form>(r.bytes[i], b.opacity) : b.weight;
    r.dst[i] = Pixel<form>(r.dst[i], ExtremePixel<lighter>(r.pixels[i], r.dst[i]), w);
  }
}

// The recoloured target of pixel p: each channel's offset e from the from
// colour carried over to the to colour, clamped to 0..255. False when some
// |e| exceeds the tolerance (the pixel is left alone).
bool RecolourTarget(std::uint32_t p, const TrcBlend &b, std::uint32_t *target) {
  const auto tolerance = static_cast<std::int32_t>(b.tolerance);
  std::uint32_t t = 0;
  for (int shift = 0; shift <= 16; shift += 8) {
    const std::int32_t e = static_cast<std::int32_t>((p >> shift) & 0xFFu) -
                           static_cast<std::int32_t>((b.colour >> shift) & 0xFFu);
    if (e > tolerance || -e > tolerance) return false;
    std::int32_t v = static_cast<std::int32_t>((b.to >> shift) & 0xFFu) + e;
    v = v < 0 ? 0 : v > 255 ? 255 : v;
    t |= static_cast<std::uint32_t>(v) << shift;
  }
  *target = t;
  return true;
}

template <Form form, bool byBytes>
void Recolour(const TrcRow &r, const TrcBlend &b) {
  for (std::size_t i = 0; i < r.n; ++i) {
    std::uint32_t t;
    if (RecolourTarget(r.dst[i], b, &t)) {
      const std::uint32_t w = byBytes ? Weight<form>(r.bytes[i], b.opacity) : b.weight;
      r.dst[i] = Pixel<form>(r.dst[i], t, w);
    }
  }
}

}  // namespace

#define OSTREL_BOTH_FORMS(kernel) \
  { kernel<Form::kExact>, kernel<Form::kFast> }

const TrcBlendKernels TrcBlendKernelsScalar = {
    OSTREL_BOTH_FORMS(PixelsByAlpha),
    OSTREL_BOTH_FORMS(PixelsByWeight),
    OSTREL_BOTH_FORMS(PixelsByBytes),
    OSTREL_BOTH_FORMS(ColourByBytes),
    OSTREL_BOTH_FORMS(ColourByInverse),
    OSTREL_BOTH_FORMS(ColourByWords),
    OSTREL_BOTH_FORMS(ColourByWeight),
    ColourByFlag,
    ColourByBlue,
    ColourByBlueFlag,
    ColourScaledByBlue,
    ColourErasingAlpha,
    QuickMask,
    GreysByBytes,
    ColourOnBackground,
    AlphaByBytes,
    {{TowardExtreme<Form::kExact, false, true>, TowardExtreme<Form::kFast, false, true>},
     {TowardExtreme<Form::kExact, true, true>, TowardExtreme<Form::kFast, true, true>}},
    {{TowardExtreme<Form::kExact, false, false>, TowardExtreme<Form::kFast, false, false>},
     {TowardExtreme<Form::kExact, true, false>, TowardExtreme<Form::kFast, true, false>}},
    {Recolour<Form::kExact, true>, Recolour<Form::kFast, true>},
    {Recolour<Form::kExact, false>, Recolour<Form::kFast, false>},
};

#undef OSTREL_BOTH_FORMS

const TrcBlendKernels &TrcKernelsForRow(const TrcRow &row) {
  // Below this many pixels a row is all tail for the vector kernels, whose
  // copy in and out costs more than the scalar loop.
  constexpr std::size_t kVectorRow = 6;
  const std::size_t n = row.n;
  if (n < kVectorRow || !frame::ReadableAhead(row.dst, n, row.pixels) ||
      !frame::Disjoint(row.dst, n, row.bytes, n) || !frame::Disjoint(row.dst, n, row.greys, n) ||
      !frame::Disjoint(row.dst, n, row.words, n)) {
    return TrcBlendKernelsScalar;
  }
  return ActiveTrcBlendKernels();
}

}  // namespace compositing
}  // namespace ostrel

// Grey compositing into 8-bit destinations: the scalar definitions, one loop
// per kernel, written as the rule each one implements.
#include "compositing/grey_blend_kernels.h"
#include "frame/blend.h"

namespace ostrel {
namespace compositing {
namespace {

using frame::blend::Channel;
using frame::blend::ExactWeight;
using frame::blend::Form;
using frame::blend::Weight;

// The result is stored as its low byte (for bytes it already lies in 0..255).
template <Form form>
void DensityByAlpha(const GreyRow &r, const GreyBlend &b) {
  for (std::size_t i = 0; i < r.n; ++i) {
    const std::uint32_t w = Weight<form>(r.alpha[i], b.opacity);
    r.dst[i] =
        static_cast<std::uint8_t>(Channel<form>(r.dst[i], static_cast<std::int32_t>(b.density), w));
  }
}

template <Form form>
void DensityByInverse(const GreyRow &r, const GreyBlend &b) {
  for (std::size_t i = 0; i < r.n; ++i) {
    const std::uint32_t w = Weight<form>(255u - r.alpha[i], b.opacity);
    r.dst[i] =
        static_cast<std::uint8_t>(Channel<form>(r.dst[i], static_cast<std::int32_t>(b.density), w));
  }
}

// The coverage byte of pixel i; a null alpha row is full coverage.
std::uint32_t Coverage(const GreyRow &r, std::size_t i) {
  return r.alpha != nullptr ? r.alpha[i] : 255u;
}

template <Form form, bool twoLevel>
void GreysByAlpha(const GreyRow &r, const GreyBlend &b) {
  for (std::size_t i = 0; i < r.n; ++i) {
    const auto v = static_cast<std::uint8_t>(
        Channel<form>(r.dst[i], r.src[i], Weight<form>(Coverage(r, i), b.opacity)));
    r.dst[i] = twoLevel && v != 0 ? 255 : v;
  }
}

template <Form form>
void ApplyAlpha(const GreyRow &r, const GreyBlend &b) {
  for (std::size_t i = 0; i < r.n; ++i) {
    if (form == Form::kExact) {
      r.dst[i] = static_cast<std::uint8_t>(r.dst[i] * ExactWeight(r.alpha[i], b.opacity) / 255u);
    } else {
      const std::uint32_t w = b.opacity == 255 ? r.alpha[i] : (r.alpha[i] * b.opacity) >> 8;
      r.dst[i] = static_cast<std::uint8_t>((r.dst[i] * w) >> 8);
    }
  }
}

constexpr GreyBlendKernels MakeScalar() {
  return GreyBlendKernels{
      {DensityByAlpha<Form::kExact>, DensityByAlpha<Form::kFast>},
      {DensityByInverse<Form::kExact>, DensityByInverse<Form::kFast>},
      {GreysByAlpha<Form::kExact, false>, GreysByAlpha<Form::kFast, false>},
      GreysByAlpha<Form::kExact, true>,
      {ExtremeBytesRow<Form::kExact, false>, ExtremeBytesRow<Form::kFast, false>},
      {ExtremeBytesRow<Form::kExact, true>, ExtremeBytesRow<Form::kFast, true>},
      {ApplyAlpha<Form::kExact>, ApplyAlpha<Form::kFast>},
      LookupRow,
      MoveInkRow,
      SplitLuminanceRow,
  };
}

}  // namespace

void LookupRow(const GreyRow &r, const GreyBlend &b) {
  // Locals: a byte store may alias anything, so the compiler would otherwise
  // reload the pointers after every store.
  std::uint8_t *const dst = r.dst;
  const std::uint8_t *const table = b.table;
  const std::size_t n = r.n;
  for (std::size_t i = 0; i < n; ++i) dst[i] = table[dst[i]];
}

const GreyBlendKernels GreyBlendKernelsScalar = MakeScalar();

}  // namespace compositing
}  // namespace ostrel

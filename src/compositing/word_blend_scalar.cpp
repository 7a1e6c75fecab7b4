// Grey compositing into 16-bit destination words: the scalar definitions,
// one loop per kernel, written as the rule each one implements.
#include <cstdint>

#include "compositing/word_blend_kernels.h"
#include "frame/blend.h"
#include "frame/region.h"

namespace ostrel {
namespace compositing {
namespace {

using frame::blend::ExactChannel;
using frame::blend::ExactWeight;

template <int coverage>
std::uint32_t WordWeight(const WordRow &r, std::size_t i, const WordBlend &b) {
  if (coverage == kWordByOpacity) return b.opacity;
  if (coverage == kWordByAlpha) return ExactWeight(r.alpha[i], b.opacity);
  return ExactWeight(r.alpha[i] != 0 ? 255u : 0u, b.opacity);
}

// Results are stored as their low 16 bits.
template <int coverage, bool scaled, bool skipZero, int result>
void TowardSource(const WordRow &r, const WordBlend &b) {
  // The pixels i < forced have their next word forced.
  const std::size_t forced = result != kWordForceNext ? 0 : r.nextWord ? r.n : r.n - 1;
  for (std::size_t i = 0; i < r.n; ++i) {
    if (skipZero && r.src[i] == 0) continue;
    const std::int32_t s = scaled ? r.src[i] / 255 : r.src[i];
    const auto v =
        static_cast<std::uint16_t>(ExactChannel(r.dst[i], s, WordWeight<coverage>(r, i, b)));
    r.dst[i] = result == kWordTwoLevel && v != 0 ? 4095 : v;
    if (i < forced && r.dst[i + 1] != 0) r.dst[i + 1] = 4095;
  }
}

template <bool inverse>
void TowardDensity(const WordRow &r, const WordBlend &b) {
  for (std::size_t i = 0; i < r.n; ++i) {
    const std::uint32_t c = inverse ? 255u - r.alpha[i] : r.alpha[i];
    r.dst[i] =
        static_cast<std::uint16_t>(ExactChannel(r.dst[i], b.density, ExactWeight(c, b.opacity)));
  }
}

void DensityFlat(const WordRow &r, const WordBlend &b) {
  for (std::size_t i = 0; i < r.n; ++i) {
    if (r.alpha[i] != 0) r.dst[i] = b.density;
  }
}

template <int coverage, bool lighter>
void TowardExtreme(const WordRow &r, const WordBlend &b) {
  for (std::size_t i = 0; i < r.n; ++i) {
    const std::int32_t s = r.src[i], d = r.dst[i];
    const std::int32_t t = lighter ? (s > d ? s : d) : (s < d ? s : d);
    r.dst[i] = static_cast<std::uint16_t>(ExactChannel(d, t, WordWeight<coverage>(r, i, b)));
  }
}

template <int coverage, bool scaled, bool skipZero, int result>
struct SourceKernel {
  static void Run(const WordRow &r, const WordBlend &b) {
    TowardSource<coverage, scaled, skipZero, result>(r, b);
  }
};

constexpr WordBlendKernels MakeScalar() {
  WordBlendKernels t{};
  SetTowardSource<SourceKernel>(t);
  t.towardDensity[0] = TowardDensity<false>;
  t.towardDensity[1] = TowardDensity<true>;
  t.densityFlat = DensityFlat;
  t.towardExtreme[kWordByOpacity][0] = TowardExtreme<kWordByOpacity, false>;
  t.towardExtreme[kWordByOpacity][1] = TowardExtreme<kWordByOpacity, true>;
  t.towardExtreme[kWordByAlpha][0] = TowardExtreme<kWordByAlpha, false>;
  t.towardExtreme[kWordByAlpha][1] = TowardExtreme<kWordByAlpha, true>;
  return t;
}

}  // namespace

const WordBlendKernels WordBlendKernelsScalar = MakeScalar();

const WordBlendKernels &WordKernelsForRow(const WordRow &row) {
  const std::size_t written = row.n + (row.nextWord ? 1 : 0);
  if (!frame::Disjoint(row.dst, written, row.src, row.n) ||
      !frame::Disjoint(row.dst, written, row.alpha, row.n)) {
    return WordBlendKernelsScalar;
  }
  return ActiveWordBlendKernels();
}

}  // namespace compositing
}  // namespace ostrel

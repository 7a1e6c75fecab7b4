// The NEON operations of simd_neon.h against the x86 lane results they stand
// for, on every lane value that tells them apart (saturation edges, the
// 16-bit minimum, sign boundaries) as well as random ones. The kernels reach
// only part of these (their blends keep packed lanes in 0..255, differences
// above -32768), so the kernel tests alone would not notice an operation
// that differs outside that part.
#include "frame/dispatch.h"

#if OSTREL_KERNELS_NEON
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <random>

#include "compositing/simd_neon.h"

namespace {

using ostrel::compositing::Neon;
using u16 = std::uint16_t;
using i32 = std::int32_t;

Neon::Reg FromWords(const u16 (&w)[8]) { return Neon::LoadWords(w); }

// A 16-bit lane operation of Neon against its x86 model, on lanes drawn from
// the edge values and random ones, in both operand orders.
void CheckWords(const char *name, Neon::Reg (*op)(Neon::Reg, Neon::Reg),
                const std::function<u16(u16, u16)> &model) {
  const u16 edges[] = {0, 1, 2, 127, 128, 254, 255, 256, 257, 32767, 32768, 32769, 65534, 65535};
  std::mt19937 rng(5);
  for (int round = 0; round < 4000; ++round) {
    u16 a[8], b[8], got[8];
    for (int k = 0; k < 8; ++k) {
      a[k] = round % 2 ? u16(rng()) : edges[rng() % 14];
      b[k] = round % 3 ? edges[rng() % 14] : u16(rng());
    }
    Neon::StoreWords(got, op(FromWords(a), FromWords(b)));
    for (int k = 0; k < 8; ++k) {
      ASSERT_EQ(got[k], model(a[k], b[k])) << name << " of " << a[k] << " and " << b[k];
    }
  }
}

i32 S(u16 v) { return static_cast<std::int16_t>(v); }

TEST(NeonLanes, WordOperationsGiveTheX86Lanes) {
  CheckWords("AddSatU16", Neon::AddSatU16,
             [](u16 a, u16 b) { return u16(std::min(a + b, 65535)); });
  CheckWords("SubSatU16", Neon::SubSatU16, [](u16 a, u16 b) { return u16(a > b ? a - b : 0); });
  CheckWords("MulLo16", Neon::MulLo16, [](u16 a, u16 b) { return u16(std::uint32_t(a) * b); });
  CheckWords("MulHiU16", Neon::MulHiU16,
             [](u16 a, u16 b) { return u16((std::uint32_t(a) * b) >> 16); });
  CheckWords("MulHiS16", Neon::MulHiS16, [](u16 a, u16 b) { return u16((S(a) * S(b)) >> 16); });
  CheckWords(
      "Abs16", [](Neon::Reg a, Neon::Reg) { return Neon::Abs16(a); },
      [](u16 a, u16) { return u16(S(a) < 0 ? -S(a) : S(a)); });
  CheckWords("Sign16", Neon::Sign16, [](u16 b, u16 a) { return u16(S(a) < 0 ? -S(b) : S(b)); });
  CheckWords("MinU16", Neon::MinU16, [](u16 a, u16 b) { return std::min(a, b); });
  CheckWords("MaxU16", Neon::MaxU16, [](u16 a, u16 b) { return std::max(a, b); });
  CheckWords("CmpEq16", Neon::CmpEq16, [](u16 a, u16 b) { return u16(a == b ? 0xFFFF : 0); });
  CheckWords("AndNot", Neon::AndNot, [](u16 a, u16 b) { return u16(~a & b); });
}

// The pack saturates each signed lane to 0..255, a's lanes first; the
// unpacks interleave the first and the second eight bytes of a and b.
TEST(NeonLanes, PackAndUnpackGiveTheX86Bytes) {
  const u16 a[8] = {0, 255, 256, 32767, 32768, 65535, 128, 1};
  const u16 b[8] = {65280, 300, 7, 254, 0x8001, 255, 0x7F00, 200};
  std::uint8_t packed[16], lo[16], hi[16], x[16], y[16];
  Neon::StoreBytes(packed, Neon::PackUs16(FromWords(a), FromWords(b)));
  for (int k = 0; k < 16; ++k) {
    const i32 v = S(k < 8 ? a[k] : b[k - 8]);
    EXPECT_EQ(packed[k], v < 0 ? 0 : v > 255 ? 255 : v) << "lane " << k;
    x[k] = std::uint8_t(k), y[k] = std::uint8_t(100 + k);
  }
  Neon::StoreBytes(lo, Neon::UnpackLo8(Neon::LoadBytes(x), Neon::LoadBytes(y)));
  Neon::StoreBytes(hi, Neon::UnpackHi8(Neon::LoadBytes(x), Neon::LoadBytes(y)));
  for (int k = 0; k < 16; ++k) {
    EXPECT_EQ(lo[k], k % 2 ? y[k / 2] : x[k / 2]) << "lane " << k;
    EXPECT_EQ(hi[k], k % 2 ? y[8 + k / 2] : x[8 + k / 2]) << "lane " << k;
  }
}

}  // namespace
#endif  // OSTREL_KERNELS_NEON

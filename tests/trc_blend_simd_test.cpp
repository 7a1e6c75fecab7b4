// Blends into 32-bit colour: the division by 255 the vector kernels use, and
// the tone entries (darken, lighten, recolouring) of the SSE2 and AVX2 tables
// against the scalar definition. (The other kernels are held to the per-pixel
// models under every instruction set in trc_blend_test.cpp.)
#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "compositing/trc_blend_kernels.h"
#include "frame/blend.h"
#include "frame/dispatch.h"
#include "grey_test_util.h"
#include "kernel_tables.h"

namespace {

using namespace grey_test;
using ostrel::compositing::TrcBlend;
using ostrel::compositing::TrcBlendKernels;
using ostrel::compositing::TrcRow;
using ostrel::compositing::TrcRowKernel;

// For every 16-bit product.
TEST(TrcBlendKernels, Div255ByMultiplyIsDivisionForEverySixteenBitValue) {
  std::uint32_t bad = 0, first = 0;
  for (std::uint32_t x = 0; x <= 65535; ++x) {
    if (ostrel::frame::blend::Div255ByMultiply(x) != x / 255 && bad++ == 0) first = x;
  }
  EXPECT_EQ(bad, 0u) << "first x: " << first << " gives "
                     << ostrel::frame::blend::Div255ByMultiply(first);
}

// The tone entries of a table, named as their fields.
std::vector<std::pair<std::string, TrcRowKernel>> ToneEntries(const TrcBlendKernels &t) {
  std::vector<std::pair<std::string, TrcRowKernel>> entries;
  for (int f = 0; f < 2; ++f) {
    const std::string form = "[" + std::to_string(f) + "]";
    for (int l = 0; l < 2; ++l) {
      const std::string index = "[" + std::to_string(l) + "]" + form;
      entries.emplace_back("extremeByBytes" + index, t.extremeByBytes[l][f]);
      entries.emplace_back("extremeByWeight" + index, t.extremeByWeight[l][f]);
    }
    entries.emplace_back("recolourByBytes" + form, t.recolourByBytes[f]);
    entries.emplace_back("recolourByWeight" + form, t.recolourByWeight[f]);
  }
  return entries;
}

// A pixel whose channels lie near those of c, often just inside or just
// outside c +- tolerance, where the recolouring turns.
u32 Near(u32 c, int tolerance, std::mt19937 &r) {
  u32 p = r() & 0xFF000000u;
  for (int shift = 0; shift <= 16; shift += 8) {
    const int edge = tolerance + int(r() % 3) - 1;
    const int e = r() % 4 ? (r() % 2 ? edge : -edge) : int(r() % (2 * tolerance + 1)) - tolerance;
    const int v = int((c >> shift) & 0xFF) + e;
    p |= u32(v < 0 ? 0 : v > 255 ? 255 : v) << shift;
  }
  return p;
}

TEST(TrcBlendKernels, ToneEntriesOfEveryIsaMatchScalar) {
  const auto tables = VectorTablesOf(ostrel::compositing::TrcBlendKernelsByIsa);
  if (tables.empty()) GTEST_SKIP() << "no vector kernels on this processor";
  std::mt19937 rng(37);
  const auto scalar = ToneEntries(ostrel::compositing::TrcBlendKernelsScalar);
  for (std::size_t e = 0; e < scalar.size(); ++e) {
    for (int round = 0; round < 400; ++round) {
      // Each row 1..67 pixels at its own unaligned offset, with 16 guard
      // pixels (or bytes) either side, all compared.
      const std::size_t n = 1 + rng() % 67, off = 16 + rng() % 8, srcOff = 16 + rng() % 8;
      const std::size_t byteOff = 16 + rng() % 32;
      TrcBlend b;
      b.opacity = round % 3 ? 255 : TurnByte(rng);
      b.weight = TurnByte(rng);
      b.tolerance = round % 2 ? TurnByte(rng) : rng() % 8;
      b.colour = Near(rng() % 2 ? 0x808080 : 0xFF00FF, 4, rng);
      b.to = Near(rng() % 2 ? 0x808080 : 0x00FF00, 8, rng);
      const auto start =
          Random<u32>(off + n + 16, [&] { return Near(b.colour, int(b.tolerance), rng); });
      const auto pixels = Random<u32>(srcOff + n + 16, [&] { return Near(b.colour, 64, rng); });
      const auto bytes = TurnBytes(byteOff + n + 16, rng);
      auto want = start;
      TrcRow row{want.data() + off, n};
      row.pixels = pixels.data() + srcOff;
      row.bytes = bytes.data() + byteOff;
      scalar[e].second(row, b);
      for (const auto &t : tables) {
        auto got = start;
        row.dst = got.data() + off;
        ToneEntries(*t.second)[e].second(row, b);
        ASSERT_EQ(got, want) << t.first << " " << scalar[e].first << ", " << n
                             << " pixels at offsets " << off << "/" << srcOff << "/" << byteOff
                             << ", opacity " << b.opacity << ", weight " << b.weight
                             << ", tolerance " << b.tolerance;
      }
    }
  }
}

}  // namespace

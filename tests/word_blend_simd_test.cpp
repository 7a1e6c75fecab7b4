// Word row kernels of the 12-bit grey functions: the division by 255 they
// use over every product it meets, and every entry of the SSE2 and AVX2
// tables against the scalar definition.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Ostrel.h"
#include "compositing/word_blend_kernels.h"
#include "frame/dispatch.h"
#include "grey_test_util.h"
#include "kernel_tables.h"

namespace {

using namespace grey_test;
using ostrel::compositing::WordBlend;
using ostrel::compositing::WordBlendKernels;
using ostrel::compositing::WordRow;
using ostrel::compositing::WordRowKernel;
using ostrel::frame::simd::Isa;

struct Table {
  const char *isa;
  const WordBlendKernels *kernels;
};

std::vector<Table> VectorTables() {
  std::vector<Table> tables;
  for (const auto &t : VectorTablesOf(ostrel::compositing::WordBlendKernelsByIsa)) {
    tables.push_back({t.first, t.second});
  }
  return tables;
}

// Every entry of a table, named as its field.
std::vector<std::pair<std::string, WordRowKernel>> Entries(const WordBlendKernels &t) {
  std::vector<std::pair<std::string, WordRowKernel>> entries;
  for (int c = 0; c < ostrel::compositing::kWordCoverages; ++c)
    for (int scaled = 0; scaled < 2; ++scaled)
      for (int skip = 0; skip < 2; ++skip)
        for (int r = 0; r < ostrel::compositing::kWordResults; ++r)
          entries.emplace_back("towardSource[" + std::to_string(c) + "][" + std::to_string(scaled) +
                                   "][" + std::to_string(skip) + "][" + std::to_string(r) + "]",
                               t.towardSource[c][scaled][skip][r]);
  entries.emplace_back("towardDensity[0]", t.towardDensity[0]);
  entries.emplace_back("towardDensity[1]", t.towardDensity[1]);
  entries.emplace_back("densityFlat", t.densityFlat);
  for (int c = 0; c < 2; ++c)
    for (int lighter = 0; lighter < 2; ++lighter)
      entries.emplace_back(
          "towardExtreme[" + std::to_string(c) + "][" + std::to_string(lighter) + "]",
          t.towardExtreme[c][lighter]);
  return entries;
}

// A word from the whole range, often one where the arithmetic turns.
u16 TurnWord(std::mt19937 &r) {
  static const u16 kTurns[] = {0, 1, 254, 255, 256, 4094, 4095, 4096, 32767, 32768, 65280, 65535};
  switch (r() % 4) {
    case 0: return kTurns[r() % 12];
    case 1: return u16(4095 - 8 + r() % 17);
    default: return u16(r());
  }
}

TEST(WordBlendKernels, DivisionBy255OfEveryProduct) {
  for (u32 w = 0; w < 256; ++w) {
    for (u32 a = 0; a < 65536; ++a) {
      if (ostrel::compositing::WordMulDiv255(a, w) != a * w / 255) FAIL() << a << " * " << w;
    }
  }
}

// Every quotient |s - d| * W / 255 the kernels can meet, both directions:
// from 0 toward s = a, and from 65535 toward 65535 - a, for every W.
TEST(WordBlendKernels, EveryIsaBlendsEveryProduct) {
  std::vector<u16> up(65536), down(65536), start(2 * 65536);
  for (u32 a = 0; a < 65536; ++a) up[a] = u16(a), down[a] = u16(65535 - a);
  for (u32 a = 0; a < 65536; ++a) start[a] = 0, start[65536 + a] = 65535;
  std::vector<u16> source = up;
  source.insert(source.end(), down.begin(), down.end());
  const auto tables = VectorTables();
  if (tables.empty()) GTEST_SKIP() << "no vector kernels on this processor";
  for (const Table &t : tables) {
    const WordRowKernel kernel =
        t.kernels->towardSource[ostrel::compositing::kWordByOpacity][0][0][0];
    for (u32 w = 0; w < 256; ++w) {
      WordBlend b;
      b.opacity = w;
      auto got = start;
      WordRow row{got.data(), got.size()};
      row.src = source.data();
      kernel(row, b);
      for (u32 i = 0; i < got.size(); ++i) {
        const int d = start[i], s = source[i];
        ASSERT_EQ(got[i], u16(d + (s - d) * int(w) / 255)) << t.isa << ", W " << w << ", s " << s;
      }
    }
  }
}

TEST(WordBlendKernels, EveryIsaMatchesScalar) {
  const auto tables = VectorTables();
  if (tables.empty()) GTEST_SKIP() << "no vector kernels on this processor";
  std::mt19937 rng(29);
  const auto scalar = Entries(ostrel::compositing::WordBlendKernelsScalar);
  const u32 opacities[] = {255, 0, 1, 128, 254};
  for (std::size_t e = 0; e < scalar.size(); ++e) {
    for (int round = 0; round < 300; ++round) {
      const std::size_t n = round < 101 ? round : rng() % 101;
      // Each row at its own unaligned offset, in a buffer that ends with it:
      // a read or write past it is a fault the sanitizer sees, and the word
      // after the destination row is compared too.
      const std::size_t off = rng() % 32, srcOff = rng() % 32, alphaOff = rng() % 32;
      const auto src = Random<u16>(srcOff + n, [&] { return TurnWord(rng); });
      const auto alpha = Random<u8>(alphaOff + n, [&] { return TurnByte(rng); });
      const auto start = Random<u16>(off + n + 1, [&] { return TurnWord(rng); });
      WordBlend b;
      b.opacity = round % 7 < 5 ? opacities[round % 7] : TurnByte(rng);
      b.density = TurnWord(rng);
      auto want = start;
      WordRow row{want.data() + off, n};
      row.src = src.data() + srcOff;
      row.alpha = alpha.data() + alphaOff;
      row.nextWord = rng() % 2 != 0;
      for (const Table &t : tables) {
        const auto kernel = Entries(*t.kernels)[e].second;
        ASSERT_EQ(kernel == nullptr, scalar[e].second == nullptr)
            << t.isa << " " << scalar[e].first;
      }
      if (scalar[e].second == nullptr) break;
      scalar[e].second(row, b);
      for (const Table &t : tables) {
        auto got = start;
        row.dst = got.data() + off;
        Entries(*t.kernels)[e].second(row, b);
        ASSERT_EQ(got, want) << t.isa << " " << scalar[e].first << ", " << n << " words at offsets "
                             << off << "/" << srcOff << "/" << alphaOff << ", opacity " << b.opacity
                             << ", density " << b.density << ", next word " << row.nextWord;
      }
    }
  }
}

// Where the destination shares memory with the source or the coverage, the
// pixel order of the rule decides: every instruction set gives the scalar
// words.
TEST(WordBlendKernels, OverlappingRowsKeepThePixelOrder) {
  std::mt19937 rng(31);
  for (int round = 0; round < 20; ++round) {
    const auto start = Random<u16>(64 * 4 + 1, [&] { return TurnWord(rng); });
    const auto alpha = TurnBytes(64 * 4, rng);
    const u32 shift = round % 3;  // the source as the destination, or a word or two right of it
    std::vector<u16> want;
    ForEachIsa([&] {
      auto words = start, blended = start;
      auto a = alpha;
      AlphaBlendL12ToL12(words.data() + shift, a.data(), 60, 4, 0, 0, words.data(), 64, 4, 0, 0,
                         200, 1, true, 60, 4, true);
      // The coverage read from the destination's own bytes.
      AlphaBlendDensityToL12(3000, reinterpret_cast<u8 *>(blended.data()) + shift, 64, 4, 0, 0,
                             blended.data(), 64, 4, 0, 0, 200, 64, 4, true);
      words.insert(words.end(), blended.begin(), blended.end());
      if (want.empty()) want = words;
      EXPECT_EQ(words, want) << "shift " << shift;
    });
  }
}

}  // namespace

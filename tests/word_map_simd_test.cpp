// Word map row kernels: every entry of the SSE2 and AVX2 tables against the
// scalar definition, on random rows of 0..100 pixels at unaligned addresses
// in buffers that end where the row ends, with words over the whole 16-bit
// range; and the alpha multiplication on every (word, weight) pair.
#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "compositing/word_map_kernels.h"
#include "frame/dispatch.h"
#include "grey_test_util.h"
#include "kernel_tables.h"

namespace {

using namespace grey_test;
using ostrel::compositing::WordMap;
using ostrel::compositing::WordMapKernel;
using ostrel::compositing::WordMapKernels;
using ostrel::compositing::WordMapRow;
using ostrel::frame::simd::Isa;

using Table = std::pair<const char *, const WordMapKernels *>;

// The vector tables the processor runs.
std::vector<Table> VectorTables() {
  return VectorTablesOf(ostrel::compositing::WordMapKernelsByIsa);
}

// A word that is often one where a map turns.
u16 TurnWord(std::mt19937 &r) {
  static const u16 kTurns[] = {0, 1, 15, 16, 254, 255, 256, 4095, 4096, 65279, 65280, 65534, 65535};
  return r() % 2 ? kTurns[r() % 13] : u16(r());
}

struct Entry {
  const char *name;
  WordMapKernel WordMapKernels::*kernel;
  bool inPlace, toBytes;
  u16 level;
};
const Entry kEntries[] = {
    {"applyAlpha", &WordMapKernels::applyAlpha, true, false, 0},
    {"twoLevelWords in place", &WordMapKernels::twoLevelWords, true, false, 255},
    {"twoLevelWords", &WordMapKernels::twoLevelWords, false, false, 4095},
    {"twoLevelBytes", &WordMapKernels::twoLevelBytes, false, true, 0},
    {"levelBytes", &WordMapKernels::levelBytes, false, true, 0},
    {"lookup", &WordMapKernels::lookup, true, false, 0},
};

// The results of one kernel on one row: the words and bytes of the whole
// buffers the row ends, so stores outside the row show too.
using Result = std::pair<std::vector<u16>, std::vector<u8>>;

Result RunRow(const WordMapKernels &t, const Entry &e, const std::vector<u16> &src,
              const std::vector<u8> &alpha, std::size_t off, const WordMap &m) {
  const std::size_t n = src.size() - off;
  Result out{src, std::vector<u8>(off + n, 0x5A)};
  if (!e.inPlace) std::fill(out.first.begin(), out.first.end(), u16(0xA5A5));
  WordMapRow row;
  row.n = n;
  row.src = e.inPlace ? out.first.data() + off : src.data() + off;
  row.words = out.first.data() + off;
  row.bytes = e.toBytes ? out.second.data() + off : nullptr;
  row.alpha = alpha.data() + off;
  (t.*e.kernel)(row, m);
  return out;
}

TEST(WordMapKernels, EveryIsaMatchesScalar) {
  const auto tables = VectorTables();
  if (tables.empty()) GTEST_SKIP() << "no vector kernels on this processor";
  std::mt19937 rng(29);
  std::vector<u16> lookup(65536);
  const u32 opacities[] = {255, 0, 1, 128, 254};
  for (const Entry &e : kEntries) {
    for (int round = 0; round < 300; ++round) {
      const std::size_t n = round < 101 ? round : rng() % 101;
      const std::size_t off = rng() % 32;
      const auto src = Random<u16>(off + n, [&] { return TurnWord(rng); });
      const auto alpha = TurnBytes(off + n, rng);
      if (round % 50 == 0)
        for (auto &x : lookup) x = u16(rng());
      WordMap m;
      m.opacity = opacities[round % 5];
      m.level = e.level;
      m.table = lookup.data();
      const Result want = RunRow(ostrel::compositing::WordMapKernelsScalar, e, src, alpha, off, m);
      for (const Table &t : tables) {
        ASSERT_TRUE(RunRow(*t.second, e, src, alpha, off, m) == want)
            << t.first << " " << e.name << ", " << n << " pixels at offset " << off << ", opacity "
            << m.opacity;
      }
    }
  }
}

// Rows whose results overlap what they read (a source a few words on, a table
// inside the row): the kernels read what the scalar loop reads.
TEST(WordMapKernels, OverlappingRowsMatchScalar) {
  const auto tables = VectorTables();
  if (tables.empty()) GTEST_SKIP() << "no vector kernels on this processor";
  std::mt19937 rng(31);
  const std::size_t n = 70;
  for (int shift : {-3, -1, 1, 5, 40}) {
    for (const Entry &e : kEntries) {
      const auto start = Random<u16>(65536 + 2 * n, [&] { return TurnWord(rng); });
      const auto alpha = TurnBytes(n, rng);
      const auto run = [&](const WordMapKernels &t) {
        auto buffer = start;
        WordMapRow row;
        row.n = n;
        row.words = buffer.data() + n;
        row.src = row.words + shift;
        row.bytes = reinterpret_cast<u8 *>(row.words) + shift;
        row.alpha = e.kernel == &WordMapKernels::applyAlpha
                        ? reinterpret_cast<const u8 *>(row.words) + shift
                        : alpha.data();
        WordMap m;
        m.opacity = 200;
        m.level = 4095;
        m.table = buffer.data() + n + shift - 30;  // reaches over the row
        if (e.kernel == &WordMapKernels::lookup) row.src = row.words;
        (t.*e.kernel)(row, m);
        return buffer;
      };
      const auto want = run(ostrel::compositing::WordMapKernelsScalar);
      for (const Table &t : tables) {
        ASSERT_EQ(run(*t.second), want) << t.first << " " << e.name << ", shift " << shift;
      }
    }
  }
}

// The alpha multiplication divides its 24-bit product by 255 in two 16-bit
// parts, and takes the weight by a multiply and shift: every word at every
// weight (alpha 255 makes the weight the opacity), and every weight on word
// 65535 (which it multiplies by 257).
TEST(WordMapKernels, ApplyAlphaOnEveryWordAndWeight) {
  auto tables = VectorTables();
  tables.emplace_back("scalar", &ostrel::compositing::WordMapKernelsScalar);
  std::vector<u16> words(65536);
  std::vector<u8> alpha(65536);
  const auto run = [&](const WordMapKernels &t, u32 opacity) {
    WordMapRow row;
    row.n = words.size();
    row.src = row.words = words.data();
    row.alpha = alpha.data();
    WordMap m;
    m.opacity = opacity;
    t.applyAlpha(row, m);
  };
  for (const Table &t : tables) {
    for (u32 w = 0; w < 256; ++w) {
      for (u32 v = 0; v < 65536; ++v) words[v] = u16(v), alpha[v] = 255;
      run(*t.second, w);
      for (u32 v = 0; v < 65536; ++v) {
        ASSERT_EQ(words[v], v * w / 255) << t.first << ", word " << v << ", weight " << w;
      }
      for (u32 v = 0; v < 65536; ++v) words[v] = 65535, alpha[v] = u8(v);
      run(*t.second, w);
      for (u32 c = 0; c < 65536; ++c) {
        ASSERT_EQ(words[c], 257 * ((c & 255) * w / 255))
            << t.first << ", alpha " << (c & 255) << ", opacity " << w;
      }
    }
  }
}

}  // namespace

// Grey row kernels: every entry of the SSE2 and AVX2 tables against the
// scalar definition, on random rows of 0..100 bytes at unaligned addresses
// inside guarded buffers (both written rows compared whole), for opacities
// that take each weight path, with null alpha rows where an entry takes them.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "compositing/grey_blend_kernels.h"
#include "frame/dispatch.h"
#include "grey_test_util.h"
#include "kernel_tables.h"

namespace {

using namespace grey_test;
using ostrel::compositing::GreyBlendKernels;
using ostrel::compositing::GreyRowKernel;
using ostrel::frame::simd::Isa;

struct Entry {
  const char *name;
  GreyRowKernel (*of)(const GreyBlendKernels &);
  bool alphaMayBeNull;  // a null alpha row is full coverage (or, for the ink move, no protection)
};
#define ENTRY(field, alphaMayBeNull)                                          \
  {                                                                           \
#field, [](const GreyBlendKernels &t) { return t.field; }, alphaMayBeNull \
  }
const Entry kEntries[] = {ENTRY(densityByAlpha[0], false),
                          ENTRY(densityByAlpha[1], false),
                          ENTRY(densityByInverse[0], false),
                          ENTRY(densityByInverse[1], false),
                          ENTRY(applyAlpha[0], false),
                          ENTRY(applyAlpha[1], false),
                          ENTRY(greysByAlpha[0], true),
                          ENTRY(greysByAlpha[1], true),
                          ENTRY(greysByAlphaTwoLevel, false),
                          ENTRY(darker[0], true),
                          ENTRY(darker[1], true),
                          ENTRY(lighter[0], true),
                          ENTRY(lighter[1], true),
                          ENTRY(moveInk, true),
                          ENTRY(splitLuminance, false),
                          ENTRY(lookup, false)};
#undef ENTRY

TEST(GreyBlendKernels, EveryIsaMatchesScalar) {
  const auto tables = VectorTablesOf(ostrel::compositing::GreyBlendKernelsByIsa);
  if (tables.empty()) GTEST_SKIP() << "no vector kernels on this processor";
  std::mt19937 rng(23);
  std::vector<u8> table(256);
  for (auto &t : table) t = u8(rng());
  const u32 opacities[] = {255, 0, 1, 128, 254};
  for (const Entry &entry : kEntries) {
    for (int round = 0; round < 300; ++round) {
      const std::size_t n = round < 101 ? round : rng() % 101;
      const std::size_t off = rng() % 32;
      const auto src = TurnBytes(n + 64, rng), alpha = TurnBytes(n + 64, rng),
                 start = TurnBytes(n + 64, rng), startSecond = TurnBytes(n + 64, rng);
      // TRC pixels whose channels are turning bytes too.
      const auto pixels = Random<u32>(n + 16, [&] {
        return TurnByte(rng) << 24 | TurnByte(rng) << 16 | TurnByte(rng) << 8 | TurnByte(rng);
      });
      ostrel::compositing::GreyBlend b;
      b.opacity = opacities[round % 5];
      b.density = TurnByte(rng);
      b.table = table.data();
      auto want = start, wantSecond = startSecond;
      ostrel::compositing::GreyRow row{want.data() + off, n};
      row.src = src.data() + off + 1;
      row.alpha = entry.alphaMayBeNull && round % 4 == 3 ? nullptr : alpha.data() + off + 2;
      row.pixels = pixels.data() + off % 8 + 1;
      row.second = wantSecond.data() + off + 3;
      entry.of(ostrel::compositing::GreyBlendKernelsScalar)(row, b);
      for (std::size_t t = 0; t < tables.size(); ++t) {
        auto got = start, gotSecond = startSecond;
        row.dst = got.data() + off;
        row.second = gotSecond.data() + off + 3;
        entry.of (*tables[t].second)(row, b);
        const auto where = [&] {
          return std::string(tables[t].first) + " " + entry.name + ", " + std::to_string(n) +
                 " bytes at offset " + std::to_string(off) + ", opacity " +
                 std::to_string(b.opacity) + (row.alpha == nullptr ? ", alpha null" : "");
        };
        ASSERT_EQ(got, want) << where();
        ASSERT_EQ(gotSecond, wantSecond) << where() << " (second row)";
      }
    }
  }
}

// The lookup on rows of every length up to 80 (the vector form starts
// partway), each with its own table, in buffers that end where the row ends;
// and on rows that hold the table, which the scalar loop changes as it reads.
TEST(GreyBlendKernels, LookupEveryLengthMatchesScalar) {
  const auto tables = VectorTablesOf(ostrel::compositing::GreyBlendKernelsByIsa);
  if (tables.empty()) GTEST_SKIP() << "no vector kernels on this processor";
  std::mt19937 rng(37);
  for (std::size_t n = 0; n <= 80; ++n) {
    for (int round = 0; round < 4; ++round) {
      const std::size_t off = rng() % 32;
      const auto start = Random<u8>(off + n, [&] { return rng(); });
      const auto table = Random<u8>(256, [&] { return rng(); });
      ostrel::compositing::GreyBlend b;
      b.table = table.data();
      auto want = start;
      ostrel::compositing::GreyBlendKernelsScalar.lookup(
          ostrel::compositing::GreyRow{want.data() + off, n}, b);
      for (std::size_t t = 0; t < tables.size(); ++t) {
        auto got = start;
        tables[t].second->lookup(ostrel::compositing::GreyRow{got.data() + off, n}, b);
        ASSERT_EQ(got, want) << tables[t].first << ", " << n << " bytes at offset " << off;
      }
    }
  }
  for (std::size_t at : {0, 40, 300}) {
    const auto start = Random<u8>(700, [&] { return rng(); });
    const auto run = [&](const GreyBlendKernels &k) {
      auto buffer = start;
      ostrel::compositing::GreyBlend b;
      b.table = buffer.data() + at;
      k.lookup(ostrel::compositing::GreyRow{buffer.data() + 100, 400}, b);
      return buffer;
    };
    const auto want = run(ostrel::compositing::GreyBlendKernelsScalar);
    for (std::size_t t = 0; t < tables.size(); ++t) {
      ASSERT_EQ(run(*tables[t].second), want) << tables[t].first << ", table at " << at;
    }
  }
}

}  // namespace

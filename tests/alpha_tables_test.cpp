// Alpha masks and lookup tables: ApplyAlphaToL08 in every path against a
// per-pixel model on clipped random buffers; hand-computed values elsewhere.
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <vector>

#include "Ostrel.h"
#include "grey_test_util.h"

namespace {

using namespace grey_test;

TEST(AlphaTables, ApplyAlphaToL08MatchesModelInEveryPath) {
  ForEachIsa([] {
    std::mt19937 rng(3);
    for (int round = 0; round < 320; ++round) {
      const bool flat = round % 2, exact = round / 2 % 2, flag = round / 4 % 2;
      const u8 opacity = round / 8 % 2 ? 255 : u8(TurnByte(rng));
      const u32 w = 9 + rng() % 5, h = 5, l = rng() % 6, t = rng() % 4, rw = rng() % 12,
                rh = rng() % 6;
      auto buf = TurnBytes(w * h, rng), alpha = TurnBytes(w * h, rng);
      auto want = buf;
      const bool fast = !exact && flag && !flat;
      for (u32 j = t; j < std::min(h, t + rh); ++j) {
        for (u32 i = l; i < std::min(w, l + rw); ++i) {
          const int a = alpha[j * w + i];
          u8 &d = want[j * w + i];
          if (fast) d = u8(d * (opacity == 255 ? a : a * opacity / 256) / 256);
          else d = u8(d * (flat ? (a ? opacity : 0) : a * opacity / 255) / 255);
        }
      }
      FastFlag f(flag);
      ApplyAlphaToL08(buf.data(), alpha.data(), w, h, l, t, opacity, flat, rw, rh, exact);
      ASSERT_EQ(buf, want) << "round " << round << ", flat " << flat << ", exact " << exact
                           << ", flag " << flag;
    }
  });
}

// InvertAlphaL08 works in doubles and adds a step where the rise is under one; ApplyAlphaToL12
// weighs in the exact form and keeps a full-cover word whole.
TEST(AlphaTables, HandComputedPixels) {
  // a, d, flat, result; 170, 1: a rise of exactly 0.5 still gets the step.
  u8 inverted[][4] = {{128, 64, 0, 127},  {128, 0, 0, 1}, {254, 100, 0, 101},
                      {128, 200, 0, 255}, {170, 1, 0, 2}, {255, 9, 0, 9},
                      {0, 9, 0, 9},       {0, 9, 1, 255}, {3, 9, 1, 9}};
  for (auto &c : inverted) {
    InvertAlphaL08(&c[1], &c[0], 1, 1, 0, 0, c[2], 1, 1);
    EXPECT_EQ(c[1], c[3]) << "InvertAlphaL08 a " << int(c[0]) << ", flat " << int(c[2]);
  }
  // Every (alpha, value) pair against the double-precision rule.
  std::vector<u8> values(256 * 256), alphas(256 * 256);
  for (int i = 0; i < 256 * 256; ++i) values[i] = u8(i), alphas[i] = u8(i >> 8);
  InvertAlphaL08(values.data(), alphas.data(), 256, 256, 0, 0, false, 256, 256);
  for (int i = 0; i < 256 * 256; ++i) {
    const int d = i & 255, al = i >> 8;
    double q = d * (255.0 / al);
    if (q - d < 1.0) q += 1.0;
    const int want = al == 0 || al == 255 ? d : int(std::min(255.0, q));
    ASSERT_EQ(values[i], want) << "d " << d << ", a " << al;
  }
  u16 word = 4000;
  u8 a = 128;
  ApplyAlphaToL12(&word, &a, 1, 1, 0, 0, 200, 1, 1, false);
  EXPECT_EQ(word, 4000 * (128 * 200 / 255) / 255);
  word = 60000, a = 255;
  ApplyAlphaToL12(&word, &a, 1, 1, 0, 0, 255, 1, 1, false);
  EXPECT_EQ(word, 60000);
}

TEST(AlphaTables, LookupTablesMapOnlyTheRegion) {
  std::vector<u8> table(256);
  std::iota(table.rbegin(), table.rend(), 0);
  std::vector<u8> buf = {1, 2, 3, 4, 5, 6};  // 3x2, region (1, 1) 5x5
  ApplyLUTToL08(buf.data(), 3, 2, 1, 1, 5, 5, table.data());
  EXPECT_EQ(buf, (std::vector<u8>{1, 2, 3, 4, 250, 249}));

  std::vector<u16> table12(65536);
  for (u32 i = 0; i < table12.size(); ++i) table12[i] = u16(i * 3);
  std::vector<u16> words = {4095, 65535, 7};
  ApplyLUTToL12(words.data(), 3, 1, 0, 0, 2, 1, table12.data());
  EXPECT_EQ(words, (std::vector<u16>{u16(4095 * 3), u16(65535 * 3), 7}));
}

TEST(AlphaTables, PostApplyAlphaKeepsOnlyFullCover) {
  u8 alpha[] = {255, 254, 0, 255}, bytes[] = {9, 9, 9, 9};
  u16 words[] = {4095, 4095, 4095, 4095};
  PostApplyAlpha(alpha, bytes, 3);
  PostApplyAlpha(alpha, words, 4);
  EXPECT_EQ(std::vector<u8>(bytes, bytes + 4), (std::vector<u8>{9, 0, 0, 9}));
  EXPECT_EQ(std::vector<u16>(words, words + 4), (std::vector<u16>{4095, 0, 0, 4095}));
  PostApplyAlpha(nullptr, bytes, 4);
  EXPECT_EQ(bytes[0], 9);
}

}  // namespace

// Mask frames: distance tables, the worked stamps (a 21-pixel disc, the
// soft fall-off and its wrap at distance 0), masks without boundaries,
// mirror symmetry, and the soft frame against a plain model on random masks.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <vector>

#include "Ostrel.h"

namespace {

using Table = std::unique_ptr<int[]>;
using Bytes = std::vector<unsigned char>;

TEST(ObjectsFrames, DistanceTables) {
  Table t0(CreateDistTableForSoftFrame(0));
  EXPECT_EQ(t0[0], 0);
  Table t1(CreateDistTableForSoftFrame(1));
  EXPECT_EQ(std::vector<int>(t1.get(), t1.get() + 9), (std::vector<int>{1, 1, 1, 1, 0, 1, 1, 1, 1}));
  Table t2(CreateDistTableForSoftFrame(2));
  EXPECT_EQ(std::vector<int>(t2.get() + 10, t2.get() + 15), (std::vector<int>{2, 1, 0, 1, 2}));
  EXPECT_EQ(t2[0], 3);
  EXPECT_EQ(t2[24], 3);
  EXPECT_EQ(t2[1], 2);  // (-1, -2): sqrt 5 = 2.24
}

TEST(ObjectsFrames, SinglePixelStamps) {
  const unsigned int n = 11, c = 5 * n + 5;
  Table table(CreateDistTableForSoftFrame(10));
  Bytes src(n * n, 0), dst(n * n, 0);
  src[c] = 200;
  HardFrameL08toL08(src.data(), dst.data(), n, n, table.get(), 10, 2, false);
  EXPECT_EQ(std::count(dst.begin(), dst.end(), 200), 21);
  EXPECT_EQ(dst[c - 2 * n - 2], 0);  // corner at distance 3
  std::fill(dst.begin(), dst.end(), 0);
  HardFrameL08toL08(src.data(), dst.data(), n, n, table.get(), 10, 1, true);
  EXPECT_EQ(std::count(dst.begin(), dst.end(), 255), 9);
  // Soft: s at distance 1, s / frameWidth at frameWidth, and the wrap at 0.
  std::fill(dst.begin(), dst.end(), 0);
  src[c] = 255;
  SoftFrameL08toL08(src.data(), dst.data(), n, n, table.get(), 10, 4);
  EXPECT_EQ(dst[c + 1], 255);
  EXPECT_EQ(dst[c + 2 * n], (3 * 255) / 4);
  EXPECT_EQ(dst[c - 4], 255 / 4);
  EXPECT_EQ(dst[c], (5 * 255 / 4) & 0xFF);  // 318 kept as 62
  EXPECT_EQ(dst[c - 5], 0);
  Bytes wide(41 * 41, 0), out(41 * 41, 0);
  wide[20 * 41 + 20] = 255;
  Table big(CreateDistTableForSoftFrame(12));
  SoftFrameL08toL08(wide.data(), out.data(), 41, 41, big.get(), 12, 10);
  EXPECT_EQ(out[20 * 41 + 20], 24);  // 280 wraps
  // A small value fades to 0 before frameWidth.
  std::fill(dst.begin(), dst.end(), 0);
  src[c] = 3;
  SoftFrameL08toL08(src.data(), dst.data(), n, n, table.get(), 10, 4);
  EXPECT_EQ(dst[c - 4], 0);
}

TEST(ObjectsFrames, NoBoundaryNoChangeAndDownFrame) {
  const unsigned int n = 9;
  Table table(CreateDistTableForSoftFrame(3));
  for (unsigned char v : {0, 90}) {
    Bytes src(n * n, v), dst(n * n, 17);
    SoftFrameL08toL08(src.data(), dst.data(), n, n, table.get(), 3, 2);
    HardFrameL08toL08(src.data(), dst.data(), n, n, table.get(), 3, 2, true);
    HardFrameDownL08toL08(src.data(), dst.data(), n, n, table.get(), 3, 2);
    EXPECT_EQ(dst, Bytes(n * n, 17));
  }
  Bytes src(n * n, 255);
  src[4 * n + 4] = 0;  // one hole: its 3 x 3 square is cut out
  Bytes dst = src;
  HardFrameDownL08toL08(src.data(), dst.data(), n, n, table.get(), 3, 1);
  EXPECT_EQ(std::count(dst.begin(), dst.end(), 0), 9);
  EXPECT_EQ(dst[3 * n + 3], 0);
  // An object touching the edge gets no frame nearer than frameWidth to it.
  Bytes edge(n * n, 0), out(n * n, 0);
  for (unsigned int y = 0; y < n; ++y) edge[y * n] = 100;
  HardFrameL08toL08(edge.data(), out.data(), n, n, table.get(), 3, 1, false);
  EXPECT_EQ(out, Bytes(n * n, 0));
}

TEST(ObjectsFrames, SymmetricMasksGiveSymmetricFrames) {
  const unsigned int w = 31, h = 23;
  std::mt19937 rng(5);
  Bytes src(w * h);
  for (unsigned int y = 0; y < h; ++y)
    for (unsigned int x = 0; x <= w / 2; ++x) src[y * w + x] = src[y * w + (w - 1 - x)] = rng() % 3 ? 0 : 150;
  Table table(CreateDistTableForSoftFrame(4));
  for (int op = 0; op < 3; ++op) {
    Bytes dst = src;
    if (op == 0) SoftFrameL08toL08(src.data(), dst.data(), w, h, table.get(), 4, 3);
    if (op == 1) HardFrameL08toL08(src.data(), dst.data(), w, h, table.get(), 4, 3, false);
    if (op == 2) HardFrameDownL08toL08(src.data(), dst.data(), w, h, table.get(), 4, 3);
    EXPECT_NE(dst, src) << op;
    for (unsigned int y = 0; y < h; ++y)
      for (unsigned int x = 0; x < w; ++x) ASSERT_EQ(dst[y * w + x], dst[y * w + w - 1 - x]) << op;
  }
}

TEST(ObjectsFrames, SoftFrameMatchesPlainLoops) {
  std::mt19937 rng(9);
  for (int i = 0; i < 40; ++i) {
    const unsigned int w = 12 + rng() % 20, h = 12 + rng() % 15, fw = 1 + rng() % 5, R = fw + rng() % 3;
    Bytes src(w * h), dst(w * h);
    for (auto &v : src) v = rng() % 2 ? 0 : static_cast<unsigned char>(rng());
    for (auto &v : dst) v = static_cast<unsigned char>(rng());
    Bytes want = dst;
    Table t(CreateDistTableForSoftFrame(R));
    const int f = static_cast<int>(fw), side = 2 * static_cast<int>(R) + 1;
    for (int y = f; y < static_cast<int>(h) - f; ++y)
      for (int x = f; x < static_cast<int>(w) - f; ++x) {
        const int s = src[y * w + x];
        if (s == 0 || (src[y * w + x - 1] && src[y * w + x + 1] && src[(y - 1) * w + x] && src[(y + 1) * w + x]))
          continue;
        for (int dy = -f; dy <= f; ++dy)
          for (int dx = -f; dx <= f; ++dx) {
            const int d = t[(dy + R) * side + dx + R];
            if (d > f) continue;
            unsigned char &p = want[(y + dy) * w + x + dx];
            p = std::max<unsigned char>(p, static_cast<unsigned char>(((f + 1 - d) * s) / f));
          }
      }
    SoftFrameL08toL08(src.data(), dst.data(), w, h, t.get(), R, fw);
    ASSERT_EQ(dst, want) << i;
  }
}

}  // namespace

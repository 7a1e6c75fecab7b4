// Mask frames: distance tables, single-pixel stamps, masks without
// boundaries, mirror symmetry, and the soft frame against plain loops.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <new>
#include <random>
#include <vector>

#include "Ostrel.h"

namespace {

using Table = std::unique_ptr<int[]>;
using Bytes = std::vector<unsigned char>;

TEST(ObjectsFrames, DistanceTablesAndSinglePixelStamps) {
  EXPECT_EQ(Table(CreateDistTableForSoftFrame(0))[0], 0);
  Table t2(CreateDistTableForSoftFrame(2));
  EXPECT_EQ(std::vector<int>(t2.get(), t2.get() + 15),
            (std::vector<int>{3, 2, 2, 2, 3, 2, 1, 1, 1, 2, 2, 1, 0, 1, 2}));
  EXPECT_EQ(t2[24], 3);
  const unsigned int n = 11, c = 5 * n + 5;
  Table table(CreateDistTableForSoftFrame(10));
  Bytes src(n * n, 0), dst(n * n, 0);
  src[c] = 200;
  HardFrameL08toL08(src.data(), dst.data(), n, n, table.get(), 10, 2, false);
  EXPECT_EQ(std::count(dst.begin(), dst.end(), 200), 21);  // corners at distance 3 left out
  HardFrameL08toL08(src.data(), dst.data(), n, n, table.get(), 10, 1, true);
  EXPECT_EQ(std::count(dst.begin(), dst.end(), 255), 9);
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
  src[4 * n + 4] = 0;     // one hole: its 3 x 3 square is cut out
  Bytes dst(n * n, 255);  // the hole itself cleared too
  HardFrameDownL08toL08(src.data(), dst.data(), n, n, table.get(), 3, 1);
  EXPECT_EQ(std::count(dst.begin(), dst.end(), 0), 9);
  EXPECT_EQ(dst[3 * n + 3], 0);
}

TEST(ObjectsFrames, SymmetricMasksGiveSymmetricFrames) {
  const unsigned int w = 31, h = 23;
  std::mt19937 rng(5);
  Bytes src(w * h);
  for (unsigned int i = 0; i < w * h; ++i)
    if (i % w <= w / 2) src[i] = src[i - i % w + w - 1 - i % w] = rng() % 3 ? 0 : 150;
  Table table(CreateDistTableForSoftFrame(4));
  for (int op = 0; op < 3; ++op) {
    Bytes dst = src;
    if (op == 0) SoftFrameL08toL08(src.data(), dst.data(), w, h, table.get(), 4, 3);
    if (op == 1) HardFrameL08toL08(src.data(), dst.data(), w, h, table.get(), 4, 3, false);
    if (op == 2) HardFrameDownL08toL08(src.data(), dst.data(), w, h, table.get(), 4, 3);
    EXPECT_NE(dst, src) << op;
    for (unsigned int i = 0; i < w * h; ++i)
      ASSERT_EQ(dst[i], dst[i - i % w + w - 1 - i % w]) << op;
  }
}

// Frame widths of 0 or above R, and buffers not wider or higher than twice
// the frame width (1 x 9 under a width of 2 among them), write nothing. A
// table whose size size_t cannot hold fails as an allocation does.
TEST(ObjectsFrames, UnfitArgumentsWriteNothing) {
  Table table(CreateDistTableForSoftFrame(3));
  const struct {
    unsigned int width, height, frameWidth;
  } cases[] = {{9, 9, 0}, {9, 9, 4}, {1, 9, 2}, {9, 4, 2}, {6, 9, 3}};
  for (const auto &c : cases) {
    Bytes src(c.width * c.height, 0), dst(c.width * c.height, 17);
    src[src.size() / 2] = 200;
    SoftFrameL08toL08(src.data(), dst.data(), c.width, c.height, table.get(), 3, c.frameWidth);
    HardFrameL08toL08(src.data(), dst.data(), c.width, c.height, table.get(), 3, c.frameWidth,
                      true);
    HardFrameDownL08toL08(src.data(), dst.data(), c.width, c.height, table.get(), 3, c.frameWidth);
    EXPECT_EQ(dst, Bytes(c.width * c.height, 17))
        << c.width << "x" << c.height << " " << c.frameWidth;
  }
  EXPECT_THROW(CreateDistTableForSoftFrame(1u << 31), std::bad_alloc);
}

// Includes the frame's distance from the edges, the fade to 0 of small
// values before frameWidth, and sums over 255 kept as their low byte.
TEST(ObjectsFrames, SoftFrameMatchesPlainLoops) {
  std::mt19937 rng(9);
  for (int i = 0; i < 40; ++i) {
    const int w = 12 + rng() % 20, h = 12 + rng() % 15, f = 1 + rng() % 5, R = f + rng() % 3,
              side = 2 * R + 1;
    Bytes src(w * h), dst(w * h);
    for (auto &v : src) v = rng() % 2 ? 0 : static_cast<unsigned char>(rng());
    for (auto &v : dst) v = static_cast<unsigned char>(rng());
    Bytes want = dst;
    Table t(CreateDistTableForSoftFrame(R));
    for (int y = f; y < h - f; ++y)
      for (int x = f; x < w - f; ++x) {
        const int s = src[y * w + x];
        if (s == 0 || (src[y * w + x - 1] && src[y * w + x + 1] && src[(y - 1) * w + x] &&
                       src[(y + 1) * w + x]))
          continue;
        for (int dy = -f; dy <= f; ++dy)
          for (int dx = -f; dx <= f; ++dx) {
            unsigned char &p = want[(y + dy) * w + x + dx];
            const int d = t[(dy + R) * side + dx + R];
            if (d <= f) p = std::max(p, static_cast<unsigned char>(((f + 1 - d) * s) / f));
          }
      }
    SoftFrameL08toL08(src.data(), dst.data(), w, h, t.get(), R, f);
    ASSERT_EQ(dst, want) << i;
  }
}

}  // namespace

// Contour following: small shapes worked by hand, filled rectangles (corners
// and length) and the stopping rules; a disc's is in the features tests.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <random>
#include <utility>
#include <vector>

#include "Ostrel.h"

namespace {

using Points = std::vector<std::pair<int, int>>;

// Traces from (sx, sy) in a mask of `inside` in a region, by default the
// buffer; without point output the length is the same and the count 0.
template <class T, class Inside>
double Trace(int w, int h, int sx, int sy, Inside inside, Points *points, int left = 0, int top = 0,
             int rw = -1, int rh = -1) {
  std::vector<T> b(w * h);
  for (int i = 0; i < w * h; ++i) b[i] = inside(i % w, i / w) ? 1 : 0;
  if (rw < 0) rw = w, rh = h;
  std::vector<CPoint> out(rw * rh + 2);
  int count = -1, noCount = -1;
  T *start = b.data() + sy * w + sx;
  const double length =
      FollowContour<T>(b.data(), start, w, h, left, top, rw, rh, 1, out.data(), &count);
  EXPECT_EQ(FollowContour<T>(b.data(), start, w, h, left, top, rw, rh, 1, nullptr, &noCount),
            length);
  EXPECT_EQ(noCount, 0);
  points->clear();
  for (int i = 0; i < count; ++i) points->emplace_back(out[i].x, out[i].y);
  return length;
}

TEST(ObjectsFollowContour, SmallShapes) {
  Points p;
  EXPECT_EQ(Trace<unsigned char>(
                5, 5, 2, 2, [](int x, int y) { return x == 2 && y == 2; }, &p),
            0.0);
  EXPECT_TRUE(p.empty());  // an isolated pixel
  EXPECT_EQ(Trace<int>(
                5, 5, 2, 2, [](int x, int y) { return y == 2 && (x == 2 || x == 3); }, &p),
            1.0);
  EXPECT_EQ(p, (Points{{2, 2}, {3, 2}}));  // right and back, the closing step not counted
  EXPECT_DOUBLE_EQ(Trace<int>(
                       7, 7, 2, 2, [](int x, int y) { return x == y && x >= 2 && x <= 4; }, &p),
                   3 * std::sqrt(2.0));
  EXPECT_EQ(p, (Points{{2, 2}, {3, 3}, {4, 4}, {3, 3}}));  // a diagonal, out and back
}

TEST(ObjectsFollowContour, FilledRectanglesCornersAndLength) {
  Points p;
  for (int w = 2; w <= 9; ++w)
    for (int h = 2; h <= 7; ++h) {
      const auto rect = [&](int x, int y) { return x >= 2 && x < 2 + w && y >= 2 && y < 2 + h; };
      const int steps = 2 * (w - 1) + 2 * (h - 1), r = w + 1, b = h + 1;
      EXPECT_EQ(Trace<unsigned char>(w + 4, h + 4, 2, 2, rect, &p), steps - 1);
      ASSERT_EQ(static_cast<int>(p.size()), steps) << w << "x" << h;
      EXPECT_EQ(p[w - 1], std::make_pair(r, 2));
      EXPECT_EQ(p[w - 1 + h - 1], std::make_pair(r, b));
      EXPECT_EQ(p[2 * (w - 1) + h - 1], std::make_pair(2, b));
    }
}

TEST(ObjectsFollowContour, RegionExitAndRunawayGuard) {
  Points p;
  const auto bar = [](int x, int y) { return y == 2 && x >= 2 && x < 14; };  // 12 x 1
  EXPECT_EQ(Trace<unsigned char>(16, 5, 2, 2, bar, &p, 0, 0, 16, 3), 21.0);  // out 11, back 10
  // Start on the region's last column: the first step leaves it, one point.
  EXPECT_EQ(Trace<unsigned char>(16, 5, 2, 2, bar, &p, 0, 0, 3, 3), 0.0);
  EXPECT_EQ(p, (Points{{2, 2}}));
  // Only row 2 (guard 16): the step taken at length 17 is refused.
  EXPECT_EQ(Trace<int>(16, 5, 2, 2, bar, &p, 0, 2, 16, 1), 17.0);
  EXPECT_EQ(p.size(), 18u);
  EXPECT_EQ(p.back(), std::make_pair(7, 2));
}

// Sizes up to INT_MAX: left + regionWidth and top + regionHeight are taken
// in 64 bits (the whole bar: out 11, back 10). No pixels, or a start past the
// buffer's end: no walk.
TEST(ObjectsFollowContour, LargeRegionsEmptyBuffersStartOutside) {
  std::vector<int> b(16 * 5, 0);
  std::fill(b.begin() + 34, b.begin() + 46, 1);
  int count = -1;
  EXPECT_EQ(FollowContour<int>(b.data(), b.data() + 34, 16, 5, 1, 1, INT_MAX, INT_MAX, 1, nullptr,
                               &count),
            21.0);
  CPoint out[4];
  for (const auto &c : {std::make_pair(0, 5), std::make_pair(16, 0), std::make_pair(16, 2)}) {
    count = -1;
    EXPECT_EQ(
        FollowContour<int>(b.data(), b.data() + 34, c.first, c.second, 0, 0, 16, 5, 1, out, &count),
        0.0);
    EXPECT_EQ(count, 0);
  }
  EXPECT_EQ(FollowContour<int>(b.data(), b.data() + 80, 16, 5, 0, 0, 16, 5, 0, out, &count), 0.0);
  EXPECT_EQ(count, 0);
}

// Objects on the buffer's edges, traced in exact-size buffers: nothing above
// the first row or below the last one is read. The first and the last row
// are mirror images (right 3, back 2: 5); a column's walk down and up; from
// (0, 1) the left neighbour is (3, 0) across the edge, and from there the
// right one (0, 1) again, with the region reaching left of the buffer.
TEST(ObjectsFollowContour, EdgesOfTheBuffer) {
  const struct {
    int sx, sy, left;
    bool (*inside)(int x, int y);
    double length;
    Points points;
  } cases[] = {
      {0,
       0,
       0,
       [](int, int y) { return y == 0; },
       5.0,
       {{0, 0}, {1, 0}, {2, 0}, {3, 0}, {2, 0}, {1, 0}}},
      {0,
       2,
       0,
       [](int, int y) { return y == 2; },
       5.0,
       {{0, 2}, {1, 2}, {2, 2}, {3, 2}, {2, 2}, {1, 2}}},
      {0, 0, 0, [](int x, int) { return x == 0; }, 3.0, {{0, 0}, {0, 1}, {0, 2}, {0, 1}}},
      {0, 0, 0, [](int x, int y) { return x + y == 0; }, 0.0, {}},
      {3, 2, 0, [](int x, int y) { return x + y == 5; }, 0.0, {}},
      {0,
       1,
       -5,
       [](int x, int y) { return (x == 0 && y == 1) || (x == 3 && y == 0); },
       1.0,
       {{0, 1}, {-1, 1}}},
  };
  Points p;
  for (const auto &c : cases) {
    EXPECT_EQ(Trace<unsigned char>(4, 3, c.sx, c.sy, c.inside, &p, c.left, 0, 20, 3), c.length);
    EXPECT_EQ(p, c.points) << c.sx << "," << c.sy;
    EXPECT_EQ(Trace<int>(4, 3, c.sx, c.sy, c.inside, &p, c.left, 0, 20, 3), c.length);
  }
}

// From every pixel of random masks, with a region that never stops it, the
// walk comes back to its start: it stops with fewer points than 8 per pixel.
TEST(ObjectsFollowContour, EveryWalkCloses) {
  std::mt19937 rng(3);
  for (int i = 0; i < 400; ++i) {
    const int w = 1 + rng() % 8, h = 1 + rng() % 8;
    std::vector<unsigned char> b(w * h);
    for (auto &v : b) v = rng() % 4 != 0;
    std::vector<CPoint> out(8 * w * h + 16);
    for (int s = 0; s < w * h; ++s) {
      if (b[s] == 0) continue;
      int count = -1;
      FollowContour<unsigned char>(b.data(), b.data() + s, w, h, -1000, -1000, 3000, 3000, 1,
                                   out.data(), &count);
      ASSERT_LT(count, 8 * w * h - 6) << i << " " << s;
    }
  }
}

}  // namespace

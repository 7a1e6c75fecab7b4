// Contour following: points and lengths of small shapes worked by hand,
// rectangles of many sizes (corners and length), the stopping rules, and a
// digital disc whose length comes near the circle's.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "Ostrel.h"

namespace {

struct Traced {
  double length;
  std::vector<CPoint> points;
};

// Traces from (sx, sy) in a w x h mask holding objectValue 1 wherever
// `inside` says, the region being the whole buffer unless given.
template <class T, class Inside>
Traced Trace(int w, int h, int sx, int sy, Inside inside, int left = 0, int top = 0,
             int rw = -1, int rh = -1) {
  std::vector<T> b(w * h);
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x) b[y * w + x] = inside(x, y) ? 1 : 0;
  if (rw < 0) rw = w, rh = h;
  std::vector<CPoint> points(rw * rh + 2, CPoint{-7, -7});
  int count = -1;
  Traced t;
  t.length = FollowContour<T>(b.data(), b.data() + sy * w + sx, w, h, left, top, rw, rh, 1,
                              points.data(), &count);
  points.resize(count);
  t.points = points;
  // Without point output the length is the same and the count is 0.
  int noCount = -1;
  EXPECT_EQ(FollowContour<T>(b.data(), b.data() + sy * w + sx, w, h, left, top, rw, rh, 1,
                             nullptr, &noCount),
            t.length);
  EXPECT_EQ(noCount, 0);
  return t;
}

bool Same(const std::vector<CPoint> &a, const std::vector<std::pair<int, int>> &b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i)
    if (a[i].x != b[i].first || a[i].y != b[i].second) return false;
  return true;
}

TEST(ObjectsFollowContour, SmallShapes) {
  // Isolated pixel: nothing.
  Traced t = Trace<unsigned char>(5, 5, 2, 2, [](int x, int y) { return x == 2 && y == 2; });
  EXPECT_EQ(t.length, 0.0);
  EXPECT_TRUE(t.points.empty());
  // Two pixels side by side: right and back, the closing step not counted.
  t = Trace<int>(5, 5, 2, 2, [](int x, int y) { return y == 2 && (x == 2 || x == 3); });
  EXPECT_EQ(t.length, 1.0);
  EXPECT_TRUE(Same(t.points, {{2, 2}, {3, 2}}));
  // A 3 x 3 square, clockwise from its upper left pixel.
  t = Trace<unsigned char>(7, 7, 2, 2, [](int x, int y) { return x >= 2 && x <= 4 && y >= 2 && y <= 4; });
  EXPECT_EQ(t.length, 7.0);
  EXPECT_TRUE(Same(t.points, {{2, 2}, {3, 2}, {4, 2}, {4, 3}, {4, 4}, {3, 4}, {2, 4}, {2, 3}}));
  // A diagonal line of three pixels: out along the diagonal and back.
  t = Trace<int>(7, 7, 2, 2, [](int x, int y) { return x == y && x >= 2 && x <= 4; });
  EXPECT_DOUBLE_EQ(t.length, 3 * std::sqrt(2.0));
  EXPECT_TRUE(Same(t.points, {{2, 2}, {3, 3}, {4, 4}, {3, 3}}));
  // Start on the region's last column, walking right out of it: one point.
  t = Trace<unsigned char>(8, 5, 3, 2, [](int x, int y) { return y == 2 && x >= 2 && x <= 5; },
                           0, 0, 4, 5);
  EXPECT_EQ(t.length, 0.0);
  EXPECT_TRUE(Same(t.points, {{3, 2}}));
}

TEST(ObjectsFollowContour, FilledRectangles) {
  for (int w = 2; w <= 9; ++w) {
    for (int h = 2; h <= 7; ++h) {
      const Traced t = Trace<unsigned char>(w + 4, h + 4, 2, 2, [&](int x, int y) {
        return x >= 2 && x < 2 + w && y >= 2 && y < 2 + h;
      });
      const int steps = 2 * (w - 1) + 2 * (h - 1);
      ASSERT_EQ(static_cast<int>(t.points.size()), steps) << w << "x" << h;
      EXPECT_EQ(t.length, steps - 1) << w << "x" << h;
      const int r = 2 + w - 1, b = 2 + h - 1;
      EXPECT_EQ(t.points[w - 1].x, r);
      EXPECT_EQ(t.points[w - 1].y, 2);
      EXPECT_EQ(t.points[w - 1 + h - 1].x, r);
      EXPECT_EQ(t.points[w - 1 + h - 1].y, b);
      EXPECT_EQ(t.points[2 * (w - 1) + h - 1].x, 2);
      EXPECT_EQ(t.points[2 * (w - 1) + h - 1].y, b);
    }
  }
}

TEST(ObjectsFollowContour, DigitalDiscNearCircumference) {
  const int r = 40, n = 2 * r + 5, c = n / 2;
  const auto disc = [&](int x, int y) { return (x - c) * (x - c) + (y - c) * (y - c) <= r * r; };
  const Traced t = Trace<int>(n, n, c, c - r, disc);
  const double circle = 2 * 3.14159265358979 * r;
  EXPECT_GT(t.length, 0.95 * circle);
  EXPECT_LT(t.length, 1.12 * circle);
  // Every point is an object pixel with a background 4-neighbour.
  for (const CPoint &p : t.points) {
    ASSERT_TRUE(disc(p.x, p.y));
    EXPECT_FALSE(disc(p.x - 1, p.y) && disc(p.x + 1, p.y) && disc(p.x, p.y - 1) && disc(p.x, p.y + 1));
  }
}

TEST(ObjectsFollowContour, RegionExitAndRunawayGuard) {
  const auto bar = [](int x, int y) { return y == 2 && x >= 2 && x < 14; };  // 12 x 1
  // A region of rows 0..2 and columns 0..15: out 11 steps and back 11, the
  // closing one not counted.
  EXPECT_EQ((Trace<unsigned char>(16, 5, 2, 2, bar, 0, 0, 16, 3).length), 21.0);
  // Columns 0..2: the first step leaves the region.
  EXPECT_EQ((Trace<unsigned char>(16, 5, 2, 2, bar, 0, 0, 3, 3).length), 0.0);
  // Only row 2 (guard 16): the step taken at length 17 is refused.
  const Traced t = Trace<int>(16, 5, 2, 2, bar, 0, 2, 16, 1);
  EXPECT_EQ(t.length, 17.0);
  EXPECT_EQ(t.points.size(), 18u);
  EXPECT_EQ(t.points.back().x, 7);
}

}  // namespace

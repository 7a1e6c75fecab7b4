// Curve interpolation, and the invalid-parameter path it takes for control
// points it cannot use. Pinned values are evaluated separately from the
// documented algorithm.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "Ostrel.h"
#include "VornelTextMgr.h"

namespace {

using Shorts = std::vector<unsigned short>;

// The values of the table (its levels checked to run from the first point's
// x up), which must end where expected: the pairs after it keep their fill.
Shorts Curve(Shorts points, int tableLength, int maxValue) {
  const int first = points[0], pairs = std::max<int>(tableLength, points[points.size() - 2]) - first;
  Shorts table(2 * pairs + 8, 0xBEEF), values;
  CurveInterpolation(static_cast<int>(points.size()), points.data(), tableLength, maxValue, table.data());
  for (int i = 0; i < pairs; ++i) {
    EXPECT_EQ(table[2 * i], first + i);
    values.push_back(table[2 * i + 1]);
  }
  EXPECT_EQ(Shorts(table.begin() + 2 * pairs, table.end()), Shorts(8, 0xBEEF)) << "written past the table";
  return values;
}

TEST(GeometryCurve, IdentityPointsGiveTheIdentityTable) {
  const Shorts v = Curve({0, 0, 255, 255}, 256, 255);
  for (unsigned i = 0; i < 256; ++i) EXPECT_EQ(v[i], i);
}

TEST(GeometryCurve, MonotonePointsGiveAMonotoneTable) {
  std::mt19937 rng(7);
  for (int round = 0; round < 200; ++round) {
    Shorts xs(2 + round % 6), ys(xs.size()), points;
    for (auto &x : xs) x = static_cast<unsigned short>(rng() % 1024);
    for (auto &y : ys) y = static_cast<unsigned short>(rng() % 4096);
    std::sort(xs.begin(), xs.end());
    std::sort(ys.begin(), ys.end());
    if (std::adjacent_find(xs.begin(), xs.end()) != xs.end()) continue;  // equal x: no curve
    for (size_t i = 0; i < xs.size(); ++i) points.insert(points.end(), {xs[i], ys[i]});
    const Shorts v = Curve(points, 1024, 4095);
    EXPECT_EQ(v[0], ys[0]);
    EXPECT_TRUE(std::is_sorted(v.begin(), v.end())) << "round " << round;
  }
}

TEST(GeometryCurve, PinnedValues) {
  const struct {
    Shorts points;
    int maxValue;
    unsigned level, want;
  } cases[] = {
      // Middle tangent (200/128 + 55/127) / 2, within the limit.
      {{0, 0, 128, 200, 255, 255}, 255, 64, 109},
      {{0, 0, 128, 200, 255, 255}, 255, 200, 239},
      // Limiting the second segment shrinks the tangent at (20, 110), and the
      // third segment is limited from the shrunk one; limiting each segment
      // from the first tangents would give 113 and 118.
      {{0, 0, 10, 100, 20, 110, 120, 120}, 255, 30, 112},
      {{0, 0, 10, 100, 20, 110, 120, 120}, 255, 70, 117},
      // A flat segment is flat, with flat tangents at its ends.
      {{0, 0, 100, 100, 200, 100, 255, 200}, 255, 99, 100},
      {{0, 0, 100, 100, 200, 100, 255, 200}, 255, 150, 100},
      {{0, 0, 100, 100, 200, 100, 255, 200}, 255, 202, 100},
      // The tangent at (100, 100) points down and is kept: the curve rises
      // above 100 before it; clamping catches it at maxValue.
      {{0, 0, 100, 100, 110, 0, 255, 255}, 1000, 85, 127},
      {{0, 0, 100, 250, 110, 0, 255, 255}, 255, 90, 255},
      // Levels from the last point on carry its value, unclamped.
      {{10, 20, 200, 180}, 255, 10, 20},
      {{10, 20, 200, 180}, 255, 255, 180},
      {{0, 0, 100, 300}, 255, 99, 255},
      {{0, 0, 100, 300}, 255, 100, 300},
  };
  for (const auto &c : cases) {
    EXPECT_EQ(Curve(c.points, 256, c.maxValue)[c.level - c.points[0]], c.want)
        << c.points.size() / 2 << " points via y " << c.points[3] << ", level " << c.level;
  }
  EXPECT_EQ(Curve({0, 0, 50, 50}, 10, 255).size(), 50u);  // the spline runs past a short table
}

// ---- Invalid parameters ---------------------------------------------------

struct InvalidParameterSeen {
  std::string function;
};

void ThrowingHandler(const char *function, const char *, const char *, unsigned int) {
  throw InvalidParameterSeen{function};
}

void ReturningHandler(const char *, const char *, const char *, unsigned int) {}

TEST(GeometryCurveInvalid, UnusablePointsReachTheHandlerBeforeAnyWrite) {
  const OstrelInvalidParameterHandler previous = SetInvalidParameterHandler(ThrowingHandler);
  const struct {
    Shorts points;
    int count;
  } cases[] = {
      {{0, 0, 255, 255}, 0}, {{0, 0, 255, 255}, 3}, {{0, 0, 255, 255}, -4},
      {{0, 0, 100, 50, 50, 100}, 6},        // x decreases
      {{0, 0, 10, 10, 20, 20, 15, 30}, 8},  // ... at the last point only
  };
  for (auto c : cases) {
    Shorts table(64, 0xBEEF);
    try {
      CurveInterpolation(c.count, c.points.data(), 32, 255, table.data());
      ADD_FAILURE() << "no invalid parameter for count " << c.count;
    } catch (const InvalidParameterSeen &seen) {
      EXPECT_EQ(seen.function, "CurveInterpolation");
    }
    EXPECT_EQ(table, Shorts(64, 0xBEEF)) << "count " << c.count;
  }
  Shorts equal = {0, 0, 5, 10, 5, 20, 9, 30}, table(64);  // equal x: not refused
  EXPECT_NO_THROW(CurveInterpolation(8, equal.data(), 12, 255, table.data()));
  EXPECT_EQ(SetInvalidParameterHandler(previous), ThrowingHandler);
}

// Without a handler, or when it returns, the call reports through the text
// manager (or on standard error without one) and aborts.
TEST(GeometryCurveInvalidDeathTest, DefaultReportsAndAborts) {
  unsigned short points[] = {0, 0}, table[8];
  const OstrelInvalidParameterHandler previous = SetInvalidParameterHandler(nullptr);
  EXPECT_DEATH(CurveInterpolation(2, points, 4, 255, table),
               "Vornel exception 1 \\(curve_interpolation\\.cpp, line [0-9]+\\)");
  EXPECT_DEATH(
      {
        DllSetTextMgr(nullptr);
        CurveInterpolation(2, points, 4, 255, table);
      },
      "Ostrel: invalid parameter in CurveInterpolation: k >= 2");
  EXPECT_EQ(SetInvalidParameterHandler(ReturningHandler), nullptr);
  EXPECT_DEATH(CurveInterpolation(2, points, 4, 255, table), "Vornel exception 1");
  SetInvalidParameterHandler(previous);
}

}  // namespace

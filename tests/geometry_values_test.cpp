// Nice axis values and piecewise-linear tables. Pinned last bits were evaluated separately.
#include <gtest/gtest.h>

#include <vector>

#include "Ostrel.h"

TEST(GeometryNiceValues, OneStepAboveAndBelowAcrossTheDecades) {
  const struct {
    double v, greater, smaller;
  } cases[] = {{0.00056, 0.0006, 0.0004},
               {0.001, 0.002, 0},
               {0.05, 0.06, 0.04},
               {0.5, 0.6, 0.4},
               {1, 2, 0},
               {7.9, 8, 6},
               {10, 20, 0},
               {25, 30, 10},
               {250, 300, 100},
               {1000, 2000, 0},
               {99999, 100000, 80000},
               {1e6, 2e6, 0},
               {-0.5, -0.4999, -0.5001},  // everything below 0.001 steps by 0.0001
               {123456, 199999.99999999997, 0},
               {250000, 300000, 99999.99999999999},  // divided by 0.00001, not * 100000
               // Beyond int, trunc(v * -0.000001) is 0x80000000, and 1 - 0x80000000 wraps in 32
               // bits without undefined behaviour: the sign flips.
               {1e16, -2147483647 / 0.000001, 2147483647 / 0.000001}};
  for (const auto &c : cases) {
    EXPECT_EQ(GetNiceGreaterValue(c.v), c.greater) << c.v;
    EXPECT_EQ(GetNiceSmallerValue(c.v), c.smaller) << c.v;
  }
}

TEST(GeometryLinearInterpolation, SegmentsAndNearestPoint) {
  const struct {
    double xs[3], ys[3];
    unsigned count;
    double x, want;
  } cases[] = {{{0, 10}, {0, 100}, 2, 2.5, 25},
               {{10, 0}, {0, 100}, 2, 2.5, 75},  // either direction
               {{0, 10}, {0, 100}, 2, -3, 0},
               {{0, 10}, {0, 100}, 2, 12, 100},  // nearest point, not extrapolated
               {{5, 0, 5}, {1, 2, 3}, 3, 7, 1},
               {{0, 10, 0}, {0, 100, 300}, 3, 5, 50},  // the first point or segment wins
               {{5, 5 + 1e-8},
                {1, 2},
                2,
                5 + 1e-8,
                1},  // narrower than the single-precision epsilon: first value
               {{0.7, 1.2},
                {2.9, 0.9},
                2,
                1.0,
                1.6999999999999993}};  // x * s + (y0 - x0 * s); y0 + (x - x0) * s: ...97
  for (const auto &c : cases) {
    EXPECT_EQ(GetLinearInterpoliertenWert(c.xs, c.ys, c.count, c.x), c.want)
        << c.xs[0] << ".." << c.x;
  }
  // Tables too short for a segment are read no further than they reach.
  const std::vector<double> one{4.0}, value{9.0};
  EXPECT_EQ(GetLinearInterpoliertenWert(one.data(), value.data(), 1, 30.0), 9.0);
  EXPECT_EQ(GetLinearInterpoliertenWert(nullptr, nullptr, 0, 30.0), 0.0);
}

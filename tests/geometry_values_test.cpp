// Nice axis values and piecewise-linear tables. Pinned last bits are
// evaluated separately from the documented formulas.
#include <gtest/gtest.h>

#include <cmath>

#include "Ostrel.h"

namespace {

TEST(GeometryNiceValues, OneStepAboveAndBelowAcrossTheDecades) {
  const struct {
    double v, greater, smaller;
  } cases[] = {
      {0.00056, 0.0006, 0.0004}, {1e-5, 0.0001, -0.0001}, {0.001, 0.002, 0}, {0.0099, 0.01, 0.008},
      {0.5, 0.6, 0.4},           {1, 2, 0},               {2.5, 3, 1},       {7.2, 8, 6},
      {7.9, 8, 6},               {10, 20, 0},             {20, 30, 10},      {25, 30, 10},
      {99.99, 100, 80},          {1000, 2000, 0},         {99999, 100000, 80000},
      // The top decades divide by 0.00001 and 0.000001: the last bits show.
      {123456, 199999.99999999997, 0}, {250000, 300000, 99999.99999999999},
      {999999.9, 999999.9999999999, 799999.9999999999}, {1e6, 2e6, 0}, {2500000, 3000000, 1000000},
      // Everything below 0.001 steps by 0.0001, negative values included.
      {-0.5, -0.4999, -0.5001},
      // trunc(v * -0.000001) beyond int gives 0x80000000, and 1 - 0x80000000
      // wraps in 32 bits: the sign flips, without undefined behaviour.
      {1e16, -2147483647 / 0.000001, 2147483647 / 0.000001},
  };
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
  } cases[] = {
      {{0, 10}, {0, 100}, 2, 2.5, 25},
      {{0, 10}, {0, 100}, 2, 10, 100},
      {{0, 10}, {0, 100}, 2, -3, 0},  // nearest point, not extrapolated
      {{0, 10}, {0, 100}, 2, 12, 100},
      {{0, 10}, {0, 100}, 2, std::nan(""), 0},
      {{10, 0}, {0, 100}, 2, 2.5, 75},          // descending
      {{0, 10, 0}, {0, 100, 300}, 3, 5, 50},    // the first segment holding x wins
      {{5, 5}, {1, 2}, 2, 5, 1},                // no width: the first value
      {{5, 5 + 1e-8}, {1, 2}, 2, 5 + 1e-8, 1},  // below the single-precision epsilon
      {{5, 0, 5}, {1, 2, 3}, 3, 7, 1},          // equally near: the first point
      // x * s + (y0 - x0 * s); y0 + (x - x0) * s would give 1.6999999999999997.
      {{0.7, 1.2}, {2.9, 0.9}, 2, 1.0, 1.6999999999999993},
  };
  for (const auto &c : cases) {
    EXPECT_EQ(GetLinearInterpoliertenWert(c.xs, c.ys, c.count, c.x), c.want) << c.xs[0] << "," << c.xs[1] << " at " << c.x;
  }
}

}  // namespace

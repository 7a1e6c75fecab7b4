// Tone curves, and the invalid-parameter path for points they cannot use. Pinned values were
// evaluated separately from the spline's definition.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "Ostrel.h"
#include "VornelTextMgr.h"

namespace {

using Shorts = std::vector<unsigned short>;

// The table's values, checked to pair with levels from the first point's x up and to end where
// expected.
Shorts Curve(Shorts points, int tableLength, int maxValue) {
  const int first = points[0],
            pairs = std::max<int>(tableLength, points[points.size() - 2]) - first;
  Shorts table(2 * pairs + 8, 0xBEEF), values;
  CurveInterpolation(static_cast<int>(points.size()), points.data(), tableLength, maxValue,
                     table.data());
  for (int i = 0; i < pairs; ++i) EXPECT_EQ(table[2 * i], first + i);
  for (int i = 0; i < pairs; ++i) values.push_back(table[2 * i + 1]);
  EXPECT_EQ(Shorts(table.begin() + 2 * pairs, table.end()), Shorts(8, 0xBEEF))
      << "written past the table";
  return values;
}

TEST(GeometryCurve, IdentityPointsGiveTheIdentityAndMonotoneOnesAMonotoneTable) {
  const Shorts identity = Curve({0, 0, 255, 255}, 256, 255);
  for (unsigned i = 0; i < 256; ++i) EXPECT_EQ(identity[i], i);
  std::mt19937 rng(7);
  for (unsigned round = 0; round < 200; ++round) {  // ascending points, some of them level
    Shorts points;
    for (unsigned i = 0, x = rng() % 64, y = rng() % 512; i < 2 + round % 6; ++i) {
      points.insert(points.end(), {static_cast<unsigned short>(x), static_cast<unsigned short>(y)});
      x += 1 + rng() % 160, y += rng() % 4 ? rng() % 600 : 0;
    }
    const Shorts v = Curve(points, 1024, 4095);
    EXPECT_TRUE(v[0] == points[1] && std::is_sorted(v.begin(), v.end())) << "round " << round;
  }
}

TEST(GeometryCurve, PinnedValues) {
  const Shorts twoBends = {0, 0, 10, 100, 20, 110, 120, 120},
               flat = {0, 0, 100, 100, 200, 100, 255, 200};
  const struct {
    Shorts points;
    int maxValue;
    unsigned level, want;
  } cases[] = {
      {{0, 0, 128, 200, 255, 255},
       255,
       64,
       109},  // middle tangent (200/128 + 55/127) / 2, not limited
      // The third segment is limited from the tangent at (20, 110) that limiting the second shrank
      // (113 and 118 from the first tangents). A flat segment has flat tangents at both ends.
      {twoBends, 255, 30, 112},
      {twoBends, 255, 70, 117},
      {flat, 255, 99, 100},
      {flat, 255, 202, 100},
      // The tangent at (100, 100) points down and is kept: the curve overshoots, up to maxValue.
      {{0, 0, 100, 100, 110, 0, 255, 255}, 1000, 85, 127},
      {{0, 0, 100, 250, 110, 0, 255, 255}, 255, 90, 255},
      {{0, 0, 100, 300}, 255, 100, 300}};  // from the last point on its value, unclamped
  for (const auto &c : cases) {
    EXPECT_EQ(Curve(c.points, 256, c.maxValue)[c.level - c.points[0]], c.want)
        << c.points.size() / 2 << " points via y " << c.points[3] << ", level " << c.level;
  }
  EXPECT_EQ(Curve({0, 0, 50, 50}, 10, 255).size(), 50u);  // the spline runs past a short table
}

std::string g_function;
void Thrower(const char *function, const char *, const char *, unsigned) {
  throw g_function = function;
}

// A host's handler hears of unusable points before anything is written; without one, or when it
// returns, the call reports through the text manager (or on standard error) and aborts.
TEST(GeometryCurveInvalidDeathTest, HostHandlerElseReportAndAbort) {
  const OstrelInvalidParameterHandler previous = SetInvalidParameterHandler(Thrower);
  Shorts table(64, 0xBEEF), two = {0, 0, 9, 9}, falling = {0, 0, 10, 10, 20, 20, 15, 30},
                            equal = {0, 0, 5, 9, 5, 20};
  for (int count : {3, -4})
    EXPECT_THROW(CurveInterpolation(count, two.data(), 32, 255, table.data()), std::string);
  EXPECT_THROW(CurveInterpolation(8, falling.data(), 32, 255, table.data()),
               std::string);  // x falls at the end
  EXPECT_TRUE(g_function == "CurveInterpolation" && table == Shorts(64, 0xBEEF)) << g_function;
  EXPECT_NO_THROW(
      CurveInterpolation(6, equal.data(), 12, 255, table.data()));  // equal x: not refused
  EXPECT_EQ(SetInvalidParameterHandler(nullptr), Thrower);
  EXPECT_DEATH(CurveInterpolation(2, equal.data(), 4, 255, table.data()),
               "Vornel exception 1 \\(curve_interpolation");
  EXPECT_DEATH((DllSetTextMgr(nullptr), CurveInterpolation(2, equal.data(), 4, 255, table.data())),
               "Ostrel: invalid parameter in CurveInterpolation: k >= 2");
  SetInvalidParameterHandler([](const char *, const char *, const char *, unsigned) {});
  EXPECT_DEATH(CurveInterpolation(2, equal.data(), 4, 255, table.data()), "Vornel exception 1");
  SetInvalidParameterHandler(previous);
}

#ifdef _WIN32
void RuntimeHandler(const wchar_t *, const wchar_t *, const wchar_t *, unsigned, std::uintptr_t) {
  std::fputs("runtime handler, then ", stderr);
}

// On Windows the handler a host installed in the C runtime runs too, after the host's own and
// before the report.
TEST(GeometryCurveInvalidDeathTest, RuntimeHandlerRunsBeforeTheReport) {
  Shorts table(16, 0), equal = {0, 0, 5, 9, 5, 20};
  const _invalid_parameter_handler previous = _set_invalid_parameter_handler(RuntimeHandler);
  EXPECT_DEATH((DllSetTextMgr(nullptr), CurveInterpolation(2, equal.data(), 4, 255, table.data())),
               "runtime handler, then Ostrel: invalid parameter in CurveInterpolation: k >= 2");
  _set_invalid_parameter_handler(previous);
}
#endif

}  // namespace

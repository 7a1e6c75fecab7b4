// Angles, lengths and intersections. Expected values are worked out by hand
// or, where the last bits matter, evaluated separately from the documented
// formulas; such cases note what a reordered formula would give.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "Ostrel.h"
#include "geometry/geometry.h"

namespace {

constexpr double kPi = 3.141592653589793;

TEST(GeometryAngles, Directions) {
  const struct {
    double x2, y2, degrees, radians;
  } cases[] = {
      // The radian form gives pi/2 for every dy == 0, vertical ones come from atan(+-inf).
      {1, 0, 0, kPi / 2},     {-1, 0, 180, kPi / 2}, {0, 0, 90, kPi / 2}, {0, 1, 90, kPi / 2},
      {0, -1, 270, 4.71238898038469},   {1, 1, 45, kPi / 4},  {-1, 1, 135, 2.356194490192345},
      {-1, -1, 225, 3.9269908169872414}, {1, -1, 315, 5.497787143782138},
      // atan(dy / dx) * 180 / pi; * (180 / pi) would end in ...854.
      {7, 2, 15.945395900922856, 0.27829965900511133},
  };
  for (const auto &c : cases) {
    EXPECT_EQ(GetAngle(0, 0, c.x2, c.y2), c.degrees) << c.x2 << "," << c.y2;
    EXPECT_EQ(GetAngle(5, -3, 5 + c.x2, c.y2 - 3), c.degrees) << c.x2 << "," << c.y2;
    EXPECT_EQ(GetAngleRad(0, 0, c.x2, c.y2), c.radians) << c.x2 << "," << c.y2;
  }
}

TEST(GeometryAngles, PositionAndLength) {
  double x = 0, y = 0;
  GetPosition(2, 180, &x, &y);
  EXPECT_EQ(x, -2);
  EXPECT_NEAR(y, 0, 1e-15);
  GetPosition(3, 33, &x, &y);  // 33 / 180 * pi would give y = 1.633917105045081
  EXPECT_EQ(x, 2.516011703836272);
  EXPECT_EQ(y, 1.6339171050450814);
  EXPECT_EQ(GetLength(1, 2, 4, 6), 5);
  EXPECT_EQ(GetLength(0, 0, 1, 1), std::sqrt(2.0));
}

TEST(GeometryAngles, IntersectionDistanceAndPerpendicularDirection) {
  const struct {
    double px, py, x1, y1, x2, y2, distance, angle;
    int rounded;  // the integer twin's result, for integer points
  } cases[] = {
      {3, 4, 0, 0, 10, 0.0005, 4, kPi / 2, 0},   // horizontal within the tolerance
      {3, -4, 0, 0, 10, 0.0005, 4, kPi / 2, 0},  // the same angle below the line
      {3, 4, 1, 0, 1.0005, 10, 2, 0, 0},         // vertical within the tolerance
      {-1, 4, 1, 0, 1.0005, 10, 2, 0, 0},        // the same angle left of it
      {3, 4, 1, 1, 1, 1, 3, kPi / 2, 3},         // a point, not a line: horizontal
      {3, 4, 0, 0, 10, 0, 4, kPi / 2, 4},
      {3, 4, 1, 0, 1, 10, 2, 0, 2},
      {0, 2, 0, 0, 2, 2, std::sqrt(2.0), 2.356194490192345, 1},
      {2, 0, 0, 0, 2, 2, 1.414213562373095, 5.497787143782138, 1},  // a bit below sqrt(2)
      {0, 5, 0, 0, 2, 2, 3.5355339059327373, 2.356194490192345, 4},
      {4, 1, 1, 1, 4, 5, 2.4, 5.639684198386302, 2},
  };
  for (const auto &c : cases) {
    double angle = -1;
    EXPECT_EQ(GetIntersectionDistanceDb(c.px, c.py, c.x1, c.y1, c.x2, c.y2, &angle), c.distance) << c.px << "," << c.py;
    EXPECT_EQ(angle, c.angle) << c.px << "," << c.py;
    if (c.rounded == 0) continue;  // not integer points
    angle = -1;
    EXPECT_EQ(ostrel::geometry::GetIntersectionDistanceInt(int(c.px), int(c.py), int(c.x1), int(c.y1), int(c.x2),
                                                           int(c.y2), &angle),
              c.rounded) << c.px << "," << c.py;
    EXPECT_EQ(angle, c.angle);
  }
}

TEST(GeometryAngles, UserAndSystemAngles) {
  const struct {
    double angle, mirrored;
  } cases[] = {
      {0, 90}, {90, 0}, {-30, 120}, {450, 0}, {-720, 90}, {180, 270},
      // Through (360 - a) - 270: fmod(90 - angle, 360) gives 89.9 and 9.400000000000006.
      {0.1, 89.89999999999998}, {80.6, 9.399999999999977},
  };
  for (const auto &c : cases) {
    EXPECT_EQ(GetSystemAngleFromUserAngle(c.angle, eAngleModeFromVertical), c.mirrored) << c.angle;
    EXPECT_EQ(GetUserAngleFromSystemAngle(c.angle, eAngleModeFromVertical), c.mirrored) << c.angle;
    EXPECT_EQ(GetSystemAngleFromUserAngle(c.angle, static_cast<_EAngleMode>(7)), c.mirrored) << c.angle;
    EXPECT_EQ(GetUserAngleFromSystemAngle(c.angle, eAngleModeFromHorizontal), c.angle);
  }
}

TEST(GeometryAngles, FlexoSizeAndAngle) {
  EXPECT_EQ(GetFlexoSizeFromAngle(10, 0.5, 45), 5.000000000000001);  // tan(pi/4) = 0.9999999999999999
  EXPECT_EQ(GetFlexoSizeFromAngle(8, 0.25, 33), 9.2391897828875);    // 33 * pi / 180: ...497
  EXPECT_EQ(GetFlexoSizeFromAngle(8, 0.25, 0), std::numeric_limits<double>::infinity());
  EXPECT_EQ(GetFlexoAngleFromSize(10, 0.5, 5), 45);
  for (double degrees : {1.0, 89.5, 179.0}) {
    EXPECT_NEAR(GetFlexoAngleFromSize(8, 0.25, GetFlexoSizeFromAngle(8, 0.25, degrees)), degrees, 1e-9);
  }
}

}  // namespace

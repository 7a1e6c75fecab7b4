// Angles, positions, lengths, intersections, user and system angles, flexo sizes. Where the order
// of operations decides the last bits, the value was evaluated separately; comments give another
// order's result.
#include <gtest/gtest.h>

#include <limits>

#include "Ostrel.h"
#include "geometry/geometry.h"

constexpr double kPi = 3.141592653589793;

TEST(GeometryAngles, Directions) {
  const struct {
    double dx, dy, degrees, radians;
  } cases[] = {// The radian form gives pi/2 for every dy == 0; vertical ones come from atan(+-inf).
               {1, 0, 0, kPi / 2},
               {-1, 0, 180, kPi / 2},
               {0, 0, 90, kPi / 2},
               {0, -1, 270, 4.71238898038469},
               {-1, 1, 135, 2.356194490192345},
               {-1, -1, 225, 3.9269908169872414},
               {1, -1, 315, 5.497787143782138},
               {7, 2, 15.945395900922856,
                0.27829965900511133}};  // atan(dy / dx) * 180 / pi; * (180 / pi): ...854
  for (const auto &c : cases) {
    EXPECT_EQ(GetAngle(5, -3, 5 + c.dx, c.dy - 3), c.degrees) << c.dx << "," << c.dy;
    EXPECT_EQ(GetAngleRad(5, -3, 5 + c.dx, c.dy - 3), c.radians) << c.dx << "," << c.dy;
  }
}

TEST(GeometryAngles, PositionLengthAndFlexo) {
  double x = 0, y = 0;
  GetPosition(3, 33, &x, &y);  // 33 * pi / 180; 33 / 180 * pi would give y = 1.633917105045081
  EXPECT_EQ(x, 2.516011703836272);
  EXPECT_EQ(y, 1.6339171050450814);
  EXPECT_EQ(GetLength(1, 2, 4, 6), 5);
  EXPECT_EQ(GetFlexoSizeFromAngle(8, 0.25, 33),
            9.2391897828875);  // 33 / 180 * pi; 33 * pi / 180: ...497
  EXPECT_EQ(GetFlexoSizeFromAngle(8, 0.25, 0), std::numeric_limits<double>::infinity());
  EXPECT_EQ(GetFlexoAngleFromSize(8, 0.25, 9.2391897828875),
            33);  // * (180 / pi): 32.999999999999993
  EXPECT_EQ(GetFlexoAngleFromSize(8, 0.25, 10), 30.963756532073521);  // / pi * 180: ...525
  EXPECT_EQ(GetFlexoAngleFromSize(8, 0.25, -6), 135);
}

TEST(GeometryAngles, IntersectionDistanceAndPerpendicularDirection) {
  const struct {
    double px, py, x1, y1, x2, y2, distance, angle;
    int rounded;
  } cases[] = {
      {3, -4, 0, 0, 10, 0.0005, 4, kPi / 2,
       -1},  // horizontal within the tolerance: pi/2 below it too
      {3, 4, 0, 0, 10, 0.001, 3.9996999800014241, 1.5708963267945635,
       -1},                                 // at the tolerance: not horizontal
      {-1, 4, 1, 0, 1.0005, 10, 2, 0, -1},  // vertical within the tolerance: 0 left of it too
      {3, 4, 1, 1, 1, 1, 3, kPi / 2, 3},    // a point counts as a horizontal line
      {0, 5, 0, 0, 2, 2, 3.5355339059327373, 2.356194490192345, 4},
      {4, 1, 1, 1, 4, 5, 2.4, 5.639684198386302, 2},
      {2, 0, 0, 0, 2, 2, 1.414213562373095, 5.497787143782138, 1}};  // a bit below sqrt(2)
  for (const auto &c : cases) {
    double angle = -1, intAngle = -1;
    EXPECT_EQ(GetIntersectionDistanceDb(c.px, c.py, c.x1, c.y1, c.x2, c.y2, &angle), c.distance)
        << c.px << "," << c.py;
    EXPECT_EQ(angle, c.angle) << c.px << "," << c.py;
    if (c.rounded < 0)
      continue;  // not integer points; the integer twin rounds the distance half up
    EXPECT_EQ(
        ostrel::geometry::GetIntersectionDistanceInt(c.px, c.py, c.x1, c.y1, c.x2, c.y2, &intAngle),
        c.rounded);
    EXPECT_EQ(intAngle, c.angle) << c.px << "," << c.py;
  }
}

TEST(GeometryAngles, UserAndSystemAngles) {
  const struct {
    double angle, mirrored;
  } cases[] = {{0, 90},
               {-30, 120},
               {450, 0},
               {180, 270},
               {0.1, 89.89999999999998},
               {80.6, 9.399999999999977}};  // fmod(90 - angle, 360): 89.9, 9.400000000000006
  for (const auto &c : cases) {
    EXPECT_EQ(GetSystemAngleFromUserAngle(c.angle, eAngleModeFromVertical), c.mirrored) << c.angle;
    EXPECT_EQ(GetUserAngleFromSystemAngle(c.angle, static_cast<_EAngleMode>(7)), c.mirrored)
        << c.angle;
    EXPECT_EQ(GetSystemAngleFromUserAngle(c.angle, eAngleModeFromHorizontal), c.angle);
  }
}

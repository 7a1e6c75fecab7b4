// Angles, lengths and intersections.
//
// The operation orders below are part of the results: degrees become radians
// as angle * pi / 180 (the product first) in GetPosition but as
// angle / 180 * pi in GetFlexoSizeFromAngle, and so on. Keep each expression
// as written so that the doubles come out the same on every build.
#include <cmath>

#include "Ostrel.h"
#include "VornelCoordPair.h"
#include "VornelException.h"
#include "frame/numeric.h"
#include "geometry/geometry.h"

namespace ostrel {
namespace geometry {
namespace {

// Tolerance below which GetIntersectionDistanceDb takes a line as horizontal
// or vertical.
constexpr double kAxisTolerance = 0.001;

// (cos(a) * distance, sin(a) * distance) for a = angleDegrees * pi / 180.
void PositionAt(double distance, double angleDegrees, double &x, double &y) {
  const double a = angleDegrees * kPi / 180;
  x = std::cos(a) * distance;
  y = std::sin(a) * distance;
}

// Both conversions between user and system angles: brings angle into
// [0, 360), forms (360 - a) + shift and brings that into [0, 360). Each
// direction keeps its own shift (-270 and +90), which agree modulo 360.
double MirrorAngle(double angle, _EAngleMode mode, double shift) {
  if (mode == eAngleModeFromHorizontal) return angle;
  const double a = angle - 360 * std::floor(angle / 360);
  const double t = (360 - a) + shift;
  return t - 360 * std::floor(t / 360);
}

// GetIntersectionDistanceDb.
double DistanceToLine(double px, double py, double x1, double y1, double x2, double y2,
                      double *angle) {
  *angle = 0;
  const double dy = y2 - y1;
  if (std::fabs(dy) < kAxisTolerance) {
    *angle = kHalfPi;
    return std::fabs(py - y1);
  }
  const double dx = x2 - x1;
  if (std::fabs(dx) < kAxisTolerance) {
    *angle = 0;
    return std::fabs(px - x1);
  }
  const double m = dy / dx;
  const double n = std::tan(std::atan(m) - kHalfPi);  // slope of the perpendicular
  // The foot of the perpendicular from p.
  const double fx = (x1 * m + (py - y1) - px * n) / (m - n);
  const double fy = n * (fx - px) + py;
  const double ex = px - fx, ey = py - fy;
  double a = std::atan2(ey, ex);
  if (a < 0) a += kTwoPi;
  *angle = a;
  return std::sqrt(ex * ex + ey * ey);
}

}  // namespace

std::int32_t GetIntersectionDistanceInt(std::int32_t px, std::int32_t py, std::int32_t x1,
                                        std::int32_t y1, std::int32_t x2, std::int32_t y2,
                                        double *angle) {
  // Differences of 32-bit integers are exact in doubles, and for them
  // |difference| < 0.001 holds exactly when they are equal.
  const double d = DistanceToLine(px, py, x1, y1, x2, y2, angle);
  return frame::TruncToInt32(d + 0.5);
}

}  // namespace geometry
}  // namespace ostrel

namespace geometry = ostrel::geometry;

double GetAngle(double x1, double y1, double x2, double y2) {
  const double dx = x2 - x1, dy = y2 - y1;
  double offset = 0;
  if (dx < 0) offset = 180;
  if (dy < 0) offset = dx >= 0 ? 360 : 180;
  if (dx == 0) return dy >= 0 ? 90 : 270;
  return std::atan(dy / dx) * 180 / geometry::kPi + offset;
}

double GetAngleRad(double x1, double y1, double x2, double y2) {
  const double dx = x2 - x1, dy = y2 - y1;
  double offset = 0;
  if (x2 < x1) offset = geometry::kPi;
  if (dy < 0) offset = x2 < x1 ? geometry::kPi : geometry::kTwoPi;
  // A horizontal direction gives pi/2 on either side. A vertical one needs no
  // case of its own: dy / dx is infinite and atan takes it to +-pi/2.
  if (dy == 0) return geometry::kHalfPi;
  return std::atan(dy / dx) + offset;
}

void GetPosition(double distance, double angleDegrees, double *x, double *y) {
  geometry::PositionAt(distance, angleDegrees, *x, *y);
}

void GetPosition(double distance, double angleDegrees, ICoordPair *pair) {
  double x, y;
  geometry::PositionAt(distance, angleDegrees, x, y);
  const VornelStatus status = pair->SetXY(x, y);
  if (status < 0) MakeException(status, pair);
}

double GetLength(double x1, double y1, double x2, double y2) {
  const double dx = x2 - x1, dy = y2 - y1;
  return std::sqrt(dx * dx + dy * dy);
}

double GetIntersectionDistanceDb(double px, double py, double x1, double y1, double x2, double y2,
                                 double *angle) {
  return geometry::DistanceToLine(px, py, x1, y1, x2, y2, angle);
}

double GetSystemAngleFromUserAngle(double angle, _EAngleMode mode) {
  return geometry::MirrorAngle(angle, mode, -270);
}

double GetUserAngleFromSystemAngle(double angle, _EAngleMode mode) {
  return geometry::MirrorAngle(angle, mode, 90);
}

double GetFlexoSizeFromAngle(double length, double ratio, double angleDegrees) {
  return (1 - ratio) * length / std::tan(angleDegrees / 180 * geometry::kPi);
}

double GetFlexoAngleFromSize(double length, double ratio, double size) {
  return std::atan2((1 - ratio) * length, size) * 180 / geometry::kPi;
}

// Curve interpolation: a tone curve through a few control points, tabulated
// for every input level with a cubic Hermite spline whose tangents are
// limited so that monotone control points give a monotone curve.
#include <cmath>
#include <cstdint>
#include <vector>

#include "Ostrel.h"
#include "frame/numeric.h"
#include "frame/platform.h"

namespace ostrel {
namespace geometry {
namespace {

// The control points, read into 32-bit integers, and their tangents.
struct Spline {
  std::vector<std::int32_t> x, y;
  std::vector<double> m;

  // Slope of the chord of segment i (points i and i + 1).
  double Secant(std::size_t i) const {
    return static_cast<double>(y[i + 1] - y[i]) / (x[i + 1] - x[i]);
  }

  // Tangents: the chord's slope at the two ends; inside, the mean of the two
  // neighbouring chords' slopes, formed as the sum of their halves.
  void InitialTangents() {
    const std::size_t k = x.size();
    m[0] = Secant(0);
    for (std::size_t i = 1; i + 1 < k; ++i) {
      m[i] = static_cast<double>(y[i] - y[i - 1]) / (2 * (x[i] - x[i - 1])) +
             static_cast<double>(y[i + 1] - y[i]) / (2 * (x[i + 1] - x[i]));
    }
    m[k - 1] = Secant(k - 2);
  }

  // Limits the tangents segment by segment, from the first: a flat chord
  // gets flat tangents at both ends, and tangents whose ratios a, b to the
  // chord lie outside the circle a^2 + b^2 = 9 are scaled back onto it. A
  // segment sees the tangent the one before it changed. Tangents of the
  // wrong sign are left alone: control points that are not monotone may
  // overshoot (the table clamps).
  void LimitTangents() {
    for (std::size_t i = 0; i + 1 < x.size(); ++i) {
      const double d = Secant(i);
      if (d == 0) {
        m[i] = m[i + 1] = 0;
        continue;
      }
      const double a = m[i] / d, b = m[i + 1] / d;
      const double r2 = a * a + b * b;
      if (r2 > 9) {
        const double tau = 3 / std::sqrt(r2);
        m[i] = tau * a * d;
        m[i + 1] = tau * b * d;
      }
    }
  }

  // The curve at level v, which lies in [x[0], x[k-1]).
  double At(std::int32_t v) const {
    // The first segment that holds v (for ascending x there is one).
    std::size_t j = 1;
    while (!(x[j] >= v && x[j - 1] <= v)) ++j;
    const double h = x[j] - x[j - 1];
    const double t = (v - x[j - 1]) / h;
    const double t2 = t * t, t3 = t2 * t;
    const double h00 = 2 * t3 - 3 * t2 + 1;
    const double h10 = t3 - 2 * t2 + t;
    const double h01 = 3 * t2 - 2 * t3;
    const double h11 = t3 - t2;
    return m[j - 1] * h * h10 + y[j - 1] * h00 + y[j] * h01 + h * m[j] * h11;
  }
};

// v rounded half away from zero, truncated, and clamped to 0 .. maxValue.
std::int32_t Level(double v, std::int32_t maxValue) {
  std::int32_t level = frame::TruncToInt32(v >= 0 ? v + 0.5 : v - 0.5);
  if (level < 0) level = 0;
  if (level > maxValue) level = maxValue;
  return level;
}

}  // namespace
}  // namespace geometry
}  // namespace ostrel

namespace geometry = ostrel::geometry;

void CurveInterpolation(int pointValueCount, unsigned short *points, int tableLength, int maxValue,
                        unsigned short *table) {
  const int k = pointValueCount / 2;
  OSTREL_INVALID_PARAMETER_UNLESS(__func__, k >= 2);
  for (int i = 1; i < k; ++i) {
    OSTREL_INVALID_PARAMETER_UNLESS(__func__, points[2 * i - 2] <= points[2 * i]);
  }

  geometry::Spline s;
  s.x.resize(k);
  s.y.resize(k);
  s.m.resize(k);
  for (int i = 0; i < k; ++i) {
    s.x[i] = points[2 * i];
    s.y[i] = points[2 * i + 1];
  }
  s.InitialTangents();
  s.LimitTangents();

  std::int32_t v = s.x[0];
  for (; v < s.x[k - 1]; ++v) {
    *table++ = static_cast<unsigned short>(v);
    *table++ = static_cast<unsigned short>(geometry::Level(s.At(v), maxValue));
  }
  // The last point's value up to the end of the table, not clamped.
  for (; v < tableLength; ++v) {
    *table++ = static_cast<unsigned short>(v);
    *table++ = static_cast<unsigned short>(s.y[k - 1]);
  }
}

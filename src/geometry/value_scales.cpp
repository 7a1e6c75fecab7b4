// Value scales and interpolation: nice axis values and piecewise-linear
// tables.
#include <cfloat>
#include <cmath>
#include <cstdint>

#include "Ostrel.h"
#include "frame/checked.h"
#include "frame/numeric.h"

namespace ostrel {
namespace geometry {
namespace {

// One rung of the decade ladder: values below `below` step by 1 / factor.
// A value is scaled to trunc(v * -factor) and the result divided by factor:
// an integer (10000 .. 10) for steps below one, a decimal fraction
// (0.1 .. 0.000001) for steps of ten and more. Dividing by such a fraction,
// rather than multiplying by the step, shows in the last bits: 123456 rounds
// up to 199999.99999999997. The rung with factor 0 stands for the steps of
// one, which work on trunc(v) directly.
struct Rung {
  double below;
  double factor;
};

constexpr Rung kLadder[] = {
    {0.001, 10000}, {0.01, 1000}, {0.1, 100},     {1, 10},          {10, 0},
    {100, 0.1},     {1000, 0.01}, {10000, 0.001}, {100000, 0.0001},
};
// From 1000000 up the step is 1000000; between 100000 and 1000000 it is
// 100000 (the ladder tests the top rung before that one).
constexpr double kTopFrom = 1000000, kTopFactor = 0.000001, kBelowTopFactor = 0.00001;

double FactorOf(double v) {
  for (const Rung &r : kLadder) {
    if (v < r.below) return r.factor;
  }
  return v >= kTopFrom ? kTopFactor : kBelowTopFactor;
}

// a - b as 32-bit integers, wrapping like them: a product out of the range
// of int truncates to 0x80000000, and 1 - 0x80000000 must stay defined.
std::int32_t WrappingSub(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}

// One step (+1) above or (-1) below the multiple of v's step that v
// truncates to: (step - trunc(v * -factor)) / factor, or trunc(v) + step
// for the steps of one.
double Nice(double v, std::int32_t step) {
  const double factor = FactorOf(v);
  if (factor == 0) return frame::TruncToInt32(v) + step;  // v lies in [1, 10)
  return WrappingSub(step, frame::TruncToInt32(v * -factor)) / factor;
}

}  // namespace
}  // namespace geometry
}  // namespace ostrel

namespace geometry = ostrel::geometry;

double GetNiceGreaterValue(double v) { return geometry::Nice(v, 1); }

double GetNiceSmallerValue(double v) { return geometry::Nice(v, -1); }

double GetLinearInterpoliertenWert(const double *xs, const double *ys, unsigned int count,
                                   double x) {
  OSTREL_EXPECT(__func__, "count", count, count >= 2, "at least 2");
  // Too short a table to hold a segment: its one value, or 0 for none.
  if (count < 2) return count == 0 ? 0.0 : ys[0];
  // The first segment that holds x, in either direction.
  unsigned int i = 0;
  while (i + 1 < count && !(xs[i] <= x && x <= xs[i + 1]) && !(xs[i + 1] <= x && x <= xs[i])) ++i;
  if (i + 1 < count) {
    const double dx = xs[i + 1] - xs[i];
    if (std::fabs(dx) < FLT_EPSILON) return ys[i];
    const double slope = (ys[i + 1] - ys[i]) / dx;
    return x * slope + (ys[i] - xs[i] * slope);
  }
  // Outside every segment: the value of the nearest point, the first of
  // equally near ones. No extrapolation.
  unsigned int nearest = 0;
  double best = DBL_MAX;
  for (unsigned int j = 0; j < count; ++j) {
    const double distance = std::fabs(xs[j] - x);
    if (distance < best) {
      best = distance;
      nearest = j;
    }
  }
  return ys[nearest];
}

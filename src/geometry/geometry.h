// Internal pieces of the geometry and numeric helpers.
#ifndef OSTREL_GEOMETRY_GEOMETRY_H
#define OSTREL_GEOMETRY_GEOMETRY_H

#include <cstdint>

namespace ostrel {
namespace geometry {

// The angle constants, as the exported functions use them.
constexpr double kPi = 3.141592653589793;
constexpr double kHalfPi = 1.5707963267948966;
constexpr double kTwoPi = 6.283185307179586;

// GetIntersectionDistanceDb on integer points, rounded half up to the
// nearest integer: trunc(d + 0.5). Its special cases are a line with
// y2 == y1 (the distance is |py - y1|, the angle pi/2) and one with x2 == x1
// (|px - x1|, angle 0); the tolerance of the double form admits no other
// integer points, so the result is the double form's, rounded. Not exported.
std::int32_t GetIntersectionDistanceInt(std::int32_t px, std::int32_t py, std::int32_t x1,
                                        std::int32_t y1, std::int32_t x2, std::int32_t y2,
                                        double *angle);

}  // namespace geometry
}  // namespace ostrel

#endif  // OSTREL_GEOMETRY_GEOMETRY_H

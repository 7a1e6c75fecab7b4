// Contour following: clockwise Moore-neighbour tracing of an object's outer
// boundary (FollowContour).
#include <cmath>
#include <cstddef>

#include "Ostrel.h"

namespace ostrel {
namespace objects {
namespace {

// The diagonal step length, computed once when the library is loaded.
const double g_sqrt2 = std::sqrt(2.0);

// The eight neighbours, clockwise on screen (y grows downward) from the
// upper left one.
const int kDx[8] = {-1, 0, 1, 1, 1, 0, -1, -1};
const int kDy[8] = {-1, -1, -1, 0, 1, 1, 1, 0};
const double kStepLength[8] = {g_sqrt2, 1.0, g_sqrt2, 1.0, g_sqrt2, 1.0, g_sqrt2, 1.0};

const unsigned int kRight = 3;

}  // namespace
}  // namespace objects
}  // namespace ostrel

namespace objects = ostrel::objects;

template <typename T>
double FollowContour(T *buffer, T *start, int width, int /*height*/, int left, int top,
                     int regionWidth, int regionHeight, T objectValue, CPoint *points,
                     int *pointCount) {
  std::ptrdiff_t offset[8];
  for (int d = 0; d < 8; ++d)
    offset[d] = static_cast<std::ptrdiff_t>(objects::kDy[d]) * width + objects::kDx[d];

  const std::ptrdiff_t index = start - buffer;
  int x = static_cast<int>(index % width);
  int y = static_cast<int>(index / width);
  const int right = left + regionWidth;  // half-open region
  const int bottom = top + regionHeight;
  const double limit = static_cast<double>(regionWidth) * static_cast<double>(regionHeight);

  double length = 0.0;
  int count = 0;
  unsigned int d = objects::kRight;
  const T *p = start;
  for (;;) {
    // The next object pixel clockwise from direction d.
    unsigned int misses = 0;
    while (p[offset[d]] != objectValue) {
      d = (d + 1) & 7u;
      if (++misses == 8) goto done;  // no object neighbour at all
    }
    if (points != nullptr) {
      points[count].x = x;
      points[count].y = y;
      ++count;
    }
    x += objects::kDx[d];
    y += objects::kDy[d];
    p += offset[d];
    // The step that leaves the region, closes the contour or passes the
    // runaway guard is not counted.
    if (x < left || x >= right || y < top || y >= bottom) break;
    if (p == start) break;
    if (length > limit) break;
    length += objects::kStepLength[d];
    d = (d + 5) & 7u;  // one clockwise past the pixel just left
  }
done:
  if (pointCount != nullptr) *pointCount = count;
  return length;
}

template OSTREL_API double FollowContour<unsigned char>(unsigned char *buffer, unsigned char *start,
                                                        int width, int height, int left, int top,
                                                        int regionWidth, int regionHeight,
                                                        unsigned char objectValue, CPoint *points,
                                                        int *pointCount);
template OSTREL_API double FollowContour<int>(int *buffer, int *start, int width, int height,
                                              int left, int top, int regionWidth, int regionHeight,
                                              int objectValue, CPoint *points, int *pointCount);

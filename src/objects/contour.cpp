// Contour following: clockwise Moore-neighbour tracing of an object's outer
// boundary (FollowContour).
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "Ostrel.h"
#include "frame/checked.h"
#include "objects/objects.h"

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

// Where the walk is in the buffer: the pixel's index, column and row.
// Neighbours are taken by raw index (index + dy * width + dx), so the left
// neighbour of a pixel in column 0 is the last pixel of the row above it,
// and the right neighbour of one in the last column the first pixel of the
// row below.
struct Place {
  std::int64_t index;
  int column;
  int row;
};

// The row the neighbour in direction d lies in, counting a step past the
// left or right edge into the adjoining row.
int NeighbourRow(const Place &p, unsigned int d, int width, int *wrap) {
  const int column = p.column + kDx[d];
  *wrap = column < 0 ? -1 : (column >= width ? 1 : 0);
  return p.row + kDy[d] + *wrap;
}

// Whether the walk reads the neighbour in direction d. Not when it lies
// above the first row or below the last one, and not when p would be such a
// neighbour of it: the link between the first pixel and the last one of the
// first row (the lower left neighbour of pixel 0), or of the last row. So q
// is p's neighbour in direction d exactly when p is q's in the opposite one,
// which keeps every walk on a closed path back to its start; and every
// neighbour read lies inside the buffer.
bool Readable(const Place &p, unsigned int d, int width, int height) {
  int wrap;
  const int row = NeighbourRow(p, d, width, &wrap);
  const int seen = p.row + kDy[d];  // the row without the wrap, as p sees it
  const int back = p.row + wrap;    // p's row as the neighbour sees it
  return row >= 0 && row < height && seen >= 0 && seen < height && back >= 0 && back < height;
}

Place Step(const Place &p, unsigned int d, int width, std::int64_t offset) {
  int wrap;
  const int row = NeighbourRow(p, d, width, &wrap);
  return Place{p.index + offset, p.column + kDx[d] - wrap * width, row};
}

}  // namespace
}  // namespace objects
}  // namespace ostrel

namespace objects = ostrel::objects;

template <typename T>
double FollowContour(T *buffer, T *start, int width, int height, int left, int top, int regionWidth,
                     int regionHeight, T objectValue, CPoint *points, int *pointCount) {
  OSTREL_EXPECT(__func__, "width", width, width >= 1, "at least 1");
  OSTREL_EXPECT(__func__, "height", height, height >= 1, "at least 1");
  const std::int64_t index = objects::PixelIndex(buffer, start, width, height);
  OSTREL_EXPECT(__func__, "start", static_cast<const void *>(start), index >= 0,
                "a pixel of buffer");
  if (pointCount != nullptr) *pointCount = 0;
  if (index < 0) return 0.0;

  std::int64_t offset[8];
  for (int d = 0; d < 8; ++d) offset[d] = std::int64_t{objects::kDy[d]} * width + objects::kDx[d];

  objects::Place at{index, static_cast<int>(index % width), static_cast<int>(index / width)};
  // The walk's coordinates as its steps add up: past the left or right edge
  // they leave the buffer's columns while the pixel is in the adjoining row.
  std::int64_t x = at.column, y = at.row;
  const std::int64_t right = std::int64_t{left} + regionWidth;  // half-open region
  const std::int64_t bottom = std::int64_t{top} + regionHeight;
  const double limit = static_cast<double>(regionWidth) * static_cast<double>(regionHeight);
  const std::int64_t pixels = std::int64_t{width} * height;

  double length = 0.0;
  std::int64_t count = 0, steps = 0;
  unsigned int d = objects::kRight;
  for (;;) {
    // The next object pixel clockwise from direction d.
    unsigned int misses = 0;
    while (!objects::Readable(at, d, width, height) ||
           buffer[at.index + offset[d]] != objectValue) {
      d = (d + 1) & 7u;
      if (++misses == 8) goto done;  // no object neighbour at all
    }
    if (points != nullptr) {
      points[count].x = static_cast<int>(x);
      points[count].y = static_cast<int>(y);
      ++count;
    }
    x += objects::kDx[d];
    y += objects::kDy[d];
    at = objects::Step(at, d, width, offset[d]);
    // The step that leaves the region, closes the contour or passes the
    // runaway guard is not counted.
    if (x < left || x >= right || y < top || y >= bottom) break;
    if (at.index == index) break;
    if (length > limit) break;
    // A walk meets each pixel in at most eight states (the direction its
    // search starts in) before it closes; one that has taken more steps
    // repeats itself. Its neighbours being symmetric, none does: this only
    // bounds the loop.
    if (++steps / 8 > pixels) break;
    length += objects::kStepLength[d];
    d = (d + 5) & 7u;  // one clockwise past the pixel just left
  }
done:
  if (pointCount != nullptr) *pointCount = objects::SaturatedCount(count);
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

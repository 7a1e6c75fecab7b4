// Mask frames: soft, hard and down frames drawn round the boundary pixels of
// an L08 mask from a table of rounded distances.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <new>

#include "Ostrel.h"
#include "frame/checked.h"
#include "frame/numeric.h"
#include "objects/objects.h"

namespace ostrel {
namespace objects {
namespace {

// Calls update(pixel, d) for every destination pixel round centre whose
// table distance d is at most frameWidth; with frameWidth 1 for the whole
// 3 x 3 square, whatever the table holds.
template <class Update>
void ForEachFramePixel(unsigned char *centre, unsigned int stride, const int *table, unsigned int R,
                       unsigned int frameWidth, Update update) {
  const int fw = static_cast<int>(frameWidth);
  const std::ptrdiff_t side = 2 * static_cast<std::ptrdiff_t>(R) + 1;
  const int *tableCentre = table + static_cast<std::ptrdiff_t>(R) * side + R;
  for (int dy = -fw; dy <= fw; ++dy) {
    unsigned char *row =
        centre + static_cast<std::ptrdiff_t>(dy) * static_cast<std::ptrdiff_t>(stride);
    const int *distances = tableCentre + dy * side;
    for (int dx = -fw; dx <= fw; ++dx) {
      const int d = distances[dx];
      if (fw == 1 || d <= fw) update(row[dx], d);
    }
  }
}

// Calls visit(pixel index) for every source pixel at least frameWidth from
// each edge that is a boundary pixel: a non-zero pixel with a zero axis
// neighbour, or (down) a zero pixel with a non-zero axis neighbour.
template <class Visit>
void ForEachBoundaryPixel(const unsigned char *src, unsigned int width, unsigned int height,
                          unsigned int frameWidth, bool down, Visit visit) {
  for (unsigned int y = frameWidth; y < height - frameWidth; ++y) {
    const unsigned char *row = src + static_cast<std::size_t>(y) * width;
    for (unsigned int x = frameWidth; x < width - frameWidth; ++x) {
      const unsigned char *p = row + x;
      const bool set = *p != 0;
      if (set == down) continue;
      const unsigned char *up = p - width;
      const unsigned char *below = p + width;
      const bool boundary = down ? (p[-1] | p[1] | *up | *below) != 0
                                 : (p[-1] == 0 || p[1] == 0 || *up == 0 || *below == 0);
      if (boundary) visit(static_cast<std::size_t>(p - src));
    }
  }
}

// Whether a frame call has pixels to work on: 1 <= frameWidth <= R (the
// table reaches frameWidth round its centre) and width, height above
// 2 * frameWidth (the tested pixels and their frames lie inside the
// buffer). The checked build reports the first that fails.
bool FrameFits(const char *function, unsigned int width, unsigned int height, unsigned int R,
               unsigned int frameWidth) {
  const std::uint64_t twice = 2 * std::uint64_t{frameWidth};
  OSTREL_EXPECT(function, "frameWidth", frameWidth, frameWidth >= 1, "at least 1");
#if OSTREL_CHECKED
  if (frameWidth > R) ReportBound(function, "frameWidth", frameWidth, "at most R", R);
  if (width <= twice) ReportBound(function, "width", width, "more than 2 * frameWidth", twice);
  if (height <= twice) ReportBound(function, "height", height, "more than 2 * frameWidth", twice);
#endif
  return frameWidth >= 1 && frameWidth <= R && width > twice && height > twice;
}

}  // namespace
}  // namespace objects
}  // namespace ostrel

namespace frame = ostrel::frame;
namespace objects = ostrel::objects;

int *CreateDistTableForSoftFrame(unsigned int R) {
  // side * side entries, whose size in bytes must fit in size_t: beyond, the
  // product would wrap to a smaller table than the loop fills.
  const std::uint64_t side64 = 2 * std::uint64_t{R} + 1;
  if (side64 > SIZE_MAX / sizeof(int) / side64) throw std::bad_array_new_length();
  const std::size_t side = static_cast<std::size_t>(side64);
  int *table = new int[side * side];
  const long long r = R;
  int *entry = table;
  for (long long dy = -r; dy <= r; ++dy) {
    for (long long dx = -r; dx <= r; ++dx) {
      *entry++ = frame::TruncToInt32(std::sqrt(static_cast<double>(dx * dx + dy * dy)) + 0.5);
    }
  }
  return table;
}

void SoftFrameL08toL08(unsigned char *src, unsigned char *dst, unsigned int width,
                       unsigned int height, int *distTable, unsigned int R,
                       unsigned int frameWidth) {
  if (!objects::FrameFits(__func__, width, height, R, frameWidth)) return;
  const int fw = static_cast<int>(frameWidth);
  objects::ForEachBoundaryPixel(src, width, height, frameWidth, false, [&](std::size_t i) {
    const int s = src[i];
    objects::ForEachFramePixel(
        dst + i, width, distTable, R, frameWidth, [&](unsigned char &t, int d) {
          // Only the low 8 bits are kept: at distance 0 the value can pass 255.
          const unsigned char v = static_cast<unsigned char>(((fw + 1 - d) * s) / fw);
          if (v > t) t = v;
        });
  });
}

void HardFrameL08toL08(unsigned char *src, unsigned char *dst, unsigned int width,
                       unsigned int height, int *distTable, unsigned int R, unsigned int frameWidth,
                       bool fullValue) {
  if (!objects::FrameFits(__func__, width, height, R, frameWidth)) return;
  objects::ForEachBoundaryPixel(src, width, height, frameWidth, false, [&](std::size_t i) {
    const unsigned char v = fullValue ? 255 : src[i];
    objects::ForEachFramePixel(dst + i, width, distTable, R, frameWidth,
                               [v](unsigned char &t, int) {
                                 if (v > t) t = v;
                               });
  });
}

void HardFrameDownL08toL08(unsigned char *src, unsigned char *dst, unsigned int width,
                           unsigned int height, int *distTable, unsigned int R,
                           unsigned int frameWidth) {
  if (!objects::FrameFits(__func__, width, height, R, frameWidth)) return;
  objects::ForEachBoundaryPixel(src, width, height, frameWidth, true, [&](std::size_t i) {
    objects::ForEachFramePixel(dst + i, width, distTable, R, frameWidth,
                               [](unsigned char &t, int) { t = 0; });
  });
}

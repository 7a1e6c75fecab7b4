// Mask frames: soft, hard and down frames drawn round the boundary pixels of
// an L08 mask from a table of rounded distances.
#include <cmath>
#include <cstddef>

#include "Ostrel.h"
#include "frame/numeric.h"

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
    unsigned char *row = centre + static_cast<std::ptrdiff_t>(dy) * stride;
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

}  // namespace
}  // namespace objects
}  // namespace ostrel

namespace frame = ostrel::frame;
namespace objects = ostrel::objects;

int *CreateDistTableForSoftFrame(unsigned int R) {
  const std::size_t side = 2 * static_cast<std::size_t>(R) + 1;
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
  objects::ForEachBoundaryPixel(src, width, height, frameWidth, true, [&](std::size_t i) {
    objects::ForEachFramePixel(dst + i, width, distTable, R, frameWidth,
                               [](unsigned char &t, int) { t = 0; });
  });
}

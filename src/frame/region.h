// Buffers, regions and clipping: the rules every raster function shares.
//
// A buffer reaches a raster function as five arguments: a pointer to its
// first pixel, its width in pixels (which is also the row stride: there is
// no padding between rows), its height, and the left column and top row of
// the region to work on. Plane bundles the five.
//
// Two-buffer functions pair source pixel (srcLeft + i, srcTop + j) with
// destination pixel (dstLeft + i, dstTop + j). The region is cut at the right
// and bottom edges of both buffers, never at the left or top: left and top
// must lie inside their buffers (left <= width, top <= height), which the
// release build does not test; a larger value makes the unsigned differences
// below wrap.
#ifndef OSTREL_FRAME_REGION_H
#define OSTREL_FRAME_REGION_H

#include <cstddef>
#include <cstdint>

#include "frame/checked.h"

namespace ostrel {
namespace frame {

template <class Pixel>
struct Plane {
  Pixel *pixels;
  std::uint32_t width;
  std::uint32_t height;
  std::uint32_t left;
  std::uint32_t top;

  // The first pixel of the region's row j.
  Pixel *Row(std::uint32_t j) const {
    return pixels + (static_cast<std::size_t>(top) + j) * width + left;
  }
};

template <class Pixel>
Plane<Pixel> MakePlane(Pixel *pixels, std::uint32_t width, std::uint32_t height, std::uint32_t left,
                       std::uint32_t top) {
  return Plane<Pixel>{pixels, width, height, left, top};
}

// The size of a region after clipping. With rows 0 a function returns at
// once; with columns 0 it visits every row and writes nothing.
struct Extent {
  std::uint32_t columns;
  std::uint32_t rows;

  bool Empty() const { return rows == 0 || columns == 0; }
};

inline std::uint32_t MinU32(std::uint32_t a, std::uint32_t b) { return a < b ? a : b; }

// The clipping functions take the exported function's name (function) for
// the checked build's reports of a corner outside its buffer.
//
// Clips a region against the source, then against the destination, in
// unsigned arithmetic:
//   columns = min(srcWidth,  srcLeft + regionWidth) - srcLeft
//   columns = min(dstWidth,  dstLeft + columns)     - dstLeft
//   rows    = min(srcHeight, srcTop + regionHeight) - srcTop
//   rows    = min(dstHeight, dstTop + rows)         - dstTop
template <class Src, class Dst>
Extent ClipPair(const Plane<Src> &src, const Plane<Dst> &dst, std::uint32_t regionWidth,
                std::uint32_t regionHeight, const char *function) {
  OSTREL_EXPECT(function, src.left <= src.width);
  OSTREL_EXPECT(function, src.top <= src.height);
  OSTREL_EXPECT(function, dst.left <= dst.width);
  OSTREL_EXPECT(function, dst.top <= dst.height);
  Extent e;
  e.columns = MinU32(src.width, src.left + regionWidth) - src.left;
  e.columns = MinU32(dst.width, dst.left + e.columns) - dst.left;
  e.rows = MinU32(src.height, src.top + regionHeight) - src.top;
  e.rows = MinU32(dst.height, dst.top + e.rows) - dst.top;
  return e;
}

// Clips the region of a one-buffer function against its buffer.
template <class Pixel>
Extent ClipSingle(const Plane<Pixel> &buffer, std::uint32_t regionWidth, std::uint32_t regionHeight,
                  const char *function) {
  OSTREL_EXPECT(function, buffer.left <= buffer.width);
  OSTREL_EXPECT(function, buffer.top <= buffer.height);
  Extent e;
  e.columns = MinU32(buffer.width, buffer.left + regionWidth) - buffer.left;
  e.rows = MinU32(buffer.height, buffer.top + regionHeight) - buffer.top;
  return e;
}

// Clips the rows only, for the fills, whose callers guarantee the columns:
// the region keeps regionWidth columns (checked in the checked build).
template <class Pixel>
Extent ClipRowsOnly(const Plane<Pixel> &buffer, std::uint32_t regionWidth,
                    std::uint32_t regionHeight, const char *function) {
  OSTREL_EXPECT(function, buffer.top <= buffer.height);
  Extent e;
  e.rows = MinU32(buffer.height, buffer.top + regionHeight) - buffer.top;
  e.columns = regionWidth;
  if (e.rows != 0) {
    const std::uint64_t left = buffer.left, width = buffer.width;
    OSTREL_EXPECT(function, left + regionWidth <= width);
  }
  return e;
}

// Calls row(srcRow, dstRow, columns) for each row of a clipped two-buffer
// region, top to bottom.
template <class Src, class Dst, class RowFn>
void ForEachRowPair(const Plane<Src> &src, const Plane<Dst> &dst, Extent e, RowFn &&row) {
  for (std::uint32_t j = 0; j < e.rows; ++j) row(src.Row(j), dst.Row(j), e.columns);
}

// Calls row(bufferRow, columns) for each row of a clipped one-buffer region.
template <class Pixel, class RowFn>
void ForEachRow(const Plane<Pixel> &buffer, Extent e, RowFn &&row) {
  for (std::uint32_t j = 0; j < e.rows; ++j) row(buffer.Row(j), e.columns);
}

}  // namespace frame
}  // namespace ostrel

#endif  // OSTREL_FRAME_REGION_H

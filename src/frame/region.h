// Buffers, regions and clipping: the rules every raster function shares.
//
// A buffer reaches a raster function as five arguments: a pointer to its
// first pixel, its width in pixels (which is also the row stride: there is
// no padding between rows), its height, and the left column and top row of
// the region to work on. Plane bundles the five, with the prefix the header
// gives the buffer's arguments ("src" for srcWidth, srcLeft, ...; "" for a
// one-buffer function's width, left, ...), so that the checked build names
// the caller's argument.
//
// Two-buffer functions pair source pixel (srcLeft + i, srcTop + j) with
// destination pixel (dstLeft + i, dstTop + j). The region is cut at the right
// and bottom edges of both buffers, never at the left or top: left and top
// must lie inside their buffers (left <= width, top <= height). The release
// build does not test that; a corner beyond its buffer leaves no columns (or
// no rows) instead of the count the unsigned difference would wrap to.
//
// The sums left + regionWidth and top + regionHeight are formed in 64 bits,
// so a region size that reaches past 2^32 (0xFFFFFFFF among them) means "to
// the buffer's edge". For every sum below 2^32 with the corner inside its
// buffer, the result is the one the 32-bit formulas below give.
#ifndef OSTREL_FRAME_REGION_H
#define OSTREL_FRAME_REGION_H

#include <cstddef>
#include <cstdint>
#include <cstdio>

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
  const char *prefix;  // of the buffer's argument names, for the checked build

  // The first pixel of the region's row j.
  Pixel *Row(std::uint32_t j) const {
    return pixels + (static_cast<std::size_t>(top) + j) * width + left;
  }
};

// prefix: as the header spells the buffer's arguments ("src", "dst",
// "alpha", "mask", or "" for width, height, left and top).
template <class Pixel>
Plane<Pixel> MakePlane(Pixel *pixels, std::uint32_t width, std::uint32_t height, std::uint32_t left,
                       std::uint32_t top, const char *prefix) {
  return Plane<Pixel>{pixels, width, height, left, top, prefix};
}

// The size of a region after clipping. With rows 0 a function returns at
// once. ClipPair and ClipSingle give no rows when they give no columns, so
// that no row address is formed for a corner beyond its buffer.
struct Extent {
  std::uint32_t columns;
  std::uint32_t rows;

  bool Empty() const { return rows == 0 || columns == 0; }
};

// True when the n elements from a and the m elements from b share memory
// (the row kernels that must not see their inputs change under their stores
// ask this of each row).
template <class A, class B>
bool SharesMemory(const A *a, std::size_t n, const B *b, std::size_t m) {
  const auto a0 = reinterpret_cast<std::uintptr_t>(a), b0 = reinterpret_cast<std::uintptr_t>(b);
  return a0 < b0 + m * sizeof(B) && b0 < a0 + n * sizeof(A);
}

// The row kernels read their inputs a step (or a stretch) ahead of their
// stores, which gives the pixel-order result only where the stores cannot
// change what is still to be read. Disjoint: the n elements from out share no
// memory with the m elements from in (null: no input).
template <class Out, class In>
bool Disjoint(const Out *out, std::size_t n, const In *in, std::size_t m) {
  return in == nullptr || !SharesMemory(out, n, in, m);
}

// ReadableAhead: a per-pixel input row of n elements that is the output row
// itself (each element read before it is written) or lies apart from it.
template <class Out, class In>
bool ReadableAhead(const Out *out, std::size_t n, const In *in) {
  return static_cast<const void *>(in) == static_cast<const void *>(out) || Disjoint(out, n, in, n);
}

inline std::uint32_t MinU32(std::uint32_t a, std::uint32_t b) { return a < b ? a : b; }

// The part of `size` units from `start` that lies before `end`: min(end,
// start + size) - start without the wrap, and 0 when start lies beyond end.
inline std::uint32_t SpanBefore(std::uint32_t end, std::uint32_t start, std::uint32_t size) {
  return start >= end ? 0 : MinU32(end - start, size);
}

#if OSTREL_CHECKED
// Reports the argument prefix + field with its value, expected to be at most
// (bound text, bound value).
[[noreturn]] inline void ReportAbove(const char *function, const char *prefix, const char *field,
                                     std::uint64_t value, const char *boundField,
                                     const char *boundText, std::uint64_t bound) {
  char name[64], expected[160];
  ComposeName({prefix, boundField}, name, sizeof name);
  std::snprintf(expected, sizeof expected, "at most %s%s (%llu)", name, boundText,
                static_cast<unsigned long long>(bound));
  ReportCallerError(function, {prefix, field}, value, expected);
}
#endif

// The checked build's test that a region corner lies inside its buffer.
template <class Pixel>
void ExpectCorner(const Plane<Pixel> &p, const char *function) {
#if OSTREL_CHECKED
  if (p.left > p.width) ReportAbove(function, p.prefix, "Left", p.left, "Width", "", p.width);
  if (p.top > p.height) ReportAbove(function, p.prefix, "Top", p.top, "Height", "", p.height);
#else
  static_cast<void>(p), static_cast<void>(function);
#endif
}

// The clipping functions take the exported function's name (function) for
// the checked build's reports of a corner outside its buffer.
//
// Clips a region against the source, then against the destination:
//   columns = min(srcWidth,  srcLeft + regionWidth) - srcLeft
//   columns = min(dstWidth,  dstLeft + columns)     - dstLeft
//   rows    = min(srcHeight, srcTop + regionHeight) - srcTop
//   rows    = min(dstHeight, dstTop + rows)         - dstTop
template <class Src, class Dst>
Extent ClipPair(const Plane<Src> &src, const Plane<Dst> &dst, std::uint32_t regionWidth,
                std::uint32_t regionHeight, const char *function) {
  ExpectCorner(src, function);
  ExpectCorner(dst, function);
  Extent e;
  e.columns = SpanBefore(dst.width, dst.left, SpanBefore(src.width, src.left, regionWidth));
  e.rows = SpanBefore(dst.height, dst.top, SpanBefore(src.height, src.top, regionHeight));
  return e.Empty() ? Extent{0, 0} : e;
}

// Clips the region of a one-buffer function against its buffer.
template <class Pixel>
Extent ClipSingle(const Plane<Pixel> &buffer, std::uint32_t regionWidth, std::uint32_t regionHeight,
                  const char *function) {
  ExpectCorner(buffer, function);
  const Extent e{SpanBefore(buffer.width, buffer.left, regionWidth),
                 SpanBefore(buffer.height, buffer.top, regionHeight)};
  return e.Empty() ? Extent{0, 0} : e;
}

// Clips the rows only, for the fills, whose callers guarantee the columns:
// the region keeps regionWidth columns (checked in the checked build).
template <class Pixel>
Extent ClipRowsOnly(const Plane<Pixel> &buffer, std::uint32_t regionWidth,
                    std::uint32_t regionHeight, const char *function) {
  Extent e{regionWidth, SpanBefore(buffer.height, buffer.top, regionHeight)};
#if OSTREL_CHECKED
  ExpectCorner(buffer, function);
  if (e.rows != 0 && regionWidth > buffer.width - buffer.left)
    ReportAbove(function, "", "regionWidth", regionWidth, "Width", " - left",
                buffer.width - buffer.left);
#else
  static_cast<void>(function);
#endif
  return e;
}

// The fills' columns are not clipped: a region wider than the room right of
// left runs on into the next row, as the caller allowed. This is how many of
// the `columns` pixels from row j's first lie inside the buffer, so that the
// last rows never run past the buffer's last pixel.
template <class Pixel>
std::uint64_t ColumnsInside(const Plane<Pixel> &p, std::uint32_t j, std::uint64_t columns) {
  const std::uint64_t end = std::uint64_t{p.width} * p.height;
  const std::uint64_t start = (std::uint64_t{p.top} + j) * p.width + p.left;
  return start >= end ? 0 : (columns < end - start ? columns : end - start);
}

// The checked build's test that a buffer which takes no part in clipping
// (an alpha or mask buffer with its own corner and stride) holds the clipped
// region: left + columns <= width and top + rows <= height.
template <class Pixel>
void ExpectHolds(const Plane<Pixel> &p, Extent e, const char *function) {
#if OSTREL_CHECKED
  if (e.Empty()) return;
  if (std::uint64_t{p.left} + e.columns > p.width)
    ReportAbove(function, p.prefix, "Left", p.left, "Width", " - the region's clipped width",
                p.width < e.columns ? 0 : p.width - e.columns);
  if (std::uint64_t{p.top} + e.rows > p.height)
    ReportAbove(function, p.prefix, "Top", p.top, "Height", " - the region's clipped height",
                p.height < e.rows ? 0 : p.height - e.rows);
#else
  static_cast<void>(p), static_cast<void>(e), static_cast<void>(function);
#endif
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

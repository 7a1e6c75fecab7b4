// Fills and copies of colour buffers.
#include <cstring>

#include "Ostrel.h"
#include "compositing/fills_kernels.h"
#include "frame/region.h"

namespace ostrel {
namespace compositing {
namespace {

// Floor division by a positive divisor, also for negative x.
std::int64_t FloorDiv(std::int64_t x, std::int64_t divisor) {
  const std::int64_t q = x / divisor;
  return (x % divisor != 0 && x < 0) ? q - 1 : q;
}

// a + b as a signed 32-bit value, wrapping like the 32-bit sum it stands for.
std::int32_t WrappingSum(std::int32_t a, std::uint32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + b);
}

}  // namespace
}  // namespace compositing
}  // namespace ostrel

namespace frame = ostrel::frame;
namespace compositing = ostrel::compositing;

void FillTRCBuffer(unsigned int *buffer, unsigned int width, unsigned int height, unsigned int left,
                   unsigned int top, unsigned int regionWidth, unsigned int regionHeight,
                   unsigned int colour) {
  const auto plane = frame::MakePlane(buffer, width, height, left, top, "");
  const frame::Extent e = frame::ClipRowsOnly(plane, regionWidth, regionHeight, __func__);
  if (e.Empty()) return;
  const compositing::FillKernels &k = compositing::ActiveFillKernels();
  if (e.columns == width) {
    // Whole rows are one run of pixels.
    const std::uint64_t run = std::uint64_t{e.columns} * e.rows;
    k.fill(plane.Row(0), static_cast<std::size_t>(frame::ColumnsInside(plane, 0, run)), colour);
    return;
  }
  for (std::uint32_t j = 0; j < e.rows; ++j) {
    k.fill(plane.Row(j), static_cast<std::size_t>(frame::ColumnsInside(plane, j, e.columns)),
           colour);
  }
}

void ChessboardFillTRCBuffer(unsigned int *buffer, unsigned int width, unsigned int height,
                             unsigned int left, unsigned int top, unsigned int regionWidth,
                             unsigned int regionHeight, int phaseX, int phaseY,
                             unsigned int colour1, unsigned int colour2, unsigned int squareSize) {
  OSTREL_EXPECT(__func__, "squareSize", squareSize, squareSize != 0, "not 0");
  const auto plane = frame::MakePlane(buffer, width, height, left, top, "");
  const frame::Extent e = frame::ClipRowsOnly(plane, regionWidth, regionHeight, __func__);
  if (e.Empty()) return;
  const compositing::FillKernels &k = compositing::ActiveFillKernels();

  const std::int64_t size = squareSize;
  const std::int64_t x0 = compositing::WrappingSum(phaseX, left);
  const std::int64_t cellX0 = compositing::FloorDiv(x0, size);
  const std::int64_t firstRun = size - (x0 - cellX0 * size);  // left in the first cell
  // Rows in the same row of cells are equal: build the first, copy the rest.
  // (Only when a row cannot run into the next, which the caller guarantees
  // anyway: regionWidth <= width.)
  const bool copyRows = e.columns <= width;

  std::int64_t previousCellY = 0;
  for (unsigned int j = 0; j < e.rows; ++j) {
    unsigned int *row = plane.Row(j);
    const auto columns = static_cast<std::int64_t>(frame::ColumnsInside(plane, j, e.columns));
    const std::int64_t cellY = compositing::FloorDiv(compositing::WrappingSum(phaseY, j), size);
    if (j > 0 && copyRows && cellY == previousCellY) {
      std::memcpy(row, row - width, static_cast<std::size_t>(columns) * sizeof *row);
      continue;
    }
    previousCellY = cellY;
    const bool oddCell = ((cellX0 + cellY) & 1) != 0;
    unsigned int current = oddCell ? colour2 : colour1;
    unsigned int next = oddCell ? colour1 : colour2;
    std::int64_t run = firstRun;
    for (std::int64_t i = 0; i < columns;) {
      const std::int64_t n = run < columns - i ? run : columns - i;
      k.fill(row + i, static_cast<std::size_t>(n), current);
      i += n;
      run = size;
      const unsigned int swap = current;
      current = next;
      next = swap;
    }
  }
}

void Copy2DTRCBufferToTRC(unsigned int *src, unsigned int srcWidth, unsigned int srcHeight,
                          unsigned int srcLeft, unsigned int srcTop, unsigned int *dst,
                          unsigned int dstWidth, unsigned int dstHeight, unsigned int dstLeft,
                          unsigned int dstTop, unsigned int regionWidth,
                          unsigned int regionHeight) {
  const auto s = frame::MakePlane(src, srcWidth, srcHeight, srcLeft, srcTop, "src");
  const auto d = frame::MakePlane(dst, dstWidth, dstHeight, dstLeft, dstTop, "dst");
  const frame::Extent e = frame::ClipPair(s, d, regionWidth, regionHeight, __func__);
  if (e.Empty()) return;
  if (e.columns == srcWidth && e.columns == dstWidth) {
    // Whole rows of both buffers: one block.
    std::memmove(d.Row(0), s.Row(0), static_cast<std::size_t>(e.columns) * e.rows * sizeof *dst);
    return;
  }
  frame::ForEachRowPair(s, d, e, [](const unsigned int *from, unsigned int *to, unsigned int n) {
    std::memmove(to, from, static_cast<std::size_t>(n) * sizeof *to);
  });
}

void CopyTRCToTRCIfNotKeyColor(unsigned int *src, unsigned int srcWidth, unsigned int srcHeight,
                               unsigned int srcLeft, unsigned int srcTop, unsigned int *dst,
                               unsigned int dstWidth, unsigned int dstHeight, unsigned int dstLeft,
                               unsigned int dstTop, unsigned int regionWidth,
                               unsigned int regionHeight, unsigned int keyColor) {
  const auto s = frame::MakePlane(src, srcWidth, srcHeight, srcLeft, srcTop, "src");
  const auto d = frame::MakePlane(dst, dstWidth, dstHeight, dstLeft, dstTop, "dst");
  const frame::Extent e = frame::ClipPair(s, d, regionWidth, regionHeight, __func__);
  if (e.Empty()) return;
  const compositing::FillKernels &k = compositing::ActiveFillKernels();
  frame::ForEachRowPair(s, d, e, [&](const unsigned int *from, unsigned int *to, unsigned int n) {
    k.copyIfNotKey(from, to, n, keyColor);
  });
}

void ConvertBufferFrom32To24Bits(unsigned int *src, unsigned char *dst, unsigned int pixelCount) {
  compositing::ActiveFillKernels().pack24(src, dst, pixelCount);
}

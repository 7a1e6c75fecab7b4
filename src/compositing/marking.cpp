// Marking and level conversion: two-level masks, 12-bit to 8-bit grey, and
// marks over a TRC view.
#include <algorithm>
#include <cstdint>

#include "Ostrel.h"
#include "compositing/grey_blend.h"
#include "compositing/word_map_kernels.h"
#include "frame/blend.h"
#include "frame/region.h"

namespace ostrel {
namespace compositing {
namespace {

// Sets each pixel of the clipped two-buffer region to convert(source value).
template <class S, class D, class Convert>
void ConvertRegion(S *src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcLeft,
                   unsigned int srcTop, D *dst, unsigned int dstWidth, unsigned int dstHeight,
                   unsigned int dstLeft, unsigned int dstTop, unsigned int regionWidth,
                   unsigned int regionHeight, const char *function, Convert &&convert) {
  ForEachPixelPair(src, srcWidth, srcHeight, srcLeft, srcTop, "src", dst, dstWidth, dstHeight,
                   dstLeft, dstTop, regionWidth, regionHeight, function,
                   [&](S v, D &out) { out = convert(v); });
}

template <class P>
void ToTwoLevelInPlace(P *buffer, unsigned int width, unsigned int height, unsigned int left,
                       unsigned int top, unsigned int regionWidth, unsigned int regionHeight,
                       const char *function) {
  const auto b = frame::MakePlane(buffer, width, height, left, top, "");
  const frame::Extent e = frame::ClipSingle(b, regionWidth, regionHeight, function);
  frame::ForEachRow(b, e, [](P *row, std::uint32_t n) {
    for (std::uint32_t i = 0; i < n; ++i) row[i] = row[i] != 0 ? 255 : 0;
  });
}

// Runs a word map kernel (entry of the tables) over each row of the clipped
// two-buffer region: the source words, and the destination's words or bytes
// (D).
template <class D>
void MapWordRows(unsigned short *src, unsigned int srcWidth, unsigned int srcHeight,
                 unsigned int srcLeft, unsigned int srcTop, D *dst, unsigned int dstWidth,
                 unsigned int dstHeight, unsigned int dstLeft, unsigned int dstTop,
                 unsigned int regionWidth, unsigned int regionHeight, const char *function,
                 WordMapKernel WordMapKernels::*entry, const WordMap &map) {
  const auto s = frame::MakePlane(src, srcWidth, srcHeight, srcLeft, srcTop, "src");
  const auto d = frame::MakePlane(dst, dstWidth, dstHeight, dstLeft, dstTop, "dst");
  const frame::Extent e = frame::ClipPair(s, d, regionWidth, regionHeight, function);
  const WordMapKernel kernel = WordMapKernelsFor(e.columns).*entry;
  frame::ForEachRowPair(s, d, e, [&](const unsigned short *in, D *out, std::uint32_t n) {
    WordMapRow row;
    row.n = n;
    row.src = in;
    if constexpr (sizeof(D) == 1) {
      row.bytes = out;
    } else {
      row.words = out;
    }
    kernel(row, map);
  });
}

}  // namespace
}  // namespace compositing
}  // namespace ostrel

namespace frame = ostrel::frame;
namespace compositing = ostrel::compositing;

void ConvertL08To2LevelL08(unsigned char *buffer, unsigned int width, unsigned int height,
                           unsigned int left, unsigned int top, unsigned int regionWidth,
                           unsigned int regionHeight) {
  compositing::ToTwoLevelInPlace(buffer, width, height, left, top, regionWidth, regionHeight,
                                 __func__);
}

void ConvertL08To2LevelL08(unsigned char *src, unsigned int srcWidth, unsigned int srcHeight,
                           unsigned int srcLeft, unsigned int srcTop, unsigned char *dst,
                           unsigned int dstWidth, unsigned int dstHeight, unsigned int dstLeft,
                           unsigned int dstTop, unsigned int regionWidth,
                           unsigned int regionHeight) {
  compositing::ConvertRegion(
      src, srcWidth, srcHeight, srcLeft, srcTop, dst, dstWidth, dstHeight, dstLeft, dstTop,
      regionWidth, regionHeight, __func__,
      [](unsigned char v) { return static_cast<unsigned char>(v != 0 ? 255 : 0); });
}

// In place the full scale is 255, as in the 8-bit form.
void ConvertL12To2LevelL12(unsigned short *buffer, unsigned int width, unsigned int height,
                           unsigned int left, unsigned int top, unsigned int regionWidth,
                           unsigned int regionHeight) {
  const auto b = frame::MakePlane(buffer, width, height, left, top, "");
  const frame::Extent e = frame::ClipSingle(b, regionWidth, regionHeight, __func__);
  compositing::WordMap map;
  map.level = 255;
  compositing::MapWordsInPlace(b, nullptr, e, &compositing::WordMapKernels::twoLevelWords, map);
}

void ConvertL12To2LevelL12(unsigned short *src, unsigned int srcWidth, unsigned int srcHeight,
                           unsigned int srcLeft, unsigned int srcTop, unsigned short *dst,
                           unsigned int dstWidth, unsigned int dstHeight, unsigned int dstLeft,
                           unsigned int dstTop, unsigned int regionWidth,
                           unsigned int regionHeight) {
  compositing::WordMap map;
  map.level = 4095;
  compositing::MapWordRows(src, srcWidth, srcHeight, srcLeft, srcTop, dst, dstWidth, dstHeight,
                           dstLeft, dstTop, regionWidth, regionHeight, __func__,
                           &compositing::WordMapKernels::twoLevelWords, map);
}

void ConvertL12To2LevelL08(unsigned short *src, unsigned int srcWidth, unsigned int srcHeight,
                           unsigned int srcLeft, unsigned int srcTop, unsigned char *dst,
                           unsigned int dstWidth, unsigned int dstHeight, unsigned int dstLeft,
                           unsigned int dstTop, unsigned int regionWidth,
                           unsigned int regionHeight) {
  compositing::MapWordRows(src, srcWidth, srcHeight, srcLeft, srcTop, dst, dstWidth, dstHeight,
                           dstLeft, dstTop, regionWidth, regionHeight, __func__,
                           &compositing::WordMapKernels::twoLevelBytes, compositing::WordMap{});
}

void ConvertL012ToL08(unsigned short *src, unsigned int srcWidth, unsigned int srcHeight,
                      unsigned int srcLeft, unsigned int srcTop, unsigned char *dst,
                      unsigned int dstWidth, unsigned int dstHeight, unsigned int dstLeft,
                      unsigned int dstTop, unsigned int regionWidth, unsigned int regionHeight) {
  compositing::MapWordRows(src, srcWidth, srcHeight, srcLeft, srcTop, dst, dstWidth, dstHeight,
                           dstLeft, dstTop, regionWidth, regionHeight, __func__,
                           &compositing::WordMapKernels::levelBytes, compositing::WordMap{});
}

void MarkL08ToTRC(unsigned char *src, unsigned int srcWidth, unsigned int srcHeight,
                  unsigned int srcLeft, unsigned int srcTop, bool *selected, unsigned int colour,
                  unsigned char opacity, unsigned int *dst, unsigned int dstWidth,
                  unsigned int dstHeight, unsigned int dstLeft, unsigned int dstTop,
                  unsigned int regionWidth, unsigned int regionHeight) {
  compositing::ForEachPixelPair(src, srcWidth, srcHeight, srcLeft, srcTop, "src", dst, dstWidth,
                                dstHeight, dstLeft, dstTop, regionWidth, regionHeight, __func__,
                                [&](unsigned char v, unsigned int &out) {
                                  if (selected[v])
                                    out = frame::blend::ExactPixel(out, colour, opacity);
                                });
}

// Marks the pixels that no mask covers.
void MarkBG(unsigned char **masks, int *maskIndices, int maskCount, unsigned int maskWidth,
            unsigned int maskHeight, unsigned int maskLeft, unsigned int maskTop,
            unsigned int colour, unsigned char opacity, unsigned int *dst, unsigned int dstWidth,
            unsigned int dstHeight, unsigned int dstLeft, unsigned int dstTop,
            unsigned int regionWidth, unsigned int regionHeight) {
  // The masks' geometry, as offsets into any one of them.
  const auto m =
      frame::MakePlane<unsigned char>(nullptr, maskWidth, maskHeight, maskLeft, maskTop, "mask");
  const auto d = frame::MakePlane(dst, dstWidth, dstHeight, dstLeft, dstTop, "dst");
  const frame::Extent e = frame::ClipPair(m, d, regionWidth, regionHeight, __func__);
  for (std::uint32_t j = 0; j < e.rows; ++j) {
    const std::size_t rowStart = (static_cast<std::size_t>(maskTop) + j) * maskWidth + maskLeft;
    unsigned int *out = d.Row(j);
    for (std::uint32_t i = 0; i < e.columns; ++i) {
      bool covered = false;
      for (int k = 0; k < maskCount && !covered; ++k) {
        covered = masks[maskIndices[k]][rowStart + i] != 0;
      }
      if (!covered) out[i] = frame::blend::ExactPixel(out[i], colour, opacity);
    }
  }
}

void MarkL08LimitsToTRCHighBit(unsigned char *src, unsigned int srcWidth, unsigned int srcHeight,
                               unsigned int srcLeft, unsigned int srcTop, unsigned char low,
                               unsigned char high, unsigned int *dst, unsigned int dstWidth,
                               unsigned int dstHeight, unsigned int dstLeft, unsigned int dstTop,
                               unsigned int regionWidth, unsigned int regionHeight) {
  compositing::ForEachPixelPair(src, srcWidth, srcHeight, srcLeft, srcTop, "src", dst, dstWidth,
                                dstHeight, dstLeft, dstTop, regionWidth, regionHeight, __func__,
                                [&](unsigned char v, unsigned int &out) {
                                  if (v == 0) return;
                                  // The alpha byte is replaced: 0x80 below the limits, 0x40
                                  // above.
                                  if (v < low) {
                                    out = (out & 0x00FFFFFFu) | 0x80000000u;
                                  } else if (v > high) {
                                    out = (out & 0x00FFFFFFu) | 0x40000000u;
                                  }
                                });
}

void DrawContourOfL08toTRC(unsigned char *src, unsigned int srcWidth, unsigned int srcHeight,
                           unsigned int srcLeft, unsigned int srcTop, unsigned int *dst,
                           unsigned int dstWidth, unsigned int dstHeight, unsigned int dstLeft,
                           unsigned int dstTop, unsigned int regionWidth, unsigned int regionHeight,
                           unsigned int colour) {
  const auto src0 = frame::MakePlane(src, srcWidth, srcHeight, srcLeft, srcTop, "src");
  const auto dst0 = frame::MakePlane(dst, dstWidth, dstHeight, dstLeft, dstTop, "dst");
  frame::ExpectCorner(src0, __func__);
  frame::ExpectCorner(dst0, __func__);
  // The source region carries a one-pixel border round the drawn area, so
  // the destination may be two pixels narrower and lower than it. The sums
  // are taken in 64 bits: a region size reaching past 2^32 means "to the
  // edge", and a clipped size below 2 (the caller's error) draws nothing.
  const auto clip = [](std::uint32_t srcSpan, std::uint32_t dstEnd, std::uint32_t dstStart) {
    const std::uint64_t end =
        std::min(std::uint64_t{dstEnd} + 2, std::uint64_t{srcSpan} + dstStart);
    return end < std::uint64_t{dstStart} + 2 ? std::uint64_t{0} : end - dstStart;
  };
  const std::uint64_t columns =
      clip(frame::SpanBefore(srcWidth, srcLeft, regionWidth), dstWidth, dstLeft);
  const std::uint64_t rows =
      clip(frame::SpanBefore(srcHeight, srcTop, regionHeight), dstHeight, dstTop);
  OSTREL_EXPECT(__func__, "regionHeight", regionHeight, rows >= 2,
                "a region of at least 2 rows after clipping");
  if (rows <= 2) return;
  OSTREL_EXPECT(__func__, "regionWidth", regionWidth, columns >= 2,
                "a region of at least 2 columns after clipping");
  if (columns < 2) return;
  const auto inner = static_cast<std::uint32_t>(columns - 2);
  for (std::uint32_t j = 0; j < rows - 2; ++j) {
    // The source row of the drawn row j starts at its left border pixel.
    const unsigned char *s = src + (static_cast<std::size_t>(srcTop) + 1 + j) * srcWidth + srcLeft;
    const unsigned char *above = s - srcWidth;
    const unsigned char *below = s + srcWidth;
    unsigned int *out = dst + (static_cast<std::size_t>(dstTop) + j) * dstWidth + dstLeft;
    bool inside = s[0] != 0;
    for (std::uint32_t i = 0; i < inner;) {
      const std::uint32_t x = i + 1;  // source column of drawn column i
      if (!inside) {
        if (s[x] == 0) {
          ++i;
        } else {
          out[i] = colour;  // left edge
          inside = true;
        }
      } else if (s[x] != 0) {
        if (above[x] == 0 || below[x] == 0) out[i] = colour;  // top or bottom edge
        ++i;
      } else {
        // Right edge: the pixel before this one, which for the first pixel of
        // a row is the border's, at dstLeft - 1 (written when that column is
        // in the destination buffer's row).
        if (i > 0 || dstLeft > 0) out[static_cast<std::ptrdiff_t>(i) - 1] = colour;
        inside = false;
      }
    }
  }
}

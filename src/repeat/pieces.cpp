// Repeat buffer positions and view-size adaptation.
#include <cstdint>

#include "Ostrel.h"
#include "frame/checked.h"
#include "repeat/repeat_math.h"

namespace ostrel {
namespace repeat {
namespace {

// The caller's four piece arrays and the count; Append writes piece
// *count and then raises the count.
class Pieces {
 public:
  Pieces(std::int32_t *count, std::int32_t *x, std::int32_t *width, std::int32_t *y,
         std::int32_t *height)
      : count_(count), x_(x), width_(width), y_(y), height_(height) {
    *count_ = 0;
  }

  void Append(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height) {
    Write(*count_, x, y, width, height);
    ++*count_;
  }

  void Write(std::int32_t i, std::int32_t x, std::int32_t y, std::int32_t width,
             std::int32_t height) {
    x_[i] = x;
    y_[i] = y;
    width_[i] = width;
    height_[i] = height;
  }

 private:
  std::int32_t *const count_;
  std::int32_t *const x_;
  std::int32_t *const width_;
  std::int32_t *const y_;
  std::int32_t *const height_;
};

std::int32_t Min(std::int32_t a, std::int32_t b) { return a < b ? a : b; }
std::int32_t Max(std::int32_t a, std::int32_t b) { return a > b ? a : b; }
std::int32_t Clamp(std::int32_t v, std::int32_t low, std::int32_t high) {
  return v < low ? low : (v > high ? high : v);
}

// x' + width <= repeatWidth and y' + height <= repeatHeight, in unsigned
// 32-bit arithmetic: the rectangle lies inside the tile after folding.
bool FitsInTile(std::int32_t x, std::int32_t y, std::uint32_t width, std::uint32_t height,
                std::uint32_t repeatWidth, std::uint32_t repeatHeight) {
  return Bits(x) + width <= repeatWidth && Bits(y) + height <= repeatHeight;
}

}  // namespace
}  // namespace repeat
}  // namespace ostrel

namespace repeat = ostrel::repeat;

// The pieces of the buffer that show the rectangle, the main piece last.
void CalcPosAndSizeInRepBuffer(int x, int y, unsigned int width, unsigned int height,
                               unsigned int repeatWidth, unsigned int repeatHeight,
                               _EDropKind dropKind, int drop, int *pieceCount, int *pieceX,
                               int *pieceWidth, int *pieceY, int *pieceHeight,
                               bool wholeTileIfLarger) {
  if (dropKind == repeat::kDropHorizontal) return;  // not supported: nothing is written
  if (dropKind != repeat::kDropVertical) {
    *pieceCount = 0;
    return;
  }
  std::int32_t fx, fy;  // (x', y')
  repeat::FoldIntoRepeat(__func__, x, y, repeatWidth, repeatHeight, repeat::Bits(drop),
                         repeat::kDropVertical, &fx, &fy);
  repeat::Pieces pieces(pieceCount, pieceX, pieceWidth, pieceY, pieceHeight);

  if (repeat::FitsInTile(fx, fy, width, height, repeatWidth, repeatHeight)) {
    pieces.Append(fx, fy, repeat::Signed(width), repeat::Signed(height));
    return;
  }
  if ((width >= repeatWidth || height >= repeatHeight) && wholeTileIfLarger) {
    pieces.Append(0, 0, repeat::Signed(repeatWidth), repeat::Signed(repeatHeight));
    return;
  }

  // From here on every comparison is signed.
  const std::int32_t w = repeat::Signed(width), h = repeat::Signed(height);
  const std::int32_t tileW = repeat::Signed(repeatWidth), tileH = repeat::Signed(repeatHeight);
  if (repeat::Add(fx, w) > tileW) {
    // The rectangle runs into the next column, which lies drop pixels lower:
    // there its top is at s in the tile.
    const std::int32_t s = repeat::Sub(fy, drop);
    const std::int32_t rightWidth = repeat::Sub(repeat::Add(fx, w), tileW);
    if (repeat::Add(s, h) > 0) {
      const std::int32_t pieceH =
          s >= 0 ? repeat::Sub(tileH, s) : repeat::Sub(h, repeat::Min(h, repeat::Sub(0, s)));
      pieces.Append(0, repeat::Max(s, 0), rightWidth, repeat::Min(h, pieceH));
    }
    if (s < 0) {
      // Its top wraps to the bottom of that column.
      pieces.Append(0, repeat::Min(repeat::Add(s, tileH), repeat::Sub(tileH, 1)), rightWidth,
                    repeat::Min(h, repeat::Sub(drop, fy)));
    }
    const std::int32_t belowBottom = repeat::Add(repeat::Sub(s, tileH), h);
    if (belowBottom > 0) {
      // It also runs past that column's bottom.
      pieces.Append(0, repeat::Max(repeat::Sub(s, tileH), 0), rightWidth,
                    repeat::Min(h, belowBottom));
    }
  }
  if (repeat::Add(fy, h) > tileH) {
    // The left part runs past the bottom of its own column.
    pieces.Append(fx, 0, repeat::Min(w, repeat::Sub(tileW, fx)),
                  repeat::Max(repeat::Sub(repeat::Add(fy, h), tileH), 0));
  }
  // The main piece, always last.
  pieces.Append(repeat::Clamp(fx, 0, repeat::Sub(tileW, 1)),
                repeat::Clamp(fy, 0, repeat::Sub(tileH, 1)), repeat::Min(w, repeat::Sub(tileW, fx)),
                repeat::Min(h, repeat::Sub(tileH, fy)));
}

// The pieces of the buffer that the rectangle does not cover.
void CalcPosAndSizeInRepBufferInv(int x, int y, unsigned int width, unsigned int height,
                                  unsigned int repeatWidth, unsigned int repeatHeight,
                                  _EDropKind dropKind, int drop, int *pieceCount, int *pieceX,
                                  int *pieceWidth, int *pieceY, int *pieceHeight) {
  if (dropKind == repeat::kDropHorizontal) return;  // not supported: nothing is written
  if (dropKind != repeat::kDropVertical) {
    *pieceCount = 0;
    return;
  }
  std::int32_t fx, fy;  // (x', y')
  repeat::FoldIntoRepeat(__func__, x, y, repeatWidth, repeatHeight, repeat::Bits(drop),
                         repeat::kDropVertical, &fx, &fy);
  repeat::Pieces pieces(pieceCount, pieceX, pieceWidth, pieceY, pieceHeight);
  const std::int32_t w = repeat::Signed(width), h = repeat::Signed(height);
  const std::int32_t tileW = repeat::Signed(repeatWidth), tileH = repeat::Signed(repeatHeight);

  if (repeat::FitsInTile(fx, fy, width, height, repeatWidth, repeatHeight)) {
    // Left and right of the rectangle over the whole height, then above and
    // below it.
    if (fx > 0) pieces.Append(0, 0, fx, tileH);
    if (repeat::Bits(fx) + width < repeatWidth)
      pieces.Append(repeat::Add(fx, w), 0, repeat::Sub(repeat::Sub(tileW, fx), w), tileH);
    if (fy > 0) pieces.Append(fx, 0, w, fy);
    if (repeat::Bits(fy) + height < repeatHeight)
      pieces.Append(fx, repeat::Add(fy, h), w, repeat::Sub(repeat::Sub(tileH, fy), h));
    return;
  }

  if (width < repeatWidth && height < repeatHeight) {
    // The other three corners, folded.
    std::int32_t rx, ry, brx, bry, bx, by;
    repeat::FoldIntoRepeat(__func__, repeat::Add(x, w), y, repeatWidth, repeatHeight,
                           repeat::Bits(drop), repeat::kDropVertical, &rx, &ry);
    repeat::FoldIntoRepeat(__func__, repeat::Add(x, w), repeat::Add(y, h), repeatWidth,
                           repeatHeight, repeat::Bits(drop), repeat::kDropVertical, &brx, &bry);
    repeat::FoldIntoRepeat(__func__, x, repeat::Add(y, h), repeatWidth, repeatHeight,
                           repeat::Bits(drop), repeat::kDropVertical, &bx, &by);
    const std::int32_t rest = repeat::Sub(tileW, fx);
    if (fx < rx) {
      // No horizontal wrap (so the rectangle wraps at the bottom seam).
      pieces.Append(0, 0, fx, tileH);
      pieces.Append(repeat::Add(fx, w), 0, repeat::Sub(rest, w), tileH);
      pieces.Append(fx, by, w, repeat::Sub(fy, by));
      return;
    }
    // The strip between the rectangle's two parts, over the whole height.
    pieces.Append(rx, 0, repeat::Sub(fx, rx), tileH);
    // The right column, from x' to the tile's right edge.
    if (by < fy) {
      pieces.Append(fx, by, rest, repeat::Sub(fy, by));
    } else {
      pieces.Append(fx, 0, rest, fy);
      pieces.Append(fx, by, rest, repeat::Sub(tileH, by));
    }
    // The left column, of width rx, in the next (dropped) repeat column.
    if (ry <= bry) {
      pieces.Append(0, 0, rx, ry);
      pieces.Append(0, bry, rx, repeat::Sub(tileH, bry));
    } else {
      pieces.Append(0, bry, rx, repeat::Sub(ry, bry));
    }
    return;
  }

  // At least as large as the tile: nothing uncovered. The whole tile is
  // written as piece 0 all the same, and the count stays 0.
  pieces.Write(0, 0, 0, tileW, tileH);
}

// A view-sized box with the file's proportions.
void AdaptFileSizeToViewSizeForViewSize(unsigned int fileWidth, unsigned int fileHeight,
                                        unsigned int viewWidth, unsigned int viewHeight,
                                        double resolutionX, double resolutionY,
                                        unsigned int *outWidth, unsigned int *outHeight) {
  const double p = fileWidth / resolutionX;  // the file's physical size
  const double q = fileHeight / resolutionY;
  const double sx = viewWidth / p;
  const double sy = viewHeight / q;
  if (sy <= sx) {
    *outWidth = repeat::TruncLow32(p * viewHeight / q);
    *outHeight = viewHeight;
  } else {
    *outWidth = viewWidth;
    *outHeight = repeat::TruncLow32(q * viewWidth / p);
  }
}

// One file dimension grown to the view's proportions.
void AdaptFileSizeToFileSizeForViewSize(unsigned int fileWidth, unsigned int fileHeight,
                                        unsigned int viewWidth, unsigned int viewHeight,
                                        double resolutionX, double resolutionY,
                                        unsigned int *outWidth, unsigned int *outHeight) {
  const double p = fileWidth / resolutionX;
  const double q = fileHeight / resolutionY;
  const double sx = viewWidth / p;
  const double sy = viewHeight / q;
  if (sy <= sx) {
    *outHeight = fileHeight;
    *outWidth =
        repeat::TruncLow32(viewWidth * (resolutionX * fileHeight / resolutionY) / viewHeight);
  } else {
    *outWidth = fileWidth;
    *outHeight = repeat::TruncLow32(fileWidth * resolutionY / resolutionX * viewHeight / viewWidth);
  }
}

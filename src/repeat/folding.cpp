// Drop kinds and placing into the repeat.
//
// The steps run in their documented order, quirks included (the horizontal
// drop is not the mirror image of the vertical one). In the integer variants
// positions are 32-bit bit patterns: every division is unsigned, every sum
// and product wraps, and only the "< 0" and "> 0" tests read them as signed.
#include <cstdint>

#include "Ostrel.h"
#include "frame/checked.h"
#include "frame/numeric.h"
#include "repeat/repeat_math.h"

namespace ostrel {
namespace repeat {
namespace {

bool Negative(std::uint32_t v) { return Signed(v) < 0; }
bool Positive(std::uint32_t v) { return Signed(v) > 0; }

// How one of the integer variants moves the other coordinate for a count of
// repeats: SetInRapp by count * drop (wrapping), SetInRappDb by
// trunc(count * step).
struct IntegerDrop {
  std::uint32_t drop;
  std::uint32_t operator()(std::uint32_t count) const { return count * drop; }
};
struct TruncatedDrop {
  double step;
  std::uint32_t operator()(std::uint32_t count) const {
    return Bits(TruncToInt32(static_cast<double>(count) * step));
  }
};

template <class Shift>
void FoldVertical(const char *function, std::uint32_t x, std::uint32_t y, std::uint32_t repeatWidth,
                  std::uint32_t repeatHeight, Shift shift, std::int32_t *xInRepeat,
                  std::int32_t *yInRepeat) {
  if (Negative(x)) {
    OSTREL_EXPECT(function, repeatWidth != 0);
    // One column too many for a multiple of the width; step 2 takes it back.
    const std::uint32_t k = (0u - x) / Divisor(repeatWidth) + 1;
    x += k * repeatWidth;
    y += shift(k);
  }
  if (Positive(x)) {
    OSTREL_EXPECT(function, repeatWidth != 0);
    const std::uint32_t q = x / Divisor(repeatWidth);
    x -= q * repeatWidth;
    y -= shift(q);
  }
  if (Negative(y)) {
    OSTREL_EXPECT(function, repeatHeight != 0);
    y += ((0u - y) / Divisor(repeatHeight) + 1) * repeatHeight;
  }
  if (Positive(y)) {
    OSTREL_EXPECT(function, repeatHeight != 0);
    y -= (y / Divisor(repeatHeight)) * repeatHeight;
  }
  *xInRepeat = Signed(x);
  *yInRepeat = Signed(y);
}

// Not the mirror image of FoldVertical: the first two tests look at x, the
// repeat count comes from y (in step 1 from its unsigned negation, also for
// y >= 0), and the last step reduces y by a multiple of the width.
template <class Shift>
void FoldHorizontal(const char *function, std::uint32_t x, std::uint32_t y,
                    std::uint32_t repeatWidth, std::uint32_t repeatHeight, Shift shift,
                    std::int32_t *xInRepeat, std::int32_t *yInRepeat) {
  if (Negative(x)) {
    OSTREL_EXPECT(function, repeatHeight != 0);
    const std::uint32_t k = (0u - y) / Divisor(repeatHeight) + 1;
    x += shift(k);
    y += k * repeatHeight;
  }
  if (Positive(x)) {
    OSTREL_EXPECT(function, repeatHeight != 0);
    const std::uint32_t q = y / Divisor(repeatHeight);
    x -= shift(q);
    y -= q * repeatHeight;
  }
  if (Negative(x)) {
    OSTREL_EXPECT(function, repeatWidth != 0);
    x += ((0u - x) / Divisor(repeatWidth) + 1) * repeatWidth;
  }
  if (Positive(y)) {
    OSTREL_EXPECT(function, repeatWidth != 0);
    y -= (x / Divisor(repeatWidth)) * repeatWidth;
  }
  *xInRepeat = Signed(x);
  *yInRepeat = Signed(y);
}

// The truncation SetInRappMM uses: toward zero through a 32-bit integer.
double Trunc(double v) { return TruncToInt32(v); }

}  // namespace

void FoldIntoRepeat(const char *function, std::int32_t x, std::int32_t y, std::uint32_t repeatWidth,
                    std::uint32_t repeatHeight, std::uint32_t drop, std::int32_t dropKind,
                    std::int32_t *xInRepeat, std::int32_t *yInRepeat) {
  if (dropKind == kDropVertical) {
    FoldVertical(function, Bits(x), Bits(y), repeatWidth, repeatHeight, IntegerDrop{drop},
                 xInRepeat, yInRepeat);
  } else if (dropKind == kDropHorizontal) {
    FoldHorizontal(function, Bits(x), Bits(y), repeatWidth, repeatHeight, IntegerDrop{drop},
                   xInRepeat, yInRepeat);
  } else {
    *xInRepeat = x;
    *yInRepeat = y;
  }
}

}  // namespace repeat
}  // namespace ostrel

using namespace ostrel::repeat;

void SetInRapp(int x, int y, unsigned int repeatWidth, unsigned int repeatHeight, unsigned int drop,
               _EDropKind dropKind, int *xInRepeat, int *yInRepeat) {
  FoldIntoRepeat("SetInRapp", x, y, repeatWidth, repeatHeight, drop, dropKind, xInRepeat,
                 yInRepeat);
}

void SetInRappDb(int x, int y, unsigned int repeatWidth, unsigned int repeatHeight,
                 double dropRatio, double repeatWidthExact, double repeatHeightExact,
                 _EDropKind dropKind, int *xInRepeat, int *yInRepeat) {
  if (dropKind == kDropVertical) {
    FoldVertical("SetInRappDb", Bits(x), Bits(y), repeatWidth, repeatHeight,
                 TruncatedDrop{dropRatio * repeatHeightExact}, xInRepeat, yInRepeat);
  } else if (dropKind == kDropHorizontal) {
    FoldHorizontal("SetInRappDb", Bits(x), Bits(y), repeatWidth, repeatHeight,
                   TruncatedDrop{dropRatio * repeatWidthExact}, xInRepeat, yInRepeat);
  } else {
    *xInRepeat = x;
    *yInRepeat = y;
  }
}

void SetInRappMM(double x, double y, double repeatWidth, double repeatHeight, double drop,
                 _EDropKind dropKind, double *xInRepeat, double *yInRepeat) {
  if (dropKind == kDropVertical) {
    if (x < 0) {
      const double f = 1 - Trunc(x / repeatWidth);
      y += f * drop;
      x += f * repeatWidth;
    }
    if (x > 0) {
      const double q = Trunc(x / repeatWidth);
      y -= drop * q;
      x -= repeatWidth * q;
    }
    if (y < 0) y += (1 - Trunc(y / repeatHeight)) * repeatHeight;
    if (y > 0) y -= repeatHeight * Trunc(y / repeatHeight);
  } else if (dropKind == kDropHorizontal) {
    if (x < 0) {
      const double f = 1 - Trunc(y / repeatHeight);
      x += f * drop;
      y += f * repeatHeight;
    }
    if (x > 0) {
      const double q = Trunc(y / repeatHeight);
      y -= repeatHeight * q;
      x -= drop * q;
    }
    if (x < 0) x += (1 - Trunc(x / repeatWidth)) * repeatWidth;
    if (y > 0) y -= repeatWidth * Trunc(x / repeatWidth);
  }
  *xInRepeat = x;
  *yInRepeat = y;
}

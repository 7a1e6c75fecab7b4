// Drop kinds and placing into the repeat.
//
// SetInRapp, SetInRappDb and SetInRappMM run one fold, Fold below, each with
// its own arithmetic. The steps run in their documented order, quirks
// included (the horizontal drop is not the mirror image of the vertical one).
#include <cstdint>

#include "Ostrel.h"
#include "frame/checked.h"
#include "frame/numeric.h"
#include "repeat/repeat_math.h"

namespace ostrel {
namespace repeat {
namespace {

// ---- The arithmetic of the three variants ----------------------------------
// Each supplies Value (positions and sizes), kIntegerDivision, and:
//   Negative(v), Positive(v)  the sign tests
//   RepeatsUp(v, size)        the repeats that bring a negative v up past 0
//                             (the horizontal kind's first step applies it to
//                             a y of either sign)
//   RepeatsIn(v, size)        the whole repeats in a positive v
//   Times(n, size)            n repeats of size
//   Drop(n)                   how far n repeats move the other coordinate

// The integer variants: a position is its 32-bit bit pattern. Every division
// is unsigned, every sum and product wraps, and only the sign tests read the
// pattern as signed. RepeatsUp negates v as an unsigned value, so for v >= 0
// it divides 2^32 - v.
struct Wrapping32 {
  using Value = std::uint32_t;
  static constexpr bool kIntegerDivision = true;

  static bool Negative(Value v) { return Signed(v) < 0; }
  static bool Positive(Value v) { return Signed(v) > 0; }
  static Value RepeatsUp(Value v, Value size) { return (0u - v) / Divisor(size) + 1; }
  static Value RepeatsIn(Value v, Value size) { return v / Divisor(size); }
  static Value Times(Value n, Value size) { return n * size; }
};

// SetInRapp: n repeats move by n * drop, wrapping.
struct IntegerDrop : Wrapping32 {
  explicit IntegerDrop(std::uint32_t d) : drop(d) {}
  Value Drop(Value n) const { return n * drop; }
  std::uint32_t drop;
};

// SetInRappDb: n repeats move by trunc(n * step), n taken as an unsigned
// value, so rounding happens once per fold.
struct TruncatedDrop : Wrapping32 {
  explicit TruncatedDrop(double s) : step(s) {}
  Value Drop(Value n) const { return Bits(frame::TruncToInt32(static_cast<double>(n) * step)); }
  double step;
};

// SetInRappMM: positions, sizes and repeat counts are doubles, a count being
// a quotient truncated toward zero through a 32-bit integer. RepeatsUp is
// 1 - trunc(v / size), which for v >= 0 differs from the integer variants'.
struct Doubles {
  using Value = double;
  static constexpr bool kIntegerDivision = false;

  explicit Doubles(double d) : drop(d) {}
  static bool Negative(Value v) { return v < 0; }
  static bool Positive(Value v) { return v > 0; }
  static Value RepeatsUp(Value v, Value size) { return 1 - Trunc(v / size); }
  static Value RepeatsIn(Value v, Value size) { return Trunc(v / size); }
  static Value Times(Value n, Value size) { return n * size; }
  Value Drop(Value n) const { return n * drop; }
  double drop;

 private:
  static double Trunc(double v) { return frame::TruncToInt32(v); }
};

// ---- The fold ---------------------------------------------------------------

// Folds (x, y) into the tile, in place, with the arithmetic a. The
// horizontal kind is not the mirror image of the vertical one: its first two
// tests look at x, its repeat count comes from y, and its last step reduces
// y by a multiple of the width. Other kinds leave (x, y) as they are. The
// checked build reports a zero size before an integer division by it.
template <class Arithmetic>
void Fold(const char *function, typename Arithmetic::Value &x, typename Arithmetic::Value &y,
          typename Arithmetic::Value repeatWidth, typename Arithmetic::Value repeatHeight,
          std::int32_t dropKind, const Arithmetic &a) {
  using Value = typename Arithmetic::Value;
  constexpr bool kChecked = Arithmetic::kIntegerDivision;
  if (dropKind == kDropVertical) {
    if (a.Negative(x)) {
      if constexpr (kChecked)
        OSTREL_EXPECT(function, "repeatWidth", repeatWidth, repeatWidth != 0, "not 0");
      // One column too many for a multiple of the width; the next step takes
      // it back.
      const Value k = a.RepeatsUp(x, repeatWidth);
      x += a.Times(k, repeatWidth);
      y += a.Drop(k);
    }
    if (a.Positive(x)) {
      if constexpr (kChecked)
        OSTREL_EXPECT(function, "repeatWidth", repeatWidth, repeatWidth != 0, "not 0");
      const Value q = a.RepeatsIn(x, repeatWidth);
      x -= a.Times(q, repeatWidth);
      y -= a.Drop(q);
    }
    if (a.Negative(y)) {
      if constexpr (kChecked)
        OSTREL_EXPECT(function, "repeatHeight", repeatHeight, repeatHeight != 0, "not 0");
      y += a.Times(a.RepeatsUp(y, repeatHeight), repeatHeight);
    }
    if (a.Positive(y)) {
      if constexpr (kChecked)
        OSTREL_EXPECT(function, "repeatHeight", repeatHeight, repeatHeight != 0, "not 0");
      y -= a.Times(a.RepeatsIn(y, repeatHeight), repeatHeight);
    }
  } else if (dropKind == kDropHorizontal) {
    if (a.Negative(x)) {
      if constexpr (kChecked)
        OSTREL_EXPECT(function, "repeatHeight", repeatHeight, repeatHeight != 0, "not 0");
      const Value k = a.RepeatsUp(y, repeatHeight);
      x += a.Drop(k);
      y += a.Times(k, repeatHeight);
    }
    if (a.Positive(x)) {
      if constexpr (kChecked)
        OSTREL_EXPECT(function, "repeatHeight", repeatHeight, repeatHeight != 0, "not 0");
      const Value q = a.RepeatsIn(y, repeatHeight);
      x -= a.Drop(q);
      y -= a.Times(q, repeatHeight);
    }
    if (a.Negative(x)) {
      if constexpr (kChecked)
        OSTREL_EXPECT(function, "repeatWidth", repeatWidth, repeatWidth != 0, "not 0");
      x += a.Times(a.RepeatsUp(x, repeatWidth), repeatWidth);
    }
    if (a.Positive(y)) {
      if constexpr (kChecked)
        OSTREL_EXPECT(function, "repeatWidth", repeatWidth, repeatWidth != 0, "not 0");
      y -= a.Times(a.RepeatsIn(x, repeatWidth), repeatWidth);
    }
  }
}

// Folds integer positions with the arithmetic a and writes the result.
template <class Arithmetic>
void FoldInteger(const char *function, std::int32_t x, std::int32_t y, std::uint32_t repeatWidth,
                 std::uint32_t repeatHeight, std::int32_t dropKind, const Arithmetic &a,
                 std::int32_t *xInRepeat, std::int32_t *yInRepeat) {
  std::uint32_t fx = Bits(x), fy = Bits(y);
  Fold(function, fx, fy, repeatWidth, repeatHeight, dropKind, a);
  *xInRepeat = Signed(fx);
  *yInRepeat = Signed(fy);
}

}  // namespace

void FoldIntoRepeat(const char *function, std::int32_t x, std::int32_t y, std::uint32_t repeatWidth,
                    std::uint32_t repeatHeight, std::uint32_t drop, std::int32_t dropKind,
                    std::int32_t *xInRepeat, std::int32_t *yInRepeat) {
  FoldInteger(function, x, y, repeatWidth, repeatHeight, dropKind, IntegerDrop(drop), xInRepeat,
              yInRepeat);
}

}  // namespace repeat
}  // namespace ostrel

namespace repeat = ostrel::repeat;

void SetInRapp(int x, int y, unsigned int repeatWidth, unsigned int repeatHeight, unsigned int drop,
               _EDropKind dropKind, int *xInRepeat, int *yInRepeat) {
  repeat::FoldIntoRepeat(__func__, x, y, repeatWidth, repeatHeight, drop, dropKind, xInRepeat,
                         yInRepeat);
}

// One repeat step is dropRatio * repeatHeightExact (vertical) or
// dropRatio * repeatWidthExact (horizontal), the product formed first.
void SetInRappDb(int x, int y, unsigned int repeatWidth, unsigned int repeatHeight,
                 double dropRatio, double repeatWidthExact, double repeatHeightExact,
                 _EDropKind dropKind, int *xInRepeat, int *yInRepeat) {
  const double step = dropKind == repeat::kDropVertical ? dropRatio * repeatHeightExact
                                                        : dropRatio * repeatWidthExact;
  repeat::FoldInteger(__func__, x, y, repeatWidth, repeatHeight, dropKind,
                      repeat::TruncatedDrop(step), xInRepeat, yInRepeat);
}

// Every number a double.
void SetInRappMM(double x, double y, double repeatWidth, double repeatHeight, double drop,
                 _EDropKind dropKind, double *xInRepeat, double *yInRepeat) {
  repeat::Fold(__func__, x, y, repeatWidth, repeatHeight, dropKind, repeat::Doubles(drop));
  *xInRepeat = x;
  *yInRepeat = y;
}

// Integer helpers of the repeat geometry.
//
// The repeat functions compute in 32-bit two's complement: sums and products
// wrap modulo 2^32, the way the processor's 32-bit registers do. C++ leaves
// signed overflow undefined, so every wrapping operation here runs on the
// unsigned bit patterns and converts back.
//
// Two cases are settled here for every function of the family:
//   - the one signed quotient that does not fit, INT32_MIN / -1, wraps to
//     INT32_MIN, and its remainder is 0 (overflow wraps; only a zero divisor
//     faults);
//   - a floor-modulo or floor division by an unsigned period (repeatWidth,
//     repeatHeight) uses the period's unsigned value, so it is correct for
//     every period, also above INT32_MAX.
// A zero divisor is the caller's error. Every integer division takes its
// divisor through Divisor(), which stops the process with the processor's
// divide fault instead of dividing by zero; the checked build reports the
// error first (OSTREL_EXPECT at each call site).
#ifndef OSTREL_REPEAT_REPEAT_MATH_H
#define OSTREL_REPEAT_REPEAT_MATH_H

#include <cstdint>

#include "frame/numeric.h"
#include "frame/platform.h"

namespace ostrel {
namespace repeat {

// The drop kinds as plain numbers (the public enumeration is _EDropKind).
constexpr std::int32_t kDropVertical = 1;
constexpr std::int32_t kDropHorizontal = 2;

// b, as the divisor of an integer division: 0 raises the divide fault.
template <class Int>
Int Divisor(Int b) {
  if (b == 0) frame::platform::RaiseIntegerDivideFault();
  return b;
}

inline std::uint32_t Bits(std::int32_t v) { return static_cast<std::uint32_t>(v); }
inline std::int32_t Signed(std::uint32_t v) { return static_cast<std::int32_t>(v); }

// a + b, a - b, a * b in 32 bits, wrapping.
inline std::int32_t Add(std::int32_t a, std::int32_t b) { return Signed(Bits(a) + Bits(b)); }
inline std::int32_t Sub(std::int32_t a, std::int32_t b) { return Signed(Bits(a) - Bits(b)); }
inline std::int32_t Mul(std::int32_t a, std::int32_t b) { return Signed(Bits(a) * Bits(b)); }

// Truncating signed division and remainder (C++ / and %), with
// INT32_MIN / -1 = INT32_MIN and INT32_MIN % -1 = 0.
inline std::int32_t Quot(std::int32_t a, std::int32_t b) {
  return b == -1 ? Signed(0u - Bits(a)) : a / Divisor(b);
}
inline std::int32_t Rem(std::int32_t a, std::int32_t b) { return b == -1 ? 0 : a % Divisor(b); }

// c mod P, the floor-modulo of the repeat arithmetic, computed exactly this
// way, never by adding P to the remainder: c % P for c >= 0,
// P - ((-1 - c) % P) - 1 for c < 0. For P > 0 the result is in 0 .. P-1.
inline std::int32_t FloorMod(std::int32_t c, std::int32_t period) {
  if (c >= 0) return Rem(c, period);
  return Sub(Sub(period, Rem(-1 - c, period)), 1);
}

// The same by an unsigned period, in 0 .. period-1.
inline std::uint32_t FloorMod(std::int32_t c, std::uint32_t period) {
  if (c >= 0) return Bits(c) % Divisor(period);
  return period - Bits(-1 - c) % Divisor(period) - 1;
}

// Floor division of the view coordinates: a / b for a >= 0, (a + 1) / b - 1 for a < 0,
// and 0 when b is 0.
inline std::int32_t FloorDiv(std::int32_t a, std::int32_t b) {
  if (b == 0) return 0;
  if (a >= 0) return Quot(a, b);
  return Sub(Quot(a + 1, b), 1);
}

// The same by an unsigned divisor, rounded toward minus infinity for every
// divisor value.
inline std::int32_t FloorDiv(std::int32_t a, std::uint32_t b) {
  if (b == 0) return 0;
  if (a >= 0) return Signed(Bits(a) / b);
  return -Signed(Bits(-1 - a) / b) - 1;
}

// The low 32 bits of a 64-bit truncation.
inline std::uint32_t TruncLow32(double x) {
  return static_cast<std::uint32_t>(static_cast<std::uint64_t>(frame::TruncToInt64(x)));
}

// Rounding half away from zero, then truncation to 32 bits.
inline std::int32_t RoundHalfAway(double v) {
  return v >= 0 ? frame::TruncToInt32(v + 0.5) : frame::TruncToInt32(v - 0.5);
}

// Folds (x, y) into the tile exactly as SetInRapp does. function
// names the exported function on whose behalf it runs, for the checked
// build's reports.
void FoldIntoRepeat(const char *function, std::int32_t x, std::int32_t y, std::uint32_t repeatWidth,
                    std::uint32_t repeatHeight, std::uint32_t drop, std::int32_t dropKind,
                    std::int32_t *xInRepeat, std::int32_t *yInRepeat);

}  // namespace repeat
}  // namespace ostrel

#endif  // OSTREL_REPEAT_REPEAT_MATH_H

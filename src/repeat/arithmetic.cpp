// Integer and repeat arithmetic.
#include <cstdint>

#include "Ostrel.h"
#include "frame/checked.h"
#include "frame/numeric.h"
#include "repeat/repeat_math.h"

namespace ostrel {
namespace repeat {
namespace {

// Euclid's loop on the truncating remainder: r = a % b; a = b; b = r; until
// r is 0. The first step divides by b.
std::int32_t Euclid(std::int32_t a, std::int32_t b) {
  for (;;) {
    const std::int32_t r = Rem(a, b);
    a = b;
    b = r;
    if (r == 0) return a;
  }
}

// The running product first * (first + 1) * ... * last in 32-bit unsigned
// arithmetic, 1 when first > last. Once it has wrapped to 0 it stays 0, so
// the loop stops there (any 34 consecutive factors bring it to 0, which
// bounds the loop for every range).
std::uint32_t RunningProduct(std::uint64_t first, std::uint64_t last) {
  std::uint32_t product = 1;
  for (std::uint64_t i = first; i <= last && product != 0; ++i) {
    product *= static_cast<std::uint32_t>(i);
  }
  return product;
}

// The repeat index of GetRapport and SetInRappAndCalcRapp.
std::int32_t RepeatIndex(const char *function, double position, double repeatSize, double epsilon) {
  const std::int32_t wholeRepeatSize = frame::TruncToInt32(repeatSize);
  OSTREL_EXPECT(function, "repeatSize", repeatSize, wholeRepeatSize != 0,
                "a whole part that is not 0");
  if (position >= 0) return Quot(frame::TruncToInt32(position), wholeRepeatSize);
  // Negative (and NaN) positions.
  const std::int32_t k = epsilon < 1 ? frame::TruncToInt32(-position - epsilon)
                                     : Sub(-1, frame::TruncToInt32(position));
  return Sub(-1, Quot(k, wholeRepeatSize));
}

// |difference| <= n, the difference taken as a signed 32-bit value and its
// absolute value compared as unsigned.
bool WithinTolerance(std::uint32_t difference, std::uint32_t n) {
  const std::uint32_t magnitude = Signed(difference) < 0 ? 0u - difference : difference;
  return magnitude <= n;
}

}  // namespace
}  // namespace repeat
}  // namespace ostrel

namespace frame = ostrel::frame;
namespace repeat = ostrel::repeat;

int ggT(int a, int b) {
  OSTREL_EXPECT(__func__, "b", b, b != 0, "not 0");
  return repeat::Euclid(a, b);
}

// The product wraps before the division.
int kgV(int a, int b) {
  OSTREL_EXPECT(__func__, "b", b, b != 0, "not 0");
  const std::int32_t divisor = repeat::Euclid(a, b);
  return repeat::Quot(repeat::Mul(a, b), divisor);
}

unsigned int Fakultaet(unsigned int n) { return repeat::RunningProduct(2, n); }

// n <= k gives 1; otherwise the product of the factors above max(k, n - k),
// divided by the factorial of the other.
unsigned int NUeberK(unsigned int n, unsigned int k) {
  if (n <= k) return 1;
  const std::uint32_t d = n - k;
  std::uint32_t product, divisor;
  if (d > k) {
    product = repeat::RunningProduct(std::uint64_t{d} + 1, n);
    divisor = repeat::RunningProduct(2, k);  // k!, as Fakultaet
  } else {
    product = repeat::RunningProduct(std::uint64_t{k} + 1, n);
    divisor = repeat::RunningProduct(2, d);  // d!
  }
  // The factorial of min(k, n - k) wraps to 0 from 34 on (34! holds 2^32).
  if (d > k) {
    OSTREL_EXPECT(__func__, "k", k, divisor != 0, "below 34 when k < n - k");
  } else {
    OSTREL_EXPECT(__func__, "n", n, divisor != 0, "below k + 34 when n - k <= k");
  }
  return product / repeat::Divisor(divisor);
}

int GetRapport(double position, double repeatSize, double epsilon) {
  return repeat::RepeatIndex(__func__, position, repeatSize, epsilon);
}

// The index from the truncated size, the rest from the exact one.
int SetInRappAndCalcRapp(double position, double repeatSize, double epsilon, int *repeatIndex) {
  const std::int32_t q = repeat::RepeatIndex(__func__, position, repeatSize, epsilon);
  *repeatIndex = q;
  const double r = position - q * repeatSize;
  if (r == repeatSize) return 0;
  return frame::TruncToInt32(r);
}

int CalcNrOfHDropRepeats(unsigned int repeatLength, unsigned int drop) {
  if (drop == 0) return 1;
  if (drop <= repeatLength / 2) {
    for (std::uint32_t n = 2; n <= 20; ++n) {
      if (repeat::WithinTolerance(n * drop - repeatLength, n)) return static_cast<std::int32_t>(n);
    }
  } else {
    // The same test on the complementary drop repeatLength - drop.
    for (std::uint32_t n = 2; n <= 20; ++n) {
      if (repeat::WithinTolerance((n - 1) * repeatLength - n * drop, n)) {
        return static_cast<std::int32_t>(n);
      }
    }
  }
  return -1;
}

// The run split at the seams of two layouts.
void CalcParts(int period1, int position1, int period2, int position2, int length, int *partCount,
               int *parts) {
  const std::int32_t m1 = period1 == 0 ? 0 : repeat::FloorMod(position1, period1);
  const std::int32_t m2 = period2 == 0 ? 0 : repeat::FloorMod(position2, period2);
  const std::int32_t toSeam1 = repeat::Sub(period1, m1);  // pixels up to the first layout's seam
  const std::int32_t toSeam2 = repeat::Sub(period2, m2);
  if (repeat::Add(m1, length) <= period1) {
    *partCount = 1;
    parts[0] = length;
    if (repeat::Add(m2, length) > period2) {
      *partCount = 2;
      parts[0] = toSeam2;
      parts[1] = repeat::Sub(repeat::Add(m2, length), period2);
    }
    return;
  }
  *partCount = 2;
  parts[0] = toSeam1;
  parts[1] = repeat::Sub(length, toSeam1);
  if (repeat::Add(toSeam1, m2) > period2) {
    // The second layout's seam comes first.
    *partCount = 3;
    parts[0] = toSeam2;
    parts[1] = repeat::Sub(toSeam1, toSeam2);
    parts[2] = repeat::Sub(length, toSeam1);
  } else if (repeat::Add(m2, length) > period2) {
    // Also when both seams fall on the same pixel: the middle piece is 0.
    *partCount = 3;
    parts[0] = toSeam1;
    parts[1] = repeat::Sub(toSeam2, toSeam1);
    parts[2] = repeat::Sub(length, toSeam2);
  }
}

// The run split at every seam of one layout.
void CalcParts2(int period, int position, int length, int *partCount, int *parts) {
  if (period == 0) {
    *partCount = 0;
    parts[0] = length;  // written although the count says none
    return;
  }
  OSTREL_EXPECT(__func__, "period", period, period > 0, "not negative");
  const std::int32_t m = repeat::FloorMod(position, period);
  if (repeat::Add(m, length) <= period) {
    *partCount = 1;
    parts[0] = length;
    return;
  }
  *partCount = 2;
  parts[0] = repeat::Sub(period, m);
  const std::int32_t rest = repeat::Sub(length, parts[0]);
  parts[1] = rest;
  if (rest > period) {
    const std::int32_t q = repeat::Quot(rest, period);
    const std::int32_t r = repeat::Rem(rest, period);
    for (std::int64_t i = 1; i <= q; ++i) parts[i] = period;
    parts[std::int64_t{q} + 1] = r;  // 0 when the rest is a multiple of the period
    *partCount = repeat::Add(2, q);
  }
}

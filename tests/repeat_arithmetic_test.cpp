// Integer and repeat arithmetic: the documented examples, wrapping
// results pinned, and properties checked against references written here.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numeric>
#include <vector>

#include "Ostrel.h"
#include "repeat/repeat_math.h"

namespace {

TEST(RepeatArithmetic, FloorModIsTheSpecFormula) {
  using ostrel::repeat::FloorMod;
  EXPECT_EQ(FloorMod(-1, 10), 9);
  EXPECT_EQ(FloorMod(-10, 10), 0);
  EXPECT_EQ(FloorMod(-11, 10), 9);
  EXPECT_EQ(FloorMod(25, 10), 5);
  EXPECT_EQ(FloorMod(INT_MIN, 10), 2);  // -2147483648 = -214748365 * 10 + 2
  // The one quotient that does not fit wraps, and its remainder is 0: no fault.
  EXPECT_EQ(ostrel::repeat::Quot(INT_MIN, -1), INT_MIN);
  EXPECT_EQ(ostrel::repeat::Rem(INT_MIN, -1), 0);
  for (int c = -50; c <= 50; ++c) {
    for (int p : {1, 3, 7, 10}) {
      const int want = c - p * static_cast<int>(std::floor(static_cast<double>(c) / p));
      EXPECT_EQ(FloorMod(c, p), want) << c << " mod " << p;
      EXPECT_EQ(FloorMod(c, static_cast<unsigned>(p)), static_cast<unsigned>(want));
    }
  }
  // Unsigned periods count with their unsigned value.
  EXPECT_EQ(FloorMod(-1, 0x80000001u), 0x80000000u);
  EXPECT_EQ(ostrel::repeat::FloorDiv(-1, 0x80000001u), -1);
  EXPECT_EQ(ostrel::repeat::FloorDiv(INT_MIN, 1u), INT_MIN);
  EXPECT_EQ(ostrel::repeat::FloorDiv(-201, 200), -2);
  EXPECT_EQ(ostrel::repeat::FloorDiv(-200, 200), -1);
  EXPECT_EQ(ostrel::repeat::FloorDiv(7, 0), 0);
}

TEST(RepeatArithmetic, GgTKeepsTheSignsOfTheTruncatingRemainders) {
  EXPECT_EQ(ggT(12, 18), 6);
  EXPECT_EQ(ggT(-4, 6), 2);
  EXPECT_EQ(ggT(4, -6), -2);
  EXPECT_EQ(ggT(0, 5), 5);
  EXPECT_EQ(ggT(7, 1), 1);
  EXPECT_EQ(ggT(INT_MIN, -1), -1);  // the remainder by -1 is 0, no fault
  for (int a = 1; a <= 60; ++a) {
    for (int b = 1; b <= 60; ++b) EXPECT_EQ(ggT(a, b), std::gcd(a, b)) << a << ", " << b;
  }
}

TEST(RepeatArithmetic, KgVWrapsTheProductBeforeDividing) {
  EXPECT_EQ(kgV(4, 6), 12);
  EXPECT_EQ(kgV(65536, 65536), 0);  // 2^32 wraps to 0
  EXPECT_EQ(kgV(-4, 6), -12);
  EXPECT_EQ(kgV(0, 5), 0);
  // 100000 * 30000 = 3e9 wraps to -1294967296, divided by 10000.
  EXPECT_EQ(kgV(100000, 30000), -129496);
  EXPECT_EQ(kgV(INT_MIN, -1), INT_MIN);  // INT_MIN / -1 wraps
  for (int a = 1; a <= 40; ++a) {
    for (int b = 1; b <= 40; ++b) EXPECT_EQ(kgV(a, b), std::lcm(a, b)) << a << ", " << b;
  }
}

TEST(RepeatArithmetic, FakultaetWrapsIn32Bits) {
  EXPECT_EQ(Fakultaet(0), 1u);
  EXPECT_EQ(Fakultaet(1), 1u);
  EXPECT_EQ(Fakultaet(5), 120u);
  EXPECT_EQ(Fakultaet(12), 479001600u);
  EXPECT_EQ(Fakultaet(13), 1932053504u);  // 6227020800 mod 2^32
  std::uint32_t want = 1;
  for (unsigned n = 2; n <= 100; ++n) {
    want *= n;
    EXPECT_EQ(Fakultaet(n), want) << n;
  }
  EXPECT_EQ(Fakultaet(34), 0u);  // 34! holds 2^32
  EXPECT_EQ(Fakultaet(UINT_MAX), 0u);
}

// The documented definition of NUeberK, on a reference product written here.
unsigned RefNUeberK(unsigned n, unsigned k) {
  if (n <= k) return 1;
  const unsigned d = n - k;
  const unsigned low = d > k ? d : k, small = d > k ? k : d;
  std::uint32_t product = 1, divisor = 1;
  for (std::uint64_t i = std::uint64_t{low} + 1; i <= n; ++i)
    product *= static_cast<std::uint32_t>(i);
  for (unsigned i = 2; i <= small; ++i) divisor *= i;
  return product / divisor;
}

TEST(RepeatArithmetic, NUeberK) {
  EXPECT_EQ(NUeberK(3, 5), 1u);  // n < k: deliberately 1
  EXPECT_EQ(NUeberK(5, 5), 1u);
  EXPECT_EQ(NUeberK(5, 2), 10u);
  EXPECT_EQ(NUeberK(5, 3), 10u);
  EXPECT_EQ(NUeberK(10, 3), 120u);
  EXPECT_EQ(NUeberK(10, 7), 120u);
  EXPECT_EQ(NUeberK(12, 6), 924u);
  EXPECT_EQ(NUeberK(UINT_MAX, UINT_MAX - 1), UINT_MAX);
  EXPECT_EQ(NUeberK(4000000000u, 1), 4000000000u);
  EXPECT_EQ(NUeberK(4000000000u, 3999999999u), 4000000000u);
  // Exact while nothing wraps.
  for (unsigned n = 0; n <= 12; ++n) {
    std::uint64_t c = 1;
    for (unsigned k = 0; k <= n; ++k) {
      EXPECT_EQ(NUeberK(n, k), c) << n << " over " << k;
      c = c * (n - k) / (k + 1);
    }
  }
  // Wrapped products, divisors that have not wrapped to 0 (k, n - k < 34).
  for (unsigned n = 13; n <= 60; ++n) {
    for (unsigned k = n > 33 ? n - 33 : 0; k <= n && k < 34; ++k) {
      EXPECT_EQ(NUeberK(n, k), RefNUeberK(n, k)) << n << " over " << k;
    }
  }
  EXPECT_EQ(NUeberK(20, 10), 117u);  // 11 * ... * 20 wraps to 427674624, / 10! = 3628800
}

TEST(RepeatArithmetic, GetRapportPinnedCases) {
  EXPECT_EQ(GetRapport(-10, 10, 0.001), -1);
  EXPECT_EQ(GetRapport(-10.0005, 10, 0.001), -1);
  EXPECT_EQ(GetRapport(-10.5, 10, 0.001), -2);
  EXPECT_EQ(GetRapport(-10, 10, 0), -2);
  EXPECT_EQ(GetRapport(-10.5, 10, 1), -1);  // integer rule: -10 (truncated) is in repeat -1
  EXPECT_EQ(GetRapport(-10.5, 10, 5), -1);
  EXPECT_EQ(GetRapport(-11, 10, 1), -2);
  EXPECT_EQ(GetRapport(-0.5, 10, 0.5), -1);  // k = 0
  EXPECT_EQ(GetRapport(-0.5, 10, 0.9), -1);  // k = trunc(-0.4) = 0
  EXPECT_EQ(GetRapport(9.99, 10, 0), 0);
  EXPECT_EQ(GetRapport(10, 10, 0), 1);
  EXPECT_EQ(GetRapport(25.7, 10, 0), 2);
  EXPECT_EQ(GetRapport(25.7, 10.9, 0), 2);  // the size is truncated to 10
  EXPECT_EQ(GetRapport(0, 10, 0), 0);
  EXPECT_EQ(GetRapport(-0.0, 10, 0), 0);  // -0.0 >= 0
  // A position out of the int range truncates to 0x80000000.
  EXPECT_EQ(GetRapport(1e10, 10, 0), -214748364);
  // NaN takes the negative branch (it is not >= 0): k = 0x80000000.
  EXPECT_EQ(GetRapport(std::numeric_limits<double>::quiet_NaN(), 10, 0.001), 214748363);
}

TEST(RepeatArithmetic, GetRapportIsAFloorDivisionForIntegerPositions) {
  for (int p = -300; p <= 300; ++p) {
    for (int size : {1, 7, 10, 64}) {
      const int want = static_cast<int>(std::floor(static_cast<double>(p) / size));
      EXPECT_EQ(GetRapport(p, size, 0.001), want) << p << " / " << size;
      EXPECT_EQ(GetRapport(p, size, 2), want) << p << " / " << size;
    }
  }
}

TEST(RepeatArithmetic, SetInRappAndCalcRapp) {
  int q = 99;
  EXPECT_EQ(SetInRappAndCalcRapp(-10, 10, 0, &q), 0);  // r = 10 = the size
  EXPECT_EQ(q, -2);
  EXPECT_EQ(SetInRappAndCalcRapp(20.9, 10.5, 0, &q), 0);  // r = -0.1 truncates to 0
  EXPECT_EQ(q, 2);
  EXPECT_EQ(SetInRappAndCalcRapp(25.7, 10, 0, &q), 5);
  EXPECT_EQ(q, 2);
  EXPECT_EQ(SetInRappAndCalcRapp(-3.5, 10, 0.001, &q), 6);  // r = 6.5
  EXPECT_EQ(q, -1);
  EXPECT_EQ(SetInRappAndCalcRapp(-10, 10, 0.001, &q), 0);
  EXPECT_EQ(q, -1);
  // q = 30 / 10 = 3 with the truncated size, r = 30 - 3 * 10.5 = -1.5, truncated to -1.
  EXPECT_EQ(SetInRappAndCalcRapp(30, 10.5, 0, &q), -1);
  EXPECT_EQ(q, 3);
  for (int p = -100; p <= 100; ++p) {
    const int r = SetInRappAndCalcRapp(p, 7, 0.5, &q);
    EXPECT_GE(r, 0);
    EXPECT_LT(r, 7);
    EXPECT_EQ(q * 7 + r, p) << p;
  }
}

TEST(RepeatArithmetic, CalcNrOfHDropRepeats) {
  EXPECT_EQ(CalcNrOfHDropRepeats(100, 0), 1);
  EXPECT_EQ(CalcNrOfHDropRepeats(100, 50), 2);
  EXPECT_EQ(CalcNrOfHDropRepeats(100, 33), 3);
  EXPECT_EQ(CalcNrOfHDropRepeats(100, 67), 3);
  EXPECT_EQ(CalcNrOfHDropRepeats(100, 25), 4);
  EXPECT_EQ(CalcNrOfHDropRepeats(100, 75), 4);
  EXPECT_EQ(CalcNrOfHDropRepeats(100, 7), 13);  // |91 - 100| <= 13
  EXPECT_EQ(CalcNrOfHDropRepeats(100, 3), -1);
  EXPECT_EQ(CalcNrOfHDropRepeats(100, 97), -1);
  EXPECT_EQ(CalcNrOfHDropRepeats(101, 50), 2);    // |100 - 101| <= 2
  EXPECT_EQ(CalcNrOfHDropRepeats(100, 100), -1);  // |(n - 1) * 100 - n * 100| = 100 > n
  EXPECT_EQ(CalcNrOfHDropRepeats(100, 250), -1);
  EXPECT_EQ(CalcNrOfHDropRepeats(0, 5), -1);
  EXPECT_EQ(CalcNrOfHDropRepeats(UINT_MAX, 0x80000000u), 2);  // 2 * drop wraps to 0: |-1| <= 2
}

// The pieces of a run, found pixel by pixel: a piece ends at every seam of
// either layout strictly inside the run; two seams on one pixel give a piece
// of length 0 between them.
std::vector<int> RefParts(int period1, int position1, int period2, int position2, int length) {
  auto seamAt = [](int period, int position, int i) {
    return period != 0 && ostrel::repeat::FloorMod(position + i, period) == 0;
  };
  std::vector<int> parts;
  int start = 0;
  for (int i = 1; i < length; ++i) {
    const bool s1 = seamAt(period1, position1, i), s2 = seamAt(period2, position2, i);
    if (s1 || s2) {
      parts.push_back(i - start);
      if (s1 && s2) parts.push_back(0);
      start = i;
    }
  }
  parts.push_back(length - start);
  return parts;
}

TEST(RepeatArithmetic, CalcPartsPinnedCases) {
  int count = -1, parts[3] = {-1, -1, -1};
  CalcParts(10, 5, 10, 5, 8, &count, parts);
  EXPECT_EQ(count, 3);
  EXPECT_EQ(std::vector<int>(parts, parts + 3), (std::vector<int>{5, 0, 3}));
  CalcParts(10, -1, 100, 0, 3, &count, parts);
  EXPECT_EQ(count, 2);
  EXPECT_EQ(std::vector<int>(parts, parts + 2), (std::vector<int>{1, 2}));
  CalcParts(10, -1, 0, 0, 3, &count, parts);  // a zero period2 compares as 0
  EXPECT_EQ(count, 3);
  EXPECT_EQ(std::vector<int>(parts, parts + 3), (std::vector<int>{0, 1, 2}));
  CalcParts(0, 0, 10, 8, 4, &count, parts);  // zero period1: its "seam" lies at 0
  EXPECT_EQ(count, 3);
  EXPECT_EQ(std::vector<int>(parts, parts + 3), (std::vector<int>{0, 2, 2}));
  CalcParts(10, 2, 10, 1, 8, &count, parts);  // no seam at all
  EXPECT_EQ(count, 1);
  EXPECT_EQ(parts[0], 8);
  CalcParts(10, 2, 7, 4, 7, &count, parts);  // second layout only: seam after 3
  EXPECT_EQ(count, 2);
  EXPECT_EQ(std::vector<int>(parts, parts + 2), (std::vector<int>{3, 4}));
  CalcParts(10, 6, 7, 0, 7, &count, parts);  // first seam after 4, none of the second
  EXPECT_EQ(count, 2);
  EXPECT_EQ(std::vector<int>(parts, parts + 2), (std::vector<int>{4, 3}));
}

TEST(RepeatArithmetic, CalcPartsSplitsAtEverySeamOfBothLayouts) {
  for (int period1 : {1, 3, 8, 10}) {
    for (int period2 : {1, 4, 8, 13}) {
      const int maxLength = period1 < period2 ? period1 : period2;
      for (int length = 0; length <= maxLength; ++length) {
        for (int p1 = -25; p1 <= 25; ++p1) {
          for (int p2 = -30; p2 <= 30; p2 += 3) {
            int count = -1, parts[3] = {-1, -1, -1};
            CalcParts(period1, p1, period2, p2, length, &count, parts);
            const std::vector<int> want = RefParts(period1, p1, period2, p2, length);
            ASSERT_GE(count, 1);
            ASSERT_LE(count, 3);
            EXPECT_EQ(std::vector<int>(parts, parts + count), want)
                << "periods " << period1 << ", " << period2 << " positions " << p1 << ", " << p2
                << " length " << length;
          }
        }
      }
    }
  }
}

TEST(RepeatArithmetic, CalcParts2PinnedCases) {
  int count = -1, parts[8];
  CalcParts2(10, -3, 2, &count, parts);  // m = 7
  EXPECT_EQ(count, 1);
  EXPECT_EQ(parts[0], 2);
  CalcParts2(10, 5, 25, &count, parts);  // a rest that is a larger multiple ends in 0
  EXPECT_EQ(count, 4);
  EXPECT_EQ(std::vector<int>(parts, parts + 4), (std::vector<int>{5, 10, 10, 0}));
  CalcParts2(10, 5, 15, &count, parts);  // a rest equal to the period: no 0
  EXPECT_EQ(count, 2);
  EXPECT_EQ(std::vector<int>(parts, parts + 2), (std::vector<int>{5, 10}));
  CalcParts2(10, 5, 27, &count, parts);
  EXPECT_EQ(count, 4);
  EXPECT_EQ(std::vector<int>(parts, parts + 4), (std::vector<int>{5, 10, 10, 2}));
  CalcParts2(10, -1, 12, &count, parts);  // m = 9
  EXPECT_EQ(count, 3);
  EXPECT_EQ(std::vector<int>(parts, parts + 3), (std::vector<int>{1, 10, 1}));
  parts[0] = -1;
  CalcParts2(0, 3, 17, &count, parts);  // period 0: count 0, yet one entry written
  EXPECT_EQ(count, 0);
  EXPECT_EQ(parts[0], 17);
}

TEST(RepeatArithmetic, CalcParts2PiecesAddUpAndStayInsideTheRoom) {
  for (int period : {1, 3, 10}) {
    for (int position = -25; position <= 25; ++position) {
      for (int length = 0; length <= 40; ++length) {
        const int room = 2 + length / period;
        std::vector<int> parts(room + 1, -7);
        int count = -1;
        CalcParts2(period, position, length, &count, parts.data());
        EXPECT_EQ(parts[room], -7) << "wrote past the room";
        ASSERT_GE(count, 1);
        ASSERT_LE(count, room);
        int sum = 0;
        for (int i = 0; i < count; ++i) sum += parts[i];
        EXPECT_EQ(sum, length);
        const int m = ostrel::repeat::FloorMod(position, period);
        if (count > 1) {
          EXPECT_EQ(parts[0], period - m);
        }
        for (int i = 1; i + 1 < count; ++i) EXPECT_EQ(parts[i], period);
      }
    }
  }
}

}  // namespace

// Integer and repeat arithmetic: 32-bit wrapping and sign quirks pinned, the rest by references.
#include <algorithm>
#include <cmath>
#include <numeric>

#include "repeat_test_util.h"

namespace {

TEST(RepeatArithmetic, GgTKgVFakultaetNUeberK) {
  EXPECT_EQ(ggT(4, -6), -2);               // the sign the truncating remainders leave
  EXPECT_EQ(kgV(65536, 65536), 0);         // the product wraps to 0 before dividing
  EXPECT_EQ(kgV(100000, 30000), -129496);  // 3e9 wraps to -1294967296, / 10000
  EXPECT_EQ(kgV(INT_MIN, -1), INT_MIN);    // INT_MIN / -1 wraps, no fault
  for (int a = 1; a <= 40; ++a)
    for (int b = 1; b <= 40; ++b)
      EXPECT_TRUE(ggT(a, b) == std::gcd(a, b) && kgV(a, b) == std::lcm(a, b)) << a << ", " << b;
  EXPECT_TRUE(Fakultaet(0) == 1 && Fakultaet(13) == 1932053504u && Fakultaet(34) == 0);  // mod 2^32
  EXPECT_EQ(NUeberK(3, 5), 1u);                     // n < k gives 1, not 0
  EXPECT_EQ(NUeberK(20, 10), 117u);                 // 11 * ... * 20 wraps to 427674624, / 10!
  for (unsigned n = 0, c = 1; n <= 12; ++n, c = 1)  // c: n over k, exact
    for (unsigned k = 0; k <= n; c = c * (n - k) / (k + 1), ++k) EXPECT_EQ(NUeberK(n, k), c) << n;
}

TEST(RepeatArithmetic, RepeatIndexPositionInsideAndHDropRepeats) {
  const double cases[][5] = {// position, size, epsilon, then the index and the position inside
                             {-10, 10, 0.001, -1, 0},
                             {-10.0005, 10, 0.001, -1, 0},  // within epsilon of the seam
                             {-10.5, 10, 0.001, -2, 9},
                             {-10, 10, 0, -2, 0},  // the rest equals the size: 0
                             {-10.5, 10, 1, -1, 0},
                             {-0.5, 10, 0.5, -1, 9},  // epsilon >= 1: truncated first
                             {21.5, 10.9, 0, 2, 0},
                             {30, 10.5, 0, 3, -1},  // index by the truncated size, rest not
                             {25.7, 10, 0, 2, 5},
                             {-3.5, 10, 0.001, -1, 6},
                             {1e10, 10, 0, -214748364, INT_MIN}};  // out of range: 0x80000000
  for (const auto &c : cases) {
    int q = 99;
    EXPECT_TRUE(GetRapport(c[0], c[1], c[2]) == c[3] &&
                SetInRappAndCalcRapp(c[0], c[1], c[2], &q) == c[4] && q == c[3])
        << c[0];
  }
  for (int p = -300; p <= 300; ++p)  // whole positions: floor division
    for (int size : {1, 7, 64}) {
      const int want = static_cast<int>(std::floor(static_cast<double>(p) / size));
      int q = 99;
      EXPECT_TRUE(GetRapport(p, size, 2) == want &&
                  SetInRappAndCalcRapp(p, size, 0.001, &q) == p - want * size && q == want)
          << p;
    }
  const long long drops[][3] = {{100, 0, 1},
                                {100, 50, 2},
                                {100, 33, 3},
                                {100, 67, 3},
                                {100, 3, -1},
                                {100, 97, -1},
                                {101, 50, 2},
                                {100, 7, 13},                 // |91 - 100| <= 13
                                {100, 49, 2},                 // |98 - 100| <= 2, on the bound
                                {UINT_MAX, 0x80000000u, 2}};  // 1 * length - 2 * drop wraps to -1
  for (const auto &c : drops) EXPECT_EQ(CalcNrOfHDropRepeats(c[0], c[1]), c[2]) << c[1];
}

// Pixel by pixel: a piece starts at every seam of either layout inside the run (period 0: no
// seams), and two seams on one pixel leave a piece of 0 between them.
std::vector<int> RefParts(int period1, int position1, int period2, int position2, int length) {
  auto seam = [](int period, int at) { return period && (at % period + period) % period == 0; };
  std::vector<int> parts = {0};
  for (int i = 0; i < length; ++parts.back(), ++i) {
    const int seams = i == 0 ? 0 : seam(period1, position1 + i) + seam(period2, position2 + i);
    parts.insert(parts.end(), seams, 0);
  }
  return parts;
}

TEST(RepeatArithmetic, CalcPartsSplitsAtTheSeams) {
  int count = -1, parts[3] = {-1, -1, -1};
  CalcParts(10, -1, 0, 0, 3, &count, parts);  // a zero period takes part as 0
  EXPECT_EQ(std::vector<int>(parts, parts + count), (std::vector<int>{0, 1, 2}));
  for (int period1 : {1, 3, 8, 10})
    for (int period2 : {1, 4, 8, 13})
      for (int length = 0; length <= std::min(period1, period2); ++length)
        for (int p1 = -25; p1 <= 25; ++p1)
          for (int p2 = -30; p2 <= 30; p2 += 3) {
            CalcParts(period1, p1, period2, p2, length, &count, parts);
            ASSERT_TRUE(count >= 1 && count <= 3) << count;
            EXPECT_EQ(std::vector<int>(parts, parts + count),
                      RefParts(period1, p1, period2, p2, length))
                << period1 << ", " << p1 << ", " << period2 << ", " << p2 << ", " << length;
          }
  CalcParts2(0, 3, 17, &count, parts);  // CalcParts2, period 0: no parts, yet parts[0] written
  EXPECT_TRUE(count == 0 && parts[0] == 17) << count;
  for (int period : {1, 3, 10})
    for (int position = -25; position <= 25; ++position)
      for (int length = 0; length <= 40; ++length) {
        std::vector<int> want = RefParts(period, position, 0, 0, length);
        std::vector<int> got(3 + length / period, -7);  // room for 2 + length / period, and 1
        // A run ending on a seam more than one period after the first ends in a piece of 0
        // (period 10, position 5: length 25 gives 5, 10, 10, 0; length 15 gives 5, 10).
        if (want.size() > 2 && (position + length) % period == 0) want.push_back(0);
        CalcParts2(period, position, length, &count, got.data());
        ASSERT_TRUE(count >= 1 && count < int(got.size()) && got.back() == -7) << count;
        EXPECT_EQ(std::vector<int>(got.begin(), got.begin() + count), want)
            << period << ", " << position << ", " << length;
      }
}

}  // namespace

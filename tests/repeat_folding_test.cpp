// Drop kinds and placing into the repeat: the documented examples,
// the quirks of the horizontal drop and the 32-bit wrapping pinned, and the
// vertical drop checked against a mathematical fold written here.
#include <gtest/gtest.h>

#include <csignal>

#include <climits>
#include <cstdint>
#include <utility>

#include "Ostrel.h"

namespace {

using Point = std::pair<int, int>;

Point Fold(int x, int y, unsigned width, unsigned height, unsigned drop, _EDropKind kind) {
  int fx = -12345, fy = -12345;
  SetInRapp(x, y, width, height, drop, kind, &fx, &fy);
  return {fx, fy};
}

Point FoldDb(int x, int y, unsigned width, unsigned height, double ratio, double widthExact,
             double heightExact, _EDropKind kind) {
  int fx = -12345, fy = -12345;
  SetInRappDb(x, y, width, height, ratio, widthExact, heightExact, kind, &fx, &fy);
  return {fx, fy};
}

std::pair<double, double> FoldMM(double x, double y, double width, double height, double drop,
                                 _EDropKind kind) {
  double fx = -12345, fy = -12345;
  SetInRappMM(x, y, width, height, drop, kind, &fx, &fy);
  return {fx, fy};
}

std::int64_t FloorDiv64(std::int64_t a, std::int64_t b) {
  return a / b - ((a % b != 0) && ((a < 0) != (b < 0)) ? 1 : 0);
}
std::int64_t Mod64(std::int64_t a, std::int64_t b) { return a - FloorDiv64(a, b) * b; }

// The endless vertically dropped design, folded by plain arithmetic: column
// c = floor(x / width) is shifted down by c * drop.
Point RefVertical(std::int64_t x, std::int64_t y, std::int64_t width, std::int64_t height,
                  std::int64_t drop) {
  const std::int64_t column = FloorDiv64(x, width);
  return {static_cast<int>(Mod64(x, width)), static_cast<int>(Mod64(y - column * drop, height))};
}

TEST(RepeatFolding, DropKindValues) {
  EXPECT_EQ(static_cast<int>(eDropNone), 0);
  EXPECT_EQ(static_cast<int>(eDropVertical), 1);
  EXPECT_EQ(static_cast<int>(eDropHorizontal), 2);
  EXPECT_EQ(sizeof(_EDropKind), 4u);
}

TEST(RepeatFolding, VerticalDropSpecExamples) {
  EXPECT_EQ(Fold(-1, 0, 100, 80, 40, eDropVertical), Point(99, 40));
  EXPECT_EQ(Fold(250, 10, 100, 80, 40, eDropVertical), Point(50, 10));
  EXPECT_EQ(Fold(-100, 0, 100, 80, 40, eDropVertical), Point(0, 40));  // overshoot taken back
  EXPECT_EQ(Fold(0, 0, 100, 80, 40, eDropVertical), Point(0, 0));
  EXPECT_EQ(Fold(99, 79, 100, 80, 40, eDropVertical), Point(99, 79));
  EXPECT_EQ(Fold(0, -1, 100, 80, 40, eDropVertical), Point(0, 79));
  EXPECT_EQ(Fold(0, -80, 100, 80, 40, eDropVertical), Point(0, 0));
  EXPECT_EQ(Fold(INT_MIN, 0, 100, 80, 40, eDropVertical), Point(52, 40));
  EXPECT_EQ(Fold(INT_MAX, INT_MIN, 100, 80, 0, eDropVertical),
            Point(47, 32));  // INT_MIN = -26843546 * 80 + 32
}

TEST(RepeatFolding, VerticalDropFoldsLikeTheEndlessDesign) {
  const struct {
    unsigned width, height, drop;
  } tiles[] = {{100, 80, 40}, {100, 80, 0}, {7, 5, 3}, {1, 1, 0}, {13, 9, 8}, {64, 64, 63}};
  for (const auto &t : tiles) {
    for (int x = -700; x <= 700; x += 3) {
      for (int y = -500; y <= 500; y += 7) {
        ASSERT_EQ(Fold(x, y, t.width, t.height, t.drop, eDropVertical),
                  RefVertical(x, y, t.width, t.height, t.drop))
            << "(" << x << ", " << y << ") in " << t.width << " x " << t.height << " drop "
            << t.drop;
      }
    }
  }
}

TEST(RepeatFolding, HorizontalDropSpecExamples) {
  EXPECT_EQ(Fold(30, 170, 100, 80, 25, eDropHorizontal), Point(80, 10));
  EXPECT_EQ(Fold(0, 170, 100, 80, 25, eDropHorizontal), Point(0, 170));     // x = 0: nothing folds
  EXPECT_EQ(Fold(150, 10, 100, 80, 25, eDropHorizontal), Point(150, -90));  // q = 0, y - 100
  EXPECT_EQ(Fold(-10, -20, 100, 80, 25, eDropHorizontal), Point(15, 60));   // row -1
}

TEST(RepeatFolding, HorizontalDropQuirksAreKept) {
  // x < 0 with y >= 0: the repeat count comes from the unsigned negation of
  // y, (2^32 - 20) / 80 + 1 = 53687091, and everything wraps.
  EXPECT_EQ(Fold(-10, 20, 100, 80, 25, eDropHorizontal), Point(1342177265, -1342177196));
  // Step 3 turns a negative multiple of the width into the width itself, and
  // step 4 then takes one width off y.
  EXPECT_EQ(Fold(50, 160, 100, 80, 75, eDropHorizontal), Point(100, 0));
  EXPECT_EQ(Fold(50, 170, 100, 80, 75, eDropHorizontal), Point(100, -90));
  // x > 0 with y < 0: step 2 divides the bit pattern of y, 2^32 - 400, into
  // 53687086 repeats.
  EXPECT_EQ(Fold(5, -400, 100, 80, 5, eDropHorizontal), Point(75, 16));
  EXPECT_EQ(Fold(5, -400, 100, 80, 70, eDropHorizontal), Point(536871281, -536871184));
  EXPECT_EQ(FoldDb(5, -400, 100, 80, 70 / 80.0, 80, 80, eDropHorizontal), Point(57, 16));
}

TEST(RepeatFolding, HorizontalDropCommonCase) {
  // 0 < x < width, y >= 0: y folds into the tile, x moves left one drop per
  // repeat row and wraps into the tile when it went negative (but not onto
  // a negative multiple of the width, see above).
  const unsigned width = 100, height = 80;
  for (unsigned drop : {0u, 25u, 33u, 99u}) {
    for (int x = 1; x < static_cast<int>(width); ++x) {
      for (int y = 0; y < 2000; y += 13) {
        const std::int64_t shifted = x - static_cast<std::int64_t>(y / height) * drop;
        if (shifted < 0 && shifted % width == 0) continue;
        const Point want(static_cast<int>(Mod64(shifted, width)), static_cast<int>(y % height));
        ASSERT_EQ(Fold(x, y, width, height, drop, eDropHorizontal), want)
            << "(" << x << ", " << y << ") drop " << drop;
      }
    }
  }
}

TEST(RepeatFolding, OtherKindsReturnThePositionUnchanged) {
  for (int kind : {0, 3, -1, 1000, INT_MIN}) {
    const auto k = static_cast<_EDropKind>(kind);
    EXPECT_EQ(Fold(-5, 700, 100, 80, 40, k), Point(-5, 700));
    EXPECT_EQ(Fold(-5, 700, 0, 0, 40, k), Point(-5, 700));  // no division reached
    EXPECT_EQ(FoldDb(-5, 700, 100, 80, 0.5, 100, 80, k), Point(-5, 700));
    EXPECT_EQ(FoldMM(-5.5, 700.25, 100, 80, 40, k), std::make_pair(-5.5, 700.25));
  }
}

TEST(RepeatFolding, DbTruncatesOncePerFold) {
  // The drop of one repeat step is 0.5 * 80.5 = 40.25; five repeats move y by
  // trunc(5 * 40.25) = 201, where SetInRapp with drop 40 moves it by 200.
  EXPECT_EQ(FoldDb(500, 10, 100, 80, 0.5, 100, 80.5, eDropVertical), Point(0, 49));
  EXPECT_EQ(Fold(500, 10, 100, 80, 40, eDropVertical), Point(0, 50));
  // Three repeats: trunc(120.75) = 120.
  EXPECT_EQ(FoldDb(300, 130, 100, 80, 0.5, 100, 80.5, eDropVertical), Point(0, 10));
  // Negative x: k = 3 columns to the right, y += trunc(3 * 40.25) = 120.
  EXPECT_EQ(FoldDb(-201, 0, 100, 80, 0.5, 100, 80.5, eDropVertical), Point(99, 40));
  // Horizontal: the step is dropRatio * repeatWidthExact.
  EXPECT_EQ(FoldDb(30, 170, 100, 80, 0.25, 101, 80, eDropHorizontal), Point(80, 10));
  // 53687091 * 50 does not fit 32 bits: the truncation gives 0x80000000
  // where SetInRapp's product wraps.
  EXPECT_EQ(FoldDb(-10, 20, 100, 80, 0.5, 100, 80, eDropHorizontal),
            Point(2147483638, -2147483596));
  EXPECT_EQ(Fold(-10, 20, 100, 80, 50, eDropHorizontal), Point(44, 4));
}

TEST(RepeatFolding, DbWithAWholeDropMatchesSetInRapp) {
  // drop / 80 is exact in binary for these drops, so ratio * 80 is the drop.
  for (unsigned drop : {0u, 5u, 20u, 40u, 70u}) {
    const double ratio = drop / 80.0;
    for (int x = -450; x <= 450; x += 7) {
      for (int y = -400; y <= 400; y += 11) {
        ASSERT_EQ(FoldDb(x, y, 100, 80, ratio, 12345, 80, eDropVertical),
                  Fold(x, y, 100, 80, drop, eDropVertical))
            << x << ", " << y;
        // The horizontal kind with x < 0 and y >= 0, or x > 0 and y < 0,
        // counts about 2^32 / 80 repeats, whose product with the drop can
        // leave the int range: pinned elsewhere.
        if ((x < 0 && y >= 0) || (x > 0 && y < 0)) continue;
        ASSERT_EQ(FoldDb(x, y, 100, 80, ratio, 80, 12345, eDropHorizontal),
                  Fold(x, y, 100, 80, drop, eDropHorizontal))
            << x << ", " << y;
      }
    }
  }
}

TEST(RepeatFolding, MillimetresVertical) {
  EXPECT_EQ(FoldMM(-0.5, 0, 100, 80, 40.5, eDropVertical), std::make_pair(99.5, 40.5));
  EXPECT_EQ(FoldMM(250.25, 10, 100, 80, 40, eDropVertical), std::make_pair(50.25, 10.0));
  EXPECT_EQ(FoldMM(-100, 0, 100, 80, 40, eDropVertical), std::make_pair(0.0, 40.0));
  EXPECT_EQ(FoldMM(0, -0.25, 100, 80, 40, eDropVertical), std::make_pair(0.0, 79.75));
  // Whole values fold as SetInRapp does.
  for (int x = -450; x <= 450; x += 7) {
    for (int y = -400; y <= 400; y += 11) {
      const Point p = Fold(x, y, 100, 80, 40, eDropVertical);
      EXPECT_EQ(FoldMM(x, y, 100, 80, 40, eDropVertical),
                std::make_pair(static_cast<double>(p.first), static_cast<double>(p.second)))
          << x << ", " << y;
    }
  }
}

TEST(RepeatFolding, MillimetresHorizontal) {
  EXPECT_EQ(FoldMM(30, 170, 100, 80, 25, eDropHorizontal), std::make_pair(80.0, 10.0));
  EXPECT_EQ(FoldMM(0, 170, 100, 80, 25, eDropHorizontal), std::make_pair(0.0, 170.0));
  EXPECT_EQ(FoldMM(150, 10, 100, 80, 25, eDropHorizontal), std::make_pair(150.0, -90.0));
  // x < 0 with y >= 0: f = 1 - trunc(y / repeatHeight) from y itself, so the
  // pixel lands in the tile where SetInRapp's unsigned negation wraps.
  EXPECT_EQ(FoldMM(-10, 20, 100, 80, 25, eDropHorizontal), std::make_pair(90.0, 20.0));
  EXPECT_EQ(FoldMM(-10, -20, 100, 80, 25, eDropHorizontal), std::make_pair(15.0, 60.0));
  EXPECT_EQ(FoldMM(12.5, 85.5, 100, 80, 2.5, eDropHorizontal), std::make_pair(10.0, 5.5));
}

}  // namespace

// A zero repeat size is the caller's error: the release build stops with the
// processor's divide fault, as a hardware division by zero would.
TEST(RepeatFoldingDeathTest, ZeroRepeatSizeRaisesTheDivideFault) {
  int x = 0, y = 0;
  EXPECT_EXIT(SetInRapp(-5, 3, 0, 80, 0, eDropVertical, &x, &y),
              ::testing::KilledBySignal(SIGFPE), "");
  EXPECT_EXIT(kgV(0, 0), ::testing::KilledBySignal(SIGFPE), "");
}

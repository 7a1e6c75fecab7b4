// Folding into the repeat: folds against the endless design, the horizontal drop's fixed steps,
// unsigned divisions and 32-bit wrapping pinned, the double variants against SetInRapp.
#include <csignal>

#include "repeat_test_util.h"

namespace {

using repeat_test::Point;
using MMPoint = std::pair<double, double>;

Point Fold(int x, int y, unsigned width, unsigned height, unsigned drop, _EDropKind kind) {
  Point p{-7, -7};
  SetInRapp(x, y, width, height, drop, kind, &p.first, &p.second);
  return p;
}

Point FoldDb(int x, int y, double ratio, double widthExact, double heightExact, _EDropKind kind) {
  Point p{-7, -7};  // in a 100 x 80 tile, as FoldMM
  SetInRappDb(x, y, 100, 80, ratio, widthExact, heightExact, kind, &p.first, &p.second);
  return p;
}

MMPoint FoldMM(double x, double y, double drop, _EDropKind kind) {
  MMPoint p{-7, -7};
  SetInRappMM(x, y, 100, 80, drop, kind, &p.first, &p.second);
  return p;
}

TEST(RepeatFolding, FoldsLikeTheEndlessDesign) {
  const unsigned tiles[][3] = {{100, 80, 40}, {100, 80, 0},  {7, 5, 3},    {1, 1, 0},
                               {64, 64, 63},  {100, 80, 33}, {100, 80, 99}};
  std::vector<int> xs = {INT_MIN, INT_MIN + 1, INT_MAX}, ys = {INT_MIN, INT_MAX};  // far away
  for (int x = -700; x <= 700; x += 3) xs.push_back(x);
  for (int y = -500; y <= 2000; y += 7) ys.push_back(y);
  for (const auto &t : tiles)
    for (int x : xs)
      for (int y : ys) {
        const int w = t[0], h = t[1], drop = t[2];
        // Vertical: any x, and far rows inside the tile's columns (elsewhere y wraps).
        if ((y > -600 && y < 600) || (x >= 0 && x < w)) {
          ASSERT_EQ(Fold(x, y, w, h, drop, eDropVertical),
                    repeat_test::RefFold(x, y, w, h, drop, eDropVertical))
              << x << ", " << y;
        }
        // Horizontal: 0 < x < width and y >= 0, unless x lands on a negative multiple of the width.
        if (x <= 0 || x >= w || y < 0 || y == INT_MAX || (x - y / h * drop) % w == 0) continue;
        ASSERT_EQ(Fold(x, y, w, h, drop, eDropHorizontal),
                  repeat_test::RefFold(x, y, w, h, drop, eDropHorizontal))
            << x << ", " << y;
      }
}

TEST(RepeatFolding, HorizontalDropKeepsItsFixedSteps) {
  const int cases[][5] = {{0, 170, 25, 0, 170},     // x = 0: nothing folds
                          {150, 10, 25, 150, -90},  // no row step for x >= width; y less a width
                          {50, 170, 75, 100, -90},  // x = -100 wraps to the width
                          {-10, -20, 25, 15, 60},
                          {-10, 20, 25, 1342177265, -1342177196},  // (2^32 - 20) / 80 + 1 rows
                          {5, -400, 5, 75, 16}};                   // y divides as 2^32 - 400
  for (const auto &c : cases)
    EXPECT_EQ(Fold(c[0], c[1], 100, 80, c[2], eDropHorizontal), Point(c[3], c[4])) << c[0];
  for (_EDropKind k : {_EDropKind(0), _EDropKind(3), _EDropKind(-1)}) {  // unchanged, no division
    EXPECT_EQ(Fold(-5, 700, 0, 0, 40, k), Point(-5, 700));
    EXPECT_EQ(FoldDb(-5, 700, 0.5, 100, 80, k), Point(-5, 700));
    EXPECT_EQ(FoldMM(-5.5, 700.25, 40, k), MMPoint(-5.5, 700.25));
  }
}

TEST(RepeatFolding, DbTruncatesOncePerFoldAndMMKeepsFractions) {
  // A step of 0.5 * 80.5 = 40.25: five repeats move y by trunc(201.25), not 200.
  EXPECT_EQ(FoldDb(500, 10, 0.5, 100, 80.5, eDropVertical), Point(0, 49));
  EXPECT_EQ(FoldDb(-201, 0, 0.5, 100, 80.5, eDropVertical), Point(99, 40));
  EXPECT_EQ(FoldDb(30, 170, 0.25, 101, 80, eDropHorizontal), Point(80, 10));
  EXPECT_EQ(FoldDb(5, -400, 70 / 80.0, 80, 80, eDropHorizontal), Point(57, 16));
  // 53687091 rows * 50 leave the int range: 0x80000000, where SetInRapp wraps.
  EXPECT_EQ(FoldDb(-10, 20, 0.5, 100, 80, eDropHorizontal), Point(2147483638, -2147483596));
  const double mm[][6] = {
      // x, y, drop, kind, then the folded x and y
      {-0.5, 0, 40.5, 1, 99.5, 40.5}, {0, -0.25, 40, 1, 0, 79.75},
      {0, 170, 25, 2, 0, 170},        {150, 10, 25, 2, 150, -90},
      {12.5, 85.5, 2.5, 2, 10, 5.5},  {-10, 20, 25, 2, 90, 20},  // rows counted from y itself ...
      {-10, 170, 25, 2, 65, 90}};                                // ... as 1 - trunc(170 / 80) = -1
  for (const auto &c : mm) {
    const _EDropKind kind = c[3] == 1 ? eDropVertical : eDropHorizontal;
    EXPECT_EQ(FoldMM(c[0], c[1], c[2], kind), MMPoint(c[4], c[5])) << c[0] << ", " << c[1];
  }
  for (unsigned drop : {0u, 5u, 40u, 70u})  // drop / 80 is exact: the same drop
    for (int x = -450; x <= 450; x += 7)
      for (int y = -400; y <= 400; y += 11) {
        const Point p = Fold(x, y, 100, 80, drop, eDropVertical);
        ASSERT_EQ(FoldDb(x, y, drop / 80.0, 1, 80, eDropVertical), p) << x << ", " << y;
        ASSERT_EQ(FoldMM(x, y, drop, eDropVertical), MMPoint(p.first, p.second)) << x << ", " << y;
      }
}

}  // namespace

// A zero repeat size is the caller's error: the processor's divide fault stops the process.
TEST(RepeatFoldingDeathTest, ZeroRepeatSizeRaisesTheDivideFault) {
  int x = 0, y = 0;
#if defined(__SANITIZE_ADDRESS__)
  // AddressSanitizer catches the signal, reports it and exits.
  EXPECT_DEATH(SetInRapp(-5, 3, 0, 80, 0, eDropVertical, &x, &y), "FPE");
  EXPECT_DEATH(kgV(0, 0), "FPE");
#elif defined(_WIN32)
  // The process ends with the exception's code, EXCEPTION_INT_DIVIDE_BY_ZERO.
  const ::testing::ExitedWithCode divideFault(static_cast<int>(0xC0000094u));
  EXPECT_EXIT(SetInRapp(-5, 3, 0, 80, 0, eDropVertical, &x, &y), divideFault, "");
  EXPECT_EXIT(kgV(0, 0), divideFault, "");
#else
  EXPECT_EXIT(SetInRapp(-5, 3, 0, 80, 0, eDropVertical, &x, &y), ::testing::KilledBySignal(SIGFPE),
              "");
  EXPECT_EXIT(kgV(0, 0), ::testing::KilledBySignal(SIGFPE), "");
#endif
}

// View, file and screen coordinates: the documented examples, round
// trips, folds against SetInRapp and a horizontal fold written here, the
// snap and bottom-up turn pinned, and the array forms against the one-point
// forms.
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <random>
#include <utility>
#include <vector>

#include "Ostrel.h"

namespace {

using Point = std::pair<int, int>;

Point ToFile(int vx, int vy, unsigned width, unsigned height, unsigned drop, _EDropKind kind,
             double zoomX, double zoomY, bool fold) {
  int fx = -12345, fy = -12345;
  VPToFP(vx, vy, &fx, &fy, width, height, drop, kind, zoomX, zoomY, fold);
  return {fx, fy};
}

Point ToFileDb(int vx, int vy, unsigned width, unsigned height, double ratio, double widthExact,
               double heightExact, _EDropKind kind, double zoomX, double zoomY, bool fold) {
  int fx = -12345, fy = -12345;
  VPToFPDb(vx, vy, &fx, &fy, width, height, ratio, widthExact, heightExact, kind, zoomX, zoomY,
           fold);
  return {fx, fy};
}

Point ToView(int fx, int fy, unsigned width, unsigned height, unsigned drop, _EDropKind kind,
             double zoomX, double zoomY, bool fold) {
  int vx = -12345, vy = -12345;
  FPToVP(fx, fy, &vx, &vy, width, height, drop, kind, zoomX, zoomY, fold);
  return {vx, vy};
}

Point Fold(int x, int y, unsigned width, unsigned height, unsigned drop) {
  int fx, fy;
  SetInRapp(x, y, width, height, drop, eDropVertical, &fx, &fy);
  return {fx, fy};
}

std::int64_t FloorDiv64(std::int64_t a, std::int64_t b) {
  return a / b - ((a % b != 0) && ((a < 0) != (b < 0)) ? 1 : 0);
}
std::int64_t Mod64(std::int64_t a, std::int64_t b) { return a - FloorDiv64(a, b) * b; }

// The endless horizontally dropped design folded by plain arithmetic: row
// r = floor(y / height) is shifted right by r * drop.
Point RefHorizontal(std::int64_t x, std::int64_t y, std::int64_t width, std::int64_t height,
                    std::int64_t drop) {
  const std::int64_t row = FloorDiv64(y, height);
  return {static_cast<int>(Mod64(x - row * drop, width)), static_cast<int>(Mod64(y, height))};
}

struct Screen {
  int scrollX = 0, scrollY = 0;
  unsigned windowHeight = 480, width = 100, height = 100, drop = 0;
  _EDropKind kind = eDropVertical;
  double zoomX = 1, zoomY = 1;
  unsigned char snap = 0;
  bool bottomUp = false;
};

Point ToScreen(int fx, int fy, const Screen &s) {
  int sx = -12345, sy = -12345;
  FPToSnappedSP(fx, fy, &sx, &sy, s.scrollX, s.scrollY, s.windowHeight, s.width, s.height, s.drop,
                s.kind, s.zoomX, s.zoomY, s.snap, s.bottomUp);
  return {sx, sy};
}

Point MMToScreen(double mmX, double mmY, double resolutionX, double resolutionY, const Screen &s) {
  int sx = -12345, sy = -12345;
  MMToSnappedSP(mmX, mmY, &sx, &sy, s.scrollX, s.scrollY, s.windowHeight, s.width, s.height, s.drop,
                s.kind, resolutionX, resolutionY, s.zoomX, s.zoomY, s.snap, s.bottomUp);
  return {sx, sy};
}

TEST(RepeatCoordinates, VPToFPSpecExample) {
  // View repeat 200, repeatX = -1, ix = trunc(199 / 2) = 99.
  EXPECT_EQ(ToFile(-1, 0, 100, 100, 0, eDropVertical, 2.0, 2.0, false), Point(-1, 0));
  EXPECT_EQ(ToFile(-1, 0, 100, 100, 0, eDropVertical, 2.0, 2.0, true), Point(99, 0));
  EXPECT_EQ(ToFile(-1, -1, 100, 100, 0, eDropHorizontal, 2.0, 2.0, false), Point(-1, -1));
  EXPECT_EQ(ToFile(-1, -1, 100, 100, 0, eDropHorizontal, 2.0, 2.0, true), Point(99, 99));
  // A fractional zoom: view repeat trunc(100 * 1.5) = 150, 149 / 1.5 = 99.33.
  EXPECT_EQ(ToFile(-1, 299, 100, 100, 0, eDropVertical, 1.5, 1.5, false), Point(-1, 199));
}

TEST(RepeatCoordinates, VPToFPOtherKindsGiveZeros) {
  for (int kind : {0, 3, -1}) {
    const auto k = static_cast<_EDropKind>(kind);
    EXPECT_EQ(ToFile(57, -93, 100, 100, 10, k, 2.0, 2.0, true), Point(0, 0));
    EXPECT_EQ(ToFile(57, -93, 100, 100, 10, k, 0.001, 0.001, false), Point(0, 0));  // no fault
    EXPECT_EQ(ToFileDb(57, -93, 100, 100, 0.5, 100, 100, k, 2.0, 2.0, true), Point(0, 0));
    EXPECT_EQ(ToView(57, -93, 100, 100, 10, k, 2.0, 2.0, true), Point(0, 0));
    EXPECT_EQ(ToView(57, -93, 100, 100, 10, k, 2.0, 2.0, false), Point(0, 0));
  }
}

TEST(RepeatCoordinates, VPToFPFoldsAsTheEndlessDesign) {
  const struct {
    unsigned width, height, drop;
    double zoomX, zoomY;
  } views[] = {{100, 80, 40, 1, 1},    {100, 80, 40, 2, 2},   {100, 80, 33, 0.5, 0.25},
               {37, 23, 5, 1.5, 3.25}, {64, 64, 63, 4, 0.75}, {10, 10, 0, 1.3, 1.7}};
  for (const auto &v : views) {
    for (int vx = -1000; vx <= 1000; vx += 7) {
      for (int vy = -1000; vy <= 1000; vy += 11) {
        const Point endless =
            ToFile(vx, vy, v.width, v.height, v.drop, eDropVertical, v.zoomX, v.zoomY, false);
        ASSERT_EQ(ToFile(vx, vy, v.width, v.height, v.drop, eDropVertical, v.zoomX, v.zoomY, true),
                  Fold(endless.first, endless.second, v.width, v.height, v.drop))
            << vx << ", " << vy;
        // Without the fold both kinds are the same.
        ASSERT_EQ(
            ToFile(vx, vy, v.width, v.height, v.drop, eDropHorizontal, v.zoomX, v.zoomY, false),
            endless);
        ASSERT_EQ(
            ToFile(vx, vy, v.width, v.height, v.drop, eDropHorizontal, v.zoomX, v.zoomY, true),
            RefHorizontal(endless.first, endless.second, v.width, v.height, v.drop))
            << vx << ", " << vy;
      }
    }
  }
}

TEST(RepeatCoordinates, VPToFPDbRoundsHalfAwayFromZero) {
  // One repeat step drops 0.25 * 10 = 2.5 pixels: round(2.5) = 3 and
  // round(-2.5) = -3 in VPToFPDb, where SetInRappDb truncates to 2.
  EXPECT_EQ(ToFileDb(100, 5, 100, 10, 0.25, 1, 10, eDropVertical, 1, 1, true), Point(0, 2));
  EXPECT_EQ(ToFileDb(-100, 5, 100, 10, 0.25, 1, 10, eDropVertical, 1, 1, true), Point(0, 8));
  int fx, fy;
  SetInRappDb(100, 5, 100, 10, 0.25, 1, 10, eDropVertical, &fx, &fy);
  EXPECT_EQ(Point(fx, fy), Point(0, 3));
  // Horizontal: the step is dropRatio * repeatWidthExact.
  EXPECT_EQ(ToFileDb(5, 10, 10, 10, 0.25, 10, 1, eDropHorizontal, 1, 1, true), Point(2, 0));
  EXPECT_EQ(ToFileDb(5, -10, 10, 10, 0.25, 10, 1, eDropHorizontal, 1, 1, true), Point(8, 0));
  // 1.4 rounds down, 1.6 up, -1.6 to -2.
  EXPECT_EQ(ToFileDb(100, 5, 100, 10, 0.14, 1, 10, eDropVertical, 1, 1, true), Point(0, 4));
  EXPECT_EQ(ToFileDb(100, 5, 100, 10, 0.16, 1, 10, eDropVertical, 1, 1, true), Point(0, 3));
  EXPECT_EQ(ToFileDb(-100, 5, 100, 10, 0.16, 1, 10, eDropVertical, 1, 1, true), Point(0, 7));
}

TEST(RepeatCoordinates, VPToFPDbWithAWholeDropMatchesVPToFP) {
  for (unsigned drop : {0u, 5u, 20u, 70u}) {
    const double ratio = drop / 80.0;  // exact in binary: ratio * 80 is the drop
    for (int vx = -900; vx <= 900; vx += 13) {
      for (int vy = -900; vy <= 900; vy += 17) {
        for (bool fold : {false, true}) {
          for (auto kind : {eDropVertical, eDropHorizontal}) {
            ASSERT_EQ(ToFileDb(vx, vy, 100, 90, ratio, 80, 80, kind, 1.5, 0.5, fold),
                      ToFile(vx, vy, 100, 90, drop, kind, 1.5, 0.5, fold))
                << vx << ", " << vy;
          }
        }
      }
    }
  }
}

TEST(RepeatCoordinates, FPToVPThenVPToFPReturnsTheStart) {
  for (double zoom : {1.0, 2.0, 3.0}) {
    for (int fx = -500; fx <= 500; fx += 3) {
      for (int fy = -500; fy <= 500; fy += 7) {
        for (auto kind : {eDropVertical, eDropHorizontal}) {
          const Point v = ToView(fx, fy, 37, 23, 5, kind, zoom, zoom, false);
          ASSERT_EQ(ToFile(v.first, v.second, 37, 23, 5, kind, zoom, zoom, false), Point(fx, fy))
              << "zoom " << zoom << " at " << fx << ", " << fy;
        }
      }
    }
  }
  // Far from the origin too, while repeatX * viewRepeatWidth fits 32 bits.
  const Point far = ToView(INT_MIN + 100, INT_MAX, 100, 80, 0, eDropVertical, 1, 1, false);
  EXPECT_EQ(far, Point(INT_MIN + 100, INT_MAX));
  EXPECT_EQ(ToFile(far.first, far.second, 100, 80, 0, eDropVertical, 1, 1, false), far);
  // Beyond, the 32-bit product wraps: -21474837 * 100 becomes 2147483596,
  // and 53 + 2147483596 leaves the int range (0x80000000).
  EXPECT_EQ(ToView(INT_MIN + 1, 0, 100, 80, 0, eDropVertical, 1, 1, false).first, INT_MIN);
}

TEST(RepeatCoordinates, FPToVPFoldAtWholeZoomsIsTheScaledTileFold) {
  for (int zoom : {1, 2, 3}) {
    for (int fx = -500; fx <= 500; fx += 3) {
      for (int fy = -500; fy <= 500; fy += 7) {
        const Point t = Fold(fx, fy, 37, 23, 5);
        ASSERT_EQ(ToView(fx, fy, 37, 23, 5, eDropVertical, zoom, zoom, true),
                  Point(t.first * zoom, t.second * zoom))
            << fx << ", " << fy;
        const Point h = RefHorizontal(fx, fy, 37, 23, 5);
        ASSERT_EQ(ToView(fx, fy, 37, 23, 5, eDropHorizontal, zoom, zoom, true),
                  Point(h.first * zoom, h.second * zoom))
            << fx << ", " << fy;
      }
    }
  }
}

TEST(RepeatCoordinates, FPToVPPinnedCases) {
  // trunc(1.5 * 50) = 75; trunc(0 + 30 * 1.5 - 1.5 * 25 * 1) = trunc(7.5) = 7.
  EXPECT_EQ(ToView(150, 30, 100, 100, 25, eDropVertical, 1.5, 1.5, true), Point(75, 7));
  // trunc(1.5 * 99 - 150) = trunc(-1.5) = -1: toward zero.
  EXPECT_EQ(ToView(-1, -1, 100, 100, 0, eDropVertical, 1.5, 1.5, false), Point(-1, -1));
  // Horizontal fold: trunc(150 + 30 * 1.5 - 1.5 * 40 * 1) mod 150 = 135.
  EXPECT_EQ(ToView(130, 100, 100, 100, 40, eDropHorizontal, 1.5, 1.5, true), Point(135, 0));
}

TEST(RepeatCoordinates, FPToSnappedSPSpecExamples) {
  Screen s;
  s.zoomX = s.zoomY = 4;
  s.snap = 1;
  EXPECT_EQ(ToScreen(0, 0, s), Point(2, -1));  // +2 in x, -1 in y
  s.bottomUp = true;
  EXPECT_EQ(ToScreen(0, 0, s), Point(2, 478));  // 480 - 0 - 1, then the snap
  s.zoomX = s.zoomY = 1;
  EXPECT_EQ(ToScreen(0, 0, s), Point(0, 479));  // no snap at zoom 1
  s.bottomUp = false;
  EXPECT_EQ(ToScreen(0, 0, s), Point(0, 0));
}

TEST(RepeatCoordinates, FPToSnappedSPSnapOffsets) {
  Screen s;
  s.snap = 1;
  const struct {
    double zoom;
    Point want;
  } cases[] = {{1, {0, 0}},  {1.01, {1, 0}}, {2, {1, 0}},  {2.5, {1, 0}},
               {3, {2, -1}}, {4, {2, -1}},   {5, {3, -2}}, {8, {4, -3}}};
  for (const auto &c : cases) {
    s.zoomX = s.zoomY = c.zoom;
    EXPECT_EQ(ToScreen(0, 0, s), c.want) << "zoom " << c.zoom;
  }
  s.snap = 0;
  s.zoomX = s.zoomY = 8;
  EXPECT_EQ(ToScreen(0, 0, s), Point(0, 0));
  s.snap = 255;  // any non-zero value is on
  s.zoomY = 1;
  EXPECT_EQ(ToScreen(0, 0, s), Point(4, 0));  // only x is zoomed in
}

TEST(RepeatCoordinates, FPToSnappedSPScrollAndTruncation) {
  Screen s;
  s.zoomX = s.zoomY = 1.5;
  s.scrollX = s.scrollY = 2;
  EXPECT_EQ(ToScreen(1, 1, s), Point(0, 0));  // trunc(1.5 - 2): scroll before truncation
  s.scrollX = s.scrollY = 0;
  EXPECT_EQ(ToScreen(-1, -1, s), Point(-1, -1));  // trunc(-150 + 148.5)
  s.zoomX = s.zoomY = 2;
  s.scrollX = 5;
  s.scrollY = -3;
  EXPECT_EQ(ToScreen(10, 10, s), Point(15, 23));
  // The drop is not used, and both kinds are the same.
  for (unsigned drop : {0u, 17u, 99u}) {
    for (auto kind : {eDropVertical, eDropHorizontal}) {
      s.drop = drop;
      s.kind = kind;
      EXPECT_EQ(ToScreen(-250, 321, s), Point(-505, 645));
    }
  }
}

TEST(RepeatCoordinates, FPToSnappedSPAtWholeZoomsScalesAndScrolls) {
  Screen s;
  s.width = 37;
  s.height = 23;
  s.windowHeight = 600;
  for (int zoom : {1, 2, 5}) {
    s.zoomX = s.zoomY = zoom;
    for (bool bottomUp : {false, true}) {
      s.bottomUp = bottomUp;
      s.scrollX = -7 * zoom;
      s.scrollY = 11;
      for (int fx = -300; fx <= 300; fx += 7) {
        for (int fy = -300; fy <= 300; fy += 5) {
          const int y = fy * zoom - s.scrollY;
          ASSERT_EQ(ToScreen(fx, fy, s), Point(fx * zoom - s.scrollX, bottomUp ? 600 - y - 1 : y))
              << fx << ", " << fy;
        }
      }
    }
  }
}

TEST(RepeatCoordinates, FPToSnappedSPBottomUpTruncatesTo64Bits) {
  Screen s;
  s.height = 1000;
  s.zoomY = 3e9;  // the view repeat height overflows; repeatY is 0
  s.bottomUp = true;
  // t = 3e9: 480 - 3000000000 - 1, low 32 bits.
  EXPECT_EQ(ToScreen(0, 1, s).second, 1294967775);
  s.bottomUp = false;
  EXPECT_EQ(ToScreen(0, 1, s).second, INT_MIN);  // 32-bit truncation: 0x80000000
}

TEST(RepeatCoordinates, SnappedConversionsOfOtherKindsWriteNothing) {
  Screen s;
  s.zoomX = s.zoomY = 4;
  s.snap = 1;
  for (int kind : {0, 3, -1}) {
    s.kind = static_cast<_EDropKind>(kind);
    EXPECT_EQ(ToScreen(10, 10, s), Point(-12345, -12345));
    EXPECT_EQ(MMToScreen(10, 10, 1, 1, s), Point(-12345, -12345));
    int fxs[2] = {1, 2}, fys[2] = {3, 4}, sxs[2] = {7, 7}, sys[2] = {7, 7};
    int *px = sxs, *py = sys;
    FPToSnappedSP(fxs, fys, 2, &px, &py, 0, 0, 480, 100, 100, 0, s.kind, 4, 4, 1, false);
    double mxs[2] = {1, 2}, mys[2] = {3, 4};
    MMToSnappedSP(mxs, mys, 2, &px, &py, 0, 0, 480, 100, 100, 0, s.kind, 1, 1, 4, 4, 1, false);
    EXPECT_EQ(std::vector<int>(sxs, sxs + 2), std::vector<int>(2, 7));
    EXPECT_EQ(std::vector<int>(sys, sys + 2), std::vector<int>(2, 7));
  }
}

TEST(RepeatCoordinates, MMToSnappedSPMatchesFPToSnappedSPOnWholePixels) {
  std::mt19937 rng(12);
  std::uniform_int_distribution<int> pos(-2000, 2000);
  for (int round = 0; round < 40; ++round) {
    Screen s;
    s.width = 1 + rng() % 150;
    s.height = 1 + rng() % 150;
    s.kind = round % 2 ? eDropVertical : eDropHorizontal;
    const double zooms[] = {1, 2, 0.5, 1.5, 3.75, 8};
    s.zoomX = zooms[rng() % 6];
    s.zoomY = zooms[rng() % 6];
    s.scrollX = pos(rng);
    s.scrollY = pos(rng);
    s.snap = rng() % 2;
    s.bottomUp = rng() % 2;
    for (int i = 0; i < 200; ++i) {
      const int fx = pos(rng), fy = pos(rng);
      const Point want = ToScreen(fx, fy, s);
      ASSERT_EQ(MMToScreen(fx, fy, 1, 1, s), want) << fx << ", " << fy;
      ASSERT_EQ(MMToScreen(fx * 0.5, fy * 0.25, 2, 4, s), want) << fx << ", " << fy;
    }
  }
}

TEST(RepeatCoordinates, MMToSnappedSPPinnedCases) {
  Screen s;
  s.width = s.height = 10;
  s.zoomX = s.zoomY = 1.99;  // view repeat trunc(19.9) = 19
  s.scrollX = s.scrollY = 1;
  EXPECT_EQ(MMToScreen(0, 0, 1, 1, s), Point(-1, -1));
  // (v + 1) - 1 turns -1e-17 into 0 ...
  EXPECT_EQ(MMToScreen(-1e-17, -1e-17, 1, 1, s), Point(-1, -1));
  // ... but not -1e-15, which lies in repeat -1 at 10 - 1e-15:
  // trunc(19.9 - 19 - 1) = 0.
  EXPECT_EQ(MMToScreen(-1e-15, -1e-15, 1, 1, s), Point(0, 0));
  // -0.5 in a repeat of 3 at zoom 1.9 (view repeat 5): repeat -1, inside
  // 2.5, trunc(4.75 - 5) = 0.
  s.width = s.height = 3;
  s.zoomX = s.zoomY = 1.9;
  s.scrollX = s.scrollY = 0;
  EXPECT_EQ(MMToScreen(-0.5, -0.5, 1, 1, s), Point(0, 0));
  // Many repeats from 0: counted step by step.
  s.width = s.height = 7;
  s.zoomX = s.zoomY = 1;
  EXPECT_EQ(MMToScreen(1e6, -1e6, 1, 1, s), Point(1000000, -1000000));
  // Millimetres times the resolution.
  s.width = s.height = 100;
  EXPECT_EQ(MMToScreen(12.5, 7.25, 11.81, 11.81, s), Point(147, 85));
}

TEST(RepeatCoordinates, ArrayFormsMatchTheOnePointForms) {
  std::mt19937 rng(7);
  std::uniform_int_distribution<int> pos(-5000, 5000);
  std::uniform_real_distribution<double> mm(-400, 400);
  for (int round = 0; round < 60; ++round) {
    Screen s;
    s.width = 1 + rng() % 300;
    s.height = 1 + rng() % 300;
    s.drop = rng() % 300;
    s.kind = round % 2 ? eDropVertical : eDropHorizontal;
    s.zoomX = 0.1 + (rng() % 100) / 10.0;
    s.zoomY = 0.1 + (rng() % 100) / 10.0;
    s.scrollX = pos(rng);
    s.scrollY = pos(rng);
    s.windowHeight = rng() % 2000;
    s.snap = rng() % 3;
    s.bottomUp = rng() % 2;
    const double resX = 1 + (rng() % 1000) / 100.0, resY = 1 + (rng() % 1000) / 100.0;
    const int count = 1 + rng() % 50;
    std::vector<int> fxs(count), fys(count);
    std::vector<double> mxs(count), mys(count);
    for (int i = 0; i < count; ++i) {
      fxs[i] = pos(rng);
      fys[i] = pos(rng);
      mxs[i] = mm(rng);
      mys[i] = mm(rng);
    }
    std::vector<int> sxs(count + 1, -7), sys(count + 1, -7);
    int *px = sxs.data(), *py = sys.data();
    FPToSnappedSP(fxs.data(), fys.data(), count, &px, &py, s.scrollX, s.scrollY, s.windowHeight,
                  s.width, s.height, s.drop, s.kind, s.zoomX, s.zoomY, s.snap, s.bottomUp);
    EXPECT_EQ(px, sxs.data());  // the caller's pointers are left as they were
    EXPECT_EQ(sxs[count], -7);  // nothing past count
    EXPECT_EQ(sys[count], -7);
    for (int i = 0; i < count; ++i) {
      ASSERT_EQ(Point(sxs[i], sys[i]), ToScreen(fxs[i], fys[i], s)) << "round " << round;
    }
    MMToSnappedSP(mxs.data(), mys.data(), count, &px, &py, s.scrollX, s.scrollY, s.windowHeight,
                  s.width, s.height, s.drop, s.kind, resX, resY, s.zoomX, s.zoomY, s.snap,
                  s.bottomUp);
    EXPECT_EQ(sxs[count], -7);
    for (int i = 0; i < count; ++i) {
      ASSERT_EQ(Point(sxs[i], sys[i]), MMToScreen(mxs[i], mys[i], resX, resY, s))
          << "round " << round;
    }
  }
  // A count of 0 writes nothing.
  int fx = 3, fy = 3, sx = -7, sy = -7;
  int *px = &sx, *py = &sy;
  FPToSnappedSP(&fx, &fy, 0, &px, &py, 0, 0, 480, 100, 100, 0, eDropVertical, 1, 1, 0, false);
  double mx = 3, my = 3;
  MMToSnappedSP(&mx, &my, 0, &px, &py, 0, 0, 480, 100, 100, 0, eDropVertical, 1, 1, 1, 1, 0, false);
  EXPECT_EQ(Point(sx, sy), Point(-7, -7));
}

}  // namespace

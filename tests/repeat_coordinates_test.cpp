// View, file and screen coordinates: folds against the endless design, round trips, VPToFPDb's
// rounding, the unequal snap offsets and the bottom-up turn pinned, array forms against one point.
#include <climits>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

#include "repeat_test_util.h"

namespace {

using repeat_test::Point;
using repeat_test::RefFold;

struct Scene {  // the tile and zoom; for the screen also scroll, window, snap and turn
  unsigned width, height, drop;
  double zoomX, zoomY;
  _EDropKind kind = eDropVertical;
  int scrollX = 0, scrollY = 0;
  unsigned windowHeight = 480;
  unsigned char snap = 0;
  bool bottomUp = false;
};

// VPToFP, or VPToFPDb with db = {dropRatio, repeatWidthExact, repeatHeightExact}.
Point ToFile(int vx, int vy, const Scene &s, bool fold, const double *db = nullptr) {
  Point f{-7, -7};
  if (db)
    VPToFPDb(vx, vy, &f.first, &f.second, s.width, s.height, db[0], db[1], db[2], s.kind, s.zoomX,
             s.zoomY, fold);
  else
    VPToFP(vx, vy, &f.first, &f.second, s.width, s.height, s.drop, s.kind, s.zoomX, s.zoomY, fold);
  return f;
}

Point ToView(int fx, int fy, const Scene &s, bool fold) {
  Point v{-7, -7};
  FPToVP(fx, fy, &v.first, &v.second, s.width, s.height, s.drop, s.kind, s.zoomX, s.zoomY, fold);
  return v;
}

// FPToSnappedSP, or MMToSnappedSP at resolutions 2 and 4 when mm.
Point ToScreen(double x, double y, const Scene &s, bool mm = false) {
  Point p{-7, -7};
  if (mm)
    MMToSnappedSP(x, y, &p.first, &p.second, s.scrollX, s.scrollY, s.windowHeight, s.width,
                  s.height, s.drop, s.kind, 2, 4, s.zoomX, s.zoomY, s.snap, s.bottomUp);
  else
    FPToSnappedSP(int(x), int(y), &p.first, &p.second, s.scrollX, s.scrollY, s.windowHeight,
                  s.width, s.height, s.drop, s.kind, s.zoomX, s.zoomY, s.snap, s.bottomUp);
  return p;
}

TEST(RepeatCoordinates, VPToFPFoldsAsTheEndlessDesign) {
  EXPECT_EQ(ToFile(-1, 0, {100, 100, 0, 2, 2}, false), Point(-1, 0));  // 99 - 100
  EXPECT_EQ(ToFile(-1, 299, {100, 100, 0, 1.5, 1.5}, false), Point(-1, 199));
  const Scene views[] = {
      {100, 80, 40, 1, 1}, {100, 80, 33, 0.5, 0.25}, {37, 23, 5, 1.5, 3.25}, {64, 64, 63, 4, 0.75}};
  for (Scene v : views) {
    const double db[] = {v.drop / 80.0, 80, 80};  // VPToFPDb rounds it to the same drop
    for (int vx = -1000; vx <= 1000; vx += 7)
      for (int vy = -1000; vy <= 1000; vy += 11)
        for (auto kind : {eDropVertical, eDropHorizontal}) {
          v.kind = kind;
          const Point endless = ToFile(vx, vy, v, false), folded = ToFile(vx, vy, v, true);
          ASSERT_EQ(folded, RefFold(endless.first, endless.second, v.width, v.height, v.drop, kind))
              << vx << ", " << vy;
          ASSERT_EQ(ToFile(vx, vy, v, true, db), folded) << vx << ", " << vy;
        }
  }
  // A step of 0.25 * 10 = 2.5 rounds half away from zero: 3, -3 (SetInRappDb truncates: 2).
  const double vertical[] = {0.25, 1, 10}, horizontal[] = {0.25, 10, 1};
  EXPECT_EQ(ToFile(100, 5, {100, 10, 0, 1, 1}, true, vertical), Point(0, 2));
  EXPECT_EQ(ToFile(-100, 5, {100, 10, 0, 1, 1}, true, vertical), Point(0, 8));
  EXPECT_EQ(ToFile(5, 10, {10, 10, 0, 1, 1, eDropHorizontal}, true, horizontal), Point(2, 0));
}

TEST(RepeatCoordinates, FPToVPAndFPToSnappedSPInvertVPToFP) {
  const Point far(INT_MIN + 100, INT_MAX);
  EXPECT_EQ(ToView(far.first, far.second, {100, 80, 0, 1, 1}, false), far);
  EXPECT_EQ(ToFile(far.first, far.second, {100, 80, 0, 1, 1}, false), far);
  // Fractional zoom: trunc(150 + 45 - 1.5 * 40 * 1) mod 150.
  EXPECT_EQ(ToView(130, 100, {100, 100, 40, 1.5, 1.5, eDropHorizontal}, true), Point(135, 0));
  for (int zoom : {1, 2, 3})
    for (int fx = -500; fx <= 500; fx += 3)
      for (int fy = -500; fy <= 500; fy += 7)
        for (auto kind : {eDropVertical, eDropHorizontal}) {
          const bool up = kind == eDropHorizontal;  // screen: the view less the scroll, turned
          const Scene s = {37, 23, 5, double(zoom), double(zoom), kind, -7, 11, 480, 0, up};
          const Point v = ToView(fx, fy, s, false), t = RefFold(fx, fy, 37, 23, 5, kind);
          const int y = v.second - 11;
          ASSERT_EQ(ToFile(v.first, v.second, s, false), Point(fx, fy)) << fx << ", " << fy;
          ASSERT_EQ(ToView(fx, fy, s, true), Point(t.first * zoom, t.second * zoom));
          ASSERT_EQ(ToScreen(fx, fy, s), Point(v.first + 7, up ? 480 - y - 1 : y));
        }
}

TEST(RepeatCoordinates, SnapOffsetsAreUnequalAndBottomUpTurns) {
  const double zooms[][3] = {
      // zoom; then x + trunc(zoom / 2 + 0.5), y - trunc(zoom / 2 - 0.5)
      {1, 0, 0}, {1.01, 1, 0}, {2, 1, 0}, {3, 2, -1}, {4, 2, -1}, {8, 4, -3}};
  for (const auto &z : zooms) {
    const Scene s = {100, 100, 0, z[0], z[0], eDropVertical, 0, 0, 480, 1, false};
    EXPECT_EQ(ToScreen(0, 0, s), Point(z[1], z[2])) << z[0];
  }
  // Bottom-up: 480 - 0 - 1, then the same snap up.
  EXPECT_EQ(ToScreen(0, 0, {100, 100, 0, 4, 4, eDropVertical, 0, 0, 480, 1, true}), Point(2, 478));
  // trunc(1.5 - 2): the scroll is taken off before truncating.
  EXPECT_EQ(ToScreen(1, 1, {100, 100, 0, 1.5, 1.5, eDropVertical, 2, 2}), Point(0, 0));
  // t = 3e9 - 2 truncates to 64 bits: the low 32 bits of 480 - t - 1.
  const Scene tall = {100, 100, 0, 1, 3e9, eDropVertical, 2, 2, 480, 0, true};
  EXPECT_EQ(ToScreen(0, 1, tall).second, 1294967777);
  for (int kind : {0, 3, -1}) {  // other kinds: zeros, or nothing written
    const Scene s = {100, 100, 10, 0.001, 0.001, static_cast<_EDropKind>(kind)};  // no fault
    EXPECT_TRUE(ToFile(57, -9, s, false) == Point(0, 0) && ToView(57, -9, s, true) == Point(0, 0));
    EXPECT_TRUE(ToScreen(10, 10, s) == Point(-7, -7) && ToScreen(10, 10, s, true) == Point(-7, -7));
  }
}

TEST(RepeatCoordinates, MillimetresAndArrayFormsMatchTheOnePointFileForm) {
  std::mt19937 rng(12);
  std::uniform_int_distribution<int> pos(-2000, 2000);
  const double zooms[] = {1, 2, 0.5, 1.5, 3.75, 8, 0.3};
  const _EDropKind kinds[] = {eDropVertical, eDropHorizontal, eDropNone, _EDropKind(3)};
  for (int round = 0; round < 80; ++round) {
    const Scene s = {1 + unsigned(rng() % 150),
                     1 + unsigned(rng() % 150),
                     unsigned(rng() % 150),
                     zooms[rng() % 7],
                     zooms[rng() % 7],
                     kinds[round % 4],
                     pos(rng),
                     pos(rng),
                     unsigned(rng() % 2000),
                     static_cast<unsigned char>(rng() % 3),
                     rng() % 2 == 0};
    const int count = round % 20;  // 0 included
    std::vector<int> fxs(count), fys(count), out[4];
    std::vector<double> mxs(count), mys(count);  // millimetres, at resolutions 2 and 4
    for (int i = 0; i < count; ++i) fxs[i] = pos(rng), fys[i] = pos(rng);
    for (int i = 0; i < count; ++i) mxs[i] = fxs[i] / 2.0, mys[i] = fys[i] / 4.0;
    for (auto &o : out) o.assign(count + 1, -7);
    int *p[4] = {out[0].data(), out[1].data(), out[2].data(), out[3].data()};
    FPToSnappedSP(fxs.data(), fys.data(), count, &p[0], &p[1], s.scrollX, s.scrollY, s.windowHeight,
                  s.width, s.height, s.drop, s.kind, s.zoomX, s.zoomY, s.snap, s.bottomUp);
    MMToSnappedSP(mxs.data(), mys.data(), count, &p[2], &p[3], s.scrollX, s.scrollY, s.windowHeight,
                  s.width, s.height, s.drop, s.kind, 2, 4, s.zoomX, s.zoomY, s.snap, s.bottomUp);
    for (int i = 0; i <= count; ++i) {  // nothing written past count
      const Point want = i < count ? ToScreen(fxs[i], fys[i], s) : Point(-7, -7);
      const Point mm = i < count ? ToScreen(mxs[i], mys[i], s, true) : want;
      ASSERT_TRUE(Point(out[0][i], out[1][i]) == want && Point(out[2][i], out[3][i]) == want &&
                  mm == want)
          << round << ", " << i;
    }
  }
  // (v + 1) - 1 turns -1e-17 into 0, but -1e-15 stays in repeat -1:
  // trunc((10 - 1e-15) * 1.99 - 19 - 1) = 0.
  const Scene s = {10, 10, 0, 1.99, 1.99, eDropVertical, 1, 1};
  EXPECT_EQ(ToScreen(-1e-17, -1e-17, s, true), Point(-1, -1));
  EXPECT_EQ(ToScreen(-1e-15 / 2, -1e-15 / 4, s, true), Point(0, 0));
  // A million repeats of 7, counted step by step.
  EXPECT_EQ(ToScreen(5e5, -2.5e5, {7, 7, 0, 1, 1}, true), Point(1000000, -1000000));
}

// The repeat count of MMToSnappedSP is the count of steps of the repeat size
// (in a 32-bit counter) however far the point lies, and every call returns at
// once: beyond 2^53 file pixels the rounded quotient, no repeats for a
// position that is not finite.
TEST(RepeatCoordinates, MillimetreRepeatCountIsTheSteppedCountInBoundedTime) {
  const auto stepped = [](double v, double p) {  // the count, one repeat at a time
    std::uint32_t steps = 0;
    double rest = v;
    if (v < 0) {
      for (; rest < 0; rest += p) ++steps;
      return int(0u - steps);
    }
    for (; rest > 0; rest -= p) ++steps;
    return int(rest < 0 ? steps - 1 : steps);
  };
  std::mt19937 rng(5);
  for (int round = 0; round < 400; ++round) {
    const unsigned width = 1 + rng() % 997, height = 1 + rng() % 997;
    // Near multiples of the size, where the count turns.
    const double nudges[] = {0, 1e-9, -1e-9, 0.5, -0.25, 1e-12};
    const double k = double(int(rng() % 400001) - 200000);
    const double px = k * width + nudges[rng() % 6], py = -k * height + nudges[rng() % 6];
    const Scene s = {width, height, 0, 1, 1};
    const auto expect = [](double v, double size, int count) {  // zoom 1, no scroll, no snap
      return int(v - std::floor(v / size) * size + double(count) * size);
    };
    ASSERT_EQ(ToScreen(px / 2, py / 4, s, true),
              Point(expect(px, width, stepped(px, width)), expect(py, height, stepped(py, height))))
        << px << ", " << py << " in " << width << " x " << height;
  }
  const double far = 72057594037927968.0;  // 2^56 + 32 file pixels: 2^54 + 8 repeats of 4
  EXPECT_EQ(ToScreen(far / 2, -far / 4, {4, 4, 0, 1, 1}, true), Point(32, -32));
  const double inf = std::numeric_limits<double>::infinity();
  for (double v : {inf, -inf, std::nan("")})
    EXPECT_EQ(ToScreen(v, v, {7, 7, 0, 1, 1, eDropVertical, 0, 0, 480, 3}, true),
              Point(INT_MIN, INT_MIN));
}

}  // namespace

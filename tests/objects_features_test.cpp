// Feature extraction: measures of labelled shapes, worked orientations, the
// Escape abort, temporaries returned, and the overlay factor.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdlib>
#include <random>
#include <vector>

#include "Ostrel.h"
#include "VornelMemMgr.h"
#include "counting_mem_mgr.h"

namespace {

const double kPi = 3.14159265358979323846;

// A w x h label buffer with rectangles [x0, x1) x [y0, y1) of the given labels.
struct Rect {
  int x0, y0, x1, y1, label;
};
std::vector<int> Labels(int w, int h, const std::vector<Rect> &rects) {
  std::vector<int> b(w * h, 0);
  for (const Rect &r : rects)
    for (int y = r.y0; y < r.y1; ++y)
      for (int x = r.x0; x < r.x1; ++x) b[y * w + x] = r.label;
  return b;
}

int Extract(std::vector<int> &labels, int w, int h, int top, int *values, int first, int n,
            SFeature *f, int needed, unsigned char *aborted) {
  return MultiObjectFeatureExtract<int>(labels.data(), w, h, 0, top, w, h, values, first, n, f,
                                        static_cast<EFeaturesNeeded>(needed), aborted);
}

TEST(ObjectsFeatures, RectanglesCountsCentroidsPerimetersHistograms) {
  const int w = 20, h = 12;
  // Labels 3 and 4; 5 only in the unvisited last row; 2 and 6 out of range.
  // clang-format off
  std::vector<int> labels =
      Labels(w, h, {{2, 2, 6, 5, 3}, {8, 3, 15, 10, 4}, {16, 1, 18, 2, 6}, {1, 1, 2, 2, 2},
                    {0, h - 1, w, h, 5}});
  // clang-format on
  std::vector<int> values(w * h);
  for (int i = 0; i < w * h; ++i) values[i] = i % 7;
  std::vector<SFeature> f(3);
  f[2].centroidX = 3, f[1].histogram[200] = 5;  // overwritten
  unsigned char aborted = 9;
  const int needed = eFeatureBasic | eFeatureCentroid | eFeatureHistogram;
  EXPECT_EQ(Extract(labels, w, h, 0, values.data(), 3, 3, nullptr, needed, &aborted), -1);
  EXPECT_EQ(Extract(labels, w, h, 0, values.data(), 3, 3, f.data(), needed, nullptr), -1);
  EXPECT_EQ(Extract(labels, w, h, 0, values.data(), 3, 0, f.data(), needed, &aborted), 0);
  ASSERT_EQ(Extract(labels, w, h, 0, values.data(), 3, 3, f.data(), needed, &aborted), 0);
  // count, centroid x and y, perimeter (the closing contour step uncounted)
  const struct {
    int count;
    double cx, cy, perimeter;
  } want[] = {{12, 4.0, 3.5, 9.0}, {49, 11.5, 6.5, 23.0}, {0, 0.0, 0.0, 0.0}};
  for (int k = 0; k < 3; ++k) {
    EXPECT_EQ(f[k].pixelCount, want[k].count) << k;
    EXPECT_DOUBLE_EQ(f[k].centroidX, want[k].cx) << k;
    EXPECT_DOUBLE_EQ(f[k].centroidY, want[k].cy) << k;
    EXPECT_EQ(f[k].perimeter, want[k].perimeter) << k;
    EXPECT_EQ(f[k].orientation, 0.0);
    int expected[256] = {};
    for (int i = 0; i < w * h; ++i) expected[values[i]] += labels[i] == 3 + k && i / w < h - 1;
    for (int v = 0; v < 256; ++v) ASSERT_EQ(f[k].histogram[v], expected[v]) << k;
  }
  EXPECT_DOUBLE_EQ(f[1].roundness, 23.0 / (2 * kPi * std::sqrt(49 / kPi)));
  // Without the centroid bit the centroid is zeroed and the histogram kept.
  f[0].histogram[0] = 77;
  ASSERT_EQ(Extract(labels, w, h, 0, values.data(), 3, 1, f.data(), eFeatureBasic, &aborted), 0);
  EXPECT_EQ(f[0].centroidX, 0.0);
  EXPECT_EQ(f[0].histogram[0], 77);
}

TEST(ObjectsFeatures, DiscPerimeterAndRoundnessNearIdeal) {
  const int r = 30, n = 2 * r + 6, c = n / 2;
  std::vector<int> labels(n * n);
  for (int i = 0; i < n * n; ++i)
    labels[i] = (i % n - c) * (i % n - c) + (i / n - c) * (i / n - c) <= r * r;
  SFeature f;
  unsigned char aborted;
  ASSERT_EQ(Extract(labels, n, n, 0, labels.data(), 1, 1, &f, eFeatureBasic, &aborted), 0);
  EXPECT_NEAR(f.pixelCount, kPi * r * r, 0.02 * kPi * r * r);
  EXPECT_NEAR(f.perimeter, 2 * kPi * r, 0.05 * 2 * kPi * r);
  EXPECT_GT(f.roundness, 0.95);
  EXPECT_LT(f.roundness, 1.12);
}

// N = 360, E = 45: the first start s of the heaviest window s-36 .. s+35, less pi.
TEST(ObjectsFeatures, OrientationWorkedExamples) {
  ASSERT_EQ(InitFeatureTables(1, 360.0), 0);
  EXPECT_EQ(InitFeatureTables(2, 90.0), -1);  // tables kept
  const double scale = 360 / (2 * kPi);
  const int all = eFeatureBasic | eFeatureCentroid | eFeatureOrientation;
  const struct {
    const char *what;
    std::vector<Rect> rects;
    int top;
    double bin;
  } cases[] = {
      {"single pixel: every window weighs 0", {{3, 4, 4, 5, 1}}, 0, 0},
      // (0, +-0.5) -> (0, 0.5): steep, bin 2E + T[0].
      {"vertical pair", {{3, 4, 4, 6, 1}}, 0, 90 - 35},
      // The region's top shifts dy to 2: (0.5, 2), bin 2E - T[11] = 76.
      {"horizontal pair, region at row 2", {{3, 4, 5, 5, 1}}, 2, 76 - 35},
      // (-1, 1): bin T[E] + 3E, not 4E - T[E]; (2, 0): bin 8E, read by no window.
      {"diagonal bin", {{6, 2, 7, 3, 1}, {2, 4, 3, 5, 1}}, 0, 180 - 35},
      // Three pixels whose heaviest window starts on a filled bin.
      {"three pixels, region at row 2", {{4, 3, 5, 4, 1}, {6, 4, 7, 5, 1}, {1, 6, 2, 7, 1}}, 2, 44},
  };
  SFeature f;
  unsigned char aborted;
  for (const auto &c : cases) {
    std::vector<int> labels = Labels(10, 10, c.rects);
    ASSERT_EQ(Extract(labels, 10, 10, c.top, labels.data(), 1, 1, &f, all, &aborted), 0);
    EXPECT_DOUBLE_EQ(f.orientation, c.bin / scale - kPi) << c.what;
  }
  // Many objects at once, each measured over its own pixels only: a grid of
  // the worked pairs (a vertical pair's second pixel in its last row, a
  // horizontal pair's in its last column; the horizontal ones with the region
  // at row 2), every other object a single pixel, and objects past the last
  // label, which have no pixels and weigh 0.
  for (bool vertical : {true, false}) {
    std::vector<Rect> rects;
    for (int k = 0; k < 300; ++k) {
      const int x = k % 20 * 3, y = k / 20 * 3 + 2, size = k % 2 ? 1 : 2;  // all in the region
      rects.push_back({x, y, x + (vertical ? 1 : size), y + (vertical ? size : 1), 1 + k});
    }
    std::vector<int> labels = Labels(60, 48, rects);
    std::vector<SFeature> many(310);
    ASSERT_EQ(MultiObjectFeatureExtract<int>(labels.data(), 60, 48, 0, vertical ? 0 : 2, 60, 48,
                                             labels.data(), 1, 310, many.data(),
                                             static_cast<EFeaturesNeeded>(all), &aborted),
              0);
    for (int k = 0; k < 310; ++k) {
      // A single pixel weighs 0 at region row 0 and lies straight below its
      // centroid (0, 2) at row 2, like the vertical pair.
      const double bin = k >= 300                  ? 0
                         : k % 2 == 0 && !vertical ? 76 - 35
                         : k % 2 && vertical       ? 0
                                                   : 90 - 35;
      ASSERT_DOUBLE_EQ(many[k].orientation, bin / scale - kPi) << "object " << k;
    }
  }
  EXPECT_EQ(ReleaseFeatureTables(), 0);
  // N = 10 (E = 1, window s: bins s - 1 and s), a 4 x 3 rectangle at (1, 1):
  // offsets (1.5 | 0.5 | 0.5 | -0.5, 1 | 0 | 0) fill four of the ten bins,
  // 1 (5.75), 3 (1.25), 4 (0.5) and 8 (5.5); windows 1 and 2 both weigh
  // 5.75 and the first wins.
  EXPECT_EQ(InitFeatureTables(2, 10.0), 0);
  std::vector<int> rect = Labels(10, 10, {{1, 1, 5, 4, 1}});
  ASSERT_EQ(Extract(rect, 10, 10, 0, rect.data(), 1, 1, &f, all, &aborted), 0);
  EXPECT_DOUBLE_EQ(f.orientation, 1 / (10 / (2 * kPi)) - kPi);
  EXPECT_EQ(ReleaseFeatureTables(), 0);
  // Without tables the orientation stops the process like a division by zero.
  std::vector<int> labels = Labels(10, 10, {{3, 4, 4, 5, 1}});
  EXPECT_DEATH(Extract(labels, 10, 10, 0, labels.data(), 1, 1, &f, all, &aborted), "");
}

// angleSteps from 7.5 (N = 8, E = 1) to 36000; a refused call leaves no
// tables behind and no marker, so the next good one builds them. A 3 x 2
// object in a 6 x 6 byte buffer at both bounds: offsets (1, 0.5) twice and
// (0, 0.5) four times. N = 8 leaves the window no bins (N / 10 = 0), so
// every start weighs 0 and the first wins: -pi. At N = 36000 the two bins
// are 2657 and 2E = 9000, and the first window s-3600 .. s+3599 holding both
// starts at 5401.
TEST(ObjectsFeatures, AngleStepsRangeAndBothBounds) {
  for (const double steps :
       {std::nextafter(7.5, 0.0), 4.0, 0.4, 0.0, -8.0, std::nextafter(36000.0, 1e9), 1e300,
        HUGE_VAL, -HUGE_VAL, std::nan("")})
    EXPECT_EQ(InitFeatureTables(1, steps), -1) << steps;
  EXPECT_EQ(InitFeatureTables(0, 360.0), -1);
  std::vector<unsigned char> labels(36, 0);
  for (int i : {7, 8, 9, 13, 14, 15}) labels[i] = 1;
  SFeature f;
  unsigned char aborted;
  for (const double steps : {7.5, 36000.0}) {
    ASSERT_EQ(InitFeatureTables(1, steps), 0) << steps;
    ASSERT_EQ(
        MultiObjectFeatureExtract<unsigned char>(labels.data(), 6, 6, 0, 0, 6, 6, labels.data(), 1,
                                                 1, &f, static_cast<EFeaturesNeeded>(7), &aborted),
        0);
    EXPECT_DOUBLE_EQ(f.orientation, steps < 10 ? -kPi : 5401 / (steps / (2 * kPi)) - kPi);
    EXPECT_EQ(ReleaseFeatureTables(), 0);
  }
}

// A one-pixel object at (0, 0) of an exact-size buffer: its contour reads
// nothing before the buffer.
TEST(ObjectsFeatures, ObjectInTheFirstRow) {
  std::vector<unsigned char> labels(4 * 3, 0);
  labels[0] = 1;
  SFeature f;
  unsigned char aborted;
  ASSERT_EQ(MultiObjectFeatureExtract<unsigned char>(labels.data(), 4, 3, 0, 0, 4, 3, labels.data(),
                                                     1, 1, &f, eFeatureBasic, &aborted),
            0);
  EXPECT_EQ(f.pixelCount, 1);
  EXPECT_EQ(f.perimeter, 0.0);
}

int g_polls = 0, g_pressAfter = 0;
int PressAfterPolls(int key) {
  EXPECT_EQ(key, 27);
  return ++g_polls > g_pressAfter ? 1 : 0;
}

TEST(ObjectsFeatures, EscapeAbortsAndTemporariesGoBack) {
  CountingMemMgr manager;
  IMemMgr *previous = DllSetMemMgr(&manager);
  const int w = 12, h = 9, pixels = (w - 1) * (h - 1);  // the last row and column unvisited
  std::vector<int> labels = Labels(w, h, {{2, 2, 8, 6, 1}});
  SFeature f;
  unsigned char aborted = 0;
  const int needed = eFeatureBasic | eFeatureCentroid;
  const OstrelKeyStateQuery before = SetKeyStateQuery(PressAfterPolls);
  for (const int after : {0, 40, pixels - 1, pixels}) {  // one poll per pixel up to the first press
    g_polls = 0, g_pressAfter = after;
    const bool pressed = after < pixels;
    EXPECT_EQ(Extract(labels, w, h, 0, labels.data(), 1, 1, &f, needed, &aborted), pressed ? -1 : 0)
        << after;
    EXPECT_EQ(aborted, pressed ? 1 : 0);
    EXPECT_EQ(g_polls, pressed ? after + 1 : pixels);
    EXPECT_EQ(manager.out, 0);
  }
  EXPECT_EQ(f.pixelCount, 24);
  SetKeyStateQuery(before);
  manager.failing = true;
  EXPECT_EQ(Extract(labels, w, h, 0, labels.data(), 1, 1, &f, needed, &aborted), -1);
  EXPECT_EQ(manager.out, 0);
  DllSetMemMgr(previous);
}

// Random objects of three labels that touch every edge, in regions at and
// away from the origin, measured whole and cut short by Escape after a
// random number of pixels: each met object has FollowContour's perimeter
// from its first pixel and the count and histogram of the pixels scanned
// before the press; an object not met has an empty histogram. Measured
// whole, each object's orientation is the one it has when measured alone.
template <class T>
void MeasureRandomObjects(std::mt19937 &rng) {
  const int w = 3 + rng() % 20, h = 3 + rng() % 20, left = rng() % 3 % (w - 1),
            top = rng() % 3 % (h - 1), rw = w - 1 - left - rng() % 2, rh = h - 1 - top - rng() % 2;
  const T first = static_cast<T>(sizeof(T) == 1 ? 253 : -1);
  std::vector<T> labels(w * h), values(w * h);
  for (int i = 0; i < w * h; ++i)
    labels[i] = static_cast<T>(rng() % 5 < 3 ? first + rng() % 3 : 7), values[i] = rng() % 256;
  const bool whole = rng() % 2;
  g_polls = 0, g_pressAfter = whole ? INT_MAX : rng() % (rw * rh + 1);
  std::vector<SFeature> f(4);
  for (SFeature &g : f) std::fill(std::begin(g.histogram), std::end(g.histogram), -1);
  unsigned char aborted;
  const int result = MultiObjectFeatureExtract<T>(
      labels.data(), w, h, left, top, rw, rh, values.data(), first, 4, f.data(),
      static_cast<EFeaturesNeeded>(whole ? 39 : eFeatureBasic | eFeatureHistogram), &aborted);
  ASSERT_EQ(result, g_pressAfter < rw * rh ? -1 : 0);
  for (int k = 0; k < 3 && whole; ++k) {
    SFeature alone;
    ASSERT_EQ(MultiObjectFeatureExtract<T>(labels.data(), w, h, left, top, rw, rh, values.data(),
                                           static_cast<T>(first + k), 1, &alone,
                                           static_cast<EFeaturesNeeded>(7), &aborted),
              0);
    EXPECT_EQ(alone.orientation, f[k].orientation) << k;
  }
  for (int k = 0; k < 4; ++k) {
    std::vector<int> hist(256);
    int count = 0, scanned = 0;
    for (int y = top; y < top + rh; ++y)
      for (int x = left; x < left + rw && scanned++ < g_pressAfter; ++x) {
        if (labels[y * w + x] != static_cast<T>(first + k)) continue;
        if (count++ == 0) {
          EXPECT_EQ(f[k].perimeter,
                    FollowContour<T>(labels.data(), &labels[y * w + x], w, h, left, top, rw, rh,
                                     labels[y * w + x], nullptr, nullptr));
        }
        ++hist[values[y * w + x]];
      }
    if (result == 0) { EXPECT_EQ(f[k].pixelCount, count); }
    for (int v = 0; v < 256; ++v) ASSERT_EQ(f[k].histogram[v], hist[v]) << k << " " << v;
  }
}

TEST(ObjectsFeatures, RandomObjectsMatchContourAndDirectCounts) {
  const OstrelKeyStateQuery before = SetKeyStateQuery(PressAfterPolls);
  std::mt19937 rng(5);
  for (int i = 0; i < 400; ++i) {
    if (i % 100 == 0) {
      ReleaseFeatureTables();
      ASSERT_EQ(InitFeatureTables(1, std::vector<double>{10, 40, 360, 36000}[i / 100]), 0);
    }
    MeasureRandomObjects<unsigned char>(rng);
    MeasureRandomObjects<int>(rng);
  }
  ReleaseFeatureTables();
  SetKeyStateQuery(before);
}

// Values outside 0 .. 255 under an object have no bin and are not counted;
// an object count whose doubles size_t cannot hold (32-bit builds) asks the
// memory manager for nothing; a width of INT_MIN clamps no region.
TEST(ObjectsFeatures, ValuesOutsideTheHistogramAndHugeCounts) {
  std::vector<int> labels = Labels(4, 3, {{0, 0, 3, 2, 1}}), values = {-1, 256, 300, 0, 7, 255, 7};
  values.resize(12);
  std::vector<SFeature> f(1);
  unsigned char aborted;
  ASSERT_EQ(Extract(labels, 4, 3, 0, values.data(), 1, 1, f.data(),
                    eFeatureBasic | eFeatureHistogram, &aborted),
            0);
  int counted = 0;
  for (int v = 0; v < 256; ++v) counted += f[0].histogram[v];
  EXPECT_EQ(counted, 3);
  EXPECT_EQ(f[0].histogram[7], 2);
  EXPECT_EQ(f[0].histogram[255], 1);
  CountingMemMgr manager;
  manager.failing = true;
  IMemMgr *previous = DllSetMemMgr(&manager);
  EXPECT_EQ(MultiObjectFeatureExtract<int>(labels.data(), 4, 3, 0, 0, 4, 3, values.data(), 1,
                                           INT_MAX, f.data(), eFeatureBasic, &aborted),
            -1);
  if (sizeof(std::size_t) < 8) { EXPECT_EQ(manager.requests, 0); }
  DllSetMemMgr(previous);
  EXPECT_EQ(MultiObjectFeatureExtract<int>(labels.data(), INT_MIN, 3, 0, 0, 4, 3, values.data(), 1,
                                           1, f.data(), eFeatureBasic, &aborted),
            0);
  EXPECT_EQ(f[0].pixelCount, 0);
}

// An empty table is not read; (count - 1) * 100 is taken in 64 bits, so a
// table of 21474838 entries interpolates as a short one does.
TEST(ObjectsFeatures, InterpolatedOverlayFactor) {
  double two[] = {0, 100}, four[] = {10, 40, 40, 100};
  EXPECT_FLOAT_EQ(GetInterpolatedOverlayFactor(50, two, 2), 0.5f);
  const struct {
    int value;
    float factor;
  } cases[] = {{-5, .1f}, {0, .1f}, {25, .175f}, {150, .4f}, {250, .7f}, {300, 1}, {999, 1}};
  for (const auto &c : cases)
    EXPECT_FLOAT_EQ(GetInterpolatedOverlayFactor(c.value, four, 4), c.factor) << c.value;
  EXPECT_EQ(GetInterpolatedOverlayFactor(50, nullptr, 0), 0.0f);
  EXPECT_EQ(GetInterpolatedOverlayFactor(-5, nullptr, -3), 0.0f);
  std::vector<double> steps(21474838);
  for (std::size_t i = 0; i < steps.size(); ++i) steps[i] = 10.0 * i;
  EXPECT_FLOAT_EQ(GetInterpolatedOverlayFactor(150, steps.data(), 4), .15f);
  for (const int value : {150, 250})
    EXPECT_EQ(GetInterpolatedOverlayFactor(value, steps.data(), 21474838),
              GetInterpolatedOverlayFactor(value, steps.data(), 4))
        << value;
}

}  // namespace

// Feature extraction: counts, centroids, perimeters and histograms of
// labelled shapes with the label range and the refusals, the roundness of a
// disc, worked orientations, the Escape abort through a host key query,
// temporaries returned to the memory manager, and the overlay factor.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <vector>

#include "Ostrel.h"
#include "VornelMemMgr.h"

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

TEST(ObjectsFeatures, RectanglesCountsCentroidsPerimetersHistograms) {
  const int w = 20, h = 12;
  // Labels 3 and 4, then 5 only in the last row (never visited), 2 and 9
  // outside the range 3 .. 5.
  std::vector<int> labels = Labels(w, h, {{2, 2, 6, 5, 3}, {8, 3, 15, 10, 4}, {16, 1, 18, 2, 9},
                                          {1, 1, 2, 2, 2}, {0, h - 1, w, h, 5}});
  std::vector<int> values(w * h);
  for (int i = 0; i < w * h; ++i) values[i] = i % 7;
  std::vector<SFeature> f(3);
  f[2].centroidX = 3;
  unsigned char aborted = 9;
  const auto needed = static_cast<EFeaturesNeeded>(eFeatureBasic | eFeatureCentroid | eFeatureHistogram);
  EXPECT_EQ(MultiObjectFeatureExtract<int>(labels.data(), w, h, 0, 0, w, h, values.data(), 3, 3,
                                           nullptr, needed, &aborted), -1);
  EXPECT_EQ(MultiObjectFeatureExtract<int>(labels.data(), w, h, 0, 0, w, h, values.data(), 3, 0,
                                           f.data(), needed, &aborted), 0);
  ASSERT_EQ(MultiObjectFeatureExtract<int>(labels.data(), w, h, 0, 0, w, h, values.data(), 3, 3,
                                           f.data(), needed, &aborted),
            0);
  EXPECT_EQ(aborted, 0);
  EXPECT_EQ(f[2].pixelCount, 0);
  EXPECT_EQ(f[2].centroidX, 0.0);
  EXPECT_EQ(f[0].pixelCount, 12);
  EXPECT_EQ(f[1].pixelCount, 49);
  EXPECT_DOUBLE_EQ(f[0].centroidX, 4.0);  // columns 2..5, + 0.5
  EXPECT_DOUBLE_EQ(f[0].centroidY, 3.5);
  EXPECT_DOUBLE_EQ(f[1].centroidX, 11.5);
  EXPECT_DOUBLE_EQ(f[1].centroidY, 6.5);
  EXPECT_EQ(f[0].perimeter, 9.0);  // 2 * 3 + 2 * 2 steps, closing one not counted
  EXPECT_EQ(f[1].perimeter, 23.0);
  EXPECT_DOUBLE_EQ(f[1].roundness, 23.0 / (2 * kPi * std::sqrt(49 / kPi)));
  EXPECT_EQ(f[0].orientation, 0.0);
  for (int k = 0; k < 2; ++k) {
    int expected[7] = {};
    for (int i = 0; i < w * h; ++i)
      if (labels[i] == 3 + k) ++expected[values[i]];
    for (int v = 0; v < 256; ++v) ASSERT_EQ(f[k].histogram[v], v < 7 ? expected[v] : 0) << k;
  }
  // Without the centroid bit the centroid is zeroed and the histogram kept.
  f[0].histogram[0] = 77;
  ASSERT_EQ(MultiObjectFeatureExtract<int>(labels.data(), w, h, 0, 0, w, h, values.data(), 3, 1,
                                           f.data(), eFeatureBasic, &aborted),
            0);
  EXPECT_EQ(f[0].centroidX, 0.0);
  EXPECT_EQ(f[0].histogram[0], 77);
}

TEST(ObjectsFeatures, DiscRoundnessNearOne) {
  const int r = 30, n = 2 * r + 6, c = n / 2;
  std::vector<unsigned char> labels(n * n), values(n * n, 5);
  for (int y = 0; y < n; ++y)
    for (int x = 0; x < n; ++x) labels[y * n + x] = (x - c) * (x - c) + (y - c) * (y - c) <= r * r ? 1 : 0;
  SFeature f;
  unsigned char aborted;
  ASSERT_EQ(MultiObjectFeatureExtract<unsigned char>(labels.data(), n, n, 0, 0, n, n, values.data(), 1, 1, &f,
                                                     static_cast<EFeaturesNeeded>(eFeatureBasic | eFeatureHistogram),
                                                     &aborted),
            0);
  EXPECT_NEAR(f.pixelCount, kPi * r * r, 0.02 * kPi * r * r);
  EXPECT_GT(f.roundness, 0.95);
  EXPECT_LT(f.roundness, 1.12);
  EXPECT_EQ(f.histogram[5], f.pixelCount);
}

// Worked with N = 360 (E = 45, windows of bins s-36 .. s+35): the answer is
// the first window start s holding the heaviest bins, minus pi.
TEST(ObjectsFeatures, OrientationWorkedExamples) {
  ASSERT_EQ(InitFeatureTables(1, 360.0), 0);
  EXPECT_EQ(InitFeatureTables(2, 90.0), -1);  // tables kept
  const double scale = 360 / (2 * kPi);
  const auto all = static_cast<EFeaturesNeeded>(eFeatureBasic | eFeatureCentroid | eFeatureOrientation);
  const struct {
    const char *what;
    std::vector<Rect> rects;
    int top;
    double expected;
  } cases[] = {
      // Offset (0, 0), weight 0: every window weighs 0, so s = 0.
      {"single pixel", {{3, 4, 4, 5, 1}}, 0, -kPi},
      // Offsets (0, +-0.5) -> (0, 0.5): steep, bin 2E + T[0] = 90; first s = 90 - 35.
      {"vertical pair", {{3, 4, 4, 6, 1}}, 0, 55 / scale - kPi},
      // The region's top 2 shifts dy to 2: offsets (0.5, 2), a = 0.25, i = 11,
      // T[11] = 14, bin 2E - 14 = 76; first s = 76 - 35.
      {"horizontal pair, region at row 2", {{3, 4, 5, 5, 1}}, 2, 41 / scale - kPi},
      // (6, 2): offsets (-2, 1) -> (-1, 1), a diagonal with dx <= 0 < dy: bin
      // T[E] + 3E = 180 (not 4E - T[E]); (2, 4): (2, -1) -> (2, 0), bin 8E = 360,
      // which no window reads. First s = 180 - 35.
      {"diagonal bin", {{6, 2, 7, 3, 1}, {2, 4, 3, 5, 1}}, 0, 145 / scale - kPi},
  };
  for (const auto &c : cases) {
    std::vector<int> labels = Labels(10, 10, c.rects);
    SFeature f;
    unsigned char aborted;
    ASSERT_EQ(MultiObjectFeatureExtract<int>(labels.data(), 10, 10, 0, c.top, 9, 9, labels.data(), 1, 1, &f, all,
                                             &aborted),
              0);
    EXPECT_DOUBLE_EQ(f.orientation, c.expected) << c.what;
  }
  EXPECT_EQ(ReleaseFeatureTables(), 0);
  EXPECT_EQ(InitFeatureTables(2, 90.0), 0);
  EXPECT_EQ(ReleaseFeatureTables(), 0);
  // Without tables the orientation stops the process like a division by zero.
  std::vector<int> labels = Labels(10, 10, {{3, 4, 4, 5, 1}});
  SFeature f;
  unsigned char aborted;
  EXPECT_DEATH(MultiObjectFeatureExtract<int>(labels.data(), 10, 10, 0, 0, 9, 9, labels.data(), 1, 1, &f, all,
                                              &aborted),
               "");
}

int g_polls = 0, g_pressAfter = 0;
int PressAfterPolls(int key) {
  EXPECT_EQ(key, 27);
  return ++g_polls > g_pressAfter ? 1 : 0;
}

// Counts blocks out and back; allocates from the heap.
class CountingMemMgr final : public IMemMgr {
 public:
  VornelStatus VORNEL_STDCALL QueryInterface(const IID &, void **) override { return kVornelNoInterface; }
  unsigned long VORNEL_STDCALL AddRef() override { return 1; }
  unsigned long VORNEL_STDCALL Release() override { return 1; }
  VornelStatus VORNEL_STDCALL Allocate(std::size_t size, void **block) override {
    *block = failing ? nullptr : std::malloc(size);
    if (*block == nullptr) return kVornelOutOfMemory;
    ++out;
    return kVornelOk;
  }
  VornelStatus VORNEL_STDCALL Free(void *block) override {
    if (block != nullptr) --out, std::free(block);
    return kVornelOk;
  }
  VornelStatus VORNEL_STDCALL GetMemorySize(unsigned int *m) override { return *m = 64, kVornelOk; }
  int out = 0;
  bool failing = false;
};

TEST(ObjectsFeatures, EscapeAbortsAndTemporariesGoBack) {
  CountingMemMgr manager;
  IMemMgr *previous = DllSetMemMgr(&manager);
  const int w = 12, h = 9;
  std::vector<int> labels = Labels(w, h, {{2, 2, 8, 6, 1}});
  std::vector<SFeature> f(1);
  unsigned char aborted = 0;
  const auto needed = static_cast<EFeaturesNeeded>(eFeatureBasic | eFeatureCentroid);
  const OstrelKeyStateQuery before = SetKeyStateQuery(PressAfterPolls);
  for (const int after : {0, 5, 40, (w - 1) * (h - 1) - 1}) {
    g_polls = 0, g_pressAfter = after;
    EXPECT_EQ(MultiObjectFeatureExtract<int>(labels.data(), w, h, 0, 0, w, h, labels.data(), 1, 1,
                                             f.data(), needed, &aborted), -1) << after;
    EXPECT_EQ(aborted, 1);
    EXPECT_EQ(g_polls, after + 1);  // one poll per pixel, stopping at the first press
    EXPECT_EQ(manager.out, 0);
  }
  g_polls = 0, g_pressAfter = (w - 1) * (h - 1);  // every pixel polled once, no press
  EXPECT_EQ(MultiObjectFeatureExtract<int>(labels.data(), w, h, 0, 0, w, h, labels.data(), 1, 1,
                                           f.data(), needed, &aborted), 0);
  EXPECT_EQ(aborted, 0);
  EXPECT_EQ(f[0].pixelCount, 24);
  EXPECT_EQ(SetKeyStateQuery(before), PressAfterPolls);
  manager.failing = true;
  EXPECT_EQ(MultiObjectFeatureExtract<int>(labels.data(), w, h, 0, 0, w, h, labels.data(), 1, 1,
                                           f.data(), needed, &aborted), -1);
  EXPECT_EQ(manager.out, 0);
  EXPECT_EQ(DllSetMemMgr(previous), &manager);
  unsigned int mebibytes = 0;
  IMemMgr *standIn = DllGetMemMgr();
  EXPECT_GE(standIn->GetMemorySize(&mebibytes), 0);
  EXPECT_GT(mebibytes, 0u);
  standIn->Release();
}

TEST(ObjectsFeatures, InterpolatedOverlayFactor) {
  double two[] = {0, 100}, four[] = {10, 40, 40, 100};
  EXPECT_FLOAT_EQ(GetInterpolatedOverlayFactor(50, two, 2), 0.5f);
  const int values[] = {-5, 0, 25, 150, 250, 300, 999};
  const float expected[] = {0.1f, 0.1f, 0.175f, 0.4f, 0.7f, 1.0f, 1.0f};
  for (int i = 0; i < 7; ++i)
    EXPECT_FLOAT_EQ(GetInterpolatedOverlayFactor(values[i], four, 4), expected[i]) << values[i];
}

}  // namespace

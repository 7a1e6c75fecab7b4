// Flood fill and object labelling: the fill against a model of the
// step-by-step walk, labelling against a model of the raster scan that
// calls it, component properties of the labels, and hand-worked examples of
// the limits, the offset count and the reserved-label quirks.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "Ostrel.h"

namespace {

int Clamp(int v, int lo, int hi) { return v < lo ? lo : (v > hi ? hi : v); }

// The fill as a walk: one pixel at a time, neighbours tried right, left,
// down, up, backtracking over a stack of coordinates.
template <class T>
void ModelFill(std::vector<T> &b, int w, int h, int sx, int sy, int l, int t, int rw, int rh,
               T fill, int *changed) {
  sx = sx < 0 ? 0 : (sx > w - 1 ? w - 1 : sx);
  sy = sy < 0 ? 0 : (sy > h - 1 ? h - 1 : sy);
  l = Clamp(l, 0, w - 1);
  t = Clamp(t, 0, h - 1);
  const int r = l + Clamp(rw, 0, w - 1 - l), bottom = t + Clamp(rh, 0, h - 1 - t);
  const T target = b[sy * w + sx];
  std::vector<int> stack{sx, sy};
  *changed = 1;
  int x = sx, y = sy;
  for (;;) {
    if (b[y * w + x] != fill) b[y * w + x] = fill, ++*changed;
    int nx = x, ny = y;
    if (x < r && b[y * w + x + 1] == target) nx = x + 1;
    else if (x > l && b[y * w + x - 1] == target) nx = x - 1;
    else if (y < bottom && b[(y + 1) * w + x] == target) ny = y + 1;
    else if (y > t && b[(y - 1) * w + x] == target) ny = y - 1;
    if (nx != x || ny != y) {
      stack.push_back(x), stack.push_back(y);
      x = nx, y = ny;
      continue;
    }
    y = stack.back(), stack.pop_back();
    if (stack.empty()) break;
    x = stack.back(), stack.pop_back();
    if (stack.empty()) break;
  }
}

// The raster scan with its read position that runs ahead after a skip.
template <class T>
int ModelLabel(std::vector<T> &b, int w, int h, int l, int t, int rw, int rh, T bg, T obj,
               T first, bool asc, int end) {
  l = Clamp(l, 0, w - 1), t = Clamp(t, 0, h - 1);
  rw = Clamp(rw, 0, w - 1 - l), rh = Clamp(rh, 0, h - 1 - t);
  if (rh < 1) return 0;
  T label = first;
  int count = 0, unused;
  for (int y = t; y < t + rh; ++y) {
    for (int c = 0, pos = y * w + l; c < rw; ++c, ++pos) {
      if (b[pos] != obj) continue;
      if (label != obj && label != bg) {
        ModelFill<T>(b, w, h, l + c, y, l, t, rw, rh, label, &unused);
        ++count;
      } else {
        --c;
      }
      label = static_cast<T>(asc ? label + 1 : label - 1);
      if (asc ? static_cast<int>(label) == end : label == 1) return count;
    }
  }
  return count;
}

template <class T>
std::vector<T> RandomMask(std::mt19937 &rng, int n, int percent, T on, T off) {
  std::vector<T> m(n);
  for (T &v : m) v = static_cast<int>(rng() % 100) < percent ? on : off;
  return m;
}

// Random masks of 0, 1 and 2, seeds and regions in and around the buffer.
template <class T>
void CompareWithModels() {
  std::mt19937 rng(7);
  for (int i = 0; i < 3000; ++i) {
    const int w = 2 + rng() % 13, h = 2 + rng() % 10;
    std::vector<T> a = RandomMask<T>(rng, w * h, 55, 1, 0);
    if (i % 2) for (T &v : a) v = static_cast<T>(v + (rng() % 5 == 0 ? 2 : 0));
    std::vector<T> m = a;
    const int l = static_cast<int>(rng() % (w + 2)) - 1, t = static_cast<int>(rng() % (h + 2)) - 1;
    const int rw = static_cast<int>(rng() % (w + 3)) - 1, rh = static_cast<int>(rng() % (h + 3)) - 1;
    if (i % 2) {
      const int sx = static_cast<int>(rng() % (w + 4)) - 2, sy = static_cast<int>(rng() % (h + 4)) - 2;
      const T fill = static_cast<T>(5 + rng() % 3);
      int got = -1, want = -1;
      EXPECT_EQ(Fill<T>(a.data(), w, h, sx, sy, l, t, rw, rh, fill, &got), 0);
      ModelFill<T>(m, w, h, sx, sy, l, t, rw, rh, fill, &want);
      ASSERT_EQ(got, want) << i;
    } else {
      const T firsts[] = {0, 1, 2, 3, static_cast<T>(254), static_cast<T>(255)};
      const T first = firsts[rng() % 6];
      const bool asc = rng() % 4 != 0;
      const int end = static_cast<int>(rng() % 3 == 0 ? rng() % 260 : 100000);
      ASSERT_EQ(ColorBinaryObjects<T>(a.data(), w, h, l, t, rw, rh, 0, 1, first, asc, end),
                ModelLabel<T>(m, w, h, l, t, rw, rh, 0, 1, first, asc, end)) << i;
    }
    ASSERT_EQ(a, m) << i;
  }
}

TEST(ObjectsFillAndLabels, MatchTheWalkAndTheScanWithItsSkips) {
  CompareWithModels<unsigned char>();
  CompareWithModels<int>();
}

TEST(ObjectsFill, Examples) {
  // 4 x 3, a cross of 1s; inclusive limits: region 0,0,1,1 reaches column 1 and row 1.
  const std::vector<unsigned char> cross = {0, 1, 0, 0, 1, 1, 1, 0, 0, 1, 0, 0};
  struct Case {
    int sx, sy, l, t, rw, rh;
    unsigned char fill;
    int changed;
    std::vector<unsigned char> out;
  } cases[] = {
      {1, 1, 0, 0, 1, 1, 7, 4, {0, 7, 0, 0, 7, 7, 1, 0, 0, 1, 0, 0}},  // limits 0..1 x 0..1
      {0, 0, 2, 2, 0, 0, 7, 2, {7, 1, 0, 0, 1, 1, 1, 0, 0, 1, 0, 0}},  // isolated seed
      {9, -3, 0, 0, 9, 9, 7, 6, {0, 1, 7, 7, 1, 1, 1, 7, 0, 1, 7, 7}},  // seed moved to (3, 0)
      {1, 1, 0, 0, 9, 9, 1, 1, {0, 1, 0, 0, 1, 1, 1, 0, 0, 1, 0, 0}},  // fill = seed value
  };
  for (const Case &c : cases) {
    std::vector<unsigned char> b = cross;
    int changed = -1;
    EXPECT_EQ(Fill<unsigned char>(b.data(), 4, 3, c.sx, c.sy, c.l, c.t, c.rw, c.rh, c.fill, &changed), 0);
    EXPECT_EQ(b, c.out) << c.sx << "," << c.sy;
    EXPECT_EQ(changed, c.changed) << c.sx << "," << c.sy;
  }
}

TEST(ObjectsColorBinaryObjects, EachLabelIsOneComponentInRasterOrder) {
  std::mt19937 rng(3);
  const int w = 64, h = 48;
  std::vector<int> b = RandomMask<int>(rng, w * h, 55, 1, 0);
  for (int x = 0; x < w; ++x) b[(h - 1) * w + x] = 0;  // keep the unscanned edges empty
  for (int y = 0; y < h; ++y) b[y * w + w - 1] = 0;
  const std::vector<int> mask = b;
  const int n = ColorBinaryObjects<int>(b.data(), w, h, 0, 0, w, h, 0, 1, 2, true, 1 << 30);
  ASSERT_GT(n, 100);
  // No object split: 4-neighbours that are both set carry one label.
  std::vector<int> firstPixel(n + 2, -1);
  for (int i = 0; i < w * h; ++i) {
    ASSERT_EQ(mask[i] != 0, b[i] != 0) << i;
    if (b[i] == 0) continue;
    ASSERT_TRUE(b[i] >= 2 && b[i] < n + 2) << i;
    if (firstPixel[b[i]] < 0) firstPixel[b[i]] = i;
    ASSERT_TRUE(b[i + 1] == 0 || b[i + 1] == b[i]) << i;  // the last column and row are 0
    ASSERT_TRUE(b[i + w] == 0 || b[i + w] == b[i]) << i;
  }
  // No two objects share a label: a fill from a label's first pixel reaches
  // all of it. First pixels come in raster order.
  for (int label = 2; label < n + 2; ++label) {
    ASSERT_GT(firstPixel[label], label > 2 ? firstPixel[label - 1] : -1);
    std::vector<int> c = b;
    Fill<int>(c.data(), w, h, firstPixel[label] % w, firstPixel[label] / w, 0, 0, w, h, -1, nullptr);
    ASSERT_EQ(std::count(c.begin(), c.end(), label), 0) << label;
  }
}

TEST(ObjectsColorBinaryObjects, Examples) {
  struct Case {
    const char *what;
    int w, h;
    std::vector<unsigned char> in;
    unsigned char first;
    bool asc;
    int end, count;
    std::vector<unsigned char> out;
  } cases[] = {
      {"diagonal contact is two objects", 3, 3, {1, 0, 0, 0, 1, 0, 0, 0, 0}, 5, true, 99, 2,
       {5, 0, 0, 0, 6, 0, 0, 0, 0}},
      {"descending from 2 stops at 1", 3, 3, {1, 0, 1, 0, 0, 0, 0, 0, 0}, 2, false, 0, 1,
       {2, 0, 1, 0, 0, 0, 0, 0, 0}},
      {"last row and column unscanned", 3, 3, {0, 0, 1, 0, 0, 1, 1, 1, 0}, 5, true, 99, 0,
       {0, 0, 1, 0, 0, 1, 1, 1, 0}},
      {"an object reaching the last column is filled there", 3, 3, {0, 1, 1, 0, 0, 0, 0, 0, 0},
       5, true, 99, 1, {0, 5, 5, 0, 0, 0, 0, 0, 0}},
      // Label 1 is the object value: the skip reads one pixel ahead, and the
      // fill for the 1 at column 2 is seeded at column 1, on background.
      {"skipped label shifts the read", 5, 3, {1, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, 1,
       true, 99, 1, {1, 2, 1, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2}},
  };
  for (const Case &c : cases) {
    std::vector<unsigned char> b = c.in;
    EXPECT_EQ(ColorBinaryObjects<unsigned char>(b.data(), c.w, c.h, 0, 0, c.w, c.h, 0, 1, c.first,
                                                c.asc, c.end),
              c.count)
        << c.what;
    EXPECT_EQ(b, c.out) << c.what;
  }
  // The byte label wraps: from firstLabel = endLabel = 7 it hands out 254
  // labels (0 and 1 are reserved) before it comes back to 7.
  const int w = 2 * 300 + 1;
  std::vector<unsigned char> row(w * 2, 0);
  for (int x = 0; x < w - 1; x += 2) row[x] = 1;
  EXPECT_EQ(ColorBinaryObjects<unsigned char>(row.data(), w, 2, 0, 0, w, 2, 0, 1, 7, true, 7), 254);
}

}  // namespace

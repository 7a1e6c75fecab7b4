// Fill and labelling against plain models of the walk and the scan, label
// component properties, and worked examples of the quirks.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "Ostrel.h"

namespace {

int Clamp(int v, int lo, int hi) { return v < lo ? lo : (v > hi ? hi : v); }

// The fill as a walk: neighbours tried right, left, down, up, backtracking
// over a stack of coordinates; limits inclusive.
template <class T>
void ModelFill(std::vector<T> &b, int w, int h, int sx, int sy, int l, int t, int rw, int rh,
               T fill, int *changed) {
  sx = Clamp(sx, 0, w - 1), sy = Clamp(sy, 0, h - 1), l = Clamp(l, 0, w - 1),
  t = Clamp(t, 0, h - 1);
  const int r = l + Clamp(rw, 0, w - 1 - l), bottom = t + Clamp(rh, 0, h - 1 - t);
  const T target = b[sy * w + sx];
  std::vector<int> stack{sx, sy};
  *changed = 1;
  for (int x = sx, y = sy;;) {
    if (b[y * w + x] != fill) b[y * w + x] = fill, ++*changed;
    int nx = x, ny = y;
    if (x < r && b[y * w + x + 1] == target) nx = x + 1;
    else if (x > l && b[y * w + x - 1] == target) nx = x - 1;
    else if (y < bottom && b[(y + 1) * w + x] == target) ny = y + 1;
    else if (y > t && b[(y - 1) * w + x] == target) ny = y - 1;
    if (nx != x || ny != y) {
      stack.push_back(x), stack.push_back(y), x = nx, y = ny;
      continue;
    }
    y = stack.back(), stack.pop_back();
    if (stack.empty()) break;
    x = stack.back(), stack.pop_back();
    if (stack.empty()) break;
  }
}

// The raster scan; after a reserved label is skipped the read runs one ahead.
template <class T>
int ModelLabel(std::vector<T> &b, int w, int h, int l, int t, int rw, int rh, T first, bool asc,
               int end) {
  l = Clamp(l, 0, w - 1), t = Clamp(t, 0, h - 1);
  rw = Clamp(rw, 0, w - 1 - l), rh = Clamp(rh, 0, h - 1 - t);
  T label = first;
  int count = 0, unused;
  for (int y = t; y < t + rh; ++y)
    for (int c = 0, pos = y * w + l; c < rw; ++c, ++pos) {
      if (b[pos] != 1) continue;
      if (label != 1 && label != 0)
        ModelFill<T>(b, w, h, l + c, y, l, t, rw, rh, label, &unused), ++count;
      else --c;
      label = static_cast<T>(asc ? label + 1 : label - 1);
      if (asc ? static_cast<int>(label) == end : label == 1) return count;
    }
  return count;
}

// Random masks of 0, 1 and 2, seeds and regions in and around the buffer.
template <class T>
void CompareWithModels() {
  std::mt19937 rng(7);
  const auto any = [&](int lo, int n) { return lo + static_cast<int>(rng() % n); };
  for (int i = 0; i < 3000; ++i) {
    const int w = any(2, 13), h = any(2, 10);
    std::vector<T> a(w * h);
    for (T &v : a) v = static_cast<T>((rng() % 100 < 55) + (i % 2 && rng() % 5 == 0 ? 2 : 0));
    std::vector<T> m = a;
    const int l = any(-1, w + 2), t = any(-1, h + 2), rw = any(-1, w + 3), rh = any(-1, h + 3);
    if (i % 2) {
      const int sx = any(-2, w + 4), sy = any(-2, h + 4);
      const T fill = static_cast<T>(any(5, 3));
      int got = -1, want = -1;
      EXPECT_EQ(Fill<T>(a.data(), w, h, sx, sy, l, t, rw, rh, fill, &got), 0);
      ModelFill<T>(m, w, h, sx, sy, l, t, rw, rh, fill, &want);
      ASSERT_EQ(got, want) << i;
    } else {
      const T first = static_cast<T>(std::vector<int>{0, 1, 2, 3, 254, 255}[rng() % 6]);
      const bool asc = rng() % 4 != 0;
      const int end = rng() % 3 == 0 ? any(0, 260) : 100000;
      ASSERT_EQ(ColorBinaryObjects<T>(a.data(), w, h, l, t, rw, rh, 0, 1, first, asc, end),
                ModelLabel<T>(m, w, h, l, t, rw, rh, first, asc, end))
          << i;
    }
    ASSERT_EQ(a, m) << i;
  }
}

TEST(ObjectsFillAndLabels, MatchTheWalkAndTheScanWithItsSkips) {
  CompareWithModels<unsigned char>();
  CompareWithModels<int>();
}

using Bytes = std::vector<unsigned char>;

TEST(ObjectsFill, Examples) {
  const Bytes cross = {0, 1, 0, 0, 1, 1, 1, 0, 0, 1, 0, 0};  // 4 x 3
  const struct {
    int sx, sy, l, t, rw, rh, fill, changed;
    Bytes out;
  } cases[] = {
      {1, 1, 0, 0, 1, 1, 7, 4, {0, 7, 0, 0, 7, 7, 1, 0, 0, 1, 0, 0}},   // limits 0..1 x 0..1
                                                                        // inclusive
      {0, 0, 2, 2, 0, 0, 7, 2, {7, 1, 0, 0, 1, 1, 1, 0, 0, 1, 0, 0}},   // isolated seed, count + 1
      {9, -3, 0, 0, 9, 9, 7, 6, {0, 1, 7, 7, 1, 1, 1, 7, 0, 1, 7, 7}},  // seed moved to (3, 0)
      {1, 1, 0, 0, 9, 9, 1, 1, cross},                                  // fill = seed value
  };
  for (const auto &c : cases) {
    Bytes b = cross;
    int changed = -1;
    EXPECT_EQ(
        Fill<unsigned char>(b.data(), 4, 3, c.sx, c.sy, c.l, c.t, c.rw, c.rh, c.fill, &changed), 0);
    EXPECT_EQ(b, c.out) << c.sx << "," << c.sy;
    EXPECT_EQ(changed, c.changed) << c.sx << "," << c.sy;
  }
}

TEST(ObjectsColorBinaryObjects, EachLabelIsOneComponentInRasterOrder) {
  std::mt19937 rng(3);
  const int w = 64, h = 48;
  std::vector<int> b(w * h);
  for (int i = 0; i < w * h; ++i) b[i] = i % w != w - 1 && i / w != h - 1 && rng() % 100 < 55;
  const std::vector<int> mask = b;  // the unscanned last row and column kept empty
  const int n = ColorBinaryObjects<int>(b.data(), w, h, 0, 0, w, h, 0, 1, 2, true, 1 << 30);
  ASSERT_GT(n, 100);
  std::vector<int> firstPixel(n + 2, -1);
  for (int i = 0; i < w * h; ++i) {  // set 4-neighbours share a label
    ASSERT_EQ(mask[i] != 0, b[i] != 0) << i;
    if (b[i] == 0) continue;
    ASSERT_TRUE(b[i] >= 2 && b[i] < n + 2) << i;
    if (firstPixel[b[i]] < 0) firstPixel[b[i]] = i;
    ASSERT_TRUE((b[i + 1] == 0 || b[i + 1] == b[i]) && (b[i + w] == 0 || b[i + w] == b[i])) << i;
  }
  // First pixels in raster order; a fill from one reaches its whole label.
  for (int label = 2; label < n + 2; ++label) {
    ASSERT_GT(firstPixel[label], firstPixel[label - 1]);
    std::vector<int> c = b;
    Fill<int>(c.data(), w, h, firstPixel[label] % w, firstPixel[label] / w, 0, 0, w, h, -1,
              nullptr);
    ASSERT_EQ(std::count(c.begin(), c.end(), label), 0) << label;
  }
}

TEST(ObjectsColorBinaryObjects, Examples) {
  const struct {
    const char *what;
    int w;
    Bytes in;
    unsigned char first;
    bool asc;
    int count;
    Bytes out;
  } cases[] = {
      {"last row and column unscanned",
       3,
       {0, 0, 1, 0, 0, 1, 1, 1, 0},
       5,
       true,
       0,
       {0, 0, 1, 0, 0, 1, 1, 1, 0}},
      // Label 1 is skipped, the read runs one ahead, and the fill for the 1
      // at column 2 is seeded at column 1, on background.
      {"skipped label shifts the read",
       5,
       {1, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
       1,
       true,
       1,
       {1, 2, 1, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2}},
  };
  for (const auto &c : cases) {
    Bytes b = c.in;
    const int h = static_cast<int>(b.size()) / c.w;
    EXPECT_EQ(
        ColorBinaryObjects<unsigned char>(b.data(), c.w, h, 0, 0, c.w, h, 0, 1, c.first, c.asc, 99),
        c.count)
        << c.what;
    EXPECT_EQ(b, c.out) << c.what;
  }
  // The byte label wraps: from 7 to endLabel 7, 254 labels (0 and 1 reserved).
  const int w = 601;
  Bytes row(w * 2, 0);
  for (int x = 0; x < w - 1; x += 2) row[x] = 1;
  EXPECT_EQ(ColorBinaryObjects<unsigned char>(row.data(), w, 2, 0, 0, w, 2, 0, 1, 7, true, 7), 254);
}

}  // namespace

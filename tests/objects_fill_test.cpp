// Fill and labelling against plain models of the walk and the scan, and
// worked examples of the quirks random masks rarely reach.
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <random>
#include <vector>

#include "Ostrel.h"
#include "objects/objects.h"

#ifdef __unix__
#include <sys/mman.h>
#elif defined(_WIN32)
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
#endif

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

// Random masks of 0, 1 and 2, seeds and regions in and around the buffer;
// every 50th pair 64 x 48, for long fills and many labels.
template <class T>
void CompareWithModels() {
  std::mt19937 rng(7);
  const auto any = [&](int lo, int n) { return lo + static_cast<int>(rng() % n); };
  for (int i = 0; i < 3000; ++i) {
    const bool big = i % 50 < 2;
    const int w = big ? 64 : any(2, 13), h = big ? 48 : any(2, 10);
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

// A fill with the seed's own value changes nothing and counts one; a byte
// label wraps past 255 to 2 (0 and 1 reserved): from 7 to endLabel 7, 254.
TEST(ObjectsFillAndLabels, FillWithSeedValueAndByteLabelWrap) {
  const std::vector<unsigned char> cross = {0, 1, 0, 0, 1, 1, 1, 0, 0, 1, 0, 0};
  std::vector<unsigned char> b = cross;
  int changed = -1;
  EXPECT_EQ(Fill<unsigned char>(b.data(), 4, 3, 1, 1, 0, 0, 9, 9, 1, &changed), 0);
  EXPECT_EQ(b, cross);
  EXPECT_EQ(changed, 1);
  const int w = 601;
  std::vector<unsigned char> row(w * 2, 0);
  for (int x = 0; x < w - 1; x += 2) row[x] = 1;
  EXPECT_EQ(ColorBinaryObjects<unsigned char>(row.data(), w, 2, 0, 0, w, 2, 0, 1, 7, true, 7), 254);
}

// No pixels, no fill: width 0 leaves the buffer and the count of 1; a width
// of INT_MIN clamps no region. Counts past INT_MAX stay at INT_MAX.
TEST(ObjectsFillAndLabels, EmptyBuffersAndSaturatedCounts) {
  std::vector<unsigned char> one(1, 4);
  int changed = -1;
  EXPECT_EQ(Fill<unsigned char>(one.data(), 0, 1, 0, 0, 0, 0, 1, 1, 9, &changed), 0);
  EXPECT_EQ(Fill<unsigned char>(one.data(), 1, INT_MIN, 0, 0, 0, 0, 1, 1, 9, nullptr), 0);
  EXPECT_EQ(changed, 1);
  EXPECT_EQ(one[0], 4);
  EXPECT_EQ(ColorBinaryObjects<unsigned char>(one.data(), INT_MIN, 1, 0, 0, 1, 1, 0, 4, 7, true, 9),
            0);
  using ostrel::objects::SaturatedCount;
  EXPECT_EQ(SaturatedCount(2), 2);
  EXPECT_EQ(SaturatedCount(INT_MAX), INT_MAX);
  EXPECT_EQ(SaturatedCount(std::uint64_t{1} << 31), INT_MAX);
  EXPECT_EQ(SaturatedCount((std::uint64_t{1} << 32) + 5), INT_MAX);
  int n = INT_MAX - 1;
  ostrel::objects::CountUp(n), ostrel::objects::CountUp(n);
  EXPECT_EQ(n, INT_MAX);
}

#if defined(__unix__) || defined(_WIN32)
// A buffer INT_MAX wide, two rows reserved and only the pages at their ends
// touched: the run in the last column, scanned again in the row below, ends
// the scan there (the next column to look at would be INT_MAX + 1).
TEST(ObjectsFillAndLabels, LastColumnOfABufferIntMaxWide) {
  if (sizeof(void *) < 8) GTEST_SKIP() << "needs 4 GiB of address space";
  const int w = INT_MAX;
  const std::size_t size = 2 * static_cast<std::size_t>(w);
#ifdef _WIN32
  void *m = VirtualAlloc(nullptr, size, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
  if (m == nullptr) GTEST_SKIP() << "no 4 GiB allocation";
#else
  void *m = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE,
                 -1, 0);
  if (m == MAP_FAILED) GTEST_SKIP() << "no 4 GiB mapping";
#endif
  unsigned char *b = static_cast<unsigned char *>(m);
  b[w - 1] = b[size - 1] = 1;
  int changed = -1;
  EXPECT_EQ(Fill<unsigned char>(b, w, 2, w - 1, 0, 0, 0, w, 2, 7, &changed), 0);
  EXPECT_EQ(changed, 3);
  EXPECT_EQ(b[w - 1] + b[size - 1] + b[w - 2] + b[size - 2], 14);
#ifdef _WIN32
  VirtualFree(m, 0, MEM_RELEASE);
#else
  munmap(m, size);
#endif
}
#endif

}  // namespace

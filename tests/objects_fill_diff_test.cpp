// The span fill and the run labelling against the pixel-by-pixel forms they
// replace: the same pixels, the same counts, on many small random masks.
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <random>
#include <vector>

#include "Ostrel.h"
#include "objects/objects.h"

namespace {

using ostrel::objects::FillLimits;

// The fill pixel by pixel, with the step conditions tested at every pixel.
template <class T>
std::size_t FillStepwise(T *buffer, int width, int x, int y, const FillLimits &limits, T target,
                         T fill) {
  std::size_t filled = 1;
  buffer[y * width + x] = fill;
  std::vector<std::pair<int, int>> seeds{{x, y}};
  const auto visit = [&](int nx, int ny) {
    T &p = buffer[ny * width + nx];
    if (p != target) return;
    p = fill;
    ++filled;
    seeds.push_back({nx, ny});
  };
  while (!seeds.empty()) {
    const auto s = seeds.back();
    seeds.pop_back();
    if (s.first < limits.right) visit(s.first + 1, s.second);
    if (s.first > limits.left) visit(s.first - 1, s.second);
    if (s.second < limits.bottom) visit(s.first, s.second + 1);
    if (s.second > limits.top) visit(s.first, s.second - 1);
  }
  return filled;
}

// The labelling scan one fill per object pixel met, over the stepwise fill.
template <class T>
int LabelByFills(T *buffer, int width, int height, int left, int top, int regionWidth,
                 int regionHeight, T backgroundValue, T objectValue, T label, bool ascending,
                 int endLabel) {
  const auto r = ostrel::objects::ClampRegion(width, height, left, top, regionWidth, regionHeight);
  const FillLimits limits = {r.left, r.top, r.left + r.width, r.top + r.height};
  int count = 0;
  for (int y = r.top; y < r.top + r.height; ++y) {
    T *row = buffer + y * width + r.left;
    const T *read = row;
    for (int c = 0; c < r.width; ++read) {
      if (*read != objectValue) {
        ++c;
        continue;
      }
      if (label != objectValue && label != backgroundValue) {
        if (row[c] != label) FillStepwise(buffer, width, r.left + c, y, limits, row[c], label);
        ++count;
        ++c;
      }
      label = static_cast<T>(ascending ? static_cast<unsigned>(label) + 1u
                                       : static_cast<unsigned>(label) - 1u);
      if (ascending ? static_cast<int>(label) == endLabel : label == 1) return count;
    }
  }
  return count;
}

// Masks of a few values, dense enough for long runs that cross the limits;
// seeds anywhere in the buffer, limits anywhere inside it.
template <class T>
void CompareFills(std::uint32_t seed) {
  std::mt19937 rng(seed);
  const auto any = [&](int n) { return static_cast<int>(rng() % n); };
  ostrel::objects::FillEngine<T> engine;
  for (int i = 0; i < 20000; ++i) {
    const int w = 1 + any(i % 10 == 0 ? 40 : 12), h = 1 + any(i % 10 == 0 ? 30 : 10);
    const int density = 40 + any(60);
    std::vector<T> a(w * h);
    for (T &v : a) v = static_cast<T>(any(100) < density ? 1 : any(3) * 2);
    std::vector<T> b = a;
    FillLimits lim;
    lim.left = any(w), lim.top = any(h);
    lim.right = lim.left + any(w - lim.left), lim.bottom = lim.top + any(h - lim.top);
    const int x = any(w), y = any(h);
    const T target = a[y * w + x], fill = static_cast<T>(target + 5);
    const std::size_t got = engine.Fill(a.data(), w, x, y, lim, target, fill);
    ASSERT_EQ(got, FillStepwise(b.data(), w, x, y, lim, target, fill)) << i;
    ASSERT_EQ(a, b) << i;
  }
}

TEST(ObjectsFillDiff, SpansMatchStepsForSeedsInAndOutsideTheLimits) {
  CompareFills<unsigned char>(11);
  CompareFills<int>(12);
}

// Random regions, object and background values among the labels, first
// labels a few steps before a reserved value or the wrap, both directions,
// stops early, late or never; masks up to 64 x 48, a few up to 160 x 120,
// for runs of many objects, some with rows of long runs.
template <class T>
void CompareLabels(std::uint32_t seed, const std::vector<int> &values) {
  std::mt19937 rng(seed);
  const auto any = [&](int n) { return static_cast<int>(rng() % n); };
  const auto pick = [&] { return static_cast<T>(values[rng() % values.size()]); };
  for (int i = 0; i < 6000; ++i) {
    const bool big = i % 8 == 0, huge = i % 200 == 0;
    const int w = 1 + any(huge ? 160 : big ? 64 : 14), h = 1 + any(huge ? 120 : big ? 48 : 10);
    const T object = pick(), background = any(4) ? pick() : object;
    // Sparse and dense masks too, for rows with long stretches in or out.
    const int density = any(4) == 0 ? (any(2) ? 2 : 98) : 30 + any(50);
    std::vector<T> a(w * h);
    for (T &v : a) v = any(100) < density ? object : any(4) ? background : pick();
    if (big && any(2)) {
      // Rows of long runs in and out by turns, so that a row stays inside
      // or outside over many columns while the next one turns within them.
      for (int y = 0; y < h; ++y)
        for (int x = 0, in = any(2); x < w; in = !in)
          for (const int e = std::min(w, x + 1 + any(48)); x < e; ++x)
            if (in) a[y * w + x] = object;
    }
    std::vector<T> b = a;
    const int l = any(w + 2) - 1, t = any(h + 2) - 1, rw = any(w + 3) - 1, rh = any(h + 3) - 1;
    const bool ascending = any(3) != 0;
    // Near a value, in the element type's own wrapping arithmetic.
    const auto near = [&](T v, int d) {
      return static_cast<T>(static_cast<unsigned>(v) + any(2 * d + 1) - d);
    };
    const T first = near(pick(), 4);
    const int never[] = {100000, 256, -1};  // past a byte's labels
    const int end = any(3) == 0 ? static_cast<int>(near(first, 20))
                                : (any(2) ? never[any(3)] : static_cast<int>(pick()));
    const int got = ColorBinaryObjects<T>(a.data(), w, h, l, t, rw, rh, background, object, first,
                                          ascending, end);
    ASSERT_EQ(got, LabelByFills<T>(b.data(), w, h, l, t, rw, rh, background, object, first,
                                   ascending, end))
        << i;
    ASSERT_EQ(a, b) << i;
  }
}

TEST(ObjectsFillDiff, RunLabelsMatchOneFillPerObject) {
  CompareLabels<unsigned char>(21, {0, 1, 2, 3, 127, 128, 254, 255});
  CompareLabels<int>(22, {0, 1, 2, 255, 256, -1, -2, INT_MAX, INT_MIN});
}

}  // namespace

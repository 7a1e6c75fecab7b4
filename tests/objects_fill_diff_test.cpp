// The span fill against the pixel-by-pixel form it replaces: the same
// pixels, the same counts, on many small random masks.
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

}  // namespace

// Helpers shared by the grey compositing tests.
#ifndef OSTREL_TESTS_GREY_TEST_UTIL_H
#define OSTREL_TESTS_GREY_TEST_UTIL_H

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "frame/dispatch.h"
#include "frame/module.h"

namespace grey_test {

using u8 = std::uint8_t;
using u16 = std::uint16_t;
using u32 = std::uint32_t;

// Sets the module's fast-form flag for the life of the object.
class FastFlag {
 public:
  explicit FastFlag(int value) : saved_(ostrel::frame::g_fastFormFlag) {
    ostrel::frame::SetFastFormFlagForTesting(value);
  }
  ~FastFlag() { ostrel::frame::SetFastFormFlagForTesting(saved_); }
  FastFlag(const FastFlag &) = delete;
  FastFlag &operator=(const FastFlag &) = delete;

 private:
  int saved_;
};

// Runs body once under each instruction set the processor offers (scalar
// kernels first), naming it in any failure, then restores the one active
// before.
template <class Body>
void ForEachIsa(Body &&body) {
  for (const auto &info : ostrel::frame::simd::RunnableIsas()) {
    SCOPED_TRACE(info.name);
    const ostrel::frame::simd::ScopedIsaLimit limit(info.isa);
    body();
  }
}

// Exact form: d + ((s - d) * W) / 255 truncated toward zero.
inline int ExactMix(int d, int s, int w) { return d + (s - d) * w / 255; }
// Fast form: d + floor(((s - d) * w) / 256).
inline int FastMix(int d, int s, int w) {
  const int p = (s - d) * w;
  return d + (p >= 0 ? p / 256 : -((255 - p) / 256));
}

// A byte that is often one where the arithmetic turns.
inline u32 TurnByte(std::mt19937 &r) {
  static const u8 kTurns[] = {0, 1, 127, 128, 254, 255};
  return r() % 2 ? kTurns[r() % 6] : r() & 0xFF;
}

// Columns (or rows) a region of n starting at source s, destination d, covers
// once cut by a source of extent sw and a destination of extent dw.
inline u32 Clipped(u32 n, u32 s, u32 sw, u32 d, u32 dw) {
  return std::min(dw, d + (std::min(sw, s + n) - s)) - d;
}

template <class T, class Gen>
std::vector<T> Random(std::size_t n, Gen gen) {
  std::vector<T> v(n);
  for (auto &x : v) x = static_cast<T>(gen());
  return v;
}

inline std::vector<u8> TurnBytes(std::size_t n, std::mt19937 &r) {
  return Random<u8>(n, [&] { return TurnByte(r); });
}

}  // namespace grey_test

#endif  // OSTREL_TESTS_GREY_TEST_UTIL_H

// Shared by the repeat geometry tests: their common includes, and the endless design folded into
// the tile by plain 64-bit arithmetic, the reference for every fold.
#ifndef OSTREL_TESTS_REPEAT_TEST_UTIL_H
#define OSTREL_TESTS_REPEAT_TEST_UTIL_H

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <utility>
#include <vector>

#include "Ostrel.h"

namespace repeat_test {

using Point = std::pair<int, int>;

inline std::int64_t Mod(std::int64_t a, std::int64_t b) { return (a % b + b) % b; }
inline std::int64_t Div(std::int64_t a, std::int64_t b) { return (a - Mod(a, b)) / b; }  // floor

// Vertical: column c = floor(x / width) lies c * drop lower. Horizontal: row r, r * drop right.
inline Point RefFold(std::int64_t x, std::int64_t y, std::int64_t width, std::int64_t height,
                     std::int64_t drop, _EDropKind kind) {
  if (kind == eDropVertical) return Point(Mod(x, width), Mod(y - Div(x, width) * drop, height));
  return Point(Mod(x - Div(y, height) * drop, width), Mod(y, height));
}

}  // namespace repeat_test

#endif  // OSTREL_TESTS_REPEAT_TEST_UTIL_H

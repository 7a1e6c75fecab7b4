// Conversions of doubles to integers, the one way the library does them.
#ifndef OSTREL_FRAME_NUMERIC_H
#define OSTREL_FRAME_NUMERIC_H

#include <cstdint>

namespace ostrel {
namespace frame {

// Truncates x toward zero to a signed 32-bit integer. A value outside the
// range of int32 (or NaN) gives 0x80000000, the processor's "integer
// indefinite" result, so the conversion never has undefined behaviour.
inline std::int32_t TruncToInt32(double x) {
  if (!(x > -2147483649.0 && x < 2147483648.0)) return INT32_MIN;
  return static_cast<std::int32_t>(x);
}

// Truncates x toward zero to a signed 64-bit integer; out of range (or NaN)
// gives INT64_MIN, the processor's 64-bit "integer indefinite" result (whose
// low 32 bits are 0).
inline std::int64_t TruncToInt64(double x) {
  if (!(x >= -9223372036854775808.0 && x < 9223372036854775808.0)) return INT64_MIN;
  return static_cast<std::int64_t>(x);
}

}  // namespace frame
}  // namespace ostrel

#endif  // OSTREL_FRAME_NUMERIC_H

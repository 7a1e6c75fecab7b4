// What the harnesses share: the fuzzer's bytes read as arguments (often the
// values where 32-bit arithmetic wraps), buffers allocated at exactly their
// size so that AddressSanitizer reports any access past either end, the
// clipping rule the compositing functions document, and a call run under
// every instruction set with its results compared byte for byte.
#ifndef OSTREL_FUZZ_FUZZ_UTIL_H
#define OSTREL_FUZZ_FUZZ_UTIL_H

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <vector>

#include "frame/dispatch.h"

namespace fuzz {

using u8 = std::uint8_t;
using u16 = std::uint16_t;
using u32 = std::uint32_t;
using i32 = std::int32_t;

// What the current input does, printed with any failure of a check here,
// and for every input when OSTREL_FUZZ_SCENE is set (to see the call behind
// a sanitizer's report: OSTREL_FUZZ_SCENE=1 fuzz_colour crash-file).
inline char g_scene[512];
inline const bool g_printScenes = std::getenv("OSTREL_FUZZ_SCENE") != nullptr;

inline void Describe(const char *format, ...) {
  va_list args;
  va_start(args, format);
  std::vsnprintf(g_scene, sizeof g_scene, format, args);
  va_end(args);
  if (g_printScenes) std::fprintf(stderr, "scene: %s\n", g_scene);
}

// Reports a broken expectation and stops: libFuzzer keeps the input.
[[noreturn]] inline void Fail(const char *file, int line, const char *format, ...) {
  std::fprintf(stderr, "\n%s:%d: ", file, line);
  va_list args;
  va_start(args, format);
  std::vfprintf(stderr, format, args);
  va_end(args);
  std::fprintf(stderr, "\n  in: %s\n", g_scene);
  std::abort();
}
#define FUZZ_CHECK(condition, ...) \
  ((condition) ? static_cast<void>(0) : ::fuzz::Fail(__FILE__, __LINE__, __VA_ARGS__))

// The fuzzer's bytes as arguments. Past the end of the input every value
// reads as 0 (the low end of its range).
class Input {
 public:
  Input(const u8 *data, std::size_t size) : p_(data, size) {}

  template <class T>
  T In(T lo, T hi) {
    return p_.ConsumeIntegralInRange<T>(lo, hi);
  }
  bool Bool() { return p_.ConsumeBool(); }
  u8 Byte() { return p_.ConsumeIntegral<u8>(); }
  u32 U32() { return p_.ConsumeIntegral<u32>(); }
  template <std::size_t N>
  u32 Pick(const u32 (&values)[N]) {
    return values[In<std::size_t>(0, N - 1)];
  }

  // A region corner: mostly inside the buffer (0 .. extent), now and then
  // beyond it, where the region is empty.
  u32 Corner(u32 extent) { return In<u32>(0, extent + 2); }

  // A region size: mostly small or the exact room up to the edge, else a
  // value where left + size wraps, else anything.
  u32 Size(u32 room) {
    static const u32 kWide[] = {0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFEu, 0xFFFFFFFFu};
    switch (In(0, 7)) {
      case 0: return room;
      case 1: return room + 1;
      case 2: return Pick(kWide);
      case 3: return U32();
      default: return In<u32>(0, 72);
    }
  }

  // A signed coordinate or size near the buffer (-3 .. span + 3) or at the
  // ends of the int range.
  i32 Coord(i32 span) {
    static const i32 kEnds[] = {INT_MIN, INT_MIN + 1, -1, INT_MAX - 1, INT_MAX};
    switch (In(0, 5)) {
      case 0: return kEnds[In(0, 4)];
      case 1: return static_cast<i32>(U32());
      default: return In<i32>(-3, span + 3);
    }
  }

  // A double: mostly one of the values where conversions and loops turn
  // (infinities, NaN, the ends of the int range, tiny and huge values), else
  // a small number or any bit pattern.
  double Real() {
    static const double kTurns[] = {0.0,
                                    -0.0,
                                    0.5,
                                    -0.5,
                                    1.0,
                                    -1.0,
                                    2.0,
                                    7.5,
                                    1e-17,
                                    -1e-17,
                                    2147483647.0,
                                    2147483648.0,
                                    -2147483648.0,
                                    -2147483649.0,
                                    4294967296.0,
                                    9.3e18,
                                    -9.3e18,
                                    1e300,
                                    -1e300,
                                    std::numeric_limits<double>::max(),
                                    std::numeric_limits<double>::lowest(),
                                    std::numeric_limits<double>::min(),
                                    std::numeric_limits<double>::denorm_min(),
                                    std::numeric_limits<double>::infinity(),
                                    -std::numeric_limits<double>::infinity(),
                                    std::numeric_limits<double>::quiet_NaN()};
    switch (In(0, 3)) {
      case 0: return kTurns[In<std::size_t>(0, sizeof kTurns / sizeof kTurns[0] - 1)];
      case 1: {
        const u32 high = U32(), low = U32();
        const std::uint64_t bits = (std::uint64_t{high} << 32) | low;
        double d;
        std::memcpy(&d, &bits, sizeof d);
        return d;
      }
      default: return In<i32>(-100000, 100000) / 64.0;
    }
  }

  // n values from the input's remaining bytes, each masked; once they run
  // out, from a generator seeded by the bytes read.
  template <class T>
  void Fill(T *values, std::size_t n, std::uint64_t mask = ~std::uint64_t{0}) {
    std::uint64_t state = 0x9E3779B97F4A7C15u;
    for (std::size_t i = 0; i < n; ++i) {
      std::uint64_t v = 0;
      if (p_.remaining_bytes() >= sizeof(T)) {
        for (std::size_t b = 0; b < sizeof(T); ++b) v = v << 8 | p_.ConsumeIntegral<u8>();
        state = state * 6364136223846793005u + v + 1;
      } else {
        state = state * 6364136223846793005u + 1442695040888963407u;
        v = state >> 17;
      }
      values[i] = static_cast<T>(v & mask);
    }
  }

 private:
  FuzzedDataProvider p_;
};

// A buffer of exactly n elements on the heap: no slack on either side.
template <class T>
class Buffer {
 public:
  explicit Buffer(std::size_t n) : n_(n), p_(new T[n]()) {}
  T *Data() { return p_.get(); }
  std::size_t Size() const { return n_; }
  T &operator[](std::size_t i) { return p_[i]; }
  std::vector<T> Copy() const { return std::vector<T>(p_.get(), p_.get() + n_); }

 private:
  std::size_t n_;
  std::unique_ptr<T[]> p_;
};

// A buffer's bytes, for the comparisons.
struct Bytes {
  void *data;
  std::size_t size;
  template <class T>
  Bytes(Buffer<T> &b) : data(b.Data()), size(b.Size() * sizeof(T)) {}  // NOLINT: implicit
};

// The columns (or rows) of a region of `size` from `start` that lie before
// `end`: the compositing functions' clipping, with start + size taken
// without wrapping (a size reaching past 2^32 goes to the edge).
inline u32 Span(u32 end, u32 start, u32 size) {
  return start >= end ? 0 : static_cast<u32>(std::min<std::uint64_t>(end - start, size));
}

// Runs call under each instruction set the processor offers, the scalar
// kernels first, each time from the same starting contents of buffers, and
// fails where a run leaves any byte of them different from the scalar run.
template <class Call>
void SameUnderEveryIsa(std::initializer_list<Bytes> buffers, Call &&call) {
  using ostrel::frame::simd::Isa;
  std::vector<std::vector<u8>> start, scalar;
  for (const Bytes &b : buffers) {
    const u8 *p = static_cast<const u8 *>(b.data);
    start.emplace_back(p, p + b.size);
  }
  for (const auto &info : ostrel::frame::simd::RunnableIsas()) {
    std::size_t k = 0;
    for (const Bytes &b : buffers) {
      if (b.size != 0) std::memcpy(b.data, start[k].data(), b.size);
      ++k;
    }
    {
      const ostrel::frame::simd::ScopedIsaLimit limit(info.isa);
      call();
    }
    k = 0;
    for (const Bytes &b : buffers) {
      const u8 *p = static_cast<const u8 *>(b.data);
      if (info.isa == Isa::kScalar) {
        scalar.emplace_back(p, p + b.size);
      } else {
        const auto at = std::mismatch(p, p + b.size, scalar[k].data());
        FUZZ_CHECK(at.first == p + b.size,
                   "%s differs from the scalar kernels: buffer %zu, byte %zu "
                   "(0x%02x, scalar 0x%02x)",
                   info.name, k, static_cast<std::size_t>(at.first - p), *at.first, *at.second);
      }
      ++k;
    }
  }
}

}  // namespace fuzz

#endif  // OSTREL_FUZZ_FUZZ_UTIL_H

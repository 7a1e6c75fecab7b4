// The blend arithmetic of the compositing functions, one scalar definition.
//
// A blend moves a destination channel d toward a source channel s by a weight
// that is formed from a coverage c (a source alpha byte, a grey value, a mask
// byte: each function says which) and the global opacity o. There are two
// forms, and one call uses exactly one of them:
//
//   exact  W = (c * o) / 255
//          d + ((s - d) * W) / 255        signed product, truncated toward 0
//   fast   w = (c * o) >> 8               (so never more than 254)
//          d + floor(((s - d) * w) / 256) the product shifted arithmetically
//
// The exact form reaches s when W is 255; the fast form never quite does
// (255 over 0 gives 253), a difference that is accepted for speed. A call
// runs the fast form when its `exact` argument is false and the module's
// fast-form flag is set (frame/module.h).
//
// Every vector kernel must give exactly these results; the tests hold the
// kernels to these functions.
#ifndef OSTREL_FRAME_BLEND_H
#define OSTREL_FRAME_BLEND_H

#include <cstdint>

namespace ostrel {
namespace frame {
namespace blend {

static_assert((-1 >> 1) == -1, "the fast form needs an arithmetic right shift of signed values");

enum class Form { kExact, kFast };

}  // namespace blend

// The module-wide fast-form flag: nonzero when the processor offers MMX (set
// when the library is loaded, frame/module.h). The compositing functions that
// have a fast form run it when their `exact` argument is false and this flag
// is set. 0 until the library is loaded.
extern int g_fastFormFlag;

inline bool UseFastForm(bool exact) { return !exact && g_fastFormFlag != 0; }

namespace blend {

// The form a call runs, as an index into the two-form kernel entries.
inline int FormIndex(bool exact) {
  return static_cast<int>(UseFastForm(exact) ? Form::kFast : Form::kExact);
}

// ---- Weights -------------------------------------------------------------

constexpr std::uint32_t ExactWeight(std::uint32_t coverage, std::uint32_t opacity) {
  return coverage * opacity / 255;
}

constexpr std::uint32_t FastWeight(std::uint32_t coverage, std::uint32_t opacity) {
  return (coverage * opacity) >> 8;
}

template <Form form>
constexpr std::uint32_t Weight(std::uint32_t coverage, std::uint32_t opacity) {
  return form == Form::kExact ? ExactWeight(coverage, opacity) : FastWeight(coverage, opacity);
}

// ---- Division by 255 without dividing --------------------------------------
// For every x in 0..65535, x / 255 == (x * 0x8081) >> 23: the vector kernels
// divide their 16-bit products this way (a high multiply by 0x8081 and a
// shift by 7). The tests check the identity for every x.

constexpr std::uint32_t kDiv255Multiplier = 0x8081;
constexpr int kDiv255Shift = 23;

constexpr std::uint32_t Div255ByMultiply(std::uint32_t x) {
  return (x * kDiv255Multiplier) >> kDiv255Shift;
}

// ---- One channel ---------------------------------------------------------
// d and s are channel values (bytes, or 16-bit words for 12-bit grey), the
// weight 0..255. The result is the new value before it is stored; for bytes
// it always lies between d and s.

constexpr std::int32_t ExactChannel(std::int32_t d, std::int32_t s, std::uint32_t weight) {
  return d + (s - d) * static_cast<std::int32_t>(weight) / 255;
}

constexpr std::int32_t FastChannel(std::int32_t d, std::int32_t s, std::uint32_t weight) {
  return d + (((s - d) * static_cast<std::int32_t>(weight)) >> 8);
}

template <Form form>
constexpr std::int32_t Channel(std::int32_t d, std::int32_t s, std::uint32_t weight) {
  return form == Form::kExact ? ExactChannel(d, s, weight) : FastChannel(d, s, weight);
}

// ---- One 32-bit colour pixel ---------------------------------------------
// Blue (bits 0-7), green (8-15) and red (16-23) of dst move toward those of
// src by weight; the alpha byte (24-31) of dst is kept. Each channel is
// stored as a byte (its low 8 bits: only a weight above 255, which a 16-bit
// coverage word can give, leaves the range).

template <Form form>
constexpr std::uint32_t Pixel(std::uint32_t dst, std::uint32_t src, std::uint32_t weight) {
  std::uint32_t out = dst & 0xFF000000u;
  for (int shift = 0; shift <= 16; shift += 8) {
    const std::int32_t d = static_cast<std::int32_t>((dst >> shift) & 0xFF);
    const std::int32_t s = static_cast<std::int32_t>((src >> shift) & 0xFF);
    out |= (static_cast<std::uint32_t>(Channel<form>(d, s, weight)) & 0xFFu) << shift;
  }
  return out;
}

constexpr std::uint32_t ExactPixel(std::uint32_t dst, std::uint32_t src, std::uint32_t weight) {
  return Pixel<Form::kExact>(dst, src, weight);
}

constexpr std::uint32_t FastPixel(std::uint32_t dst, std::uint32_t src, std::uint32_t weight) {
  return Pixel<Form::kFast>(dst, src, weight);
}

}  // namespace blend
}  // namespace frame
}  // namespace ostrel

#endif  // OSTREL_FRAME_BLEND_H

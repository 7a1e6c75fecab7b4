// Blend arithmetic on 16-bit lanes, written once for any vector operation set
// V (simd_sse2.h, simd_avx2.h, simd_neon.h). Shared by the vector kernels of the colour and
// grey families; include it after the ops header (in an AVX2 file, after
// OSTREL_BEGIN_AVX2).
#ifndef OSTREL_COMPOSITING_SIMD_LANES_H
#define OSTREL_COMPOSITING_SIMD_LANES_H

#include "frame/blend.h"

namespace ostrel {
namespace compositing {
namespace {

// x / 255 for 16-bit lanes, as frame::blend::Div255ByMultiply: the high half of the
// product is the product shifted by 16.
template <class V>
typename V::Reg Div255(typename V::Reg x) {
  const typename V::Reg high = V::MulHiU16(x, V::Set16(frame::blend::kDiv255Multiplier));
  return V::template ShiftRight16<frame::blend::kDiv255Shift - 16>(high);
}

// Channels in 16-bit lanes, each with its own weight in w (the fast form
// takes 2 * w). Only the low byte of each lane is meaningful afterwards.
template <class V, frame::blend::Form form>
typename V::Reg BlendLanes(typename V::Reg d, typename V::Reg s, typename V::Reg w) {
  const typename V::Reg diff = V::Sub16(s, d);
  if (form == frame::blend::Form::kExact) {
    const typename V::Reg moved = Div255<V>(V::MulLo16(V::Abs16(diff), w));
    return V::Add16(d, V::Sign16(moved, diff));
  }
  return V::Add16(d, V::MulHiS16(V::template ShiftLeft16<7>(diff), w));
}

}  // namespace
}  // namespace compositing
}  // namespace ostrel

#endif  // OSTREL_COMPOSITING_SIMD_LANES_H

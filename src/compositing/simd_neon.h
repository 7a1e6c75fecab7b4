// Vector operations on four 32-bit pixels with NEON (aarch64), under the
// names the kernel templates use. Every operation gives in every lane what
// the operation of the same name in simd_sse2.h gives, so the templates run
// unchanged; where NEON has a native form (unsigned 16-bit minimum and
// maximum, saturating narrows, absolute values) it is used. Include it only
// in a NEON kernel file.
#ifndef OSTREL_COMPOSITING_SIMD_NEON_H
#define OSTREL_COMPOSITING_SIMD_NEON_H

#include <arm_neon.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace ostrel {
namespace compositing {
namespace {

struct Neon {
  // A register is kept as bytes; each operation reads it in the lane width
  // it works on (the casts cost no instruction).
  using Reg = uint8x16_t;
  static constexpr std::size_t kPixels = 4;

  static uint16x8_t U16(Reg a) { return vreinterpretq_u16_u8(a); }
  static int16x8_t S16(Reg a) { return vreinterpretq_s16_u8(a); }
  static uint32x4_t U32(Reg a) { return vreinterpretq_u32_u8(a); }
  static Reg R(uint16x8_t a) { return vreinterpretq_u8_u16(a); }
  static Reg R(int16x8_t a) { return vreinterpretq_u8_s16(a); }
  static Reg R(uint32x4_t a) { return vreinterpretq_u8_u32(a); }

  static Reg Load(const std::uint32_t *p) { return R(vld1q_u32(p)); }
  static void Store(std::uint32_t *p, Reg v) { vst1q_u32(p, U32(v)); }
  // kPixels bytes or 16-bit words, each widened to a 32-bit lane.
  static Reg BytesToLanes(const std::uint8_t *p) {
    std::uint32_t four;
    std::memcpy(&four, p, sizeof four);
    const uint8x8_t bytes = vreinterpret_u8_u32(vdup_n_u32(four));
    return R(vmovl_u16(vget_low_u16(vmovl_u8(bytes))));
  }
  static Reg WordsToLanes(const std::uint16_t *p) { return R(vmovl_u16(vld1_u16(p))); }

  // Asks for the cache line holding p; never faults.
  static void Prefetch(const void *p) { __builtin_prefetch(p); }

  // Word maps.
  // Bytes widened to 16-bit lanes in order: the first and the second half of
  // a register of bytes.
  static Reg WidenBytesLo(Reg a) { return R(vmovl_u8(vget_low_u8(a))); }
  static Reg WidenBytesHi(Reg a) { return R(vmovl_high_u8(a)); }
  // a + b, unsigned 16-bit lanes, saturating at 65535.
  static Reg AddSatU16(Reg a, Reg b) { return R(vqaddq_u16(U16(a), U16(b))); }
  // Two registers of 16-bit lanes narrowed to bytes in order, each signed
  // lane saturated to 0..255.
  static Reg NarrowWords(Reg lo, Reg hi) { return PackUs16(lo, hi); }

  static Reg Zero() { return vdupq_n_u8(0); }
  static Reg Set32(std::uint32_t v) { return R(vdupq_n_u32(v)); }
  static Reg Set16(std::uint16_t v) { return R(vdupq_n_u16(v)); }

  static Reg And(Reg a, Reg b) { return vandq_u8(a, b); }
  static Reg AndNot(Reg a, Reg b) { return vbicq_u8(b, a); }  // ~a & b
  static Reg Or(Reg a, Reg b) { return vorrq_u8(a, b); }
  static Reg Xor(Reg a, Reg b) { return veorq_u8(a, b); }
  static Reg CmpEq32(Reg a, Reg b) { return R(vceqq_u32(U32(a), U32(b))); }

  static Reg Add16(Reg a, Reg b) { return R(vaddq_u16(U16(a), U16(b))); }
  static Reg Sub16(Reg a, Reg b) { return R(vsubq_u16(U16(a), U16(b))); }
  static Reg SubSatU16(Reg a, Reg b) { return R(vqsubq_u16(U16(a), U16(b))); }
  static Reg MulLo16(Reg a, Reg b) { return R(vmulq_u16(U16(a), U16(b))); }
  // The high 16 bits of each 32-bit product: the odd halves of the widened
  // products of the low and the high lanes.
  static Reg MulHiU16(Reg a, Reg b) {
    const uint32x4_t lo = vmull_u16(vget_low_u16(U16(a)), vget_low_u16(U16(b)));
    const uint32x4_t hi = vmull_high_u16(U16(a), U16(b));
    return R(vuzp2q_u16(vreinterpretq_u16_u32(lo), vreinterpretq_u16_u32(hi)));
  }
  static Reg MulHiS16(Reg a, Reg b) {
    const int32x4_t lo = vmull_s16(vget_low_s16(S16(a)), vget_low_s16(S16(b)));
    const int32x4_t hi = vmull_high_s16(S16(a), S16(b));
    return R(vuzp2q_s16(vreinterpretq_s16_s32(lo), vreinterpretq_s16_s32(hi)));
  }
  // Shifts by a constant count n, 0 < n < the lane width (the kernels shift
  // by no other counts; NEON's immediate forms reject them when compiled).
  template <int n>
  static Reg ShiftLeft16(Reg a) {
    return R(vshlq_n_u16(U16(a), n));
  }
  template <int n>
  static Reg ShiftRight16(Reg a) {
    return R(vshrq_n_u16(U16(a), n));
  }
  template <int n>
  static Reg ShiftLeft32(Reg a) {
    return R(vshlq_n_u32(U32(a), n));
  }
  template <int n>
  static Reg ShiftRight32(Reg a) {
    return R(vshrq_n_u32(U32(a), n));
  }
  // |a| (-32768 stays -32768, as on x86) and b negated where a < 0, 16-bit
  // lanes.
  static Reg Abs16(Reg a) { return R(vabsq_s16(S16(a))); }
  // (The negation wraps in unsigned lanes: b = -32768 stays -32768.)
  static Reg Sign16(Reg b, Reg a) {
    const uint16x8_t sign = vreinterpretq_u16_s16(vshrq_n_s16(S16(a), 15));
    return R(vsubq_u16(veorq_u16(U16(b), sign), sign));
  }

  // Whole registers of bytes (kBytes of them), for the grey kernels; bytes
  // widen to 16-bit lanes by interleaving with zero and narrow back with
  // unsigned saturation of the signed lanes, in order.
  static constexpr std::size_t kBytes = 16;
  static Reg LoadBytes(const void *p) { return vld1q_u8(static_cast<const std::uint8_t *>(p)); }
  static void StoreBytes(void *p, Reg v) { vst1q_u8(static_cast<std::uint8_t *>(p), v); }
  static Reg UnpackLo8(Reg a, Reg b) { return vzip1q_u8(a, b); }
  static Reg UnpackHi8(Reg a, Reg b) { return vzip2q_u8(a, b); }
  static Reg PackUs16(Reg a, Reg b) { return vqmovun_high_s16(vqmovun_s16(S16(a)), S16(b)); }
  static Reg CmpEq16(Reg a, Reg b) { return R(vceqq_u16(U16(a), U16(b))); }

  // Darken and lighten: unsigned minimum and maximum of bytes and of 16-bit
  // words.
  static Reg MinU8(Reg a, Reg b) { return vminq_u8(a, b); }
  static Reg MaxU8(Reg a, Reg b) { return vmaxq_u8(a, b); }
  static Reg MinU16(Reg a, Reg b) { return R(vminq_u16(U16(a), U16(b))); }
  static Reg MaxU16(Reg a, Reg b) { return R(vmaxq_u16(U16(a), U16(b))); }

  // Words (12-bit grey kernels).
  // Whole registers of 16-bit words (kWords of them), and kWords coverage
  // bytes widened to 16-bit lanes.
  static constexpr std::size_t kWords = 8;
  static Reg LoadWords(const std::uint16_t *p) { return R(vld1q_u16(p)); }
  static void StoreWords(std::uint16_t *p, Reg v) { vst1q_u16(p, U16(v)); }
  static Reg BytesToWords(const std::uint8_t *p) { return R(vmovl_u8(vld1_u8(p))); }
};

}  // namespace
}  // namespace compositing
}  // namespace ostrel

#endif  // OSTREL_COMPOSITING_SIMD_NEON_H

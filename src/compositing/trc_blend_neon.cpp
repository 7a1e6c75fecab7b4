// Blends into 32-bit colour pixels with NEON.
#include "compositing/simd_neon.h"
#include "compositing/trc_blend_kernels.h"
#include "compositing/trc_blend_simd.inl"
#include "frame/blend.h"

namespace ostrel {
namespace compositing {

constexpr TrcBlendKernels TrcBlendKernelsNeon = MakeTrcBlendKernels<Neon>();

}  // namespace compositing
}  // namespace ostrel

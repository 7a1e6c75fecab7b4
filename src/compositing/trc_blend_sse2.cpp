// Blends into 32-bit colour pixels with SSE2.
#include "compositing/trc_blend_kernels.h"
#include "frame/blend.h"
#include "compositing/simd_sse2.h"
#include "compositing/trc_blend_simd.inl"

namespace ostrel {

constexpr TrcBlendKernels TrcBlendKernelsSse2 = MakeTrcBlendKernels<Sse2>();

}  // namespace ostrel

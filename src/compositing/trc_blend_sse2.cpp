// Blends into 32-bit colour pixels with SSE2.
#include "compositing/simd_sse2.h"
#include "compositing/trc_blend_kernels.h"
#include "compositing/trc_blend_simd.inl"
#include "frame/blend.h"

namespace ostrel {
namespace compositing {

constexpr TrcBlendKernels TrcBlendKernelsSse2 = MakeTrcBlendKernels<Sse2>();

}  // namespace compositing
}  // namespace ostrel

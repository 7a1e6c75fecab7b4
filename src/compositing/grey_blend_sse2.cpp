// Grey compositing into 8-bit destinations with SSE2.
#include "compositing/grey_blend_kernels.h"
#include "frame/blend.h"
#include "compositing/simd_sse2.h"
#include "compositing/grey_blend_simd.inl"

namespace ostrel {

constexpr GreyBlendKernels GreyBlendKernelsSse2 = MakeGreyBlendKernels<Sse2>();

}  // namespace ostrel

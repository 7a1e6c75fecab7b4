// Grey compositing into 8-bit destinations with SSE2.
#include "compositing/grey_blend_kernels.h"
#include "compositing/grey_blend_simd.inl"
#include "compositing/simd_sse2.h"
#include "frame/blend.h"

namespace ostrel {
namespace compositing {

constexpr GreyBlendKernels GreyBlendKernelsSse2 = MakeGreyBlendKernels<Sse2, void>(LookupRow);

}  // namespace compositing
}  // namespace ostrel

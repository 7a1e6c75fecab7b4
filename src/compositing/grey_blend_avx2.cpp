// Grey compositing into 8-bit destinations with AVX2.
#include <cstring>

#include "compositing/grey_blend_kernels.h"
#include "frame/blend.h"

OSTREL_BEGIN_AVX2
#include "compositing/grey_blend_simd.inl"
#include "compositing/simd_avx2.h"

namespace ostrel {
namespace compositing {

constexpr GreyBlendKernels GreyBlendKernelsAvx2 = MakeGreyBlendKernels<Avx2>();

}  // namespace compositing
}  // namespace ostrel
OSTREL_END_AVX2

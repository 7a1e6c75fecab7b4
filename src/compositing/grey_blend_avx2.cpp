// Grey compositing into 8-bit destinations with AVX2.
#include <cstring>

#include "compositing/grey_blend_kernels.h"
#include "frame/blend.h"

OSTREL_BEGIN_AVX2
#include "compositing/simd_avx2.h"
#include "compositing/grey_blend_simd.inl"

namespace ostrel {

constexpr GreyBlendKernels GreyBlendKernelsAvx2 = MakeGreyBlendKernels<Avx2>();

}  // namespace ostrel
OSTREL_END_AVX2

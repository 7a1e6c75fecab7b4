// Blends into 32-bit colour pixels with AVX2.
#include <cstring>

#include "compositing/trc_blend_kernels.h"
#include "frame/blend.h"

OSTREL_BEGIN_AVX2
#include "compositing/simd_avx2.h"
#include "compositing/trc_blend_simd.inl"

namespace ostrel {
namespace compositing {

constexpr TrcBlendKernels TrcBlendKernelsAvx2 = MakeTrcBlendKernels<Avx2>();

}  // namespace compositing
}  // namespace ostrel
OSTREL_END_AVX2

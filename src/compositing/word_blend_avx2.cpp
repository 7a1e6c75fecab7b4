// Grey compositing into 16-bit destination words with AVX2.
#include <cstring>

#include "compositing/word_blend_kernels.h"
#include "frame/blend.h"

OSTREL_BEGIN_AVX2
#include "compositing/simd_avx2.h"
#include "compositing/word_blend_simd.inl"

namespace ostrel {
namespace compositing {

constexpr WordBlendKernels WordBlendKernelsAvx2 = MakeWordBlendKernels<Avx2>();

}  // namespace compositing
}  // namespace ostrel
OSTREL_END_AVX2

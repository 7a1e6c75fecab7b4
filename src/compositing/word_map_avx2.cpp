// Per-pixel maps of 12-bit grey buffers with AVX2.
#include <cstring>

#include "compositing/word_map_kernels.h"
#include "frame/blend.h"

OSTREL_BEGIN_AVX2
#include "compositing/simd_avx2.h"
#include "compositing/word_map_simd.inl"

namespace ostrel {
namespace compositing {

constexpr WordMapKernels WordMapKernelsAvx2 = MakeWordMapKernels<Avx2, &WordMapKernelsSse2>();

}  // namespace compositing
}  // namespace ostrel
OSTREL_END_AVX2

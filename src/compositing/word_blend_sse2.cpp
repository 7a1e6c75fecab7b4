// Grey compositing into 16-bit destination words with SSE2.
#include "compositing/simd_sse2.h"
#include "compositing/word_blend_kernels.h"
#include "compositing/word_blend_simd.inl"
#include "frame/blend.h"

namespace ostrel {
namespace compositing {

constexpr WordBlendKernels WordBlendKernelsSse2 = MakeWordBlendKernels<Sse2>();

}  // namespace compositing
}  // namespace ostrel

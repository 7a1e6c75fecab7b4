// Grey compositing into 16-bit destination words with NEON.
#include "compositing/simd_neon.h"
#include "compositing/word_blend_kernels.h"
#include "compositing/word_blend_simd.inl"
#include "frame/blend.h"

namespace ostrel {
namespace compositing {

constexpr WordBlendKernels WordBlendKernelsNeon = MakeWordBlendKernels<Neon>();

}  // namespace compositing
}  // namespace ostrel

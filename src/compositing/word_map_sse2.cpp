// Per-pixel maps of 12-bit grey buffers with SSE2.
#include "compositing/simd_sse2.h"
#include "compositing/word_map_kernels.h"
#include "compositing/word_map_simd.inl"
#include "frame/blend.h"

namespace ostrel {
namespace compositing {

constexpr WordMapKernels WordMapKernelsSse2 = MakeWordMapKernels<Sse2, &WordMapKernelsScalar>();

}  // namespace compositing
}  // namespace ostrel

// Per-pixel maps of 12-bit grey buffers with NEON.
#include "compositing/simd_neon.h"
#include "compositing/word_map_kernels.h"
#include "compositing/word_map_simd.inl"
#include "frame/blend.h"

namespace ostrel {
namespace compositing {

constexpr WordMapKernels WordMapKernelsNeon = MakeWordMapKernels<Neon, &WordMapKernelsScalar>();

}  // namespace compositing
}  // namespace ostrel

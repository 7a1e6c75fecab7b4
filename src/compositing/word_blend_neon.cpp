// The NEON table: no entry of its own yet, so every row runs the scalar
// kernel (see frame/dispatch.h).
#include "compositing/word_blend_kernels.h"

namespace ostrel {
namespace compositing {

constexpr WordBlendKernels WordBlendKernelsNeon = {};

}  // namespace compositing
}  // namespace ostrel

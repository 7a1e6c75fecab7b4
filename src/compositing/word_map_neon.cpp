// The NEON table: no entry of its own yet, so every row runs the scalar
// kernel (see frame/dispatch.h).
#include "compositing/word_map_kernels.h"

namespace ostrel {
namespace compositing {

constexpr WordMapKernels WordMapKernelsNeon = {};

}  // namespace compositing
}  // namespace ostrel

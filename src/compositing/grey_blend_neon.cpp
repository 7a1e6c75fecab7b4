// The NEON table: no entry of its own yet, so every row runs the scalar
// kernel (see frame/dispatch.h).
#include "compositing/grey_blend_kernels.h"

namespace ostrel {
namespace compositing {

constexpr GreyBlendKernels GreyBlendKernelsNeon = {};

}  // namespace compositing
}  // namespace ostrel

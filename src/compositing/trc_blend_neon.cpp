// The NEON table: no entry of its own yet, so every row runs the scalar
// kernel (see frame/dispatch.h).
#include "compositing/trc_blend_kernels.h"

namespace ostrel {
namespace compositing {

constexpr TrcBlendKernels TrcBlendKernelsNeon = {};

}  // namespace compositing
}  // namespace ostrel

// The NEON table: no entry of its own yet, so every row runs the scalar
// kernel (see frame/dispatch.h).
#include "compositing/fills_kernels.h"

namespace ostrel {
namespace compositing {

constexpr FillKernels FillKernelsNeon = {};

}  // namespace compositing
}  // namespace ostrel

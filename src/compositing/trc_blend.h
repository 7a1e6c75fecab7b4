// The plumbing the blends into 32-bit colour share: the form index
// (frame/blend.h) and running a row kernel over a clipped region.
#ifndef OSTREL_COMPOSITING_TRC_BLEND_H
#define OSTREL_COMPOSITING_TRC_BLEND_H

#include "compositing/trc_blend_kernels.h"
#include "frame/blend.h"
#include "frame/module.h"
#include "frame/region.h"

namespace ostrel {
namespace compositing {

using frame::blend::FormIndex;

// The blend of a paint colour at an opacity.
inline TrcBlend PaintBlend(unsigned int colour, unsigned int opacity) {
  TrcBlend blend;
  blend.colour = colour;
  blend.opacity = opacity;
  return blend;
}

// Calls kernel(rowOf(j), blend) for each row j of the clipped region.
template <class RowOf>
void BlendRows(frame::Extent e, TrcRowKernel kernel, const TrcBlend &blend, RowOf &&rowOf) {
  for (std::uint32_t j = 0; j < e.rows; ++j) kernel(rowOf(j), blend);
}

}  // namespace compositing
}  // namespace ostrel

#endif  // OSTREL_COMPOSITING_TRC_BLEND_H

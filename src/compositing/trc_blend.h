// The plumbing the blends into 32-bit colour share: the form index
// (frame/blend.h) and the blend of a paint colour; the region loop is
// RunRows (compositing/row_streams.h).
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

}  // namespace compositing
}  // namespace ostrel

#endif  // OSTREL_COMPOSITING_TRC_BLEND_H

// What the grey compositing files share beyond the row kernels.
#ifndef OSTREL_COMPOSITING_GREY_BLEND_H
#define OSTREL_COMPOSITING_GREY_BLEND_H

#include "compositing/grey_blend_kernels.h"

namespace ostrel {

// Every pixel of the clipped region moves toward the source byte by
// W = (alpha * opacity) / 255 (exact form); the alpha buffer has the
// source's geometry. caller names the exported function for the checked
// build's reports.
void BlendGreysThroughSharedAlpha(unsigned char *src, unsigned char *alpha, unsigned int srcWidth,
                                  unsigned int srcHeight, unsigned int srcLeft,
                                  unsigned int srcTop, unsigned char *dst, unsigned int dstWidth,
                                  unsigned int dstHeight, unsigned int dstLeft,
                                  unsigned int dstTop, unsigned char opacity,
                                  unsigned int regionWidth, unsigned int regionHeight,
                                  const char *caller);

}  // namespace ostrel

#endif  // OSTREL_COMPOSITING_GREY_BLEND_H

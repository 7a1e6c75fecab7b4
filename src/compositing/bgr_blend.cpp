// BGR blending: a solid colour through a scaled coverage picture into a
// 24-bit or 32-bit blue-green-red picture.
#include "Ostrel.h"
#include "frame/blend.h"
#include "frame/numeric.h"
#include "frame/region.h"

namespace ostrel {
namespace compositing {
namespace {

// Bytes per row: rows are padded to a multiple of 4 bytes.
std::size_t RowBytes(unsigned int width, unsigned int pixelBytes) {
  return (static_cast<std::size_t>(width) * pixelBytes + 3) & ~static_cast<std::size_t>(3);
}

// The coverage index of destination index v: trunc(v * scale), of which the
// low 32 bits count, clamped to last (an unsigned comparison).
std::uint32_t Sample(unsigned int v, double scale, unsigned int last) {
  const auto index =
      static_cast<std::uint32_t>(static_cast<std::uint64_t>(frame::TruncToInt64(v * scale)));
  return frame::MinU32(index, last);
}

void BlendBgr(unsigned int pixelBytes, const unsigned char *alpha, unsigned int alphaWidth,
              unsigned int alphaHeight, unsigned int colour, unsigned char *dst,
              unsigned int dstWidth, unsigned int dstHeight, double scaleX, double scaleY,
              const char *function) {
  // An empty coverage picture is a caller error.
  OSTREL_EXPECT(function, "alphaWidth", alphaWidth,
                dstWidth == 0 || dstHeight == 0 || alphaWidth != 0,
                "not 0 (the coverage picture must not be empty)");
  OSTREL_EXPECT(function, "alphaHeight", alphaHeight,
                dstWidth == 0 || dstHeight == 0 || alphaHeight != 0,
                "not 0 (the coverage picture must not be empty)");
  // With nothing to sample from, nothing changes (the clamp would wrap and
  // sample outside the coverage picture).
  if (alphaWidth == 0 || alphaHeight == 0) return;
  const std::size_t alphaRow = RowBytes(alphaWidth, pixelBytes);
  const std::size_t dstRow = RowBytes(dstWidth, pixelBytes);
  for (unsigned int y = 0; y < dstHeight; ++y) {
    const unsigned char *coverage = alpha + Sample(y, scaleY, alphaHeight - 1) * alphaRow;
    unsigned char *out = dst + y * dstRow;
    for (unsigned int x = 0; x < dstWidth; ++x) {
      const std::size_t column = Sample(x, scaleX, alphaWidth - 1);
      const std::uint32_t a = coverage[column * pixelBytes];
      unsigned char *pixel = out + static_cast<std::size_t>(x) * pixelBytes;
      for (int c = 0; c < 3; ++c) {
        const std::int32_t k = (colour >> (8 * c)) & 0xFF;
        pixel[c] = static_cast<unsigned char>(frame::blend::ExactChannel(pixel[c], k, a));
      }
    }
  }
}

}  // namespace
}  // namespace compositing
}  // namespace ostrel

namespace compositing = ostrel::compositing;

void AlphaBlendBGR24AlphaToBGR24(unsigned char *alpha, unsigned int alphaWidth,
                                 unsigned int alphaHeight, unsigned int colour, unsigned char *dst,
                                 unsigned int dstWidth, unsigned int dstHeight, double scaleX,
                                 double scaleY) {
  compositing::BlendBgr(3, alpha, alphaWidth, alphaHeight, colour, dst, dstWidth, dstHeight, scaleX,
                        scaleY, __func__);
}

void AlphaBlendBGR32AlphaToBGR32(unsigned char *alpha, unsigned int alphaWidth,
                                 unsigned int alphaHeight, unsigned int colour, unsigned char *dst,
                                 unsigned int dstWidth, unsigned int dstHeight, double scaleX,
                                 double scaleY) {
  compositing::BlendBgr(4, alpha, alphaWidth, alphaHeight, colour, dst, dstWidth, dstHeight, scaleX,
                        scaleY, __func__);
}

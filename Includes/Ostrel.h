// Ostrel.h - the public interface of the Ostrel library.
//
// Ostrel is a library of numeric and raster routines for the applications of
// a print-design suite. Its functions take plain numbers and pixel buffers
// that the caller owns; they return numbers, write results through pointer
// arguments, or change the caller's buffers in place. Nothing is kept between
// calls except a few module-wide flags set when the library is loaded.
//
// ---------------------------------------------------------------------------
// Pixel formats
// ---------------------------------------------------------------------------
//   TRC   unsigned int per pixel: blue in bits 0-7, green 8-15, red 16-23,
//         alpha 24-31 (in memory: blue, green, red, alpha).
//   L08   unsigned char per pixel: 8-bit grey, density or coverage.
//   L12   unsigned short per pixel: 12-bit grey in the low 12 bits.
//   alpha buffers and masks: unsigned char, 0 = no coverage, 255 = full.
// A colour passed by value is laid out like a TRC pixel.
//
// ---------------------------------------------------------------------------
// Buffers and regions
// ---------------------------------------------------------------------------
// A buffer is passed as five arguments: pointer to its first pixel, width in
// pixels (which is also the row stride; rows have no padding), height, and
// the left column and top row of the region to work on. A function that works
// on one buffer follows them with regionWidth and regionHeight. A function
// that reads a source and writes a destination takes the source's five, then
// the destination's five, then (where it has them) opacity, regionWidth,
// regionHeight and exact.
//
// Source pixel (srcLeft + i, srcTop + j) pairs with destination pixel
// (dstLeft + i, dstTop + j). The region is cut at the right and bottom edges
// of both buffers (to the narrower of the two). It is never cut at the left or
// top: left <= width and top <= height are the caller's to guarantee.
//
// Rows are processed top to bottom, pixels left to right. Raster functions
// keep no state, allocate nothing on the heap and may run on several threads
// at once on disjoint row bands of a destination.
//
// ---------------------------------------------------------------------------
// Blend arithmetic
// ---------------------------------------------------------------------------
// A blend moves each destination channel d toward a source channel s by a
// weight formed from a coverage c and the opacity o:
//   exact form:  W = (c * o) / 255;  d + ((s - d) * W) / 255, truncated
//   fast form:   w = (c * o) >> 8;   d + floor(((s - d) * w) / 256)
// A call runs the fast form when its `exact` argument is false and the
// processor offers MMX (decided once, when the library is loaded). The fast
// form never reaches s exactly: 255 over 0 gives 253.
#ifndef OSTREL_H
#define OSTREL_H

#if defined(_WIN32)
#  if defined(OSTREL_BUILDING_LIBRARY)
#    define OSTREL_API __declspec(dllexport)
#  else
#    define OSTREL_API __declspec(dllimport)
#  endif
#else
#  define OSTREL_API __attribute__((visibility("default")))
#endif

// ===========================================================================
// Repeat geometry
// ===========================================================================

// ===========================================================================
// Geometry and numeric helpers
// ===========================================================================

// ===========================================================================
// Fills and copies of colour buffers
// ===========================================================================

// Stores colour (all 32 bits) into every pixel of the region. Only the rows
// are clipped (to the buffer's height); the caller guarantees
// left + regionWidth <= width.
OSTREL_API void FillTRCBuffer(unsigned int *buffer, unsigned int width, unsigned int height,
                              unsigned int left, unsigned int top, unsigned int regionWidth,
                              unsigned int regionHeight, unsigned int colour);

// Fills the region with a checkerboard of squareSize x squareSize cells.
//
// The pixel in buffer column left + i and row top + j lies at board position
// X = phaseX + left + i, Y = phaseY + j: the horizontal position includes the
// region's left edge, the vertical one does not include its top (pass top in
// phaseY to anchor the board to the buffer in both directions). Its cell is
// (floor(X / squareSize), floor(Y / squareSize)), rounding toward minus
// infinity for negative positions, and it gets colour1 when the two cell
// indices add up to an even number, colour2 otherwise. Rows are clipped as by
// FillTRCBuffer; columns are not. squareSize must not be 0.
OSTREL_API void ChessboardFillTRCBuffer(unsigned int *buffer, unsigned int width,
                                        unsigned int height, unsigned int left, unsigned int top,
                                        unsigned int regionWidth, unsigned int regionHeight,
                                        int phaseX, int phaseY, unsigned int colour1,
                                        unsigned int colour2, unsigned int squareSize);

// Copies the region from src to dst, all 32 bits of every pixel. The region
// is clipped against both buffers. Source and destination rows must not
// overlap.
OSTREL_API void Copy2DTRCBufferToTRC(unsigned int *src, unsigned int srcWidth,
                                     unsigned int srcHeight, unsigned int srcLeft,
                                     unsigned int srcTop, unsigned int *dst,
                                     unsigned int dstWidth, unsigned int dstHeight,
                                     unsigned int dstLeft, unsigned int dstTop,
                                     unsigned int regionWidth, unsigned int regionHeight);

// As Copy2DTRCBufferToTRC, but source pixels whose whole 32-bit value (alpha
// byte included) equals keyColor leave their destination pixel as it was.
OSTREL_API void CopyTRCToTRCIfNotKeyColor(unsigned int *src, unsigned int srcWidth,
                                          unsigned int srcHeight, unsigned int srcLeft,
                                          unsigned int srcTop, unsigned int *dst,
                                          unsigned int dstWidth, unsigned int dstHeight,
                                          unsigned int dstLeft, unsigned int dstTop,
                                          unsigned int regionWidth, unsigned int regionHeight,
                                          unsigned int keyColor);

// Packs pixelCount TRC pixels into 3-byte blue, green, red triples, dropping
// the alpha byte. The buffers are flat runs of pixels: no rows, strides or
// padding (convert row by row for 24-bit rows padded to 4 bytes).
OSTREL_API void ConvertBufferFrom32To24Bits(unsigned int *src, unsigned char *dst,
                                            unsigned int pixelCount);

// ===========================================================================
// Colour-to-colour blending
// ===========================================================================

// ===========================================================================
// Grey-to-colour blending
// ===========================================================================

// ===========================================================================
// Solid-colour blending
// ===========================================================================

#endif  // OSTREL_H

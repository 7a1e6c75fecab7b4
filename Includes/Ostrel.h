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
// Plane geometry on doubles, nice axis values, piecewise-linear tables and
// tone curves. The functions keep no state and report nothing, except where
// a comment says so; bad numbers give infinities or NaN, not errors.
//
// Angles are in degrees unless the name says Rad. The system angle of a
// direction (dx, dy) runs from the positive x axis toward the positive y
// axis, in [0, 360) degrees or [0, 2 pi) radians. Results are the same to
// the last bit on every build: each function forms its doubles in the order
// its comment gives.

// How the user reads angles. Any value other than eAngleModeFromHorizontal
// counts as eAngleModeFromVertical.
enum _EAngleMode : int {
  eAngleModeFromVertical = 0,    // the user's angle is 90 minus the system angle
  eAngleModeFromHorizontal = 1,  // the user's angle is the system angle
};

struct ICoordPair;  // VornelCoordPair.h

// The system angle of the direction from (x1, y1) to (x2, y2), in degrees:
// atan(dy / dx) * 180 / pi plus 180 when dx < 0, or 360 when dy < 0 and
// dx >= 0. A vertical direction (dx == 0) gives 90 when dy >= 0 (also for
// two equal points) and 270 when dy < 0.
OSTREL_API double GetAngle(double x1, double y1, double x2, double y2);

// The same direction in radians, atan(dy / dx) plus pi when x2 < x1, or
// 2 pi when dy < 0 and x2 >= x1, with one difference: a horizontal
// direction (dy == 0) gives pi/2, to the right as to the left (and for two
// equal points). A vertical one gives pi/2 for dy > 0 and 3 pi/2 for dy < 0.
OSTREL_API double GetAngleRad(double x1, double y1, double x2, double y2);

// The point at distance from the origin in the direction angleDegrees:
// with a = angleDegrees * pi / 180, *x = cos(a) * distance and
// *y = sin(a) * distance.
OSTREL_API void GetPosition(double distance, double angleDegrees, double *x, double *y);

// The same point, written into pair with its SetXY. A negative status from
// SetXY is raised with MakeException (VornelException.h) and leaves the
// function as a CVornelException.
OSTREL_API void GetPosition(double distance, double angleDegrees, ICoordPair *pair);

// The distance between the points: sqrt(dx * dx + dy * dy).
OSTREL_API double GetLength(double x1, double y1, double x2, double y2);

// The distance from (px, py) to the line through (x1, y1) and (x2, y2);
// *angle receives the direction, in radians in [0, 2 pi), from the foot of
// the perpendicular to (px, py).
//
// A line with |y2 - y1| < 0.001 counts as horizontal: the distance is
// |py - y1| and the angle pi/2 on both sides of it. Otherwise a line with
// |x2 - x1| < 0.001 counts as vertical: |px - x1|, angle 0 on both sides.
// Otherwise, with m = dy / dx and n = tan(atan(m) - pi/2), the foot is
// fx = (x1 * m + (py - y1) - px * n) / (m - n), fy = n * (fx - px) + py, the
// angle atan2(py - fy, px - fx) (plus 2 pi if negative) and the distance
// the length of (px - fx, py - fy).
OSTREL_API double GetIntersectionDistanceDb(double px, double py, double x1, double y1, double x2,
                                            double y2, double *angle);

// Converts the angle a user sees into a system angle. With
// eAngleModeFromHorizontal the angle is returned as it is. Otherwise the
// result is 90 - angle brought into [0, 360), formed as a = angle brought
// into [0, 360), t = (360 - a) - 270, then t brought into [0, 360) (x is
// brought into [0, 360) as x - 360 * floor(x / 360)).
OSTREL_API double GetSystemAngleFromUserAngle(double angle, _EAngleMode mode);

// The inverse conversion, which is the same map: as
// GetSystemAngleFromUserAngle but with t = (360 - a) + 90.
OSTREL_API double GetUserAngleFromSystemAngle(double angle, _EAngleMode mode);

// Slanted (flexographic) layouts: the size that a slant of angleDegrees
// gives a length shortened by ratio, (1 - ratio) * length /
// tan(angleDegrees / 180 * pi). An angle of 0 gives an infinite size.
OSTREL_API double GetFlexoSizeFromAngle(double length, double ratio, double angleDegrees);

// The inverse for angles in (0, 180): atan2((1 - ratio) * length, size) *
// 180 / pi.
OSTREL_API double GetFlexoAngleFromSize(double length, double ratio, double size);

// The round value one step above v, where the step is the power of ten of
// v's decade: 0.0001 below 0.001 (zero and negative values included), 0.001
// below 0.01, ..., 1 below 10, 10 below 100, ..., 100000 below 1000000, and
// 1000000 from there up; a value on a decade's boundary belongs to the
// upper decade. For positive v the result is (trunc(v / step) + 1) * step,
// strictly above v (20 gives 30, 0.5 gives 0.6, 7.2 gives 8).
//
// It is computed as (1 - t) / f with t = trunc(v * -f), where f is the
// reciprocal of the step: 10000, ..., 10 for steps below 1, and
// 0.1, ..., 0.000001 for steps of 10 and more (steps of 1 use trunc(v) + 1).
// t is a 32-bit integer (0x80000000 when v * -f is beyond its range) and
// 1 - t wraps in 32 bits. Dividing by the fraction shows in the last bits:
// 123456 gives 199999.99999999997.
OSTREL_API double GetNiceGreaterValue(double v);

// The round value one step below the multiple of the step that v truncates
// to: for positive v, (trunc(v / step) - 1) * step, computed as
// (-1 - trunc(v * -f)) / f (steps of 1: trunc(v) - 1). It is not the mirror
// of GetNiceGreaterValue: 20 and 25 both give 10, 2.5 gives 1, 1000 gives 0.
OSTREL_API double GetNiceSmallerValue(double v);

// Reads the value at x off the piecewise-linear table of count points
// (xs[i], ys[i]). The table's abscissae may run up, down or both.
//
// The first segment i with x between xs[i] and xs[i + 1] (either way round)
// is used: ys[i] when |xs[i + 1] - xs[i]| is below the single-precision
// epsilon (1.1920928955078125e-7), else x * s + (ys[i] - xs[i] * s) with
// s = (ys[i + 1] - ys[i]) / (xs[i + 1] - xs[i]). An x that no segment holds
// gets the ys of the point nearest to it (the first of equally near ones):
// the table is not extrapolated.
//
// count must be at least 2. With fewer, the first segment is used as it is
// (xs[1] and ys[1] are read); the checked build reports the call.
OSTREL_API double GetLinearInterpoliertenWert(const double *xs, const double *ys,
                                              unsigned int count, double x);

// Tabulates a tone curve through control points, one entry per input level.
//
// points holds pointValueCount unsigned shorts, the control points as
// pairs x0, y0, x1, y1, ... (k = pointValueCount / 2 points; an odd last
// value is ignored). Their x values must not decrease.
//
// The curve is a cubic Hermite spline through the points. Its tangents start
// as the chord slope at the two end points and the mean of the two
// neighbouring chord slopes inside; then, segment by segment from the first
// (so a segment sees a tangent the one before changed), a flat chord makes
// both its tangents 0, and tangents whose ratios a, b to their chord's slope
// have a^2 + b^2 > 9 are scaled by 3 / sqrt(a^2 + b^2). Monotone control
// points give a monotone table. Tangents of the wrong sign are not zeroed,
// so other points may overshoot, which the clamping catches.
//
// table receives pairs of unsigned shorts (level, value), from its start:
// levels x0 .. x[k-1] - 1 get the spline's value rounded half away from
// zero and clamped to 0 .. maxValue; levels x[k-1] .. tableLength - 1 get
// y[k-1] as it is, not clamped. Levels below x0 get no entry, so the table
// receives max(tableLength, x[k-1]) - x0 pairs.
//
// Fewer than two control points, or x values that decrease, are invalid
// parameters: the call goes to the invalid-parameter handler (see
// SetInvalidParameterHandler) before anything is written, and does not
// return normally. Two equal neighbouring x values are not refused; they
// make tangents and values NaN or infinite.
OSTREL_API void CurveInterpolation(int pointValueCount, unsigned short *points, int tableLength,
                                   int maxValue, unsigned short *table);

// A handler for invalid parameters: function is the exported function
// called, expression the condition its arguments broke, file and line the
// place in the library's sources that checked it.
using OstrelInvalidParameterHandler = void (*)(const char *function, const char *expression,
                                               const char *file, unsigned int line);

// Installs handler (null: none) for the invalid parameters of the library's
// functions, and returns the one installed before (null if none).
//
// A function that meets an invalid parameter (so far CurveInterpolation)
// calls the installed handler. The handler may throw: the exception leaves
// the library's function, which has written nothing. If there is no handler
// or it returns, the C runtime's invalid-parameter handler runs where the
// platform has one (on Windows, the one installed with
// _set_invalid_parameter_handler, if any); then the library reports a
// CVornelException with code 1 through the suite's text manager
// (VornelTextMgr.h) and aborts the process.
OSTREL_API OstrelInvalidParameterHandler SetInvalidParameterHandler(
    OstrelInvalidParameterHandler handler);

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
// A TRC layer blended over a TRC picture with a global opacity. The members
// differ in where a pixel's coverage comes from and in the fast form's
// weight; all keep the destination's alpha byte and never read or write
// outside the clipped region.
//
//   member                               coverage c            exact W        fast w
//   AlphaBlendTRCToTRC                   source alpha byte     (c*o)/255      (c*o)>>8
//   AlphaBlendTRCToTRCNoAlpha            none (full)           o              (255*o)>>8
//   AlphaBlendTRCNoAlphaToTRC            none (full)           o              o
//   AlphaBlendTRCWithAlphaBufferToTRC    alpha buffer byte     (c*o)/255      (c*o)>>8
//     (own-geometry overload)            alpha buffer byte     (c*o)/255      no fast form

OSTREL_API void AlphaBlendTRCToTRC(unsigned int *src, unsigned int srcWidth, unsigned int srcHeight,
                                   unsigned int srcLeft, unsigned int srcTop, unsigned int *dst,
                                   unsigned int dstWidth, unsigned int dstHeight,
                                   unsigned int dstLeft, unsigned int dstTop,
                                   unsigned char opacity, unsigned int regionWidth,
                                   unsigned int regionHeight, bool exact);

// The source's alpha byte is never read: every source pixel counts as fully
// covering. The fast weight is (255 * opacity) >> 8, so opacity 255 moves a
// channel 254/256 of the way.
OSTREL_API void AlphaBlendTRCToTRCNoAlpha(unsigned int *src, unsigned int srcWidth,
                                          unsigned int srcHeight, unsigned int srcLeft,
                                          unsigned int srcTop, unsigned int *dst,
                                          unsigned int dstWidth, unsigned int dstHeight,
                                          unsigned int dstLeft, unsigned int dstTop,
                                          unsigned char opacity, unsigned int regionWidth,
                                          unsigned int regionHeight, bool exact);

// As AlphaBlendTRCToTRCNoAlpha, except that the fast weight is the opacity
// itself, so opacity 255 moves a channel 255/256 of the way.
OSTREL_API void AlphaBlendTRCNoAlphaToTRC(unsigned int *src, unsigned int srcWidth,
                                          unsigned int srcHeight, unsigned int srcLeft,
                                          unsigned int srcTop, unsigned int *dst,
                                          unsigned int dstWidth, unsigned int dstHeight,
                                          unsigned int dstLeft, unsigned int dstTop,
                                          unsigned char opacity, unsigned int regionWidth,
                                          unsigned int regionHeight, bool exact);

// Coverage from a separate alpha buffer that shares the source's geometry:
// the coverage of source pixel (x, y) is alpha[y * srcWidth + x].
OSTREL_API void AlphaBlendTRCWithAlphaBufferToTRC(unsigned int *src, unsigned char *alpha,
                                                  unsigned int srcWidth, unsigned int srcHeight,
                                                  unsigned int srcLeft, unsigned int srcTop,
                                                  unsigned int *dst, unsigned int dstWidth,
                                                  unsigned int dstHeight, unsigned int dstLeft,
                                                  unsigned int dstTop, unsigned char opacity,
                                                  unsigned int regionWidth,
                                                  unsigned int regionHeight, bool exact);

// Coverage from an alpha buffer with its own geometry: region pixel (i, j)
// reads alpha[(alphaTop + j) * alphaWidth + alphaLeft + i]. The region is
// clipped against source and destination only (alphaHeight is not used), so
// the alpha region must lie inside its buffer. Exact form only: `exact` is
// accepted and ignored.
OSTREL_API void AlphaBlendTRCWithAlphaBufferToTRC(
    unsigned int *src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcLeft,
    unsigned int srcTop, unsigned char *alpha, unsigned int alphaWidth, unsigned int alphaHeight,
    unsigned int alphaLeft, unsigned int alphaTop, unsigned int *dst, unsigned int dstWidth,
    unsigned int dstHeight, unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
    unsigned int regionWidth, unsigned int regionHeight, bool exact);

// ===========================================================================
// Grey-to-colour blending
// ===========================================================================
// Paint through a grey buffer into a TRC picture: the grey values are the
// coverage of a paint colour (or, for AlphaBlendL08WithAlphaBufferToTRC, the
// colour itself). Source is the grey buffer, destination the TRC buffer,
// clipped as two buffers.
//
// lookup, where a member takes it, is null or a 256-entry table: each grey
// value g is replaced by lookup[g] before it is used. The source buffer is
// never written.

// Coverage: the grey value (after lookup). Exact and fast forms.
OSTREL_API void AlphaBlendL08ToTRC(unsigned char *src, unsigned int srcWidth,
                                   unsigned int srcHeight, unsigned int srcLeft,
                                   unsigned int srcTop, unsigned int colour, unsigned int *dst,
                                   unsigned int dstWidth, unsigned int dstHeight,
                                   unsigned int dstLeft, unsigned int dstTop,
                                   unsigned char opacity, unsigned int regionWidth,
                                   unsigned int regionHeight, bool exact, unsigned char *lookup);

// Coverage: 255 minus the grey value. Exact and fast forms.
OSTREL_API void AlphaBlendL08ToTRCInverted(unsigned char *src, unsigned int srcWidth,
                                           unsigned int srcHeight, unsigned int srcLeft,
                                           unsigned int srcTop, unsigned int colour,
                                           unsigned int *dst, unsigned int dstWidth,
                                           unsigned int dstHeight, unsigned int dstLeft,
                                           unsigned int dstTop, unsigned char opacity,
                                           unsigned int regionWidth, unsigned int regionHeight,
                                           bool exact);

// Coverage: the grey value (after lookup), exact form. Where that value is
// not 0 the destination's alpha byte becomes 0 (even when opacity 0 leaves
// the colour as it was); where it is 0 the pixel is left whole.
OSTREL_API void AlphaBlendL08ToTRCAndEraseA(unsigned char *src, unsigned int srcWidth,
                                            unsigned int srcHeight, unsigned int srcLeft,
                                            unsigned int srcTop, unsigned int colour,
                                            unsigned int *dst, unsigned int dstWidth,
                                            unsigned int dstHeight, unsigned int dstLeft,
                                            unsigned int dstTop, unsigned char opacity,
                                            unsigned int regionWidth, unsigned int regionHeight,
                                            unsigned char *lookup);

// A mask value of 0 replaces the destination pixel by colour outright, all
// 32 bits (the colour's top byte becomes the alpha byte), whatever the
// opacity. Values 1..255 blend toward colour with coverage 255 - value in
// the exact form and keep alpha, so 255 leaves the pixel as it was.
OSTREL_API void ApplyQuickMaskToTRC(unsigned char *src, unsigned int srcWidth,
                                    unsigned int srcHeight, unsigned int srcLeft,
                                    unsigned int srcTop, unsigned int colour, unsigned int *dst,
                                    unsigned int dstWidth, unsigned int dstHeight,
                                    unsigned int dstLeft, unsigned int dstTop,
                                    unsigned char opacity, unsigned int regionWidth,
                                    unsigned int regionHeight);

// Blends the destination toward the neutral grey (g, g, g) of each source
// pixel, with coverage from an alpha buffer that shares the grey source's
// geometry (alpha[y * srcWidth + x]). Exact form only: `exact` is ignored.
OSTREL_API void AlphaBlendL08WithAlphaBufferToTRC(unsigned char *src, unsigned char *alpha,
                                                  unsigned int srcWidth, unsigned int srcHeight,
                                                  unsigned int srcLeft, unsigned int srcTop,
                                                  unsigned int *dst, unsigned int dstWidth,
                                                  unsigned int dstHeight, unsigned int dstLeft,
                                                  unsigned int dstTop, unsigned char opacity,
                                                  unsigned int regionWidth,
                                                  unsigned int regionHeight, bool exact);

// Coverage from the 16-bit source word itself, not reduced to 8 bits first:
// word / 255 in the exact form, word >> 8 in the fast form. A full 12-bit
// value (4095) therefore gives coverage 16 (exact) or 15 (fast): it moves
// the destination about a sixteenth of the way toward colour.
OSTREL_API void AlphaBlendL12ToTRC(unsigned short *src, unsigned int srcWidth,
                                   unsigned int srcHeight, unsigned int srcLeft,
                                   unsigned int srcTop, unsigned int colour, unsigned int *dst,
                                   unsigned int dstWidth, unsigned int dstHeight,
                                   unsigned int dstLeft, unsigned int dstTop,
                                   unsigned char opacity, unsigned int regionWidth,
                                   unsigned int regionHeight, bool exact);

// ===========================================================================
// Solid-colour blending
// ===========================================================================
// One colour, passed by value, laid into a TRC destination. k below is the
// colour's byte for the channel in hand.
//
// Clipping: the mask members other than AlphaBlendAlphaToTRC clip against
// the destination only; the mask is read from (maskLeft, maskTop) with
// maskWidth as its stride (maskHeight is not used), so the mask region must
// lie inside the mask buffer. AlphaBlendAlphaToTRC clips against mask and
// destination as two buffers.

// Weight: the colour's own alpha byte a, used directly:
//   exact d + ((k - d) * a) / 255,   fast d + floor(((k - d) * a) / 256).
OSTREL_API void AlphaBlendColorWithConstAlphaToTRC(unsigned int colour, unsigned int *buffer,
                                                   unsigned int width, unsigned int height,
                                                   unsigned int left, unsigned int top,
                                                   unsigned int regionWidth,
                                                   unsigned int regionHeight, bool exact);

// Coverage: the mask byte. Exact and fast forms.
OSTREL_API void AlphaBlendColorToTRC(unsigned int colour, unsigned char *mask,
                                     unsigned int maskWidth, unsigned int maskHeight,
                                     unsigned int maskLeft, unsigned int maskTop,
                                     unsigned int *dst, unsigned int dstWidth,
                                     unsigned int dstHeight, unsigned int dstLeft,
                                     unsigned int dstTop, unsigned char opacity,
                                     unsigned int regionWidth, unsigned int regionHeight,
                                     bool exact);

// The exact form is AlphaBlendColorToTRC's (coverage: the mask byte). The
// fast form inverts the coverage (255 - mask byte) for the pixels it handles
// in pairs, but uses the mask byte itself for the single pixel that ends a
// row of odd length. Both forms are kept exactly so; callers rely on them.
OSTREL_API void AlphaBlendColorToTRCInverted(unsigned int colour, unsigned char *mask,
                                             unsigned int maskWidth, unsigned int maskHeight,
                                             unsigned int maskLeft, unsigned int maskTop,
                                             unsigned int *dst, unsigned int dstWidth,
                                             unsigned int dstHeight, unsigned int dstLeft,
                                             unsigned int dstTop, unsigned char opacity,
                                             unsigned int regionWidth, unsigned int regionHeight,
                                             bool exact);

// Coverage 255 where the mask byte is not 0, else 0: W = opacity where the
// mask is set. Exact form only: `exact` is ignored.
OSTREL_API void AlphaBlendColorToTRCFlat(unsigned int colour, unsigned char *mask,
                                         unsigned int maskWidth, unsigned int maskHeight,
                                         unsigned int maskLeft, unsigned int maskTop,
                                         unsigned int *dst, unsigned int dstWidth,
                                         unsigned int dstHeight, unsigned int dstLeft,
                                         unsigned int dstTop, unsigned char opacity,
                                         unsigned int regionWidth, unsigned int regionHeight,
                                         bool exact);

// Pixels whose mask byte m is 0 are left alone. Elsewhere, per channel, the
// colour is first laid over the background b with coverage m,
// t = b + ((k - b) * m) / 255, and the destination then moves toward t by
// the opacity: d + ((t - d) * opacity) / 255. Exact form only.
OSTREL_API void AlphaBlendColorOnBGToTRC(unsigned int colour, unsigned int background,
                                         unsigned char *mask, unsigned int maskWidth,
                                         unsigned int maskHeight, unsigned int maskLeft,
                                         unsigned int maskTop, unsigned int *dst,
                                         unsigned int dstWidth, unsigned int dstHeight,
                                         unsigned int dstLeft, unsigned int dstTop,
                                         unsigned char opacity, unsigned int regionWidth,
                                         unsigned int regionHeight, bool exact);

// Blends value into the destination's alpha byte only: W = (m * opacity) /
// 255 and a + ((value - a) * W) / 255. Blue, green and red are untouched.
// Exact form only.
OSTREL_API void AlphaBlendAlphaToTRC(unsigned char value, unsigned char *mask,
                                     unsigned int maskWidth, unsigned int maskHeight,
                                     unsigned int maskLeft, unsigned int maskTop,
                                     unsigned int *dst, unsigned int dstWidth,
                                     unsigned int dstHeight, unsigned int dstLeft,
                                     unsigned int dstTop, unsigned char opacity,
                                     unsigned int regionWidth, unsigned int regionHeight,
                                     bool exact);

// Blends colour into dst with the coverage b taken from the blue byte of each
// source TRC pixel; source and destination are clipped as two buffers and
// the destination's alpha byte is always kept. The path is chosen once per
// call, all in the exact form:
//   flat                         where b != 0, blue, green and red become
//                                the colour's (opacity and scaleColour ignored)
//   opacity < 255                W = (b * opacity) / 255, d + ((k - d) * W) / 255
//   opacity 255, scaleColour     where b != 0 the channel becomes (b * k) / 255
//                                (the old value plays no part); b = 0 leaves it
//   opacity 255, not scaleColour d + ((k - d) * b) / 255
// Note the argument order: the colour comes between the source group and the
// destination pointer, and opacity right after the destination pointer.
OSTREL_API void AlphaBlendColorWithAlphaBlueOfTrcToTrc(
    unsigned int *src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcLeft,
    unsigned int srcTop, unsigned int colour, unsigned int *dst, unsigned char opacity,
    unsigned int dstWidth, unsigned int dstHeight, unsigned int dstLeft, unsigned int dstTop,
    unsigned int regionWidth, unsigned int regionHeight, bool flat, bool scaleColour);

#endif  // OSTREL_H

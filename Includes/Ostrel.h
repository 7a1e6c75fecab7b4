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
// of both buffers (to the narrower of the two):
//   columns = min(srcWidth, srcLeft + regionWidth) - srcLeft, then
//   columns = min(dstWidth, dstLeft + columns) - dstLeft; rows likewise.
// The sums are taken without wrapping, so a region size that reaches past
// 2^32 (0xFFFFFFFF among them) means "to the buffer's edge". The region is
// never cut at the left or top: left <= width and top <= height are the
// caller's to guarantee. A corner beyond its buffer leaves no columns (or no
// rows), so nothing is written; the checked build (OSTREL_CHECKED) reports it.
//
// Alpha and mask buffers with a geometry of their own take no part in
// clipping unless their function says so: they are read from their own
// corner with their own width as stride, and must hold the clipped region.
// The checked build reports an alpha or mask region that reaches past its
// buffer's width or height.
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

// The library's version, MAJOR.MINOR.PATCH: the version of the package that
// this header belongs to. The major number is also the ABI version of the
// shared library (its SONAME on ELF systems: libostrel.so.1).
#define OSTREL_VERSION_MAJOR 1
#define OSTREL_VERSION_MINOR 0
#define OSTREL_VERSION_PATCH 0

// ===========================================================================
// Processor features and worker threads
// ===========================================================================
// A query for MMX, a process-wide pool of worker threads with their events,
// and the sizing of one zeroed scratch buffer shared by several threads. No
// other function starts threads: the raster functions (the compositing and
// object sections further down) run on the caller's thread. To spread such a
// call over several threads, a caller cuts a picture into row bands, hands
// each band to a worker, and waits for the bands' done events;
// examples/band_split.h shows the whole round. Bands give the same pixels as
// one call for every raster function but two: AlphaBlendL12ToL12 with shared
// alpha and AlphaBlendL12ToL12FlatAlpha, with twoLevel set and blendZero not
// 0, write the word just right of each region row. Where the region reaches
// the buffer's right edge, that word is the first pixel of the next row,
// which the band below also writes: run such a call whole (or cut bands
// whose regions stop short of the right edge). The same write rules out
// column bands for those two.

// Nonzero when the processor offers MMX: the same query that decides, when
// the library is loaded, whether the fast blend forms run.
OSTREL_API int IsMMX();

// A unit of work for a pool worker. The worker calls Run, the first virtual
// operation, with no arguments, on its own thread. The pool never deletes a
// work object; the caller keeps it alive until the done event has fired.
class CSynchWork {
 public:
  virtual void Run() = 0;

 protected:
  ~CSynchWork() = default;
};

// A done event of the pool. available is 1 while no caller uses the event,
// 0 while one does (or when the event could not be made). event is an
// auto-reset, unnamed event: on Windows a system event handle, elsewhere the
// library's own event, signalled and waited on with SignalSynchEvent and
// WaitSynchEvent.
struct SSynchEvent {
  unsigned int available;
  void *event;
};

// One worker thread of the pool; each worker has its own thread and sleeps
// on wakeEvent (auto-reset, unnamed). When woken it calls work->Run(),
// signals doneEvent->event and then sets free back to 1.
//   free       1 = idle, may be given work; 0 = busy, or the worker could
//              not be made (its event or thread failed)
//   doneEvent  the event the worker signals when the work is done
//   work       the work to run
// free is written by the worker thread and by the caller: read and write it
// with SynchFlagLoad and SynchFlagStore (or the platform's interlocked
// operations).
struct SSynchWorker {
  unsigned int free;
  void *wakeEvent;
  SSynchEvent *doneEvent;
  CSynchWork *work;
};

// The pool, one per process.
//   state           0
//   extraWorkers    8: workers made beyond one per processor
//   workers         extraWorkers + processorCount records; null when the
//                   process may run on one processor only, or when the array
//                   could not be allocated
//   processorCount  set bits among the first 32 of the process affinity
//                   mask (0 when the worker array could not be allocated)
//   doneEvents      processorCount + 15 records; null with one processor
//   doneEventCount  number of records in doneEvents (0 when there are none)
//
// To run work: pick a worker whose free is 1 and set it to 0; take a done
// event whose available is 1 and set that to 0; store the work and the done
// event in the worker; signal its wakeEvent; wait on the done event, then
// set its available back to 1. The worker sets free to 1 only after it has
// signalled the done event, so right after the wait free may still read 0.
// The pool does no locking of its own: callers that share it from several
// threads must serialise their choice of records.
struct SynchStruct {
  unsigned int state;
  unsigned int extraWorkers;
  SSynchWorker *workers;
  unsigned int processorCount;
  SSynchEvent *doneEvents;
  unsigned int doneEventCount;
};

// The process's pool. The first call builds it (its workers start then and
// run until the process ends); make that call from one thread, before
// others use the pool. At process exit the arrays are freed; the threads are
// neither stopped nor waited for, so no work may be running then.
OSTREL_API SynchStruct *GetSynchStruct();

// Signals a pool event (a wakeEvent or the event of an SSynchEvent): on
// Windows this is SetEvent. WaitSynchEvent waits for one without time limit
// and resets it (WaitForSingleObject with INFINITE on Windows).
OSTREL_API void SignalSynchEvent(void *event);
OSTREL_API void WaitSynchEvent(void *event);

// Reads and writes a pool flag (free) that a worker thread may touch at the
// same time: the load acquires, the store releases. For GCC and Clang hosts;
// others use their compiler's interlocked operations.
#if defined(__GNUC__)
inline unsigned int SynchFlagLoad(const unsigned int *flag) {
  return __atomic_load_n(flag, __ATOMIC_ACQUIRE);
}
inline void SynchFlagStore(unsigned int *flag, unsigned int value) {
  __atomic_store_n(flag, value, __ATOMIC_RELEASE);
}
#endif

// Sizes and allocates one scratch buffer split into threadCount equal
// slices, one per thread; thread k's slice starts at
// k * linesPerThread * lineBytes. With splitLines true, total lines are
// shared out (linesPerThread = total / threadCount) and every line has
// other pixels; with splitLines false, total pixels of a line are
// (pixelsPerLine = total / threadCount) and every slice has other lines.
// threadCount must not be 0 (0 raises the processor's divide fault) and
// bytesPerPixel must be positive.
//
// The buffer may take a quarter of the memory figure M (MiB) that the
// suite's memory manager reports: limit = floor(floor(M * 0.5) * 0.5 *
// 1048576) bytes, in 64-bit arithmetic. When the slices would need more,
// splitLines true gives fewer lines per slice (limit / (threadCount *
// lineBytes)), splitLines false narrower lines (lineBytes = limit / (other
// * threadCount), then pixelsPerLine = lineBytes / bytesPerPixel and
// lineBytes = pixelsPerLine * bytesPerPixel). lineBytes is then rounded up
// to a multiple of 4, and lineBytes * linesPerThread * threadCount bytes
// are taken from g_pLargeAllocator (VornelLargeAllocator.h), zero-filled.
// The caller releases the buffer through g_pLargeAllocator.
//
// Errors (the outputs are written only on success):
//   the memory manager's query fails, or there is no memory manager:
//     MakeException with its status
//   no line fits in a slice (splitLines true), or the line is empty or
//   longer than 4 GiB (splitLines false):
//     CVornelException code 1, "Ostrel", line 9870
//   the allocator has no block of that size:
//     CVornelException code 3, "Ostrel", line 9870
OSTREL_API void CalcAndGetFixedBufferForThreads(unsigned int total, unsigned int other,
                                                int bytesPerPixel, unsigned int threadCount,
                                                unsigned int *linesPerThread,
                                                unsigned int *pixelsPerLine,
                                                unsigned int *lineBytes, unsigned char **buffer,
                                                bool splitLines);

// ===========================================================================
// Repeat geometry
// ===========================================================================

// A design is one tile (the repeat, "Rapport" or "Rapp" in the names) laid
// out over and over. x grows to the right and y downward; (0, 0) is the
// tile's top-left corner and a position is inside the tile when
// 0 <= x < repeatWidth and 0 <= y < repeatHeight. Positions outside it, of
// any sign, address the endless repeated design.
//
// All integer arithmetic is 32-bit and wraps; nothing is reported. A zero
// repeat size (or a zero view repeat size, see VPToFP) is the caller's fault:
// the integer division by it faults when a step that divides by it is
// reached (a checked build reports it instead). "a mod P" below is the
// floor-modulo, always in 0 .. P-1 for P > 0 (-1 mod 10 = 9); "trunc"
// converts a double toward zero to a 32-bit integer (a value out of range
// gives 0x80000000).
//
// Quirks kept on purpose. Where the repeat functions depart from what their
// names suggest, the historical results are part of the contract. Each quirk
// below is held by the test named after it (test suite.test name, in
// tests/repeat_*_test.cpp):
//  - ggT keeps the sign the truncating remainders leave (ggT(4, -6) = -2),
//    kgV wraps the product before dividing (kgV(65536, 65536) = 0),
//    Fakultaet wraps from 13 on, and NUeberK(n, k) is 1 for n < k.
//    RepeatArithmetic.GgTKgVFakultaetNUeberK
//  - GetRapport with epsilon 0 puts a negative multiple of the size one
//    repeat low (-10 in repeats of 10: -2); an epsilon of 1 or more
//    truncates the position first (-10.5: -1). SetInRappAndCalcRapp takes the
//    index from the truncated size but the rest from the exact one, so the
//    rest can be negative (30 in repeats of 10.5: index 3, rest -1).
//    CalcNrOfHDropRepeats allows n pixels of rounding over n repeats (length
//    100, drop 7: 13).
//    RepeatArithmetic.RepeatIndexPositionInsideAndHDropRepeats
//  - CalcParts keeps a middle piece of length 0 when both seams fall on one
//    pixel, and a period of 0 takes part as 0. CalcParts2 with period 0
//    writes parts[0] although the count is 0, and a run whose rest is a
//    multiple of the period above the period ends in a piece of length 0.
//    RepeatArithmetic.CalcPartsSplitsAtTheSeams
//  - SetInRapp with eDropHorizontal is not the mirror image of
//    eDropVertical (examples in a 100 x 80 tile): x = 0 folds nothing
//    (0, 170 with drop 25 stays); x >= repeatWidth gets no row step while y
//    loses a width (150, 10 with drop 25 gives 150, -90); rows are counted
//    from y's unsigned bit pattern, for x < 0 from its unsigned negation,
//    also for y >= 0; and a position that lands on a negative multiple of the
//    width comes out as x = repeatWidth (50, 170 with drop 75 gives 100, -90).
//    RepeatFolding.HorizontalDropKeepsItsFixedSteps
//  - SetInRappDb moves by trunc(n * step), once per fold, and a shift beyond
//    the int range gives 0x80000000 where SetInRapp wraps. SetInRappMM
//    counts the rows of eDropHorizontal from y itself, 1 - trunc(y /
//    repeatHeight).
//    RepeatFolding.DbTruncatesOncePerFoldAndMMKeepsFractions
//  - VPToFPDb rounds the drop of n repeats half away from zero where
//    SetInRappDb truncates.
//    RepeatCoordinates.VPToFPFoldsAsTheEndlessDesign
//  - FPToSnappedSP never folds: the drop argument is not used, and both
//    drop kinds give the unfolded view position, less the scroll.
//    RepeatCoordinates.FPToVPAndFPToSnappedSPInvertVPToFP
//  - The snap moves x right by trunc(zoom / 2 + 0.5) but y up by
//    trunc(zoom / 2 - 0.5), in either orientation (+2 and -1 at zoom 4); the
//    scroll is taken off before the truncation; bottomUp keeps the low 32
//    bits of a 64-bit truncation; other kinds write nothing.
//    RepeatCoordinates.SnapOffsetsAreUnequalAndBottomUpTurns
//  - MMToSnappedSP quantises positions with (v + 1) - 1 (magnitudes below
//    about 1.1e-16 become 0) and counts the repeat index as steps of one
//    repeat in a 32-bit counter (taken in bounded time, see there).
//    RepeatCoordinates.MillimetresAndArrayFormsMatchTheOnePointFileForm
//  - CalcPosAndSizeInRepBuffer: eDropHorizontal writes nothing, not even
//    *pieceCount; the main piece comes last; the pieces match the rectangle
//    only for drops 0 .. repeatHeight-1 (with drop 150 in a 100 x 100 tile,
//    (90, 10, 20, 20) gives a piece at y = -40, outside the buffer).
//    CalcPosAndSizeInRepBufferInv keeps strips of height 0, and for a
//    rectangle as large as the tile writes piece 0 as the whole tile with a
//    count of 0.
//    RepeatPieces.PiecesComeInTheirOrder
//  - AdaptFileSizeToFileSizeForViewSize keeps the low 32 bits of a 64-bit
//    truncation (a grown width of 1e11 gives 1215752192).
//    RepeatPieces.AdaptFileSizes

// How the copies of the tile are laid out (a 32-bit value passed by value).
// A straight repeat is eDropVertical or eDropHorizontal with a drop of 0.
enum _EDropKind : int {
  // No repeat layout: the folding functions return positions unchanged, the
  // coordinate conversions give zeros or write nothing, the repeat-buffer
  // functions yield no pieces. Every value other than 1 and 2 acts so.
  eDropNone = 0,
  // The copy in repeat column c (c = 0 is the tile) is shifted down by
  // c * drop: one repeat width to the right is one drop further down.
  eDropVertical = 1,
  // The copy in repeat row r is shifted right by r * drop.
  eDropHorizontal = 2
};

// ---- Integer and repeat arithmetic -----------------------------------------

// Greatest common divisor by Euclid's loop on the truncating remainder
// (r = a % b; a = b; b = r; until r is 0). The sign is what the remainders
// leave: ggT(-4, 6) = 2, ggT(4, -6) = -2. b = 0 faults.
OSTREL_API int ggT(int a, int b);

// Least common multiple: (a * b) / ggT(a, b), the product wrapping in 32
// bits first (kgV(65536, 65536) = 0). b = 0 faults.
OSTREL_API int kgV(int a, int b);

// n! in 32-bit unsigned arithmetic: 1 for n < 2; wraps from n = 13 on.
OSTREL_API unsigned int Fakultaet(unsigned int n);

// The binomial coefficient n over k, computed as ((m + 1) * ... * n) / (n - m)!
// with m = max(k, n - k), both products in 32-bit unsigned arithmetic (they
// wrap, so only small n are exact). n <= k gives 1, also for n < k. A
// divisor factorial that has wrapped to 0 faults.
OSTREL_API unsigned int NUeberK(unsigned int n, unsigned int k);

// The index of the repeat that holds position: floor(position / R), with
// R = trunc(repeatSize). A position >= 0 is truncated first (9.99 in a
// repeat of 10 is in repeat 0). A negative position within epsilon beyond a
// seam still counts to the repeat above it (epsilon 0.001: -10.0005 is in
// repeat -1, -10.5 in repeat -2); with epsilon 0 a negative multiple of the
// size counts one repeat low (-10 is in repeat -2). An epsilon of 1 or more
// truncates the position toward zero first (-10.5 is then in repeat -1).
// R = 0 faults.
OSTREL_API int GetRapport(double position, double repeatSize, double epsilon);

// Writes the repeat index of GetRapport to *repeatIndex and returns the
// position inside that repeat: trunc(position - index * repeatSize), using
// the exact repeatSize, or 0 when that difference equals repeatSize.
OSTREL_API int SetInRappAndCalcRapp(double position, double repeatSize, double epsilon,
                                    int *repeatIndex);

// The number n (2 .. 20) of repeats of length repeatLength, each shifted by
// drop against its neighbour, after which the layout is back at its start,
// allowing one pixel of rounding per repeat: the first n with
// |n * drop - repeatLength| <= n, or, for a drop above half the length,
// with |(n - 1) * repeatLength - n * drop| <= n. 1 for drop 0; -1 when no
// n up to 20 fits.
OSTREL_API int CalcNrOfHDropRepeats(unsigned int repeatLength, unsigned int drop);

// Splits a run of length pixels, starting at position1 in a layout of
// period1 and at position2 in a layout of period2 (length <= both periods),
// into consecutive pieces inside which neither layout crosses a seam.
// Writes 1 to 3 lengths to parts (room for 3) and their count to
// *partCount. When both seams fall on the same pixel the middle piece has
// length 0 and is kept. A period of 0 takes part as 0.
OSTREL_API void CalcParts(int period1, int position1, int period2, int position2, int length,
                          int *partCount, int *parts);

// Splits a run of length pixels starting at position at every seam of a
// layout of period: the piece up to the first seam, then whole periods, then
// the rest. parts needs room for 2 + length / period entries. A rest that is
// a multiple of the period, above the period, ends in a piece of length 0
// (period 10, position 5, length 25: 5, 10, 10, 0); one equal to the period
// does not (5, 10). period = 0: *partCount = 0 and parts[0] = length.
OSTREL_API void CalcParts2(int period, int position, int length, int *partCount, int *parts);

// ---- Folding positions into the repeat -------------------------------------
// Each writes the tile position that shows the same pixel of the endless
// design as (x, y). Any dropKind other than 1 and 2 writes (x, y) unchanged.
// The steps follow the library's historical arithmetic, quirks included;
// see the notes on eDropHorizontal.

// Integer positions and drop. eDropVertical folds into the tile for every
// position: SetInRapp(-1, 0, 100, 80, 40, eDropVertical) gives (99, 40).
// eDropHorizontal is not the mirror image: for 0 < x < repeatWidth and
// y >= 0 it folds y into the tile and shifts x left by one drop per repeat
// row (wrapping into the tile); with x = 0 nothing folds, and other
// positions come out as the fixed steps leave them (150, 10 in a 100 x 80
// tile with drop 25 gives 150, -90).
OSTREL_API void SetInRapp(int x, int y, unsigned int repeatWidth, unsigned int repeatHeight,
                          unsigned int drop, _EDropKind dropKind, int *xInRepeat,
                          int *yInRepeat);

// SetInRapp with a fractional drop: one repeat step moves by
// dropRatio * repeatHeightExact (eDropVertical) or dropRatio *
// repeatWidthExact (eDropHorizontal), and n repeats move by
// trunc(n * step), so rounding happens once per fold, not once per repeat.
OSTREL_API void SetInRappDb(int x, int y, unsigned int repeatWidth, unsigned int repeatHeight,
                            double dropRatio, double repeatWidthExact, double repeatHeightExact,
                            _EDropKind dropKind, int *xInRepeat, int *yInRepeat);

// SetInRapp on doubles (millimetre values): repeat counts are truncated
// quotients, positions keep their fractions. eDropHorizontal counts the
// repeats of a non-negative y as 1 - trunc(y / repeatHeight) where
// SetInRapp uses an unsigned negation. A zero size gives infinities or NaNs.
OSTREL_API void SetInRappMM(double x, double y, double repeatWidth, double repeatHeight,
                            double drop, _EDropKind dropKind, double *xInRepeat,
                            double *yInRepeat);

// ---- View, file and screen coordinates -------------------------------------
// FP: file pixels. VP: pixels of the zoomed view of the endless design, same
// origin; a file pixel is zoomX x zoomY view pixels and a repeat is
// trunc(repeatWidth * zoomX) x trunc(repeatHeight * zoomY) (the view repeat,
// which must not be 0 where a function divides by it). SP: view pixels less
// the scroll offset, optionally turned bottom-up and snapped. MM:
// millimetres; times the resolution (file pixels per millimetre) they give
// file pixels. Only eDropVertical and eDropHorizontal convert.

// View position to file position. With foldIntoRepeat false the result
// addresses the endless design (no drop is applied); with it true it is
// folded into the tile, the drop of the view's repeat column (eDropVertical)
// or row (eDropHorizontal) taken off. Other kinds give (0, 0).
OSTREL_API void VPToFP(int vx, int vy, int *fx, int *fy, unsigned int repeatWidth,
                       unsigned int repeatHeight, unsigned int drop, _EDropKind dropKind,
                       double zoomX, double zoomY, bool foldIntoRepeat);

// VPToFP with the drop of n repeats taken as round(n * dropRatio *
// repeatHeightExact) (eDropVertical) or round(n * dropRatio *
// repeatWidthExact) (eDropHorizontal), rounded half away from zero (unlike
// SetInRappDb, which truncates).
OSTREL_API void VPToFPDb(int vx, int vy, int *fx, int *fy, unsigned int repeatWidth,
                         unsigned int repeatHeight, double dropRatio, double repeatWidthExact,
                         double repeatHeightExact, _EDropKind dropKind, double zoomX,
                         double zoomY, bool foldIntoRepeat);

// File position to view position, the inverse of VPToFP: at zoom 1 with
// foldIntoRepeat false the two give back the starting position. With
// foldIntoRepeat true the result is folded into the view repeat, the drop
// taken off. Other kinds give (0, 0).
OSTREL_API void FPToVP(int fx, int fy, int *vx, int *vy, unsigned int repeatWidth,
                       unsigned int repeatHeight, unsigned int drop, _EDropKind dropKind,
                       double zoomX, double zoomY, bool foldIntoRepeat);

// File position to screen position: the view position (never folded; drop is
// not used) less (scrollX, scrollY). bottomUp turns y: windowHeight - y - 1.
// snap (non-zero), where the zoom is above 1, moves the point into its
// zoomed file pixel: x by +trunc(zoomX / 2 + 0.5), y by
// -trunc(zoomY / 2 - 0.5) in either orientation (+2 and -1 at zoom 4).
// Other kinds write nothing.
OSTREL_API void FPToSnappedSP(int fx, int fy, int *sx, int *sy, int scrollX, int scrollY,
                              unsigned int windowHeight, unsigned int repeatWidth,
                              unsigned int repeatHeight, unsigned int drop, _EDropKind dropKind,
                              double zoomX, double zoomY, unsigned char snap, bool bottomUp);

// The one-point FPToSnappedSP for each of count points (fxs[i], fys[i]),
// written to (*sxs)[i] and (*sys)[i]: the caller's arrays, which hold at
// least count elements. Nothing is allocated.
OSTREL_API void FPToSnappedSP(int *fxs, int *fys, int count, int **sxs, int **sys, int scrollX,
                              int scrollY, unsigned int windowHeight, unsigned int repeatWidth,
                              unsigned int repeatHeight, unsigned int drop, _EDropKind dropKind,
                              double zoomX, double zoomY, unsigned char snap, bool bottomUp);

// Millimetre position to screen position: (mmX * resolutionX + 1) - 1 and
// (mmY * resolutionY + 1) - 1 file pixels (the + 1 - 1 rounds values near 0
// to multiples of 2^-52, so magnitudes below about 1.1e-16 become 0), then
// as FPToSnappedSP. The repeat index is the count of steps of the repeat
// size from p to 0, in a 32-bit counter that wraps; the fraction inside the
// repeat is p - floor(p / size) * size. The count takes the same time
// however far p lies: below 2^53 file pixels it is exactly the stepped
// count; from 2^53 on, where a step of the repeat size may round or vanish,
// it is the quotient p / size rounded in double precision (ceil below 0,
// floor above), modulo 2^32. A position that is not finite (or whose pixel
// position overflows to infinity) counts no repeats, and its coordinate
// comes out as 0x80000000 plus the snap. Other kinds write nothing.
OSTREL_API void MMToSnappedSP(double mmX, double mmY, int *sx, int *sy, int scrollX, int scrollY,
                              unsigned int windowHeight, unsigned int repeatWidth,
                              unsigned int repeatHeight, unsigned int drop, _EDropKind dropKind,
                              double resolutionX, double resolutionY, double zoomX, double zoomY,
                              unsigned char snap, bool bottomUp);

// The one-point MMToSnappedSP for each of count points, written to
// (*sxs)[i] and (*sys)[i] as the array FPToSnappedSP does.
OSTREL_API void MMToSnappedSP(double *mmXs, double *mmYs, int count, int **sxs, int **sys,
                              int scrollX, int scrollY, unsigned int windowHeight,
                              unsigned int repeatWidth, unsigned int repeatHeight,
                              unsigned int drop, _EDropKind dropKind, double resolutionX,
                              double resolutionY, double zoomX, double zoomY, unsigned char snap,
                              bool bottomUp);

// ---- Repeat buffer pieces and view sizes -----------------------------------
// The repeat buffer holds one tile, repeatWidth x repeatHeight pixels. A
// rectangle (x, y, width, height) of the endless design (eDropVertical with
// drop; a straight repeat is drop 0) falls into up to five rectangles of the
// buffer. Pieces are written to the caller's arrays, room for 5 each: piece
// i is (pieceX[i], pieceY[i], pieceWidth[i], pieceHeight[i]). The pieces
// match the rectangle for drops 0 .. repeatHeight-1 (pass the drop modulo
// repeatHeight). eDropHorizontal
// is not supported: the call returns writing nothing, not even *pieceCount.
// Other kinds set *pieceCount to 0.

// The pieces of the buffer that show the rectangle. A rectangle inside the
// tile (after folding its corner) is one piece. Otherwise, when
// wholeTileIfLarger is true and the rectangle is at least as wide or as
// high as the tile, the one piece is the whole tile. Otherwise the pieces
// from the next (dropped) repeat column come first, then the part below
// the tile's bottom seam, and the main piece last. Example, 100 x 100 tile,
// drop 50: (90, 10, 20, 20) gives (0, 60, 10, 20), then (90, 10, 10, 20).
OSTREL_API void CalcPosAndSizeInRepBuffer(int x, int y, unsigned int width, unsigned int height,
                                          unsigned int repeatWidth, unsigned int repeatHeight,
                                          _EDropKind dropKind, int drop, int *pieceCount,
                                          int *pieceX, int *pieceWidth, int *pieceY,
                                          int *pieceHeight, bool wholeTileIfLarger);

// The pieces of the buffer that the rectangle does not cover (up to 5). A
// rectangle at least as large as the tile in either direction, that does
// not fit into it, leaves none: *pieceCount = 0, though piece 0 is written
// as the whole tile.
OSTREL_API void CalcPosAndSizeInRepBufferInv(int x, int y, unsigned int width,
                                             unsigned int height, unsigned int repeatWidth,
                                             unsigned int repeatHeight, _EDropKind dropKind,
                                             int drop, int *pieceCount, int *pieceX,
                                             int *pieceWidth, int *pieceY, int *pieceHeight);

// The largest box inside viewWidth x viewHeight with the physical
// proportions of the file (fileWidth / resolutionX by fileHeight /
// resolutionY): one side equals the view's, the other is truncated
// (1000 x 500 file pixels at equal resolutions in an 800 x 800 view:
// 800 x 400). Zero sizes or resolutions give meaningless values.
OSTREL_API void AdaptFileSizeToViewSizeForViewSize(unsigned int fileWidth, unsigned int fileHeight,
                                                   unsigned int viewWidth,
                                                   unsigned int viewHeight, double resolutionX,
                                                   double resolutionY, unsigned int *outWidth,
                                                   unsigned int *outHeight);

// Grows one dimension of the file so that its physical proportions become
// the view's: the file's height is kept and its width grown when the view
// is relatively wider (ties included), otherwise its width is kept and its
// height grown. The grown side is truncated.
OSTREL_API void AdaptFileSizeToFileSizeForViewSize(unsigned int fileWidth, unsigned int fileHeight,
                                                   unsigned int viewWidth,
                                                   unsigned int viewHeight, double resolutionX,
                                                   double resolutionY, unsigned int *outWidth,
                                                   unsigned int *outHeight);

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
// count must be at least 2. With fewer, nothing past the table is read: one
// point gives ys[0] and none gives 0. The checked build reports the call.
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
// left + regionWidth <= width. A wider region runs on into the next rows,
// but never past the buffer's last pixel (the checked build reports it).
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
// FillTRCBuffer; columns are not (and, as there, never run past the
// buffer's last pixel). squareSize must not be 0.
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

// ===========================================================================
// Density blending
// ===========================================================================
// A density is one constant grey value laid into a grey destination through
// a coverage buffer, the grey counterpart of blending a solid colour. The
// coverage buffer is the first buffer group and plays the source's part in
// clipping. The L08 members have both forms; the L12 members only the exact
// form (their `exact` is ignored) and neither shift nor clamp the density.

// Toward density with coverage c = alpha byte. Exact and fast forms.
OSTREL_API void AlphaBlendDensityToL08(unsigned char density, unsigned char *alpha,
                                       unsigned int alphaWidth, unsigned int alphaHeight,
                                       unsigned int alphaLeft, unsigned int alphaTop,
                                       unsigned char *dst, unsigned int dstWidth,
                                       unsigned int dstHeight, unsigned int dstLeft,
                                       unsigned int dstTop, unsigned char opacity,
                                       unsigned int regionWidth, unsigned int regionHeight,
                                       bool exact);

// Toward density with c = 255 - alpha byte. Exact and fast forms.
OSTREL_API void AlphaBlendDensityToL08Inverted(unsigned char density, unsigned char *alpha,
                                               unsigned int alphaWidth, unsigned int alphaHeight,
                                               unsigned int alphaLeft, unsigned int alphaTop,
                                               unsigned char *dst, unsigned int dstWidth,
                                               unsigned int dstHeight, unsigned int dstLeft,
                                               unsigned int dstTop, unsigned char opacity,
                                               unsigned int regionWidth,
                                               unsigned int regionHeight, bool exact);

// Note the names of the two L12 members: this one weights by 255 - alpha
// byte, and AlphaBlendDensityToL12Inverted by the alpha byte itself. Hosts
// rely on the pairing, so it stays. Exact form only.
OSTREL_API void AlphaBlendDensityToL12(unsigned short density, unsigned char *alpha,
                                       unsigned int alphaWidth, unsigned int alphaHeight,
                                       unsigned int alphaLeft, unsigned int alphaTop,
                                       unsigned short *dst, unsigned int dstWidth,
                                       unsigned int dstHeight, unsigned int dstLeft,
                                       unsigned int dstTop, unsigned char opacity,
                                       unsigned int regionWidth, unsigned int regionHeight,
                                       bool exact);

// Toward density with c = alpha byte (see AlphaBlendDensityToL12). Exact form
// only.
OSTREL_API void AlphaBlendDensityToL12Inverted(unsigned short density, unsigned char *alpha,
                                               unsigned int alphaWidth, unsigned int alphaHeight,
                                               unsigned int alphaLeft, unsigned int alphaTop,
                                               unsigned short *dst, unsigned int dstWidth,
                                               unsigned int dstHeight, unsigned int dstLeft,
                                               unsigned int dstTop, unsigned char opacity,
                                               unsigned int regionWidth,
                                               unsigned int regionHeight, bool exact);

// The destination byte becomes density where the alpha byte is not 0 and is
// left alone where it is 0. No weighting.
OSTREL_API void AlphaBlendDensityToL08Flat(unsigned char density, unsigned char *alpha,
                                           unsigned int alphaWidth, unsigned int alphaHeight,
                                           unsigned int alphaLeft, unsigned int alphaTop,
                                           unsigned char *dst, unsigned int dstWidth,
                                           unsigned int dstHeight, unsigned int dstLeft,
                                           unsigned int dstTop, unsigned int regionWidth,
                                           unsigned int regionHeight);

// The destination byte becomes density where the alpha byte is 0.
OSTREL_API void AlphaBlendDensityToL08FlatInverted(unsigned char density, unsigned char *alpha,
                                                   unsigned int alphaWidth,
                                                   unsigned int alphaHeight,
                                                   unsigned int alphaLeft, unsigned int alphaTop,
                                                   unsigned char *dst, unsigned int dstWidth,
                                                   unsigned int dstHeight, unsigned int dstLeft,
                                                   unsigned int dstTop, unsigned int regionWidth,
                                                   unsigned int regionHeight);

// The destination word becomes density (all 16 bits) where the alpha byte is
// not 0.
OSTREL_API void AlphaBlendDensityToL12Flat(unsigned short density, unsigned char *alpha,
                                           unsigned int alphaWidth, unsigned int alphaHeight,
                                           unsigned int alphaLeft, unsigned int alphaTop,
                                           unsigned short *dst, unsigned int dstWidth,
                                           unsigned int dstHeight, unsigned int dstLeft,
                                           unsigned int dstTop, unsigned int regionWidth,
                                           unsigned int regionHeight);

// Coverage b = blue byte of each TRC pixel; exact form only. The path is
// chosen once per call:
//   flat                          where b != 0 the byte becomes density
//   opacity < 255                 W = (b * opacity) / 255, d + ((density - d) * W) / 255
//   opacity 255, scaleDensity     where b != 0 the byte becomes (b * density) / 255
//   opacity 255, not scaleDensity d + ((density - d) * b) / 255
// Note the argument order: density between the TRC group and the destination
// pointer, opacity right after the destination pointer.
OSTREL_API void AlphaBlendDensityWithAlphaBlueOfTrcToL08(
    unsigned int *trc, unsigned int trcWidth, unsigned int trcHeight, unsigned int trcLeft,
    unsigned int trcTop, unsigned char density, unsigned char *dst, unsigned char opacity,
    unsigned int dstWidth, unsigned int dstHeight, unsigned int dstLeft, unsigned int dstTop,
    unsigned int regionWidth, unsigned int regionHeight, bool flat, bool scaleDensity);

// Toward the source byte s with c = alpha byte, every pixel (s = 0 too). The
// alpha buffer has the source's geometry (same index, stride srcWidth). Exact
// form only: `exact` is ignored.
OSTREL_API void AlphaBlendL08WithAlphaBufferToL08(unsigned char *src, unsigned char *alpha,
                                                  unsigned int srcWidth, unsigned int srcHeight,
                                                  unsigned int srcLeft, unsigned int srcTop,
                                                  unsigned char *dst, unsigned int dstWidth,
                                                  unsigned int dstHeight, unsigned int dstLeft,
                                                  unsigned int dstTop, unsigned char opacity,
                                                  unsigned int regionWidth,
                                                  unsigned int regionHeight, bool exact);

// ===========================================================================
// Grey-to-grey blending
// ===========================================================================
// One grey buffer blended into another of the same format (L08 into L08, L12
// into L12), weighted by an optional alpha buffer and the opacity, exact form
// only (`exact` is ignored): W = (c * opacity) / 255, or W = opacity when
// alpha is null; d + ((s - d) * W) / 255 truncated toward zero. 12-bit words
// are neither shifted nor clamped.
//
// blendZero 0 skips the pixels whose source value is 0 (left as they are,
// even by twoLevel). twoLevel sets each blended result that is not 0 to full
// scale (255, or 4095 for L12), making the destination a two-level mask;
// each member says in which modes it does so.
//
// Shared-geometry alpha lies at the source pixel's index (stride srcWidth).
// Own-geometry alpha is read from its own corner with its own stride; it
// takes no part in clipping and alphaHeight is not read.

// The reference member: twoLevel acts in every mode.
OSTREL_API void AlphaBlendL08ToL08(unsigned char *src, unsigned char *alpha, unsigned int srcWidth,
                                   unsigned int srcHeight, unsigned int srcLeft,
                                   unsigned int srcTop, unsigned char *dst, unsigned int dstWidth,
                                   unsigned int dstHeight, unsigned int dstLeft,
                                   unsigned int dstTop, unsigned char opacity,
                                   unsigned char blendZero, bool twoLevel,
                                   unsigned int regionWidth, unsigned int regionHeight,
                                   bool exact);

// Own-geometry alpha; twoLevel acts only when alpha is not null.
OSTREL_API void AlphaBlendL08ToL08(unsigned char *src, unsigned int srcWidth,
                                   unsigned int srcHeight, unsigned int srcLeft,
                                   unsigned int srcTop, unsigned char *alpha,
                                   unsigned int alphaWidth, unsigned int alphaHeight,
                                   unsigned int alphaLeft, unsigned int alphaTop,
                                   unsigned char *dst, unsigned int dstWidth,
                                   unsigned int dstHeight, unsigned int dstLeft,
                                   unsigned int dstTop, unsigned char opacity,
                                   unsigned char blendZero, bool twoLevel,
                                   unsigned int regionWidth, unsigned int regionHeight,
                                   bool exact);

// Flat alpha: coverage 255 where the alpha byte is not 0, else 0. twoLevel
// acts only when alpha is not null.
OSTREL_API void AlphaBlendL08ToL08FlatAlpha(unsigned char *src, unsigned char *alpha,
                                            unsigned int srcWidth, unsigned int srcHeight,
                                            unsigned int srcLeft, unsigned int srcTop,
                                            unsigned char *dst, unsigned int dstWidth,
                                            unsigned int dstHeight, unsigned int dstLeft,
                                            unsigned int dstTop, unsigned char opacity,
                                            unsigned char blendZero, bool twoLevel,
                                            unsigned int regionWidth, unsigned int regionHeight,
                                            bool exact);

// Shared-geometry alpha, with two behaviours hosts depend on:
//  - except with alpha and blendZero 0, the source enters the blend as
//    s / 255 (integer division): d + ((s / 255 - d) * W) / 255. The zero
//    test of blendZero 0 is on s itself.
//  - twoLevel acts only with blendZero not 0, and on the next pixel: after
//    column x is stored, the word at column x + 1 is set to 4095 when it is
//    not 0, before it is blended. So each row's last step writes the word
//    just right of the region, which the caller must allow for: where the
//    region reaches the buffer's right edge, that word is the first pixel
//    of the next row (so row bands of one buffer must not run on several
//    threads at once with twoLevel set and blendZero not 0). On the buffer's
//    last row, where that word would lie past the buffer's last pixel, it is
//    neither read nor written.
OSTREL_API void AlphaBlendL12ToL12(unsigned short *src, unsigned char *alpha,
                                   unsigned int srcWidth, unsigned int srcHeight,
                                   unsigned int srcLeft, unsigned int srcTop, unsigned short *dst,
                                   unsigned int dstWidth, unsigned int dstHeight,
                                   unsigned int dstLeft, unsigned int dstTop,
                                   unsigned char opacity, unsigned char blendZero, bool twoLevel,
                                   unsigned int regionWidth, unsigned int regionHeight,
                                   bool exact);

// Own-geometry alpha: the plain arithmetic on 16-bit words; twoLevel (to
// 4095) acts only when alpha is not null.
OSTREL_API void AlphaBlendL12ToL12(unsigned short *src, unsigned int srcWidth,
                                   unsigned int srcHeight, unsigned int srcLeft,
                                   unsigned int srcTop, unsigned char *alpha,
                                   unsigned int alphaWidth, unsigned int alphaHeight,
                                   unsigned int alphaLeft, unsigned int alphaTop,
                                   unsigned short *dst, unsigned int dstWidth,
                                   unsigned int dstHeight, unsigned int dstLeft,
                                   unsigned int dstTop, unsigned char opacity,
                                   unsigned char blendZero, bool twoLevel,
                                   unsigned int regionWidth, unsigned int regionHeight,
                                   bool exact);

// Flat alpha, with the scaled source and the next-pixel twoLevel test of the
// shared-geometry AlphaBlendL12ToL12, including its write just right of the
// region (into the next row at the buffer's right edge, so not in row bands
// on several threads with twoLevel set and blendZero not 0; never past the
// buffer's last pixel).
OSTREL_API void AlphaBlendL12ToL12FlatAlpha(unsigned short *src, unsigned char *alpha,
                                            unsigned int srcWidth, unsigned int srcHeight,
                                            unsigned int srcLeft, unsigned int srcTop,
                                            unsigned short *dst, unsigned int dstWidth,
                                            unsigned int dstHeight, unsigned int dstLeft,
                                            unsigned int dstTop, unsigned char opacity,
                                            unsigned char blendZero, bool twoLevel,
                                            unsigned int regionWidth, unsigned int regionHeight,
                                            bool exact);

// ===========================================================================
// Alpha masks and lookup tables
// ===========================================================================
// One grey buffer changed in place. The alpha buffer has the buffer's own
// geometry (same index, same stride). One-buffer clipping.

// Multiplies the buffer by the alpha mask and opacity. Exact form (with
// `exact`, with flat, or without the fast form): d = (d * W) / 255 with
// W = (a * opacity) / 255, or with flat W = opacity where a != 0 and 0 where
// a = 0. Fast form: d = (d * w) >> 8 with w = a at opacity 255, else
// w = (a * opacity) >> 8 (so a fully covered 255 becomes 254).
OSTREL_API void ApplyAlphaToL08(unsigned char *buffer, unsigned char *alpha, unsigned int width,
                                unsigned int height, unsigned int left, unsigned int top,
                                unsigned char opacity, bool flat, unsigned int regionWidth,
                                unsigned int regionHeight, bool exact);

// d = (d * ((a * opacity) / 255)) / 255 on the whole 16-bit word. Exact form
// only: `exact` is ignored.
OSTREL_API void ApplyAlphaToL12(unsigned short *buffer, unsigned char *alpha, unsigned int width,
                                unsigned int height, unsigned int left, unsigned int top,
                                unsigned char opacity, unsigned int regionWidth,
                                unsigned int regionHeight, bool exact);

// Undoes an applied alpha. flat: pixels with alpha 0 become 255, others stay.
// Otherwise pixels with alpha 0 or 255 stay; for the others, in double
// precision, q = d * (255 / a), plus 1 when q - d < 1 (so every such pixel
// moves up by at least one step), clamped to 0..255 and truncated.
OSTREL_API void InvertAlphaL08(unsigned char *buffer, unsigned char *alpha, unsigned int width,
                               unsigned int height, unsigned int left, unsigned int top,
                               bool flat, unsigned int regionWidth, unsigned int regionHeight);

// Each pixel d becomes table[d] (256 entries).
OSTREL_API void ApplyLUTToL08(unsigned char *buffer, unsigned int width, unsigned int height,
                              unsigned int left, unsigned int top, unsigned int regionWidth,
                              unsigned int regionHeight, unsigned char *table);

// Each word d becomes table[d], indexed by the whole 16-bit word.
OSTREL_API void ApplyLUTToL12(unsigned short *buffer, unsigned int width, unsigned int height,
                              unsigned int left, unsigned int top, unsigned int regionWidth,
                              unsigned int regionHeight, unsigned short *table);

// For a run of count elements: those whose alpha byte is not 255 become 0,
// the others keep their value. Nothing happens when alpha is null.
OSTREL_API void PostApplyAlpha(unsigned char *alpha, unsigned char *buffer, unsigned int count);
OSTREL_API void PostApplyAlpha(unsigned char *alpha, unsigned short *buffer, unsigned int count);

// ===========================================================================
// Motion copy
// ===========================================================================
// A source region blended through an alpha buffer into a destination in a
// traversal order the caller chooses, so that a region can be moved inside
// one buffer: with rows bottom to top when the destination lies below the
// source, and pixels right to left when it lies right of it, every source
// pixel is read before it is overwritten. Per pixel W = (a * opacity) / 255
// and d + ((s - d) * W) / 255 truncated toward zero; every pixel is blended.
// Exact form only: `exact` is ignored.
//
// The call does nothing when a region corner lies outside its buffer
// (dstLeft >= dstWidth, dstTop >= dstHeight, srcLeft >= srcWidth or
// srcTop >= srcHeight), or when mode is not one of the four below. The
// region is then clipped against source and destination. The alpha buffer
// (never null) is read from its own corner with its own stride; it takes no
// part in clipping and alphaHeight is not read.

// The traversal order (a 32-bit value).
enum _EMotionCopyMode : int {
  eMotionCopyDownRight = 0,  // rows top to bottom, pixels left to right
  eMotionCopyUpRight = 1,    // rows bottom to top, pixels left to right
  eMotionCopyDownLeft = 2,   // rows top to bottom, pixels right to left
  eMotionCopyUpLeft = 3      // rows bottom to top, pixels right to left
};

// twoLevel sets each nonzero result to 255.
OSTREL_API void MotionCopyL08ToL08(unsigned char *src, unsigned int srcWidth,
                                   unsigned int srcHeight, unsigned int srcLeft,
                                   unsigned int srcTop, unsigned char *alpha,
                                   unsigned int alphaWidth, unsigned int alphaHeight,
                                   unsigned int alphaLeft, unsigned int alphaTop,
                                   unsigned char *dst, unsigned int dstWidth,
                                   unsigned int dstHeight, unsigned int dstLeft,
                                   unsigned int dstTop, unsigned char opacity, bool twoLevel,
                                   unsigned int regionWidth, unsigned int regionHeight,
                                   _EMotionCopyMode mode, bool exact);

// 16-bit words, neither shifted nor clamped; twoLevel sets each nonzero
// result to 4095.
OSTREL_API void MotionCopyL12ToL12(unsigned short *src, unsigned int srcWidth,
                                   unsigned int srcHeight, unsigned int srcLeft,
                                   unsigned int srcTop, unsigned char *alpha,
                                   unsigned int alphaWidth, unsigned int alphaHeight,
                                   unsigned int alphaLeft, unsigned int alphaTop,
                                   unsigned short *dst, unsigned int dstWidth,
                                   unsigned int dstHeight, unsigned int dstLeft,
                                   unsigned int dstTop, unsigned char opacity, bool twoLevel,
                                   unsigned int regionWidth, unsigned int regionHeight,
                                   _EMotionCopyMode mode, bool exact);

// Blue, green and red blended by the one weight; the destination's alpha
// byte is kept.
OSTREL_API void MotionCopyTRCWithAlphaBufferToTRC(
    unsigned int *src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcLeft,
    unsigned int srcTop, unsigned char *alpha, unsigned int alphaWidth, unsigned int alphaHeight,
    unsigned int alphaLeft, unsigned int alphaTop, unsigned int *dst, unsigned int dstWidth,
    unsigned int dstHeight, unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,
    unsigned int regionWidth, unsigned int regionHeight, _EMotionCopyMode mode, bool exact);

// ===========================================================================
// Marking and level conversion
// ===========================================================================
// Grey buffers turned into two-level masks or narrowed to 8 bits, and marks
// laid over a TRC view: selected grey values, the background that no mask
// covers, values outside a pair of limits, the outline of a mask. One- and
// two-buffer clipping as for the blends; no `exact` flag.

// Source 0 gives 0, anything else 255; in place or from src to dst.
OSTREL_API void ConvertL08To2LevelL08(unsigned char *buffer, unsigned int width,
                                      unsigned int height, unsigned int left, unsigned int top,
                                      unsigned int regionWidth, unsigned int regionHeight);
OSTREL_API void ConvertL08To2LevelL08(unsigned char *src, unsigned int srcWidth,
                                      unsigned int srcHeight, unsigned int srcLeft,
                                      unsigned int srcTop, unsigned char *dst,
                                      unsigned int dstWidth, unsigned int dstHeight,
                                      unsigned int dstLeft, unsigned int dstTop,
                                      unsigned int regionWidth, unsigned int regionHeight);

// Note the two forms differ: in place a nonzero word becomes 255, from src to
// dst it becomes 4095. Hosts rely on both.
OSTREL_API void ConvertL12To2LevelL12(unsigned short *buffer, unsigned int width,
                                      unsigned int height, unsigned int left, unsigned int top,
                                      unsigned int regionWidth, unsigned int regionHeight);
OSTREL_API void ConvertL12To2LevelL12(unsigned short *src, unsigned int srcWidth,
                                      unsigned int srcHeight, unsigned int srcLeft,
                                      unsigned int srcTop, unsigned short *dst,
                                      unsigned int dstWidth, unsigned int dstHeight,
                                      unsigned int dstLeft, unsigned int dstTop,
                                      unsigned int regionWidth, unsigned int regionHeight);

// A 12-bit word 0 gives 0, anything else 255.
OSTREL_API void ConvertL12To2LevelL08(unsigned short *src, unsigned int srcWidth,
                                      unsigned int srcHeight, unsigned int srcLeft,
                                      unsigned int srcTop, unsigned char *dst,
                                      unsigned int dstWidth, unsigned int dstHeight,
                                      unsigned int dstLeft, unsigned int dstTop,
                                      unsigned int regionWidth, unsigned int regionHeight);

// The low byte of (word >> 4): bits above bit 11 wrap into the result.
OSTREL_API void ConvertL012ToL08(unsigned short *src, unsigned int srcWidth,
                                 unsigned int srcHeight, unsigned int srcLeft,
                                 unsigned int srcTop, unsigned char *dst, unsigned int dstWidth,
                                 unsigned int dstHeight, unsigned int dstLeft,
                                 unsigned int dstTop, unsigned int regionWidth,
                                 unsigned int regionHeight);

// Where selected[g] (256 entries) holds for the source grey g, blue, green
// and red of the destination move toward the colour's by
// d + ((k - d) * opacity) / 255; alpha is kept.
OSTREL_API void MarkL08ToTRC(unsigned char *src, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int srcLeft, unsigned int srcTop, bool *selected,
                             unsigned int colour, unsigned char opacity, unsigned int *dst,
                             unsigned int dstWidth, unsigned int dstHeight, unsigned int dstLeft,
                             unsigned int dstTop, unsigned int regionWidth,
                             unsigned int regionHeight);

// Marks, as MarkL08ToTRC does, the destination pixels where none of the
// masks masks[maskIndices[k]], k < maskCount, is nonzero. The masks share
// one geometry, which is clipped as the source.
OSTREL_API void MarkBG(unsigned char **masks, int *maskIndices, int maskCount,
                       unsigned int maskWidth, unsigned int maskHeight, unsigned int maskLeft,
                       unsigned int maskTop, unsigned int colour, unsigned char opacity,
                       unsigned int *dst, unsigned int dstWidth, unsigned int dstHeight,
                       unsigned int dstLeft, unsigned int dstTop, unsigned int regionWidth,
                       unsigned int regionHeight);

// Source v: 0 leaves the pixel; v < low sets its alpha byte to 0x80; else
// v > high sets it to 0x40; otherwise it is left. Blue, green and red stay.
OSTREL_API void MarkL08LimitsToTRCHighBit(unsigned char *src, unsigned int srcWidth,
                                          unsigned int srcHeight, unsigned int srcLeft,
                                          unsigned int srcTop, unsigned char low,
                                          unsigned char high, unsigned int *dst,
                                          unsigned int dstWidth, unsigned int dstHeight,
                                          unsigned int dstLeft, unsigned int dstTop,
                                          unsigned int regionWidth, unsigned int regionHeight);

// Writes colour (all 32 bits) on the outline of the nonzero areas of the
// source. The source region includes a one-pixel border: source pixel
// (srcLeft + 1 + i, srcTop + 1 + j) pairs with destination pixel
// (dstLeft + i, dstTop + j). Clipping: columns = min(dstWidth + 2, srcRight -
// srcLeft + dstLeft) - dstLeft with srcRight = min(srcWidth, srcLeft +
// regionWidth), rows likewise; columns - 2 by rows - 2 pixels are visited,
// none when rows is 2. A clipped size below 2 is the caller's error. Left
// and right edges of each run and its pixels with a zero above or below are
// coloured; a run that reaches the end of the row is not closed.
OSTREL_API void DrawContourOfL08toTRC(unsigned char *src, unsigned int srcWidth,
                                      unsigned int srcHeight, unsigned int srcLeft,
                                      unsigned int srcTop, unsigned int *dst,
                                      unsigned int dstWidth, unsigned int dstHeight,
                                      unsigned int dstLeft, unsigned int dstTop,
                                      unsigned int regionWidth, unsigned int regionHeight,
                                      unsigned int colour);

// ===========================================================================
// BGR blending
// ===========================================================================
// A solid colour laid into a whole blue-green-red picture through a coverage
// picture of another size, scaled by nearest neighbour. Both pictures have
// rows padded to a multiple of 4 bytes (the padding is never written) and
// start with row 0. Destination pixel (x, y) reads the first byte of coverage
// pixel (min(trunc(x * scaleX), alphaWidth - 1), min(trunc(y * scaleY),
// alphaHeight - 1)) as a; blue, green and red move by
// d + ((k - d) * a) / 255. Bits 24-31 of colour are ignored; the fourth byte
// of a 32-bit pixel is never touched. The coverage picture must not be empty
// (an empty one changes nothing; the checked build reports it).

OSTREL_API void AlphaBlendBGR24AlphaToBGR24(unsigned char *alpha, unsigned int alphaWidth,
                                            unsigned int alphaHeight, unsigned int colour,
                                            unsigned char *dst, unsigned int dstWidth,
                                            unsigned int dstHeight, double scaleX,
                                            double scaleY);

OSTREL_API void AlphaBlendBGR32AlphaToBGR32(unsigned char *alpha, unsigned int alphaWidth,
                                            unsigned int alphaHeight, unsigned int colour,
                                            unsigned char *dst, unsigned int dstWidth,
                                            unsigned int dstHeight, double scaleX,
                                            double scaleY);

// ===========================================================================
// Tone operations
// ===========================================================================
// Tone curves, ink moves, colour ramps, darken and lighten, and recolouring.
// Buffers, clipping and the blend arithmetic as at the top of this header:
// two-buffer members clip against the source, then the destination; the
// recolouring clips against its one buffer. Members marked "both forms" run
// the fast form when `exact` is false and the processor offers MMX; the
// others always run the exact form. A TRC destination keeps its alpha byte.
// A null table, palette or alpha pointer is allowed only where a member says
// so; any other null pointer with a non-empty region is the caller's error
// (the checked build reports it).

// A tone curve applied from one grey layer into another: t = tone[s] (tone
// null: t = s), coverage 255, so W = opacity (exact) or
// w = (255 * opacity) >> 8 (fast); d moves toward t. With opacity 255 in the
// exact form the destination becomes exactly tone[s]. Both forms.
OSTREL_API void TransferToneL08ToL08(unsigned char *src, unsigned int srcWidth,
                                     unsigned int srcHeight, unsigned int srcLeft,
                                     unsigned int srcTop, unsigned char *dst,
                                     unsigned int dstWidth, unsigned int dstHeight,
                                     unsigned int dstLeft, unsigned int dstTop,
                                     const unsigned char *tone, unsigned char opacity,
                                     unsigned int regionWidth, unsigned int regionHeight,
                                     bool exact);

// Moves ink from the source separation into the destination, except where
// protected. The protection buffer is read from its own corner with its own
// stride (protectWidth); it takes no part in clipping and protectHeight is
// not read. protect null: nothing is protected. Per pixel with protection
// byte p: p != 0 leaves both pixels alone; otherwise m = (s * opacity) / 255,
// m = min(m, 255 - d), then d += m and s -= m. So s + d is the same before
// and after for every pixel, and nothing overflows. The only tone member that
// writes its source. The source and destination regions must not share
// memory (the checked build reports an overlap). Exact arithmetic only.
OSTREL_API void MoveToneL08ToL08Prot(unsigned char *src, unsigned int srcWidth,
                                     unsigned int srcHeight, unsigned int srcLeft,
                                     unsigned int srcTop, unsigned char *protect,
                                     unsigned int protectWidth, unsigned int protectHeight,
                                     unsigned int protectLeft, unsigned int protectTop,
                                     unsigned char *dst, unsigned int dstWidth,
                                     unsigned int dstHeight, unsigned int dstLeft,
                                     unsigned int dstTop, unsigned char opacity,
                                     unsigned int regionWidth, unsigned int regionHeight);

// A grey layer shown in colour through a 256-entry ramp (a separation in its
// ink, from paper to full ink, or any gradient map): k = palette[s] (palette
// never null). The alpha byte of k is the coverage c: blue, green and red of
// d move toward those of k with W = (c * opacity) / 255 (exact) or
// w = (c * opacity) >> 8 (fast). Both forms.
OSTREL_API void TransferToneL08ToTRC(unsigned char *src, unsigned int srcWidth,
                                     unsigned int srcHeight, unsigned int srcLeft,
                                     unsigned int srcTop, unsigned int *dst,
                                     unsigned int dstWidth, unsigned int dstHeight,
                                     unsigned int dstLeft, unsigned int dstTop,
                                     const unsigned int *palette, unsigned char opacity,
                                     unsigned int regionWidth, unsigned int regionHeight,
                                     bool exact);

// The tone of a colour picture into a grey layer: the luminance
// y = (77 * red + 150 * green + 29 * blue + 128) >> 8 (white gives 255,
// black 0), t = tone[y] (tone null: t = y). The source's alpha byte a is the
// coverage: d moves toward t with W = (a * opacity) / 255 (exact) or
// w = (a * opacity) >> 8 (fast). Both forms.
OSTREL_API void TransferToneTRCToL08(unsigned int *src, unsigned int srcWidth,
                                     unsigned int srcHeight, unsigned int srcLeft,
                                     unsigned int srcTop, unsigned char *dst,
                                     unsigned int dstWidth, unsigned int dstHeight,
                                     unsigned int dstLeft, unsigned int dstTop,
                                     const unsigned char *tone, unsigned char opacity,
                                     unsigned int regionWidth, unsigned int regionHeight,
                                     bool exact);

// Darken and lighten (overprinting two inks shows the darker) through an
// alpha buffer with the source's geometry (same index, stride srcWidth);
// alpha null means full coverage (c = 255). Per channel (the pixel for grey;
// blue, green and red for TRC) the target is t = min(s, d) for Darker and
// max(s, d) for Lighter, and d moves toward t with c = alpha byte. L08 and
// TRC: both forms. L12: exact form only (`exact` is ignored), on the whole
// 16-bit words, neither shifted nor clamped. The alpha byte of a TRC source
// plays no part.
OSTREL_API void DarkerL08ToL08WithAlpha(unsigned char *src, unsigned char *alpha,
                                        unsigned int srcWidth, unsigned int srcHeight,
                                        unsigned int srcLeft, unsigned int srcTop,
                                        unsigned char *dst, unsigned int dstWidth,
                                        unsigned int dstHeight, unsigned int dstLeft,
                                        unsigned int dstTop, unsigned char opacity,
                                        unsigned int regionWidth, unsigned int regionHeight,
                                        bool exact);

OSTREL_API void LighterL08ToL08WithAlpha(unsigned char *src, unsigned char *alpha,
                                         unsigned int srcWidth, unsigned int srcHeight,
                                         unsigned int srcLeft, unsigned int srcTop,
                                         unsigned char *dst, unsigned int dstWidth,
                                         unsigned int dstHeight, unsigned int dstLeft,
                                         unsigned int dstTop, unsigned char opacity,
                                         unsigned int regionWidth, unsigned int regionHeight,
                                         bool exact);

OSTREL_API void DarkerL12ToL12WithAlpha(unsigned short *src, unsigned char *alpha,
                                        unsigned int srcWidth, unsigned int srcHeight,
                                        unsigned int srcLeft, unsigned int srcTop,
                                        unsigned short *dst, unsigned int dstWidth,
                                        unsigned int dstHeight, unsigned int dstLeft,
                                        unsigned int dstTop, unsigned char opacity,
                                        unsigned int regionWidth, unsigned int regionHeight,
                                        bool exact);

OSTREL_API void LighterL12ToL12WithAlpha(unsigned short *src, unsigned char *alpha,
                                         unsigned int srcWidth, unsigned int srcHeight,
                                         unsigned int srcLeft, unsigned int srcTop,
                                         unsigned short *dst, unsigned int dstWidth,
                                         unsigned int dstHeight, unsigned int dstLeft,
                                         unsigned int dstTop, unsigned char opacity,
                                         unsigned int regionWidth, unsigned int regionHeight,
                                         bool exact);

OSTREL_API void DarkerTRCToTRCWithAlpha(unsigned int *src, unsigned char *alpha,
                                        unsigned int srcWidth, unsigned int srcHeight,
                                        unsigned int srcLeft, unsigned int srcTop,
                                        unsigned int *dst, unsigned int dstWidth,
                                        unsigned int dstHeight, unsigned int dstLeft,
                                        unsigned int dstTop, unsigned char opacity,
                                        unsigned int regionWidth, unsigned int regionHeight,
                                        bool exact);

OSTREL_API void LighterTRCToTRCWithAlpha(unsigned int *src, unsigned char *alpha,
                                         unsigned int srcWidth, unsigned int srcHeight,
                                         unsigned int srcLeft, unsigned int srcTop,
                                         unsigned int *dst, unsigned int dstWidth,
                                         unsigned int dstHeight, unsigned int dstLeft,
                                         unsigned int dstTop, unsigned char opacity,
                                         unsigned int regionWidth, unsigned int regionHeight,
                                         bool exact);

// Recolouring that keeps the shading. One buffer, one-buffer clipping; the
// alpha buffer has the buffer's own geometry (same index, same stride) and
// alpha null means full coverage. Per pixel, with e = channel - fromColour's
// channel for blue, green and red: where max |e| <= tolerance the target of
// each channel is clamp(toColour's channel + e, 0, 255), and the channel
// moves toward it with c = alpha byte; otherwise the pixel is left alone.
// Bits 24-31 of fromColour and toColour are ignored. Both forms.
OSTREL_API void ChangeColorOfTRCWithAlpha(unsigned int *buffer, unsigned char *alpha,
                                          unsigned int width, unsigned int height,
                                          unsigned int left, unsigned int top,
                                          unsigned int fromColour, unsigned int toColour,
                                          unsigned char tolerance, unsigned char opacity,
                                          unsigned int regionWidth, unsigned int regionHeight,
                                          bool exact);

// ===========================================================================
// Binary objects and masks
// ===========================================================================

// Masks are unsigned char buffers (L08), label buffers int buffers; both are
// addressed like every buffer here (row stride = width), with signed int
// geometry. Fill, ColorBinaryObjects, FollowContour and
// MultiObjectFeatureExtract are function templates exported for exactly two
// element types, unsigned char and int; pixel values are compared for
// equality in the element type.
//
// Regions are clamped into the buffer rather than clipped: left into
// 0 .. width-1, top into 0 .. height-1, regionWidth into 0 .. width-1-left,
// regionHeight into 0 .. height-1-top. As sizes these never reach the
// buffer's last column or last row, so a scan never visits them. A buffer
// whose width or height is below 1 has no pixels and its region is empty.
// No argument values overflow the arithmetic: sums of the geometry are taken
// in 64 bits, and a count that an int cannot hold is returned as INT_MAX.

// The platform's point record: x, then y.
struct CPoint {
  int x;
  int y;
};

// ---- Flood fill and object colouring ---------------------------------------

// Recolours with fillValue the 4-connected region of pixels that equal the
// seed pixel's value. The seed is first moved into the buffer (a coordinate
// below 0 becomes 0, one past the buffer its last column or row); the region
// is clamped as above and then bounds the walk inclusively: columns left ..
// left + regionWidth and rows top .. top + regionHeight, one more of each
// than the sizes suggest (as far as the buffer reaches). A seed outside
// those limits is filled too, and from it the walk steps only toward them.
//
// *changedCount (if not null) becomes one more than the number of pixels
// rewritten, or INT_MAX when that does not fit in an int: an isolated seed
// gives 2. A fillValue equal to the seed's value, or a buffer without pixels
// (width or height below 1), rewrites nothing and leaves *changedCount at 1
// (the checked build reports both as caller errors). Returns 0.
template <typename T>
int Fill(T *buffer, int width, int height, int seedX, int seedY, int left, int top,
         int regionWidth, int regionHeight, T fillValue, int *changedCount);
extern template OSTREL_API int Fill<unsigned char>(unsigned char *buffer, int width, int height,
                                                   int seedX, int seedY, int left, int top,
                                                   int regionWidth, int regionHeight,
                                                   unsigned char fillValue, int *changedCount);
extern template OSTREL_API int Fill<int>(int *buffer, int width, int height, int seedX,
                                         int seedY, int left, int top, int regionWidth,
                                         int regionHeight, int fillValue, int *changedCount);

// Gives every object (4-connected region of objectValue) in the clamped
// region its own label, in raster order of the objects' first pixels, by one
// Fill per object seeded there (so an object is filled within Fill's
// inclusive limits, also in the unscanned last column and row). Returns the
// number of objects labelled (INT_MAX if more). A negative width or height
// labels nothing (the checked build reports it).
//
// Labels start at firstLabel and step by +1 (ascending) or -1. The scan
// stops as soon as the next label equals endLabel (ascending) or 1
// (descending). The unsigned char form wraps its label modulo 256 (an
// endLabel above 255 never stops it); the int form wraps in 32 bits. A label
// equal to objectValue or backgroundValue is used up without a fill; the
// pixel that met it is then read again one column further on while the fill
// column stays behind: after k such skips in a row, the test reads column
// left + c + k and a fill is seeded at column left + c (up to k pixels past
// the row's end). The read position is realigned at each row.
template <typename T>
int ColorBinaryObjects(T *buffer, int width, int height, int left, int top, int regionWidth,
                       int regionHeight, T backgroundValue, T objectValue, T firstLabel,
                       bool ascending, int endLabel);
extern template OSTREL_API int ColorBinaryObjects<unsigned char>(
    unsigned char *buffer, int width, int height, int left, int top, int regionWidth,
    int regionHeight, unsigned char backgroundValue, unsigned char objectValue,
    unsigned char firstLabel, bool ascending, int endLabel);
extern template OSTREL_API int ColorBinaryObjects<int>(int *buffer, int width, int height,
                                                       int left, int top, int regionWidth,
                                                       int regionHeight, int backgroundValue,
                                                       int objectValue, int firstLabel,
                                                       bool ascending, int endLabel);

// ---- Contour following -----------------------------------------------------

// Walks the outer boundary of the 8-connected object of objectValue that
// holds *start (a pixel of the width x height buffer), clockwise on screen,
// and returns its length: 1 per axis step, sqrt(2) per diagonal step. The search for each
// step begins one direction clockwise past the pixel just left (the first
// search begins to the right). The walk stops
//   - when all eight neighbours of the start differ (length 0, no point),
//   - on re-entering the start pixel,
//   - on stepping out of the region (half-open: left .. left+regionWidth-1,
//     top .. top+regionHeight-1; only the pixel moved to is tested),
//   - when the length so far exceeds regionWidth * regionHeight;
// the step that stops it is not counted. If points is given, each pixel
// left (the start first, not repeated at the end) is stored and counted in
// *pointCount (INT_MAX if more); without points *pointCount becomes 0. Room
// for regionWidth * regionHeight + 2 points suffices. left + regionWidth and
// top + regionHeight are taken in 64 bits.
//
// Neighbours are read by raw index, start + dy * width + dx from the pixel
// walked to: the left neighbour of a pixel in column 0 is the last pixel of
// the row above, the right neighbour of one in the last column the first
// pixel of the row below, and the walk's coordinates then run on past the
// buffer's columns (so a region reaching beyond the buffer lets the walk on).
// A neighbour above the first row or below the last row is never read and
// counts as not the object, and so does the one link that mirrors such a
// neighbour at either end: the lower left neighbour of pixel (0, 0) (the
// first row's last pixel) and the upper right neighbour of the last pixel
// (the last row's first pixel). Neighbours stay symmetric, so every walk
// comes back to its start unless the region or the guard stops it first.
// Width or height below 1, or a start that is not a pixel of the buffer,
// gives 0 and no point (the checked build reports them).
template <typename T>
double FollowContour(T *buffer, T *start, int width, int height, int left, int top,
                     int regionWidth, int regionHeight, T objectValue, CPoint *points,
                     int *pointCount);
extern template OSTREL_API double FollowContour<unsigned char>(
    unsigned char *buffer, unsigned char *start, int width, int height, int left, int top,
    int regionWidth, int regionHeight, unsigned char objectValue, CPoint *points,
    int *pointCount);
extern template OSTREL_API double FollowContour<int>(int *buffer, int *start, int width,
                                                     int height, int left, int top,
                                                     int regionWidth, int regionHeight,
                                                     int objectValue, CPoint *points,
                                                     int *pointCount);

// ---- Outlines as polygons --------------------------------------------------

struct ICoordPolygon;  // VornelCoordPolygon.h

// Traces every boundary between the objects of a mask and its background
// into polygon, as closed figures along pixel edges: the path a cutter, a
// plotter or an embroidery program follows around each object and each of
// its holes.
//
// The region is clipped into the width x height buffer as the blends clip
// their one buffer (left and top at or past the buffer's edge give no
// pixels, the sizes are cut at its edges); pixels outside the region count
// as background. Object pixels are the nonzero ones, connected 8-wise (two
// pixels touching at a corner belong to one object); background pixels
// connect 4-wise, so a hole is a 4-connected background region that does not
// reach the region's border.
//
//   - polygon is emptied first (RemoveAll). Then each object's outer
//     boundary and the boundary of each of its holes becomes one figure
//     (AddXY for each vertex, CloseFigure after the last).
//   - Vertices are pixel corners in buffer coordinates: the corner (x, y) is
//     the top-left corner of pixel (x, y), so the single pixel (3, 5) gives
//     the figure (3, 5), (4, 5), (4, 6), (3, 6).
//   - The object lies to the right of the direction of travel (y pointing
//     down): outer figures run clockwise on screen, hole figures
//     counter-clockwise, and the signed (shoelace) areas of all figures add
//     up to the number of object pixels in the region.
//   - A vertex is written only where the direction changes, and the first
//     vertex is not repeated at the end. Where two object pixels touch only
//     at a corner, their figure passes through that corner twice; seen from
//     a hole, the same corner keeps the hole's figure apart from the
//     background on the other side.
//   - Each figure starts at its topmost vertex (the leftmost of them): an
//     outer figure there heads right, a hole figure down. Figures come in
//     the order of their start vertices, by y and then by x.
//
// Returns the number of figures (INT_MAX if more), 0 for an empty region
// (also when mask is null, which the checked build reports when the region
// is not empty), or -1 when polygon is null (nothing else is done then). A
// negative status from a call of polygon, or from the memory manager when
// the temporaries cannot be had, is raised with MakeException
// (VornelException.h) and leaves the function as a CVornelException; the
// figures added up to then stay in polygon.
//
// Time is linear in the region's pixels plus the length of the boundaries;
// the temporaries, one byte per pixel of the region plus a one-pixel frame,
// come from the suite's memory manager (VornelMemMgr.h) and go back to it
// on every path.
OSTREL_API int GetContourPolygonFromBuffer2(unsigned char *mask, unsigned int width,
                                            unsigned int height, unsigned int left,
                                            unsigned int top, unsigned int regionWidth,
                                            unsigned int regionHeight, ICoordPolygon *polygon);

// ---- Multi-object feature extraction ---------------------------------------

// What MultiObjectFeatureExtract measures, as a combination of bits:
//   eFeatureBasic                                   pixel count, perimeter,
//                                                   roundness (always measured)
//   eFeatureBasic | eFeatureCentroid                 also the centroid
//   eFeatureBasic | eFeatureCentroid | eFeatureOrientation  also the orientation
//   eFeatureBasic | eFeatureHistogram                also the histogram
// Without eFeatureBasic the centroid and histogram are left untouched; with
// it but without eFeatureCentroid the centroid is set to (0, 0). The
// orientation is set to 0 whenever it is not measured.
enum EFeaturesNeeded : int {
  eFeatureBasic = 1,
  eFeatureCentroid = 2,
  eFeatureOrientation = 4,
  eFeatureHistogram = 32
};

// One object's measurements. The layout is the same in 32- and 64-bit
// builds: 1104 bytes, the doubles at offset 8.
struct SFeature {
  int pixelCount;      // object pixels found in the region
  int padding;         // keeps the doubles 8-byte aligned; not written
  double centroidX;    // mean of column + 0.5, in buffer coordinates
  double centroidY;    // mean of row + 0.5, in buffer coordinates
  double orientation;  // main direction in radians, -pi <= value < pi
  double perimeter;    // FollowContour's length from the first pixel
  double roundness;    // perimeter / (2 pi sqrt(pixelCount / pi)); 1 for a disc
  int histogram[256];  // values of the second buffer under the object
  unsigned char reserved[32];  // for the host; not read or written
};

// Builds the module-wide angle tables that the orientation needs, for
// angleSteps bins per full turn (N = angleSteps rounded half up, E = N / 8
// bins per 45 degrees). angleSteps must lie in 7.5 .. 36000, both included:
// from N = 8, the least that gives E >= 1, up to a hundredth of a degree per
// bin (the orientation's window search costs about N * N / 5 additions per
// object). marker must not be 0.
//
// Returns 0, or -1
//   - when marker is 0, or angleSteps lies outside 7.5 .. 36000 or is not a
//     number (infinities too): nothing changes, tables built before are
//     kept, and without them a later call with good arguments builds them
//     (the checked build reports these as caller errors);
//   - when the tables exist already (they are kept);
//   - when they cannot be allocated (then the tables stay empty, and further
//     calls return -1 until ReleaseFeatureTables).
// Not thread-safe: initialisation, release and extractions that measure the
// orientation must not overlap. Measuring the orientation without tables is
// a caller error that stops the process as an integer division by zero does
// (the checked build reports it).
OSTREL_API int InitFeatureTables(int marker, double angleSteps);

// Frees the angle tables. Returns 0.
OSTREL_API int ReleaseFeatureTables();

// Measures the objects labelled firstLabel .. firstLabel + objectCount - 1 in
// the clamped region of labels (values: a buffer of the same geometry whose
// values, 0 .. 255, make the histograms) into features[0 .. objectCount-1].
// The perimeter is traced from each object's first pixel in raster order.
// The orientation is the start of the heaviest window of 2 * (N / 10) angle
// bins, each pixel weighted by its squared distance from the centroid (ties:
// the first window), minus pi; its offsets
// are taken with the region's column and row against the centroid in buffer
// coordinates, so a region away from the origin shifts them by left and top.
//
// The orientation visits the region once to find each object's bounding
// box, then each object's box (so its cost follows the objects' sizes, not
// their number times the region), and searches the windows over the bins
// that hold an entry only; the results are those of scanning the whole
// region per object and summing every bin.
//
// The Escape key is polled before every pixel each pass visits (Windows:
// GetAsyncKeyState; elsewhere the query of SetKeyStateQuery): when it
// reports, *aborted becomes 1 and -1 is returned, the records filled so far
// keeping what they have. Returns 0, or -1 also for null features or
// aborted (then nothing is written) or when the suite's memory manager
// (VornelMemMgr.h), which supplies the temporaries, has none to give (or when
// objectCount doubles would not fit in size_t: then nothing is asked of it).
// objectCount 0 or less measures nothing. Pixels are counted in 64 bits: pixelCount and each histogram bin
// stop at INT_MAX, while the centroid and roundness use the full count. In
// the int form a value outside 0 .. 255 under an object has no bin and is not
// counted, and a negative width or height measures no pixel (the checked
// build reports both).
template <typename T>
int MultiObjectFeatureExtract(T *labels, int width, int height, int left, int top,
                              int regionWidth, int regionHeight, T *values, T firstLabel,
                              int objectCount, SFeature *features, EFeaturesNeeded needed,
                              unsigned char *aborted);
extern template OSTREL_API int MultiObjectFeatureExtract<unsigned char>(
    unsigned char *labels, int width, int height, int left, int top, int regionWidth,
    int regionHeight, unsigned char *values, unsigned char firstLabel, int objectCount,
    SFeature *features, EFeaturesNeeded needed, unsigned char *aborted);
extern template OSTREL_API int MultiObjectFeatureExtract<int>(
    int *labels, int width, int height, int left, int top, int regionWidth, int regionHeight,
    int *values, int firstLabel, int objectCount, SFeature *features, EFeaturesNeeded needed,
    unsigned char *aborted);

// Whether a key is down or was pressed since the last query, for the virtual
// key code given (Escape is 27): nonzero for yes.
using OstrelKeyStateQuery = int (*)(int virtualKey);

// Installs query (null: none) as the key query of the Escape polls and
// returns the one installed before. Without one, Windows asks
// GetAsyncKeyState and other systems report no key.
OSTREL_API OstrelKeyStateQuery SetKeyStateQuery(OstrelKeyStateQuery query);

// Interpolates a table of count percentages given for values 0, 100, 200,
// ...: table[0] / 100 at or below 0, table[count-1] / 100 at or beyond the
// last step, (count - 1) * 100 (taken in 64 bits), linear in between, in
// single precision. A count below 1 gives 0 without reading the table (the
// checked build reports it).
OSTREL_API float GetInterpolatedOverlayFactor(int value, double *table, int count);

// ---- Mask frames -----------------------------------------------------------

// Source and destination are whole width x height L08 buffers. A boundary
// pixel is a non-zero source pixel with a zero axis neighbour (for the down
// frame: a zero pixel with a non-zero axis neighbour). Only pixels at least
// frameWidth from every edge are tested, and round each boundary pixel the
// destination pixels whose table distance d is at most frameWidth are
// raised or (down frame) zeroed; nothing else is written. Needs
// 1 <= frameWidth <= R and width, height > 2 * frameWidth: otherwise nothing
// is written at all (the checked build reports the first that fails).

// A new (2R+1) x (2R+1) table, rows dy = -R .. R, columns dx = -R .. R, of
// sqrt(dx*dx + dy*dy) rounded half up. Release it with delete[]. Throws
// std::bad_alloc when it cannot be allocated, also when its size in bytes
// does not fit in size_t (from R = 2^30 in 64-bit builds, 2^14 in 32-bit
// ones).
OSTREL_API int *CreateDistTableForSoftFrame(unsigned int R);

// Raises the destination to v = ((frameWidth + 1 - d) * s) / frameWidth, cut
// to its low 8 bits, with s the boundary pixel's value: s at distance 1,
// falling to s / frameWidth at frameWidth. At distance 0 the value can pass
// 255 and wraps (255 with frameWidth 10 gives 280, so 24).
OSTREL_API void SoftFrameL08toL08(unsigned char *src, unsigned char *dst, unsigned int width,
                                  unsigned int height, int *distTable, unsigned int R,
                                  unsigned int frameWidth);

// Raises the destination to the boundary pixel's value, or sets it to 255
// when fullValue is true. With frameWidth 1 the whole 3 x 3 square round the
// pixel is written whatever the table holds.
OSTREL_API void HardFrameL08toL08(unsigned char *src, unsigned char *dst, unsigned int width,
                                  unsigned int height, int *distTable, unsigned int R,
                                  unsigned int frameWidth, bool fullValue);

// Zeroes the destination round every zero source pixel that touches an
// object, cutting a band into the objects. With frameWidth 1 the whole
// 3 x 3 square is zeroed whatever the table holds.
OSTREL_API void HardFrameDownL08toL08(unsigned char *src, unsigned char *dst,
                                      unsigned int width, unsigned int height, int *distTable,
                                      unsigned int R, unsigned int frameWidth);

#endif  // OSTREL_H

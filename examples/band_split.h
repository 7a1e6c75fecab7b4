// band_split.h - a host-side helper that runs raster calls in row bands on
// the library's worker pool (GetSynchStruct in Ostrel.h).
//
// A large region is cut into horizontal bands of nearly equal height; each
// band goes to a free worker as one work object, the calling thread takes the
// last band itself, and then waits on the done events of the others.
//
// RunInRowBands runs any job(top, rows) this way; the job must write only its
// own rows of whatever the bands share. The functions in namespace banded
// take the arguments of the library function of the same name (plus the band
// count and order) and run that call in bands, clipped as the library clips
// it, so that the result is the one call's:
//
//   banded::AlphaBlendTRCToTRC(src, width, height, 0, 0, dst, width, height,
//                              0, 0, 255, width, height, false);
//
// Bands are rows, never columns: every function listed here reads and writes
// only its own region rows, with one exception. The 12-bit two-level blends
// (AlphaBlendL12ToL12 with shared alpha and AlphaBlendL12ToL12FlatAlpha, with
// twoLevel set and blendZero not 0) test and set the word just right of each
// region row after the row's last pixel. Where the region stops short of the
// destination's right edge that word lies in the same row, so the band that
// owns the row owns the word. Where the region reaches the right edge it is
// the first word of the next row, the first pixel the next band blends when
// the region starts at column 0: the two bands would race on that word, and
// the whole call's order (the word forced to full scale before its row is
// blended) would be lost. Such calls run whole, in one band; so do those
// whose region starts further right, which keeps the rule to one test.
//
// The pool does no locking of its own, so these helpers must not run on two
// threads at once; the first call should come from the host's main thread,
// since it builds the pool.
#ifndef OSTREL_EXAMPLES_BAND_SPLIT_H
#define OSTREL_EXAMPLES_BAND_SPLIT_H

#include <algorithm>
#include <thread>
#include <vector>

#include "Ostrel.h"

namespace ostrel_examples {

// How RunInRowBands runs its bands: spread over the pool's workers, or one
// after another on the calling thread, last band first. The second shows a
// job that depends on the order of its bands every time, not only when a
// worker happens to start late; it is for checking jobs.
enum class BandOrder { kPool, kSerialLastFirst };

// Runs job(top, rows) over rows 0 .. height-1 in up to bandCount bands
// (0: one band per processor the process may use) and returns the number of
// bands. Without a pool (one processor) or without a free worker or event,
// bands run on the calling thread. Returns when every band is done.
template <class Job>
unsigned int RunInRowBands(unsigned int height, Job job, unsigned int bandCount = 0,
                           BandOrder order = BandOrder::kPool) {
  SynchStruct *pool = GetSynchStruct();
  if (bandCount == 0) bandCount = pool->processorCount != 0 ? pool->processorCount : 1;
  if (bandCount > height) bandCount = height != 0 ? height : 1;
  const auto bandTop = [&](unsigned int b) {
    return static_cast<unsigned int>(static_cast<unsigned long long>(height) * b / bandCount);
  };
  if (order == BandOrder::kSerialLastFirst) {
    for (unsigned int b = bandCount; b-- > 0;) job(bandTop(b), bandTop(b + 1) - bandTop(b));
    return bandCount;
  }
  // One work object per band handed to a worker.
  struct Band final : CSynchWork {
    Job *job = nullptr;
    unsigned int top = 0, rows = 0;
    SSynchEvent *done = nullptr;
    SSynchWorker *worker = nullptr;
    void Run() override { (*job)(top, rows); }
  };
  std::vector<Band> bands(bandCount);

  const bool havePool = pool->workers != nullptr && pool->doneEvents != nullptr;
  unsigned int nextWorker = 0, nextEvent = 0;
  const unsigned int workerCount = havePool ? pool->extraWorkers + pool->processorCount : 0;
  const unsigned int eventCount = havePool ? pool->doneEventCount : 0;
  for (unsigned int b = 0; b < bandCount; ++b) {
    Band &band = bands[b];
    band.job = &job;
    band.top = bandTop(b);
    band.rows = bandTop(b + 1) - band.top;
    if (b + 1 == bandCount) {  // the calling thread's own band
      band.Run();
      break;
    }
    while (nextWorker < workerCount && SynchFlagLoad(&pool->workers[nextWorker].free) != 1) {
      ++nextWorker;
    }
    while (nextEvent < eventCount && pool->doneEvents[nextEvent].available != 1) ++nextEvent;
    if (nextWorker == workerCount || nextEvent == eventCount) {
      band.Run();
      continue;
    }
    SSynchWorker &worker = pool->workers[nextWorker++];
    band.worker = &worker;
    band.done = &pool->doneEvents[nextEvent++];
    SynchFlagStore(&worker.free, 0);
    band.done->available = 0;
    worker.work = &band;
    worker.doneEvent = band.done;
    SignalSynchEvent(worker.wakeEvent);
  }
  for (Band &band : bands) {
    if (band.done == nullptr) continue;
    WaitSynchEvent(band.done->event);
    band.done->available = 1;
    // The worker marks itself free just after signalling; waiting for that
    // too means it no longer touches its record or the band when we return.
    while (SynchFlagLoad(&band.worker->free) != 1) std::this_thread::yield();
  }
  return bandCount;
}

namespace banded {
namespace detail {

// Region rows (or columns) after the library's two-buffer clipping: the
// part of span units from start that lies inside each buffer, taken without
// wrapping (a span reaching past 2^32 goes to the edge).
inline unsigned int SpanBefore(unsigned int end, unsigned int start, unsigned int span) {
  return start >= end ? 0 : std::min(end - start, span);
}
inline unsigned int ClipPair(unsigned int srcSize, unsigned int srcStart, unsigned int dstSize,
                             unsigned int dstStart, unsigned int span) {
  return SpanBefore(dstSize, dstStart, SpanBefore(srcSize, srcStart, span));
}

// Runs call(top, rows) over the region's clipped rows in bands, or once as
// call(0, regionHeight) when split is false or a region corner lies below
// its buffer (the library then sees, and a checked build reports, the
// caller's own arguments). Returns the number of bands.
template <class Call>
unsigned int Split(unsigned int srcHeight, unsigned int srcTop, unsigned int dstHeight,
                   unsigned int dstTop, unsigned int regionHeight, bool split,
                   unsigned int bandCount, BandOrder order, Call call) {
  if (!split || srcTop > srcHeight || dstTop > dstHeight) {
    call(0u, regionHeight);
    return 1;
  }
  return RunInRowBands(ClipPair(srcHeight, srcTop, dstHeight, dstTop, regionHeight), call,
                       bandCount, order);
}

// Whether a 12-bit shared-geometry blend may be split: not when its
// two-level step writes past the end of each region row and the region
// reaches the destination's right edge (see the top of this file), nor
// with a corner right of its buffer.
inline bool L12BlendSplits(unsigned char blendZero, bool twoLevel, unsigned int srcWidth,
                           unsigned int srcLeft, unsigned int dstWidth, unsigned int dstLeft,
                           unsigned int regionWidth) {
  if (srcLeft > srcWidth || dstLeft > dstWidth) return false;
  if (!twoLevel || blendZero == 0) return true;
  const unsigned int columns = ClipPair(srcWidth, srcLeft, dstWidth, dstLeft, regionWidth);
  return columns == 0 || dstLeft + columns < dstWidth;
}

}  // namespace detail

// The band count and order of the library calls below, after their own
// arguments.
#define OSTREL_BAND_ARGS unsigned int bandCount = 0, BandOrder order = BandOrder::kPool

inline unsigned int FillTRCBuffer(unsigned int *buffer, unsigned int width, unsigned int height,
                                  unsigned int left, unsigned int top, unsigned int regionWidth,
                                  unsigned int regionHeight, unsigned int colour,
                                  OSTREL_BAND_ARGS) {
  return detail::Split(height, top, height, top, regionHeight, true, bandCount, order,
                       [&](unsigned int t, unsigned int rows) {
                         ::FillTRCBuffer(buffer, width, height, left, top + t, regionWidth, rows,
                                         colour);
                       });
}

// The board's rows count from the region's top, so each band's phase moves
// down with it.
inline unsigned int ChessboardFillTRCBuffer(unsigned int *buffer, unsigned int width,
                                            unsigned int height, unsigned int left,
                                            unsigned int top, unsigned int regionWidth,
                                            unsigned int regionHeight, int phaseX, int phaseY,
                                            unsigned int colour1, unsigned int colour2,
                                            unsigned int squareSize, OSTREL_BAND_ARGS) {
  return detail::Split(height, top, height, top, regionHeight, true, bandCount, order,
                       [&](unsigned int t, unsigned int rows) {
                         ::ChessboardFillTRCBuffer(
                             buffer, width, height, left, top + t, regionWidth, rows, phaseX,
                             static_cast<int>(phaseY + t), colour1, colour2, squareSize);
                       });
}

inline unsigned int AlphaBlendTRCToTRC(unsigned int *src, unsigned int srcWidth,
                                       unsigned int srcHeight, unsigned int srcLeft,
                                       unsigned int srcTop, unsigned int *dst,
                                       unsigned int dstWidth, unsigned int dstHeight,
                                       unsigned int dstLeft, unsigned int dstTop,
                                       unsigned char opacity, unsigned int regionWidth,
                                       unsigned int regionHeight, bool exact, OSTREL_BAND_ARGS) {
  return detail::Split(srcHeight, srcTop, dstHeight, dstTop, regionHeight, true, bandCount, order,
                       [&](unsigned int t, unsigned int rows) {
                         ::AlphaBlendTRCToTRC(src, srcWidth, srcHeight, srcLeft, srcTop + t, dst,
                                              dstWidth, dstHeight, dstLeft, dstTop + t, opacity,
                                              regionWidth, rows, exact);
                       });
}

inline unsigned int AlphaBlendL08ToTRC(unsigned char *src, unsigned int srcWidth,
                                       unsigned int srcHeight, unsigned int srcLeft,
                                       unsigned int srcTop, unsigned int colour, unsigned int *dst,
                                       unsigned int dstWidth, unsigned int dstHeight,
                                       unsigned int dstLeft, unsigned int dstTop,
                                       unsigned char opacity, unsigned int regionWidth,
                                       unsigned int regionHeight, bool exact, unsigned char *lookup,
                                       OSTREL_BAND_ARGS) {
  return detail::Split(srcHeight, srcTop, dstHeight, dstTop, regionHeight, true, bandCount, order,
                       [&](unsigned int t, unsigned int rows) {
                         ::AlphaBlendL08ToTRC(src, srcWidth, srcHeight, srcLeft, srcTop + t, colour,
                                              dst, dstWidth, dstHeight, dstLeft, dstTop + t,
                                              opacity, regionWidth, rows, exact, lookup);
                       });
}

// The grey-to-grey blends. Shared-geometry alpha moves with the source;
// own-geometry alpha moves down from its own corner.
#define OSTREL_BANDED_GREY_SHARED(Name, Pixel, Splits)                                          \
  inline unsigned int Name(Pixel *src, unsigned char *alpha, unsigned int srcWidth,             \
                           unsigned int srcHeight, unsigned int srcLeft, unsigned int srcTop,   \
                           Pixel *dst, unsigned int dstWidth, unsigned int dstHeight,           \
                           unsigned int dstLeft, unsigned int dstTop, unsigned char opacity,    \
                           unsigned char blendZero, bool twoLevel, unsigned int regionWidth,    \
                           unsigned int regionHeight, bool exact, OSTREL_BAND_ARGS) {           \
    return detail::Split(srcHeight, srcTop, dstHeight, dstTop, regionHeight, Splits, bandCount, \
                         order, [&](unsigned int t, unsigned int rows) {                        \
                           ::Name(src, alpha, srcWidth, srcHeight, srcLeft, srcTop + t, dst,    \
                                  dstWidth, dstHeight, dstLeft, dstTop + t, opacity, blendZero, \
                                  twoLevel, regionWidth, rows, exact);                          \
                         });                                                                    \
  }
#define OSTREL_L12_SPLITS \
  detail::L12BlendSplits(blendZero, twoLevel, srcWidth, srcLeft, dstWidth, dstLeft, regionWidth)

OSTREL_BANDED_GREY_SHARED(AlphaBlendL08ToL08, unsigned char, true)
OSTREL_BANDED_GREY_SHARED(AlphaBlendL08ToL08FlatAlpha, unsigned char, true)
OSTREL_BANDED_GREY_SHARED(AlphaBlendL12ToL12, unsigned short, OSTREL_L12_SPLITS)
OSTREL_BANDED_GREY_SHARED(AlphaBlendL12ToL12FlatAlpha, unsigned short, OSTREL_L12_SPLITS)

#define OSTREL_BANDED_GREY_OWN(Name, Pixel)                                                        \
  inline unsigned int Name(                                                                        \
      Pixel *src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcLeft,             \
      unsigned int srcTop, unsigned char *alpha, unsigned int alphaWidth,                          \
      unsigned int alphaHeight, unsigned int alphaLeft, unsigned int alphaTop, Pixel *dst,         \
      unsigned int dstWidth, unsigned int dstHeight, unsigned int dstLeft, unsigned int dstTop,    \
      unsigned char opacity, unsigned char blendZero, bool twoLevel, unsigned int regionWidth,     \
      unsigned int regionHeight, bool exact, OSTREL_BAND_ARGS) {                                   \
    return detail::Split(srcHeight, srcTop, dstHeight, dstTop, regionHeight, true, bandCount,      \
                         order, [&](unsigned int t, unsigned int rows) {                           \
                           ::Name(src, srcWidth, srcHeight, srcLeft, srcTop + t, alpha,            \
                                  alphaWidth, alphaHeight, alphaLeft, alphaTop + t, dst, dstWidth, \
                                  dstHeight, dstLeft, dstTop + t, opacity, blendZero, twoLevel,    \
                                  regionWidth, rows, exact);                                       \
                         });                                                                       \
  }

OSTREL_BANDED_GREY_OWN(AlphaBlendL08ToL08, unsigned char)
OSTREL_BANDED_GREY_OWN(AlphaBlendL12ToL12, unsigned short)

#undef OSTREL_BANDED_GREY_OWN
#undef OSTREL_L12_SPLITS
#undef OSTREL_BANDED_GREY_SHARED
#undef OSTREL_BAND_ARGS

}  // namespace banded
}  // namespace ostrel_examples

#endif  // OSTREL_EXAMPLES_BAND_SPLIT_H

// band_split.h - a host-side helper that runs one raster call per row band
// on the library's worker pool (GetSynchStruct in Ostrel.h).
//
// A large picture is cut into horizontal bands of nearly equal height; each
// band goes to a free worker as one work object, the calling thread takes the
// last band itself, and then waits on the done events of the others. Bands
// are rows, never columns: a few 12-bit blends write one pixel past their
// region on each row, so only row bands are disjoint.
//
//   RunInRowBands(height, [&](unsigned int top, unsigned int rows) {
//     AlphaBlendTRCToTRC(src, width, height, 0, top, dst, width, height, 0, top,
//                        255, width, rows, false);
//   });
//
// The pool does no locking of its own, so this helper must not run on two
// threads at once; the first call should come from the host's main thread,
// since it builds the pool.
#ifndef OSTREL_EXAMPLES_BAND_SPLIT_H
#define OSTREL_EXAMPLES_BAND_SPLIT_H

#include <thread>
#include <vector>

#include "Ostrel.h"

namespace ostrel_examples {

// Runs job(top, rows) over rows 0 .. height-1 in up to bandCount bands
// (0: one band per processor the process may use). Without a pool (one
// processor) or without a free worker or event, bands run on the calling
// thread. Returns when every band is done.
template <class Job>
void RunInRowBands(unsigned int height, Job job, unsigned int bandCount = 0) {
  SynchStruct *pool = GetSynchStruct();
  if (bandCount == 0) bandCount = pool->processorCount != 0 ? pool->processorCount : 1;
  if (bandCount > height) bandCount = height != 0 ? height : 1;

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
    band.top = static_cast<unsigned int>(static_cast<unsigned long long>(height) * b / bandCount);
    band.rows =
        static_cast<unsigned int>(static_cast<unsigned long long>(height) * (b + 1) / bandCount) -
        band.top;
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
}

}  // namespace ostrel_examples

#endif  // OSTREL_EXAMPLES_BAND_SPLIT_H

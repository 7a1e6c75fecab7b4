// Processor features, the worker pool and the scratch buffer shared by
// threads.
#include <cmath>
#include <cstdint>
#include <cstring>
#include <new>

#include "Ostrel.h"
#include "VornelException.h"
#include "VornelLargeAllocator.h"
#include "VornelMemMgr.h"
#include "frame/checked.h"
#include "frame/module.h"
#include "frame/platform.h"

namespace ostrel {
namespace frame {
namespace {

using platform::EventHandle;

const unsigned int kExtraWorkers = 8;
const unsigned int kExtraDoneEvents = 15;

// What a worker thread starts with. The wake event comes with it rather than
// being read from the record, so a worker that is never woken never touches
// its record (which is freed at exit while the thread still sleeps).
struct WorkerStart {
  SSynchWorker *record;
  EventHandle wakeEvent;
};

// What a worker thread does for the rest of the process: sleep on its wake
// event, run the work it was given, signal the done event, become free.
void WorkerLoop(void *start) {
  const WorkerStart s = *static_cast<WorkerStart *>(start);
  delete static_cast<WorkerStart *>(start);
  for (;;) {
    platform::WaitAutoResetEvent(s.wakeEvent);
    s.record->work->Run();
    platform::SetAutoResetEvent(s.record->doneEvent->event);
    SynchFlagStore(&s.record->free, 1);
  }
}

// Starts the thread of worker w; false when it cannot be started.
bool StartWorker(SSynchWorker &w) {
  WorkerStart *start = new (std::nothrow) WorkerStart{&w, w.wakeEvent};
  if (start == nullptr) return false;
  if (platform::StartThread(WorkerLoop, start)) return true;
  delete start;
  return false;
}

// The process's pool record, built on first use and released with the other
// function-local statics at exit. The release frees the two arrays only: the
// workers keep sleeping on their events until the process is gone.
class Pool {
 public:
  Pool() {
    s_.state = 0;
    s_.extraWorkers = kExtraWorkers;
    s_.workers = nullptr;
    s_.processorCount = platform::AffinityProcessorCount();
    s_.doneEvents = nullptr;
    s_.doneEventCount = 0;
    if (s_.processorCount == 1) return;

    const unsigned int workerCount = s_.extraWorkers + s_.processorCount;
    s_.workers = new (std::nothrow) SSynchWorker[workerCount];
    if (s_.workers == nullptr) {
      s_.processorCount = 0;
      return;
    }
    for (unsigned int i = 0; i < workerCount; ++i) {
      SSynchWorker &w = s_.workers[i];
      w.free = 1;
      w.doneEvent = nullptr;
      w.work = nullptr;
      w.wakeEvent = platform::CreateAutoResetEvent();
      if (w.wakeEvent == nullptr) {
        w.free = 0;
      } else if (!StartWorker(w)) {
        platform::CloseAutoResetEvent(w.wakeEvent);
        w.free = 0;
      }
    }

    s_.doneEventCount = s_.processorCount + kExtraDoneEvents;
    s_.doneEvents = new (std::nothrow) SSynchEvent[s_.doneEventCount];
    if (s_.doneEvents == nullptr) return;  // the count stays
    for (unsigned int i = 0; i < s_.doneEventCount; ++i) {
      s_.doneEvents[i].event = platform::CreateAutoResetEvent();
      s_.doneEvents[i].available = s_.doneEvents[i].event != nullptr ? 1 : 0;
    }
  }

  ~Pool() {
    if (s_.processorCount != 0) delete[] s_.workers;
    if (s_.doneEventCount != 0) delete[] s_.doneEvents;
  }

  Pool(const Pool &) = delete;
  Pool &operator=(const Pool &) = delete;

  SynchStruct *Record() { return &s_; }

 private:
  SynchStruct s_;
};

// Where a failure to size the scratch buffer is reported from.
const char kScratchSource[] = ".\\Ostrel";
const int kScratchLine = 9870;

// a * b, or UINT64_MAX when the product does not fit: such a request is
// larger than any limit.
std::uint64_t SaturatingProduct(std::uint64_t a, std::uint64_t b) {
  std::uint64_t product;
  return __builtin_mul_overflow(a, b, &product) ? UINT64_MAX : product;
}

// Releases the memory manager however the sizing ends.
class MemMgrReference {
 public:
  MemMgrReference() : manager_(DllGetMemMgr()) {}
  ~MemMgrReference() {
    if (manager_ != nullptr) manager_->Release();
  }
  MemMgrReference(const MemMgrReference &) = delete;
  MemMgrReference &operator=(const MemMgrReference &) = delete;
  IMemMgr *Get() const { return manager_; }

 private:
  IMemMgr *manager_;
};

}  // namespace
}  // namespace frame
}  // namespace ostrel

namespace frame = ostrel::frame;

int IsMMX() { return frame::QueryMmx(); }

SynchStruct *GetSynchStruct() {
  static frame::Pool pool;
  return pool.Record();
}

void SignalSynchEvent(void *event) { frame::platform::SetAutoResetEvent(event); }

void WaitSynchEvent(void *event) { frame::platform::WaitAutoResetEvent(event); }

void CalcAndGetFixedBufferForThreads(unsigned int total, unsigned int other, int bytesPerPixel,
                                     unsigned int threadCount, unsigned int *linesPerThread,
                                     unsigned int *pixelsPerLine, unsigned int *lineBytes,
                                     unsigned char **buffer, bool splitLines) {
  OSTREL_EXPECT(__func__, "threadCount", threadCount, threadCount != 0, "not 0");
  OSTREL_EXPECT(__func__, "bytesPerPixel", bytesPerPixel, bytesPerPixel > 0, "positive");
  // A thread count of 0 is the caller's error: the processor's divide fault,
  // as for the library's other zero divisors.
  if (threadCount == 0) frame::platform::RaiseIntegerDivideFault();
  std::uint64_t lines = splitLines ? total / threadCount : other;
  std::uint64_t pixels = splitLines ? other : total / threadCount;
  const std::uint64_t pixelBytes =
      static_cast<std::uint64_t>(static_cast<std::int64_t>(bytesPerPixel));
  std::uint64_t bytes = pixels * pixelBytes;

  frame::MemMgrReference memMgr;
  unsigned int mebibytes = 0;
  if (memMgr.Get() == nullptr) MakeException(kVornelFail, nullptr);
  MakeException(memMgr.Get()->GetMemorySize(&mebibytes), memMgr.Get());

  // A quarter of the figure, halved twice on purpose.
  const double half = std::floor(mebibytes * 0.5);
  const std::uint64_t limit = static_cast<std::uint64_t>(std::floor(half * 0.5 * 1048576.0));

  if (frame::SaturatingProduct(frame::SaturatingProduct(lines, threadCount), bytes) > limit) {
    if (splitLines) {
      const std::uint64_t slice = frame::SaturatingProduct(threadCount, bytes);
      lines = limit / slice;
    } else {
      bytes = limit / (static_cast<std::uint64_t>(other) * threadCount);
    }
  }
  if (splitLines) {
    if (lines == 0) throw CVornelException(1, frame::kScratchSource, frame::kScratchLine);
  } else {
    if (bytes == 0 || bytes > UINT32_MAX)
      throw CVornelException(1, frame::kScratchSource, frame::kScratchLine);
    pixels = bytes / pixelBytes;
    bytes = pixels * pixelBytes;
  }
  bytes = (bytes + 3) & ~static_cast<std::uint64_t>(3);

  const std::uint64_t size =
      frame::SaturatingProduct(frame::SaturatingProduct(bytes, lines), threadCount);
  void *block =
      size <= SIZE_MAX ? g_pLargeAllocator->Allocate(static_cast<std::size_t>(size)) : nullptr;
  if (block == nullptr) throw CVornelException(3, frame::kScratchSource, frame::kScratchLine);
  std::memset(block, 0, static_cast<std::size_t>(size));

  *buffer = static_cast<unsigned char *>(block);
  *lineBytes = static_cast<unsigned int>(bytes);
  *pixelsPerLine = static_cast<unsigned int>(pixels);
  *linesPerThread = static_cast<unsigned int>(lines);
}

// The worker pool, the MMX query and the shared scratch buffer.
#include <gtest/gtest.h>
#include <sched.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>
#include <vector>

#include "../examples/band_split.h"
#include "Ostrel.h"
#include "VornelException.h"
#include "VornelLargeAllocator.h"
#include "VornelMemMgr.h"

namespace {

// ---- Pool size by processor count ------------------------------------------

// In a fresh child process: restricts it to `processors` of the processors it
// may use, builds the pool and exits 0 when its shape is right (else prints
// what is wrong and exits 1).
[[noreturn]] void BuildPoolOn(int processors) {
  cpu_set_t allowed, chosen;
  CPU_ZERO(&chosen);
  if (sched_getaffinity(0, sizeof allowed, &allowed) != 0) std::_Exit(2);
  for (int cpu = 0, taken = 0; cpu < 32 && taken < processors; ++cpu) {
    if (!CPU_ISSET(cpu, &allowed)) continue;
    CPU_SET(cpu, &chosen);
    ++taken;
  }
  if (sched_setaffinity(0, sizeof chosen, &chosen) != 0) std::_Exit(2);
  const unsigned int n = static_cast<unsigned int>(CPU_COUNT(&chosen));
  const SynchStruct *s = GetSynchStruct();
  const unsigned int workers = n == 1 ? 0 : 8 + n, events = n == 1 ? 0 : n + 15;
  bool ok = s->state == 0 && s->extraWorkers == 8 && s->processorCount == n &&
            s->doneEventCount == events && (s->workers == nullptr) == (workers == 0) &&
            (s->doneEvents == nullptr) == (events == 0);
  for (unsigned int i = 0; ok && i < workers; ++i) ok = SynchFlagLoad(&s->workers[i].free) == 1;
  for (unsigned int i = 0; ok && i < events; ++i) ok = s->doneEvents[i].available == 1;
  if (!ok)
    std::fprintf(stderr, "processors %u: count %u, events %u\n", n, s->processorCount,
                 s->doneEventCount);
  std::_Exit(ok ? 0 : 1);
}

TEST(ThreadPool, ShapeFollowsAffinity) {
  // Death-test children re-run this program, so the pool is built there for
  // the first time, after the affinity call. On a machine with fewer than 4
  // processors the second case restricts to all there are (2 processors: 10
  // workers and 17 events).
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(BuildPoolOn(1), testing::ExitedWithCode(0), "");
  EXPECT_EXIT(BuildPoolOn(4), testing::ExitedWithCode(0), "");
}

// ---- Running work on the pool ---------------------------------------------

struct Counted final : CSynchWork {
  int runs = 0;
  std::thread::id ranOn;
  void Run() override {
    ++runs;
    ranOn = std::this_thread::get_id();
  }
};

TEST(ThreadPool, EveryWorkRunsOnceOnAWorker) {
  SynchStruct *s = GetSynchStruct();
  if (s->workers == nullptr) GTEST_SKIP() << "one processor: no pool";
  const unsigned int workerCount = s->extraWorkers + s->processorCount;
  std::vector<Counted> works(3000);
  std::vector<std::pair<SSynchWorker *, Counted *>> running;
  for (std::size_t next = 0; next < works.size();) {
    // Hand out as many works as there are free workers and events, then wait.
    for (unsigned int w = 0, e = 0; w < workerCount && next < works.size(); ++w) {
      SSynchWorker &worker = s->workers[w];
      if (SynchFlagLoad(&worker.free) != 1) continue;
      while (e < s->doneEventCount && s->doneEvents[e].available != 1) ++e;
      if (e == s->doneEventCount) break;
      SynchFlagStore(&worker.free, 0);
      s->doneEvents[e].available = 0;
      worker.doneEvent = &s->doneEvents[e];
      worker.work = &works[next];
      running.emplace_back(&worker, &works[next++]);
      SignalSynchEvent(worker.wakeEvent);
    }
    for (auto &r : running) {
      WaitSynchEvent(r.first->doneEvent->event);
      r.first->doneEvent->available = 1;
      EXPECT_EQ(r.second->runs, 1);
      EXPECT_NE(r.second->ranOn, std::this_thread::get_id());
    }
    running.clear();
  }
  for (const Counted &c : works) ASSERT_EQ(c.runs, 1);
  // Every worker becomes free again after signalling.
  for (unsigned int w = 0; w < workerCount; ++w) {
    while (SynchFlagLoad(&s->workers[w].free) != 1) std::this_thread::yield();
  }
}

TEST(ThreadPool, RowBandsCoverEveryRowOnce) {
  for (unsigned int height : {1u, 7u, 4320u}) {
    for (unsigned int bands : {0u, 1u, 3u, 40u}) {
      std::vector<int> hits(height, 0);
      ostrel_examples::RunInRowBands(
          height,
          [&](unsigned int top, unsigned int rows) {
            for (unsigned int y = top; y < top + rows; ++y) ++hits[y];
          },
          bands);
      EXPECT_EQ(std::vector<int>(height, 1), hits) << height << " rows, " << bands << " bands";
    }
  }
}

TEST(ThreadPool, MmxOnX86) {
#if defined(__i386__) || defined(__x86_64__)
  EXPECT_NE(IsMMX(), 0);
#else
  EXPECT_EQ(IsMMX(), 0);
#endif
}

// ---- The shared scratch buffer ----------------------------------------------

// A memory manager that reports a chosen figure (or fails) and counts its
// references.
struct FigureMemMgr final : IMemMgr {
  unsigned int figure = 0;
  VornelStatus status = kVornelOk;
  int references = 0;
  VornelStatus VORNEL_STDCALL QueryInterface(const IID &, void **) override {
    return kVornelNoInterface;
  }
  unsigned long VORNEL_STDCALL AddRef() override { return ++references; }
  unsigned long VORNEL_STDCALL Release() override { return --references; }
  VornelStatus VORNEL_STDCALL Allocate(std::size_t, void **) override { return kVornelFail; }
  VornelStatus VORNEL_STDCALL Free(void *) override { return kVornelOk; }
  VornelStatus VORNEL_STDCALL GetMemorySize(unsigned int *m) override {
    *m = figure;
    return status;
  }
};

// Hands out blocks full of 0xAB (so the zero fill shows), or none.
struct DirtyAllocator final : LargeAllocatorItf {
  bool refuse = false;
  std::size_t lastSize = 0;
  void *Allocate(std::size_t size) override {
    lastSize = size;
    if (refuse) return nullptr;
    void *p = std::malloc(size + 1);
    std::memset(p, 0xAB, size + 1);
    return p;
  }
  void Release(void *block) override { std::free(block); }
};

struct ScratchCase {
  unsigned int figure, total, other;
  int bytesPerPixel;
  unsigned int threads;
  bool splitLines;
  int code;  // 0: success with the three sizes below
  unsigned int lines, pixels, lineBytes;
};

TEST(ScratchBuffer, SizesAndFailures) {
  const ScratchCase cases[] = {
      // Fits: 6-byte lines become 8.
      {1024, 4, 2, 3, 2, true, 0, 2, 2, 8},
      // Limit 1 MiB (figure 4, and 5: halved and floored first): lines shrink
      // to 1048576 / (2 * 4000).
      {4, 1000, 1000, 4, 2, true, 0, 131, 1000, 4000},
      {5, 1000, 1000, 4, 2, true, 0, 131, 1000, 4000},
      {7, 1000, 1000, 4, 2, true, 0, 196, 1000, 4000},
      // Not one line of 800000 bytes per thread fits.
      {4, 1000, 200000, 4, 2, true, 1, 0, 0, 0},
      // Lines narrowed: 1048576 / (1000 * 2) = 524 bytes, 174 pixels of 3
      // bytes = 522, rounded up to 524.
      {4, 4000, 1000, 3, 2, false, 0, 1000, 174, 524},
      // Fewer pixels than threads: an empty line.
      {1024, 3, 10, 4, 4, false, 1, 0, 0, 0},
      // A line of 8 GiB fits the limit of 16 GiB but not in 32 bits.
      {65536, 0x80000000u, 1, 4, 1, false, 1, 0, 0, 0},
  };
  FigureMemMgr manager;
  DirtyAllocator allocator;
  IMemMgr *previousManager = DllSetMemMgr(&manager);
  LargeAllocatorItf *previousAllocator = g_pLargeAllocator;
  g_pLargeAllocator = &allocator;
  for (const ScratchCase &c : cases) {
    SCOPED_TRACE(testing::Message()
                 << "figure " << c.figure << ", total " << c.total << ", other " << c.other
                 << (c.splitLines ? ", lines split" : ", width split"));
    manager.figure = c.figure;
    unsigned int lines = 77, pixels = 77, lineBytes = 77;
    unsigned char *buffer = nullptr;
    try {
      CalcAndGetFixedBufferForThreads(c.total, c.other, c.bytesPerPixel, c.threads, &lines, &pixels,
                                      &lineBytes, &buffer, c.splitLines);
      EXPECT_EQ(c.code, 0);
      EXPECT_EQ(c.lines, lines);
      EXPECT_EQ(c.pixels, pixels);
      EXPECT_EQ(c.lineBytes, lineBytes);
      const std::size_t size = std::size_t{lineBytes} * lines * c.threads;
      ASSERT_EQ(size, allocator.lastSize);
      EXPECT_EQ(std::vector<unsigned char>(size, 0),
                std::vector<unsigned char>(buffer, buffer + size));
      EXPECT_EQ(0xAB, buffer[size]);  // nothing written past the block
      g_pLargeAllocator->Release(buffer);
    } catch (const CVornelException &e) {
      EXPECT_EQ(c.code, e.GetCode());
      EXPECT_STREQ("Ostrel", e.GetSourceFile());
      EXPECT_EQ(9870, e.GetLine());
      EXPECT_EQ(77u, lines);
      EXPECT_EQ(77u, pixels);
      EXPECT_EQ(77u, lineBytes);
      EXPECT_EQ(nullptr, buffer);
    }
    EXPECT_EQ(1, manager.references);  // only the installation's reference
  }

  unsigned int lines = 77, pixels = 77, lineBytes = 77;
  unsigned char *buffer = nullptr;
  manager.figure = 1024;
  allocator.refuse = true;
  try {
    CalcAndGetFixedBufferForThreads(8, 8, 4, 2, &lines, &pixels, &lineBytes, &buffer, true);
    ADD_FAILURE() << "a refused block was not reported";
  } catch (const CVornelException &e) {
    EXPECT_EQ(3, e.GetCode());
  }
  manager.status = kVornelFail;
  try {
    CalcAndGetFixedBufferForThreads(8, 8, 4, 2, &lines, &pixels, &lineBytes, &buffer, true);
    ADD_FAILURE() << "a failed memory query was not reported";
  } catch (const CVornelException &e) {
    EXPECT_EQ(kVornelFail, e.GetStatus());
  }
  EXPECT_EQ(1, manager.references);
  EXPECT_EQ(77u, lines);
  g_pLargeAllocator = previousAllocator;
  DllSetMemMgr(previousManager);
}

TEST(ScratchBuffer, StandInBlocksArePageAligned) {
  for (std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{5000000}}) {
    unsigned char *p = static_cast<unsigned char *>(g_pLargeAllocator->Allocate(size));
    ASSERT_NE(nullptr, p);
    EXPECT_EQ(0u, reinterpret_cast<std::uintptr_t>(p) % 4096);
    if (size != 0) p[size - 1] = p[0] = 1;
    g_pLargeAllocator->Release(p);
  }
}

}  // namespace

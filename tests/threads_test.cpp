// The worker pool and the shared scratch buffer.
#include <gtest/gtest.h>

#ifdef _WIN32
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
#else
#include <sched.h>
#endif

#include <algorithm>
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
  unsigned int n = 0;
#ifdef _WIN32
  DWORD_PTR allowed = 0, system = 0, chosen = 0;
  if (!GetProcessAffinityMask(GetCurrentProcess(), &allowed, &system)) std::_Exit(2);
  for (int cpu = 0; cpu < 32 && static_cast<int>(n) < processors; ++cpu) {
    if (((allowed >> cpu) & 1) == 0) continue;
    chosen |= DWORD_PTR{1} << cpu;
    ++n;
  }
  if (!SetProcessAffinityMask(GetCurrentProcess(), chosen)) std::_Exit(2);
#else
  cpu_set_t allowed, chosen;
  CPU_ZERO(&chosen);
  if (sched_getaffinity(0, sizeof allowed, &allowed) != 0) std::_Exit(2);
  for (int cpu = 0; cpu < 32 && static_cast<int>(n) < processors; ++cpu) {
    if (!CPU_ISSET(cpu, &allowed)) continue;
    CPU_SET(cpu, &chosen);
    ++n;
  }
  if (sched_setaffinity(0, sizeof chosen, &chosen) != 0) std::_Exit(2);
#endif
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

// Bands handed to workers: each row runs once, and with a pool some band runs
// off the calling thread. Repeated, so workers and done events are reused.
TEST(ThreadPool, RowBandsRunOnWorkersAndCoverEveryRowOnce) {
  const bool pool = GetSynchStruct()->workers != nullptr;
  for (int round = 0; round < 20; ++round)
    for (unsigned int height : {1u, 7u, 4320u})
      for (unsigned int bands : {0u, 1u, 3u, 40u}) {
        std::vector<int> hits(height, 0);
        std::vector<std::thread::id> ranOn(height);
        ostrel_examples::RunInRowBands(
            height,
            [&](unsigned int top, unsigned int rows) {
              for (unsigned int y = top; y < top + rows; ++y)
                ++hits[y], ranOn[y] = std::this_thread::get_id();
            },
            bands);
        ASSERT_EQ(std::vector<int>(height, 1), hits) << height << " rows, " << bands << " bands";
        const long home = std::count(ranOn.begin(), ranOn.end(), std::this_thread::get_id());
        EXPECT_TRUE(!pool || bands == 1 || height == 1 || home < static_cast<long>(height))
            << height << " rows, " << bands << " bands: all on the calling thread";
      }
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
  int code;                               // 0: success
  unsigned int lines, pixels, lineBytes;  // as left (77: untouched)
  bool refuse = false;                    // the allocator refuses the block
  VornelStatus status = kVornelOk;        // of the memory query
};

TEST(ScratchBuffer, SizesAndFailures) {
  // Limits: figure / 4 MiB, the figure halved and floored first (4 and 5: 1 MiB).
  // clang-format off
  const ScratchCase cases[] = {
      {1024, 4, 2, 3, 2, true, 0, 2, 2, 8},              // fits: 6-byte lines become 8
      {4, 1000, 1000, 4, 2, true, 0, 131, 1000, 4000},   // lines: 1048576 / (2 * 4000)
      {5, 1000, 1000, 4, 2, true, 0, 131, 1000, 4000},
      {7, 1000, 1000, 4, 2, true, 0, 196, 1000, 4000},
      {4, 1000, 200000, 4, 2, true, 1, 77, 77, 77},      // not one line of 800000 bytes
      {4, 4000, 1000, 3, 2, false, 0, 1000, 174, 524},   // 524 bytes: 174 pixels, 522 -> 524
      {1024, 3, 10, 4, 4, false, 1, 77, 77, 77},         // fewer pixels than threads
      {65536, 0x80000000u, 1, 4, 1, false, 1, 77, 77, 77},  // an 8 GiB line: not in 32 bits
      {1024, 8, 8, 4, 2, true, 3, 77, 77, 77, true},        // the block refused
      {1024, 8, 8, 4, 2, true, 1, 77, 77, 77, false, kVornelFail},  // the memory query failed
  };
  // clang-format on
  FigureMemMgr manager;
  DirtyAllocator allocator;
  IMemMgr *previousManager = DllSetMemMgr(&manager);
  LargeAllocatorItf *previousAllocator = g_pLargeAllocator;
  g_pLargeAllocator = &allocator;
  for (const ScratchCase &c : cases) {
    SCOPED_TRACE(testing::Message() << "case " << &c - cases);
    manager.figure = c.figure;
    manager.status = c.status;
    allocator.refuse = c.refuse;
    unsigned int lines = 77, pixels = 77, lineBytes = 77;
    unsigned char *buffer = nullptr;
    try {
      CalcAndGetFixedBufferForThreads(c.total, c.other, c.bytesPerPixel, c.threads, &lines, &pixels,
                                      &lineBytes, &buffer, c.splitLines);
      EXPECT_EQ(c.code, 0);
      const std::size_t size = std::size_t{lineBytes} * lines * c.threads;
      ASSERT_EQ(size, allocator.lastSize);
      EXPECT_EQ(std::vector<unsigned char>(size, 0),
                std::vector<unsigned char>(buffer, buffer + size));
      EXPECT_EQ(0xAB, buffer[size]);  // nothing written past the block
      allocator.Release(buffer);
    } catch (const CVornelException &e) {
      EXPECT_EQ(c.code, e.GetCode());
      EXPECT_EQ(c.status, e.GetStatus());
      if (c.status == kVornelOk) {  // thrown by the sizing itself
        EXPECT_STREQ("Ostrel", e.GetSourceFile());
        EXPECT_EQ(9870, e.GetLine());
      }
      EXPECT_EQ(nullptr, buffer);
    }
    EXPECT_EQ((std::vector<unsigned int>{c.lines, c.pixels, c.lineBytes}),
              (std::vector<unsigned int>{lines, pixels, lineBytes}));
    EXPECT_EQ(1, manager.references);  // only the installation's reference
  }
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

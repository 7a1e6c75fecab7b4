// Stand-in for the memory-manager part of the suite's globals library.
#include <cstdlib>
#include <limits>

#include "VornelMemMgr.h"
#include "process_object.h"

#if defined(_WIN32)
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
#else
#include <unistd.h>
#endif

namespace {

// The machine's physical memory in MiB (0 if the system does not say),
// limited to what an unsigned int holds.
unsigned int PhysicalMemoryMebibytes() {
  unsigned long long bytes = 0;
#if defined(_WIN32)
  MEMORYSTATUSEX status;
  status.dwLength = sizeof(status);
  if (GlobalMemoryStatusEx(&status)) bytes = status.ullTotalPhys;
#else
  const long pages = sysconf(_SC_PHYS_PAGES);
  const long pageSize = sysconf(_SC_PAGE_SIZE);
  if (pages > 0 && pageSize > 0) {
    bytes = static_cast<unsigned long long>(pages) * static_cast<unsigned long long>(pageSize);
  }
#endif
  const unsigned long long mebibytes = bytes >> 20;
  const unsigned long long most = std::numeric_limits<unsigned int>::max();
  return static_cast<unsigned int>(mebibytes < most ? mebibytes : most);
}

// Blocks from the C runtime's heap.
class HeapMemMgr final : public vornel_suite::ProcessObject<IMemMgr> {
 public:
  VornelStatus VORNEL_STDCALL Allocate(std::size_t size, void **block) override {
    if (block == nullptr) return kVornelFail;
    *block = std::malloc(size != 0 ? size : 1);
    return *block != nullptr ? kVornelOk : kVornelOutOfMemory;
  }
  VornelStatus VORNEL_STDCALL Free(void *block) override {
    std::free(block);
    return kVornelOk;
  }
  VornelStatus VORNEL_STDCALL GetMemorySize(unsigned int *mebibytes) override {
    if (mebibytes == nullptr) return kVornelFail;
    *mebibytes = PhysicalMemoryMebibytes();
    return kVornelOk;
  }
};

HeapMemMgr g_heapMemMgr;
vornel_suite::InstalledObject<IMemMgr> g_memMgr(&g_heapMemMgr);

}  // namespace

IMemMgr *DllGetMemMgr() { return g_memMgr.Get(); }

IMemMgr *DllSetMemMgr(IMemMgr *manager) { return g_memMgr.Set(manager); }

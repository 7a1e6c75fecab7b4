// Stand-in for the suite's allocators library: large blocks in whole pages.
#include "VornelLargeAllocator.h"

#if defined(_WIN32)
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
#else
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#endif

namespace {

// Pages straight from the system: VirtualAlloc on Windows, an anonymous
// mapping elsewhere. Both hand out zero-filled, page-aligned memory; the
// mapping's size is kept in a header page in front of the block, since
// munmap needs it.
class PageAllocator final : public LargeAllocatorItf {
 public:
  void *Allocate(std::size_t size) override {
#if defined(_WIN32)
    return VirtualAlloc(nullptr, size != 0 ? size : 1, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
#else
    const std::size_t page = PageSize();
    if (size > SIZE_MAX - 2 * page) return nullptr;
    const std::size_t mapped = (size + page - 1) / page * page + page;
    void *base = mmap(nullptr, mapped, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (base == MAP_FAILED) return nullptr;
    *static_cast<std::size_t *>(base) = mapped;
    return static_cast<unsigned char *>(base) + page;
#endif
  }

  void Release(void *block) override {
    if (block == nullptr) return;
#if defined(_WIN32)
    VirtualFree(block, 0, MEM_RELEASE);
#else
    unsigned char *base = static_cast<unsigned char *>(block) - PageSize();
    munmap(base, *reinterpret_cast<std::size_t *>(base));
#endif
  }

#if !defined(_WIN32)
 private:
  static std::size_t PageSize() {
    static const std::size_t page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    return page;
  }
#endif
};

PageAllocator g_pageAllocator;

}  // namespace

LargeAllocatorItf *g_pLargeAllocator = &g_pageAllocator;

// A memory manager for tests that counts what it hands out and gets back
// (blocks and references), and refuses every request while `failing` is set.
#ifndef OSTREL_TESTS_COUNTING_MEM_MGR_H
#define OSTREL_TESTS_COUNTING_MEM_MGR_H

#include <cstdlib>

#include "VornelMemMgr.h"

class CountingMemMgr final : public IMemMgr {
 public:
  VornelStatus VORNEL_STDCALL QueryInterface(const IID &, void **) override {
    return kVornelNoInterface;
  }
  unsigned long VORNEL_STDCALL AddRef() override { return static_cast<unsigned long>(++refs); }
  unsigned long VORNEL_STDCALL Release() override { return static_cast<unsigned long>(--refs); }
  VornelStatus VORNEL_STDCALL Allocate(std::size_t size, void **block) override {
    ++requests;
    *block = failing ? nullptr : std::malloc(size);
    if (*block == nullptr) return kVornelOutOfMemory;
    ++out;
    return kVornelOk;
  }
  VornelStatus VORNEL_STDCALL Free(void *block) override {
    if (block != nullptr) --out, std::free(block);
    return kVornelOk;
  }
  VornelStatus VORNEL_STDCALL GetMemorySize(unsigned int *m) override { return *m = 64, kVornelOk; }

  int out = 0;       // blocks not yet given back
  int requests = 0;  // Allocate calls
  int refs = 0;      // references taken and not released
  bool failing = false;
};

#endif  // OSTREL_TESTS_COUNTING_MEM_MGR_H

// VornelMemMgr.h - the suite's memory manager, as far as Ostrel uses it.
//
// The memory manager hands out the temporary blocks of the library's
// longer-running operations (the per-object tables of
// MultiObjectFeatureExtract) and reports how much memory the suite may plan
// with, which sizes the scratch buffers shared by worker threads.
#ifndef VORNEL_MEM_MGR_H
#define VORNEL_MEM_MGR_H

#include <cstddef>

#include "VornelBase.h"

struct IMemMgr : public IUnknown {
  // Allocates size bytes and stores the block in *block (null on failure).
  // Returns a negative status when no block could be given.
  virtual VornelStatus VORNEL_STDCALL Allocate(std::size_t size, void **block) = 0;

  // Releases a block of Allocate; a null block is ignored.
  virtual VornelStatus VORNEL_STDCALL Free(void *block) = 0;

  // Stores in *mebibytes the memory the suite may plan with, in MiB.
  virtual VornelStatus VORNEL_STDCALL GetMemorySize(unsigned int *mebibytes) = 0;

 protected:
  ~IMemMgr() = default;
};

// The process's memory manager with a reference added for the caller, who
// releases it; null when none is installed. Until a host installs its own,
// the stand-in manager allocates from the C++ runtime's heap and reports the
// machine's physical memory.
VORNEL_API IMemMgr *DllGetMemMgr();

// Installs manager (which may be null: no memory manager) as the process's
// memory manager, adding a reference to it, and returns the one installed
// before, whose reference passes to the caller (null if there was none).
VORNEL_API IMemMgr *DllSetMemMgr(IMemMgr *manager);

#endif  // VORNEL_MEM_MGR_H

// VornelLargeAllocator.h - the suite's allocator of large blocks, as far as
// Ostrel uses it.
//
// Large blocks (the scratch buffer that worker threads share, see
// CalcAndGetFixedBufferForThreads in Ostrel.h) come from the process's large
// allocator rather than from the memory manager. The caller who receives such
// a block gives it back through the same allocator.
#ifndef VORNEL_LARGE_ALLOCATOR_H
#define VORNEL_LARGE_ALLOCATOR_H

#include <cstddef>

#include "VornelBase.h"

class LargeAllocatorItf {
 public:
  // Returns a block of at least size bytes (of unspecified contents), or null
  // when none can be given. A size of 0 gives a valid block too.
  virtual void *Allocate(std::size_t size) = 0;

  // Gives back a block of Allocate; a null block is ignored.
  virtual void Release(void *block) = 0;

 protected:
  ~LargeAllocatorItf() = default;
};

// The process's large allocator. It starts out pointing to the stand-in,
// which takes whole pages from the system (so every block is page-aligned)
// and returns them to it on Release. A host that brings its own allocator
// stores it here before the first large block is asked for, and keeps it
// alive for as long as blocks from it are in use.
extern VORNEL_API LargeAllocatorItf *g_pLargeAllocator;

#endif  // VORNEL_LARGE_ALLOCATOR_H

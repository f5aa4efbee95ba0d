// The scene store's memory: zero-filled fixed blocks addressed by their
// pointer (on Windows: GlobalAlloc with GPTR).  Every piece of the store is
// allocated here, so the store can free all of it alike.
#pragma once

#include <cstddef>

namespace qv {

// A zero-filled block, or null when memory is short.
void* AllocBlock(size_t cb);
// A block holding a copy of `cb` bytes of `src` (null src: zero-filled).
void* CopyBlock(const void* src, size_t cb);
// Frees a block made by AllocBlock; null is ignored.
void FreeBlock(void* p);

// Tests only: make the n-th allocation from now fail (1 = the next one);
// 0 switches the failure off.  Counts allocations, not bytes.
void FailBlockAllocationAt(long n);
// Allocations attempted since the process started (for fault sweeps).
long BlockAllocationCount();

} // namespace qv

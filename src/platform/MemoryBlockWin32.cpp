#include "platform/MemoryBlock.h"

#include <windows.h>

#include <atomic>
#include <cstring>

namespace qv {
namespace {

std::atomic<long> g_allocations{0};
std::atomic<long> g_failAt{0};

bool ShouldFail()
{
    long n = ++g_allocations;
    long at = g_failAt.load();
    return at != 0 && n == at;
}

} // namespace

// Fixed blocks: a movable block would be locked for its whole life anyway,
// and every movable block takes one of the system's 65,536 movable handles,
// which three blocks per scene exhaust near 21,800 scenes, well short of the
// 32,767 a list may hold.
void* AllocBlock(size_t cb)
{
    if (ShouldFail()) return nullptr;
    return GlobalAlloc(GPTR, cb ? cb : 1);
}

void* CopyBlock(const void* src, size_t cb)
{
    void* p = AllocBlock(cb);
    if (p && src && cb) std::memcpy(p, src, cb);
    return p;
}

void FreeBlock(void* p)
{
    if (p) GlobalFree(p);
}

void FailBlockAllocationAt(long n)
{
    g_failAt = n > 0 ? g_allocations.load() + n : 0;
}

long BlockAllocationCount()
{
    return g_allocations.load();
}

} // namespace qv

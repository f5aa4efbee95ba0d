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

void* AllocBlock(size_t cb)
{
    if (ShouldFail()) return nullptr;
    HGLOBAL h = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, cb ? cb : 1);
    if (!h) return nullptr;
    void* p = GlobalLock(h);
    if (!p) GlobalFree(h);
    return p;
}

void* CopyBlock(const void* src, size_t cb)
{
    void* p = AllocBlock(cb);
    if (p && src && cb) std::memcpy(p, src, cb);
    return p;
}

void FreeBlock(void* p)
{
    if (!p) return;
    HGLOBAL h = GlobalHandle(p);
    if (!h) return;
    GlobalUnlock(h);
    GlobalFree(h);
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

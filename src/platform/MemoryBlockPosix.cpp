// Memory blocks for the native build of the portable core.
#include "platform/MemoryBlock.h"

#include <atomic>
#include <cstdlib>
#include <cstring>

namespace qv {
namespace {

std::atomic<long> g_allocations{0};
std::atomic<long> g_failAt{0};

} // namespace

void* AllocBlock(size_t cb)
{
    long n = ++g_allocations;
    long at = g_failAt.load();
    if (at != 0 && n == at) return nullptr;
    return std::calloc(1, cb ? cb : 1);
}

void* CopyBlock(const void* src, size_t cb)
{
    void* p = AllocBlock(cb);
    if (p && src && cb) std::memcpy(p, src, cb);
    return p;
}

void FreeBlock(void* p)
{
    std::free(p);
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

// Committed private bytes of this process: the sum of its private, committed
// regions (the count Windows calls private bytes; walked with VirtualQuery,
// which Wine answers from its own map of the address space).  Shared by the
// memory tests and the benchmarks.
#pragma once

#include <windows.h>

#include <cstdint>

namespace qvtest {

inline uint64_t PrivateBytes()
{
    uint64_t total = 0;
    MEMORY_BASIC_INFORMATION mbi;
    const char* p = nullptr;
    while (VirtualQuery(p, &mbi, sizeof mbi) == sizeof mbi) {
        if (mbi.State == MEM_COMMIT && mbi.Type == MEM_PRIVATE) total += mbi.RegionSize;
        const char* next = static_cast<const char*>(mbi.BaseAddress) + mbi.RegionSize;
        if (next <= p) break;
        p = next;
    }
    return total;
}

} // namespace qvtest

#include "qovcore.h"

#include <stdlib.h>

void* qovMalloc(int length)
{
    if (length < 1) return nullptr;
    const size_t alignment = 64; // a cache line and the widest vector
    return aligned_alloc(alignment, (size_t(length) + alignment - 1) & ~(alignment - 1));
}

void qovFree(void* ptr)
{
    free(ptr);
}

void* qovAlignPtr(void* ptr, int alignBytes)
{
    const uintptr_t mask = uintptr_t(alignBytes) - 1;
    const uintptr_t address = reinterpret_cast<uintptr_t>(ptr);
    return static_cast<char*>(ptr) + (((address + mask) & ~mask) - address);
}

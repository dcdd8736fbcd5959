#include "tests/audio/AllocationCounter.h"

#include <cstdlib>
#include <new>

namespace {

thread_local int allocations = 0;

} // namespace

int allocationsOfThisThread()
{
    return allocations;
}

// The array forms and the others of the library end in these.
void* operator new(size_t size)
{
    ++allocations;
    if (void* memory = std::malloc(size == 0 ? 1 : size))
        return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, size_t) noexcept
{
    std::free(memory);
}

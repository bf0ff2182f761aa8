#include "support/FailingAllocation.h"

#include <cstdlib>
#include <new>

namespace {

thread_local int remaining = 0;  // allocations up to the one that fails; none fails at 0

}  // namespace

void* operator new(std::size_t size)
{
    const bool fails = remaining > 0 && --remaining == 0;
    void* const block = fails ? nullptr : std::malloc(size > 0 ? size : 1);
    if (block == nullptr)
        throw std::bad_alloc();
    return block;
}

void operator delete(void* block) noexcept
{
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    std::free(block);
}

namespace kel::test {

FailingAllocation::FailingAllocation(int place)
{
    remaining = place;
}

FailingAllocation::~FailingAllocation()
{
    remaining = 0;
}

bool FailingAllocation::IsOver()
{
    return remaining == 0;
}

}  // namespace kel::test

// Memory for the compiler's runtime library when the system is out of memory. Exceptions and the library's
// data for each thread need small blocks; without them the library ends the process. The control's own
// allocations do not use the reserve: they throw std::bad_alloc.
#include <malloc.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>

// The system's functions, imported under other names (RuntimeReserve.def). The functions below have the
// original names, so that the whole module calls those.
extern "C" {
__declspec(dllimport) void* SystemMalloc(std::size_t size);
__declspec(dllimport) void* SystemCalloc(std::size_t count, std::size_t size);
__declspec(dllimport) void* SystemRealloc(void* block, std::size_t size);
__declspec(dllimport) void SystemFree(void* block);
}

namespace {

constexpr std::size_t BlockSize = 512;

struct alignas(16) Block {
    std::array<std::byte, BlockSize> bytes;
};

std::array<Block, 32> reserve;
std::atomic<std::uint32_t> used;  // one bit per block

void* Reserved(std::size_t size)
{
    for (std::size_t index = 0; size <= BlockSize && index < reserve.size(); ++index) {
        const std::uint32_t bit = 1U << index;
        if ((used.fetch_or(bit) & bit) == 0)
            return &reserve[index];
    }
    return nullptr;
}

bool IsReserved(const void* block)
{
    return block >= reserve.data() && block < reserve.data() + reserve.size();
}

}  // namespace

extern "C" void* malloc(std::size_t size)
{
    void* const block = SystemMalloc(size);
    return block != nullptr ? block : Reserved(size);
}

extern "C" void* calloc(std::size_t count, std::size_t size)
{
    void* block = SystemCalloc(count, size);
    if (block == nullptr && count <= BlockSize && size <= BlockSize &&
        (block = Reserved(count * size)) != nullptr)
        std::memset(block, 0, BlockSize);
    return block;
}

extern "C" void* realloc(void* block, std::size_t size)
{
    if (block == nullptr)
        return malloc(size);
    if (size == 0) {
        free(block);
        return nullptr;
    }
    void* moved = IsReserved(block) ? nullptr : SystemRealloc(block, size);
    if (moved == nullptr && (moved = malloc(size)) != nullptr) {
        std::memcpy(moved, block, std::min(size, IsReserved(block) ? BlockSize : _msize(block)));
        free(block);
    }
    return moved;
}

extern "C" void free(void* block)
{
    if (IsReserved(block))
        used &= ~(1U << (static_cast<Block*>(block) - reserve.data()));
    else
        SystemFree(block);
}

void* operator new(std::size_t size)
{
    if (void* const block = SystemMalloc(size))
        return block;
    throw std::bad_alloc();
}

void operator delete(void* block) noexcept
{
    SystemFree(block);
}

void operator delete(void* block, std::size_t /*size*/) noexcept
{
    SystemFree(block);
}

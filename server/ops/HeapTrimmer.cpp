#include "server/ops/HeapTrimmer.h"

#include <malloc.h>

#include <chrono>

#include "server/ops/Memory.h"

namespace kel::server {

namespace {

constexpr std::chrono::seconds Pause{5};
constexpr std::size_t MaxUnused = 33'554'432;  // bytes; less is not worth the work
constexpr int MaxArenas = 4;                   // each keeps its own free memory
constexpr int MappedBytes = 131'072;           // such blocks are returned to the system when freed
// An arena keeps that many bytes at its end. With the 128 KB of the library, which do not grow once the
// threshold above is set, reading reports returned and demanded the same memory for each few of them.
constexpr int KeptBytes = 2'097'152;

/// Bytes in memory beyond those allocated on the heap. They include the program and its stacks.
std::size_t UnusedMemory()
{
    const struct mallinfo2 heap = mallinfo2();
    const std::size_t used = heap.uordblks + heap.hblkhd;
    const std::size_t resident = ResidentMemory();
    return resident > used ? resident - used : 0;
}

}  // namespace

HeapTrimmer::HeapTrimmer()
{
    mallopt(M_ARENA_MAX, MaxArenas);
    mallopt(M_MMAP_THRESHOLD, MappedBytes);  // by default the threshold grows with freed blocks
    mallopt(M_TRIM_THRESHOLD, KeptBytes);
    thread = std::jthread([this](const std::stop_token& stop) { Run(stop); });
}

void HeapTrimmer::Run(const std::stop_token& stop)
{
    std::unique_lock lock(turn);
    while (!stop.stop_requested()) {
        wake.wait_for(lock, stop, Pause, [] { return false; });
        if (UnusedMemory() > MaxUnused)
            malloc_trim(0);
    }
}

}  // namespace kel::server

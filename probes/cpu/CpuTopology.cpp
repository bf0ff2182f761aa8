#include "probes/cpu/CpuTopology.h"

#include <windows.h>

#include <algorithm>
#include <bit>
#include <cstddef>
#include <vector>

namespace kel {

namespace {

using Record = SYSTEM_LOGICAL_PROCESSOR_INFORMATION_EX;

// The offsets of the fields that are read; the records have different lengths. The efficiency class follows
// the flags, even where the platform's headers do not declare it.
constexpr std::size_t SizeAt = offsetof(Record, Size);
constexpr std::size_t EfficiencyAt = offsetof(Record, Processor.Flags) + 1;
constexpr std::size_t GroupCountAt = offsetof(Record, Processor.GroupCount);
constexpr std::size_t GroupsAt = offsetof(Record, Processor.GroupMask);
constexpr std::size_t CacheSizeAt = offsetof(Record, Cache.CacheSize);
constexpr std::size_t HeaderSize = 8;
static_assert(SizeAt == 4 && EfficiencyAt == 9 && GroupCountAt == 30 && GroupsAt == 32 && CacheSizeAt == 12 &&
              sizeof(GROUP_AFFINITY) == 16);

/// The threads of a core: one for each bit of its masks.
std::int32_t CountThreads(Bytes core)
{
    std::int32_t threads = 0;
    const std::uint64_t groups = ReadLittleEndian(core, GroupCountAt, sizeof(WORD)).value_or(0);
    for (std::uint64_t group = 0; group < groups; ++group) {
        const std::optional<std::uint64_t> mask =
            ReadLittleEndian(core, GroupsAt + group * sizeof(GROUP_AFFINITY), sizeof(KAFFINITY));
        threads += std::popcount(mask.value_or(0));
    }
    return threads;
}

}  // namespace

CpuTopology DecodeTopology(Bytes records)
{
    std::int32_t threads = 0;
    std::int32_t packages = 0;
    std::uint64_t largestCache = 0;
    std::vector<std::uint64_t> efficiencies;  // of each core; the fastest kind has the highest
    while (const std::optional<std::uint64_t> size = ReadLittleEndian(records, SizeAt, sizeof(DWORD))) {
        if (*size < HeaderSize || *size > records.size())
            break;
        const Bytes record = records.first(static_cast<std::size_t>(*size));
        records = records.subspan(record.size());
        switch (ReadLittleEndian(record, 0, sizeof(DWORD)).value_or(RelationAll)) {
            case RelationProcessorCore:
                threads += CountThreads(record);
                efficiencies.push_back(ReadLittleEndian(record, EfficiencyAt, 1).value_or(0));
                break;
            case RelationProcessorPackage:
                ++packages;
                break;
            case RelationCache:
                largestCache =
                    std::max(largestCache, ReadLittleEndian(record, CacheSizeAt, sizeof(DWORD)).value_or(0));
                break;
            default:
                break;
        }
    }
    const auto count = [](auto number) {
        return number > 0 ? std::optional(static_cast<std::int32_t>(number)) : std::nullopt;
    };
    CpuTopology topology;
    topology.cores = count(efficiencies.size());
    topology.threads = count(threads);
    topology.packages = count(packages);
    if (!efficiencies.empty()) {
        const std::uint64_t fastest = std::ranges::max(efficiencies);
        topology.efficientCores = static_cast<std::int32_t>(
            std::ranges::count_if(efficiencies, [fastest](std::uint64_t kind) { return kind < fastest; }));
    }
    if (largestCache > 0)
        topology.largestCache = Size(largestCache);
    return topology;
}

}  // namespace kel

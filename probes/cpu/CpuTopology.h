#pragma once

#include <cstdint>
#include <optional>

#include "probes/ByteSpan.h"
#include "values/Size.h"

namespace kel {

/// Cores, threads and caches of all processor groups; a fact that no record reports is empty.
struct CpuTopology {
    std::optional<std::int32_t> cores;
    std::optional<std::int32_t> threads;
    std::optional<std::int32_t> packages;
    std::optional<std::int32_t>
        efficientCores;  ///< cores below the fastest kind; 0 where all are of one kind
    std::optional<Size> largestCache;
};

/// Decodes the records of `GetLogicalProcessorInformationEx`. A truncated record ends the list.
CpuTopology DecodeTopology(Bytes records);

}  // namespace kel

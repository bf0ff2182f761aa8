#pragma once

#include <windows.h>

#include "detectors/Component.h"
#include "values/Size.h"

namespace kel {

/// Amounts of memory, in bytes.
struct MemoryInfo {
    Size totalPhysical;
    Size totalVirtual;  ///< of the process's address space
    Size availablePhysical;
};

/// Reads the amounts.
/// @param statusEx `GlobalMemoryStatusEx` as found; null where the system lacks it, and `GlobalMemoryStatus`
/// serves
MemoryInfo ReadMemory(decltype(&GlobalMemoryStatusEx) statusEx);

/// The detector of memory: installed and available physical memory and the process's address space, in bytes,
/// from `GlobalMemoryStatusEx`, or `GlobalMemoryStatus` where the system lacks it.
class Ram : public Component {
public:
    bool Detect() override;
};

}  // namespace kel

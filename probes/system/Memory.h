#pragma once

#include <windows.h>

#include <string>

#include "values/Size.h"

namespace kel {

/// Amounts of memory.
struct MemoryInfo {
    Size totalPhysical;  ///< usable by the system
    Size totalVirtual;   ///< of the process's address space
    Size availablePhysical;
    std::wstring reserved;  ///< always empty; the report carries it twice
};

/// Reads the amounts.
/// @param statusEx `GlobalMemoryStatusEx` as found; null where the system lacks it, then `GlobalMemoryStatus`
/// is used
MemoryInfo ReadMemory(decltype(&GlobalMemoryStatusEx) statusEx);

/// Reads them through the function in "kernel32.dll"; all 0 when the library cannot be loaded.
MemoryInfo ReadMemory();

}  // namespace kel

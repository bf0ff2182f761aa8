#pragma once

#include <windows.h>

#include <optional>
#include <string>

#include "values/Size.h"

namespace kel {

/// The system's functions for its memory; a test replaces them. Both may be missing.
struct MemoryFunctions {
    decltype(&GlobalMemoryStatusEx) status = nullptr;  ///< without it, `GlobalMemoryStatus` is used
    decltype(&GetPhysicallyInstalledSystemMemory) getInstalled = nullptr;

    /// The system's own, in "kernel32.dll".
    static MemoryFunctions OfSystem();
};

/// Amounts of memory.
struct MemoryInfo {
    Size totalPhysical;  ///< usable by the system
    Size totalVirtual;   ///< of the process's address space
    Size availablePhysical;
    std::wstring reserved;          ///< always empty; the report carries it twice
    std::optional<Size> installed;  ///< as the firmware lists it; empty where its list cannot be read
};

/// Reads the amounts.
MemoryInfo ReadMemory(const MemoryFunctions& functions);

}  // namespace kel

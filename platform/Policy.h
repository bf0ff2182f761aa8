// What an administrator sets for everybody on the machine.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>

namespace kel {

/// The values below HKEY_LOCAL_MACHINE\Software\Policies\Keldane, where only administrators write. The same
/// key below HKEY_CURRENT_USER is never read.
struct Policy {
    std::optional<std::wstring> serviceHost;  // ServiceHost, unchecked; empty for any other type than a text
    std::wstring logFile;                     // LogFile: a path, perhaps with variables; empty for none
    int logLevel = 3;                         // LogLevel, 1 to 7
    std::uint64_t logSize = 0;                // LogSize, of one file, in bytes; registry: KB, 1024 to 102400
};

/// Reads the values below a key that stands for HKEY_LOCAL_MACHINE. A number out of its range becomes the
/// nearest one in it.
Policy ReadPolicy(HKEY machine = HKEY_LOCAL_MACHINE);

/// The policy that was in force at the first call of the process.
const Policy& CurrentPolicy();

}  // namespace kel

// The names below a registry key.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace kel {

/// The names of a key's subkeys, in the system's order.
/// @param maxCount the maximum number; it ends the loop for a key that cannot be enumerated
std::vector<std::wstring> ListSubkeys(HKEY key, DWORD maxCount);

/// The same for its values, without the unnamed one.
std::vector<std::wstring> ListValues(HKEY key, DWORD maxCount);

/// The number of a key's values; 0 when it cannot be read.
DWORD CountValues(HKEY key) noexcept;

}  // namespace kel

// The names below a registry key.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace kel {

/// The names of a key's subkeys, in the system's order.
/// @param most how many at most; the bound keeps a key that cannot be enumerated from being asked for ever
std::vector<std::wstring> ListSubkeys(HKEY key, DWORD most);

/// The same of its values; the value without a name is left out.
std::vector<std::wstring> ListValues(HKEY key, DWORD most);

/// How many values a key has; 0 when it cannot be asked.
DWORD CountValues(HKEY key) noexcept;

}  // namespace kel

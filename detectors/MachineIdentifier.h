#pragma once

#include <string>

namespace kel {

/// The identifier of this user's machine: the value "Run" of HKEY_CURRENT_USER\software\Keldane without
/// braces, or a fresh GUID, which is kept there when the key exists; the key is never made. "0" when no GUID
/// can be had.
/// @return a text of the process that the next call overwrites
const std::wstring& GetMachineIdentifier();

}  // namespace kel

#pragma once

#include <string>

namespace kel {

/// The identifier of this user's machine: the value "Run" of HKEY_CURRENT_USER\software\Keldane without
/// braces, or a new GUID, which is stored there when the key exists; the key is never created. "0" when no
/// GUID can be created.
/// @return a process-wide text that the next call overwrites
const std::wstring& GetMachineIdentifier();

}  // namespace kel

#pragma once

#include <windows.h>

#include <string>

namespace kel {

/// The name of a release by its version, build and product type, such as "Windows 11" or
/// "Windows Server 2022"; "Windows Server" for a server that Microsoft names by its update, and empty for a
/// release that is older than Vista or newer than 10.
std::wstring NameRelease(const OSVERSIONINFOEXW& version);

}  // namespace kel

#pragma once

#include <windows.h>

#include <optional>
#include <string>

namespace kel {

/// The version of the .NET Framework that the registry lists last below "NDP", which need not be the highest;
/// the analysis service expects that one. Nullopt when no entry has a version.
std::optional<std::wstring> ReadFrameworkVersion();

/// The version of the .NET Framework 4 with this "Release" number; the lower version for a number between
/// two. Empty below 4.5, which has no such number.
std::wstring FrameworkOfRelease(DWORD release);

}  // namespace kel

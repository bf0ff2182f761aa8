#pragma once

#include <windows.h>

#include <optional>
#include <string>

namespace kel {

/// The version of the .NET Framework that the registry lists last below "NDP", which need not be the highest;
/// the analysis service knows it so. Nothing when none has a version.
std::optional<std::wstring> ReadFrameworkVersion();

/// The version of the .NET Framework 4 whose "Release" number this is; of a number between two, the lower
/// one's. Empty below 4.5, which had none.
std::wstring FrameworkOfRelease(DWORD release);

}  // namespace kel

#pragma once

#include <optional>
#include <string>

namespace kel {

/// The version of the .NET Framework that the registry lists last below "NDP", which need not be the highest;
/// the analysis service knows it so. Nothing when none has a version.
std::optional<std::wstring> ReadFrameworkVersion();

}  // namespace kel

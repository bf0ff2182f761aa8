// Numbers by which the graphics interfaces describe an adapter.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

#include "values/Version.h"

namespace kel {

/// The key of an adapter among the graphics interfaces, as a text.
std::wstring LuidText(std::uint64_t luid);
std::wstring LuidText(LUID luid);

/// A driver's version from four 16-bit numbers, the first in the highest bits; nullopt for all zeros or all
/// ones.
std::optional<Version> DriverVersion(std::uint64_t numbers);

}  // namespace kel

#pragma once

#include <windows.h>

#include <span>
#include <string>

namespace kel {

/// The file's version from a version record, as "major.minor.build.revision". It is in the fixed part, which
/// all languages of a program share.
/// @param record as GetFileVersionInfoW gives it; truncated and malformed records are allowed
/// @return empty when the record is truncated, of another kind, or has 0.0.0.0
std::wstring ReadFixedVersion(std::span<const BYTE> record);

}  // namespace kel

#pragma once

#include <windows.h>

#include <span>
#include <string>

namespace kel {

/// The file's version out of a version record, as "major.minor.build.revision". It stands in the fixed part,
/// which every language of a program shares.
/// @param record as GetFileVersionInfoW gives it, or less of it, or anything else
/// @return empty when the record is cut short, is of another kind, or says 0.0.0.0
std::wstring ReadFixedVersion(std::span<const BYTE> record);

}  // namespace kel

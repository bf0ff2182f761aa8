// Versions as installers and packages write them.
#pragma once

#include <string>
#include <string_view>

namespace kel {

/// The dotted number that a text begins with: "5.9.7" of "5.9.7 (3931)". Fields of more than nine digits, and
/// what has no digit at its front, give nothing.
std::wstring ReadDottedNumber(std::wstring_view text);

/// Whether a dotted number is below another; fields that one lacks are 0.
bool IsLowerVersion(std::wstring_view version, std::wstring_view than);

/// The version in a package's full name, "Name_1.2.3.4_x64__publisher".
/// @param family the name of its family, "Name_publisher"
/// @return empty when the full name is malformed or of another family
std::wstring ReadPackageVersion(std::wstring_view fullName, std::wstring_view family);

}  // namespace kel

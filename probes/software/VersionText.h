// Versions as installers and packages write them.
#pragma once

#include <string>
#include <string_view>

namespace kel {

/// The dotted number at the start of a text: "5.9.7" of "5.9.7 (3931)". Empty for a field of more than nine
/// digits, and for a text that does not start with a digit.
std::wstring ReadDottedNumber(std::wstring_view text);

/// Whether a dotted number is lower than another; missing fields are 0.
bool IsLowerVersion(std::wstring_view version, std::wstring_view than);

/// The version in a package's full name, "Name_1.2.3.4_x64__publisher".
/// @param family the name of its family, "Name_publisher"
/// @return empty when the full name is malformed or of another family
std::wstring ReadPackageVersion(std::wstring_view fullName, std::wstring_view family);

}  // namespace kel

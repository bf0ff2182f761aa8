#pragma once

#include <cstdint>
#include <string>

namespace kel {

/// A number of milliseconds as seconds, in the text that a stream gives a floating-point number by default:
/// six significant digits, no zeros at the end. Written from integers, since a stream switches the locale of
/// the whole process while it writes such a number.
std::wstring SecondsText(std::uint32_t milliseconds);

}  // namespace kel

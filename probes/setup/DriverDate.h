#pragma once

#include <string>

namespace kel {

/// A driver's date, converted from the form in its key ("5-1-2024", the month first) to ISO 8601:
/// "2024-05-01". Empty for every other text.
std::wstring ReadDriverDate(const std::wstring& text);

}  // namespace kel

#pragma once

#include <string>

namespace kel {

/// The date of a driver as its key has it ("5-1-2024", the month first) in the order of ISO 8601:
/// "2024-05-01". Empty for every other text.
std::wstring ReadDriverDate(const std::wstring& text);

}  // namespace kel

#pragma once

#include <string>

namespace kel {

/// A text from firmware or a driver, up to its first control character and without blanks around it; empty
/// for a placeholder that vendors leave in place of a name, such as "Default string".
std::wstring TidyText(const std::wstring& text);

}  // namespace kel

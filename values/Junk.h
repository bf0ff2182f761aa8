#pragma once

#include <string>

namespace kel {

/// A text that firmware or a driver wrote, less what stands behind a control character and blanks around it;
/// empty when it is one of the fillers that makers leave in place of a name, such as "Default string".
std::wstring TidyText(const std::wstring& text);

}  // namespace kel

#pragma once

#include <windows.h>

#include <string>

namespace kel {

/// An error of an exchange in words, such as "the host does not accept a connection"; empty for one that is
/// not known.
std::wstring InternetErrorText(DWORD error);

}  // namespace kel

#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace kel {

/// A page's identifier as it may stand in a path or a query. WinINet sends a path as bytes of the system's
/// code page, which maps many characters outside ASCII onto control characters, blanks and delimiters: in the
/// Thai one a note is a carriage return. A character is therefore judged by its bytes. Those of control
/// characters and blanks are percent-encoded, so that no identifier adds a header or a second request, and
/// those of delimiters where the identifier has another character. Everything else stays: ASCII delimiters
/// and letters of every script.
/// @param codePage what WinINet converts to
std::wstring PathText(std::wstring_view text, UINT codePage = CP_ACP);

}  // namespace kel

#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace kel {

/// A page's identifier in the form that a path or a query may contain. WinINet sends a path as bytes of the
/// system's code page, which maps many characters outside ASCII onto control characters, blanks and
/// delimiters: the Thai one turns a musical note into a carriage return. A character is therefore judged by
/// its bytes. Those of control characters and blanks are percent-encoded, so that no identifier adds a header
/// or a second request, and so are those of delimiters when the identifier has another character. Everything
/// else is unchanged: ASCII delimiters and letters of every script.
/// @param codePage the code page that WinINet converts to
std::wstring PathText(std::wstring_view text, UINT codePage = CP_ACP);

}  // namespace kel

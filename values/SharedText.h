// Reference-counted wide text of the value classes.
#pragma once

#include <comutil.h>
#include <windows.h>

#include <string>

namespace kel {

/// Copies share one buffer; the last owner frees it.
using SharedText = _bstr_t;

/// A new text from a zero-terminated string; null gives the empty text.
SharedText MakeText(const wchar_t* text);

/// The buffer of a text; empty when it has none.
const wchar_t* Buffer(const SharedText& text);

}  // namespace kel

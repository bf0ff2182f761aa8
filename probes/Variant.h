// Conversions of WMI's VARIANTs. No other file looks into one.
#pragma once

#include <windows.h>

#include <oaidl.h>

#include <cstdint>
#include <string>

namespace kel {

/// @throws _com_error when the value has no such form
std::wstring VariantText(const VARIANT& value);
std::uint32_t VariantUnsigned(const VARIANT& value);
std::int32_t VariantSigned(const VARIANT& value);

/// The text form for the log; empty when there is none.
std::wstring ShowVariant(const VARIANT& value);

}  // namespace kel

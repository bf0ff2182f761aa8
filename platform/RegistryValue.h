// Values of the registry as they stand there.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

#include "platform/Handles.h"

namespace kel {

using OwnedKey = std::unique_ptr<std::remove_pointer_t<HKEY>, Closer<&RegCloseKey>>;

/// Opens a registry key; empty when it cannot be opened.
/// @param access the access rights as RegOpenKeyExW takes them
OwnedKey OpenKey(HKEY parent, const wchar_t* name, REGSAM access) noexcept;

/// A value as it stands in the registry.
struct RegistryValue {
    DWORD type = REG_NONE;
    std::vector<BYTE> bytes;

    bool IsString() const { return type == REG_SZ || type == REG_EXPAND_SZ; }

    /// The bytes taken as characters up to the first zero, whatever the type; half a character at the end
    /// counts as one. In a binary value the zeros before other characters are squeezed out first.
    std::wstring Text() const;
};

/// Reads a value; nothing when it is missing.
std::optional<RegistryValue> ReadValue(HKEY key, const wchar_t* name);

/// Reads a value that is a string (REG_SZ or REG_EXPAND_SZ, not expanded) of at most so many bytes.
/// @return false, with the text untouched, for any other value and for a missing one
bool ReadStringValue(HKEY key, const wchar_t* name, std::size_t largest, std::wstring& text);

}  // namespace kel

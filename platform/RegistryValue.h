// Raw values of the registry.
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

/// A raw value of the registry.
struct RegistryValue {
    DWORD type = REG_NONE;
    std::vector<BYTE> bytes;

    bool IsString() const { return type == REG_SZ || type == REG_EXPAND_SZ; }

    /// The bytes as characters up to the first zero, whatever the type; half a character at the end counts as
    /// one. In a binary value, zeros before other characters are removed first.
    std::wstring Text() const;
};

/// Reads a value; nullopt when it is missing.
std::optional<RegistryValue> ReadValue(HKEY key, const wchar_t* name);

/// Reads a string value (REG_SZ or REG_EXPAND_SZ, not expanded) of at most the given number of bytes.
/// @return false, with the text untouched, for any other value and for a missing one
bool ReadStringValue(HKEY key, const wchar_t* name, std::size_t maxSize, std::wstring& text);

}  // namespace kel

// The places of the registry where programs have their keys: those of 64-bit programs, of 32-bit programs,
// and of the current user.
#pragma once

#include <windows.h>

#include <string>

#include "probes/software/SoftwareFunctions.h"

namespace kel {

/// One of the three places.
struct RegistryView {
    HKEY root;
    REGSAM flag;  ///< KEY_WOW64_64KEY or KEY_WOW64_32KEY; 0 for the user, who has one view for both
};

inline const RegistryView Machine64 = {HKEY_LOCAL_MACHINE, KEY_WOW64_64KEY};
inline const RegistryView Machine32 = {HKEY_LOCAL_MACHINE, KEY_WOW64_32KEY};
inline const RegistryView CurrentUser = {HKEY_CURRENT_USER, 0};

/// The order in which the system looks for a program: the user's own first.
inline const RegistryView UserFirst[] = {CurrentUser, Machine64, Machine32};
/// The order of the list of installed programs.
inline const RegistryView MachineFirst[] = {Machine64, Machine32, CurrentUser};

/// Opens a key of a view for reading; empty when it cannot be opened.
OwnedKey OpenView(const SoftwareFunctions& functions, const RegistryView& view, const std::wstring& name);

/// Reads a string value of at most 8 KB; null for the key's own. Empty when there is none or it is of
/// another type.
std::wstring ReadText(HKEY key, const wchar_t* name);

/// Reads a number of 32 bits; 0 when there is none or it is of another type.
DWORD ReadNumber(HKEY key, const wchar_t* name);

}  // namespace kel

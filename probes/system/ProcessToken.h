// What the process's token says about its user.
#pragma once

#include <windows.h>

#include <optional>

namespace kel {

/// The kind of the token; nullopt when it cannot be read.
std::optional<TOKEN_ELEVATION_TYPE> ReadElevation();

/// The attributes (SE_GROUP_...) of the group Administrators in the token: 0 when the group is not in it,
/// nullopt when the groups cannot be read.
std::optional<DWORD> ReadAdministrators();

}  // namespace kel

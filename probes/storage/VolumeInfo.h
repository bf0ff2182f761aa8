#pragma once

#include <windows.h>

#include <optional>

#include "values/Name.h"
#include "values/Size.h"

namespace kel {

/// What the system says about a drive letter; what is empty is unknown. Label, serial number and share are
/// never asked for.
struct VolumeInfo {
    Name letter;                ///< such as "C:"
    UINT type = DRIVE_UNKNOWN;  ///< DRIVE_FIXED and so on
    Name kind;                  ///< the type in words
    Name fileSystem;
    std::optional<Size> size;
    std::optional<Size> free;  ///< to this user, whom a quota may bound
    std::optional<bool> holdsWindows;
    bool isAlias = false;  ///< another name for a folder or a letter
};

}  // namespace kel

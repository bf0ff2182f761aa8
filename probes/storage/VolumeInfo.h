#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <vector>

#include "diag/SourceFailures.h"
#include "values/Name.h"
#include "values/Size.h"

namespace kel {

/// The system's facts about a drive letter; empty ones are unknown. Label, serial number and share are never
/// read.
struct VolumeInfo {
    Name letter;                ///< such as "C:"
    UINT type = DRIVE_UNKNOWN;  ///< DRIVE_FIXED and so on
    Name kind;                  ///< the type in words
    Name fileSystem;
    std::optional<Size> size;
    std::optional<Size> free;  ///< for this user, who may have a quota
    std::optional<bool> holdsWindows;
    std::vector<std::int32_t> disks;  ///< the numbers of the disks that hold it, as far as known
    bool isVolume = true;             ///< false: the letter leads to an image, a cloud storage or the like
    std::vector<SourceFailure> failures;  ///< why its answers are incomplete
    bool isAlias = false;                 ///< another name for a folder or a letter
};

}  // namespace kel

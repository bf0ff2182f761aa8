// What an optical drive can do, read from its own answers and from its name.
#pragma once

#include <string>

#include "probes/ByteSpan.h"

namespace kel {

/// What an optical drive can do.
enum OpticalAbility : unsigned {
    WritesCds = 1,
    ReadsDvds = 2,
    WritesDvds = 4,
    WritesDoubleLayer = 8,
    ReadsBluRay = 16,
    WritesBluRay = 32,
    AllAbilities = 63,
};

/// The abilities of a drive that are known, and those that it has.
struct OpticalAbilities {
    unsigned known = 0;
    unsigned has = 0;

    bool HasValue() const { return known != 0; }
    /// Nullopt when it is not known.
    std::optional<bool> Has(OpticalAbility ability) const
    {
        return (known & ability) != 0 ? std::optional((has & ability) != 0) : std::nullopt;
    }
    /// Adds abilities from a text or a medium; known abilities stay.
    void Raise(unsigned abilities)
    {
        known |= abilities;
        has |= abilities;
    }
};

/// Reads the answer to IOCTL_CDROM_GET_CONFIGURATION for feature 0, the list of profiles, which makes all
/// abilities known. Unknown profiles are ignored. A truncated list makes only the abilities in it known.
/// @return nothing known for an answer without a profile
OpticalAbilities ReadProfiles(Bytes answer);

/// Reads the answer to IOCTL_STORAGE_GET_MEDIA_TYPES_EX, which shows abilities that a drive has, but never
/// that it lacks one.
OpticalAbilities ReadMediaTypes(Bytes answer);

/// The abilities in a name such as "HL-DT-ST BD-RE  WH16NS40" or a media type such as "DVD Writer".
unsigned GetAbilitiesOfName(const std::wstring& name);

}  // namespace kel

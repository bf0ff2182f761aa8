// What an optical drive can do, read from its own answers and from what it is called.
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

/// Which abilities of a drive are known, and which of them it has.
struct OpticalAbilities {
    unsigned known = 0;
    unsigned has = 0;

    bool HasValue() const { return known != 0; }
    /// Empty when it is not known.
    std::optional<bool> Has(OpticalAbility ability) const
    {
        return (known & ability) != 0 ? std::optional((has & ability) != 0) : std::nullopt;
    }
    /// Adds what a text or a medium told; what was there stays.
    void Raise(unsigned abilities)
    {
        known |= abilities;
        has |= abilities;
    }
};

/// Reads the answer to IOCTL_CDROM_GET_CONFIGURATION for feature 0, the list of profiles: all abilities are
/// known then. Profiles that are not known count for nothing. Of a list that is cut only what it holds is
/// known.
/// @return nothing known for an answer without a profile
OpticalAbilities ReadProfiles(Bytes answer);

/// Reads the answer to IOCTL_STORAGE_GET_MEDIA_TYPES_EX, which tells abilities that a drive has, and never
/// that it lacks one.
OpticalAbilities ReadMediaTypes(Bytes answer);

/// The abilities that a name such as "HL-DT-ST BD-RE  WH16NS40" or a media type such as "DVD Writer" tells.
unsigned GetAbilitiesOfName(const std::wstring& name);

}  // namespace kel

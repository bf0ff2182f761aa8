#include <algorithm>

#include "detectors/Detectors.h"
#include "detectors/DiskDrives.h"
#include "detectors/Facts.h"
#include "platform/ErrorMode.h"
#include "probes/storage/Volumes.h"
#include "values/StableSort.h"

namespace kel {

namespace {

/// Totals of all letters, without those that are other names for a folder.
struct VolumeTotals {
    bool isThere = false;
    std::int32_t fixed = 0;
    std::optional<Size> free;  ///< on the fixed ones
    std::int32_t removable = 0;
    std::int32_t optical = 0;
    std::int32_t remote = 0;
    std::int32_t ram = 0;
};

constexpr FactTable Totals(Fact{72600, &VolumeTotals::isThere}, Fact{72601, &VolumeTotals::fixed},
                           Fact{72612, &VolumeTotals::free}, Fact{72608, &VolumeTotals::removable},
                           Fact{72609, &VolumeTotals::optical}, Fact{72610, &VolumeTotals::remote},
                           Fact{72611, &VolumeTotals::ram});
constexpr FactTable Facts(Fact{72602, &VolumeInfo::letter}, Fact{72603, &VolumeInfo::kind},
                          Fact{72604, &VolumeInfo::fileSystem}, Fact{72605, &VolumeInfo::size},
                          Fact{72606, &VolumeInfo::free}, Fact{72607, &VolumeInfo::holdsWindows});

/// The facts about the user's profile.
struct ProfileInfo {
    std::optional<Size> free;  ///< on its volume
};

constexpr FactTable ProfileFacts(Fact{73500, &ProfileInfo::free});

/// By importance.
constexpr UINT Types[] = {DRIVE_FIXED, DRIVE_RAMDISK, DRIVE_REMOVABLE, DRIVE_CDROM, DRIVE_REMOTE};

/// The volume that holds Windows first, then by kind; the letters are sorted already.
auto GetRank(const VolumeInfo& volume)
{
    return std::make_tuple(!volume.holdsWindows.value_or(false),
                           std::ranges::find(Types, volume.type) - Types);
}

VolumeTotals AddUp(const std::vector<VolumeInfo>& volumes)
{
    const auto count = [&volumes](UINT type) {
        return static_cast<std::int32_t>(std::ranges::count_if(
            volumes, [type](const VolumeInfo& volume) { return volume.type == type && !volume.isAlias; }));
    };
    VolumeTotals totals;
    totals.fixed = count(DRIVE_FIXED);
    totals.isThere = totals.fixed > 0;
    totals.removable = count(DRIVE_REMOVABLE);
    totals.optical = count(DRIVE_CDROM);
    totals.remote = count(DRIVE_REMOTE);
    totals.ram = count(DRIVE_RAMDISK);
    for (const VolumeInfo& volume : volumes) {
        if (volume.type == DRIVE_FIXED && !volume.isAlias && volume.free)
            totals.free = totals.free.value_or(Size()) += *volume.free;
    }
    return totals;
}

/// A disk in a USB case, a mounted image and a cloud storage report themselves as fixed disks; they are not
/// part of the machine.
void MarkLoose(std::vector<VolumeInfo>& volumes, const std::vector<std::int32_t>& looseDisks)
{
    for (VolumeInfo& volume : volumes) {
        const bool isLoose =
            !volume.isVolume || std::ranges::any_of(volume.disks, [&looseDisks](std::int32_t disk) {
                return std::ranges::count(looseDisks, disk) > 0;
            });
        if (volume.type != DRIVE_FIXED || volume.isAlias || !isLoose)
            continue;
        volume.type = DRIVE_REMOVABLE;
        volume.kind = Name(GetVolumeKind(volume.type));
    }
}

}  // namespace

bool LogicalDrive::Detect()
{
    return Detect(VolumeFunctions::OfSystem(), GetDiskDrives());
}

bool LogicalDrive::Detect(const VolumeFunctions& functions, DiskDrives& disks)
{
    return Guarded(L"kel::LogicalDrive::Detect", L"Error in LogicalDrive detection.", [&] {
        const ErrorMode quiet;
        StoreDefaults(Totals, Facts, ProfileFacts);
        std::vector<VolumeInfo> volumes = ListVolumes(functions);
        MarkLoose(volumes, ListLooseDisks(disks.List()));
        SortStably(volumes, {}, &GetRank);
        Totals.Store(AddUp(volumes));
        StoreList(Facts, volumes, L"LogicalDrive");
        const VolumeInfo* const profile = FindProfileVolume(functions, volumes);
        ProfileFacts.Store({profile != nullptr ? profile->free : std::nullopt});
        if (profile != nullptr)
            ProfileFacts.NoteFailures(profile->failures);
    });
}

void LogicalDrive::Initialize()
{
    const LogScope trace(L"kel::LogicalDrive::Initialize");
}

StoredFacts LogicalDrive::ListFacts()
{
    return CollectFacts(Totals, Facts, ProfileFacts);
}

}  // namespace kel

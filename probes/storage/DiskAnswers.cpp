#include "probes/storage/DiskAnswers.h"

#include <windows.h>

#include <winioctl.h>

#include <limits>

namespace kel {

namespace {

constexpr std::size_t FlagOffset = 8;
static_assert(offsetof(DEVICE_SEEK_PENALTY_DESCRIPTOR, IncursSeekPenalty) == FlagOffset &&
              offsetof(DEVICE_TRIM_DESCRIPTOR, TrimEnabled) == FlagOffset);
constexpr std::size_t MediaTypeOffset = offsetof(DISK_GEOMETRY, MediaType);
constexpr std::size_t DiskSizeOffset = 24;
static_assert(offsetof(DISK_GEOMETRY_EX, DiskSize) == DiskSizeOffset && MediaTypeOffset == 8);
constexpr std::size_t MediaRemovableOffset = offsetof(STORAGE_HOTPLUG_INFO, MediaRemovable);
constexpr std::size_t DeviceHotplugOffset = offsetof(STORAGE_HOTPLUG_INFO, DeviceHotplug);
static_assert(MediaRemovableOffset == 4 && DeviceHotplugOffset == 6);
constexpr std::size_t ExtentsOffset = offsetof(VOLUME_DISK_EXTENTS, Extents);
static_assert(ExtentsOffset == 8 && sizeof(DISK_EXTENT) == 24);

}  // namespace

std::optional<bool> ReadStorageFlag(Bytes answer)
{
    const auto flag = ReadLittleEndian(answer, FlagOffset, 1);
    return flag ? std::optional(*flag != 0) : std::nullopt;
}

std::optional<DiskGeometry> ReadDiskGeometry(Bytes answer)
{
    const auto media = ReadLittleEndian(answer, MediaTypeOffset, sizeof(DWORD));
    const auto size = ReadLittleEndian(answer, DiskSizeOffset, sizeof(std::uint64_t));
    if (!media || !size || *size > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))
        return std::nullopt;
    // All other media types are floppies.
    return DiskGeometry{*size, *media != Unknown && *media != RemovableMedia && *media != FixedMedia};
}

std::optional<DeviceNumber> ReadDeviceNumber(Bytes answer)
{
    const auto type = ReadLittleEndian(answer, offsetof(STORAGE_DEVICE_NUMBER, DeviceType), sizeof(DWORD));
    const auto number =
        ReadLittleEndian(answer, offsetof(STORAGE_DEVICE_NUMBER, DeviceNumber), sizeof(DWORD));
    if (!type || !number || *number > static_cast<std::uint64_t>(std::numeric_limits<std::int32_t>::max()))
        return std::nullopt;
    return DeviceNumber{static_cast<std::uint32_t>(*type), static_cast<std::uint32_t>(*number)};
}

std::optional<Hotplug> ReadHotplug(Bytes answer)
{
    const auto medium = ReadLittleEndian(answer, MediaRemovableOffset, 1);
    const auto device = ReadLittleEndian(answer, DeviceHotplugOffset, 1);
    return medium && device ? std::optional(Hotplug{*medium != 0, *device != 0}) : std::nullopt;
}

std::vector<std::uint32_t> ReadExtentDisks(Bytes answer)
{
    std::vector<std::uint32_t> disks;
    const std::uint64_t count = ReadLittleEndian(answer, 0, sizeof(DWORD)).value_or(0);
    for (std::uint64_t extent = 0; extent < count; ++extent) {
        const auto disk =
            ReadLittleEndian(answer, ExtentsOffset + extent * sizeof(DISK_EXTENT), sizeof(DWORD));
        if (!disk)
            break;
        disks.push_back(static_cast<std::uint32_t>(*disk));
    }
    return disks;
}

}  // namespace kel

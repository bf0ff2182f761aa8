// Answers of storage devices, byte for byte as drivers give them.
#pragma once

#include <windows.h>

#include <winioctl.h>

#include <concepts>
#include <cstdint>
#include <string>
#include <vector>

#include "support/FakeStorage.h"

namespace kel::test {

inline const Request DeviceProperty{IOCTL_STORAGE_QUERY_PROPERTY, 0};
inline const Request SeekPenalty{IOCTL_STORAGE_QUERY_PROPERTY, 7};
inline const Request GeometryRequest{IOCTL_DISK_GET_DRIVE_GEOMETRY_EX, -1};
inline const Request NumberRequest{IOCTL_STORAGE_GET_DEVICE_NUMBER, -1};
inline const Request HotplugRequest{IOCTL_STORAGE_GET_HOTPLUG_INFO, -1};
inline const Request ExtentsRequest{IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS, -1};
inline const Request ConfigurationRequest{0x24058, -1};
inline const Request MediaTypesRequest{IOCTL_STORAGE_GET_MEDIA_TYPES_EX, -1};

/// A number of the given size in bytes, the lowest first.
inline std::string Little(std::integral auto value, int size)
{
    auto number = static_cast<std::uint64_t>(value);
    std::string bytes;
    for (; size > 0; --size, number >>= 8)
        bytes += static_cast<char>(number);
    return bytes;
}

/// The same with the highest first.
inline std::string Big(std::integral auto number, int size)
{
    const std::string bytes = Little(number, size);
    return {bytes.rbegin(), bytes.rend()};
}

/// A STORAGE_DEVICE_DESCRIPTOR followed by its texts; a null text has the offset 0.
inline std::string Descriptor(int bus, const char* vendor, const char* product, const char* revision,
                              bool isRemovable = false, const char* serial = "SERIAL-4711")
{
    std::string texts, offsets;
    for (const char* text : {vendor, product, revision, serial}) {
        offsets += Little(text != nullptr ? 40 + texts.size() : 0, 4);
        texts += text != nullptr ? std::string(text) + '\0' : "";
    }
    return Little(40, 4) + Little(40 + texts.size(), 4) + std::string(2, '\0') + Little(isRemovable, 1) +
           '\1' + offsets + Little(bus, 4) + std::string(8, '\0') + texts;
}

inline std::string Flag(bool flag)
{
    return Little(12, 4) + Little(12, 4) + Little(flag, 1) + std::string(3, '\1');
}

inline std::string Geometry(std::uint64_t bytes, int media = FixedMedia)
{
    return Little(1000, 8) + Little(media, 4) + Little(255, 4) + Little(63, 4) + Little(512, 4) +
           Little(bytes, 8) + std::string(8, '\0');
}

inline std::string Number(int type, std::uint32_t number)
{
    return Little(type, 4) + Little(number, 4) + Little(0, 4);
}

inline std::string HotplugInfo(bool medium, bool device)
{
    return Little(8, 4) + Little(medium, 1) + '\1' + Little(device, 1) + '\1';
}

inline std::string Extents(const std::vector<std::uint32_t>& disks)
{
    std::string bytes = Little(disks.size(), 8);
    for (const std::uint32_t disk : disks)
        bytes += Little(disk, 8) + Little(0, 8) + Little(1000, 8);
    return bytes;
}

/// GET CONFIGURATION with the list of profiles.
inline std::string Profiles(const std::vector<int>& profiles)
{
    std::string list;
    for (const int profile : profiles)
        list += Big(profile, 2) + std::string(2, '\0');
    return Big(8 + list.size(), 4) + Big(0, 4) + Big(0x000003, 3) + Big(list.size(), 1) + list;
}

/// GET_MEDIA_TYPES, with the type and characteristics of each medium.
inline std::string MediaTypes(int device, const std::vector<std::pair<int, int>>& media)
{
    std::string bytes = Little(device, 4) + Little(media.size(), 4);
    for (const auto& [type, characteristics] : media)
        bytes += Little(0, 8) + Little(type, 4) + Little(0, 16) + Little(characteristics, 4);
    return bytes;
}

}  // namespace kel::test

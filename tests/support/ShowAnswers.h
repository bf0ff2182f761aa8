#pragma once

#include <string>

#include "probes/DiskAnswers.h"
#include "probes/OpticalAbilities.h"
#include "probes/StorageDescriptor.h"

namespace kel::test {

/// What each reader of storage answers takes from the same bytes, as one text.
inline std::wstring ShowDescriptor(Bytes answer)
{
    const auto device = ReadStorageDescriptor(answer);
    return !device ? L"-"
                   : device->vendor + L"|" + device->product + L"|" + device->revision + L"|" +
                         std::to_wstring(device->isRemovable) + L"|" + std::to_wstring(device->bus);
}
inline std::wstring ShowFlag(Bytes answer)
{
    const auto flag = ReadStorageFlag(answer);
    return !flag ? L"-" : *flag ? L"yes" : L"no";
}
inline std::wstring ShowGeometry(Bytes answer)
{
    const auto geometry = ReadDiskGeometry(answer);
    return !geometry ? L"-" : std::to_wstring(geometry->bytes) + (geometry->isFloppy ? L" floppy" : L"");
}
inline std::wstring ShowNumber(Bytes answer)
{
    const auto number = ReadDeviceNumber(answer);
    return !number ? L"-" : std::to_wstring(number->type) + L"|" + std::to_wstring(number->number);
}
inline std::wstring ShowHotplug(Bytes answer)
{
    const auto hotplug = ReadHotplug(answer);
    return !hotplug ? L"-" : std::to_wstring(hotplug->medium) + L"|" + std::to_wstring(hotplug->device);
}
inline std::wstring ShowExtents(Bytes answer)
{
    std::wstring disks;
    for (const std::uint32_t disk : ReadExtentDisks(answer))
        disks += std::to_wstring(disk) + L" ";
    return disks;
}
/// Letters for abilities: C writes CDs, d reads and D writes DVDs, 2 writes double layer, b and B Blu-ray.
inline std::wstring ShowAbilities(unsigned abilities)
{
    std::wstring shown;
    for (int bit = 0; bit < 6; ++bit) {
        if ((abilities >> bit & 1) != 0)
            shown += L"CdD2bB"[bit];
    }
    return shown;
}
inline std::wstring Show(const OpticalAbilities& abilities)
{
    return ShowAbilities(abilities.has) + L"/" + ShowAbilities(abilities.known);
}
inline std::wstring ShowProfiles(Bytes answer)
{
    return Show(ReadProfiles(answer));
}
inline std::wstring ShowMediaTypes(Bytes answer)
{
    return Show(ReadMediaTypes(answer));
}

using ShowAnswer = std::wstring (*)(Bytes);
inline constexpr ShowAnswer ShowAnswers[] = {ShowDescriptor, ShowFlag,    ShowGeometry, ShowNumber,
                                             ShowHotplug,    ShowExtents, ShowProfiles, ShowMediaTypes};

/// What no reader shows.
inline constexpr const wchar_t* Unbounded = L"reads what lies behind the answer";

/// What a reader takes, when it takes the same whatever lies behind the answer.
inline std::wstring ShowBounded(ShowAnswer show, const std::string& answer)
{
    const std::string zeros = answer + std::string(64, '\0'), ones = answer + std::string(64, '\xFF');
    const auto shown = [show, &answer](const std::string& bytes) {
        return show(std::as_bytes(std::span(bytes)).first(answer.size()));
    };
    return shown(zeros) == shown(ones) ? shown(answer) : Unbounded;
}

}  // namespace kel::test

#pragma once

#include <array>
#include <string>

#include "probes/storage/DiskAnswers.h"
#include "probes/storage/OpticalAbilities.h"
#include "probes/storage/StorageDescriptor.h"

namespace kel::test {

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

enum AnswerKind { OfDevice, OfFlag, OfGeometry, OfNumber, OfHotplug, OfExtents, OfProfiles, OfMediaTypes };

/// What each reader of storage answers reads from the same bytes, by AnswerKind; "-" for nothing.
inline std::array<std::wstring, 8> ShowAnswers(Bytes answer)
{
    const auto text = [](auto number) { return std::to_wstring(number); };
    std::array<std::wstring, 8> shown;
    shown.fill(L"-");
    if (const auto device = ReadStorageDescriptor(answer))
        shown[OfDevice] = device->vendor + L"|" + device->product + L"|" + device->revision + L"|" +
                          text(device->isRemovable) + L"|" + text(device->bus);
    if (const auto flag = ReadStorageFlag(answer))
        shown[OfFlag] = *flag ? L"yes" : L"no";
    if (const auto geometry = ReadDiskGeometry(answer))
        shown[OfGeometry] = text(geometry->bytes) + (geometry->isFloppy ? L" floppy" : L"");
    if (const auto number = ReadDeviceNumber(answer))
        shown[OfNumber] = text(number->type) + L"|" + text(number->number);
    if (const auto hotplug = ReadHotplug(answer))
        shown[OfHotplug] = text(hotplug->medium) + L"|" + text(hotplug->device);
    for (const std::uint32_t disk : ReadExtentDisks(answer))
        shown[OfExtents] += text(disk) + L" ";
    for (const auto& [kind, abilities] :
         {std::pair(OfProfiles, ReadProfiles(answer)), {OfMediaTypes, ReadMediaTypes(answer)}}) {
        if (abilities.HasValue())
            shown[kind] = ShowAbilities(abilities.has) + L"/" + ShowAbilities(abilities.known);
    }
    return shown;
}

/// The same if it does not depend on the bytes behind the answer; otherwise texts that nothing is equal to.
inline std::array<std::wstring, 8> ShowBounded(const std::string& answer)
{
    const auto shown = [&answer](char behind) {
        const std::string bytes = answer + std::string(64, behind);
        return ShowAnswers(std::as_bytes(std::span(bytes)).first(answer.size()));
    };
    const auto zeros = shown('\0'), ones = shown('\xFF');
    return zeros == ones ? zeros : std::array<std::wstring, 8>();
}

}  // namespace kel::test

// The answers of storage devices, as a target of the fuzz test.
#pragma once

#include <algorithm>
#include <limits>

#include "fuzz/Generator.h"
#include "support/ShowAnswers.h"
#include "support/StorageAnswers.h"

namespace kel::test {

inline Texts StorageAnswers()
{
    Texts answers;
    for (const std::string& answer :
         {Descriptor(11, "ATA     ", "ST1000DM010-2EP102", "CC43"), Geometry(4000787030016), Number(7, 3),
          HotplugInfo(true, true), Extents({0, 2, 70000}), Profiles({0x08, 0x09, 0x10, 0x1B, 0x2B, 0x43}),
          MediaTypes(FILE_DEVICE_DVD, {{DVD_ROM, MEDIA_READ_ONLY}, {CD_R, MEDIA_WRITE_ONCE}})})
        answers.push_back(Wide(answer));
    return answers;
}

/// Lengths, offsets and the edges of bytes and of 32 bits, as answers hold them.
inline Texts Numbers()
{
    Texts numbers;
    for (const std::uint32_t number : {0U, 1U, 31U, 32U, 40U, 0x7FU, 0xFFU, 0x7FFFFFFFU, 0x80000000U, ~0U})
        numbers.insert(numbers.end(),
                       {Wide(Little(number, 4)), Wide(Big(number, 4)), Wide(Little(number, 1))});
    return numbers;
}

/// Whether what is read lies within the answer, not behind it, and is what the readers promise.
inline bool IsOfStorage(const Text& text)
{
    const std::string answer = Narrow(text);
    const kel::Bytes bytes = std::as_bytes(std::span(answer));
    const auto device = ReadStorageDescriptor(bytes).value_or(StorageDescriptor());
    for (const Text& part : {device.vendor, device.product, device.revision}) {
        const bool isPrintable =
            std::ranges::all_of(part, [](wchar_t letter) { return letter >= L' ' && letter <= L'~'; });
        if (!isPrintable || answer.find(Narrow(part)) == std::string::npos)
            return false;
    }
    constexpr auto Most = std::numeric_limits<std::int32_t>::max();
    return ReadDeviceNumber(bytes).value_or(DeviceNumber()).number <= Most &&
           ReadDiskGeometry(bytes).value_or(DiskGeometry()).bytes >> 63 == 0 &&
           ReadExtentDisks(bytes).size() <= answer.size() / 24 + 1 && !ShowBounded(answer)[OfDevice].empty();
}

}  // namespace kel::test

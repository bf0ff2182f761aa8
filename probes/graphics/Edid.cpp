#include "probes/graphics/Edid.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <numeric>
#include <utility>

#include "diag/Log.h"
#include "diag/SourceFailures.h"
#include "platform/RegistryValue.h"
#include "values/Hexadecimal.h"
#include "values/Junk.h"

namespace kel {

namespace {

constexpr std::size_t BlockSize = 128;
constexpr std::array<BYTE, 8> Header = {0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00};
constexpr std::size_t FirstDescriptor = 54;
constexpr std::size_t DescriptorSize = 18;
constexpr std::size_t DescriptorCount = 4;
constexpr BYTE NameDescriptor = 0xFC;
constexpr int Tolerance = 10;  // millimetres

using Block = std::span<const BYTE, BlockSize>;
using Descriptor = std::span<const BYTE, DescriptorSize>;

struct Extent {
    int width = 0;  // millimetres
    int height = 0;

    bool operator==(const Extent&) const = default;
};

/// Aspect ratios that some monitors report instead of a size.
constexpr Extent Ratios[] = {{1600, 900}, {1600, 1000}, {160, 90}, {160, 100}};

/// A 12-bit number whose highest four bits are in one half of another byte.
constexpr int Joined(BYTE low, int half)
{
    return low | (half & 0xF) << 8;
}

std::optional<Block> FindBlock(std::span<const BYTE> bytes)
{
    if (bytes.size() < BlockSize)
        return {};
    const Block block = bytes.first<BlockSize>();
    const int sum = std::accumulate(block.begin(), block.end(), 0);
    if (!std::ranges::equal(block.first<Header.size()>(), Header) || sum % 256 != 0)
        return {};
    return block;
}

Descriptor DescriptorAt(Block block, std::size_t place)
{
    return Descriptor(block.data() + FirstDescriptor + place * DescriptorSize, DescriptorSize);
}

/// `DISPLAY\DEL40A5`: the vendor's three letters of five bits each, and the product.
DeviceID ReadId(Block block)
{
    const unsigned letters = static_cast<unsigned>(block[8] << 8 | block[9]);
    std::wstring code;
    for (const unsigned shift : {10U, 5U, 0U}) {
        const unsigned letter = letters >> shift & 0x1F;
        if (letter < 1 || letter > 26)
            return {};
        code += static_cast<wchar_t>(L'A' + letter - 1);
    }
    return DeviceID(L"DISPLAY\\" + code + Hexadecimal(static_cast<unsigned>(block[11] << 8 | block[10]), 4));
}

std::wstring ReadName(Block block)
{
    for (std::size_t place = 0; place < DescriptorCount; ++place) {
        const Descriptor text = DescriptorAt(block, place);
        if (text[0] != 0 || text[1] != 0 || text[2] != 0 || text[3] != NameDescriptor)
            continue;
        std::wstring name = TidyText({text.begin() + 5, text.end()});
        if (!name.empty())
            return name;
    }
    return {};
}

/// The size in bytes 21 and 22, in centimetres. Where one is 0 the other is a ratio; a projector has both 0.
Extent ReadRoughSize(Block block)
{
    return block[21] != 0 && block[22] != 0 ? Extent{block[21] * 10, block[22] * 10} : Extent();
}

Extent ChooseSize(Extent rough, Extent exact)
{
    if (rough == Extent())
        return {};
    const bool isNear = std::abs(rough.width - exact.width) <= Tolerance &&
                        std::abs(rough.height - exact.height) <= Tolerance;
    const Extent size = isNear && exact.width != 0 && exact.height != 0 ? exact : rough;
    return std::ranges::count(Ratios, size) == 0 ? size : Extent();
}

/// The first descriptor with a clock is of the native mode.
void ReadMode(Block block, MonitorInfo& monitor)
{
    Extent exact;
    for (std::size_t place = 0; place < DescriptorCount; ++place) {
        const Descriptor mode = DescriptorAt(block, place);
        if (mode[0] == 0 && mode[1] == 0)
            continue;
        const bool isInterlaced = (mode[17] & 0x80) != 0;  // the lines are then those of half a frame
        const int lines = Joined(mode[5], mode[7] >> 4);
        const Resolution resolution = KnownMode(static_cast<unsigned>(Joined(mode[2], mode[4] >> 4)),
                                                static_cast<unsigned>(isInterlaced ? 2 * lines : lines));
        if (!resolution.HasValue())
            continue;
        monitor.nativeResolution = resolution;
        exact = {Joined(mode[12], mode[14] >> 4), Joined(mode[13], mode[14])};
        break;
    }
    const Extent size = ChooseSize(ReadRoughSize(block), exact);
    if (size == Extent())
        return;
    monitor.width = Count(size.width);
    monitor.height = Count(size.height);
    monitor.diagonal = Count(std::lround(std::hypot(size.width, size.height) * 10 / 25.4));
}

}  // namespace

std::optional<MonitorInfo> ReadEdid(std::span<const BYTE> bytes)
{
    const std::optional<Block> block = FindBlock(bytes);
    if (!block)
        return {};
    MonitorInfo monitor;
    monitor.deviceId = ReadId(*block);
    monitor.name = Name(ReadName(*block));
    ReadMode(*block, monitor);
    if (const int year = (*block)[17]; year != 0 && year != 0xFF)
        monitor.year = Count(1990 + year);
    return monitor;
}

std::optional<MonitorInfo> ReadMonitorEdid(const std::wstring& instance)
{
    if (instance.empty())
        return {};
    const std::wstring parameters = L"SYSTEM\\CurrentControlSet\\Enum\\" + instance + L"\\Device Parameters";
    const std::pair<std::wstring, const wchar_t*> places[] = {{parameters + L"\\EDID_OVERRIDE", L"0"},
                                                              {parameters, L"EDID"}};
    for (const auto& [key, name] : places) {
        const OwnedKey opened = OpenKey(HKEY_LOCAL_MACHINE, key.c_str(), KEY_READ);
        const std::optional<RegistryValue> value = opened ? ReadValue(opened.get(), name) : std::nullopt;
        if (!value)
            continue;
        if (std::optional<MonitorInfo> monitor = ReadEdid(value->bytes))
            return monitor;
        WriteLog(LogWarning, L"A monitor's EDID is not valid: ", DeviceID(instance).ToString());
        FailureScope::Note(L"registry EDID", ERROR_INVALID_DATA);
    }
    return {};
}

}  // namespace kel

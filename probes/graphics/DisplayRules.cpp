#include "probes/graphics/DisplayRules.h"

#include <string_view>

namespace kel {

namespace {

struct Connector {
    UINT32 technology;
    const wchar_t* name;
};

constexpr const wchar_t* Internal = L"internal";

/// DISPLAYCONFIG_VIDEO_OUTPUT_TECHNOLOGY by its numbers, since headers end at different ones.
constexpr Connector Connectors[] = {
    {0, L"VGA"},
    {1, L"S-Video"},
    {2, L"composite"},
    {3, L"component"},
    {4, L"DVI"},
    {5, L"HDMI"},
    {6, Internal},  // LVDS
    {8, L"D"},
    {9, L"SDI"},
    {10, L"DisplayPort"},
    {11, Internal},
    {12, L"UDI"},
    {13, Internal},
    {14, L"SDTV"},
    {15, L"Miracast"},
    {16, L"indirect"},
    {17, L"virtual"},
    {18, L"DisplayPort"},  // through USB
    {0x80000000, Internal},
};

}  // namespace

std::optional<Count> RefreshRate(DISPLAYCONFIG_RATIONAL rate)
{
    if (rate.Denominator == 0)
        return {};
    const auto rounded = (std::int64_t{rate.Numerator} + rate.Denominator / 2) / rate.Denominator;
    return rounded != 0 ? std::optional(Count(rounded)) : std::nullopt;
}

std::optional<Count> BitsPerPixel(DISPLAYCONFIG_PIXELFORMAT format)
{
    if (format < DISPLAYCONFIG_PIXELFORMAT_8BPP || format > DISPLAYCONFIG_PIXELFORMAT_32BPP)
        return {};
    return Count(8 * static_cast<std::int64_t>(format));
}

const wchar_t* ConnectorName(DISPLAYCONFIG_VIDEO_OUTPUT_TECHNOLOGY technology)
{
    for (const Connector& connector : Connectors) {
        if (connector.technology == static_cast<UINT32>(technology))
            return connector.name;
    }
    return L"";
}

std::optional<bool> IsBuiltIn(DISPLAYCONFIG_VIDEO_OUTPUT_TECHNOLOGY technology)
{
    const std::wstring_view name = ConnectorName(technology);
    return !name.empty() ? std::optional(name == Internal) : std::nullopt;
}

}  // namespace kel
